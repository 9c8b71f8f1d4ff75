#pragma once

#include <sqlite3.h>

/// Both databases of a run and the values that all rows of the file share.
struct reading {
    sqlite3 *source;
    sqlite3 *result;
    const char *system_user;
    const char *domain_user;
    const char *source_file; ///< inside the source, begins with "/"
    const char *os_display;
    const char *source_count;
};

struct reader {
    const char *name;
    const char *create_table;
    void (*read)(const struct reading *);
};

extern const struct reader readers[];
extern const int reader_count;

/// Ends the program with SQLite's message unless the result is `expected`.
void check(int result, int expected, sqlite3 *database);
