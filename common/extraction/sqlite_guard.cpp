#include "common/extraction/sqlite_guard.h"

#include <sqlite3.h>

#include <algorithm>
#include <ctime>
#include <limits>

namespace
{

/// The guard whose connection this thread is about to open.
thread_local sqlite_guard *waiting_guard = nullptr;

constexpr int steps_between_checks = 100;
// A browser's file takes about 0.1 steps and 10 ns a byte.
constexpr qint64 steps_per_byte = 32;
constexpr qint64 spare_steps = 1'000'000;
constexpr qint64 nanoseconds_per_byte = 2'000;
constexpr qint64 spare_nanoseconds = 2'000'000'000;
/// The clock alone tells what shorter stretches cost; a longer one may have been spent waiting.
constexpr qint64 short_stretch = 1'000'000;

/// A file full of holes may have any size.
constexpr qint64 largest_counted = 1LL << 40;

/// Functions whose cost grows faster than their arguments, or that make much of little. Computed
/// columns, constraints and partial indexes of the evidence could call them; we do not.
constexpr const char *denied_functions[] = {"glob",         "like",
                                            "instr",        "replace",
                                            "trim",         "ltrim",
                                            "rtrim",        "printf",
                                            "format",       "hex",
                                            "zeroblob",     "randomblob",
                                            "group_concat", "json",
                                            "json_array",   "json_insert",
                                            "json_extract", "json_object",
                                            "json_patch",   "json_quote",
                                            "json_remove",  "json_set",
                                            "json_replace", "json_type",
                                            "json_valid",   "json_array_length",
                                            "->",           "->>"};

void deny(sqlite3_context *context, int, sqlite3_value **)
{
    sqlite3_result_error(context, "function is not available", -1);
}

/// Of this thread, in nanoseconds; 0 where the system does not tell.
qint64 thread_processor_time()
{
#ifdef Q_OS_UNIX
    timespec time = {};
    if (::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time) == 0)
        return time.tv_sec * 1'000'000'000LL + time.tv_nsec;
#endif
    return 0;
}

} // namespace

sqlite_guard::sqlite_guard(const std::atomic<bool> &cancelled, qint64 file_size)
    : cancelled_(cancelled), file_size_(std::clamp(file_size, 0LL, largest_counted))
{
    renew();
    waiting_guard = this;
    // Connections that other threads of the host open meanwhile find no guard waiting.
    sqlite3_auto_extension(reinterpret_cast<void (*)()>(&sqlite_guard::attach));
}

sqlite_guard::~sqlite_guard()
{
    armed();
}

void sqlite_guard::renew()
{
    steps_left_ = spare_steps + steps_per_byte * file_size_;
    nanoseconds_left_ = spare_nanoseconds + nanoseconds_per_byte * file_size_;
}

bool sqlite_guard::armed()
{
    if (waiting_) {
        waiting_ = false;
        waiting_guard = nullptr;
        sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(&sqlite_guard::attach));
    }
    return reached_;
}

int sqlite_guard::attach(sqlite3 *database, const char ** /*error*/, const void * /*api*/)
{
    if (waiting_guard != nullptr)
        waiting_guard->set_up(database);
    return SQLITE_OK;
}

void sqlite_guard::set_up(sqlite3 *database)
{
    reached_ = true;
    for (const int off : {SQLITE_DBCONFIG_TRUSTED_SCHEMA, SQLITE_DBCONFIG_ENABLE_VIEW,
                          SQLITE_DBCONFIG_ENABLE_TRIGGER, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION})
        sqlite3_db_config(database, off, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_drop_modules(database, nullptr);
    for (const char *name : denied_functions)
        sqlite3_create_function(database, name, -1,
                                SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS, nullptr,
                                deny, nullptr, nullptr);
    // No value is longer than the file that holds it.
    constexpr qint64 shortest_limit = 1'000'000;
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH,
                  static_cast<int>(std::clamp<qint64>(file_size_, shortest_limit,
                                                      std::numeric_limits<int>::max())));
    sqlite3_limit(database, SQLITE_LIMIT_SQL_LENGTH, 1'000'000);
    sqlite3_limit(database, SQLITE_LIMIT_COLUMN, 2'000);
    sqlite3_limit(database, SQLITE_LIMIT_VDBE_OP, 100'000);
    sqlite3_limit(database, SQLITE_LIMIT_EXPR_DEPTH, 100);
    sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_progress_handler(database, steps_between_checks, &sqlite_guard::check, this);
}

int sqlite_guard::check(void *guard)
{
    auto &self = *static_cast<sqlite_guard *>(guard);
    const clock::time_point now = clock::now();
    qint64 spent = std::chrono::nanoseconds(now - self.last_check_).count();
    self.last_check_ = now;
    if (spent > short_stretch) {
        // Waiting for a disk is not the file's fault.
        const qint64 processor_time = thread_processor_time();
        if (processor_time > 0)
            spent = std::min(spent, processor_time - self.processor_time_);
        self.processor_time_ = processor_time;
    }
    self.steps_left_ -= steps_between_checks;
    self.nanoseconds_left_ -= spent;
    return self.cancelled_ || self.is_used_up() ? 1 : 0;
}
