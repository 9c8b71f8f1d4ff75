// Sources that are no databases: session files, cache folders, the extensions in "Preferences".

#include "tests/support/extraction_case.h"
#include "tests/support/scripted_metadata.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace
{

const QByteArray marker("\0\0\0\0\0\0\0\0\2\0\0\0", 12);
const QByteArray picture("\x89PNG\r\n\x1a\nrest", 12);

/// A marker and the length of a URL, low byte first.
QByteArray announced(quint32 length)
{
    QByteArray bytes = marker;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.append(static_cast<char>(length >> shift));
    return bytes;
}

QByteArray record(const QByteArray &url)
{
    return announced(static_cast<quint32>(url.size())) + url;
}

/// One account.
class profile_case : public extraction_case
{
public:
    profile_case() : extraction_case(u"macOS"_s) { accounts = {{u"ada"_s}}; }
    QString put(const QString &name, const QByteArray &content) const
    {
        evidence.file(macos_profile(u"ada"_s) + name, content);
        return evidence.path(macos_profile(u"ada"_s) + name);
    }
    QString put_cached(const QString &name, const QByteArray &content) const
    {
        evidence.file(macos_cache(u"ada"_s) + name, content);
        return evidence.path(macos_cache(u"ada"_s) + name);
    }
    QStringList pictures() const
    {
        return QDir(plugin_folder() + u"Images"_s)
            .entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }
};

} // namespace

class macos_profile_files_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sessions_whole_rows();
    void session_markers_data();
    void session_markers();
    void sessions_stay_bounded();
    void sessions_that_cannot_be_opened();
    void cached_file_whole_row();
    void cached_files_that_are_listed();
    void cache_folders_that_are_none();
    void extensions_whole_rows();
    void extension_folders_data();
    void extension_folders();
    void pictures_that_are_not_copied_data();
    void pictures_that_are_not_copied();
    void preferences_without_extensions_data();
    void preferences_without_extensions();
};

void macos_profile_files_test::sessions_whole_rows()
{
    profile_case run;
    run.put(u"Last Tabs"_s, record("https://d.example/"));
    run.put(u"Current Tabs"_s, "SNSS" + record("https://a.example/ü%20") + "x" + record("b"));
    run.put(u"Current Session"_s, record("c"));
    run.run({u"sessions"_s});
    const auto origin = [](const QString &name) -> QString {
        return u"|/"_s + macos_profile(u"ada"_s) + name + u"||Shown macOS|Source7";
    };
    QCOMPARE(
        run.lines(u"select bookmark, system_user, session_name, url, source_file, "
                  "artifacts_relation_source_file, os_scheme_display, source_count_name "
                  "from sessions order by INT"_s),
        QStringList({u"0|ada|Current Tabs|https://a.example/ü%20"_s + origin(u"Current Tabs"_s),
                     u"0|ada|Current Tabs|b"_s + origin(u"Current Tabs"_s),
                     u"0|ada|Current Session|c"_s + origin(u"Current Session"_s),
                     u"0|ada|Last Tabs|https://d.example/"_s + origin(u"Last Tabs"_s)}));
}

