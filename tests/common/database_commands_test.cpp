#include "common/plugin_static_function.h"
#include "tests/support/recording_log.h"

#include <QTemporaryDir>
#include <QTest>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;
using services = plugin_static_function;

class database_commands_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void failure_lines_data();
    void failure_lines();
    void values_are_bound_in_order();
    void lists_stop_when_cancelled();
    void value_existence();
    void by_path_connections_are_closed_and_replaced();

private:
    std::unique_ptr<QTemporaryDir> directory_;
    QString path_;
    QSqlDatabase database_;
};

void database_commands_test::init()
{
    services::bool_cancel_extraction = false;
    directory_ = std::make_unique<QTemporaryDir>();
    path_ = directory_->filePath(u"d.sqlite"_s);
    database_ = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"held"_s);
    database_.setDatabaseName(path_);
    QVERIFY(database_.open());
    QVERIFY(QSqlQuery(database_).exec(u"create table t(a, b)"_s));
    QVERIFY(QSqlQuery(database_).exec(u"insert into t values('x', 1), (NULL, 2), ('X', 3)"_s));
}

void database_commands_test::cleanup()
{
    database_.close();
    database_ = {};
    QSqlDatabase::removeDatabase(u"held"_s);
}

void database_commands_test::failure_lines_data()
{
    QTest::addColumn<QString>("helper");
    QTest::addColumn<bool>("opens");
    QTest::addColumn<QStringList>("beginnings");
    const QString path_query = u" query  --------FAILED------ db file - "_s;
    const QString command = u" command -  "_s;
    const QString error = u" error -  "_s;
    const QString unopened = u" Destination Db opening --------FAILED------ "_s;
    const QStringList open_lines = {unopened, u"CALLER FUNCTION -  me"_s, error};
    const QStringList list_open_lines = {u" Start "_s,
                                         u"Destination Db opening --------FAILED------ "_s,
                                         u"CALLER FUNCTION -  me"_s, u"error -  "_s};
    const QStringList list_reference_lines = {u" Start "_s,
                                              u" query  --------FAILED------db file - "_s,
                                              u" CALLER FUNCTION -  -  me"_s,
                                              command,
                                              error,
                                              u" end "_s};
    const QStringList list_path_lines = {u" Start "_s, u"query  --------FAILED------db file - "_s,
                                         u"CALLER FUNCTION -  me"_s, u"command -  "_s,
                                         u"error -  "_s};
    QTest::newRow("path") << u"path"_s << true
                          << QStringList{path_query, u"CALLER FUNCTION -  me"_s, command, error};
    QTest::newRow("path, unopened") << u"path"_s << false << open_lines;
    QTest::newRow("values by path")
        << u"values by path"_s << true
        << QStringList{path_query, u" CALLER FUNCTION -  me"_s, command, error};
    QTest::newRow("values by path, unopened") << u"values by path"_s << false << open_lines;
    QTest::newRow("reference") << u"reference"_s << true
                               << QStringList{path_query, u" CALLER FUNCTION -  -  me"_s, command,
                                              error};
    QTest::newRow("values by reference")
        << u"values by reference"_s << true
        << QStringList{path_query, u" CALLER FUNCTION -  -  me"_s, command,
                       u" error -  Parameter count mismatch"_s};
    QTest::newRow("list by reference") << u"list by reference"_s << true << list_reference_lines;
    QTest::newRow("list with values by reference")
        << u"list with values by reference"_s << true << list_reference_lines;
    QTest::newRow("list by path") << u"list by path"_s << true
                                  << list_path_lines + QStringList{u" end "_s};
    QTest::newRow("list by path, unopened")
        << u"list by path"_s << false << list_open_lines + QStringList{u" end "_s};
    QTest::newRow("list with values by path")
        << u"list with values by path"_s << true << list_path_lines + QStringList{u" End "_s};
    QTest::newRow("list with values by path, unopened")
        << u"list with values by path"_s << false << list_open_lines + QStringList{u" End "_s};
    QTest::newRow("tables, unopened") << u"tables"_s << false << open_lines;
}

