#include "common/extraction/result_writer.h"

#include "common/debug_log.h"

#include <QFileInfo>
#include <QtSql/QSqlDriver>
#include <QtSql/QSqlError>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

/// The driver's native code for "somebody else holds the database".
constexpr QLatin1StringView database_is_locked = "5"_L1;

/// The INSERT as it is run: texts come as UTF-8, which the driver has only bytes for.
QString with_casts(const insertion &statement)
{
    const QString sql = QString::fromUtf8(statement.sql);
    const QStringList parts = sql.split(u'?');
    QString executed = parts.first();
    for (qsizetype place = 1; const value_rule &rule : statement.values)
        executed += (rule.is_text ? u"cast(? as text)"_s : u"?"_s) + parts.value(place++);
    return executed;
}

/// The error text; empty when the INSERT fits the result table.
QString prepare(QSqlQuery &query, const insertion &statement)
{
    return query.prepare(with_casts(statement)) ? QString() : query.lastError().text();
}

QVariant in_utf8(const QVariant &value)
{
    if (value.typeId() != QMetaType::QString)
        return value;
    const QString &text = *static_cast<const QString *>(value.constData());
    if (text.isNull())
        return {};
    return text.isEmpty() ? QByteArray("", 0) : text.toUtf8();
}

} // namespace

row_insertion::row_insertion(QSqlQuery &query, const insertion &statement, const QString &signature,
                             const failure_lines &insert_failed, extraction_run &run)
    : query_(query), statement_(statement), signature_(signature), insert_failed_(insert_failed),
      run_(run), prepare_error_(prepare(query, statement)),
      bound_(query, static_cast<int>(statement.values.size()))
{
}

void row_insertion::begin_file(const source_file &file)
{
    for (int position = 0; const value_rule &rule : statement_.values) {
        if (rule.of_file) {
            const QVariant value = rule.of_file(run_, file);
            bound_.replace(position, rule.is_text ? in_utf8(value) : value);
        }
        ++position;
    }
    const QFileInfo info(file.path);
    allowance_ = writing_allowance(
        info.isFile() ? info.size() + QFileInfo(file.path + u"-wal").size() : 0, run_.spare_bytes);
}

void row_insertion::bind(source_row &row)
{
    const bool had_cut = allowance_.has_cut();
    allowance_.begin_row();
    for (int position = 0; const value_rule &rule : statement_.values) {
        if (rule.of_row) {
            const QVariant value = allowance_.admit(rule.of_row(row, rule.column));
            bound_.replace(position, rule.is_text ? in_utf8(value) : value);
        }
        ++position;
    }
    if (allowance_.has_cut() && !had_cut)
        debug_log(operation_tag(signature_) + u" long texts are cut -----FAILED-----"_s +
                      row.file().path,
                  signature_);
}

row_insertion::outcome row_insertion::write(source_row &row)
{
    bind(row);
    if (row.interrupted())
        return outcome::interrupted;

    if (!prepare_error_.isEmpty()) {
        log_failure_of(row, prepare_error_);
        return outcome::failed;
    }
    if (!query_.exec()) {
        const QSqlError error = query_.lastError();
        log_failure_of(row, error.text());
        // The first row has waited for the other process long enough; were every row to wait, a
        // large source would seem to hang.
        if (error.nativeErrorCode() == database_is_locked)
            QSqlQuery(query_.driver()->createResult()).exec(u"PRAGMA busy_timeout = 0"_s);
        return outcome::failed;
    }
    run_.count_record();
    return outcome::written;
}

void row_insertion::log_failure_of(const source_row &row, const QString &error) const
{
    run_.count_lost(1);
    run_.readings.note(reading_record::outcome::not_committed, error);
    if (run_.failures != nullptr)
        run_.failures->log(insert_failed_, error, QString::fromUtf8(statement_.sql), signature_);
    else
        log_failure(insert_failed_, signature_,
                    {.path = row.file().path,
                     .system_user = row.file().system_user,
                     .error = error,
                     .query = QString::fromUtf8(statement_.sql)});
}

struct result_writer::prepared_insertion {
    QSqlQuery query;
    row_insertion rows;

    prepared_insertion(QSqlDatabase &database, const insertion &statement, const QString &signature,
                       const failure_lines &insert_failed, extraction_run &run)
        : query(database), rows(query, statement, signature, insert_failed, run)
    {
    }
};

result_writer::result_writer(const QString &signature, extraction_run &run,
                             const failure_lines &destination_failed,
                             const failure_lines &insert_failed)
    : signature_(signature), run_(run), insert_failed_(insert_failed),
      connection_(signature_, run.destination_path)
{
    if (!is_open()) {
        log_failure(destination_failed, signature_, {.error = connection_.error_text()});
        return;
    }
    connection_.database().transaction();
    records_before_ = run_.records();
    readings_before_ = run_.readings.size();
}

result_writer::~result_writer()
{
    insertions_.clear();
    if (!is_open() || connection_.database().commit())
        return;
    debug_log(operation_tag(signature_) +
                  u" commit to destination database ---------FAILED----------",
              signature_);
    debug_log(connection_.error_text(), signature_);
    run_.count_lost(run_.records() - records_before_);
    run_.readings.not_committed_since(readings_before_, connection_.error_text());
}

row_insertion &result_writer::same_file(const insertion &statement)
{
    auto known = std::ranges::find_if(
        insertions_, [&](const auto &entry) { return &entry->rows.statement() == &statement; });
    if (known == insertions_.end())
        known = insertions_.insert(
            known, std::make_unique<prepared_insertion>(connection_.database(), statement,
                                                        signature_, insert_failed_, run_));
    return (*known)->rows;
}
