#include "common/metadata/apple_double.h"
#include "common/metadata/picture_position.h"
#include "macos/opera_macos.h"
#include "tests/support/evidence_builder.h"
#include "tests/support/metadata_bytes.h"

#include <QtTest>

#ifdef Q_OS_LINUX
#include <sys/syscall.h>
#include <sys/xattr.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

/// Attributes as drivers show them whose names no ordinary file system takes: path, name, value.
QMap<QByteArray, QMap<QByteArray, QByteArray>> driver_attributes;

const QByteArray one_address =
    property_list({list_object({1}), text_object("https://a.example/x")});

const QByteArray south_west = tiff_with_place("S", fractions({{33, 1}, {30, 1}, {0, 1}}), "W",
                                              fractions({{70, 1}, {15, 1}, {0, 1}}));

QByteArray box(const QByteArray &type, const QByteArray &contents)
{
    return big(contents.size() + 8, 4) + type + contents;
}

QByteArray jpeg_with(const QByteArray &tiff)
{
    return "\xff\xd8\xff\xe1" + big(tiff.size() + 8, 2) + "Exif" + big(0, 2) + tiff + "\xff\xda" +
           big(2, 2) + "\xff\xd9";
}

QByteArray heic_with(const QByteArray &tiff)
{
    const QByteArray start = box("ftyp", "heic" + big(0, 4) + "mif1heic");
    const QByteArray item = QByteArray(4, '\0') + "Exif" + tiff;
    const auto meta = [&item](qsizetype offset) {
        return box("meta",
                   big(0, 4) + box("hdlr", big(0, 8) + "pict" + QByteArray(13, '\0')) +
                       box("iinf", big(0, 4) + big(1, 2) +
                                       box("infe", big(0x02000000, 4) + big(1, 2) + big(0, 2) +
                                                       "Exif" + big(0, 1))) +
                       box("iloc", big(0, 4) + big(0x4400, 2) + big(1, 2) + big(1, 2) + big(0, 2) +
                                       big(1, 2) + big(offset, 4) + big(item.size(), 4)));
    };
    const qsizetype item_start = start.size() + meta(0).size() + 8;
    return start + meta(item_start) + box("mdat", item);
}

} // namespace

#ifdef Q_OS_LINUX
// Take the place of the C library's functions in this program.

extern "C" ssize_t llistxattr(const char *path, char *list, size_t size) noexcept
{
    if (!driver_attributes.contains(path))
        return syscall(SYS_llistxattr, path, list, size);
    const QByteArray names = driver_attributes[path].keys().join('\0') + '\0';
    if (list != nullptr && size >= static_cast<size_t>(names.size()))
        std::copy(names.begin(), names.end(), list);
    return names.size();
}

extern "C" ssize_t lgetxattr(const char *path, const char *name, void *to, size_t size) noexcept
{
    if (!driver_attributes.contains(path))
        return syscall(SYS_lgetxattr, path, name, to, size);
    const QByteArray value = driver_attributes[path].value(name);
    if (to != nullptr && size >= static_cast<size_t>(value.size()))
        std::copy(value.begin(), value.end(), static_cast<char *>(to));
    return value.isNull() ? -1 : value.size();
}
#endif

class portable_metadata_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { driver_attributes.clear(); }
    void carriers_data();
    void carriers();
    void file_system_attributes();
    void apple_double_faults_data();
    void apple_double_faults();
    void companions_belong_to_files();
    void positions_data();
    void positions();

private:
    /// An attribute's value as a result's search text has it; null when there is none.
    QString value_of(const QString &path, const QString &name) const
    {
        const struct_extended_attributes found =
            extractor_.get_extended_attributes({path}, {{name}});
        return found.xml_text.contains(u'<' + name) ? found.search_text : QString();
    }

    evidence_builder evidence_;
    opera_macos extractor_;
};

