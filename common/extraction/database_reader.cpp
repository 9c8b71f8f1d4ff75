#include "common/extraction/database_reader.h"

#include "common/debug_log.h"
#include "common/extraction/guarded_connection.h"
#include "common/extraction/private_copy.h"
#include "common/extraction/rollback_journal.h"
#include "common/plugin_helper_functions.h"

#include <QRegularExpression>
#include <QScopedValueRollback>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

enum class file_result {
    done,
    unknown_schema,
    cancelled,
    repeats_too_much, ///< the rows that follow are to be read without joining
};

/// What is known while one file is read.
struct file_reading {
    const database_reader &reader;
    extraction_run &run;
    const source_file &file;
    const QString &copy;
    guarded_connection &source;
    bool sound; ///< SQLite finds no fault in the copy's structure
    const row_preparation &prepare_row;
    failure_log &failures;

    const QString &signature() const { return failures.signature(); }
    /// A line that no descriptor foresees, of a fault of the file.
    void tell(const QString &text, const QString &error) const
    {
        run.readings.note(reading_record::outcome::damaged, error);
        debug_log(operation_tag(signature()) + text + file.path, signature());
        debug_log(error, signature());
    }
};

/// A main SELECT as it is run, with the row of one look-up joined before its columns or without.
struct main_select {
    QString text; ///< as it is logged
    guarded_query rows;
    int joined_columns = 0;
};

/// The current row of the main SELECT. Look-ups are prepared when the first row needs them and
/// serve all rows of the file.
class current_row : public database_row
{
public:
    current_row(const file_reading &reading, const main_select &select)
        : database_row(reading.run, reading.file), reading_(reading), rows_(select.rows.query()),
          joined_columns_(select.joined_columns),
          repeated_bytes_left_(keyed_rows::repeatable_bytes(reading.source.size())),
          look_ups_(reading.reader.look_ups.size())
    {
    }

    QSqlDatabase source() override { return reading_.source.database(); }

    QSqlQuery &helper_query(int number) override
    {
        const auto index = static_cast<std::size_t>(number);
        while (helper_queries_.size() <= index)
            helper_queries_.push_back(std::make_unique<QSqlQuery>(source()));
        return *helper_queries_.at(index);
    }

    QVariant stored(int column) const override { return rows_.value(column + joined_columns_); }

    found_rows look_up(int number, const QVariant &key,
                       const std::function<void(const QSqlQuery &)> &each) override
    {
        const auto index = static_cast<std::size_t>(number);
        if (joined_columns_ > 0) {
            // The joined key comes last; it is NULL where no row has it.
            if (!rows_.isNull(joined_columns_ - 1)) {
                repeated_bytes_left_ -= keyed_rows::bytes_of(rows_, joined_columns_);
                each(rows_);
            }
            return found_rows::all;
        }
        std::unique_ptr<keyed_rows> &rows = look_ups_.at(index);
        if (!rows)
            // A connection of its own: a statement that meets a damaged page would send the main
            // SELECT back to rows that it has given already.
            rows = std::make_unique<keyed_rows>(
                reading_.reader.look_ups.at(index),
                reading_.signature() + u"_look_up" + QString::number(number), reading_.copy,
                reading_.sound, run(), reading_.failures);
        const found_rows found = rows->find(key, each);
        interrupted_ = interrupted_ || run().cancelled();
        return found;
    }

    /// True once joined rows repeat more than the file's size allows.
    bool repeats_too_much() const { return repeated_bytes_left_ < 0; }

private:
    const file_reading &reading_;
    const QSqlQuery &rows_;
    const int joined_columns_;
    qint64 repeated_bytes_left_;
    std::vector<std::unique_ptr<keyed_rows>> look_ups_;
    std::vector<std::unique_ptr<QSqlQuery>> helper_queries_;
};

/// The rows of a SELECT that ran, up to its last row or to what keeps it from going on. `taken`
/// counts them, over all SELECTs of the file.
file_result write_rows(const file_reading &reading, main_select &select, row_insertion &insert,
                       qint64 &taken)
{
    current_row row(reading, select);
    // Joined rows of equal keys could be more than the file can hold.
    constexpr qint64 least_bytes_of_row = 6;
    const qint64 most_rows = 1'000 + reading.source.size() / least_bytes_of_row;
    while (select.rows.next() && taken < most_rows) {
        ++taken;
        if (reading.run.cancelled() || (reading.prepare_row && !reading.prepare_row(row))) {
            if (reading.run.cancelled())
                return file_result::cancelled;
            continue;
        }
        // Look-ups of a cancelled run end early.
        if (reading.run.cancelled() || row.interrupted() ||
            insert.write(row) == row_insertion::outcome::interrupted)
            return file_result::cancelled;
        if (row.repeats_too_much())
            return file_result::repeats_too_much;
    }
    if (reading.run.cancelled())
        return file_result::cancelled;
    const QString error =
        taken == most_rows && select.rows.error_text().isEmpty() && select.rows.query().isValid()
            ? sqlite_guard::error()
            : select.rows.error_text();
    if (!error.isEmpty()) {
        // A damaged page ends the rows just as the last row does; the log must tell them apart.
        reading.tell(u" rows of the source end early ---------FAILED----------"_s, error);
        debug_log(select.text, reading.signature());
    }
    return file_result::done;
}

