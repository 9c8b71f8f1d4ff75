#pragma once

#include "common/extraction/failure_log.h"
#include "common/extraction/guarded_connection.h"
#include "common/extraction/own_table.h"
#include "common/extraction/value_rules.h"

#include <functional>
#include <memory>
#include <optional>

/// The text of a statement with one key, which stands in a placeholder or, as log lines show it, in
/// double quotes at the end. The key is bound either way.
class key_statement
{
public:
    explicit key_statement(const QString &text) : text_(text) {}
    explicit key_statement(const char *text) : text_(QString::fromUtf8(text)) {}

    QString executed() const { return has_placeholder() ? text_ : text_ + u'?'; }
    QString logged(const QVariant &key) const
    {
        return has_placeholder() ? text_ : text_ + u'"' + key.toString() + u'"';
    }

private:
    bool has_placeholder() const { return text_.contains(u'?'); }

    QString text_;
};

/// A statement that finds the rows of one key in one table.
struct keyed_select {
    const char *statement; ///< see key_statement
    failure_lines failed;
    own_table table; ///< its columns are the first of the statement's
    /// Column of the main SELECT that holds the key, when a key has one row: one statement then
    /// reads both.
    const char *joined_by = nullptr;
    bool keys_ascend = false; ///< in the browser's own files, row by row of the main SELECT
};

/// The rows that belong to those of a main SELECT, one keyed_select for one file. Whole numbers
/// that ascend are served from one ordered pass over the table, all other keys from a copy of our
/// own (own_table): no index of the evidence is used. Failures are logged; a cancelled run ends
/// look-ups early.
class keyed_rows
{
public:
    using row_function = std::function<void(const QSqlQuery &row)>;

    /// Opens the copy under the name. One that is not sound is not walked over.
    keyed_rows(const keyed_select &select, const QString &connection_name, const QString &copy,
               bool sound, extraction_run &run, failure_log &failures);

    /// Bytes that look-ups may find again and again in a file of this size.
    static qint64 repeatable_bytes(qint64 file_size);
    static qint64 bytes_of(const QSqlQuery &row, int columns);

    bool is_open() const { return connection_.is_open(); }
    QString error_text() const { return connection_.error_text(); }

    /// Calls `each` for the key's rows, which have the columns of the table.
    found_rows find(const QVariant &key, const row_function &each);

private:
    QString statement_columns() const;
    void begin_walk();
    found_rows walk_to(qint64 key, const row_function &each);
    void make_table();
    found_rows look_up(const QVariant &key, const row_function &each);
    void log(const QString &error);

    const keyed_select &select_;
    extraction_run &run_;
    failure_log &failures_;
    guarded_connection connection_;
    qint64 repeated_bytes_left_; ///< what look-ups in the copy may still find in whole
    QVariant key_;               ///< of the look-up that runs
    QString error_;              ///< why the statement cannot be run

    std::unique_ptr<guarded_query> walk_; ///< has the key as its last column
    int key_column_ = 0;
    bool walk_has_row_ = false;
    std::optional<qint64> walked_to_;

    std::unique_ptr<guarded_query> whole_rows_;
    std::unique_ptr<guarded_query> cut_rows_;
};
