#include "macos/opera_macos.h"
#include "tests/support/extraction_case.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QString stored_file =
    u"/Users/ada/Library/Application Support/com.operasoftware.Opera/Bookmarks"_s;
const QString origin_columns =
    u", source_file, artifacts_relation_source_file, os_scheme_display, source_count_name from "_s;
const QString origin = u'|' + stored_file + u"||Shown macOS|Source7";
const QString placed = u"select folder, name from "_s;

QByteArray url(const QByteArray &name)
{
    return "{\"type\":\"url\",\"name\":\"" + name + "\",\"url\":\"u\"}";
}

QByteArray folder(const QByteArray &name, const QByteArray &children)
{
    return "{\"type\":\"folder\",\"name\":\"" + name + "\",\"children\":[" + children + "]}";
}

/// One account with a "Bookmarks" file of the given content.
class bookmark_case : public extraction_case
{
public:
    explicit bookmark_case(const QByteArray &content) : extraction_case(u"macOS"_s)
    {
        accounts = {{u"ada"_s}};
        evidence.file(macos_profile(u"ada"_s) + u"Bookmarks"_s, content);
    }
    /// The reader that no driver calls.
    void scan_lines()
    {
        run({});
        controller.findChild<opera_macos *>()->extract_bookmark();
    }
};

} // namespace

class macos_bookmarks_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whole_rows();
    void folder_paths_data();
    void folder_paths();
    void every_root_in_its_table();
    void nesting_data();
    void nesting();
    void hostile_content_data();
    void hostile_content();
    void values_of_wrong_types();
    void line_scan_whole_rows();
    void line_scan_pairs_within_objects_data();
    void line_scan_pairs_within_objects();
    void top_sites();
    void top_sites_that_cannot_be_read();
};

void macos_bookmarks_test::whole_rows()
{
    bookmark_case run(
        R"({"roots":{"bookmark_bar":{"name":"Bookmarks bar","type":"folder","children":[
            {"type":"url","name":" Grüße ","url":"https://a.example/a%20b?c=%C3%BC%","date_added":
             "13312345678901234","meta_info":{"imageData":"data:,x"},"id":"7"},
            {"type":"url","meta_info":{"other":"x"},"date_added":"0"}]}}})");
    run.run({u"bookmarks"_s, u"speeddials"_s});
    QCOMPARE(run.lines(u"select bookmark, system_user, date_added, name, url, folder, icon_url"_s +
                       origin_columns + u"bookmarks order by INT"_s),
             QStringList(
                 {u"0|ada|1667872078| Grüße |https://a.example/a b?c=ü%|Bookmarks bar/|data:,x"_s +
                      origin,
                  u"0|ada||||Bookmarks bar/|"_s + origin}));
    QVERIFY(run.rows(u"select 1 from speeddials"_s).isEmpty());
}

void macos_bookmarks_test::folder_paths_data()
{
    QTest::addColumn<QByteArray>("root"); // the name and the children of one root
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &root, const QStringList &expected) {
        QTest::newRow(name) << root << expected;
    };
    row("folder and back", folder("R", url("1") + ',' + folder("Work", url("2")) + ',' + url("3")),
        {u"R/|1"_s, u"R/Work/|2"_s, u"R/|3"_s});
    row("folder last", folder("R", url("1") + ',' + folder("W", folder("V", url("2")))),
        {u"R/|1"_s, u"R/W/V/|2"_s});
    row("siblings", folder("R", folder("A", url("1")) + ',' + folder("B", url("2"))),
        {u"R/A/|1"_s, u"R/B/|2"_s});
    row("empty folder adds no level", folder("R", folder("E", "") + ',' + url("1")), {u"R/|1"_s});
    row("nameless root", folder("", folder("A", url("1"))), {u"Folder/A/|1"_s});
    row("nameless folder", folder("R", folder("", url("1")) + ',' + url("2")),
        {u"R/Folder/|1"_s, u"R/|2"_s});
    row("unknown types are passed over",
        folder("R", "{\"type\":\"separator\",\"children\":[" + url("0") + "]}, 5, null, [" +
                        url("0") + "]," + url("1") + ",{}"),
        {u"R/|1"_s});
    // Leaving a folder removes one level of the text: a name that holds "/" leaves its first part.
    row("name with a slash", folder("R", folder("a/b", url("1")) + ',' + url("2")),
        {u"R/a/b/|1"_s, u"R/a/|2"_s});
}

void macos_bookmarks_test::folder_paths()
{
    QFETCH(QByteArray, root);
    QFETCH(QStringList, expected);
    bookmark_case run("{\"roots\":{\"other\":" + root + ",\"synced\":" + folder("S", url("last")) +
                      "}}");
    run.run({u"bookmarks"_s});
    expected.append(u"S/|last"_s); // each root starts anew
    QCOMPARE(run.lines(placed + u"bookmarks order by INT"_s), expected);
}

