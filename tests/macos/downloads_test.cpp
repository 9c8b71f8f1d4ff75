#include "tests/support/extraction_case.h"
#include "tests/support/scripted_metadata.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QByteArray chains =
    "create table downloads_url_chains(id integer not null, chain_index integer not null, url "
    "longvarchar not null, primary key(id, chain_index));";

const QByteArray current_schema =
    "create table downloads(id integer primary key, guid varchar, current_path longvarchar, "
    "target_path longvarchar, start_time integer, received_bytes integer, total_bytes integer, "
    "state integer, end_time integer, opened integer, referrer varchar, site_url varchar, "
    "tab_url varchar, tab_referrer_url varchar, etag varchar, last_modified varchar, mime_type "
    "varchar, original_mime_type varchar);" +
    chains;

/// Without tab_referrer_url, which the current reader needs.
const QByteArray middle_schema =
    "create table downloads(id integer primary key, target_path longvarchar, start_time integer, "
    "received_bytes integer, total_bytes integer, end_time integer, referrer varchar);" +
    chains;

const QByteArray oldest_schema =
    "create table downloads(id integer primary key, full_path longvarchar, url longvarchar, "
    "start_time integer, received_bytes integer, total_bytes integer, end_time integer);";

const QString current_columns =
    u"select bookmark, system_user, full_path, name, file_extension, file_existence, file_size, "
    "url, start_time, received_bytes, total_bytes, end_time, referrer, state, opened, etag, "
    "mime_type, original_mime_type, last_modified, guid, site_url, tab_url, tab_referrer_url, "
    "date_added, content_creation_date, content_type, preview_file_path, export_file_paths, "
    "fs_content_change_date, fs_creation_date, fs_name, fs_node_count, last_used_date, "
    "all_used_dates, wherefroms, latitude, longitude, altitude, torrent_names, kind, source_file, "
    "artifacts_relation_source_file, extended_attributes_key_value, "
    "extended_attributes_value_for_search, os_scheme_display, source_count_name "
    "from downloads order by INT"_s;

const QString older_columns =
    u"select bookmark, system_user, full_path, name, file_extension, url, start_time, "
    "received_bytes, total_bytes, end_time, source_file, artifacts_relation_source_file, "
    "referrer, file_existence, file_size, date_added, content_creation_date, "
    "content_modification_date, content_type, preview_file_path, export_file_paths, "
    "fs_content_change_date, fs_creation_date, fs_name, fs_node_count, last_used_date, "
    "all_used_dates, first_date, last_date, wherefroms, latitude, longitude, altitude, "
    "torrent_names, extended_attributes_key_value, extended_attributes_value_for_search, "
    "os_scheme_display, source_count_name from downloads order by INT"_s;

const QString stored_file =
    u"/Users/ada/Library/Application Support/com.operasoftware.Opera/History"_s;

const QString no_attributes =
    u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Extended_Attributes_XML_Header/>\n"_s;

QString birth_seconds(const QString &path)
{
    const QDateTime birth = QFileInfo(path).birthTime();
    return birth.isValid() ? QString::number(birth.toSecsSinceEpoch()) : QString();
}

/// One account with a history of one download.
class download_case : public extraction_case
{
public:
    explicit download_case(const QByteArray &sql) : extraction_case(u"macOS"_s)
    {
        accounts = {{u"ada"_s}};
        evidence.sqlite(macos_profile(u"ada"_s) + u"History"_s, sql);
    }
};

} // namespace

class macos_downloads_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whole_row_of_an_existing_file();
    void whole_row_of_a_missing_file();
    void conversions_data();
    void conversions();
    void paths_data();
    void paths();
    void links();
    void home_directory_source();
    void older_schema_of_one_account_runs_the_older_reader_over_all();
    void whole_row_of_the_older_reader();
    void missing_chain_table_costs_only_the_addresses();
    void neither_schema();
};

