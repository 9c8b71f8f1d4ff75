#include "common/extraction/database_reader.h"

#include "common/extraction/named_connection.h"
#include "common/extraction/page_walk.h"
#include "common/extraction/reading_budget.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>

#include <optional>

using namespace Qt::StringLiterals;

namespace
{

enum class file_result { done, unknown_schema, cancelled };

/// A forward-only query, prepared; an error of the preparation is kept, because executing would
/// replace it.
class prepared_query
{
public:
    prepared_query(const QSqlDatabase &database, const char *sql)
        : prepared_query(database, QString::fromUtf8(sql))
    {
    }
    prepared_query(const QSqlDatabase &database, const QString &sql) : query_(database)
    {
        query_.setForwardOnly(true);
        if (sql.isEmpty())
            prepare_error_ = unsafe_key_error();
        else if (!query_.prepare(sql))
            prepare_error_ = query_.lastError().text();
    }

    bool execute() { return prepare_error_.isEmpty() && query_.exec(); }
    QString error_text() const
    {
        return prepare_error_.isEmpty() ? query_.lastError().text() : prepare_error_;
    }
    QSqlQuery &query() { return query_; }
    /// Of a query that ran.
    int columns()
    {
        if (columns_ < 0)
            columns_ = query_.record().count();
        return columns_;
    }

private:
    QSqlQuery query_;
    QString prepare_error_;
    int columns_ = -1;
};

/// What is known while one file is read.
struct file_reading {
    const database_reader &reader;
    const QString &signature;
    extraction_run &run;
    const source_file &file;
    QSqlDatabase &source;
    const row_preparation &prepare_row;
    qint64 copy_size; ///< bytes

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
          look_ups_(reading.reader.look_ups.size()), budget_(reading.copy_size)
    {
    }

    /// Goes on to the next row; false at the end, and for whatever else ends the rows.
    bool next(QSqlQuery &rows)
    {
        budget_.use_row();
        return !budget_.is_used_up() && rows.next();
    }
    bool has_budget() const { return !budget_.is_used_up(); }

    /// A connection of its own: on the one of the main SELECT, a look-up that meets a damaged page
    /// would send the SELECT back to rows that it has given already.
    QSqlDatabase source() override
    {
        if (!look_up_connection_)
            look_up_connection_.emplace(reading_.signature + u"_look_up",
                                        reading_.source.databaseName(),
                                        named_connection::access::read_only);
        return look_up_connection_->database();
    }

    QSqlQuery &helper_query(int number) override
    {
        const auto index = static_cast<std::size_t>(number);
        while (helper_queries_.size() <= index)
            helper_queries_.push_back(std::make_unique<QSqlQuery>(source()));
        return *helper_queries_.at(index);
    }

    QVariant stored(int column) const override
    {
        QVariant value = rows_.value(column);
        budget_.use_text(value);
        return value;
    }

