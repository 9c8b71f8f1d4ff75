#include "tests/support/check_readers.h"
#include "tests/support/host_tables.h"
#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QByteArray two_visits = "create table urls(id integer primary key, url, title, visit_count, "
                              "typed_count, last_visit_time, hidden);"
                              "create table visits(url, visit_time, visit_duration);"
                              "insert into visits values(1,0,0),(2,0,0)";

} // namespace

class winos_discovery_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void every_descriptor_fits_the_schema();
    void found_files_are_logged_in_order();
    void accounts_by_both_names();
    void selection_is_exact_data();
    void selection_is_exact();
    void cancelled_between_the_sessions();
    void duplicate_names();
};

void winos_discovery_test::every_descriptor_fits_the_schema()
{
    using namespace winos_readers;
    QByteArray tables = host_tables;
    tables.replace("system_user,", "system_user, domain_user,");
    QCOMPARE(faults_of_readers({&history_url, &history_download, &search_items, &cookies,
                                &login_data, &autofill, &autofill_profiles, &credit_cards,
                                &topsites, &favicons, &thumbnails},
                               tables),
             QStringList());
}

void winos_discovery_test::found_files_are_logged_in_order()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}, {u"nobody"_s}};
    const QString profile = winos_profile(u"ada"_s);
    for (const QString &name : {u"History"_s, u"Bookmarks"_s, u"favorites.db"_s, u"Login Data"_s,
                                u"Cookies"_s, u"Web Data"_s, u"thumbnails.db"_s, u"Favicons"_s,
                                u"Extensions/x"_s, u"Current Session"_s, u"Last Session"_s})
        run.evidence.file(profile + name, {});
    run.prepare({});
    run.find();

    const QString at = u"[find_source_file] found at path-->>"_s + run.evidence.path(profile);
    const QString source_at =
        u"[find_source_file] Source file found at path-->>"_s + run.evidence.path(profile);
    QCOMPARE(
        run.log.messages_of(u"opera_winos::find_source_file"_s),
        QStringList({u"[find_source_file] -Starts"_s, at + u"History", at + u"History",
                     at + u"Bookmarks", at + u"favorites.db", at + u"Login Data", at + u"Cookies",
                     at + u"Web Data", at + u"Web Data", at + u"Web Data", at + u"History",
                     u"[find_source_file] Opera Thumbnail Path Found:"_s +
                         run.evidence.path(profile) + u"thumbnails.db",
                     source_at + u"Favicons", source_at + u"Extensions/",
                     source_at + u"Current Session", source_at + u"Last Session",
                     u"[find_source_file] -Ends"_s}));
}

void winos_discovery_test::accounts_by_both_names()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}, {u""_s, u"ben"_s}, {u"ada"_s, u"ada"_s}};
    for (const QString &account : {u"ada"_s, u"ben"_s, u"CORP"_s, u"unlisted"_s})
        run.evidence.sqlite(winos_profile(account) + u"History"_s, two_visits);
    run.run({u"history"_s});
    QCOMPARE(run.rows(u"select system_user, domain_user from history group by 1, 2 "
                      "order by min(INT)"_s),
             QList<QStringList>({{u"ada"_s, u"CORP"_s}, {u"CORP"_s, u""_s}, {u"ben"_s, u""_s}}));
    QCOMPARE(run.rows(u"select 1 from history"_s).size(), 6);
}

void winos_discovery_test::selection_is_exact_data()
{
    QTest::addColumn<int>("engine");
    QTest::addColumn<QStringList>("tables");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("tabs");
    QTest::newRow("engine 2") << 2 << QStringList{u"history"_s} << 2 << 1;
    QTest::newRow("engine 3") << 3 << QStringList{u"history"_s} << 0 << 0;
    QTest::newRow("engine -1") << -1 << QStringList{u"history"_s} << 0 << 0;
    QTest::newRow("no table") << 0 << QStringList{} << 0 << 0;
    QTest::newRow("macOS only") << 0
                                << QStringList{u"favicons"_s, u"thumbnails"_s, u"cached_files"_s,
                                               u"speeddials"_s}
                                << 0 << 0;
    QTest::newRow("twelve")
        << 0 << QStringList{u"sessions"_s,      u"extensions"_s,        u"search_items"_s,
                            u"credits_cards"_s, u"autofill_profiles"_s, u"autofill"_s,
                            u"logins"_s,        u"cookies"_s,           u"topsites"_s,
                            u"bookmarks"_s,     u"downloads"_s,         u"history"_s}
        << 2 << 12;
}

void winos_discovery_test::selection_is_exact()
{
    QFETCH(int, engine);
    QFETCH(QStringList, tables);
    QFETCH(int, rows);
    QFETCH(int, tabs);

    extraction_case run(u"winOS"_s);
    run.engine_type = engine;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(winos_profile(u"ada"_s) + u"History"_s, two_visits);
    QSignalSpy signalled(&run.controller, &opera::signal_tab_processed_of_plugin_overall);
    run.run(tables);
    QCOMPARE(run.rows(u"select 1 from history"_s).size(), rows);
    QCOMPARE(signalled.size(), tabs);
    QCOMPARE(run.log.messages_of(u"opera_winos::extract_plugin_artifacts"_s),
             QStringList({u"[extract_plugins_artifacts] -Starts"_s,
                          u"[extract_plugins_artifacts] -Ends"_s}));
}

void winos_discovery_test::cancelled_between_the_sessions()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.file(winos_profile(u"ada"_s) + u"Current Session"_s, "http://a.example/");
    run.evidence.file(winos_profile(u"ada"_s) + u"Last Session"_s, "http://b.example/");
    run.prepare({u"sessions"_s});
    run.find();
    QSignalSpy tabs(&run.controller, &opera::signal_tab_processed_of_plugin_overall);
    connect(&run.controller, &opera::signal_extracted_records_of_plugin_overall, this,
            [&run](qint64 records) {
                if (records > 0)
                    run.controller.pub_cancel_extraction();
            });
    run.extract();

    QCOMPARE(tabs.size(), 0);
    QCOMPARE(run.rows(u"select url from sessions"_s),
             QList<QStringList>({{u"http://a.example/"_s}}));
    QCOMPARE(run.log.messages_of(u"opera_winos::extract_plugin_artifacts"_s),
             QStringList({u"[extract_plugins_artifacts] -Starts"_s}));
    QVERIFY(run.log.messages_of(u"opera_winos::extract_last_session"_s).isEmpty());
}

void winos_discovery_test::duplicate_names()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(winos_profile(u"ada"_s) + u"History"_s,
                        "create table downloads(full_path,url,start_time,received_bytes,"
                        "total_bytes,end_time);"
                        "insert into downloads(full_path) values('C:\\a\\annual report.pdf')");
    run.run({u"downloads"_s});
    opera_winos extractor;
    extractor.winos_set_destination_location(run.plugin_folder(), {}, run.database());
    QVERIFY(extractor.check_duplicate_file(u"report"_s));
    QVERIFY(!extractor.check_duplicate_file(u"reports"_s));
    QVERIFY(!extractor.check_duplicate_file(u"it's"_s));
    extractor.winos_set_destination_location({}, {}, run.plugin_folder() + u"none.sqlite");
    QVERIFY(!extractor.check_duplicate_file(u"report"_s));
    QVERIFY(!QFileInfo::exists(run.plugin_folder() + u"none.sqlite"));
}

QTEST_MAIN(winos_discovery_test)
#include "discovery_test.moc"
