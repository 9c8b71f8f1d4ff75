#include "common/extraction/private_copy.h"

#include "common/named_connection.h"

#include <QStringList>
#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

QString quoted(QString name)
{
    return u'"' + name.replace(u'"', u"\"\""_s) + u'"';
}

/// The statements that remove from the schema what computes.
QStringList removals(QSqlDatabase &copy)
{
    QSqlQuery query(copy);
    query.setForwardOnly(true);
    query.exec(u"select type, name from sqlite_master where type = 'view' or "
               "(type = 'table' and (sql like 'create virtual%' or exists (select 1 from "
               "pragma_table_xinfo(sqlite_master.name) where hidden in (2, 3))))"_s);
    QStringList statements;
    while (query.next())
        statements.append(u"drop " + query.value(0).toString() + u' ' +
                          quoted(query.value(1).toString()));
    return statements;
}

/// True when SQLite would read a large table from end to end to find a value of the column.
bool needs_index(QSqlDatabase &copy, const QString &table, const QString &column)
{
    static constexpr QLatin1StringView small_table = " limit 1 offset 1000"_L1;
    QSqlQuery query(copy);
    query.setForwardOnly(true);
    if (!query.exec(u"select 1 from " + table + small_table) || !query.next())
        return false;
    if (!query.exec(u"explain query plan select * from " + table + u" where " + column +
                    u" = 'x'") ||
        !query.next())
        return false;
    return query.value(u"detail"_s).toString().startsWith("SCAN"_L1);
}

QStringList missing_indexes(QSqlDatabase &copy, const std::vector<searched_column> &columns)
{
    QStringList statements;
    for (const searched_column &searched : columns) {
        const QString table = QString::fromUtf8(searched.table);
        const QString column = QString::fromUtf8(searched.column);
        if (needs_index(copy, table, column))
            statements.append(u"create index if not exists look_up_" + table + u'_' + column +
                              u" on " + table + u'(' + column + u')');
    }
    return statements;
}

void execute(const QString &connection_name, const QString &path, const QStringList &statements)
{
    named_connection writable(connection_name, path);
    QSqlQuery query(writable.database());
    query.exec(u"pragma synchronous = off"_s); // a copy that a crash damages is of no use anyway
    for (const QString &statement : statements)
        query.exec(statement);
}

} // namespace

bool prepare_private_copy(QSqlDatabase &copy, const QString &connection_name,
                          const std::vector<searched_column> &searched_columns)
{
    if (const QStringList statements = removals(copy); !statements.isEmpty()) {
        execute(connection_name, copy.databaseName(), statements);
        if (!removals(copy).isEmpty())
            return false;
    }
    // One that fails is left to the look-ups, which then take longer.
    if (const QStringList statements = missing_indexes(copy, searched_columns);
        !statements.isEmpty())
        execute(connection_name, copy.databaseName(), statements);
    return true;
}
