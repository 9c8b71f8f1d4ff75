#include "macos/opera_macos.h"
#include "tests/support/extraction_case.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QByteArray urls =
    "create table urls(id integer primary key, url, title, visit_count, typed_count, "
    "last_visit_time, hidden, favicon_id);"
    "create table visits(url, visit_time, transition, visit_duration);"
    "insert into urls(url) values('https://a.example/');"
    "insert into urls(url) values('https://b.example/')";

} // namespace

class macos_discovery_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void accounts_in_order_without_duplicates();
    void selection_is_exact_data();
    void selection_is_exact();
    void no_accounts_still_count_every_table();
    void finding_again_starts_from_empty_lists();
    void links_out_of_the_source_are_not_followed();
};

void macos_discovery_test::accounts_in_order_without_duplicates()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"zoe"_s, u"d"_s}, {u""_s}, {u"ada"_s}, {u"zoe"_s, u"other"_s}, {u"gone"_s}};
    for (const QString &account : {u"zoe"_s, u"ada"_s, u"unlisted"_s})
        run.evidence.sqlite(macos_profile(account) + u"History"_s, urls);
    run.run({u"history"_s});
    QCOMPARE(run.rows(u"select system_user from history order by INT"_s),
             QList<QStringList>({{u"zoe"_s}, {u"zoe"_s}, {u"ada"_s}, {u"ada"_s}}));
    QCOMPARE(run.log.messages_of(u"opera_macos::find_source_file"_s),
             QStringList({u"[find_source_file] starts"_s, u"[find_source_file] ends"_s}));
}

void macos_discovery_test::selection_is_exact_data()
{
    QTest::addColumn<int>("engine");
    QTest::addColumn<QStringList>("tables");
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("tabs");
    QTest::newRow("engine 0") << 0 << QStringList{u"history"_s} << 2 << 1;
    QTest::newRow("engine 1") << 1 << QStringList{u"history"_s} << 2 << 1;
    QTest::newRow("engine 2") << 2 << QStringList{u"history"_s} << 2 << 1;
    QTest::newRow("engine 3") << 3 << QStringList{u"history"_s} << 0 << 0;
    QTest::newRow("engine -1") << -1 << QStringList{u"history"_s} << 0 << 0;
    QTest::newRow("case matters") << 0 << QStringList{u"History"_s} << 0 << 0;
    QTest::newRow("nothing") << 0 << QStringList{} << 0 << 0;
    QTest::newRow("named twice") << 0 << QStringList{u"history"_s, u"history"_s} << 2 << 1;
}

void macos_discovery_test::selection_is_exact()
{
    QFETCH(int, engine);
    QFETCH(QStringList, tables);
    QFETCH(int, rows);
    QFETCH(int, tabs);
    extraction_case run(u"macOS"_s);
    run.engine_type = engine;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"History"_s, urls);
    QSignalSpy signalled(&run.controller, &opera::signal_tab_processed_of_plugin_overall);
    run.run(tables);
    QCOMPARE(run.rows(u"select 1 from history"_s).size(), rows);
    QCOMPARE(signalled.size(), tabs);
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_plugin_artifacts"_s),
             QStringList(
                 {u"[extract_plugin_artifacts] starts"_s, u"[extract_plugin_artifacts] ends"_s}));
}

void macos_discovery_test::no_accounts_still_count_every_table()
{
    extraction_case run(u"macOS"_s);
    QSignalSpy tables(&run.controller, &opera::signal_tab_processed_of_plugin_overall);
    run.run({u"search_items"_s, u"history"_s});
    QCOMPARE(tables.size(), 2);
    QCOMPARE(tables.last().first().toInt(), 2);
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_history_11"_s),
             QStringList({u"[extract_history_11] starts"_s}));
    QVERIFY(run.log.messages_of(u"opera_macos::extract_history_url"_s).isEmpty());
}

void macos_discovery_test::finding_again_starts_from_empty_lists()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"History"_s, urls);
    run.prepare({u"history"_s});
    run.find();
    run.find();
    run.extract();
    QCOMPARE(run.rows(u"select 1 from history"_s).size(), 2);
}

void macos_discovery_test::links_out_of_the_source_are_not_followed()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"ada"_s}, {u"ben"_s}};
    evidence_builder outside;
    outside.sqlite(u"History"_s, urls);
    const QString link = run.evidence.path(macos_profile(u"ada"_s)) + u"History"_s;
    QVERIFY(QDir().mkpath(QFileInfo(link).path()));
    QVERIFY(QFile::link(outside.path(u"History"_s), link));
    // A companion that is a link is none of SQLite's.
    run.evidence.sqlite(macos_profile(u"ben"_s) + u"History"_s, urls);
    outside.file(u"secret"_s, "secret");
    QVERIFY(QFile::link(outside.path(u"secret"_s),
                        run.evidence.path(macos_profile(u"ben"_s)) + u"History-wal"_s));

    run.run({u"history"_s});
    QCOMPARE(run.rows(u"select distinct system_user from history"_s),
             QList<QStringList>({{u"ben"_s}}));
    QVERIFY(run.log.has(u"[extract_history_11] file does not lie in the source "
                        "---------FAILED----------"_s +
                        link));
    QVERIFY(!QFileInfo::exists(run.plugin_folder() + u"tmp/History-wal"_s));
}

QTEST_MAIN(macos_discovery_test)
#include "discovery_test.moc"
