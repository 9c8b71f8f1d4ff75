#include "common/plugin_static_function.h"

#include <QtTest>

using namespace Qt::StringLiterals;
using conversion = QString (*)(const QString &);
Q_DECLARE_METATYPE(conversion)

class time_conversions_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void converts_data();
    void converts();
    void utc_text_agrees_with_the_calendar();
    void reads_dates_by_format_and_versions_by_scheme();
};

/// Neither the examiner's language nor their clock changes may show in any result.
void time_conversions_test::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::German));
    qputenv("TZ", "America/New_York");
}

void time_conversions_test::converts_data()
{
    QTest::addColumn<conversion>("convert");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    using times = plugin_static_function;
    const auto rows = [](conversion convert, const QString &expected, const QStringList &texts) {
        for (const QString &text : texts)
            QTest::addRow("%s", qUtf8Printable(text)) << convert << text << expected;
    };
    const conversion google = times::convert_google_time_to_epoch;
    rows(google, u""_s, {u"0"_s, QString()});
    rows(google, u"1667872078"_s, {u"13312345678901234"_s, u"1667872078"_s});
    rows(google, u"-1"_s, {u"11644473599999999"_s});
    rows(google, u"-11644473600"_s, {u" 0"_s, u"no number"_s, u"18446744073709551615"_s});
    const conversion utc_text = times::convert_timestamp_to_human_readable_in_UTC;
    rows(utc_text, u"05-Mar-2021 14:07:09"_s, {u" 1614953229.9 "_s});
    rows(utc_text, u""_s, {u"0"_s, u".5"_s, u"x"_s, u"2147483648"_s, QString()});
    const conversion local_form = times::convert_human_readable_to_epoch_1;
    rows(local_form, u"1614953229"_s,
         {u"Mar 5, 2021, 2:07:09 PM UTC"_s, u"Mar 5, 2021, 9:07:09 AM EST"_s,
          u"Mar 5, 2021, 9:07:09 AM"_s});
    rows(local_form, u"0"_s, {u"Mar 5, 2021"_s, u"Mar 35, 2021, 9:07:09 AM UTC"_s});
    const conversion offset_form = times::convert_human_readable_to_epoch_2;
    rows(offset_form, u"1615689000"_s, // 02:30 that day is skipped by the local clocks
         {u"2021-03-14 02:30:00"_s, u"2021-03-14 04:30:00.12+0200"_s,
          u"2021-03-13 21:00:00-0530"_s});
    rows(offset_form, u"0"_s, {u"nothing+0200"_s});
    const conversion message_form = times::convert_human_readable_to_epoch_3;
    rows(message_form, u"784887151"_s, {u"Tue, 15 Nov 1994 08:12:31 GMT"_s});
    rows(message_form, u"1615689000"_s, {u"Sun, 14 Mar 2021 02:30:00 GMT"_s});
    rows(message_form, u"0"_s, {u"yesterday"_s});
    const conversion duration = times::get_human_readable_time;
    rows(duration, u"01:02:05 Hrs"_s, {u"3725.9"_s});
    rows(duration, u"02:05 Min"_s, {u"125"_s});
    rows(duration, u"00:00 Min"_s, {u"2147483648"_s});
    const conversion apple = times::convert_apple_time_to_epoch;
    rows(apple, u"1672531200"_s, {u"694224000.25"_s});
    const conversion t_z = times::convert_T_Z_time_to_epoch;
    rows(t_z, u"1615689000"_s, {u"20210314T023000Z"_s, u"2021-03-14T02:30:00.123456Z"_s});
    rows(t_z, u"1614902400"_s, {u"20210305"_s});
    const conversion size = times::human_readable_size;
    rows(size, u"1.50 KB"_s, {u"1536"_s});
    rows(size, u"5120.00 MB"_s, {u"5368709120"_s});
    const conversion unicode = times::convert_string_to_unicode;
    rows(unicode, u"Ü\U0001F600 \\u12 \\u0000"_s, {u"\\U00dc\\ud83d\\ude00 \\u12 \\u0000"_s});
    rows(unicode, u"C:\\\\u0041 \\u+123"_s, {u"C:\\\\u0041 \\u+123"_s});
    for (const conversion convert : {local_form, offset_form, message_form, apple, t_z, size})
        rows(convert, u""_s, {QString(), u" "_s});
    rows(duration, u""_s, {QString(), u"-5"_s});
    rows(unicode, u""_s, {QString()});
}

void time_conversions_test::converts()
{
    QFETCH(conversion, convert);
    QFETCH(QString, text);
    QTEST(convert(text), "expected");
    QVERIFY(!convert(text).isNull());
}

void time_conversions_test::utc_text_agrees_with_the_calendar()
{
    for (qint64 seconds = INT32_MIN; seconds <= INT32_MAX; seconds += 86'399) {
        const QDateTime instant = QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
        const QString text = QString::number(seconds);
        QCOMPARE(plugin_static_function::convert_timestamp_to_human_readable_in_UTC(text),
                 QLocale::c().toString(instant, u"dd-MMM-yyyy hh:mm:ss"));
    }
}

void time_conversions_test::reads_dates_by_format_and_versions_by_scheme()
{
    const auto convert = plugin_static_function::get_posix_timestamp;
    QCOMPARE(convert(u"14/Mar/2021 02:30"_s, u"dd/MMM/yyyy hh:mm"_s), u"1615689000");
    QCOMPARE(convert(u"14/Mär/2021"_s, u"dd/MMM/yyyy"_s), u"");
    QCOMPARE(convert(u""_s, u""_s), u"");

    const auto version = plugin_static_function::get_source_os_scan_version;
    plugin_static_function::source_os_version_full = u"macOS 10.15.7"_s;
    QCOMPARE(version(u"macOS"_s), u"10");
    QCOMPARE(version(u"other"_s), u"");
}

QTEST_GUILESS_MAIN(time_conversions_test)
#include "time_conversions_test.moc"