void database_commands_test::failure_lines()
{
    QFETCH(QString, helper);
    QFETCH(bool, opens);
    QFETCH(QStringList, beginnings);
    const QString path = opens ? path_ : directory_->path();
    const QString bad = u"select nothing from t"_s;
    recording_log log;
    if (helper == "path"_L1)
        QVERIFY(!services::execute_db_command_by_dbpath(bad, path, u"me"_s));
    else if (helper == "values by path"_L1)
        QVERIFY(!services::execute_db_command_with_addbindvalue_by_dbpath(bad, {}, path, u"me"_s));
    else if (helper == "reference"_L1)
        QVERIFY(!services::execute_db_command_by_dbreference(bad, database_, u"me"_s));
    else if (helper == "values by reference"_L1)
        QVERIFY(!services::execute_db_command_with_addbindvalue_by_dbreference(
            u"insert into t values(?, ?)"_s, {u"1"_s, u"2"_s, u"3"_s}, database_, u"me"_s));
    else if (helper == "list by reference"_L1)
        QVERIFY(
            services::get_stringlist_from_db_by_dbreference(bad, 0, database_, u"me"_s).isEmpty());
    else if (helper == "list with values by reference"_L1)
        QVERIFY(services::get_stringlist_from_db_with_addbindvalues_by_dbreference(
                    bad, {}, 0, database_, u"me"_s)
                    .isEmpty());
    else if (helper == "list by path"_L1)
        QVERIFY(services::get_stringlist_from_db_by_dbpath(bad, 0, path, u"me"_s).isEmpty());
    else if (helper == "list with values by path"_L1)
        QVERIFY(
            services::get_stringlist_from_db_with_addbindvalues_by_dbpath(bad, {}, 0, path, u"me"_s)
                .isEmpty());
    else
        QVERIFY(services::get_total_tables_list_by_dbpath(path, u"me"_s).isEmpty());

    const QStringList messages = log.messages();
    QCOMPARE(messages.size(), beginnings.size());
    for (qsizetype i = 0; i < messages.size(); ++i)
        QVERIFY2(messages.at(i).startsWith(beginnings.at(i)), qPrintable(messages.at(i)));
    QVERIFY(log.lines().first().function.startsWith(u"plugin_static_function::"_s));
}

void database_commands_test::values_are_bound_in_order()
{
    QVERIFY(services::execute_db_command_with_addbindvalue_by_dbpath(
        u"insert into t values(?, ?)"_s, {u"first"_s, u"second"_s}, path_, u"me"_s));
    QVERIFY(services::execute_db_command_with_addbindvalue_by_dbreference(
        u"update t set b = ? where a = ?"_s, {u"third"_s, u"first"_s}, database_, u"me"_s));
    QCOMPARE(services::get_stringlist_from_db_with_addbindvalues_by_dbpath(
                 u"select a, b from t where a = ?"_s, {u"first"_s}, 1, path_, u"me"_s),
             QStringList({u"third"_s}));
    QCOMPARE(services::get_total_tables_list_by_dbpath(path_, u"me"_s), QStringList({u"t"_s}));
}

void database_commands_test::lists_stop_when_cancelled()
{
    const QString command = u"select a, b from t order by b"_s;
    QCOMPARE(services::get_stringlist_from_db_by_dbreference(command, 0, database_, u"me"_s),
             QStringList({u"x"_s, QString(), u"X"_s}));
    services::bool_cancel_extraction = true;
    QVERIFY(services::get_stringlist_from_db_by_dbpath(command, 0, path_, u"me"_s).isEmpty());
}

void database_commands_test::value_existence()
{
    const auto exists = [this](const QString &value, const QString &command) {
        return services::check_value_existence_in_db_by_dbreference(command, 0, value, database_);
    };
    QVERIFY(exists(u"x"_s, u"select a from t"_s));
    QVERIFY(exists(u"X"_s, u"select a from t"_s));
    QVERIFY(!exists(u"y"_s, u"select a from t"_s));
    recording_log log;
    QVERIFY(!exists(u"x"_s, u"select nothing from t"_s));
    QCOMPARE(log.messages().size(), 3);
    QCOMPARE(log.messages().at(0),
             u"[check_value_existence_in_db_by_dbpath] query --------FAILED------held"_s);
    QCOMPARE(log.messages().at(1),
             u"[check_value_existence_in_db_by_dbpath]commandselect nothing from t"_s);
    QVERIFY(log.messages().at(2).startsWith(u"[check_value_existence_in_db_by_dbpath] error"_s));
}

void database_commands_test::by_path_connections_are_closed_and_replaced()
{
    for (int run = 0; run < 2; ++run)
        QVERIFY(services::execute_db_command_by_dbpath(u"delete from t"_s, path_, u"me"_s));
    const QString name =
        u"static bool plugin_static_function::execute_db_command_by_dbpath(QString, QString, QString)me"_s;
    QVERIFY(QSqlDatabase::contains(name));
    QVERIFY(!QSqlDatabase::database(name, false).isOpen());
}

QTEST_GUILESS_MAIN(database_commands_test)
#include "database_commands_test.moc"