/// The SELECT as it is run: one that names a single table goes over that table itself. Null when
/// it names computed columns.
QString as_scan(const file_reading &reading, const QString &select)
{
    static const QRegularExpression of_one_table(u"^select (.*) from (\\w+)$"_s,
                                                 QRegularExpression::CaseInsensitiveOption);
    const std::vector<own_table> &own_tables = reading.reader.own_tables;
    const auto match = of_one_table.match(select.simplified());
    if (!match.hasMatch()) {
        const bool computes = std::ranges::any_of(own_tables, [&](const own_table &own) {
            return kind_of(reading.source, QString::fromUtf8(own.name),
                           QString::fromUtf8(own.key) + u',' + QString::fromUtf8(own.columns)) ==
                   column_kind::computed;
        });
        return computes ? QString() : select;
    }
    const QString table = match.captured(2);
    QString columns = match.captured(1);
    const column_kind kind = kind_of(reading.source, table, columns);
    if (kind == column_kind::computed)
        return {};
    if (kind == column_kind::amplified) {
        columns = cut_columns(columns.remove(table + u'.'));
        reading.tell(u" long default values are cut -----FAILED-----"_s,
                     u"the schema fills columns with long values"_s);
    }
    const bool is_own = std::ranges::any_of(
        own_tables, [&](const own_table &own) { return table == QLatin1StringView(own.name); });
    return u"select "_s + columns + u" from " + (is_own ? u"main."_s : QString()) + table +
           u" not indexed";
}

/// Makes the copies of tables that the reader's statements use. Returns the look-up that can be
/// joined to the main SELECT, if there is one.
const keyed_select *make_own_tables(const file_reading &reading)
{
    for (const own_table &table : reading.reader.own_tables) {
        if (const QString fault = make_own_table(reading.source, table); !fault.isEmpty())
            reading.tell(u" rows of table "_s + QString::fromUtf8(table.name) +
                             u" are missing ---------FAILED----------",
                         fault);
    }
    if (!reading.sound || reading.reader.look_ups.empty() ||
        reading.reader.look_ups.front().joined_by == nullptr)
        return nullptr;
    const keyed_select &joined = reading.reader.look_ups.front();
    return make_own_table(reading.source, joined.table).isEmpty() ? &joined : nullptr;
}

QString with_joined_row(const QString &select, const keyed_select &joined)
{
    const QString key = QString::fromUtf8(joined.table.key);
    QString columns;
    const QByteArray names = QByteArray(joined.table.columns) + ',' + joined.table.key;
    for (const QByteArray &column : names.split(','))
        columns += u"joined."_s + QString::fromUtf8(column.trimmed()) + u", ";
    return u"select "_s + columns + u"main_rows.* from (" + select +
           u") as main_rows left join temp." + QString::fromUtf8(joined.table.name) +
           u" as joined on joined." + key + u" = main_rows." + QString::fromUtf8(joined.joined_by);
}

/// Reads by one way; unknown_schema when its SELECT fails, which is logged.
file_result read_by(const source_reading &way, const keyed_select *joined,
                    const file_reading &reading, result_writer &writer)
{
    const QString text = QString::fromUtf8(way.select);
    const QString scan = as_scan(reading, text);
    if (scan.isNull()) {
        reading.failures.log(way.select_failed, computed_columns_error(), text);
        return file_result::unknown_schema;
    }
    qint64 taken = 0;
    if (joined != nullptr) {
        main_select select{text, {reading.source, with_joined_row(scan, *joined)}};
        select.joined_columns = 2 + static_cast<int>(QByteArray(joined->table.columns).count(','));
        if (select.rows.execute()) {
            const file_result result =
                write_rows(reading, select, writer.begin_file(way.insert, reading.file), taken);
            if (result != file_result::repeats_too_much)
                return result;
        }
    }
    main_select select{
        text,
        {reading.source, taken == 0 ? scan : scan + u" limit -1 offset " + QString::number(taken)}};
    if (!select.rows.execute()) {
        if (reading.run.cancelled())
            return file_result::cancelled;
        reading.failures.log(way.select_failed, select.rows.error_text(), text);
        reading.run.readings.note(reading_record::outcome::unknown_schema,
                                  select.rows.error_text());
        return file_result::unknown_schema;
    }
    return write_rows(reading, select,
                      taken == 0 ? writer.begin_file(way.insert, reading.file)
                                 : writer.same_file(way.insert),
                      taken);
}

