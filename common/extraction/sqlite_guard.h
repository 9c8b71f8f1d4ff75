#pragma once

#include <QString>
#include <QtGlobal>

#include <atomic>
#include <chrono>

struct sqlite3;

/// What SQLite itself does to keep a hostile database from running code, altering itself or working
/// without end. The guard reaches a connection that Qt's driver opens through an automatic
/// extension, before any schema is read; being reached proves that the driver and this library use
/// one SQLite.
///
/// - No views, triggers, extensions, virtual tables or schema tricks; functions of which one call
///   can take long fail.
/// - What statements cost is bounded in virtual machine steps and in processor time, both linear in
///   the size of the file and hundreds of times what a browser's file needs. A cancelled run ends a
///   statement at once.
class sqlite_guard
{
public:
    /// Until armed() is called, the next connection that this thread opens is guarded. The size, in
    /// bytes, is that of the file and its companions.
    sqlite_guard(const std::atomic<bool> &cancelled, qint64 file_size);
    ~sqlite_guard();
    sqlite_guard(const sqlite_guard &) = delete;
    sqlite_guard &operator=(const sqlite_guard &) = delete;

    /// Ends the waiting; false when the driver's SQLite is not the one this library knows.
    bool armed();
    /// True once statements on the connection end early.
    bool is_used_up() const { return steps_left_ < 0 || nanoseconds_left_ < 0; }
    /// What is logged as the error then.
    static QString error() { return QStringLiteral("more work than a file of this size can need"); }
    /// Grants the whole budget again.
    void renew();
    /// What passed since the last call of SQLite does not count. To be called before each step.
    void resume() { last_check_ = clock::now(); }

private:
    using clock = std::chrono::steady_clock;

    static int attach(sqlite3 *database, const char **error, const void *api);
    static int check(void *guard);
    void set_up(sqlite3 *database);

    const std::atomic<bool> &cancelled_;
    const qint64 file_size_;
    bool waiting_ = true;
    bool reached_ = false;
    qint64 steps_left_ = 0;
    qint64 nanoseconds_left_ = 0;
    qint64 processor_time_ = 0; ///< of the thread when it was last looked at, in nanoseconds
    clock::time_point last_check_ = clock::now();
};
