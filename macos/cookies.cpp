// Cookies, from the "Cookies" file. A value that the browser encrypted stays as it is.

#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

const database_reader macos_readers::cookies_11 = {
    .signature = "int opera_macos::extract_cookies_11()",
    .starts = "[extract_cookies_11] starts.",
    .destination_failed =
        open_failure("[extract_cookies_11]: open destination database --------FAILED----------"),
    .source_failed =
        open_failure("[extract_cookies_11]: Source database not open--------FAILED----------"),
    .insert_failed =
        query_failure("[extract_cookies_11]: insert query execute--------FAILED----------"),
    .ends = "[extract_cookies_11] end.",
    .readings = {{
        .select = "select creation_utc, host_key, name, value, path, expires_utc, secure, "
                  "last_access_utc, has_expires, persistent, httponly from cookies",
        .select_failed =
            query_failure("[extract_cookies_11]: select_query execute--------FAILED----------"),
        .insert = {.sql = "insert into cookies(bookmark,system_user,creation_utc, host_key, name, "
                          "value,path, expires_utc, secure, last_access_utc, has_expires, "
                          "persistent,httponly,source_file,artifacts_relation_source_file,"
                          "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?,?,  "
                          "?,?,?,?,?,  ?,?,?,?)",
                   // A stored 0 stays 0 in two of the three times: hosts tell "no expiry" from
                   // "never accessed" by it.
                   .values = {untagged, system_user,
                              unix_seconds_keeping_zero(0), // creation_utc
                              as_stored(1),                 // host_key
                              as_stored(2),                 // name
                              as_stored(3),                 // value
                              as_stored(4),                 // path
                              unix_seconds(5),              // expires_utc
                              yes_when_one(6),              // secure
                              unix_seconds_keeping_zero(7), // last_access_utc
                              yes_when_one(8),              // has_expires
                              yes_when_one(9),              // persistent
                              yes_when_one(10),             // httponly
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
};

const database_reader macos_readers::cookies = {
    .signature = "void opera_macos::extract_cookies()",
    .starts = "[extract_cookies] starts",
    .destination_failed =
        open_failure("[extract_cookies]Destination Db opening --------FAILED------- "),
    .source_failed = open_failure("[extract_cookies]source Db opening --------FAILED-------"),
    .insert_failed = query_failure("[extract_cookies]insert query exexution --------FAILED-------"),
    .ends = "[extract_cookies]end.",
    .readings = {{
        .select = "select creation_utc,host_key,name,value,path,expires_utc,last_access_utc "
                  "from cookies",
        .select_failed =
            query_failure("[extract_cookies]source_cookies query --------FAILED-------"),
        .insert = {.sql = "insert into cookies(bookmark,system_user,creation_utc,host_key,name,"
                          "value,path,expires_utc,last_access_utc, source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?,?,?,?,?,?)",
                   .values = {untagged, system_user,
                              unix_seconds(0), // creation_utc
                              as_stored(1),    // host_key
                              as_stored(2),    // name
                              as_stored(3),    // value
                              as_stored(4),    // path
                              unix_seconds(5), // expires_utc
                              unix_seconds(6), // last_access_utc
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
};

int opera_macos::extract_cookies_11()
{
    return read_databases(macos_readers::cookies_11, found_.cookies, state_.run);
}

void opera_macos::extract_cookies()
{
    read_databases(macos_readers::cookies, found_.cookies, state_.run);
}
