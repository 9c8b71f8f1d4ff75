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

/// The columns, separated by commas, as expressions that cut long values.
QString cut_columns(const QString &columns);

/// True when every value of the table is stored once, in its row: no column is computed, and none
/// has a default that stands for many times its size.
bool stores_its_values(guarded_connection &connection, const QString &table);

/// The SELECT that reads columns of one table in the order of its rows, with values cut that stand
/// for more than they take in the file.
QString scan_of(guarded_connection &connection, const QString &table, const QString &columns);
