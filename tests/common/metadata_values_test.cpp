#include "common/plugin_static_function.h"

#include <QtTest>

using namespace Qt::StringLiterals;
using filter = QString (*)(const QString &);
Q_DECLARE_METATYPE(filter)

class metadata_values_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filters_give_bare_values_data();
    void filters_give_bare_values();
    void reads_iso_dates();
};

void metadata_values_test::filters_give_bare_values_data()
{
    QTest::addColumn<filter>("apply");
    QTest::addColumn<QString>("description");
    QTest::addColumn<QString>("expected");
    using values = plugin_static_function;
    const auto row = [](filter apply, const QString &description, const QString &expected) {
        QTest::addRow("%s", qUtf8Printable(description)) << apply << description << expected;
    };
    const filter number = values::get_filtered_number_value;
    row(number, u"<CFNumber 0x12 [0x7f]>{value = -0.52000000000000312639, type = kCF}"_s,
        u"-0.52000000000000312639"_s);
    row(number, u"<CFNumber 0x12 [0x7f]>{value = +2}"_s, u"2"_s);
    row(number, u" +1,234 "_s, u"1234"_s);
    const filter boolean = values::get_filtered_boolean_value;
    row(boolean, u" <CFBoolean 0x12 [0x7f]>{value = true}\n"_s, u"true"_s);
    row(boolean, u"<CFBoolean 0x12 [0x7f]>{true}"_s, u""_s);
    const filter text = values::get_filtered_cfstring_value;
    row(text, u"<CFString 0x12 [0x7f]>{contents = \"report.pdf\"}"_s, u"report.pdf"_s);
    row(text, u"<CFString 0x12 [0x7f]>{contents = \"a=b, {c]>{\"d\"}}\"}"_s, u"a=b, {c]>{d}}"_s);
    const filter where = values::get_filtered_wherefrom_value;
    row(where, u"(\n    \"https://a.example/a_(b),c?d=\\\"e\\\"\",\n    plain\n)"_s,
        u"https://a.example/a_(b),c?d=e;plain"_s);
    row(where, u"(\n    \"Ann\\U2019s \\Ud83d\\ude00 <a@b.example>\",\n    \"C:\\\\U00e9\"\n)"_s,
        u"Ann's \U0001F600 a@b.example;C:\\U00e9"_s);
    const filter list = values::get_filtered_string_value;
    row(list, u"(\n    \"2021-03-05 00:00:00 +0000\",\n    \"\",\n    (\n        inner\n    )\n)"_s,
        u"2021-03-05 00:00:00 +0000;inner"_s);
    row(list, u" 2021-03-05 14:07:09 +0000 "_s, u"2021-03-05 14:07:09 +0000"_s);
    row(list, u"(\n)"_s, u""_s);
    const filter date = values::get_filtered_date_value;
    row(date, u"2021-03-05 14:07:09.75 +0000"_s, u"1614953229"_s);
    row(date, u"(null)"_s, u""_s);
    for (const filter apply : {number, boolean, text, where, list, date})
        row(apply, QString(), u""_s);
}

void metadata_values_test::filters_give_bare_values()
{
    QFETCH(filter, apply);
    QFETCH(QString, description);
    QTEST(apply(description), "expected");
    QVERIFY(!apply(description).isNull());
}

void metadata_values_test::reads_iso_dates()
{
    const auto seconds = [](const QString &text) {
        const QDateTime date = plugin_static_function::get_datetime_from_string_with_iso_date(text);
        return date.isValid() && date.timeSpec() == Qt::UTC ? date.toSecsSinceEpoch() : -1;
    };
    for (const QString &text : {u"2021-03-05T14:07:09Z"_s, u"2021-03-05 16:07:09+02:00"_s,
                                u"2021-03-05 08:37:09 -0530"_s, u"2021-03-05 14:07:09,5"_s})
        QVERIFY2(seconds(text) == 1614953229, qUtf8Printable(text));
    QCOMPARE(seconds(u"2021-03-05"_s), 1614902400);
    QCOMPARE(seconds(u"2021-03-14 02:30"_s), 1615689000);
    for (const QString &text : {u"2021-02-29 00:00:00"_s, u"2021-03-05 24:07:09"_s,
                                u"2021-03-05 14:07:09 +9900"_s, u"2021-03-05 x"_s, u""_s})
        QVERIFY2(seconds(text) == -1, qUtf8Printable(text));
}

QTEST_GUILESS_MAIN(metadata_values_test)
#include "metadata_values_test.moc"