void macos_profile_files_test::session_markers_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");
    const auto row = [](const char *name, const QByteArray &content, const QStringList &expected) {
        QTest::newRow(name) << content << expected;
    };
    row("empty", "", {});
    row("one byte", QByteArray(1, '\0'), {});
    row("no marker", QByteArray(100, '\0') + "https://a.example/", {});
    row("marker alone", marker, {});
    row("length cut off", marker + QByteArray("\5\0\0", 3), {});
    row("length at the very end", announced(5), {});
    row("more than eight zeros in front", QByteArray(9, '\0') + record("u"), {u"u"_s});
    row("length past the end", announced(1'000) + "https", {u"https"_s});
    row("length of 4 GB", announced(0xffff'ffff) + "https", {u"https"_s});
    row("length with the sign bit", announced(0x8000'0000) + "https", {u"https"_s});
    row("one byte short", announced(5) + "http", {u"http"_s});
    row("bytes behind the URL", announced(4) + "https", {u"http"_s});
    row("no length", announced(0) + "https", {});
    // The search goes on behind the length, so a marker within a URL counts.
    row("marker within a URL", announced(19) + "u1" + record("u") + "u2",
        {u"u1"_s + QString::fromLatin1(record("u")), u"u"_s});
    row("markers 16 bytes apart", announced(0) + record("u"), {u"u"_s});
    row("marker within the length", marker + record("u"), {});
    row("not UTF-8",
        record("a\xff"
               "b"),
        {u"a\ufffdb"_s});
}

void macos_profile_files_test::session_markers()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expected);
    profile_case run;
    run.put(u"Last Session"_s, content);
    run.run({u"sessions"_s});
    QStringList urls;
    for (const QStringList &row : run.rows(u"select url from sessions order by INT"_s))
        urls += row;
    QCOMPARE(urls, expected);
}

void macos_profile_files_test::sessions_stay_bounded()
{
    profile_case run;
    // 4000 markers that each claim the rest of a file of 64,000 bytes would give 128 MB.
    const QByteArray content = announced(0xffff'ffff).repeated(4'000) + "end";
    run.put(u"Last Session"_s, content);
    run.run({u"sessions"_s});
    QVERIFY(QFileInfo(run.database()).size() < 20 * content.size());
    QCOMPARE(run.rows(u"select url from sessions order by INT desc limit 1"_s),
             QList<QStringList>({{u"end"_s}}));
}

void macos_profile_files_test::sessions_that_cannot_be_opened()
{
    profile_case run;
    const QString folder = run.evidence.path(macos_profile(u"ada"_s));
    QVERIFY(QDir().mkpath(folder + u"Current Tabs"_s)); // a folder
    QCOMPARE(mkfifo(QFile::encodeName(folder + u"Current Session"_s).constData(), 0600), 0);
    QVERIFY(QFile::link(u"/etc/passwd"_s, folder + u"Last Session"_s));
    run.put(u"Last Tabs"_s, record("u"));
    run.run({u"sessions"_s});
    QCOMPARE(run.lines(u"select session_name, url from sessions"_s), QStringList(u"Last Tabs|u"_s));
    const QStringList messages = run.log.messages_of(u"opera_macos::extract_sessions_11"_s);
    QCOMPARE(
        messages.filter(u"file open -----FAILED-----"_s),
        QStringList(
            {u"[extract_sessions_11] file open -----FAILED-----"_s + folder + u"Current Tabs",
             u"[extract_sessions_11] file open -----FAILED-----"_s + folder + u"Current Session"}));
    QCOMPARE(messages.filter(u"----Error---"_s).size(), 2);
    QCOMPARE(messages.last(), u"[extract_sessions_11] Ends"_s);
}

void macos_profile_files_test::cached_file_whole_row()
{
    profile_case run;
    const QString path = run.put_cached(u"Cache/sub/f_000001"_s, picture);
    scripted_metadata metadata;
    metadata.files[path] = every_attribute();
    run.run({u"cached_files"_s});
    const QDateTime birth = QFileInfo(path).birthTime();
    const QString inside = u'/' + macos_cache(u"ada"_s) + u"Cache/sub/f_000001";
    QCOMPARE(
        run.lines(u"select bookmark, system_user, file_name, file_path, file_type, file_size, "
                  "file_date_created, content_creation_date, content_modification_date, "
                  "preview_file_path, export_file_paths, content_type, fs_content_change_date, "
                  "fs_creation_date, fs_name, fs_node_count, last_used_date, all_used_dates, "
                  "wherefroms, latitude, longitude, altitude, torrent_names, source_file, "
                  "artifacts_relation_source_file, os_scheme_display, source_count_name "
                  "from cached_files"_s),
        QStringList(u"0|ada|f_000001|"_s + inside + u"|png|12|" +
                    (birth.isValid() ? QString::number(birth.toSecsSinceEpoch()) : QString()) +
                    u"|1|2|" + inside + u'|' + inside +
                    u"|image/png|3|4|a b.tar.GZ|5|9|7;++::++;8|https://a.example/;x;++::++;"
                    "https://b.example/|-33.87|-70.66|6|one;++::++;two|/" +
                    macos_cache(u"ada"_s) + u"Cache||Shown macOS|Source7"));
    const QStringList attributes =
        run.rows(u"select extended_attributes_key_value, extended_attributes_value_for_search "
                 "from cached_files"_s)
            .first();
    QVERIFY(attributes.at(0).contains(u"<File_Path>"_s + inside + u"</File_Path>"));
    QVERIFY(attributes.at(1).startsWith(u"Ada\u2019s archive;++::++;"_s));
    QCOMPARE(metadata.unreleased(), 0);
}

void macos_profile_files_test::cached_files_that_are_listed()
{
    profile_case run;
    for (const auto &name :
         {u"Cache/index"_s, u"Cache/data_0"_s, u"Cache/data_"_s, u"Cache/sub/index"_s,
          u"Cache/sub/data_file.png"_s, u"Cache/Index"_s, u"Cache/index.html"_s, u"Cache/data1"_s,
          u"Cache/.hidden/.f"_s, u"Cache/data_folder/f"_s, u"Media Cache/index/f"_s})
        run.put_cached(name, "x");
    const QString folder = run.evidence.path(macos_cache(u"ada"_s)) + u"Cache/"_s;
    QVERIFY(QFile::link(folder + u"data1"_s, folder + u"link_to_file"_s));
    QVERIFY(QFile::link(u"/etc/passwd"_s, folder + u"link_out"_s));
    QVERIFY(QFile::link(u"/etc"_s, folder + u"link_to_folder"_s));
    QVERIFY(QFile::link(folder, folder + u"sub/circle"_s));
    QCOMPARE(mkfifo(QFile::encodeName(folder + u"fifo"_s).constData(), 0600), 0);
    run.run({u"cached_files"_s});
    const QString stored = u'/' + macos_cache(u"ada"_s);
    QStringList listed = run.lines(u"select file_path from cached_files order by INT"_s);
    QVERIFY(listed.replaceInStrings(stored, QString()).size() > 0);
    QCOMPARE(listed, QStringList({u"Cache/.hidden/.f"_s, u"Cache/Index"_s, u"Cache/data1"_s,
                                  u"Cache/data_folder/f"_s, u"Cache/index.html"_s,
                                  u"Media Cache/index/f"_s}));
}

void macos_profile_files_test::cache_folders_that_are_none()
{
    profile_case run;
    run.put_cached(u"Cache"_s, "a file");
    QVERIFY(QFile::link(u"/etc"_s, run.evidence.path(macos_cache(u"ada"_s) + u"Media Cache"_s)));
    run.run({u"cached_files"_s});
    QVERIFY(run.rows(u"select 1 from cached_files"_s).isEmpty());
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_cached_files_11"_s).last(),
             u"[extract_cached_files_11] Ends"_s);
}

void macos_profile_files_test::extensions_whole_rows()
{
    profile_case run;
    run.put(u"Preferences"_s, R"({"extensions":{"settings":{
        "abc":{"manifest":{"name":"N","description":"D","version":"1.0","current_locale":"de",
                "default_locale":"en","update_url":"https://u.example/%20","offline_enabled":true,
                "icons":{"16":"i16.png","128":"images/i128.png","48":"i48.png"}},
            "container":"C","was_installed_by_default":false,"was_installed_by_oem":true,"state":1,
            "install_time":"13312345678901234","lastpingday":"13312346400000000","path":"abc/1.0_0"},
        "bcd":{"manifest":{"name":5,"offline_enabled":"x","theme":{"images":
            {"theme_ntp_background":"back.jpg"}}},"state":0,"install_time":13312345678901234,
            "lastpingday":"0","path":"bcd"},
        "cde":null}}})");
    const QString icon = run.put(u"Extensions/abc/1.0_0/images/i128.png"_s, picture);
    run.put(u"Extensions/abc/1.0_0/i16.png"_s, "no");
    run.put(u"Extensions/bcd/back.jpg"_s, "theme");
    run.run({u"extensions"_s});

    const QString profile = u'/' + macos_profile(u"ada"_s);
    const QString origin = u'|' + profile + u"Preferences||Shown macOS|Source7";
    QCOMPARE(
        run.lines(u"select bookmark, system_user, name, description, version, container, "
                  "current_locale, default_locale, offline_enabled, update_url, "
                  "was_installed_by_default, was_installed_by_oem, install_time, lastpingtime, "
                  "path, state_value, icon_source_path, icon_copy_path, preview_file_path, "
                  "source_file, artifacts_relation_source_file, os_scheme_display, "
                  "source_count_name from extensions order by INT"_s),
        QStringList(
            {u"0|ada|N|D|1.0|C|de|en|YES|https://u.example/%20|NO|YES|1667872078|1667872800|"
             "abc/1.0_0|Enable|"_s +
                 profile +
                 u"Extensions/abc/1.0_0/images/i128.png|"
                 "./Images/Source7_ada_abc_1.0_i128.png|./Images/Source7_ada_abc_1.0_i128.png" +
                 origin,
             u"0|ada|5||||||NO||NO|NO|1667872078||bcd|Disable|"_s + profile +
                 u"Extensions/bcd/back.jpg|./Images/Source7_ada_bcd__back.jpg|./Images/Source7_ada_bcd__back.jpg" +
                 origin,
             u"0|ada|||||||NO||NO|NO||||Unknown|||"_s + origin}));
    QCOMPARE(run.pictures(),
             QStringList({u"Source7_ada_abc_1.0_i128.png"_s, u"Source7_ada_bcd__back.jpg"_s}));
    QFile copy(run.plugin_folder() + u"Images/Source7_ada_abc_1.0_i128.png"_s);
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), picture);
}

