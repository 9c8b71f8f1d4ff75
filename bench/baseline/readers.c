#include "baseline/readers.h"

#include "baseline/conversions.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define LEADING_COLUMNS                                                                            \
    "bookmark integer,INT INTEGER PRIMARY KEY,system_user varchar(100),domain_user VARCHAR(100),"
#define TRAILING_COLUMNS                                                                           \
    "mirva_tag_value varchar(100),notes_icon VARCHAR(1024),tags_icon VARCHAR(1024),"               \
    "os_scheme_display VARCHAR(100),source_count_name VARCHAR(500),source_file varchar(500),"      \
    "artifacts_relation_source_file VARCHAR(1024),notes VARCHAR(500)"

static const char create_history[] =
    "CREATE TABLE history(" LEADING_COLUMNS
    "id VARCHAR(500),urls VARCHAR(500),url_text VARCHAR(500),title VARCHAR(300),"
    "typed_count VARCHAR(100),hidden VARCHAR(100),last_visit_date INTEGER,visit_time VARCHAR(100),"
    "last_visit_time INTEGER,visited_detail varchar(1024),visit_count varchar(1024),"
    "visit_duration VARCHAR(500),preview_file_path varchar(1024),export_file_paths varchar(1024),"
    "LINKFILENAME VARCHAR(1024),extended_attributes_key_value varchar(200),"
    "extended_attributes_value_for_search varchar(200),bookmarked_extended_attributes varchar(1024),"
    "bookmarked_exif_data varchar(1024)," TRAILING_COLUMNS ")";

static const char create_cookies[] =
    "CREATE TABLE cookies(" LEADING_COLUMNS
    "creation_utc INTEGER,host_key VARCHAR(300),name VARCHAR(100),value VARCHAR(100),"
    "path VARCHAR(100),expires_utc INTEGER,last_access_utc INTEGER,secure VARCHAR(100),"
    "has_expires VARCHAR(100),httponly VARCHAR(100),persistent VARCHAR(100)," TRAILING_COLUMNS ")";

void check(int result, int expected, sqlite3 *database)
{
    if (result == expected)
        return;
    fprintf(stderr, "%s\n", sqlite3_errmsg(database));
    exit(1);
}

static sqlite3_stmt *prepared(sqlite3 *database, const char *sql)
{
    sqlite3_stmt *statement = NULL;
    check(sqlite3_prepare_v2(database, sql, -1, &statement, NULL), SQLITE_OK, database);
    return statement;
}

/// False after the last row.
static int next_row(sqlite3_stmt *statement)
{
    const int result = sqlite3_step(statement);
    if (result != SQLITE_DONE)
        check(result, SQLITE_ROW, sqlite3_db_handle(statement));
    return result == SQLITE_ROW;
}

static void insert_row(sqlite3_stmt *insert)
{
    check(sqlite3_step(insert), SQLITE_DONE, sqlite3_db_handle(insert));
    sqlite3_reset(insert);
}

// What is bound lives until the row is inserted: SQLite need not copy it.

static void bind_part(sqlite3_stmt *insert, int place, const char *bytes, size_t size)
{
    // A null pointer would be bound as NULL.
    sqlite3_bind_text64(insert, place, bytes == NULL ? "" : bytes, size, SQLITE_STATIC,
                        SQLITE_UTF8);
}

static void bind_text(sqlite3_stmt *insert, int place, const char *text)
{
    sqlite3_bind_text(insert, place, text, -1, SQLITE_STATIC);
}

static const char *column_text(sqlite3_stmt *row, int column, size_t *size)
{
    const char *text = (const char *)sqlite3_column_text(row, column);
    *size = (size_t)sqlite3_column_bytes(row, column);
    return text;
}

static void bind_copy(sqlite3_stmt *insert, int place, sqlite3_stmt *row, int column)
{
    size_t size;
    const char *text = column_text(row, column, &size);
    sqlite3_bind_text64(insert, place, text, size, SQLITE_STATIC, SQLITE_UTF8);
}

static void bind_trimmed(sqlite3_stmt *insert, int place, sqlite3_stmt *row, int column)
{
    size_t size;
    const char *text = column_text(row, column, &size);
    if (text == NULL) {
        sqlite3_bind_null(insert, place);
        return;
    }
    const struct text_part part = trim(text, size);
    bind_part(insert, place, part.begin, part.size);
}

static void bind_seconds(sqlite3_stmt *insert, int place, int64_t browser_time)
{
    int64_t seconds;
    if (seconds_of_browser_time(browser_time, &seconds))
        sqlite3_bind_int64(insert, place, seconds);
    else
        bind_text(insert, place, "");
}

static void bind_yes_no(sqlite3_stmt *insert, int place, sqlite3_stmt *row, int column)
{
    bind_text(insert, place, sqlite3_column_int64(row, column) == 1 ? "YES" : "NO");
}

