#include "tests/support/extraction_case.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QByteArray current_schema =
    "create table urls(id integer primary key, url longvarchar, title longvarchar, visit_count "
    "integer, typed_count integer, last_visit_time integer, hidden integer, favicon_id integer);"
    "create table visits(id integer primary key, url integer not null, visit_time integer, "
    "from_visit integer, transition integer, segment_id integer, visit_duration integer);"
    "create table keyword_search_terms(keyword_id integer, url_id integer, lower_term, term);";

const QByteArray older_schema =
    "create table urls(id integer primary key, url longvarchar, title longvarchar, visit_count "
    "integer, typed_count integer, last_visit_time integer);"
    "create table keyword_search_terms(keyword_id integer, url_id integer, term);";

const QString history_columns =
    u"select bookmark, system_user, domain_user, id, urls, title, typed_count, hidden, "
    "last_visit_date, visited_detail, visit_count, source_file, artifacts_relation_source_file, "
    "os_scheme_display, source_count_name from history order by INT"_s;

const QString stored_file =
    u"/Users/ada/Library/Application Support/com.operasoftware.Opera/History"_s;

} // namespace

class macos_history_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whole_rows();
    void rows_only_in_the_write_ahead_log();
    void older_schema_of_one_account_runs_the_older_reader_over_all();
    void home_directory_source();
    void search_terms();
    void sources_that_cannot_be_read_data();
    void sources_that_cannot_be_read();
    void missing_visits_table_costs_only_the_visits();
    void two_runs_in_one_process();
    void the_evidence_stays_untouched();
};

void macos_history_test::whole_rows()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s, u"ADA-DOMAIN"_s}};
    run.evidence.sqlite(
        macos_profile(u"ada"_s) + u"History"_s,
        current_schema +
            "insert into urls values(1,' https://a.example/ ','Grüße',3,1,13312345678901234,1,0);"
            "insert into urls values(2,'https://b.example/',NULL,0,0,0,0,0);"
            "insert into urls values(3,x'68692f','  ','many',1.5,'later',2,0);"
            "insert into visits(url,visit_time,transition) values(1,13312345678901234,805306368);"
            "insert into visits(url,visit_time,transition) values(1,13312346400000000,1);"
            "insert into visits(url,visit_time,transition) values(3,0,NULL);"
            "insert into visits(url,visit_time,transition) values(3,0,7);");
    run.run({u"history"_s});

    const QStringList common = {stored_file, u""_s, u"Shown macOS"_s, u"Source7"_s};
    QCOMPARE(
        run.rows(history_columns),
        QList<QStringList>(
            {QStringList{u"0"_s, u"ada"_s, u"NULL"_s, u"1"_s, u"https://a.example/"_s, u"Grüße"_s,
                         u"1"_s, u"YES"_s, u"1667872078"_s,
                         u"Visit Timestamp (UTC): 08-Nov-2022 01:47:58;Transition: "
                         "805306368;;Visit Timestamp (UTC): 08-Nov-2022 02:00:00;Transition: 1"_s,
                         u"3"_s} +
                 common,
             QStringList{u"0"_s, u"ada"_s, u"NULL"_s, u"2"_s, u"https://b.example/"_s, u"NULL"_s,
                         u"0"_s, u"NO"_s, u""_s, u""_s, u"0"_s} +
                 common,
             QStringList{u"0"_s, u"ada"_s, u"NULL"_s, u"3"_s, u"hi/"_s, u""_s, u"1.5"_s, u"NO"_s,
                         u"-11644473600"_s, u"Transition: 7"_s, u"many"_s} +
                 common}));
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_history_11"_s),
             QStringList({u"[extract_history_11] starts"_s, u"[extract_history_11] ends"_s}));
}

void macos_history_test::rows_only_in_the_write_ahead_log()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite_wal(macos_profile(u"ada"_s) + u"History"_s,
                            current_schema +
                                "insert into urls values(1,'https://a.example/','A',3,1,0,0,0)");
    run.run({u"history"_s});
    QCOMPARE(run.rows(u"select urls from history"_s).size(), 1);
}

void macos_history_test::older_schema_of_one_account_runs_the_older_reader_over_all()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}, {u"ben"_s}};
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"History"_s,
                        current_schema + "insert into urls values(1,'https://a.example/','A',3,1,"
                                         "13312345678901234,0,0)");
    run.evidence.sqlite(macos_profile(u"ben"_s) + u"History"_s,
                        older_schema + "insert into urls values(9,'https://b.example/','B',2,0,"
                                       "13312345678901234)");
    run.run({u"history"_s});

    QCOMPARE(run.rows(u"select system_user, id, urls, title, visit_count, typed_count, hidden, "
                      "last_visit_date from history order by INT"_s),
             QList<QStringList>({{u"ada"_s, u"1"_s, u"https://a.example/"_s, u"A"_s, u"3"_s, u"1"_s,
                                  u"NO"_s, u"1667872078"_s},
                                 {u"ada"_s, u"NULL"_s, u"https://a.example/"_s, u"A"_s, u"3"_s,
                                  u"1"_s, u"NULL"_s, u"1667872078"_s},
                                 {u"ben"_s, u"NULL"_s, u"https://b.example/"_s, u"B"_s, u"2"_s,
                                  u"0"_s, u"NULL"_s, u"1667872078"_s}}));
    const QStringList current = run.log.messages_of(u"opera_macos::extract_history_11"_s);
    QCOMPARE(current.size(), 5);
    QCOMPARE(current.at(1), u"[extract_history_11] select_query  ---------FAILED----------"_s);
    QVERIFY(current.at(2).contains(u"no such column"_s));
    QCOMPARE(current.at(3), u"select id,url,title,typed_count,last_visit_time, hidden, "
                            "favicon_id,visit_count from urls"_s);
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_history_url"_s),
             QStringList({u"[extract_history_url] starts"_s, u"[extract_history_url] end"_s}));
}

