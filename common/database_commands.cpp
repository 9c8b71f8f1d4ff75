#include "common/debug_log.h"
#include "common/named_connection.h"
#include "common/plugin_static_function.h"

#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

/// The beginnings of the log lines of a failure; each is followed by its value. The families of
/// helpers differ in blanks, and hosts that search logs rely on the texts as they are.
struct failure_texts {
    QString open_failed;
    QString open_caller;
    QString open_error;
    QString query_failed;
    QString caller;
    QString command;
    QString error;
};

const failure_texts command_by_path = {
    .open_failed = u" Destination Db opening --------FAILED------ "_s,
    .open_caller = u"CALLER FUNCTION -  "_s,
    .open_error = u" error -  "_s,
    .query_failed = u" query  --------FAILED------ db file - "_s,
    .caller = u"CALLER FUNCTION -  "_s,
    .command = u" command -  "_s,
    .error = u" error -  "_s,
};

failure_texts with_caller(failure_texts texts, const QString &caller)
{
    texts.caller = caller;
    return texts;
}

const failure_texts command_with_values_by_path =
    with_caller(command_by_path, u" CALLER FUNCTION -  "_s);
const failure_texts command_by_reference =
    with_caller(command_by_path, u" CALLER FUNCTION -  -  "_s);

const failure_texts list_by_reference = {
    .open_failed = {},
    .open_caller = {},
    .open_error = {},
    .query_failed = u" query  --------FAILED------db file - "_s,
    .caller = u" CALLER FUNCTION -  -  "_s,
    .command = u" command -  "_s,
    .error = u" error -  "_s,
};

const failure_texts list_by_path = {
    .open_failed = u"Destination Db opening --------FAILED------ "_s,
    .open_caller = u"CALLER FUNCTION -  "_s,
    .open_error = u"error -  "_s,
    .query_failed = u"query  --------FAILED------db file - "_s,
    .caller = u"CALLER FUNCTION -  "_s,
    .command = u"command -  "_s,
    .error = u"error -  "_s,
};

/// Who runs a statement for whom, and how a failure reads.
struct call {
    const failure_texts &texts;
    QString signature; ///< of the helper: function info of its log lines
    QString caller;
};

void log_query_failure(const call &by, const QString &database_name, const QString &command,
                       const QSqlQuery &query)
{
    debug_log(by.texts.query_failed + database_name, by.signature);
    debug_log(by.texts.caller + by.caller, by.signature);
    debug_log(by.texts.command + command, by.signature);
    debug_log(by.texts.error + query.lastError().text(), by.signature);
}

/// Executing after a failed prepare would replace the error that explains the failure.
bool run(QSqlQuery &query, const QString &command, const QStringList &bind_values)
{
    if (!query.prepare(command))
        return false;
    for (const QString &value : bind_values)
        query.addBindValue(value);
    return query.exec();
}

bool run_logged(const call &by, QSqlQuery &query, const QString &command,
                const QStringList &bind_values, const QString &database_name)
{
    if (run(query, command, bind_values))
        return true;
    log_query_failure(by, database_name, command, query);
    return false;
}

bool execute(const call &by, const QString &command, const QStringList &bind_values,
             QSqlDatabase &database)
{
    QSqlQuery query(database);
    return run_logged(by, query, command, bind_values, database.databaseName());
}

/// Rows of one column until the end or until cancelled; the query must have been executed.
QStringList column_texts(QSqlQuery &query, int column)
{
    QStringList texts;
    while (!plugin_static_function::bool_cancel_extraction && query.next())
        texts.append(query.value(column).toString());
    return texts;
}

QStringList read_column(const call &by, const QString &command, const QStringList &bind_values,
                        int column, QSqlDatabase &database)
{
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!run_logged(by, query, command, bind_values, database.databaseName()))
        return {};
    return column_texts(query, column);
}

/// A connection named by the helper's and the caller's signature; a failure to open is logged.
class connection_by_path : public named_connection
{
public:
    connection_by_path(const call &by, const QString &path)
        : named_connection(by.signature + by.caller, path, access::read_write,
                           after_use::kept_registered)
    {
        if (is_open())
            return;
        debug_log(by.texts.open_failed + path, by.signature);
        debug_log(by.texts.open_caller + by.caller, by.signature);
        debug_log(by.texts.open_error + error_text(), by.signature);
    }
};

bool execute_by_path(const call &by, const QString &command, const QStringList &bind_values,
                     const QString &path)
{
    connection_by_path connection(by, path);
    return connection.is_open() && execute(by, command, bind_values, connection.database());
}

