// Bookmarks, top sites, sessions and extensions.

#include "common/plugin_static_function.h"
#include "tests/support/extraction_case.h"
#include "winos/opera_winos.h"

#include <QDir>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace
{

const QString profile = winos_profile(u"ada"_s);
const QString extension = profile + u"Extensions/abcd/1.2_0/"_s;

} // namespace

class winos_profile_files_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bookmark_lines();
    void chopped_lines();
    void bookmarks_on_one_huge_line();
    void top_sites();
    void session_texts_data();
    void session_texts();
    void session_without_zero_takes_linear_time();
    void extension_rows();
    void manifests_data();
    void manifests();
    void extension_pictures_stay_in_their_folder();
    void extension_pictures_are_never_replaced();
    void extensions_that_are_a_file();
    void pictures();
};

void winos_profile_files_test::bookmark_lines()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.file(profile + u"Bookmarks"_s, R"({
   "roots": {
      "bookmark_bar": {
         "children": [ {
            "date_added": "13312345678901234",
            "meta_info": {
               "x": "y"
            },
            "name": "One, two,",
            "type": "url",
            "url": "https://a.example/?a=1,2"
         }, {
            "children": [ {
               "date_added": "0",
               "name": "file",
               "type": "url",
               "url": "file:///C:/Users/ada/a%20b.pdf"
            } ],
            "date_added": "13000000000000000",
            "name": "A folder",
            "type": "folder"
         }, {
            "type": "url",
            "url": "https://nameless.example/"
         } ],
         "name": "Bar",
         "type": "folder"
      }
   }
})");
    run.run({u"bookmarks"_s});
    QCOMPARE(run.rows(u"select bookmark, domain_user, date_added, name, url, url_text, source_file "
                      "from bookmarks order by INT"_s),
             QList<QStringList>(
                 {{u"0"_s, u"CORP"_s, u"1667872078"_s, u"One, two,"_s,
                   u"https://a.example/?a=1,2"_s, u""_s, u"/"_s + profile + u"Bookmarks"},
                  {u"0"_s, u"CORP"_s, u""_s, u"file"_s, u"file:///C:/Users/ada/a%20b.pdf"_s,
                   u"/Users/ada/a b.pdf"_s, u"/"_s + profile + u"Bookmarks"},
                  {u"0"_s, u"CORP"_s, u""_s, u"NULL"_s, u"https://nameless.example/"_s, u""_s,
                   u"/"_s + profile + u"Bookmarks"}}));
}

void winos_profile_files_test::chopped_lines()
{
    const auto chop = opera_winos::bookmarks_string_chopper;
    QCOMPARE(chop(u"name: my name: Bob "_s, u"name:"_s), u"Bob"_s);
    QCOMPARE(chop(u"name:"_s, u"name:"_s), u""_s);
    QCOMPARE(chop(u" plain "_s, u"name:"_s), u"plain"_s);
    QCOMPARE(chop(u"text"_s, u""_s), u""_s);
}

void winos_profile_files_test::bookmarks_on_one_huge_line()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.file(profile + u"Bookmarks"_s, QByteArray("url:").repeated(2'000'000));
    run.run({u"bookmarks"_s});
    QCOMPARE(run.rows(u"select url from bookmarks"_s), QList<QStringList>({{u"url\u2026[cut]"_s}}));
}

void winos_profile_files_test::top_sites()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}, {u"ben"_s}};
    run.evidence.sqlite(profile + u"favorites.db"_s,
                        "create table favorites(url, name, guid);"
                        "insert into favorites values('https://a/','A','g1')");
    run.evidence.file(winos_profile(u"ben"_s) + u"favorites.db"_s, "no database, only text");
    run.run({u"topsites"_s});
    QCOMPARE(run.rows(u"select bookmark, domain_user, url, title, guid from topsites"_s),
             QList<QStringList>({{u"0"_s, u"CORP"_s, u"https://a/"_s, u"A"_s, u"g1"_s}}));
    QVERIFY(run.log.messages_of(u"opera_winos::extract_topsites"_s).last() ==
            u"[extract_topsites] -Ends");
}

void winos_profile_files_test::session_texts_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("urls");
    QTest::newRow("empty") << QByteArray() << QStringList();
    QTest::newRow("one byte") << QByteArray("h") << QStringList();
    QTest::newRow("to the end") << QByteArray("xhttp://a") << QStringList{u"http://a"_s};
    QTest::newRow("three times the same")
        << QByteArray("http://a\0http://a\0\0http://a\0", 27)
        << QStringList{u"http://a"_s, u"http://a"_s, u"http://a"_s};
    QTest::newRow("any text that begins so") << QByteArray("httpd\0xhttps://b http://c\0", 26)
                                             << QStringList{u"httpd"_s, u"https://b http://c"_s};
    QTest::newRow("decoded, then trimmed")
        << QByteArray("http://a/%C3%BC%20\n\0", 20) << QStringList{u"http://a/ü"_s};
}

