#include "common/extraction/database_reader.h"

#include "common/named_connection.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"

#include <QFileInfo>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

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

private:
    QSqlQuery query_;
    QString prepare_error_;
};

/// A damaged or made-up file can yield rows without end, or the same text in each of them. Rows and
/// the characters of their texts stay below what a file of its size can hold.
class reading_budget
{
public:
    explicit reading_budget(qint64 file_size)
        : rows_left_(file_size),
          characters_left_(characters_per_byte * file_size + spare_characters)
    {
    }

    void use_row() { --rows_left_; }
    void use_text(const QVariant &value)
    {
        if (value.typeId() == QMetaType::QString)
            characters_left_ -= value.toString().size();
        else if (value.typeId() == QMetaType::QByteArray)
            characters_left_ -= value.toByteArray().size();
    }
    bool is_used_up() const { return rows_left_ < 0 || characters_left_ < 0; }
    static QString error() { return u"more rows than a file of this size can hold"_s; }

private:
    // A column may be read more than once, and its default value is stored once for all rows.
    static constexpr qint64 characters_per_byte = 16;
    static constexpr qint64 spare_characters = 1 << 20;

    qint64 rows_left_;
    qint64 characters_left_;
};

/// What is known while one file is read.
struct file_reading {
    const database_reader &reader;
    const QString &signature;
    extraction_run &run;
    const source_file &file;
    QSqlDatabase &source;
    const row_preparation &prepare_row;
    qint64 copy_size; ///< bytes, the write-ahead log included

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
          look_ups_(reading.reader.look_ups.size()), budget_(reading.copy_size),
          look_up_budget_(reading.copy_size)
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
        for (;;) {
            if (run().cancelled()) {
                interrupted_ = true;
                break;
            }
            if (look_up_budget_.is_used_up() || !query.next())
                break;
            look_up_budget_.use_row();
            each(query);
            if (wanted.first_row_only)
                break;
        }
        const bool complete = !query.lastError().isValid() && !look_up_budget_.is_used_up();
        if (!complete)
            reading_.log(wanted.failed,
                         look_up_budget_.is_used_up() ? reading_budget::error()
                                                      : query.lastError().text(),
                         query.lastQuery());
        query.finish();
        return complete;
    }

private:
    const file_reading &reading_;
    const QSqlQuery &rows_;
    std::optional<named_connection> look_up_connection_; // outlives its queries below
    std::vector<std::unique_ptr<prepared_query>> look_ups_;
    std::vector<std::unique_ptr<QSqlQuery>> helper_queries_;
    mutable reading_budget budget_;
    reading_budget look_up_budget_;
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
        if (reading.prepare_row && !reading.prepare_row(row))
            continue;
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
    const file_reading reading = {reader,
                                  signature,
                                  run,
                                  file,
                                  source.database(),
                                  prepare_row,
                                  QFileInfo(copy).size() + QFileInfo(copy + u"-wal").size()};
    if (!source.is_open()) {
        reading.log(reader.source_failed, source.error_text(), {});
        return file_result::done;
    }
    if (!prepare_private_copy(source.database(), signature + u"_copy", reader.searched_columns)) {
        reading.log(reader.source_failed, u"the schema computes values"_s, {});
        return file_result::done;
    }
    return read_file(reading, writer);
}

} // namespace

QString pasted_statement(const char *select, const QString &key)
{
    if (key.contains(u'"'))
        return {};
    return QString::fromUtf8(select) + u'"' + key + u'"';
}

QString unsafe_key_error()
{
    return u"the key holds a double quote"_s;
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