QStringList list_from_path(const call &by, const QString &command, const QStringList &bind_values,
                           int column, const QString &path, const QString &end_text)
{
    debug_log(u" Start "_s, by.signature);
    QStringList texts;
    {
        connection_by_path connection(by, path);
        if (connection.is_open())
            texts = read_column(by, command, bind_values, column, connection.database());
    }
    debug_log(end_text, by.signature);
    return texts;
}

QStringList list_from_reference(const call &by, const QString &command,
                                const QStringList &bind_values, int column, QSqlDatabase &database)
{
    debug_log(u" Start "_s, by.signature);
    QStringList texts = read_column(by, command, bind_values, column, database);
    debug_log(u" end "_s, by.signature);
    return texts;
}

} // namespace

bool plugin_static_function::execute_db_command_by_dbpath(const QString &command,
                                                          const QString &db_path,
                                                          const QString &caller)
{
    return execute_by_path(
        {command_by_path,
         u"static bool plugin_static_function::execute_db_command_by_dbpath(QString, QString, QString)"_s,
         caller},
        command, {}, db_path);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(
    const QString &command, const QStringList &bind_values, const QString &db_path,
    const QString &caller)
{
    return execute_by_path(
        {command_with_values_by_path,
         u"static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbpath(QString, QStringList, QString, QString)"_s,
         caller},
        command, bind_values, db_path);
}

bool plugin_static_function::execute_db_command_by_dbreference(const QString &command,
                                                               QSqlDatabase &database,
                                                               const QString &caller)
{
    return execute(
        {command_by_reference,
         u"static bool plugin_static_function::execute_db_command_by_dbreference(QString, QSqlDatabase&, QString)"_s,
         caller},
        command, {}, database);
}

bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(
    const QString &command, const QStringList &bind_values, QSqlDatabase &database,
    const QString &caller)
{
    return execute(
        {command_by_reference,
         u"static bool plugin_static_function::execute_db_command_with_addbindvalue_by_dbreference(QString, QStringList, QSqlDatabase&, QString)"_s,
         caller},
        command, bind_values, database);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(const QString &command,
                                                                          int column,
                                                                          QSqlDatabase &database,
                                                                          const QString &caller)
{
    return list_from_reference(
        {list_by_reference,
         u"static QStringList plugin_static_function::get_stringlist_from_db_by_dbreference(QString, int, QSqlDatabase&, QString)"_s,
         caller},
        command, {}, column, database);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(
    const QString &command, const QStringList &bind_values, int column, QSqlDatabase &database,
    const QString &caller)
{
    return list_from_reference(
        {list_by_reference,
         u"static QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbreference(QString, QStringList, int, QSqlDatabase&, QString)"_s,
         caller},
        command, bind_values, column, database);
}

QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(const QString &command,
                                                                     int column,
                                                                     const QString &db_path,
                                                                     const QString &caller)
{
    return list_from_path(
        {list_by_path,
         u"static QStringList plugin_static_function::get_stringlist_from_db_by_dbpath(QString, int, QString, QString)"_s,
         caller},
        command, {}, column, db_path, u" end "_s);
}

QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(
    const QString &command, const QStringList &bind_values, int column, const QString &db_path,
    const QString &caller)
{
    return list_from_path(
        {list_by_path,
         u"static QStringList plugin_static_function::get_stringlist_from_db_with_addbindvalues_by_dbpath(QString, QStringList, int, QString, QString)"_s,
         caller},
        command, bind_values, column, db_path, u" End "_s);
}

bool plugin_static_function::check_value_existence_in_db_by_dbreference(
    const QString &command, int column, const QString &value, const QSqlDatabase &database)
{
    const QString signature =
        u"static bool plugin_static_function::check_value_existence_in_db_by_dbreference(QString, int, QString, QSqlDatabase)"_s;
    QSqlQuery query(database);
    query.setForwardOnly(true);
    if (!run(query, command, {})) {
        debug_log(u"[check_value_existence_in_db_by_dbpath] query --------FAILED------"_s +
                      database.connectionName(),
                  signature);
        debug_log(u"[check_value_existence_in_db_by_dbpath]command"_s + command, signature);
        debug_log(u"[check_value_existence_in_db_by_dbpath] error"_s + query.lastError().text(),
                  signature);
        return false;
    }
    while (!bool_cancel_extraction && query.next()) {
        if (query.value(column).toString() == value)
            return true;
    }
    return false;
}

QStringList plugin_static_function::get_total_tables_list_by_dbpath(const QString &db_path,
                                                                    const QString &caller)
{
    connection_by_path connection(
        {command_by_path,
         u"static QStringList plugin_static_function::get_total_tables_list_by_dbpath(QString, QString)"_s,
         caller},
        db_path);
    return connection.is_open() ? connection.database().tables() : QStringList();
}