void winos_profile_files_test::session_texts()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, urls);
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.file(profile + u"Last Session"_s, content);
    run.run({u"sessions"_s});
    QList<QStringList> rows;
    for (const QString &url : std::as_const(urls))
        rows.append({u"0"_s, u"CORP"_s, url, u"/"_s + profile + u"Last Session"});
    QCOMPARE(run.rows(u"select bookmark, domain_user, url, source_file from sessions "
                      "order by INT"_s),
             rows);
}

void winos_profile_files_test::session_without_zero_takes_linear_time()
{
    evidence_builder evidence;
    evidence.file(u"s"_s, QByteArray("http").repeated(5'000'000));
    const QStringList urls = opera_winos::extract_session_data(evidence.path(u"s"_s));
    QCOMPARE(urls.size(), 1);
    QVERIFY(urls.first().size() > 2'000'000 && urls.first().endsWith(u"\u2026[cut]"_s));
}

void winos_profile_files_test::extension_rows()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.file(extension + u"manifest.json"_s,
                      "{\"name\": \"__MSG_App_Name__ (beta)\", \"description\": "
                      "\"__MSG_missing__\", \"version\": \"1.2\", \"default_locale\": \"de\", "
                      "\"offline_enabled\": true, \"update_url\": \"https://u/\", "
                      "\"icons\": {\"16\": \"i/16.png\", \"128\": \"/i/128.png\", \"48\": 5}}");
    run.evidence.file(extension + u"_locales/de/messages.json"_s,
                      "{\"app_name\": {\"message\": \"Möwe\"}}");
    run.evidence.file(extension + u"i/16.png"_s, "small");
    run.evidence.file(extension + u"i/128.png"_s, "large");
    run.evidence.file(profile + u"Extensions/abcd/1.1_0/manifest.json"_s, R"({"version": 3})");
    run.evidence.file(profile + u"Extensions/Temp/manifest.json"_s, R"({"name": "no version"})");
    run.run({u"extensions"_s});
    const QString inside = u"/"_s + profile + u"Extensions/abcd/"_s;
    QCOMPARE(run.rows(u"select domain_user, name, description, version, default_locale, "
                      "offline_enabled, update_url, path, icon_source_path, icon_copy_path, "
                      "preview_file_path, source_file from extensions order by INT"_s),
             QList<QStringList>(
                 {{u"CORP"_s, u""_s, u""_s, u"3"_s, u""_s, u"NO"_s, u""_s, inside + u"1.1_0", u""_s,
                   u""_s, u""_s, inside + u"1.1_0/manifest.json"},
                  {u"CORP"_s, u"Möwe (beta)"_s, u"__MSG_missing__"_s, u"1.2"_s, u"de"_s, u"YES"_s,
                   u"https://u/"_s, inside + u"1.2_0", inside + u"1.2_0/i/128.png",
                   u"./Images/Source7_ada_abcd_1.2_128.png"_s,
                   u"./Images/Source7_ada_abcd_1.2_128.png"_s, inside + u"1.2_0/manifest.json"}}));
    QFile copy(run.plugin_folder() + u"Images/Source7_ada_abcd_1.2_128.png");
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), QByteArray("large"));
}

void winos_profile_files_test::manifests_data()
{
    QTest::addColumn<QByteArray>("manifest");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("byte-order mark")
        << QByteArray("\xEF\xBB\xBF{\"name\":\"a\"}") << QStringList{u"a"_s};
    QTest::newRow("comments") << QByteArray("// one\n{ /* two } */ \"name\": \"a // \\\" /* b\" }")
                              << QStringList{u"a // \" /* b"_s};
    QTest::newRow("comment without end")
        << QByteArray("{\"name\":\"a\"} /*") << QStringList{u"a"_s};
    QTest::newRow("wrong types") << QByteArray("{\"name\":[1],\"icons\":7,\"version\":{}}")
                                 << QStringList{u""_s};
    QTest::newRow("no JSON") << QByteArray("name: a") << QStringList();
    QTest::newRow("array") << QByteArray("[1]") << QStringList();
    QTest::newRow("a thousand deep")
        << QByteArray("{\"name\":\"a\",\"x\":") + QByteArray("[").repeated(1500) +
               QByteArray("]").repeated(1500) + "}"
        << QStringList();
    QTest::newRow("locale that leaves the folder")
        << QByteArray("{\"name\":\"__MSG_a__\",\"default_locale\":\"../../../..\"}")
        << QStringList{u"__MSG_a__"_s};
}

void winos_profile_files_test::manifests()
{
    QFETCH(QByteArray, manifest);
    QFETCH(QStringList, names);
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.file(extension + u"manifest.json"_s, manifest);
    run.evidence.file(profile + u"Extensions/messages.json"_s, R"({"a":{"message":"told"}})");
    run.run({u"extensions"_s});
    QList<QStringList> rows;
    for (const QString &name : std::as_const(names))
        rows.append({name});
    QCOMPARE(run.rows(u"select name from extensions"_s), rows);
}

