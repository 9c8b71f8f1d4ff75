#pragma once

#include "common/extraction/bound_values.h"
#include "common/extraction/failure_log.h"
#include "common/extraction/value_rules.h"
#include "common/extraction/writing_allowance.h"
#include "common/named_connection.h"

#include <QtSql/QSqlQuery>

#include <memory>
#include <vector>

/// An INSERT into a result table and what its placeholders receive, in order.
struct insertion {
    const char *sql;
    std::vector<value_rule> values;
};

/// An INSERT at work: a query of the result database, prepared once and bound for every row.
class row_insertion
{
public:
    enum class outcome { written, failed, interrupted };

    /// Prepares the query. The arguments must outlive this object.
    row_insertion(QSqlQuery &query, const insertion &statement, const QString &signature,
                  const failure_lines &insert_failed, extraction_run &run);

    /// Binds the values that all rows of the file share.
    void begin_file(const source_file &file);

    /// Binds and writes one row and counts it. A failure is logged and loses this row only. A row
    /// whose look-up was interrupted is not written. Texts that are cut are logged once a file.
    outcome write(source_row &row);

    const insertion &statement() const { return statement_; }
    QSqlQuery &query() { return query_; }

private:
    void bind(source_row &row);
    void log_failure_of(const source_row &row, const QString &error) const;

    QSqlQuery &query_;
    const insertion &statement_;
    const QString &signature_;
    const failure_lines &insert_failed_;
    extraction_run &run_;
    QString prepare_error_; ///< set when the INSERT does not fit the result table
    bound_values bound_;    ///< after the preparation, which forgets them
    writing_allowance allowance_{0, run_.spare_bytes};
};

/// The result side of one extractor call: one connection named by the extractor's signature, one
/// transaction, each INSERT prepared once. Whatever way the call ends, the rows written so far are
/// committed and the connection is removed.
class result_writer
{
public:
    /// Opens the result database and begins the transaction; a failure is logged.
    result_writer(const QString &signature, extraction_run &run,
                  const failure_lines &destination_failed, const failure_lines &insert_failed);
    ~result_writer();
    result_writer(const result_writer &) = delete;
    result_writer &operator=(const result_writer &) = delete;

    bool is_open() const { return connection_.is_open(); }
    QString error_text() const { return connection_.error_text(); }

    /// The INSERT for the rows of the file, which both must outlive the writer.
    row_insertion &begin_file(const insertion &statement, const source_file &file)
    {
        row_insertion &rows = same_file(statement);
        rows.begin_file(file);
        return rows;
    }
    /// The same for further rows of a file that was begun.
    row_insertion &same_file(const insertion &statement);

private:
    struct prepared_insertion;

    const QString signature_;
    extraction_run &run_;
    const failure_lines &insert_failed_;
    qint64 records_before_ = 0; ///< count of the run when the transaction began
    qsizetype readings_before_ = 0;
    named_connection connection_;
    std::vector<std::unique_ptr<prepared_insertion>> insertions_;
};
