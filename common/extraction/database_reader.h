#pragma once

#include "common/extraction/extraction_run.h"
#include "common/extraction/failure_log.h"
#include "common/extraction/private_copy.h"
#include "common/extraction/result_writer.h"
#include "common/extraction/value_rules.h"

#include <QStringList>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlQuery>

#include <functional>
#include <vector>

/// One way to read a source: a SELECT, and the INSERT that takes its rows.
struct source_reading {
    const char *select;
    failure_lines select_failed; ///< written when the SELECT fails; the next reading is tried then
    insertion insert;
    /// A statement that finds a row where the SELECT would cost the square of the file's size: it
    /// counts as failed then. Browsers do not write such files.
    const char *refused_when = nullptr;
};

/// A statement with one key that is run for single rows of the main SELECT.
struct row_look_up {
    enum class key_place {
        placeholder,
        pasted_at_end, ///< see pasted_statement()
    };

    const char *select;
    failure_lines failed;
    key_place key = key_place::placeholder;
    bool first_row_only = false;
};

/// The statement with the key behind it, in double quotes. Empty for a key that holds a double
/// quote itself, as it would go on as SQL that the evidence wrote, and for one that names a column,
/// as SQLite would compare the column with itself and find all rows.
QString pasted_statement(const char *select, const QString &key);
/// What is logged as the error of such a key.
QString unsafe_key_error();

/// Goes over the rows of a look-up that ran until `each` returns false, and finishes the query.
/// Rows and their texts count against the run's look_up_budget. Returns what kept it from all rows,
/// for the log: a damaged page, or the budget; empty otherwise, also when the run was cancelled.
QString for_each_found_row(QSqlQuery &query, int columns, extraction_run &run,
                           const std::function<bool(const QSqlQuery &row)> &each);

/// Runs a SELECT with one key, which is prepared unless the query holds it already, and goes over
/// its rows as above. A failure is logged; false then, with the rows before it seen.
bool look_up_rows(QSqlQuery &query, const QString &select, const QString &key, extraction_run &run,
                  const failure_lines &failed, const QString &signature,
                  const std::function<bool(const QSqlQuery &row)> &each);

/// An extractor that reads one SQLite file per account: all that tells it from the others.
struct database_reader {
    const char *signature; ///< function info of its log lines and name of its result connection
    const char *starts;
    failure_lines destination_failed;
    failure_lines source_failed;
    failure_lines insert_failed;
    const char *ends;
    std::vector<source_reading> readings; ///< tried in order until a SELECT runs
    std::vector<row_look_up> look_ups = {};
    std::vector<searched_column> searched_columns = {};
    /// When set: the number of the one reading to try, chosen by what the source holds.
    std::size_t (*choose_reading)(QSqlDatabase &source, const QString &signature) = nullptr;
    /// Name of the source connection; the signature and "1" when not set.
    const char *source_connection = nullptr;
};

/// A row of a database, as a row_preparation sees it.
class database_row : public source_row
{
public:
    using source_row::source_row;

    /// The private copy, for further queries.
    virtual QSqlDatabase source() = 0;
    /// A further query on the source, the same for every row of the file, so that what a look-up
    /// prepares for one row serves all.
    virtual QSqlQuery &helper_query(int number) = 0;
};

/// Called for every row before its values are taken, to fill source_row::derived; false skips the
/// row.
using row_preparation = std::function<bool(database_row &row)>;

/// Reads every file, in order, from a private copy into the result database, in one transaction.
/// What fails is logged and skipped; a cancelled run keeps the rows so far and writes no end line.
///
/// Returns -1 when no reading of some file could be run (its schema is not known to this reader),
/// otherwise, also when cancelled or when the result database does not open, 0.
int read_databases(const database_reader &reader, const QStringList &files, extraction_run &run,
                   const row_preparation &prepare_row = {});
