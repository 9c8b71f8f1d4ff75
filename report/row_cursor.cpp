#include "report/result_database.h"
#include "report/terminal.h"
#include "report/texts.h"

#include <sqlite3.h>

using namespace Qt::StringLiterals;

row_cursor::row_cursor(sqlite3_stmt *statement, const std::vector<int> &columns, QString what,
                       bool by_id, qint64 most_rows)
    : statement_(statement), storage_(columns.size()), stored_(columns.size()),
      what_(std::move(what)), by_id_(by_id), rows_left_(most_rows)
{
    int place = 1; // behind the row id
    for (const int column : columns)
        places_.push_back(column < 0 ? -1 : place++);
}

row_cursor::row_cursor(row_cursor &&other) noexcept
    : statement_(std::exchange(other.statement_, nullptr)), places_(std::move(other.places_)),
      storage_(std::move(other.storage_)), stored_(std::move(other.stored_)),
      what_(std::move(other.what_)), by_id_(other.by_id_), rows_left_(other.rows_left_),
      last_id_(other.last_id_)
{
}

row_cursor::~row_cursor()
{
    sqlite3_finalize(statement_);
}

bool row_cursor::next()
{
    const int result = sqlite3_step(statement_);
    stored_.assign(stored_.size(), false);
    if (result == SQLITE_ROW) {
        // Pages that refer to each other in circles give the same rows again and again.
        const bool again = by_id_ && last_id_ && row_id() <= *last_id_;
        if (!again && rows_left_-- > 0) {
            last_id_ = row_id();
            return true;
        }
        terminal::print_error(what_ + u" is damaged: its rows come again; what follows row " +
                              QString::number(last_id_.value_or(0)) + u" was left out");
    } else if (result == SQLITE_INTERRUPT && !terminal::interrupted()) {
        terminal::print_error(what_ +
                              u" is damaged: reading takes longer than a file of its size "
                              "can; what follows row " +
                              QString::number(last_id_.value_or(0)) + u" was left out");
    } else if (result != SQLITE_DONE && result != SQLITE_INTERRUPT) {
        terminal::print_error(what_ + u" could not be read behind row " +
                              QString::number(last_id_.value_or(0)) + u": " +
                              QString::fromUtf8(sqlite3_errmsg(sqlite3_db_handle(statement_))));
    }
    return false;
}

qint64 row_cursor::row_id() const
{
    return sqlite3_column_int64(statement_, 0);
}

bool row_cursor::is_null(size_t column) const
{
    return place(column) < 0 || sqlite3_column_type(statement_, place(column)) == SQLITE_NULL;
}

bool row_cursor::is_bytes(size_t column) const
{
    return place(column) >= 0 && sqlite3_column_type(statement_, place(column)) == SQLITE_BLOB;
}

std::string_view row_cursor::text(size_t column)
{
    if (is_null(column))
        return {};
    std::string &storage = storage_[column];
    if (stored_[column]) // made before: texts that were given out must stay
        return storage;
    if (is_bytes(column)) {
        const void *bytes = sqlite3_column_blob(statement_, place(column));
        const int size = sqlite3_column_bytes(statement_, place(column));
        storage = "0x" + QByteArray::fromRawData(static_cast<const char *>(bytes), size)
                             .toHex()
                             .toUpper()
                             .toStdString();
        stored_[column] = true;
        return storage;
    }
    const auto *text =
        reinterpret_cast<const char *>(sqlite3_column_text(statement_, place(column)));
    if (text == nullptr)
        return {};
    const int size = sqlite3_column_bytes(statement_, place(column));
    const std::string_view valid = texts::valid_utf8({text, static_cast<size_t>(size)}, storage);
    stored_[column] = valid.data() == storage.data();
    return valid;
}

std::optional<qint64> row_cursor::whole_number(size_t column)
{
    if (is_null(column) || is_bytes(column))
        return std::nullopt;
    if (sqlite3_column_type(statement_, place(column)) == SQLITE_INTEGER)
        return sqlite3_column_int64(statement_, place(column));
    bool number = false;
    const std::string_view digits = text(column);
    const qint64 value =
        QByteArrayView(digits.data(), static_cast<qsizetype>(digits.size())).toLongLong(&number);
    return number ? std::optional(value) : std::nullopt;
}