void macos_bookmarks_test::every_root_in_its_table()
{
    bookmark_case run("{\"version\":1,\"roots\":{\"trash\":" + folder("T", url("0")) +
                      ",\"synced\":" + folder("S", url("3")) + ",\"other\":" +
                      folder("O", url("2")) + ",\"bookmark_bar\":" + folder("B", url("1")) +
                      ",\"custom_root\":{\"name\":\"no root\",\"speedDial\":" +
                      folder("Dial", folder("Group", url("5"))) + ",\"deep\":{\"speedDial\":" +
                      folder("D", url("0")) + "},\"shared\":" + folder("Sh", url("4")) +
                      "}},"
                      "\"speedDial\":" +
                      folder("D", url("0")) + "}");
    run.run({u"bookmarks"_s, u"speeddials"_s});
    QCOMPARE(run.lines(placed + u"bookmarks order by INT"_s),
             QStringList({u"B/|1"_s, u"O/|2"_s, u"S/|3"_s, u"Sh/|4"_s, u"Dial/Group/|5"_s}));
    QCOMPARE(run.lines(u"select bookmark, system_user, folder, name, url, icon_url"_s +
                       origin_columns + u"speeddials order by INT"_s),
             QStringList(u"0|ada|Dial/Group/|5|u|"_s + origin));
    const QString dials = u"opera_macos::extract_11_speeddials"_s;
    QCOMPARE(run.log.messages_of(dials),
             QStringList({u"[extract_11_bookmarks] starts"_s, u"[extract_11_bookmarks] ends"_s}));
}

void macos_bookmarks_test::nesting_data()
{
    QTest::addColumn<int>("folders");
    QTest::addColumn<bool>("readable");
    QTest::newRow("deep") << 500 << true;
    // Deeper than JSON is read: the file counts as none.
    QTest::newRow("too deep") << 1'000 << false;
    QTest::newRow("hostile") << 200'000 << false;
}

void macos_bookmarks_test::nesting()
{
    QFETCH(int, folders);
    QFETCH(bool, readable);
    const QByteArray opening = R"({"type":"folder","name":"f","children":[)";
    bookmark_case run("{\"roots\":{\"other\":" + opening.repeated(folders) + url("deep") +
                      QByteArray("]}").repeated(folders) + "}}");
    run.accounts.append({u"ben"_s});
    run.evidence.file(macos_profile(u"ben"_s) + u"Bookmarks"_s,
                      "{\"roots\":{\"other\":" + folder("R", url("1")) + "}}");
    run.run({u"bookmarks"_s});
    QStringList expected(u"R/|1"_s);
    if (readable)
        expected.prepend(u"f/"_s.repeated(folders) + u"|deep");
    QCOMPARE(run.lines(placed + u"bookmarks order by INT"_s), expected);
}

void macos_bookmarks_test::hostile_content_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no JSON") << QByteArray("bplist00\0\1", 10);
    QTest::newRow("cut off") << "{\"roots\":{\"other\":" + folder("R", url("1"));
    QTest::newRow("array on top") << '[' + folder("R", url("1")) + ']';
    QTest::newRow("no roots") << QByteArray("{\"roots\":[1],\"other\":{\"children\":[]}}");
    QTest::newRow("roots of wrong types")
        << QByteArray(R"({"roots":{"other":[{"children":[]}],"synced":"x","custom_root":7}})");
    QTest::newRow("children of wrong types")
        << QByteArray(R"({"roots":{"other":{"children":{"type":"url"}},"synced":{"children":"x"},)"
                      R"("custom_root":{"speedDial":{"children":5},"x":[]}}})");
}

void macos_bookmarks_test::hostile_content()
{
    QFETCH(QByteArray, content);
    bookmark_case run(content);
    run.run({u"bookmarks"_s, u"speeddials"_s});
    QVERIFY(run.rows(u"select 1 from bookmarks union all select 1 from speeddials"_s).isEmpty());
    QCOMPARE(run.log.messages().last(), u"[pub_extract_artifacts] - END"_s);
}

void macos_bookmarks_test::values_of_wrong_types()
{
    bookmark_case run(R"({"roots":{"other":{"name":5,"children":[
        {"type":"url","name":7,"url":8,"date_added":13312345678901234,"meta_info":{"imageData":9}},
        {"type":"url","name":{},"url":[],"date_added":null,"meta_info":"x"},
        {"type":5,"name":"no"},
        {"type":"folder","name":null,"children":{"0":{"type":"url","name":"no"}}}]}}})");
    run.run({u"bookmarks"_s});
    QCOMPARE(run.lines(u"select date_added, name, url, folder, icon_url from bookmarks"_s),
             QStringList({u"|||Folder/|"_s, u"|||Folder/|"_s}));
}

