// Saved logins, from the "Login Data" file. Passwords stay in the browser's encrypted form.

#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

const database_reader winos_readers::login_data = {
    .signature = "void opera_winos::extract_login_data()",
    .starts = "[extract_login_data] -Starts",
    .destination_failed = open_failure("[extract_login_data]Destination Db opening ---FAILED--- "),
    .source_failed = open_failure("[extract_login_data]source Db opening ---FAILED--- "),
    .insert_failed = query_failure("[extract_login_data] ---FAILED--- to execute query insert "),
    .ends = "[extract_login_data] -Ends",
    .readings = {{
        .select = "select origin_url,action_url,username_element,username_value,password_element,"
                  "password_value,submit_element,signon_realm,date_created from logins",
        .select_failed =
            query_failure("[extract_login_data]---FAILED--- to execute query source_login "),
        .insert = {.sql = "insert into logins(bookmark,system_user,domain_user,origin_url,"
                          "action_url,username_element,username_value,password_element,"
                          "password_value,submit_element,signon_realm,date_created,source_file, "
                          "os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
                   .values = {untagged_number, system_user, domain_user,
                              as_stored(0),    // origin_url
                              as_stored(1),    // action_url
                              as_stored(2),    // username_element
                              as_stored(3),    // username_value
                              as_stored(4),    // password_element
                              as_stored(5),    // password_value
                              as_stored(6),    // submit_element
                              as_stored(7),    // signon_realm
                              unix_seconds(8), // date_created
                              source_file_path, os_scheme_display, source_count_name}},
    }},
};

void opera_winos::extract_login_data()
{
    read_databases(winos_readers::login_data, found_.login_data, state_.run);
}
