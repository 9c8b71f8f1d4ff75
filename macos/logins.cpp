// Saved logins, from the "Login Data" file. Passwords stay in the browser's encrypted form.

#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

const failure_lines query_failed =
    query_failure("[extract_logins_11] to execute query source_login -----FAILED------");

/// 0, the reading with ssl_valid, when the table has that column, otherwise 1.
std::size_t reading_by_columns(QSqlDatabase &source, const QString &signature)
{
    QSqlQuery columns(source);
    columns.setForwardOnly(true);
    if (!columns.exec(u"PRAGMA TABLE_INFO(logins)"_s))
        log_failure(query_failed, signature,
                    {.error = columns.lastError().text(), .query = columns.lastQuery()});
    while (columns.next()) {
        if (columns.value(1).toString() == "ssl_valid"_L1)
            return 0;
    }
    return 1;
}

insertion login_insertion(value_rule ssl_valid, value_rule preferred, value_rule blacklisted)
{
    return {.sql = "insert into logins(bookmark,system_user,origin_url,action_url,"
                   "username_element,username_value,password_element,password_value,"
                   "submit_element,signon_realm,date_created, ssl_valid, preferred,"
                   "blacklisted_by_user, source_file,artifacts_relation_source_file,"
                   "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?,  ?,?,?,?,?,  "
                   "?,?,?,?,?,?)",
            .values = {untagged, system_user,
                       percent_decoded(0), // origin_url
                       percent_decoded(1), // action_url
                       as_stored(2),       // username_element
                       as_stored(3),       // username_value
                       as_stored(4),       // password_element
                       as_stored(5),       // password_value
                       as_stored(6),       // submit_element
                       as_stored(7),       // signon_realm
                       unix_seconds(8),    // date_created
                       ssl_valid, preferred, blacklisted, source_file_path, relation_source_file,
                       os_scheme_display, source_count_name}};
}

} // namespace

const database_reader macos_readers::logins_11 = {
    .signature = "void opera_macos::extract_logins_11()",
    .starts = "[extract_logins_11] starts",
    .destination_failed =
        open_failure("[extract_logins_11]Destination Db opening -----FAILED------ "),
    .source_failed = open_failure("[extract_logins_11] source db opened -----FAILED-----"),
    .insert_failed = query_failure("[extract_logins_11] to execute query insert-----FAILED------ "),
    .ends = "[extract_logins_11]  end.",
    .readings = {{.select =
                      "select origin_url,action_url,username_element,username_value,"
                      "password_element,password_value,submit_element,signon_realm,date_created, "
                      "ssl_valid, preferred, blacklisted_by_user from logins",
                  .select_failed = query_failed,
                  .insert = login_insertion(yes_when_one(9), yes_when_one(10), yes_when_one(11))},
                 {.select =
                      "select origin_url,action_url,username_element,username_value,"
                      "password_element,password_value,submit_element,signon_realm,date_created, "
                      "preferred, blacklisted_by_user from logins",
                  .select_failed = query_failed,
                  .insert = login_insertion(empty_value, yes_when_one(9), yes_when_one(10))}},
    .choose_reading = reading_by_columns,
};

const database_reader macos_readers::login_data = {
    .signature = "void opera_macos::extract_login_data()",
    .starts = "[extract_login_data] starts",
    .destination_failed =
        open_failure("[extract_login_data]Destination Db opening --------FAILED------- "),
    .source_failed = open_failure("[extract_login_data]source Db opening --------FAILED------- "),
    .insert_failed =
        query_failure("[extract_login_data]--------FAILED------- to execute query insert "),
    .ends = "[extract_login_data]  end.",
    .readings = {{
        .select = "select origin_url,action_url,username_element,username_value,password_element,"
                  "password_value,submit_element,signon_realm,date_created from logins",
        .select_failed = query_failure("[extract_login_data]--------FAILED------- to execute "
                                       "query source_login "),
        .insert = {.sql = "insert into logins(bookmark,system_user,origin_url,action_url,"
                          "username_element,username_value,password_element,password_value,"
                          "submit_element,signon_realm,date_created,source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
                   .values = {untagged, system_user,
                              as_stored(0),    // origin_url
                              as_stored(1),    // action_url
                              as_stored(2),    // username_element
                              as_stored(3),    // username_value
                              as_stored(4),    // password_element
                              as_stored(5),    // password_value
                              as_stored(6),    // submit_element
                              as_stored(7),    // signon_realm
                              unix_seconds(8), // date_created
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
};

void opera_macos::extract_logins_11()
{
    read_databases(macos_readers::logins_11, found_.logins, state_.run);
}

void opera_macos::extract_login_data()
{
    read_databases(macos_readers::login_data, found_.logins, state_.run);
}
