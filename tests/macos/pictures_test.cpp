#include "common/artefacts/stored_pictures.h"
#include "tests/support/host_tables.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QString favicons = macos_profile(u"ada"_s) + u"Favicons"_s;
const QByteArray icon_tables =
    "create table favicons(id integer, url); create table icon_mapping(page_url, icon_id integer);"
    "create table favicon_bitmaps(icon_id, last_updated, image_data, width, height);";

QByteArray content_of(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "cannot be read";
}

QStringList entries(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

} // namespace

class macos_pictures_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void icons();
    void icon_ids_that_suit_no_file_name_data();
    void icon_ids_that_suit_no_file_name();
    void icon_look_ups_that_fail();
    void thumbnails_of_two_accounts();
    void pictures_with_something_in_the_way();
};

void macos_pictures_test::icons()
{
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(favicons,
                        icon_tables +
                            "insert into favicons values(1,'https://a.example/i'),(2,NULL),(3,'c');"
                            "insert into icon_mapping values('a',1),('x',2),('b',1),('c',1);"
                            "insert into favicon_bitmaps values(1,13312345678901234,x'0102',16,17),"
                            "(2,0,x'',NULL,'wide'),(1,NULL,x'03',32,32),(9,1667872078,NULL,1,1)");
    run.ready().extract_favicons_11();
    const QString end = u"|/"_s + favicons + u"||Shown macOS|Source7";
    QCOMPARE(run.lines(u"select * from favicon"_s),
             QStringList({u"0|ada|1|https://a.example/i|1667872078|./Images/1_ada.png|16|17|"
                          "a;;b;;c"_s +
                              end,
                          u"0|ada|2||||NULL|wide|x"_s + end,
                          u"0|ada|1|https://a.example/i||./Images/1_ada.png|32|32|a;;b;;c"_s + end,
                          u"0|ada|9||1667872078||1|1|"_s + end}));
    const QString images = run.plugin_folder() + u"Images/";
    QCOMPARE(entries(images), QStringList(u"1_ada.png"_s));
    QCOMPARE(content_of(images + u"1_ada.png"), QByteArray("\x03"));
}

void macos_pictures_test::icon_ids_that_suit_no_file_name_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::newRow("out of the folder") << QByteArray("'../../out'");
    QTest::newRow("absolute") << QByteArray("'/tmp/out'");
    QTest::newRow("into a folder") << QByteArray("'a/b'");
    QTest::newRow("backslash") << QByteArray("'a\\b'");
    QTest::newRow("NUL") << QByteArray("'a'||char(0)||'b'");
    QTest::newRow("300 characters") << QByteArray("printf('%300d',1)");
}

void macos_pictures_test::icon_ids_that_suit_no_file_name()
{
    QFETCH(QByteArray, id);
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(favicons, icon_tables + "insert into favicon_bitmaps values(" + id +
                                      ",0,x'01',1,1),(5,0,x'01',1,1)");
    opera_macos &reader = run.ready();
    const QString folder = run.plugin_folder();
    const QStringList before = entries(run.result_folder()) + entries(folder);
    reader.extract_favicons_11();
    QCOMPARE(run.lines(u"select relative_path from favicon"_s),
             QStringList({u""_s, u"./Images/5_ada.png"_s}));
    QCOMPARE(entries(folder + u"Images"), QStringList(u"5_ada.png"_s));
    QCOMPARE(entries(run.result_folder()) + entries(folder), before);
    QVERIFY(
        run.log.has(u"[extract_favicons_11]file open -----FAILED-----"_s + folder + u"Images/"));
}

void macos_pictures_test::icon_look_ups_that_fail()
{
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(
        favicons, icon_tables + "drop table favicons; drop table icon_mapping;"
                                "insert into favicon_bitmaps values(1,0,NULL,1,1),(2,0,NULL,1,1)");
    run.ready().extract_favicons_11();
    QCOMPARE(run.lines(u"select icon_url, fav_urls from favicon"_s), QStringList({u"|"_s, u"|"_s}));
    const QStringList of_pages = {u"[get_icon_url]Insertion Query -----FAILED-----"_s,
                                  u"no such table: icon_mapping Unable to execute statement"_s,
                                  u"select page_url from icon_mapping where icon_id = ?"_s};
    QCOMPARE(run.log.messages_of(u"opera_macos::get_fav_urls"_s), of_pages + of_pages);
    QCOMPARE(run.log.messages_of(u"opera_macos::get_icon_url"_s).count(of_pages.first()), 2);
}

