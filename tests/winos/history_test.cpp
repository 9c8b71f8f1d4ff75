#include "tests/support/extraction_case.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QString profile = winos_profile(u"ada"_s);
const QString history = profile + u"History"_s;

const QByteArray history_schema =
    "create table urls(id integer primary key, url, title, visit_count, typed_count, "
    "last_visit_time, hidden);"
    "create table visits(id integer primary key, url, visit_time, visit_duration);"
    "create table keyword_search_terms(keyword_id, url_id, term);";

const QByteArray current_downloads =
    "create table downloads(id integer primary key, target_path, start_time, received_bytes, "
    "total_bytes, end_time, referrer);"
    "create table downloads_url_chains(id integer, chain_index integer, url longvarchar, primary "
    "key(id, chain_index));";

const QByteArray older_downloads = "create table downloads(id integer primary key, full_path, url, "
                                   "start_time, received_bytes, total_bytes, end_time);";

} // namespace

class winos_history_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void a_row_for_each_visit();
    void durations_data();
    void durations();
    void unreadable_urls_cost_only_their_columns();
    void search_terms();
    void older_downloads_row();
    void current_downloads_rows();
    void download_paths_data();
    void download_paths();
};

void winos_history_test::a_row_for_each_visit()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.sqlite(history,
                        history_schema +
                            "insert into urls values(1,'file:///C:/Users/ada/a%20b.pdf','T',3,1,"
                            "13312345678901234,1);"
                            "insert into urls values(2,'file:///D:/x.txt',NULL,0,0,0,'2');"
                            "insert into visits values(1,2,13312345678901234,0);"
                            "insert into visits values(2,1,'13312346400000000.75',61000000);"
                            "insert into visits values(3,77,NULL,NULL)");
    run.run({u"history"_s});

    const QStringList common = {u"/"_s + history, u"Shown winOS"_s, u"Source7"_s};
    const QString file = u"/Users/ada/a b.pdf"_s;
    QCOMPARE(
        run.rows(u"select bookmark, system_user, domain_user, urls, title, visit_count, "
                 "typed_count, last_visit_date, hidden, url_text, preview_file_path, "
                 "export_file_paths, visit_time, visit_duration, source_file, os_scheme_display, "
                 "source_count_name from history order by INT"_s),
        QList<QStringList>(
            {QStringList{u"0"_s, u"ada"_s, u"CORP"_s, u"file:///D:/x.txt"_s, u"NULL"_s, u"0"_s,
                         u"0"_s, u""_s, u"2"_s, u""_s, u""_s, u""_s, u"1667872078"_s,
                         u"00:00 Min"_s} +
                 common,
             QStringList{u"0"_s, u"ada"_s, u"CORP"_s, u"file:///C:/Users/ada/a b.pdf"_s, u"T"_s,
                         u"3"_s, u"1"_s, u"1667872078"_s, u"YES"_s, file, file, file,
                         u"1667872800"_s, u"01:01 Min"_s} +
                 common,
             QStringList{u"0"_s, u"ada"_s, u"CORP"_s, u"NULL"_s, u"NULL"_s, u"NULL"_s, u"NULL"_s,
                         u""_s, u"NULL"_s, u""_s, u""_s, u""_s, u""_s, u"00:00 Min"_s} +
                 common}));
    QCOMPARE(run.rows(u"select distinct artifacts_relation_source_file from history"_s),
             QList<QStringList>({{u"NULL"_s}}));
}

void winos_history_test::durations_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("largest") << QByteArray("2147483647") << u"35:47 Min"_s;
    QTest::newRow("too large") << QByteArray("2147483648") << u"00:00 Min"_s;
    QTest::newRow("fraction") << QByteArray("'1999999.9'") << u"00:01 Min"_s;
    QTest::newRow("negative") << QByteArray("-3000000") << u""_s;
    QTest::newRow("no number") << QByteArray("'soon'") << u"00:00 Min"_s;
}

void winos_history_test::durations()
{
    QFETCH(QByteArray, stored);
    QFETCH(QString, shown);
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(history,
                        history_schema + "insert into visits values(1,1,0," + stored + ")");
    run.run({u"history"_s});
    QCOMPARE(run.rows(u"select visit_duration from history"_s), QList<QStringList>({{shown}}));
}

void winos_history_test::unreadable_urls_cost_only_their_columns()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(history, "create table visits(url, visit_time, visit_duration);"
                                 "insert into visits values(1,13312345678901234,0)");
    run.run({u"history"_s, u"search_items"_s});
    QCOMPARE(run.rows(u"select urls, visit_time from history"_s),
             QList<QStringList>({{u"NULL"_s, u"1667872078"_s}}));
    const QStringList lines = run.log.messages_of(u"opera_winos::extract_history_url"_s);
    QCOMPARE(lines.size(), 5);
    QCOMPARE(lines.at(1), u"[extract_history_url]source query select from urls ---FAILED---"_s);
    QVERIFY(lines.at(2).contains(u"no such table: urls"_s));
    QCOMPARE(lines.at(3), u"select url,title,visit_count,typed_count,last_visit_time,hidden from "
                          "urls WHERE id=?"_s);
}

void winos_history_test::search_terms()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.sqlite(history, history_schema +
                                     "insert into urls(id,url) values(4,'https://s/?q=a%20b');"
                                     "insert into keyword_search_terms values(2,4,'a b')");
    run.run({u"search_items"_s});
    QCOMPARE(run.rows(u"select bookmark, system_user, domain_user, term, url, source_file "
                      "from search_items"_s),
             QList<QStringList>({{u"0"_s, u"ada"_s, u"CORP"_s, u"a b"_s, u"https://s/?q=a%20b"_s,
                                  u"/"_s + history}}));
}

