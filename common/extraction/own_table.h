#pragma once

#include <QString>

class guarded_connection;

/// What statements need of a table of the evidence, for a copy of it in the connection's temporary
/// database. The copy has the table's name and an index of our own, so that statements use it in
/// the table's place and their cost depends on nothing that the evidence says of itself.
struct own_table {
    enum class key_type { number, text };

    const char *name;
    const char *key; ///< the column that statements search
    key_type type;
    const char *columns; ///< further ones, separated by commas
    const char *order =
        nullptr; ///< column that orders the rows of one key; else they stay in order
    const char *filter = nullptr; ///< condition for rows that are needed
    bool indexed = true;
    bool first_of_key = false; ///< leaves out further rows of one key
};

/// Makes the copy, outside of a transaction: within one, SQLite refuses all writing once it has met
/// a damaged page. What a damaged page hides is left out, and rows behind it are found again.
/// Empty, or what kept the copy from having all rows; without a table to copy, none is made.
QString make_own_table(guarded_connection &connection, const own_table &table);

/// How a table's columns relate to what its rows store.
enum class column_kind {
    stored,
    amplified, ///< has a default that stands for many times its size
    computed,  ///< not to be named in a statement: preparing it may take any time and memory
};
/// What is logged for a statement that names computed columns.
inline QString computed_columns_error()
{
    return QStringLiteral("the schema computes a column");
}
/// The worst of the columns, which are separated by commas; those that do not exist are stored.
column_kind kind_of(guarded_connection &connection, const QString &table, const QString &columns);

/// The columns as expressions that cut long values.
QString cut_columns(const QString &columns);

/// True when the column holds whole numbers wherever values can be such, so that their order is
/// that of numbers.
bool holds_numbers(guarded_connection &connection, const QString &table, const QString &column);