void portable_metadata_test::carriers_data()
{
    QTest::addColumn<QList<attribute>>("listed");
    QTest::addColumn<QByteArray>("companion");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expected");
    const QByteArray where = "com.apple.metadata:kMDItemWhereFroms";
    const QByteArray used = "com.apple.lastuseddate#PS";
    const QByteArray when = little_64(1'600'000'000) + little_64(5);
    const QByteArray arrival = QByteArray(20, '\0') + big(1'600'000'000, 4) + QByteArray(8, '\0');
    const QString froms = u"kMDItemWhereFroms"_s;
    const QString last = u"kMDItemLastUsedDate"_s;
    const QString added = u"kMDItemDateAdded"_s;
    const QString address = u"https://a.example/x"_s;
    const QString date = u"2020-09-13 12:26:40 +0000"_s;
    const QByteArray near = property_list({text_object("near")});
    using listed = QList<attribute>;
    const auto row = [](const char *title, const listed &attributes, const QByteArray &companion,
                        const QString &name, const QString &expected) {
        QTest::newRow(title) << attributes << companion << name << expected;
    };
    for (const QByteArray prefix : {"", "osx.", "user."})
        QTest::addRow("listed as '%s'", prefix.constData())
            << listed{{prefix + where, one_address}, {"user.other", "x"}} << QByteArray() << froms
            << address;
    row("companion", {}, apple_double({{"a", "b"}, {where, one_address}}), froms, address);
    row("nearest first", {{"user." + where, one_address}, {where, near}},
        apple_double({{where, one_address}}), froms, u"near"_s);
    row("damaged, then sound", {{where, one_address.chopped(1)}},
        apple_double({{where, one_address}}), froms, address);
    row("too long", {{where, QByteArray(1'048'577, 'x')}}, {}, froms, {});
    row("another prefix", {{"trusted." + where, one_address}}, {}, froms, {});
    row("name goes on", {{where + "2", one_address}}, {}, froms, {});
    row("last use", {{"osx." + used, when}}, {}, last, date);
    row("last use in a companion", {}, apple_double({{used, when}}), last, date);
    row("last use, never", {{used, QByteArray(16, '\0')}}, {}, last, {});
    for (const qint64 seconds : {std::numeric_limits<qint64>::max(),
                                 std::numeric_limits<qint64>::min(), 253'402'300'800LL})
        QTest::addRow("last use at %lld", static_cast<long long>(seconds))
            << listed{{used, little_64(seconds) + little_64(0)}} << QByteArray() << last
            << QString();
    row("arrival", {{"osx.com.apple.FinderInfo", arrival}}, {}, added, date);
    row("arrival in a companion", {}, apple_double({}, arrival), added, date);
    row("arrival hidden", {}, apple_double({{where, one_address}}), added, {});
}

void portable_metadata_test::carriers()
{
    QFETCH(QList<attribute>, listed);
    QFETCH(QByteArray, companion);
    QFETCH(QString, expected);
    QFETCH(QString, name);
#ifndef Q_OS_LINUX
    if (!listed.isEmpty())
        QSKIP("no attributes are listed on this system");
#endif
    evidence_.file(u"a/carried.txt"_s, "content");
    evidence_.file(u"a/._carried.txt"_s, companion);
    auto &shown = driver_attributes[QFile::encodeName(
        QFileInfo(evidence_.path(u"a/carried.txt"_s)).canonicalFilePath())];
    for (const attribute &one : listed)
        shown[one.name] = one.value;
    const bool is_list = name == "kMDItemWhereFroms"_L1;
    QCOMPARE(value_of(evidence_.path(u"a/carried.txt"_s), name),
             reads_lists || !is_list ? expected : QString());
}

void portable_metadata_test::file_system_attributes()
{
    evidence_.file(u"real/one"_s, "1");
    evidence_.file(u"real/two"_s, "2");
    const QString path = evidence_.path(u"real"_s);
    QCOMPARE(value_of(path, u"kMDItemFSNodeCount"_s), u"2"_s);
    QCOMPARE(value_of(path + u"/one", u"kMDItemFSNodeCount"_s), QString());
    QCOMPARE(value_of(path + u"/one", u"kMDItemKind"_s), QString());
#ifdef Q_OS_LINUX
    const QByteArray value = little_64(1'600'000'000) + little_64(0);
    if (::setxattr(QFile::encodeName(path).constData(), "user.com.apple.lastuseddate#PS",
                   value.constData(), static_cast<size_t>(value.size()), 0) != 0)
        QSKIP("the file system of the temporary folder has no attributes");
    QFile::link(path, evidence_.path(u"link"_s));
    for (const QString &from : {path, evidence_.path(u"link"_s)})
        QCOMPARE(value_of(from, u"kMDItemLastUsedDate"_s), u"2020-09-13 12:26:40 +0000"_s);
#endif
}

void portable_metadata_test::apple_double_faults_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("names"); // FinderInfo excepted, which "-" stands for the lack of
    const auto row = [](const char *title, const QByteArray &bytes, const QString &names) {
        QTest::newRow(title) << bytes << names;
    };
    const QByteArray sound = apple_double({{"a", "12"}, {"b", "34"}});
    row("sound", sound, u"a b"_s);
    row("empty", {}, u"-"_s);
    row("other magic number", "\x01" + sound.sliced(1), u"-"_s);
    row("value past the end", sound.chopped(1), u"a"_s);
    row("offset past the end", apple_double({{"a", "12", 1'000'000'000}, {"b", "34"}}), u"b"_s);
    row("values overlap", apple_double({{"a", "12", 1}, {"b", "34"}}), u""_s);
    row("value in the table", apple_double({{"a", "12"}, {"b", "34", -20}}), u""_s);
    row("no value", apple_double({{"a", ""}, {"b", "34"}}), u"b"_s);
    row("same name twice", apple_double({{"a", "12"}, {"a", "34"}}), u"a"_s);
    QByteArray faulty = sound;
    row("entry past the end", faulty.replace(42, 4, big(0xffffffff, 4)), u"-"_s);
    row("entry in the header", faulty.replace(42, 4, big(4, 4)), u"-"_s);
    faulty = sound;
    row("more attributes than there are", faulty.replace(118, 2, big(0xffff, 2)), u"a b"_s);
    row("longer than a value may be", apple_double({{"a", QByteArray(1'048'577, 'x')}, {"b", "1"}}),
        u"b"_s);
}

void portable_metadata_test::apple_double_faults()
{
    QFETCH(QByteArray, bytes);
    const attribute_values values = apple_double_attributes(bytes);
    QByteArrayList names = values.keys();
    const bool has_finder_info = names.removeOne(finder_info_name);
    std::sort(names.begin(), names.end());
    QTEST(has_finder_info ? QString::fromLatin1(names.join(' ')) : u"-"_s, "names");
    QVERIFY(!values.contains("a") || values["a"] == "12");
    for (qsizetype size = 0; size < std::min<qsizetype>(bytes.size(), 150); ++size)
        QVERIFY(apple_double_attributes(bytes.first(size)).size() <= 3);
}

void portable_metadata_test::companions_belong_to_files()
{
    const QByteArray noted =
        apple_double({{"com.apple.lastuseddate#PS", little_64(1'600'000'000) + little_64(0)}});
    evidence_.file(u"c/._gone"_s, noted);
    evidence_.file(u"outside/notes"_s, noted);
    evidence_.file(u"c/here"_s, "content");
    QVERIFY(QFile::link(evidence_.path(u"outside/notes"_s), evidence_.path(u"c/._here"_s)));
    for (const QString &name : {u"c/gone"_s, u"c/here"_s})
        QCOMPARE(value_of(evidence_.path(name), u"kMDItemLastUsedDate"_s), QString());
}

void portable_metadata_test::positions_data()
{
    QTest::addColumn<QByteArray>("picture");
    QTest::addColumn<QString>("expected"); // latitude, longitude, altitude
    const auto row = [](const char *title, const QByteArray &picture, const QString &expected) {
        QTest::newRow(title) << picture << expected;
    };
    const QByteArray ten = fractions({{10, 1}, {0, 1}, {0, 1}});
    const auto latitude = [&ten](const char *side, const QByteArray &value) {
        return tiff_with_place(side, value, "E", ten);
    };
    row("south, west", south_west, u"-33.5 -70.25 12.5"_s);
    row("JPEG", jpeg_with(south_west), u"-33.5 -70.25 12.5"_s);
    row("HEIC", heic_with(south_west), u"-33.5 -70.25 12.5"_s);
    row("north, east", latitude("N", fractions({{10, 1}, {3075, 100}, {0, 7}})),
        u"10.5125 10 12.5"_s);
    row("on the equator", latitude("S", fractions({{0, 1}, {0, 1}, {0, 1}})), u"0 10 12.5"_s);
    row("below the sea", tiff_with_place("N", ten, "E", ten, fractions({{86, 1}}), 1),
        u"10 10 -86"_s);
    row("zero denominator", latitude("N", fractions({{10, 1}, {30, 1}, {0, 0}})), u" 10 12.5"_s);
    row("no side", latitude("", ten), u" 10 12.5"_s);
    row("no such side", latitude("X", ten), u" 10 12.5"_s);
    row("beyond the pole", latitude("N", fractions({{90, 1}, {0, 1}, {1, 1}})), u" 10 12.5"_s);
    row("beyond 2^31", latitude("N", fractions({{0xffffffff, 0xffffffff}})), u" 10 12.5"_s);
    row("too many parts", latitude("N", fractions({{1, 1}, {1, 1}, {1, 1}, {1, 1}})),
        u" 10 12.5"_s);
    QByteArray bytes = south_west;
    row("wrong offset", bytes.replace(48, 4, big(0x7fffffff, 4)), u" -70.25 12.5"_s);
    bytes = south_west;
    row("directory in itself", bytes.replace(18, 4, big(8, 4)), u"  "_s);
}

void portable_metadata_test::positions()
{
    QFETCH(QByteArray, picture);
    QFETCH(QString, expected);
    evidence_.file(u"picture"_s, picture);
    const QString path = evidence_.path(u"picture"_s);
    const auto [latitude, longitude] = extractor_.extract_longi_lati_attributes(path);
    const QString altitude = value_of(path, u"kMDItemAltitude"_s);
    QCOMPARE(latitude + u' ' + longitude + u' ' + altitude, reads_pictures ? expected : u"  "_s);
    QCOMPARE(value_of(path, u"kMDItemLatitude"_s), latitude.isEmpty() ? QString() : latitude);
    for (qsizetype size = 0; size < picture.size(); ++size)
        static_cast<void>(picture_place_of(picture.first(size)));
}

QTEST_MAIN(portable_metadata_test)
#include "portable_metadata_test.moc"
