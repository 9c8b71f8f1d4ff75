#pragma once

#include <QString>

#include <span>

/// One column of a result table: name and declared type as they stand in the CREATE statement.
struct result_column {
    const char *name;
    const char *type;
};

/// One table of the result database.
struct result_table {
    const char *name;
    std::span<const result_column> own_columns;
    /// Starts with bookmark, INT, system_user, domain_user and ends with the host's own columns and
    /// the columns that trace a row to its source.
    bool has_common_columns = true;
    const char *create_keyword = "CREATE TABLE";
};

/// The fifteen tables in the order in which they are created.
std::span<const result_table> result_tables();

/// The statement that creates the table unless it exists.
QString create_statement(const result_table &table);