void macos_profile_files_test::extension_folders_data()
{
    QTest::addColumn<QString>("recorded");
    QTest::addColumn<QString>("folder"); // inside the source
    const QString extensions = macos_profile(u"ada"_s) + u"Extensions/";
    QTest::newRow("relative") << u"abc/1_0"_s << extensions + u"abc/1_0";
    QTest::newRow("of the profile as the computer named it")
        << u"/Users/ada.l/Opera/Extensions/abc/1_0"_s << extensions + u"abc/1_0";
    QTest::newRow("of an application")
        << u"/Applications/Opera.app/Resources/x"_s << u"Applications/Opera.app/Resources/x"_s;
    QTest::newRow("application on another volume")
        << u"/Volumes/Disk/Applications/Opera.app/x"_s << u"Applications/Opera.app/x"_s;
    QTest::newRow("elsewhere") << u"/Users/ada/unpacked"_s << u"Users/ada/unpacked"_s;
}

void macos_profile_files_test::extension_folders()
{
    QFETCH(QString, recorded);
    QFETCH(QString, folder);
    profile_case run;
    run.put(u"Preferences"_s, R"({"extensions":{"settings":{"abc":{"path":")" + recorded.toUtf8() +
                                  R"(","manifest":{"icons":{"16":"i.png"}}}}}})");
    run.evidence.file(folder + u"/i.png", picture);
    run.run({u"extensions"_s});
    QCOMPARE(run.lines(u"select path, icon_source_path, icon_copy_path from extensions"_s),
             QStringList(recorded + u"|/" + folder + u"/i.png|./Images/Source7_ada_abc__i.png"));
}

