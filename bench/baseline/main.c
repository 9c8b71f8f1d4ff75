// bench_baseline READER SOURCE_ROOT FILE RESULT_FOLDER USER DOMAIN OS_DISPLAY SOURCE_COUNT
//
// Reads FILE (a path below SOURCE_ROOT) into RESULT_FOLDER/baseline.sqlite: from a copy, in one
// transaction, with SQLite's default settings.

#include "baseline/readers.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static void fail(const char *what, const char *path)
{
    fprintf(stderr, "%s %s\n", what, path);
    exit(1);
}

/// A companion file of a database may be missing.
static void copy_file(const char *from, const char *to, const char *suffix)
{
    static char block[1 << 18];
    char from_path[4096];
    char to_path[4096];
    snprintf(from_path, sizeof from_path, "%s%s", from, suffix);
    snprintf(to_path, sizeof to_path, "%s%s", to, suffix);
    FILE *source = fopen(from_path, "rb");
    if (source == NULL) {
        if (*suffix != '\0')
            return;
        fail("cannot read", from_path);
    }
    FILE *copy = fopen(to_path, "wb");
    if (copy == NULL)
        fail("cannot write", to_path);
    size_t size;
    while ((size = fread(block, 1, sizeof block, source)) > 0)
        if (fwrite(block, 1, size, copy) != size)
            fail("cannot write", to_path);
    if (ferror(source))
        fail("cannot read", from_path);
    if (fclose(copy) != 0)
        fail("cannot write", to_path);
    fclose(source);
}

static void run(sqlite3 *database, const char *sql)
{
    check(sqlite3_exec(database, sql, NULL, NULL, NULL), SQLITE_OK, database);
}

static void read_file(const struct reader *reader, const char *file, const char *result_folder,
                      struct reading reading)
{
    char copy[4096];
    char result[4096];
    snprintf(copy, sizeof copy, "%s/source_copy", result_folder);
    snprintf(result, sizeof result, "%s/baseline.sqlite", result_folder);
    copy_file(file, copy, "");
    copy_file(file, copy, "-wal");
    copy_file(file, copy, "-shm");

    check(sqlite3_open(result, &reading.result), SQLITE_OK, reading.result);
    check(sqlite3_open_v2(copy, &reading.source, SQLITE_OPEN_READONLY, NULL), SQLITE_OK,
          reading.source);
    run(reading.result, reader->create_table);
    run(reading.result, "begin");
    reader->read(&reading);
    run(reading.result, "commit");
    check(sqlite3_close(reading.source), SQLITE_OK, reading.source);
    check(sqlite3_close(reading.result), SQLITE_OK, reading.result);
    remove(copy);
}

int main(int argument_count, char **arguments)
{
    if (argument_count != 9)
        fail("usage: bench_baseline READER SOURCE_ROOT FILE RESULT_FOLDER USER DOMAIN OS_DISPLAY",
             "SOURCE_COUNT");
    const size_t root_size = strlen(arguments[2]);
    if (strncmp(arguments[3], arguments[2], root_size) != 0)
        fail("not below the source root:", arguments[3]);
    const struct reading reading = {
        .system_user = arguments[5],
        .domain_user = arguments[6],
        .source_file = arguments[3] + root_size,
        .os_display = arguments[7],
        .source_count = arguments[8],
    };
    for (int i = 0; i < reader_count; ++i) {
        if (strcmp(readers[i].name, arguments[1]) == 0) {
            read_file(&readers[i], arguments[3], arguments[4], reading);
            return 0;
        }
    }
    fail("no such reader:", arguments[1]);
}
