#pragma once

#include "report/result_folder.h"

#include <QStringList>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct private_copy;
struct sqlite3;
struct sqlite3_stmt;

/// A table of a result database with its columns, in the file's order.
struct stored_table {
    std::string name;
    std::vector<std::string> columns;

    /// Position of the column, -1 when the table has none of that name.
    int column(std::string_view name) const;
};

/// The rows of one SELECT, in turn. Texts are valid until the next row.
class row_cursor
{
public:
    ~row_cursor();
    row_cursor(row_cursor &&other) noexcept;
    row_cursor(const row_cursor &) = delete;
    row_cursor &operator=(const row_cursor &) = delete;
    row_cursor &operator=(row_cursor &&) = delete;

    /// False behind the last row and where reading failed, which is told then.
    bool next();

    qint64 row_id() const;
    /// Columns as they were asked for; one that is missing (-1 there) is NULL.
    bool is_null(size_t column) const;
    bool is_bytes(size_t column) const;
    /// Valid UTF-8: a text, a number's digits, "0x..." for bytes; empty for NULL.
    std::string_view text(size_t column);
    /// The number of an INTEGER, or of a text that is one.
    std::optional<qint64> whole_number(size_t column);

private:
    friend class result_database;
    row_cursor(sqlite3_stmt *statement, const std::vector<int> &columns, QString what, bool by_id,
               qint64 most_rows);

    int place(size_t column) const { return places_[column]; }

    sqlite3_stmt *statement_;
    std::vector<int> places_; ///< of each wanted column in the statement; -1 for missing ones
    std::vector<std::string> storage_; ///< texts that are not as SQLite has them
    std::vector<bool> stored_;         ///< whether this row's text lies there
    QString what_;
    bool by_id_;
    qint64 rows_left_;
    std::optional<qint64> last_id_;
};

/// A result database, opened for reading. Nothing is written to it or beside it: where a companion
/// shows an unfinished transaction, a copy in a temporary folder is read. It may be hostile: views,
/// virtual tables, triggers and computed columns are left out, and no statement goes on for longer
/// than a sound file of its size can keep it busy.
class result_database
{
public:
    explicit result_database(const result_folder &folder);
    ~result_database();
    result_database(const result_database &) = delete;
    result_database &operator=(const result_database &) = delete;

    /// False when it could not be opened, which is told.
    bool is_open() const { return database_ != nullptr; }
    const result_folder &folder() const { return folder_; }
    /// Plain tables. What else stands under a table's name, and what could not be read, is told.
    const std::vector<stored_table> &tables() const { return tables_; }
    const stored_table *table(std::string_view name) const;

    /// All rows by id, with the columns given by position (-1 for one that is missing). Nothing
    /// where the database refuses, which is told.
    std::optional<row_cursor> rows(const stored_table &table, const std::vector<int> &columns);
    /// The `most` rows that are latest by the first of the time columns that is not 0, latest
    /// first.
    std::optional<row_cursor> latest_rows(const stored_table &table,
                                          const std::vector<int> &columns,
                                          const std::vector<int> &time_columns, qint64 most);

private:
    bool open(const QString &path, bool is_copy);
    bool open_copy(const QStringList &companions);
    bool can_be_asked();
    void restrict_file();
    void check_once();
    void read_tables();
    void read_columns(stored_table &table);
    std::optional<row_cursor> select(const stored_table &table, const std::vector<int> &columns,
                                     const std::string &end, bool by_id);
    static int spend(void *self);

    result_folder folder_;
    sqlite3 *database_ = nullptr;
    std::shared_ptr<private_copy> copy_; ///< where the file itself cannot be read
    std::vector<stored_table> tables_;
    qint64 size_ = 0;
    qint64 steps_left_ = 0;
};
