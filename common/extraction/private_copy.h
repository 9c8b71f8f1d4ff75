#pragma once

#include <QString>
#include <QtSql/QSqlDatabase>

#include <vector>

/// A column that look-ups search. Browsers keep an index on it, or rows so few that none is needed;
/// a file where neither holds would cost the square of its size.
struct searched_column {
    const char *table;
    const char *column;
};

/// Makes the private copy of a database fit to be read by statements that know the browser's own
/// tables. Changes go to the copy, through a connection of their own, and only when needed:
///
/// - Views, virtual tables and tables with computed columns are removed. A schema can hide work
///   without end in them; browsers store rows. Statements then report the missing table.
/// - Large tables get an index on the searched columns that have none. Rows of one key keep their
///   order.
///
/// False when what must be removed could not be: the copy is then not to be read.
bool prepare_private_copy(QSqlDatabase &copy, const QString &connection_name,
                          const std::vector<searched_column> &searched_columns);