void macos_downloads_test::whole_row_of_an_existing_file()
{
    download_case run(
        current_schema +
        "insert into downloads values(3,'g','/current','/Users/ada/Downloads/a b.tar.GZ',"
        "13312345678901234,10,11,1,13312346400000000,1,'r','s','t','tr','e',"
        "'Tue, 15 Nov 1994 08:12:31 GMT','m','om');"
        "insert into downloads_url_chains values(3,0,'https://a.example/1');"
        "insert into downloads_url_chains values(3,1,'https://a.example/2');"
        "insert into downloads_url_chains values(4,0,'https://of.another/')");
    const QString relative = u"Users/ada/Downloads/a b.tar.GZ"_s;
    run.evidence.file(relative, "12345");
    const QString path = run.evidence.path(relative);
    scripted_metadata metadata;
    metadata.files[path] = every_attribute();
    run.run({u"downloads"_s});

    QStringList row = run.rows(current_columns).value(0);
    QCOMPARE(row.size(), 46);
    const QString document = row.takeAt(42);
    QCOMPARE(
        row.join(u'|'),
        u"0|ada|/Users/ada/Downloads/a b.tar.GZ|a b.tar.GZ|GZ|YES|5|https://a.example/1;;"
        "https://a.example/2;;|1667872078|10|11|1667872800|r|Complete|YES|e|m|om|784887151|g|s|"
        "t|tr|"_s +
            birth_seconds(path) +
            u"|1|public.zip|/Users/ada/Downloads/a b.tar.GZ|/Users/ada/Downloads/a b.tar.GZ|3|"
            "4|a b.tar.GZ|5|9|7;++::++;8|https://a.example/;x;++::++;https://b.example/|-33.87|"
            "-70.66|6|one;++::++;two|Ada's archive|" +
            stored_file +
            u"||Ada\u2019s archive;++::++;1970-01-01 00:00:01 +0000;++::++;"
            "1970-01-01 00:00:02 +0000;++::++;public.zip;++::++;1970-01-01 00:00:03 +0000;"
            "++::++;1970-01-01 01:00:04 +0100;++::++;a b.tar.GZ;++::++;5;++::++;"
            "https://a.example/;x;https://b.example/;++::++;6;++::++;one;two;++::++;"
            "1970-01-01 00:00:07 +0000;1970-01-01 00:00:08 +0000;++::++;"
            "1970-01-01 00:00:09 +0000|Shown macOS|Source7");
    QVERIFY(document.contains(u"<File_Path>/Users/ada/Downloads/a b.tar.GZ</File_Path>"_s));
    QVERIFY(document.contains(u"<kMDItemAltitude>6</kMDItemAltitude>"_s));
    QVERIFY(metadata.handed_out() > 0);
    QCOMPARE(metadata.unreleased(), 0);
}

void macos_downloads_test::whole_row_of_a_missing_file()
{
    download_case run(current_schema + "insert into downloads(id) values(1);");
    run.run({u"downloads"_s});
    // Between tab_referrer_url and source_file: the 17 columns of what is known of a file.
    QCOMPARE(run.lines(current_columns),
             QStringList(u"0|ada|NULL|||NO||||NULL|NULL||NULL|Unknown|NO|NULL|NULL|NULL||NULL|NULL|"
                         "NULL|NULL|"_s +
                         QString(17, u'|') + stored_file + u"||" + no_attributes +
                         u"||Shown macOS|Source7"));
}

void macos_downloads_test::conversions_data()
{
    QTest::addColumn<QByteArray>("stored"); // state, opened, last_modified
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *stored, const QString &expected) {
        QTest::newRow(stored) << QByteArray(stored) << expected;
    };
    row("0, 0, ''", u"Unknown|NO|"_s);
    row("1, 1, NULL", u"Complete|YES|"_s);
    row("2, 2, 'no date'", u"Incomplete|NO|0"_s);
    row("3, NULL, 'Thu, 01 Jan 1970 00:00:05 GMT'", u"Unknown|NO|5"_s);
    row("4, 'yes', x'00'", u"Unknown|NO|0"_s);
    row("' 1', ' 1', 0", u"Complete|YES|"_s); // an integer column stores these as 1
    row("1.5, 1.5, '0'", u"Unknown|NO|"_s);
}

void macos_downloads_test::conversions()
{
    QFETCH(QByteArray, stored);
    QFETCH(QString, expected);
    download_case run(current_schema +
                      "insert into downloads(id, state, opened, last_modified) values(1, " +
                      stored + ")");
    run.run({u"downloads"_s});
    QCOMPARE(run.lines(u"select state, opened, last_modified from downloads"_s),
             QStringList(expected));
}

