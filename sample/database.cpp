#include "sample/database.h"

#include "sample/evidence_files.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <tuple>

using namespace Qt::StringLiterals;

namespace sample
{

/// While it lives SQLite draws the same "random" numbers in every run: a write-ahead log holds two
/// of them in its header and in every frame.
class database::repeatable_randomness
{
public:
    repeatable_randomness() : file_system_(*sqlite3_vfs_find(nullptr))
    {
        file_system_.zName = "repeatable";
        file_system_.pNext = nullptr;
        file_system_.xRandomness = [](sqlite3_vfs *, int length, char *bytes) {
            std::memset(bytes, 0, static_cast<size_t>(length));
            return length;
        };
        sqlite3_vfs_register(&file_system_, 1);
        sqlite3_randomness(0, nullptr); // forgets the numbers drawn so far
    }
    ~repeatable_randomness()
    {
        sqlite3_vfs_unregister(&file_system_);
        sqlite3_randomness(0, nullptr);
    }
    repeatable_randomness(const repeatable_randomness &) = delete;
    repeatable_randomness &operator=(const repeatable_randomness &) = delete;

private:
    sqlite3_vfs file_system_;
};

void database::closer::operator()(sqlite3 *handle) const
{
    sqlite3_close_v2(handle);
}

database::database(const QString &path, rows_go where) : path_(path), where_(where)
{
    make_folder_of(path);
    if (where == rows_go::into_the_log)
        randomness_ = std::make_unique<repeatable_randomness>();

    sqlite3 *handle = nullptr;
    const int flags =
        SQLITE_OPEN_READWRITE | (where == rows_go::into_the_file ? SQLITE_OPEN_CREATE : 0);
    const int result = sqlite3_open_v2(path.toUtf8().constData(), &handle, flags, nullptr);
    handle_.reset(handle);
    if (result != SQLITE_OK)
        fail();

    if (where == rows_go::into_the_log)
        run_all({"pragma journal_mode=wal", "pragma wal_autocheckpoint=0"});
    else
        run_all({"pragma page_size=4096", "pragma encoding='UTF-8'", "pragma journal_mode=memory",
                 "pragma synchronous=off"});
    run("begin");
}

database::~database() = default;

void database::fail() const
{
    throw evidence_error(u"cannot write " + path_ + u": " +
                         QString::fromUtf8(sqlite3_errmsg(handle_.get())));
}

void database::run(const char *sql)
{
    if (sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        fail();
}

void database::run_all(std::initializer_list<const char *> statements)
{
    for (const char *sql : statements)
        run(sql);
}

void database::finish(qint64 modified)
{
    run("commit");
    if (where_ == rows_go::into_the_log)
        sqlite3_db_config(handle_.get(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    if (sqlite3_close(handle_.get()) != SQLITE_OK)
        fail();
    std::ignore = handle_.release();

    date_file(path_, modified);
    if (where_ == rows_go::into_the_log) {
        date_file(path_ + u"-wal", modified);
        date_file(path_ + u"-shm", modified);
    }
}

void insertion::finalizer::operator()(sqlite3_stmt *statement) const
{
    sqlite3_finalize(statement);
}

insertion::insertion(database &target, const char *table, const std::string &columns)
    : target_(target)
{
    const auto commas = std::count(columns.begin(), columns.end(), ',');
    std::string sql = "insert into " + std::string(table) + "(" + columns + ") values(?";
    for (auto comma = commas; comma > 0; --comma)
        sql += ",?";
    sql += ")";

    sqlite3_stmt *statement = nullptr;
    const int result = sqlite3_prepare_v3(target.handle(), sql.c_str(), -1,
                                          SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    statement_.reset(statement);
    if (result != SQLITE_OK)
        target.fail();
}

void insertion::bind_number(int place, qint64 value)
{
    sqlite3_bind_int64(statement_.get(), place, value);
}

// The values live until step() is done: SQLite need not copy them.

void insertion::bind(int place, const char *text)
{
    sqlite3_bind_text(statement_.get(), place, text, -1, SQLITE_STATIC);
}

void insertion::bind(int place, const std::string &text)
{
    sqlite3_bind_text64(statement_.get(), place, text.data(), text.size(), SQLITE_STATIC,
                        SQLITE_UTF8);
}

void insertion::bind(int place, const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    sqlite3_bind_text(statement_.get(), place, utf8.constData(), static_cast<int>(utf8.size()),
                      SQLITE_TRANSIENT);
}

void insertion::bind(int place, const QByteArray &blob)
{
    // A null pointer would be bound as NULL.
    const char *bytes = blob.isEmpty() ? "" : blob.constData();
    sqlite3_bind_blob64(statement_.get(), place, bytes, static_cast<sqlite3_uint64>(blob.size()),
                        SQLITE_STATIC);
}

void insertion::bind(int place, std::nullptr_t)
{
    sqlite3_bind_null(statement_.get(), place);
}

void insertion::step(int bound)
{
    if (bound != sqlite3_bind_parameter_count(statement_.get()))
        throw evidence_error(u"a row does not have one value for each column"_s);
    if (sqlite3_step(statement_.get()) != SQLITE_DONE ||
        sqlite3_reset(statement_.get()) != SQLITE_OK)
        target_.fail();
}

} // namespace sample