void winos_profile_files_test::extension_pictures_stay_in_their_folder()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    const auto add = [&run](const QString &id, const QByteArray &icon) {
        run.evidence.file(profile + u"Extensions/" + id + u"/1/manifest.json",
                          "{\"name\":\"n\",\"icons\":{\"9\":\"" + icon + "\"}}");
    };
    run.evidence.file(profile + u"Cookies"_s, "private");
    add(u"dots"_s, "../../../Cookies");
    add(u"absolute"_s, "/etc/passwd");
    add(u"link"_s, "l.png");
    QVERIFY(QFile::link(u"/etc/passwd"_s, run.evidence.path(profile + u"Extensions/link/1/l.png")));
    add(u"folder"_s, ".");
    run.run({u"extensions"_s});
    QCOMPARE(run.rows(u"select name, icon_source_path, icon_copy_path from extensions"_s),
             QList<QStringList>(4, QStringList{u"n"_s, u""_s, u""_s}));
    QVERIFY(QDir(run.plugin_folder() + u"Images").entryList(QDir::Files).isEmpty());
}

void winos_profile_files_test::extension_pictures_are_never_replaced()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}, {u"ada_x"_s}};
    const auto add = [&run](const QString &account, const QString &folder) -> QString {
        const QString place = winos_profile(account) + u"Extensions/" + folder;
        run.evidence.file(place + u"/manifest.json",
                          R"({"name":"n","version":"1","icons":{"9":"i.png"}})");
        return place + u"/i.png";
    };
    const QString first = add(u"ada"_s, u"x_id/1_0"_s);
    run.evidence.file(first, "first");
    run.evidence.file(add(u"ada"_s, u"x_id/1_1"_s), "second");
    run.evidence.file(add(u"ada_x"_s, u"id/1_0"_s), "third");
    QVERIFY(
        ::link(QFile::encodeName(run.evidence.path(first)).constData(),
               QFile::encodeName(run.evidence.path(add(u"ada"_s, u"z_link/1_0"_s))).constData()) ==
        0);
    run.run({u"extensions"_s});
    const QString name = u"./Images/Source7_ada_x_id_1_i"_s;
    QCOMPARE(run.lines(u"select icon_copy_path from extensions"_s),
             QStringList({name + u".png", name + u"_2.png", name + u".png", name + u"_3.png"}));
    QFile third(run.plugin_folder() + u"Images/Source7_ada_x_id_1_i_3.png");
    QVERIFY(third.open(QIODevice::ReadOnly));
    QCOMPARE(third.readAll(), "third");
}

void winos_profile_files_test::extensions_that_are_a_file()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.file(profile + u"Extensions"_s, "file");
    run.run({u"extensions"_s});
    QVERIFY(run.rows(u"select 1 from extensions"_s).isEmpty());
    QCOMPARE(run.log.messages_of(u"opera_winos::extract_extensions"_s).last(),
             u"[extract_extensions] -Ends"_s);
}

void winos_profile_files_test::pictures()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.sqlite(profile + u"Favicons"_s,
                        "create table favicon_bitmaps(icon_id, last_updated, image_data, width, "
                        "height); create table favicons(id integer, url); "
                        "create table icon_mapping(icon_id integer, page_url);"
                        "insert into favicon_bitmaps values(4,13312345678901234,'png',16,17),"
                        "('../4',0,'png',16,17);"
                        "insert into favicons values(4,'https://a/i.ico');"
                        "insert into icon_mapping values(4,'https://a/'),(4,'https://b/')");
    run.evidence.sqlite(profile + u"thumbnails.db"_s,
                        "create table thumbnails(url, last_used, image_data);"
                        "insert into thumbnails values('https://a/%41',13312345678901234,'png')");
    run.prepare({});
    plugin_static_function::execute_db_command_by_dbpath(
        u"create table favicon(bookmark, system_user, domain_user, id VARCHAR, icon_url, "
        "last_updated INTEGER, relative_path, width, height, fav_urls, source_file, "
        "os_scheme_display, source_count_name)"_s,
        run.database(), u""_s);
    run.find();
    run.extract(); // hands the extractor what it copies files with
    auto &extractor = *run.controller.findChild<opera_winos *>();
    extractor.extract_favicons();
    QCOMPARE(run.lines(u"select domain_user, id, icon_url, last_updated, relative_path, width, "
                       "height, fav_urls, source_file from favicon"_s),
             QStringList({u"CORP|4|https://a/i.ico|1667872078|./Images/4_ada.png|16|17|https://a/;;"
                          "https://b/|/"_s +
                              profile + u"Favicons",
                          u"CORP|../4||||16|17||/"_s + profile + u"Favicons"}));

    // The host has not created this table.
    run.log.clear();
    extractor.extract_thumbnails();
    const QStringList lines = run.log.messages_of(u"opera_winos::extract_thumbnails"_s);
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines.at(1), u"[extract_thumbnails]insert query execution ---FAILED---"_s);
    QVERIFY(QFileInfo::exists(run.plugin_folder() + u"Images/1.png"));
}

QTEST_MAIN(winos_profile_files_test)
#include "profile_files_test.moc"
