#include "common/extraction/private_copy.h"

#include "common/extraction/named_connection.h"

#include <QStringList>
#include <QtSql/QSqlQuery>

#include <optional>

using namespace Qt::StringLiterals;

namespace
{

/// What the schema may hold, told by the text that SQLite goes by when it reads the schema. SQLite
/// itself writes these texts so; the column "type" proves nothing. Indexes of constraints have
/// none.
constexpr QLatin1StringView entries_that_compute =
    " from sqlite_master where sql is not null and not (typeof(sql) = 'text' and "
    "(sql like 'create table %' or sql like 'create index %' or "
    "sql like 'create unique index %'))"_L1;

/// Computed columns. SQLite must not be asked while the schema holds anything else that computes.
constexpr QLatin1StringView computed_columns =
    " from pragma_table_list as t, pragma_table_xinfo(t.name) as c "
    "where t.schema = 'main' and c.hidden in (2, 3)"_L1;

/// Each further one costs a pass over the whole schema.
constexpr int most_columns_removed_singly = 20;

QString quoted(QString name)
{
    return u'"' + name.replace(u'"', u"\"\""_s) + u'"';
}

/// Whether the statement has a row; nothing when it cannot be run.
std::optional<bool> finds(QSqlDatabase &copy, const QString &select)
{
    QSqlQuery query(copy);
    query.setForwardOnly(true);
    if (!query.exec(select))
        return {};
    return query.next();
}

/// A schema that cannot be read does nothing: no statement can then be run. What cannot be asked of
/// one that can be read counts as computed.
bool computes(const QString &connection_name, const QString &copy)
{
    named_connection reading(connection_name, copy, named_connection::access::read_only);
    const auto entry = finds(reading.database(), u"select 1"_s + entries_that_compute);
    if (!entry || *entry)
        return entry.has_value();
    return finds(reading.database(), u"select 1"_s + computed_columns).value_or(true);
}

QStringList column_removals(const QString &connection_name, const QString &copy)
{
    named_connection reading(connection_name, copy, named_connection::access::read_only);
    QSqlQuery query(reading.database());
    query.setForwardOnly(true);
    query.exec(u"select t.name, c.name"_s + computed_columns);
    QStringList statements;
    while (query.next() && statements.size() < most_columns_removed_singly)
        statements.append(u"alter table " + quoted(query.value(0).toString()) + u" drop column " +
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

/// Each step has a connection of its own, which sees the schema as the one before left it.
void remove_what_computes(const QString &connection_name, const QString &copy)
{
    const QString schema_is_data = u"pragma writable_schema = on"_s;
    execute(connection_name, copy, {schema_is_data, u"delete"_s + entries_that_compute});
    execute(connection_name, copy, column_removals(connection_name, copy));
    execute(connection_name, copy,
            {schema_is_data, u"delete from sqlite_master where tbl_name collate nocase in "
                             "(select t.name"_s +
                                 computed_columns + u')'});
}

} // namespace

copy_state prepare_private_copy(const QString &copy, const QString &connection_name,
                                const std::vector<searched_column> &searched_columns)
{
    auto state = copy_state::as_it_was;
    if (computes(connection_name, copy)) {
        remove_what_computes(connection_name, copy);
        if (computes(connection_name, copy))
            return copy_state::unfit;
        state = copy_state::mended;
    }
    QStringList indexes;
    if (!searched_columns.empty()) {
        named_connection reading(connection_name, copy, named_connection::access::read_only);
        indexes = missing_indexes(reading.database(), searched_columns);
    }
    // One that fails is left to the look-ups, which then take longer.
    if (!indexes.isEmpty())
        execute(connection_name, copy, indexes);
    return state;
}
