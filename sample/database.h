#pragma once

#include <QByteArray>
#include <QString>

#include <concepts>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace sample
{

/// An SQLite file being written. Every member throws evidence_error when SQLite refuses.
class database
{
public:
    enum class rows_go {
        into_the_file,
        /// The file must exist. Rows stay in its "-wal" companion, committed but not yet moved, as
        /// in a profile that was seized while the browser ran. Equal bytes in every run.
        into_the_log,
    };

    /// Opens the file, makes it and its folders when missing, and begins a transaction.
    explicit database(const QString &path, rows_go where = rows_go::into_the_file);
    ~database();
    database(const database &) = delete;
    database &operator=(const database &) = delete;

    void run(const char *sql);
    void run_all(std::initializer_list<const char *> statements);

    /// Commits, closes and dates the file and its companions. Without it nothing is kept.
    void finish(qint64 modified);

    sqlite3 *handle() const { return handle_.get(); }
    [[noreturn]] void fail() const;

private:
    struct closer {
        void operator()(sqlite3 *handle) const;
    };
    class repeatable_randomness;

    QString path_;
    rows_go where_;
    std::unique_ptr<repeatable_randomness> randomness_; // outlives the connection
    std::unique_ptr<sqlite3, closer> handle_;
};

/// An INSERT that is prepared once.
class insertion
{
public:
    /// `columns` are the names of the columns, separated by commas.
    insertion(database &target, const char *table, const std::string &columns);

    /// Inserts one row: a value per column. Integers, texts (a null `const char *` is NULL), blobs
    /// (QByteArray), nullptr (NULL) and optional values. Throws evidence_error.
    template <typename... value_types> void add(const value_types &...values)
    {
        int place = 0;
        (bind(++place, values), ...);
        step(place);
    }

private:
    struct finalizer {
        void operator()(sqlite3_stmt *statement) const;
    };

    template <std::integral number> void bind(int place, number value)
    {
        bind_number(place, static_cast<qint64>(value));
    }
    void bind(int place, const char *text);
    void bind(int place, const std::string &text);
    void bind(int place, const QString &text);
    void bind(int place, const QByteArray &blob);
    void bind(int place, std::nullptr_t);
    template <typename value_type> void bind(int place, const std::optional<value_type> &value)
    {
        value ? bind(place, *value) : bind(place, nullptr);
    }
    void bind_number(int place, qint64 value);
    void step(int bound);

    database &target_;
    std::unique_ptr<sqlite3_stmt, finalizer> statement_;
};

} // namespace sample
