#include "common/plugin_static_function.h"
#include "common/result_schema.h"
#include "tests/support/extraction_case.h"

#include <QCryptographicHash>
#include <QSignalSpy>
#include <QTest>
#include <QThread>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

class controller_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void create_statements_are_the_agreed_ones();
    void creating_twice_changes_nothing();
    void a_database_that_cannot_open_is_logged();
    void tables_of_another_kind_are_logged_and_skipped();
    void clearing_a_missing_database();
    void clearing_obeys_engine_type_and_list_data();
    void clearing_obeys_engine_type_and_list();
    void result_location_data();
    void result_location();
    void unknown_scheme_is_logged_and_ends_normally();
    void ios_source_yields_no_rows();
    void cancelling_first_leaves_the_start_alone();
    void counts_and_names();
    void records_are_cleared_as_agreed();
    void temporary_data_goes_and_nothing_else();
    void mistakes_of_hosts_are_logged();
    void what_became_of_each_file_is_told();
};

void controller_test::create_statements_are_the_agreed_ones()
{
    QStringList statements;
    for (const result_table &table : result_tables())
        statements.append(create_statement(table));
    QCOMPARE(statements.size(), 15);
    // Digest of the fifteen statements, one a line, as agreed with hosts.
    QCOMPARE(QCryptographicHash::hash(statements.join(u'\n').toUtf8(), QCryptographicHash::Sha256)
                 .toHex(),
             "edc75ae8ed5b86a0a0d2e7f816d1293bfe7c8d18657acf4bb5fb0369a1e7e4f2"_ba);
}

void controller_test::creating_twice_changes_nothing()
{
    extraction_case run(u"macOS"_s);
    run.prepare({});
    const QString everything = u"select name, sql from sqlite_master order by name"_s;
    const auto before = run.rows(everything);
    QCOMPARE(before.size(), 15);
    run.log.clear();
    run.controller.pub_create_db_tables();
    QCOMPARE(run.rows(everything), before);
    QCOMPARE(run.log.messages(), QStringList({u"[create_destination_database] starts"_s,
                                              u"[create_db_tables_11] starts"_s,
                                              u"[create_destination_database] ends"_s}));
}

void controller_test::a_database_that_cannot_open_is_logged()
{
    extraction_case run(u"macOS"_s);
    run.prepare({});
    QVERIFY(QFile::remove(run.database()));
    QVERIFY(QDir().mkdir(run.database()));
    run.log.clear();
    run.controller.create_db_tables();
    const QStringList messages = run.log.messages();
    QCOMPARE(messages.size(), 3);
    QCOMPARE(messages.at(1), u"[create_db_tables_11]Destination Db opening -----FAILED------ "_s);
    QVERIFY(!messages.at(2).isEmpty());
}

void controller_test::tables_of_another_kind_are_logged_and_skipped()
{
    extraction_case run(u"macOS"_s);
    run.prepare({});
    QVERIFY(QFile::remove(run.database()));
    QFile file(run.database());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, 'x'));
    file.close();
    run.log.clear();
    run.controller.create_db_tables();
    const QStringList messages = run.log.messages();
    QCOMPARE(messages.filter(u" table creation -----FAILED---- "_s).size(), 15);
    QVERIFY(messages.contains(u" table creation -----FAILED---- history"_s));
}

void controller_test::clearing_obeys_engine_type_and_list_data()
{
    QTest::addColumn<int>("engine");
    QTest::addColumn<QStringList>("tables");
    QTest::addColumn<bool>("clear");
    QTest::addColumn<int>("left");
    QTest::newRow("engine 0") << 0 << QStringList{u"nothing"_s, u"history"_s} << true << 0;
    QTest::newRow("engine 2") << 2 << QStringList{u"history"_s} << true << 0;
    QTest::newRow("engine 3") << 3 << QStringList{u"history"_s} << true << 1;
    QTest::newRow("engine -1") << -1 << QStringList{u"history"_s} << true << 1;
    QTest::newRow("other table") << 0 << QStringList{u"cookies"_s} << true << 1;
    QTest::newRow("no list") << 0 << QStringList{} << true << 1;
    QTest::newRow("false") << 0 << QStringList{u"history"_s} << false << 1;
}

void controller_test::clearing_obeys_engine_type_and_list()
{
    QFETCH(int, engine);
    QFETCH(QStringList, tables);
    QFETCH(bool, clear);
    QFETCH(int, left);
    extraction_case run(u"macOS"_s);
    run.engine_type = engine;
    run.prepare(tables);
    QVERIFY(plugin_static_function::execute_db_command_by_dbpath(
        u"insert into history(urls) values('x')"_s, run.database(), u"test"_s));
    run.log.clear();
    run.controller.pub_set_clear_db(clear);
    QCOMPARE(run.rows(u"select 1 from history"_s).size(), left);
    if (tables.contains(u"nothing"_s)) {
        const QStringList messages = run.log.messages();
        QCOMPARE(messages.size(), 4);
        QCOMPARE(messages.at(1), u"CALLER FUNCTION -  void opera::clear_db_tables()"_s);
        QCOMPARE(messages.at(2), u" command -  delete from 'nothing'"_s);
    }
}

