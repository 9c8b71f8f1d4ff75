#include "common/extraction/keyed_rows.h"

#include "common/extraction/extraction_run.h"
#include "common/values/time_values.h"

#include <compare>

using namespace Qt::StringLiterals;

namespace
{

// What is found again for key after key: more than a browser's files repeat.
constexpr qint64 repeated_bytes_per_byte = 8;
constexpr qint64 spare_repeated_bytes = 64 << 20;
constexpr int most_cut_rows = 10;

/// As SQLite orders them: before all numbers NULL, behind them everything else.
std::partial_ordering order_of(const QVariant &value, qint64 key)
{
    if (const std::optional<qint64> number = whole_number(value))
        return *number <=> key;
    if (value.isNull())
        return std::partial_ordering::less;
    return value.typeId() == QMetaType::Double ? value.toDouble() <=> static_cast<double>(key)
                                               : std::partial_ordering::greater;
}

} // namespace

qint64 keyed_rows::repeatable_bytes(qint64 file_size)
{
    return spare_repeated_bytes + repeated_bytes_per_byte * qMin(file_size, 1LL << 40);
}

qint64 keyed_rows::bytes_of(const QSqlQuery &row, int columns)
{
    qint64 bytes = 1;
    for (int column = 0; column < columns; ++column) {
        const QVariant value = row.value(column);
        if (value.typeId() == QMetaType::QString)
            bytes += static_cast<const QString *>(value.constData())->size();
        else if (value.typeId() == QMetaType::QByteArray)
            bytes += static_cast<const QByteArray *>(value.constData())->size();
    }
    return bytes;
}

keyed_rows::keyed_rows(const keyed_select &select, const QString &connection_name,
                       const QString &copy, bool sound, extraction_run &run, failure_log &failures)
    : select_(select), run_(run), failures_(failures),
      connection_(connection_name, copy, run, failures.signature()),
      repeated_bytes_left_(repeatable_bytes(connection_.size())),
      key_column_(1 + static_cast<int>(QByteArray(select.table.columns).count(',')))
{
    if (!is_open())
        return;
    const own_table &table = select_.table;
    const QString name = QString::fromUtf8(table.name);
    const QString key = QString::fromUtf8(table.key);
    const column_kind kind = kind_of(connection_, name, statement_columns() + u',' + key);
    error_ =
        kind == column_kind::computed
            ? computed_columns_error()
            : guarded_query(connection_, key_statement(select_.statement).executed()).error_text();
    if (!error_.isEmpty())
        return;
    if (sound && select_.keys_ascend && kind == column_kind::stored &&
        holds_numbers(connection_, name, key))
        begin_walk();
    else
        make_table();
}

QString keyed_rows::statement_columns() const
{
    const QString statement = QString::fromUtf8(select_.statement).simplified();
    return statement.mid(7).section(u" from "_s, 0, 0); // behind "select "
}

void keyed_rows::begin_walk()
{
    connection_.begin_reading();
    const own_table &table = select_.table;
    const QString key = QString::fromUtf8(table.key);
    walk_ = std::make_unique<guarded_query>(
        connection_, u"select "_s + QString::fromUtf8(table.columns) + u", " + key +
                         u" from main." + QString::fromUtf8(table.name) +
                         u" not indexed order by " + key + u", " +
                         QString::fromUtf8(table.order ? table.order : "rowid"));
    // A page that cannot be read ends the sorting before its first row.
    walk_has_row_ = walk_->execute() && walk_->next();
    if (!walk_has_row_ && !walk_->error_text().isEmpty())
        make_table();
}

found_rows keyed_rows::find(const QVariant &key, const row_function &each)
{
    const std::optional<qint64> number = whole_number(key);
    if (walk_ && number && (!walked_to_ || *number > *walked_to_))
        return walk_to(*number, each);
    if (walk_)
        make_table();
    return look_up(key, each);
}

found_rows keyed_rows::walk_to(qint64 key, const row_function &each)
{
    walked_to_ = key;
    key_ = key;
    while (walk_has_row_ && !run_.cancelled()) {
        const std::partial_ordering order = order_of(walk_->value(key_column_), key);
        if (std::is_gt(order))
            break;
        if (std::is_eq(order))
            each(walk_->query());
        walk_has_row_ = walk_->next();
    }
    if (!walk_has_row_ && !run_.cancelled() && !walk_->error_text().isEmpty()) {
        log(walk_->error_text());
        make_table();
    }
    return found_rows::all;
}

void keyed_rows::make_table()
{
    if (walk_) {
        walk_.reset();
        connection_.end_reading();
    }
    const own_table &table = select_.table;
    const QString fault = make_own_table(connection_, table);
    connection_.begin_reading();
    const QString columns = QString::fromUtf8(table.columns);
    const QString rows_of_key = u" from temp."_s + QString::fromUtf8(table.name) + u" where " +
                                QString::fromUtf8(table.key) + u" = ?";
    whole_rows_ =
        std::make_unique<guarded_query>(connection_, u"select "_s + columns + rows_of_key);
    cut_rows_ = std::make_unique<guarded_query>(connection_, u"select "_s + cut_columns(columns) +
                                                                 rows_of_key + u" limit " +
                                                                 QString::number(most_cut_rows));
    error_ = whole_rows_->error_text();
    if (!fault.isEmpty() && error_.isEmpty() && !run_.cancelled())
        log(fault);
}

found_rows keyed_rows::look_up(const QVariant &key, const row_function &each)
{
    key_ = key;
    if (!error_.isEmpty()) {
        log(error_);
        return found_rows::none;
    }
    const bool cut = repeated_bytes_left_ < 0;
    guarded_query &rows = cut ? *cut_rows_ : *whole_rows_;
    rows.bind(0, key);
    if (!rows.execute()) {
        if (!run_.cancelled())
            log(rows.error_text());
        return found_rows::none;
    }
    found_rows found = cut ? found_rows::cut : found_rows::all;
    while (!run_.cancelled() && rows.next()) {
        each(rows.query());
        repeated_bytes_left_ -= bytes_of(rows.query(), key_column_);
        if (select_.table.first_of_key)
            break;
        if (!cut && repeated_bytes_left_ < 0) {
            found = found_rows::cut;
            break;
        }
    }
    if (!run_.cancelled() && !rows.error_text().isEmpty())
        log(rows.error_text());
    rows.query().finish();
    return found;
}

void keyed_rows::log(const QString &error)
{
    failures_.log(select_.failed, error, key_statement(select_.statement).logged(key_));
}