void macos_downloads_test::paths_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("expected"); // name, extension, existence, size, preview path
    const auto row = [](const char *name, const QString &target, const QString &expected) {
        QTest::newRow(name) << target << expected;
    };
    row("there", u"/Users/ada/Downloads/x.pdf"_s, u"x.pdf|pdf|YES|3|/Users/ada/Downloads/x.pdf"_s);
    row("relative", u"Users/ada/Downloads/x.pdf"_s,
        u"x.pdf|pdf|YES|3|/Users/ada/Downloads/x.pdf"_s);
    row("folder", u"/Users/ada/Downloads"_s, u"Downloads||YES|3|/Users/ada/Downloads"_s);
    row("dots inside", u"/Users/ada/./x/../Downloads/x.pdf"_s,
        u"x.pdf|pdf|NO||/Users/ada/./x/../Downloads/x.pdf"_s); // there is no folder x
    row("out of the source", u"/../outside.txt"_s, u"outside.txt|txt|NO||/../outside.txt"_s);
    row("far out of the source", u"/Users/../../../../../../../etc/passwd"_s,
        u"passwd||NO||/Users/../../../../../../../etc/passwd"_s);
    row("beside the source", u"/../evidence ü2/outside.txt"_s,
        u"outside.txt|txt|NO||/../evidence ü2/outside.txt"_s);
    row("absolute outside", u"/etc/passwd"_s, u"passwd||NO||/etc/passwd"_s);
    row("ends in a slash", u"/Users/gone/"_s, u"||NO||/Users/gone/"_s);
    row("empty", u""_s, u"||NO||"_s);
    row("blank", u" "_s, u" ||NO|| "_s);
}

void macos_downloads_test::paths()
{
    QFETCH(QString, target);
    QFETCH(QString, expected);
    download_case run(current_schema + "insert into downloads(id, target_path) values(1, '" +
                      target.toUtf8() + "')");
    run.evidence.file(u"Users/ada/Downloads/x.pdf"_s, "123");
    run.evidence.file(u"../outside.txt"_s, "1234");
    run.evidence.file(u"../evidence ü2/outside.txt"_s, "1234");
    run.run({u"downloads"_s});
    QCOMPARE(run.lines(u"select name, file_extension, file_existence, file_size, "
                       "preview_file_path from downloads"_s),
             QStringList(expected));
    QCOMPARE(run.rows(u"select full_path from downloads"_s), QList<QStringList>({{target}}));
}

void macos_downloads_test::links()
{
    download_case run(
        current_schema +
        "insert into downloads(id, target_path) values(1, '/Users/ada/Downloads/inside');"
        "insert into downloads(id, target_path) values(2, '/Users/ada/Downloads/outside');"
        "insert into downloads(id, target_path) values(3, '/Users/ada/Downloads/folder/passwd');"
        "insert into downloads(id, target_path) values(4, '/Users/ada/Downloads/circle')");
    run.evidence.file(u"Users/ada/Downloads/x.pdf"_s, "123");
    const QString folder = run.evidence.path(u"Users/ada/Downloads/"_s);
    QVERIFY(QFile::link(folder + u"x.pdf"_s, folder + u"inside"_s));
    QVERIFY(QFile::link(u"/etc/passwd"_s, folder + u"outside"_s));
    QVERIFY(QFile::link(u"/etc"_s, folder + u"folder"_s));
    QVERIFY(QFile::link(folder + u"circle"_s, folder + u"circle"_s));
    scripted_metadata metadata;
    metadata.files[folder + u"outside"_s] = every_attribute();
    run.run({u"downloads"_s});
    QCOMPARE(
        run.lines(u"select name, file_existence, file_size, kind from downloads order by INT"_s),
        QStringList({u"inside|YES|3|"_s, u"outside|NO||"_s, u"passwd|NO||"_s, u"circle|NO||"_s}));
}

void macos_downloads_test::home_directory_source()
{
    // The recorded path names the account as the computer knew it, the source as it was mounted.
    download_case run(current_schema + "insert into downloads(id, target_path) values(1, "
                                       "'/Users/ada.l/Downloads/x.pdf')");
    run.source_type = u"macOS_Home_Directory"_s;
    run.evidence.file(u"Users/ada/Downloads/x.pdf"_s, "123");
    run.run({u"downloads"_s});
    QCOMPARE(run.lines(u"select full_path, file_existence, file_size, preview_file_path, "
                       "source_file, artifacts_relation_source_file from downloads"_s),
             QStringList(u"/Users/ada.l/Downloads/x.pdf|YES|3|/Users/ada/Downloads/x.pdf|"_s +
                         stored_file + u'|' + stored_file));
}