void controller_test::clearing_a_missing_database()
{
    extraction_case run(u"macOS"_s);
    run.prepare({u"history"_s});
    QVERIFY(QFile::remove(run.database()));
    run.log.clear();
    run.controller.pub_set_clear_db(true);
    QCOMPARE(run.log.messages(),
             QStringList({u"[clear_db_tables]DB not exists and so returning..."_s}));
    QVERIFY(!QFileInfo::exists(run.database()));
}

void controller_test::result_location_data()
{
    QTest::addColumn<QString>("suffix");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("database");
    QTest::newRow("plain") << u""_s << u"Opera"_s << u"Opera/Opera.sqlite"_s;
    QTest::newRow("slash") << u"/"_s << u"Opera"_s << u"Opera/Opera.sqlite"_s;
    QTest::newRow("blanks") << u""_s << u"My Opera 2"_s << u"My_Opera_2/My_Opera_2.sqlite"_s;
}

void controller_test::result_location()
{
    QFETCH(QString, suffix);
    QFETCH(QString, name);
    QFETCH(QString, database);

    class named_opera : public opera
    {
    public:
        QString name;
        QString pub_get_artifact_name() override { return name; }
    };
    QTemporaryDir results;
    named_opera controller;
    controller.name = name;
    controller.pub_set_result_directory(results.path() + u"/deep/er"_s + suffix);
    controller.pub_create_db_tables();
    const QString root = results.path() + u"/deep/er/Artifacts_Result/"_s;
    QVERIFY(QFileInfo(root + database).isFile());
    const QString folder = QFileInfo(root + database).path();
    QVERIFY(QFileInfo(folder + u"/tmp"_s).isDir());
    QVERIFY(QFileInfo(folder + u"/Images"_s).isDir());
}

void controller_test::unknown_scheme_is_logged_and_ends_normally()
{
    extraction_case run(u"macos"_s);
    run.prepare({u"history"_s});
    run.log.clear();
    QSignalSpy records(&run.controller, &opera::signal_extracted_records_of_plugin_overall);
    run.find();
    run.extract();
    const QString line =
        u"------FAILED------- supported os scheme internal not matched, received os scheme "
        u"internal =  macos, plugin name is Opera"_s;
    QCOMPARE(run.log.messages(), QStringList({line, u"[pub_extract_artifacts] - START"_s, line,
                                              u"[pub_extract_artifacts] - END"_s}));
    QCOMPARE(run.log.lines().first().function, u"opera::pub_find_source_file"_s);
    QCOMPARE(records.size(), 2);
}

void controller_test::ios_source_yields_no_rows()
{
    extraction_case run(u"iOS_UID"_s);
    QSignalSpy records(&run.controller, &opera::signal_extracted_records_of_plugin_overall);
    run.run({u"history"_s});
    QCOMPARE(records.size(), 2);
    QCOMPARE(records.last().first().toLongLong(), 0);
    QCOMPARE(run.log.messages().last(), u"[pub_extract_artifacts] - END"_s);
}

void controller_test::cancelling_first_leaves_the_start_alone()
{
    extraction_case run(u"macOS"_s);
    run.prepare({u"history"_s});
    run.controller.pub_cancel_extraction();
    run.log.clear();
    QSignalSpy records(&run.controller, &opera::signal_extracted_records_of_plugin_overall);
    run.extract();
    QCOMPARE(run.log.messages(), QStringList({u"[pub_extract_artifacts] - START"_s}));
    QCOMPARE(records.size(), 1);
    QCOMPARE(records.first().first().toLongLong(), 0);

    // The same controller serves a further source.
    run.controller.pub_set_essentials();
    recording_log::switch_on();
    run.extract();
    QCOMPARE(run.log.messages().last(), u"[pub_extract_artifacts] - END"_s);
}

void controller_test::counts_and_names()
{
    plugin_static_function::set_essentials();
    QCOMPARE(plugin_static_function::get_source_count_name(), u"Source-1"_s);
    plugin_static_function::set_source_count(12);
    QCOMPARE(plugin_static_function::get_source_count_name(), u"Source12"_s);
}

void controller_test::records_are_cleared_as_agreed()
{
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info general = {true, true, true,
                                                                    true, true, u"x"_s};
    plugin_static_function::clear_variables_mirva_and_artifact_common_general_info(general);
    QVERIFY(!general.reserved_flag_1 && !general.debug_mode_status &&
            !general.debug_print_on_terminal && !general.debug_print_in_file);
    QVERIFY(general.debug_encryption_status);
    QVERIFY(general.debug_file_path.isEmpty());
}

