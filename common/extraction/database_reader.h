#pragma once

#include "common/extraction/extraction_run.h"
#include "common/extraction/failure_log.h"
#include "common/extraction/keyed_rows.h"
#include "common/extraction/result_writer.h"
#include "common/extraction/value_rules.h"

#include <QStringList>
#include <QtSql/QSqlDatabase>
#include <QtSql/QSqlQuery>

#include <functional>
#include <vector>

/// One way to read a source: a SELECT, and the INSERT that takes its rows. A SELECT of one table
/// goes over it in the order of its rows, whatever indexes the evidence offers; one of several
/// tables has all of them among the reader's own.
struct source_reading {
    const char *select;
    failure_lines select_failed; ///< written when the SELECT fails; the next reading is tried then
    insertion insert;
    bool older = false; ///< fits none but files of older browsers
};

/// Runs a look-up with one key on a query of the source, which is prepared unless it holds the
/// statement already; a statement without a placeholder ends where its key follows. Calls `each`
/// for its rows until it returns false. To be used on tables that are among the reader's own. A
/// failure is logged; a cancelled run ends it early.
void look_up_rows(QSqlQuery &query, const QString &select, const QString &key, extraction_run &run,
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
    std::vector<source_reading> readings;    ///< tried in order until a SELECT runs
    std::vector<keyed_select> look_ups = {}; ///< what source_row::look_up() runs, by number
    std::vector<own_table> own_tables = {};  ///< copied before the SELECT, which then reads them
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

    /// The private copy, for further queries of the reader's own tables.
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
