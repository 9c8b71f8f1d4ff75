#include "common/metadata/property_list.h"
#include "common/values/text_values.h"
#include "macos/opera_macos.h"
#include "tests/support/evidence_builder.h"
#include "tests/support/metadata_bytes.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class property_list_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_come_back_through_the_filters_data();
    void values_come_back_through_the_filters();
    void refuses_harmful_lists_data();
    void refuses_harmful_lists();
    void damaged_lists_have_no_value();
};

void property_list_test::values_come_back_through_the_filters_data()
{
    QTest::addColumn<QByteArrayList>("objects");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *title, const QByteArrayList &objects, const QString &expected) {
        QTest::newRow(title) << objects << expected;
    };
    const auto utf16 = [](const QString &text) {
        QByteArray object = "\x6f\x10" + big(text.size(), 1);
        for (const QChar c : text)
            object += big(c.unicode(), 2);
        return object;
    };
    const QByteArray date = "\x33" + big(0x4197D78400000000, 8); // 100000000 seconds
    row("text", {text_object("a=b, (c) {\\}")}, u"a=b, (c) {\\}"_s);
    row("text, not ASCII", {utf16(u"Übersicht \U0001F600"_s)}, u"Übersicht \U0001F600"_s);
    row("one byte", {"\x10\xff"}, u"255"_s);
    row("negative", {"\x13" + big(-5, 8)}, u"-5"_s);
    row("float", {"\x22" + big(0xc2060000, 4)}, u"-33.5"_s);
    row("double", {"\x23" + big(0x3fb999999999999a, 8)}, u"0.1"_s);
    row("great double", {"\x23" + big(0x4341c37937e08000, 8)}, u"10000000000000000"_s);
    row("infinite", {"\x23" + big(0x7ff0000000000000, 8)}, {});
    row("true", {"\x09"}, u"true"_s);
    row("false", {"\x08"}, u"false"_s);
    row("date", {date}, u"2004-03-03 09:46:40 +0000"_s);
    row("bytes", {QByteArray("\x42\x0a\xff")}, u"<0aff>"_s);
    row("texts",
        {list_object({1, 2, 3, 4}), text_object("https://a.example/b_(c),d?e=f;g"),
         utf16(u"Ann\u2019s \\ \U0001F600\n{x}"_s), text_object(""), text_object("plain")},
        u"https://a.example/b_(c),d?e=f;g;Ann\u2019s \\ \U0001F600\n{x};plain"_s);
    row("others",
        {list_object({1, 2, 3, 4, 5}), date, "\x13" + big(-5, 8), "\x09",
         "\x22" + big(0x3fc00000, 4), "\x41\x0a"},
        u"2004-03-03 09:46:40 +0000;-5;1;1.5;<0a>"_s);
    row("lists in a list", {list_object({1, 2}), list_object({2, 2}), text_object("a")},
        u"a;a;a"_s);
    row("nothing in a list", {list_object({})}, u""_s);
    row("dictionary", {"\xd1" + big(1, 2) + big(2, 2), text_object("key"), "\x10\x07"},
        u"{\n    key = 7;\n}"_s);
}

void property_list_test::values_come_back_through_the_filters()
{
    QFETCH(QByteArrayList, objects);
    QFETCH(QString, expected);
    const QByteArray list = property_list(objects);
    const evidence_builder evidence;
    evidence.file(u"any"_s, "content");
    evidence.file(u"._any"_s, apple_double({{"com.apple.metadata:kMDItemKind", list}}));
    const opera_macos extractor;
    const struct_extended_attributes found =
        extractor.get_extended_attributes({evidence.path(u"any"_s)}, {{u"kMDItemKind"_s}});
    QCOMPARE(found.search_text, reads_lists ? not_null(expected) : u""_s);
    QCOMPARE(property_list_description(list).isNull(), !reads_lists || expected.isNull());
}

void property_list_test::refuses_harmful_lists_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("harmless");
    const auto row = [](const char *title, const QByteArray &bytes, bool harmless = false) {
        QTest::newRow(title) << bytes << harmless;
    };
    const auto nested = [](quint64 levels) {
        QByteArrayList objects;
        for (quint64 level = 1; level <= levels; ++level)
            objects.append(list_object({level}));
        return property_list(objects << text_object("inner"));
    };
    row("eight levels", nested(8), true);
    row("nine levels", nested(9));
    row("thousand levels", nested(1000));
    row("holds itself", property_list({list_object({0})}));
    row("key holds its dictionary", property_list({"\xd1" + big(0, 2) + big(0, 2)}));
    QByteArrayList doubling;
    for (quint64 level = 1; level <= 7; ++level)
        doubling.append(list_object(QList<quint64>(16, level)));
    row("sixteen to the seventh", property_list(doubling << text_object("x")));
    const auto shared = [](int length) {
        return property_list({list_object(QList<quint64>(200, 1)),
                              "\x4f\x11" + big(length, 2) + QByteArray(length, 'x')});
    };
    row("shared bytes", shared(20'000), true);
    row("too many shared bytes", shared(22'000));
    row("one MiB and a byte",
        property_list({"\x4f\x12" + big(1'048'528, 4) + QByteArray(1'048'528, 'x')}));
    row("length of a text past the end", property_list({"\x5f\x13" + big(~quint64{0}, 8)}));
    row("length times size overflows",
        property_list({"\xaf\x13" + big(0x8000000000000001, 8), text_object("x")}));
    row("key with a NUL",
        property_list({"\xd1" + big(1, 2) + big(1, 2), text_object(QByteArray("k\0", 2))}));
    row("text with a NUL", property_list({text_object(QByteArray("k\0", 2))}), true);
    row("reference to nothing", property_list({list_object({7})}));
    row("date that is no number", property_list({"\x33" + big(0x7ff8000000000000, 8)}));
    row("date of another age", property_list({"\x33" + big(0x7e37e43c8800759c, 8)}));
    row("number of 128 bits", property_list({"\x14" + big(0, 8) + big(1, 8)}));
    row("unknown kind", property_list({"\x70"}));
    const QByteArray simple = property_list({text_object("x")});
    row("table past the end", simple.chopped(8) + big(~quint64{0} - 5, 8));
    row("more objects than bytes",
        simple.chopped(24) + big(quint64{1} << 62U, 8) + simple.last(16));
}

void property_list_test::refuses_harmful_lists()
{
    QFETCH(QByteArray, bytes);
    QFETCH(bool, harmless);
    QCOMPARE(is_harmless_property_list(bytes), harmless);
    QCOMPARE(property_list_description(bytes).isNull(), !harmless || !reads_lists);
}

void property_list_test::damaged_lists_have_no_value()
{
    const QByteArray sound = property_list({"\xd1" + big(1, 2) + big(2, 2), text_object("key"),
                                            list_object({3, 1}), "\x33" + big(0, 8)});
    QCOMPARE(property_list_description(sound).isNull(), !reads_lists);
    for (qsizetype size = 0; size < sound.size(); ++size)
        QVERIFY(property_list_description(sound.first(size)).isNull());
    // Every byte set to every value: nothing to expect but that it ends.
    for (qsizetype at = 0; at < sound.size(); ++at) {
        QByteArray bytes = sound;
        for (int value = 0; value < 256; ++value) {
            bytes[at] = static_cast<char>(value);
            QVERIFY(property_list_description(bytes).size() < 1000);
        }
    }
}

QTEST_MAIN(property_list_test)
#include "property_list_test.moc"