void controller_test::temporary_data_goes_and_nothing_else()
{
    // Before a result directory is set there is no temporary folder; an empty path must not be
    // taken for the current one.
    QTemporaryDir current;
    const QString before = QDir::currentPath();
    QDir::setCurrent(current.path());
    opera controller;
    controller.pub_remove_temporary_asthetics();
    QDir::setCurrent(before);
    QVERIFY(QFileInfo::exists(current.path()));

    extraction_case run(u"macOS"_s);
    run.prepare({});
    const QString elsewhere = run.result_folder() + u"elsewhere"_s;
    QVERIFY(QDir().mkpath(elsewhere + u"/kept"_s));
    QVERIFY(QFile::link(elsewhere, run.plugin_folder() + u"tmp/link"_s));
    run.controller.pub_remove_temporary_asthetics();
    QVERIFY(!QFileInfo::exists(run.plugin_folder() + u"tmp"_s));
    QVERIFY(QFileInfo::exists(elsewhere + u"/kept"_s));
}

void controller_test::mistakes_of_hosts_are_logged()
{
    extraction_case run(u"macOS"_s);
    run.prepare({u"history"_s});
    run.log.clear();
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info source;
    source.virtual_source_path = run.result_folder() + u"missing"_s;
    run.controller.pub_set_source_info(source);
    QCOMPARE(run.log.messages().size(), 3);

    // Writes neither to the root of the file system nor to the current folder.
    run.controller.pub_set_result_directory({});
    run.log.clear();
    run.controller.pub_create_db_tables();
    QVERIFY(run.log.messages().contains(
        u"[create_db_tables_11]Destination Db opening -----FAILED------ "_s));
    QVERIFY(!QFileInfo::exists(u"/Artifacts_Result"_s));
}

void controller_test::what_became_of_each_file_is_told()
{
    extraction_case run(u"macOS"_s);
    run.accounts = {{u"anna"_s}, {u"bob"_s}, {u"eve"_s}};
    const QString profile = u"Users/%1/Library/Application Support/com.operasoftware.Opera/"_s;
    for (const extraction_case::account &one : std::as_const(run.accounts)) {
        const QString folder = run.evidence.root() + profile.arg(one.system_user);
        QVERIFY(QDir().mkpath(folder));
        QFile history(folder + u"History");
        QVERIFY(history.open(QIODevice::WriteOnly));
        history.write(QByteArray(4096, 'x'));
    }
    const QString outside = run.result_folder() + u"outside"_s;
    const QString link = run.evidence.root() + profile.arg(u"bob") + u"History";
    QVERIFY(QFile::rename(link, outside) && QFile::link(outside, link));
    const QString older = run.evidence.root() + profile.arg(u"eve") + u"History";
    QVERIFY(QFile::remove(older));
    QVERIFY(plugin_static_function::execute_db_command_by_dbpath(
        u"create table urls as select 'u' url, 't' title, 1 visit_count, 0 typed_count, 0 "
        "last_visit_time"_s,
        older, u"test"_s));

    // Driven by a thread of its own: counts still come in order.
    run.prepare({u"history"_s});
    QList<qint64> counts;
    connect(&run.controller, &opera::signal_extracted_records_of_plugin_overall, this,
            [&counts](qint64 records) { counts.append(records); });
    const std::unique_ptr<QThread> worker(QThread::create([&run] {
        run.find();
        run.extract();
    }));
    worker->start();
    QVERIFY(worker->wait());
    QCoreApplication::processEvents();
    QVERIFY(std::ranges::is_sorted(counts));
    QCOMPARE(counts.last(), 1);

    QCOMPARE(run.controller.property("found_files").toStringList().size(), 3);
    QStringList told;
    const QVariantList record = run.controller.property("reading_record").toList();
    for (const QVariant &one : record) {
        const QVariantMap entry = one.toMap();
        QVERIFY(entry[u"path"_s].toString() ==
                u'/' + profile.arg(entry[u"account"_s].toString()) + u"History");
        told.append(entry[u"table"_s].toString() + u' ' + entry[u"account"_s].toString() + u' ' +
                    entry[u"reader"_s].toString() + u' ' + entry[u"rows"_s].toString() + u' ' +
                    entry[u"outcome"_s].toString());
        QCOMPARE(entry[u"sentence"_s].toString().isEmpty(),
                 entry[u"outcome"_s].toString().startsWith(u"read"_s));
    }
    QCOMPARE(told, QStringList({u"history anna extract_history_11 0 damaged"_s,
                                u"history bob extract_history_11 0 refused"_s,
                                u"history eve extract_history_11 0 unknown schema"_s,
                                u"history anna extract_history_url 0 damaged"_s,
                                u"history bob extract_history_url 0 refused"_s,
                                u"history eve extract_history_url 1 read by an older reader"_s}));

    // A result that another program holds keeps nothing.
    QVERIFY(QFile::remove(run.database()));
    QVERIFY(QDir().mkdir(run.database()));
    run.extract();
    const QVariantList lost = run.controller.property("reading_record").toList();
    QVERIFY(!lost.isEmpty());
    QCOMPARE(lost.last().toMap()[u"outcome"_s].toString(), u"not committed"_s);
}

QTEST_MAIN(controller_test)
#include "controller_test.moc"