void winos_history_test::older_downloads_row()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.file(u"Users/ada/b.tar.gz"_s, "12345");
    run.evidence.sqlite(history, older_downloads +
                                     "insert into downloads values(1,'C:\\Users\\ada\\b.tar.gz',"
                                     "' https://a.example/b%2Ez ',13312345678901234,5,6,0)");
    run.run({u"downloads"_s});
    const QString inside = u"/Users/ada/b.tar.gz"_s;
    QCOMPARE(
        run.rows(u"select bookmark, system_user, domain_user, full_path, name, "
                 "file_extension, url, start_time, received_bytes, total_bytes, end_time, "
                 "source_file, referrer, file_existence, file_size, preview_file_path, "
                 "export_file_paths, windows_path from downloads"_s),
        QList<QStringList>(
            {{u"0"_s, u"ada"_s, u"CORP"_s, run.evidence.path(inside.mid(1)), u"b.tar.gz"_s, u"gz"_s,
              u"https://a.example/b.z"_s, u"1667872078"_s, u"5"_s, u"6"_s, u"0"_s, u"/"_s + history,
              u""_s, u"YES"_s, u"5"_s, inside, inside, u"C:\\Users\\ada\\b.tar.gz"_s}}));
    QCOMPARE(run.log.messages_of(u"opera_winos::extract_history_download"_s),
             QStringList(
                 {u"[extract_history_download] -Starts"_s, u"[extract_history_download] -Ends"_s}));
}

void winos_history_test::current_downloads_rows()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(history,
                        current_downloads +
                            "insert into downloads values(5,'C:\\z',0,0,0,0,'https://r.example/');"
                            "insert into downloads values(6,'C:\\none',0,0,0,0,NULL);"
                            "insert into downloads_url_chains values(5,1,' https://second/ '),(5,0,"
                            "'https://first/%41')");
    run.run({u"downloads"_s});
    QCOMPARE(run.rows(u"select url, referrer, file_existence from downloads order by INT"_s),
             QList<QStringList>(
                 {{u"https://first/A https://second/ "_s, u"https://r.example/"_s, u"NO"_s},
                  {u""_s, u"NULL"_s, u"NO"_s}}));
    QCOMPARE(
        run.log.messages_of(u"opera_winos::extract_history_download"_s),
        QStringList({u"[extract_history_download] -Starts"_s,
                     u"[extract_history_download]source_dwnld query --- NOT EXECUTED ---"_s,
                     u"Executing Alternate Query ..."_s, u"[extract_history_download] -Ends"_s}));
}

void winos_history_test::download_paths_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("full_path"); ///< "<root>" stands for the source root
    QTest::addColumn<QString>("inside");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("exists");
    const auto row = [](const char *tag, const char *stored, const char *full_path,
                        const char *inside, const char *name, const char *exists) {
        QTest::newRow(tag) << QString::fromUtf8(stored) << QString::fromUtf8(full_path)
                           << QString::fromUtf8(inside) << QString::fromUtf8(name)
                           << QString::fromUtf8(exists);
    };
    row("there", "C:\\Users\\ada\\x.txt", "<root>Users/ada/x.txt", "/Users/ada/x.txt", "x.txt",
        "YES");
    row("mixed separators", "C:/Users\\ada/x.txt", "<root>Users/ada/x.txt", "/Users/ada/x.txt",
        "x.txt", "YES");
    row("doubled separator", "C:\\\\Users\\ada\\x.txt", "<root>Users/ada/x.txt", "/Users/ada/x.txt",
        "x.txt", "YES");
    row("folder", "C:\\Users\\ada\\", "<root>Users/ada/", "/Users/ada/", "", "YES");
    row("other drive", "D:\\gone.txt", "<root>gone.txt", "/gone.txt", "gone.txt", "NO");
    row("three characters", "C:\\", "C:/", "/C:/", "", "NO");
    row("two characters", "ab", "ab", "/ab", "ab", "NO");
    row("empty", "", "", "", "", "NO");
    row("share", "\\\\server\\s\\x.txt", "//server/s/x.txt", "//server/s/x.txt", "x.txt", "NO");
    row("escape", "C:\\..\\..\\..\\..\\..\\..\\etc\\passwd", "<root>../../../../../../etc/passwd",
        "/../../../../../../etc/passwd", "passwd", "NO");
    row("examiner's own file", "/etc/passwd", "/etc/passwd", "/etc/passwd", "passwd", "NO");
}

void winos_history_test::download_paths()
{
    QFETCH(QString, stored);
    QFETCH(QString, full_path);
    QFETCH(QString, inside);
    QFETCH(QString, name);
    QFETCH(QString, exists);
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.file(u"Users/ada/x.txt"_s, "12345");
    run.evidence.sqlite(history, older_downloads + "insert into downloads(full_path) values('" +
                                     stored.toUtf8() + "')");
    run.run({u"downloads"_s});
    full_path.replace(u"<root>"_s, run.evidence.root());
    QCOMPARE(run.rows(u"select windows_path, full_path, preview_file_path, name, file_existence "
                      "from downloads"_s),
             QList<QStringList>({{stored, full_path, inside, name, exists}}));
    QCOMPARE(run.rows(u"select file_size from downloads"_s).first().first().isEmpty(),
             exists == u"NO");
}

QTEST_MAIN(winos_history_test)
#include "history_test.moc"
