#include "common/extraction/database_reader.h"

#include "common/named_connection.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"

#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

enum class file_result { done, unknown_schema, cancelled };

/// A forward-only query, prepared; an error of the preparation is kept, because executing would
/// replace it.
class prepared_query
{
public:
    prepared_query(QSqlDatabase &database, const char *sql) : query_(database)
    {
        query_.setForwardOnly(true);
        if (!query_.prepare(QString::fromUtf8(sql)))
            prepare_error_ = query_.lastError().text();
    }

    bool execute() { return prepare_error_.isEmpty() && query_.exec(); }
    QString error_text() const
    {
        return prepare_error_.isEmpty() ? query_.lastError().text() : prepare_error_;
    }
    QSqlQuery &query() { return query_; }

private:
    QSqlQuery query_;
    QString prepare_error_;
};

/// What is known while one file is read.
struct file_reading {
    const database_reader &reader;
    const QString &signature;
    extraction_run &run;
    const source_file &file;
    QSqlDatabase &source;
    const row_preparation &prepare_row;

    void log(const failure_lines &lines, const QString &error, const QString &query) const
    {
        log_failure(
            lines, signature,
            {.path = file.path, .system_user = file.system_user, .error = error, .query = query});
    }
};

/// The current row of the main SELECT. The look-ups are prepared when the first row needs them and
/// serve all rows of the file.
class current_row : public database_row
{
public:
    current_row(const file_reading &reading, const QSqlQuery &rows)
        : database_row(reading.run, reading.file), reading_(reading), rows_(rows),
          look_ups_(reading.reader.look_ups.size())
    {
    }

    QSqlDatabase source() const override { return reading_.source; }

    QSqlQuery &helper_query(int number) override
    {
        const auto index = static_cast<std::size_t>(number);
        while (helper_queries_.size() <= index)
            helper_queries_.push_back(std::make_unique<QSqlQuery>(reading_.source));
        return *helper_queries_.at(index);
    }

    QVariant stored(int column) const override { return rows_.value(column); }

    bool look_up(int number, const QVariant &key,
                 const std::function<void(const QSqlQuery &)> &each) override
    {
        const auto index = static_cast<std::size_t>(number);
        const row_look_up &wanted = reading_.reader.look_ups.at(index);
        std::unique_ptr<prepared_query> &prepared = look_ups_.at(index);
        if (!prepared)
            prepared = std::make_unique<prepared_query>(reading_.source, wanted.select);
        QSqlQuery &query = prepared->query();
        query.bindValue(0, key);
        if (!prepared->execute()) {
            reading_.log(wanted.failed, prepared->error_text(), query.lastQuery());
            return false;
        }
        for (;;) {
            if (run().cancelled()) {
                interrupted_ = true;
                break;
            }
            if (!query.next())
                break;
            each(query);
        }
        const bool complete = !query.lastError().isValid();
        if (!complete)
            reading_.log(wanted.failed, query.lastError().text(), query.lastQuery());
        query.finish();
        return complete;
    }

private:
    const file_reading &reading_;
    const QSqlQuery &rows_;
    std::vector<std::unique_ptr<prepared_query>> look_ups_;
    std::vector<std::unique_ptr<QSqlQuery>> helper_queries_;
};

/// The rows of a SELECT that ran, up to its last row or to what keeps it from going on.
file_result write_rows(const file_reading &reading, QSqlQuery &rows, row_insertion &insert)
{
    current_row row(reading, rows);
    for (;;) {
        if (reading.run.cancelled())
            return file_result::cancelled;
        if (!rows.next())
            break;
        if (reading.prepare_row && !reading.prepare_row(row))
            continue;
        if (row.interrupted() || insert.write(row) == row_insertion::outcome::interrupted)
            return file_result::cancelled;
    }
    if (rows.lastError().isValid()) {
        // A damaged page ends the rows just as the last row does; the log must tell them apart.
        plugin_static_function::app_debug(
            operation_tag(reading.signature) +
                u" rows of the source end early ---------FAILED----------" + reading.file.path,
            reading.signature);
        reading.log({error_text, executed_query}, rows.lastError().text(), rows.lastQuery());
    }
    return file_result::done;
}

file_result read_file(const file_reading &reading, result_writer &writer)
{
    const database_reader &reader = reading.reader;
    std::size_t first = 0;
    std::size_t end = reader.readings.size();
    if (reader.choose_reading) {
        first = reader.choose_reading(reading.source, reading.signature);
        end = first + 1;
    }
    for (std::size_t number = first; number < end; ++number) {
        const source_reading &way = reader.readings.at(number);
        prepared_query select(reading.source, way.select);
        if (!select.execute()) {
            reading.log(way.select_failed, select.error_text(), select.query().lastQuery());
            continue;
        }
        return write_rows(reading, select.query(), writer.begin_file(way.insert, reading.file));
    }
    return file_result::unknown_schema;
}

/// Makes the private copy, opens it and reads it.
file_result read_path(const database_reader &reader, const QString &signature, const QString &path,
                      extraction_run &run, const row_preparation &prepare_row,
                      result_writer &writer)
{
    if (!lies_in_source(path, signature, run))
        return file_result::done;
    const QString copy = run.helper->get_adhoc_path_for_database(path);
    if (copy.isEmpty())
        return file_result::done;

    const source_file file(path, run);
    named_connection source(reader.source_connection ? QString::fromUtf8(reader.source_connection)
                                                     : signature + u'1',
                            copy, named_connection::access::read_only);
    const file_reading reading = {reader, signature, run, file, source.database(), prepare_row};
    if (!source.is_open()) {
        reading.log(reader.source_failed, source.error_text(), {});
        return file_result::done;
    }
    return read_file(reading, writer);
}

} // namespace

int read_databases(const database_reader &reader, const QStringList &files, extraction_run &run,
                   const row_preparation &prepare_row)
{
    const QString signature = QString::fromUtf8(reader.signature);
    plugin_static_function::app_debug(QString::fromUtf8(reader.starts), signature);
    if (run.idle_extractors_end_early && (run.cancelled() || files.isEmpty()))
        return 0;

    int result = 0;
    {
        result_writer writer(signature, run, reader.destination_failed, reader.insert_failed);
        if (!writer.is_open())
            return 0;
        for (const QString &path : files) {
            if (run.cancelled())
                return 0;
            switch (read_path(reader, signature, path, run, prepare_row, writer)) {
            case file_result::cancelled:
                return 0;
            case file_result::unknown_schema:
                result = -1;
                break;
            case file_result::done:
                break;
            }
        }
    }
    plugin_static_function::app_debug(QString::fromUtf8(reader.ends), signature);
    return result;
}