void macos_profile_files_test::pictures_that_are_not_copied_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("manifest");
    const auto row = [](const char *name, const QByteArray &id, const QByteArray &path,
                        const QByteArray &manifest) {
        QTest::newRow(name) << id << path << manifest;
    };
    const auto icon = [](const QByteArray &file) -> QByteArray {
        return "\"icons\":{\"16\":\"" + file + "\"}";
    };
    const QByteArray up = QByteArray("../").repeated(20);
    row("no such file", "abc", "abc", icon("gone.png"));
    row("folder", "abc", "abc", icon("folder"));
    row("icon leaves its folder", "abc", "abc", icon("../../Cookies"));
    row("icon of another extension", "abc", "abc", icon("../bcd/i.png"));
    row("icon of a folder whose name begins alike", "abc", "abc", icon("../abc2/i.png"));
    row("icon leaves the source", "abc", "abc", icon(up + "etc/passwd"));
    row("icon is a link out of the source", "abc", "abc", icon("link"));
    row("icon is a link to another extension", "abc", "abc", icon("link2"));
    row("path leaves the source", "abc", up + "etc", icon("passwd"));
    row("absolute path leaves the source", "abc", "/../../../../../../../../../etc",
        icon("passwd"));
    row("path is a link out of the source", "abc", "out", icon("passwd"));
    row("theme leaves its folder", "abc", "abc",
        "\"theme\":{\"images\":{\"theme_ntp_background\":\"../../Cookies\"}}");
    row("id that leads out of the result folder", "../../abc", "abc", icon("i.png"));
    row("version that leads out of the result folder", "abc", "abc",
        icon("i.png") + ",\"version\":\"/../../x\"");
    row("id too long for a name", QByteArray(300, 'x'), "abc", icon("i.png"));
    row("icons of wrong types", "abc", "abc", "\"icons\":{\"16\":{\"i.png\":1},\"32\":5}");
    row("icons is a text", "abc", "abc", "\"icons\":\"i.png\"");
    row("no path", "abc", "", icon("i.png"));
}