void macos_history_test::home_directory_source()
{
    extraction_case run(u"macOS"_s);
    run.source_type = u"macOS_Home_Directory"_s;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"History"_s,
                        current_schema + "insert into urls(url) values('https://a.example/')");
    run.run({u"history"_s});
    QCOMPARE(run.rows(u"select source_file, artifacts_relation_source_file from history"_s),
             QList<QStringList>({{stored_file, stored_file}}));
}

void macos_history_test::search_terms()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}, {u"ben"_s}};
    run.evidence.sqlite(
        macos_profile(u"ada"_s) + u"History"_s,
        current_schema +
            "insert into urls values(1,'https://s.example/?q=x',' T ',3,1,13312345678901234,0,0);"
            "insert into keyword_search_terms values(2,1,'x',' X ');"
            "insert into keyword_search_terms values(2,99,'y','no such url')");
    run.evidence.sqlite(macos_profile(u"ben"_s) + u"History"_s,
                        "create table urls(id, url);"
                        "create table keyword_search_terms(keyword_id, url_id, term);"
                        "insert into urls values(5,'https://s.example/?q=z');"
                        "insert into keyword_search_terms values(2,5,'z')");
    run.run({u"search_items"_s});
    const QString first = u"https://s.example/?q=x"_s;
    QCOMPARE(run.rows(u"select system_user, term, url, title, last_visit_time, bookmark, "
                      "source_count_name from search_items order by INT"_s),
             QList<QStringList>(
                 {{u"ada"_s, u" X "_s, first, u" T "_s, u"1667872078"_s, u"0"_s, u"Source7"_s},
                  {u"ada"_s, u" X "_s, first, u"NULL"_s, u"NULL"_s, u"0"_s, u"Source7"_s},
                  {u"ben"_s, u"z"_s, u"https://s.example/?q=z"_s, u"NULL"_s, u"NULL"_s, u"0"_s,
                   u"Source7"_s}}));
    QVERIFY(
        run.log.has(u"[extract_search_items_11] select_query execution ------FAILED--------"_s));
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_search_items"_s).last(),
             u"[extract_search_items] end."_s);
}

void macos_history_test::sources_that_cannot_be_read_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no database") << QByteArray(5000, 'n');
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("one byte") << QByteArray("S");
    QTest::newRow("header alone") << QByteArray("SQLite format 3\0", 16);
}

void macos_history_test::sources_that_cannot_be_read()
{
    QFETCH(QByteArray, content);
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}, {u"ben"_s}};
    run.evidence.file(macos_profile(u"ada"_s) + u"History"_s, content);
    run.evidence.sqlite(macos_profile(u"ben"_s) + u"History"_s,
                        current_schema + "insert into urls(url) values('https://b.example/')");
    run.run({u"history"_s, u"search_items"_s});
    // Both readers skip the broken file; the good one is read by both.
    QCOMPARE(run.rows(u"select system_user from history"_s),
             QList<QStringList>({{u"ben"_s}, {u"ben"_s}}));
    QVERIFY(run.log.has(u"[extract_history_11] select_query  ---------FAILED----------"_s));
    QVERIFY(
        run.log.has(u"[extract_history_url]source_url query execution --------FAILED------->"_s +
                    run.evidence.path(macos_profile(u"ada"_s) + u"History"_s)));
    QCOMPARE(run.log.messages().last(), u"[pub_extract_artifacts] - END"_s);
}

void macos_history_test::missing_visits_table_costs_only_the_visits()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"History"_s,
                        current_schema + "drop table visits;"
                                         "insert into urls(url) values('https://a.example/');"
                                         "insert into urls(url) values('https://b.example/')");
    run.run({u"history"_s});
    QCOMPARE(
        run.rows(u"select urls, visited_detail from history order by INT"_s),
        QList<QStringList>({{u"https://a.example/"_s, u""_s}, {u"https://b.example/"_s, u""_s}}));
    const QStringList messages = run.log.messages_of(u"opera_macos::extract_history_11"_s);
    QCOMPARE(messages.size(), 2 + 2 * 3);
    QCOMPARE(messages.at(1),
             u"[extract_history_11] select_icon_query  ---------FAILED----------"_s);
    QVERIFY(messages.at(2).contains(u"no such table: visits"_s));
    QCOMPARE(messages.at(3),
             u"select visit_time, transition, visit_duration from visits where url = ?"_s);
}

void macos_history_test::two_runs_in_one_process()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"History"_s,
                        current_schema + "insert into urls(url) values('https://a.example/')");
    run.run({u"history"_s});
    run.controller.pub_remove_temporary_asthetics();
    run.run({u"history"_s});
    QCOMPARE(run.rows(u"select 1 from history"_s).size(), 2);
    run.controller.pub_set_clear_db(true);
    QVERIFY(run.rows(u"select 1 from history"_s).isEmpty());
}

void macos_history_test::the_evidence_stays_untouched()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}, {u"ben"_s}};
    run.evidence.sqlite_wal(macos_profile(u"ada"_s) + u"History"_s,
                            current_schema + "insert into urls(url) values('https://a.example/')");
    run.evidence.file(macos_profile(u"ben"_s) + u"History"_s, "no database");
    const auto before = run.evidence.fingerprints();
    run.run({u"history"_s, u"search_items"_s});
    run.controller.pub_remove_temporary_asthetics();
    QCOMPARE(run.rows(u"select 1 from history"_s).size(), 2);
    QCOMPARE(run.evidence.fingerprints(), before);
}

QTEST_MAIN(macos_history_test)
#include "history_test.moc"