void macos_bookmarks_test::line_scan_whole_rows()
{
    bookmark_case run(R"({
   "roots": {
      "bookmark_bar": {
         "children": [ {
            "date_added": "13312345678901234",
            "id": "7",
            "meta_info": {
               "name": "of the meta info"
            },
            "name": "Gr\u00FC\u00DFe, \"ada\"",
            "type": "url",
            "url": "https://a.example/a%20b,c"
         }, {
            "name": "without date",
            "url": "https://b.example/"
         } ],
         "date_added": "13312346400000000",
         "name": "Bookmarks bar",
         "type": "folder"
      }
   }
}
)");
    run.scan_lines();
    // Commas and quotes are removed from what the lines hold; the URL stays encoded.
    QCOMPARE(
        run.lines(u"select bookmark, system_user, date_added, name, url, folder"_s +
                  origin_columns + u"bookmarks order by INT"_s),
        QStringList({u"0|ada|1667872078|Grüße \\ada\\|https://a.example/a%20bc|NULL"_s + origin,
                     u"0|ada||without date|https://b.example/|NULL"_s + origin}));
}

void macos_bookmarks_test::line_scan_pairs_within_objects_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected"); // name and URL
    const auto row = [](const char *name, const QByteArray &content, const QStringList &expected) {
        QTest::newRow(name) << content << expected;
    };
    row("URL first", "{\n\"url\": \"u\",\n\"name\": \"n\"\n}\n", {u"n|u"_s});
    row("name of the folder is not the entry's",
        "{\n\"name\": \"folder\",\n\"children\": [ {\n\"url\": \"u\"\n} ]\n}\n", {u"|u"_s});
    row("name of the folder behind it",
        "{\n\"children\": [ {\n\"url\": \"u\"\n} ],\n\"name\": \"f\"\n}", {u"|u"_s});
    row("object inside between URL and name",
        "{\n\"url\": \"u\",\n\"meta_info\": {\n\"x\": \"y\"\n},\n\"name\": \"n\"\n}\n", {u"n|u"_s});
    row("cut off", "{\n\"name\": \"n\",\n\"url\": \"u", {u"n|u"_s});
    row("windows line ends", "{\r\n\"name\": \"n\",\r\n\"url\": \"u\"\r\n}\r\n", {u"n|u"_s});
    row("all on one line", R"({"name": "n", "url": "u"})", {});
    row("closing brackets alone", QByteArray("}\n").repeated(5) + "\"url\": \"u\"", {u"|u"_s});
    row("empty URL", "{\n\"name\": \"n\",\n\"url\": \"\"\n}\n", {u"n|"_s});
    row("deep", QByteArray("{\n").repeated(100'000) + "\"url\": \"u\"\n", {u"|u"_s});
    row("one endless line", "\"url\": \"" + QByteArray(1'000'000, ',') + "u", {u"|u"_s});
}

void macos_bookmarks_test::line_scan_pairs_within_objects()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expected);
    bookmark_case run(content);
    run.scan_lines();
    QCOMPARE(run.lines(u"select name, url from bookmarks order by INT"_s), expected);
}

void macos_bookmarks_test::top_sites()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"favorites.db"_s,
                        "create table favorites(guid, idx, name, url);"
                        "insert into favorites values('g1',0,'t','https://a.example/%7E');"
                        "insert into favorites values('g2',1,'',NULL);"
                        "insert into favorites values('g3',2,'title alone','');"
                        "insert into favorites values(NULL,3,NULL,'url%20alone');"
                        "insert into favorites values('g5',4,' ','');");
    run.run({u"topsites"_s});
    const QString from = u"|/Users/ada/Library/Application Support/com.operasoftware.Opera/"
                         "favorites.db||Shown macOS|Source7"_s;
    QCOMPARE(
        run.lines(u"select bookmark, system_user, url, title, guid"_s + origin_columns +
                  u"topsites order by INT"_s),
        QStringList({u"0|ada|https://a.example/~|t|g1"_s + from, u"0|ada||title alone|g3"_s + from,
                     u"0|ada|url alone|NULL|NULL"_s + from, u"0|ada|| |g5"_s + from}));
}

void macos_bookmarks_test::top_sites_that_cannot_be_read()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}, {u"ben"_s}, {u"cid"_s}};
    run.evidence.file(macos_profile(u"ada"_s) + u"favorites.db"_s, "only a text");
    run.evidence.sqlite(macos_profile(u"ben"_s) + u"favorites.db"_s, "create table favorites(url)");
    run.evidence.sqlite(macos_profile(u"cid"_s) + u"favorites.db"_s,
                        "create table favorites(url, name, guid);"
                        "insert into favorites values('u', 't', 'g')");
    run.run({u"topsites"_s});
    QCOMPARE(run.lines(u"select system_user, url from topsites"_s), QStringList(u"cid|u"_s));
    const QStringList messages = run.log.messages_of(u"opera_macos::extract_topsites"_s);
    QVERIFY(messages.join(u' ').contains(u"file is not a database"_s));
    QVERIFY(messages.join(u' ').contains(u"no such column: name"_s));
    QCOMPARE(messages.last(), u"[extract_topsites] end."_s);
}

QTEST_MAIN(macos_bookmarks_test)
#include "bookmarks_test.moc"
