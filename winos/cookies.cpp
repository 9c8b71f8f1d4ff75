// Cookies, from the "Cookies" file. A value that the browser encrypted stays as it is.

#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

const database_reader winos_readers::cookies = {
    .signature = "void opera_winos::extract_cookies()",
    .starts = "[extract_cookies] -Starts",
    .destination_failed = open_failure("[extract_cookies]Destination Db opening ---FAILED--- "),
    .source_failed = open_failure("[extract_cookies]source Db opening ---FAILED---"),
    .insert_failed = query_failure("[extract_cookies]insert query exexution ---FAILED---"),
    .ends = "[extract_cookies] -Ends",
    .readings = {{
        .select = "select creation_utc,host_key,name,value,path,expires_utc,last_access_utc "
                  "from cookies",
        .select_failed = query_failure(
            with_path("[extract_cookies]source_cookies query ---FAILED--- for file path--->>>")),
        .insert = {.sql = "insert into cookies(bookmark,system_user,domain_user,creation_utc,"
                          "host_key,name,value,path,expires_utc,last_access_utc, source_file, "
                          "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?,?,?,?,?,?,?)",
                   .values = {untagged_number, system_user, domain_user,
                              unix_seconds(0), // creation_utc
                              as_stored(1),    // host_key
                              as_stored(2),    // name
                              as_stored(3),    // value
                              as_stored(4),    // path
                              unix_seconds(5), // expires_utc
                              unix_seconds(6), // last_access_utc
                              source_file_path, os_scheme_display, source_count_name}},
    }},
};

void opera_winos::extract_cookies()
{
    read_databases(winos_readers::cookies, found_.cookies, state_.run);
}
