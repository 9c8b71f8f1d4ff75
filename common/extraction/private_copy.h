#pragma once

#include <QString>

#include <vector>

/// A column that look-ups search. Browsers keep an index on it, or rows so few that none is needed;
/// a file where neither holds would cost the square of its size.
struct searched_column {
    const char *table;
    const char *column;
};

enum class copy_state {
    as_it_was, ///< or with further indexes
    mended,    ///< something was removed: rows that the evidence's schema shows may be missing
    unfit,     ///< what must be removed could not be; not to be read
};

/// Makes the private copy of a database fit to be read by statements that know the browser's own
/// tables. To be called before other connections open it, as changes to its schema do not reach
/// them. Changes go to the copy, and only when needed:
///
/// - Whatever in the schema is neither a table that stores its rows nor an index is removed: a
///   schema can hide work without end in views, virtual tables and triggers. Statements then
///   report the missing table.
/// - Computed columns are removed from their tables; where that fails, so is the table.
/// - Large tables get an index on the searched columns that have none. Rows of one key keep their
///   order.
///
/// A copy that is no database, or damaged, is left as it is.
copy_state prepare_private_copy(const QString &copy, const QString &connection_name,
                                const std::vector<searched_column> &searched_columns);