void macos_downloads_test::older_schema_of_one_account_runs_the_older_reader_over_all()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}, {u"ben"_s}, {u"cid"_s}};
    const auto history = [](const QString &account) -> QString {
        return macos_profile(account) + u"History"_s;
    };
    run.evidence.sqlite(history(u"ada"_s),
                        current_schema + "insert into downloads(id, target_path, referrer, state) "
                                         "values(1, '/a', 'r', 1);"
                                         "insert into downloads_url_chains values(1, 0, 'u')");
    run.evidence.sqlite(history(u"ben"_s),
                        middle_schema + "insert into downloads(id, target_path, referrer) "
                                        "values(2, '/b', 's');"
                                        "insert into downloads_url_chains values(2, 0, 'v')");
    run.evidence.sqlite(history(u"cid"_s),
                        oldest_schema + "insert into downloads(id, full_path, url, total_bytes) "
                                        "values(3, '/c', 'w', 9)");
    run.run({u"downloads"_s});
    QCOMPARE(run.lines(u"select system_user, full_path, url, referrer, total_bytes, state "
                       "from downloads order by INT"_s),
             QStringList({u"ada|/a|u;;|r|NULL|Complete"_s, u"ada|/a|u;;|r|NULL|NULL"_s,
                          u"ben|/b|v;;|s|NULL|NULL"_s, u"cid|/c|w||9|NULL"_s}));
    QCOMPARE(
        run.log.messages_of(u"opera_macos::extract_download_11"_s).filter(u"--->>>"_s),
        QStringList(
            {u"[extract_download_11]select_query execution -----FAILED------ for file --->>>"_s +
                 run.evidence.path(history(u"ben"_s)),
             u"[extract_download_11]select_query execution -----FAILED------ for file --->>>"_s +
                 run.evidence.path(history(u"cid"_s))}));
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_download"_s),
             QStringList({u"[extract_download] starts"_s, u"[extract_download] ends"_s}));
}

void macos_downloads_test::whole_row_of_the_older_reader()
{
    download_case run(oldest_schema +
                      "insert into downloads values(3,'/Users/ada/Downloads/a b.tar.GZ',"
                      "'https://a.example/1',13312345678901234,10,11,13312346400000000)");
    const QString relative = u"Users/ada/Downloads/a b.tar.GZ"_s;
    run.evidence.file(relative, "12345");
    const QString path = run.evidence.path(relative);
    scripted_metadata metadata;
    metadata.files[path] = every_attribute();
    metadata.files[path].attributes.remove(u"kMDItemWhereFroms"_s);
    run.run({u"downloads"_s});

    QStringList row = run.rows(older_columns).value(0);
    QCOMPARE(row.size(), 38);
    QVERIFY(row.takeAt(34).contains(u"<kMDItemAltitude>6</kMDItemAltitude>"_s));
    QVERIFY(row.takeAt(34).startsWith(u"Ada\u2019s archive;++::++;"_s));
    QCOMPARE(row.join(u'|'),
             u"0|ada|/Users/ada/Downloads/a b.tar.GZ|a b.tar.GZ|GZ|https://a.example/1|1667872078|"
             "10|11|1667872800|"_s +
                 stored_file + u"|||YES|5|" + birth_seconds(path) +
                 u"|1|2|public.zip|/Users/ada/Downloads/a b.tar.GZ|/Users/ada/Downloads/a b.tar.GZ|"
                 "3|4|a b.tar.GZ|5|9|7;++::++;8|7|8||-33.87|-70.66|6|one;++::++;two|Shown macOS|"
                 "Source7");
    QCOMPARE(metadata.unreleased(), 0);
}

void macos_downloads_test::missing_chain_table_costs_only_the_addresses()
{
    download_case run(current_schema + "drop table downloads_url_chains;"
                                       "insert into downloads(id, guid) values(1, 'g');"
                                       "insert into downloads(id, guid) values(2, 'h')");
    run.run({u"downloads"_s});
    QCOMPARE(run.lines(u"select guid, url from downloads order by INT"_s),
             QStringList({u"g|"_s, u"h|"_s}));
    const QStringList messages = run.log.messages_of(u"opera_macos::extract_download_11"_s);
    QCOMPARE(messages.size(), 2 + 2 * 3);
    QCOMPARE(messages.at(1),
             u"[extract_download_11]source_url_chain_query execution -----FAILED------ for file "
             "--->>>"_s +
                 run.evidence.path(macos_profile(u"ada"_s) + u"History"_s));
    QCOMPARE(messages.at(3), u"select url from downloads_url_chains where id = ?"_s);
}

void macos_downloads_test::neither_schema()
{
    download_case run("create table downloads(id, target_path)");
    run.run({u"downloads"_s});
    QVERIFY(run.rows(u"select 1 from downloads"_s).isEmpty());
    const QStringList older = run.log.messages_of(u"opera_macos::extract_download"_s);
    QCOMPARE(older.size(), 5);
    QCOMPARE(older.at(1),
             u"[extract_download]source_dwnld query execution --------FAILED--2----"_s);
    QCOMPARE(older.last(), u"[extract_download] ends"_s);
}

QTEST_MAIN(macos_downloads_test)
#include "downloads_test.moc"