// ---- macOS history: a row per page, its visits as one text --------------------------------------

struct visit {
    int64_t page;
    int64_t time;
    int64_t transition;
    size_t number; ///< in the order of the table
};

struct visits {
    struct visit *first;
    size_t count;
};

static int by_page(const void *left, const void *right)
{
    const struct visit *a = left;
    const struct visit *b = right;
    if (a->page != b->page)
        return a->page < b->page ? -1 : 1;
    return a->number < b->number ? -1 : 1;
}

/// All visits of the file in the order of their pages: 32 bytes each, which no look-up beats.
static struct visits sorted_visits(sqlite3 *source)
{
    struct visits all = {NULL, 0};
    size_t room = 0;
    sqlite3_stmt *row = prepared(source, "select url,visit_time,transition from visits");
    while (next_row(row)) {
        if (all.count == room) {
            room = room == 0 ? 4096 : 2 * room;
            all.first = realloc(all.first, room * sizeof *all.first);
            if (all.first == NULL)
                exit(1);
        }
        all.first[all.count] =
            (struct visit){sqlite3_column_int64(row, 0), sqlite3_column_int64(row, 1),
                           sqlite3_column_int64(row, 2), all.count};
        ++all.count;
    }
    sqlite3_finalize(row);
    qsort(all.first, all.count, sizeof *all.first, by_page);
    return all;
}

static void append_visit(struct text_buffer *text, const struct visit *visit)
{
    static const char timestamp[] = "Visit Timestamp (UTC): ";
    int64_t seconds;
    if (seconds_of_browser_time(visit->time, &seconds)) {
        char utc[utc_text_size];
        const size_t size = utc_text(seconds, utc);
        append_text(text, timestamp, sizeof timestamp - 1);
        append_text(text, utc, size);
        append_text(text, ";", 1);
    }
    char transition[48];
    const int size =
        snprintf(transition, sizeof transition, "Transition: %lld;;", (long long)visit->transition);
    append_text(text, transition, (size_t)size);
}