file_result read_file(const file_reading &reading, result_writer &writer)
{
    const database_reader &reader = reading.reader;
    const keyed_select *joined = make_own_tables(reading);
    reading.source.begin_reading();
    std::size_t first = 0;
    std::size_t end = reader.readings.size();
    if (reader.choose_reading) {
        first = reader.choose_reading(reading.source.database(), reading.signature());
        end = first + 1;
    }
    file_result result = file_result::unknown_schema;
    for (std::size_t number = first; number < end && result == file_result::unknown_schema;
         ++number) {
        result = read_by(reader.readings.at(number), joined, reading, writer);
        if (result != file_result::unknown_schema)
            reading.run.readings.schema_is_known(reader.readings.at(number).older);
    }
    return result;
}

/// Makes the private copy, opens it and reads it.
file_result read_path(const database_reader &reader, const QString &signature, const QString &path,
                      extraction_run &run, const row_preparation &prepare_row,
                      result_writer &writer)
{
    using outcome = reading_record::outcome;
    const recorded_reading recorded(run, reader.readings.front().insert.sql, signature, path);
    if (!lies_in_source(path, signature, run))
        return file_result::done;
    const qint64 lost_before = run.lost_records();
    const QString copy = private_copy(path, run);
    if (run.lost_records() != lost_before)
        run.readings.note(outcome::not_committed, u"no room for a private copy"_s);
    if (copy.isEmpty()) {
        if (!run.cancelled())
            run.readings.note(outcome::unreadable, u"no private copy can be made"_s);
        return file_result::done;
    }
    run.finished_copies.append(copy); // for the next file
    roll_back_copy(path, copy, signature, run);

    const source_file file(path, run);
    failure_log failures(signature, file.path, file.system_user);
    const QScopedValueRollback current_failures(run.failures, &failures);
    guarded_connection source(reader.source_connection ? QString::fromUtf8(reader.source_connection)
                                                       : signature + u'1',
                              copy, run, signature);
    if (!source.is_open()) {
        failures.log(reader.source_failed, source.error_text(), {});
        const QString reason = reason_not_readable(path);
        run.readings.note(outcome::unreadable, reason.isEmpty() ? source.error_text() : reason);
        return file_result::done;
    }
    const QString structure = source.check_structure();
    const file_reading reading = {reader,      run,     file, copy, source, structure == "ok"_L1,
                                  prepare_row, failures};
    if (!reading.sound && !run.cancelled())
        reading.tell(u" structure of the source is damaged -----FAILED-----"_s, structure);
    return read_file(reading, writer);
}

} // namespace

void look_up_rows(QSqlQuery &query, const QString &select, const QString &key, extraction_run &run,
                  const failure_lines &failed, const QString &signature,
                  const std::function<bool(const QSqlQuery &row)> &each)
{
    const key_statement statement(select);
    query.setForwardOnly(true);
    bool ran = query.lastQuery() == statement.executed() || query.prepare(statement.executed());
    if (ran) {
        query.bindValue(0, key);
        ran = query.exec();
    }
    while (ran && !run.cancelled() && query.next()) {
        if (!each(query))
            break;
    }
    if (query.lastError().isValid() && !run.cancelled()) {
        const QString error = query.lastError().text();
        if (run.failures != nullptr)
            run.failures->log(failed, error, statement.logged(key), signature);
        else
            log_failure(failed, signature, {.error = error, .query = statement.logged(key)});
        query.clear(); // so that the next row prepares it again and sees the same reason
        return;
    }
    query.finish();
}

int read_databases(const database_reader &reader, const QStringList &files, extraction_run &run,
                   const row_preparation &prepare_row)
{
    const QString signature = QString::fromUtf8(reader.signature);
    debug_log(QString::fromUtf8(reader.starts), signature);
    if (run.idle_extractors_end_early && (run.cancelled() || files.isEmpty()))
        return 0;

    const sqlite_temporary_folder temporary_files(run.temporary_directory);
    int result = 0;
    {
        result_writer writer(signature, run, reader.destination_failed, reader.insert_failed);
        if (!writer.is_open()) {
            for (const QString &path : files) {
                const recorded_reading recorded(run, reader.readings.front().insert.sql, signature,
                                                path);
                run.readings.note(reading_record::outcome::not_committed, writer.error_text());
            }
            return 0;
        }
        for (const QString &path : files) {
            if (run.cancelled())
                return 0;
            file_result end = file_result::done;
            read_within_memory(path, run, [&] {
                end = read_path(reader, signature, path, run, prepare_row, writer);
            });
            switch (end) {
            case file_result::cancelled:
                return 0;
            case file_result::unknown_schema:
                result = -1;
                break;
            case file_result::done:
            case file_result::repeats_too_much:
                break;
            }
        }
    }
    debug_log(QString::fromUtf8(reader.ends), signature);
    return result;
}