    bool look_up(int number, const QVariant &key,
                 const std::function<void(const QSqlQuery &)> &each) override
    {
        const auto index = static_cast<std::size_t>(number);
        const row_look_up &wanted = reading_.reader.look_ups.at(index);
        std::unique_ptr<prepared_query> &prepared = look_ups_.at(index);
        if (wanted.key == row_look_up::key_place::pasted_at_end)
            prepared = std::make_unique<prepared_query>(
                source(), pasted_statement(wanted.select, key.toString()));
        else if (!prepared)
            prepared = std::make_unique<prepared_query>(source(), wanted.select);
        QSqlQuery &query = prepared->query();
        if (wanted.key == row_look_up::key_place::placeholder)
            query.bindValue(0, key);
        if (!prepared->execute()) {
            reading_.log(wanted.failed, prepared->error_text(), query.lastQuery());
            return false;
        }
        const QString error =
            for_each_found_row(query, prepared->columns(), run(), [&](const QSqlQuery &row) {
                each(row);
                return !wanted.first_row_only;
            });
        interrupted_ = interrupted_ || run().cancelled();
        if (!error.isEmpty())
            reading_.log(wanted.failed, error, query.lastQuery());
        return error.isEmpty();
    }

private:
    const file_reading &reading_;
    const QSqlQuery &rows_;
    std::optional<named_connection> look_up_connection_; // outlives its queries below
    std::vector<std::unique_ptr<prepared_query>> look_ups_;
    std::vector<std::unique_ptr<QSqlQuery>> helper_queries_;
    mutable reading_budget budget_;
};

/// The rows of a SELECT that ran, up to its last row or to what keeps it from going on.
file_result write_rows(const file_reading &reading, QSqlQuery &rows, row_insertion &insert)
{
    current_row row(reading, rows);
    for (;;) {
        if (reading.run.cancelled())
            return file_result::cancelled;
        if (!row.next(rows))
            break;
        if (reading.prepare_row) {
            if (!reading.prepare_row(row))
                continue;
            if (reading.run.cancelled()) // its look-ups may have ended early
                return file_result::cancelled;
        }
        if (row.interrupted() || insert.write(row) == row_insertion::outcome::interrupted)
            return file_result::cancelled;
    }
    if (rows.lastError().isValid() || !row.has_budget()) {
        // A damaged page ends the rows just as the last row does; the log must tell them apart.
        plugin_static_function::app_debug(
            operation_tag(reading.signature) +
                u" rows of the source end early ---------FAILED----------" + reading.file.path,
            reading.signature);
        reading.log({error_text, executed_query},
                    row.has_budget() ? rows.lastError().text() : reading_budget::error(),
                    rows.lastQuery());
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
        if (way.refused_when) {
            prepared_query reason(reading.source, way.refused_when);
            if (reason.execute() && reason.query().next()) {
                reading.log(way.select_failed, u"rows belong together that browsers keep apart"_s,
                            QString::fromUtf8(way.select));
                continue;
            }
        }
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

    const qint64 copy_size = QFileInfo(copy).size() + QFileInfo(copy + u"-wal").size();
    const auto tell = [&](const QString &text) {
        plugin_static_function::app_debug(operation_tag(signature) + text + path, signature);
    };
    const int repeated = remove_repeated_pages(copy);
    if (repeated != 0)
        tell(u" pages of the source are used twice, rows may be missing -----FAILED-----"_s);
    if (repeated < 0)
        return file_result::done;

    const source_file file(path, run);
    run.look_up_budget = reading_budget(copy_size);
    // The schema is made fit before the source connection reads it.
    const copy_state state =
        prepare_private_copy(copy, signature + u"_copy", reader.searched_columns);
    if (state == copy_state::mended)
        tell(u" the schema of the source computes, rows may be missing -----FAILED-----"_s);
    named_connection source(reader.source_connection ? QString::fromUtf8(reader.source_connection)
                                                     : signature + u'1',
                            copy, named_connection::access::read_only);
    const file_reading reading = {reader,      signature, run, file, source.database(),
                                  prepare_row, copy_size};
    const bool fit = state != copy_state::unfit;
    if (!source.is_open() || !fit) {
        reading.log(reader.source_failed,
                    fit ? source.error_text() : u"the schema computes values"_s, {});
        return file_result::done;
    }
    return read_file(reading, writer);
}

} // namespace

QString for_each_found_row(QSqlQuery &query, int columns, extraction_run &run,
                           const std::function<bool(const QSqlQuery &row)> &each)
{
    reading_budget &budget = run.look_up_budget;
    QString error;
    while (!run.cancelled()) {
        if (budget.is_used_up()) {
            error = reading_budget::error();
            break;
        }
        if (!query.next()) {
            if (query.lastError().isValid())
                error = query.lastError().text();
            break;
        }
        budget.use_row();
        for (int column = 0; column < columns; ++column)
            budget.use_text(query.value(column));
        if (!each(query))
            break;
    }
    query.finish();
    return error;
}

bool look_up_rows(QSqlQuery &query, const QString &select, const QString &key, extraction_run &run,
                  const failure_lines &failed, const QString &signature,
                  const std::function<bool(const QSqlQuery &row)> &each)
{
    query.setForwardOnly(true);
    bool ran = query.lastQuery() == select || query.prepare(select);
    if (ran) {
        query.bindValue(0, key);
        ran = query.exec();
    }
    const QString error = ran ? for_each_found_row(query, query.record().count(), run, each)
                              : query.lastError().text();
    if (ran && error.isEmpty())
        return true;
    log_failure(failed, signature, {.error = error, .query = query.lastQuery()});
    query.clear(); // so that the next row prepares it again and sees the same reason
    return false;
}

QString pasted_statement(const char *select, const QString &key)
{
    static const QRegularExpression word(u"\\w+"_s);
    const QString statement = QString::fromUtf8(select);
    QStringList columns = {u"rowid"_s, u"oid"_s, u"_rowid_"_s};
    for (auto match = word.globalMatch(statement); match.hasNext();)
        columns += match.next().captured();
    if (key.contains(u'"') || columns.contains(key, Qt::CaseInsensitive))
        return {};
    return statement + u'"' + key + u'"';
}

QString unsafe_key_error()
{
    return u"the key holds a double quote or names a column"_s;
}

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