static void read_macos_history(const struct reading *reading)
{
    sqlite3_stmt *page =
        prepared(reading->source, "select id,url,title,typed_count,last_visit_time,hidden,"
                                  "visit_count from urls");
    const struct visits all = sorted_visits(reading->source);
    const struct visit *visit = all.first;
    const struct visit *const end = all.first + all.count;
    sqlite3_stmt *insert = prepared(
        reading->result,
        "insert into history(bookmark,system_user,id,urls,title,typed_count,hidden,"
        "last_visit_date,visited_detail,visit_count,source_file,artifacts_relation_source_file,"
        "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    struct text_buffer visits = {0};
    bind_text(insert, 1, "0");
    bind_text(insert, 2, reading->system_user);
    bind_text(insert, 11, reading->source_file);
    bind_text(insert, 12, "");
    bind_text(insert, 13, reading->os_display);
    bind_text(insert, 14, reading->source_count);
    while (next_row(page)) {
        bind_trimmed(insert, 3, page, 0);
        bind_trimmed(insert, 4, page, 1);
        bind_trimmed(insert, 5, page, 2);
        bind_trimmed(insert, 6, page, 3);
        bind_yes_no(insert, 7, page, 5);
        bind_seconds(insert, 8, sqlite3_column_int64(page, 4));
        visits.size = 0;
        const int64_t id = sqlite3_column_int64(page, 0);
        while (visit != end && visit->page < id)
            ++visit;
        for (; visit != end && visit->page == id; ++visit)
            append_visit(&visits, visit);
        if (visits.size >= 2 && memcmp(visits.bytes + visits.size - 2, ";;", 2) == 0)
            visits.size -= 2;
        bind_part(insert, 9, visits.bytes, visits.size);
        bind_trimmed(insert, 10, page, 6);
        insert_row(insert);
    }
    free(visits.bytes);
    free(all.first);
    sqlite3_finalize(insert);
    sqlite3_finalize(page);
}

// ---- Windows history: a row per visit, with its page --------------------------------------------

/// The file inside the source that a file URL on drive C: names; empty for other URLs.
static void bind_local_path(sqlite3_stmt *insert, const struct text_part *url,
                            struct text_buffer *path)
{
    // A copy, because the search needs a zero byte at the end.
    path->size = 0;
    append_text(path, url->begin, url->size);
    append_text(path, "", 1);
    const char *local = NULL;
    if (strstr(path->bytes, "file://") != NULL && strstr(path->bytes, "C:/") != NULL) {
        // The first ":/" ends the scheme, the second one the drive.
        local = strstr(strstr(path->bytes, ":/") + 2, ":/");
        if (local != NULL)
            local += local[2] == '/' ? 2 : 1;
    }
    // The slash behind the drive is the one the path begins with.
    for (int place = 10; place <= 12; ++place)
        bind_text(insert, place, local == NULL ? "" : local);
}

static void bind_page(sqlite3_stmt *insert, sqlite3_stmt *page, struct text_buffer *decoded,
                      struct text_buffer *path)
{
    size_t size;
    const char *bytes = column_text(page, 0, &size);
    const struct text_part url = percent_decoded(bytes == NULL ? "" : bytes, size, decoded);
    bind_part(insert, 4, url.begin, url.size);
    bind_copy(insert, 5, page, 1);
    bind_copy(insert, 6, page, 2);
    bind_copy(insert, 7, page, 3);
    bind_seconds(insert, 8, sqlite3_column_int64(page, 4));
    bind_local_path(insert, &url, path);
    const int64_t hidden = sqlite3_column_int64(page, 5);
    if (hidden == 0 || hidden == 1)
        bind_text(insert, 15, hidden == 1 ? "YES" : "NO");
    else
        bind_copy(insert, 15, page, 5);
}

static void read_windows_history(const struct reading *reading)
{
    enum { page_id = 6, duration_column, time_column };
    sqlite3_stmt *visit =
        prepared(reading->source,
                 "select u.url,u.title,u.visit_count,u.typed_count,u.last_visit_time,u.hidden,u.id,"
                 "v.visit_duration,v.visit_time from visits v left join urls u on u.id=v.url");
    sqlite3_stmt *insert = prepared(
        reading->result,
        "insert into history(bookmark,system_user,domain_user,urls,title,visit_count,typed_count,"
        "last_visit_date,source_file,url_text,preview_file_path,export_file_paths,visit_time,"
        "visit_duration,hidden,os_scheme_display,source_count_name) "
        "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    struct text_buffer decoded = {0};
    struct text_buffer path = {0};
    bind_text(insert, 1, "0");
    bind_text(insert, 2, reading->system_user);
    bind_text(insert, 3, reading->domain_user);
    bind_text(insert, 9, reading->source_file);
    bind_text(insert, 16, reading->os_display);
    bind_text(insert, 17, reading->source_count);
    while (next_row(visit)) {
        if (sqlite3_column_type(visit, page_id) != SQLITE_NULL) {
            bind_page(insert, visit, &decoded, &path);
        } else {
            for (int place = 4; place <= 15; ++place)
                if (place != 9)
                    bind_text(insert, place, "");
        }
        const int64_t time = sqlite3_column_int64(visit, time_column);
        bind_seconds(insert, 13, time < 0 ? 0 : time);
        char duration[utc_text_size];
        bind_part(insert, 14, duration,
                  duration_text(sqlite3_column_int64(visit, duration_column), duration));
        insert_row(insert);
    }
    free(path.bytes);
    free(decoded.bytes);
    sqlite3_finalize(insert);
    sqlite3_finalize(visit);
}

// ---- macOS cookies ------------------------------------------------------------------------------

/// A stored 0 stays 0, unlike in the other times.
static void bind_seconds_or_zero(sqlite3_stmt *insert, int place, int64_t browser_time)
{
    int64_t seconds = 0;
    seconds_of_browser_time(browser_time, &seconds);
    sqlite3_bind_int64(insert, place, seconds);
}

static void read_cookies(const struct reading *reading)
{
    sqlite3_stmt *cookie =
        prepared(reading->source, "select creation_utc,host_key,name,value,path,expires_utc,secure,"
                                  "last_access_utc,has_expires,persistent,httponly from cookies");
    sqlite3_stmt *insert =
        prepared(reading->result,
                 "insert into cookies(bookmark,system_user,creation_utc,host_key,name,value,path,"
                 "expires_utc,secure,last_access_utc,has_expires,persistent,httponly,source_file,"
                 "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                 "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    bind_text(insert, 1, "0");
    bind_text(insert, 2, reading->system_user);
    bind_text(insert, 14, reading->source_file);
    bind_text(insert, 15, "");
    bind_text(insert, 16, reading->os_display);
    bind_text(insert, 17, reading->source_count);
    while (next_row(cookie)) {
        bind_seconds_or_zero(insert, 3, sqlite3_column_int64(cookie, 0));
        for (int column = 1; column <= 4; ++column)
            bind_copy(insert, 3 + column, cookie, column);
        bind_seconds(insert, 8, sqlite3_column_int64(cookie, 5));
        bind_yes_no(insert, 9, cookie, 6);
        bind_seconds_or_zero(insert, 10, sqlite3_column_int64(cookie, 7));
        bind_yes_no(insert, 11, cookie, 8);
        bind_yes_no(insert, 12, cookie, 9);
        bind_yes_no(insert, 13, cookie, 10);
        insert_row(insert);
    }
    sqlite3_finalize(insert);
    sqlite3_finalize(cookie);
}

const struct reader readers[] = {
    {"macos_history", create_history, read_macos_history},
    {"windows_history", create_history, read_windows_history},
    {"macos_cookies", create_cookies, read_cookies},
};
const int reader_count = sizeof readers / sizeof *readers;