void macos_pictures_test::thumbnails_of_two_accounts()
{
    reader_case run;
    run.accounts = {{u"ada"_s}, {u"ben"_s}};
    const QByteArray table = "create table thumbnails(url, last_used, image_data);"
                             "insert into thumbnails values";
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"thumbnails.db"_s,
                        table + "('https://a.example/%7e%zz',13312345678901234,x'01'),"
                                "('b',0,x'0102'),('c',NULL,x'010203')");
    run.evidence.sqlite(macos_profile(u"ben"_s) + u"thumbnails.db"_s,
                        table + "('d',0,x'0505050505'),(NULL,0,NULL)");
    run.ready().extract_thumbnails();
    const QString images = run.plugin_folder() + u"Images/";
    const auto row = [&](const QString &begin, const QString &name, int size) {
        return QString(begin + u'|' + images + name + u"|./Images/" + name + u'|' + name + u'|' +
                       QString::number(size) + u"|||/" + macos_profile(begin.mid(2, 3)) +
                       u"thumbnails.db");
    };
    QCOMPARE(
        run.lines(u"select bookmark, system_user, url, last_used, actual_path, relative_path, "
                  "file_name, size, hash_md5, hash_sha1, source_file from thumbnails"_s),
        QStringList({row(u"0|ada|https://a.example/~%zz|1667872078"_s, u"1.png"_s, 1),
                     row(u"0|ada|b|"_s, u"2.png"_s, 2), row(u"0|ada|c|"_s, u"3.png"_s, 3),
                     row(u"0|ben|d|"_s, u"1.png"_s, 5), row(u"0|ben|NULL|"_s, u"2.png"_s, 0)}));
    QCOMPARE(entries(images), QStringList({u"1.png"_s, u"2.png"_s, u"3.png"_s}));
    QCOMPARE(content_of(images + u"1.png"), QByteArray("\5\5\5\5\5"));

    const QStringList last = run.rows(u"select date_created, ext_attributes_key_value, "
                                      "ext_attributes_value_for_search from thumbnails"_s)
                                 .last();
    static const QRegularExpression date(u"^(\\d{4}-\\d\\d-\\d\\dT\\d\\d-\\d\\d-\\d\\d)?$"_s);
    QVERIFY2(date.match(last.at(0)).hasMatch(), qPrintable(last.at(0)));
    QVERIFY(last.at(1).contains(u"Images/2.png</File_Path>"_s));
    QVERIFY(last.at(2).contains(u"2.png"_s));
}

void macos_pictures_test::pictures_with_something_in_the_way()
{
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(favicons,
                        icon_tables +
                            "insert into favicon_bitmaps values(1,0,x'01',1,1),(2,0,x'02',1,1)");
    run.evidence.file(u"elsewhere"_s, "kept");
    opera_macos &reader = run.ready();
    const QString images = run.plugin_folder() + u"Images/";
    QVERIFY(QDir().mkpath(images + u"1_ada.png/folder") && QDir().mkpath(images + u"4.png/folder"));
    QVERIFY(QFile::link(run.evidence.path(u"elsewhere"_s), images + u"2_ada.png"));
    reader.extract_favicons_11();
    QCOMPARE(run.lines(u"select relative_path from favicon"_s),
             QStringList({u""_s, u"./Images/2_ada.png"_s}));
    QVERIFY(
        run.log.has(u"[extract_favicons_11]file open -----FAILED-----"_s + images + u"1_ada.png"));
    // A link in the way is replaced; what it points at stays.
    QCOMPARE(content_of(run.evidence.path(u"elsewhere"_s)), QByteArray("kept"));
    QCOMPARE(content_of(images + u"2_ada.png"), QByteArray("\x02"));

    const struct_thumbnail_info thumbnail = reader.get_thumbnail_image("picture", 4);
    QCOMPARE(QString(thumbnail.actual_path + thumbnail.relative_path + thumbnail.file_name +
                     thumbnail.size + thumbnail.date_created),
             u""_s);
    const QStringList lines = run.log.messages_of(u"opera_macos::get_thumbnail_image"_s);
    QCOMPARE(lines.value(0),
             u"[get_thumbnail_image] file open --------FAILED-----"_s + images + u"4.png");
    QVERIFY(lines.value(1).startsWith(u"-----Error----"_s) && lines.value(1).size() > 14);
}

QTEST_MAIN(macos_pictures_test)
#include "pictures_test.moc"