void macos_profile_files_test::pictures_that_are_not_copied()
{
    QFETCH(QByteArray, id);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, manifest);
    profile_case run;
    run.put(u"Preferences"_s, "{\"extensions\":{\"settings\":{\"" + id + "\":{\"path\":\"" + path +
                                  "\",\"manifest\":{\"name\":\"N\"," + manifest + "}}}}}");
    run.put(u"Cookies"_s, "secret");
    run.put(u"Extensions/abc/i.png"_s, picture);
    run.put(u"Extensions/abc/folder/i.png"_s, picture);
    run.put(u"Extensions/abc2/i.png"_s, picture);
    run.put(u"Extensions/i.png"_s, picture);
    const QString other = run.put(u"Extensions/bcd/i.png"_s, picture);
    const QString extensions = run.evidence.path(macos_profile(u"ada"_s) + u"Extensions/"_s);
    QVERIFY(QFile::link(u"/etc/passwd"_s, extensions + u"abc/link"_s));
    QVERIFY(QFile::link(other, extensions + u"abc/link2"_s));
    QVERIFY(QFile::link(u"/etc"_s, extensions + u"out"_s));
    run.run({u"extensions"_s});
    QCOMPARE(run.lines(u"select name, icon_copy_path, preview_file_path from extensions"_s),
             QStringList(u"N||"_s));
    QVERIFY(run.pictures().isEmpty());
}

void macos_profile_files_test::preferences_without_extensions_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("readable");
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("no JSON") << QByteArray("{\"extensions\":") << false;
    QTest::newRow("array") << QByteArray("[]") << false;
    QTest::newRow("no settings") << QByteArray("{\"extensions\":{\"settings\":[1]}}") << true;
    QTest::newRow("too deep") << QByteArray("{\"a\":").repeated(100'000) << false;
}

void macos_profile_files_test::preferences_without_extensions()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, readable);
    profile_case run;
    const QString path = run.put(u"Preferences"_s, content);
    run.run({u"extensions"_s});
    QVERIFY(run.rows(u"select 1 from extensions"_s).isEmpty());
    QCOMPARE(
        run.log.has(u"[extract_extensions_and_themes] source file opening ---FAILED--- "_s + path),
        !readable);
}

QTEST_MAIN(macos_profile_files_test)
#include "profile_files_test.moc"
