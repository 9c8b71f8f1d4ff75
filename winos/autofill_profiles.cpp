// Address profiles, from the "Web Data" file: the profile's own row, and names, e-mail addresses
// and phone numbers from tables of their own.

#include "common/debug_log.h"
#include "common/extraction/named_connection.h"
#include "common/values/text_values.h"
#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>
#include <QtSql/QSqlRecord>

using namespace Qt::StringLiterals;

namespace
{

/// Places in source_row::derived.
enum profile_value { full_name, date_of_birth, gender, email, phone };

/// The address columns are called differently in the two generations, and origin came in place of
/// country.
insertion profile_insertion(const char *sql)
{
    return {.sql = sql, .values = {untagged_number,    system_user,
                                   domain_user,
                                   as_stored(0), // guid
                                   derived(full_name), derived(date_of_birth),
                                   derived(gender),    derived(email),
                                   derived(phone),
                                   as_stored(1),    // company_name
                                   as_stored(2),    // address_line_1
                                   as_stored(3),    // address_line_2
                                   as_stored(4),    // city
                                   as_stored(5),    // state
                                   as_stored(6),    // zipcode
                                   as_stored(7),    // country or origin
                                   as_stored(8),    // country_code
                                   unix_seconds(9), // date_modified
                                   source_file_path,   os_scheme_display,
                                   source_count_name}};
}

/// A query for the rows of one profile.
struct profile_look_up {
    const char *signature;
    const char *starts;
    const char *open_failed;
    const char *select; ///< the profile's guid is pasted behind it
    const char *query_failed;
    const char *ends;
};

/// Calls `each` for the profile's rows until it returns false.
void for_each_profile_row(const profile_look_up &look_up, const QString &guid,
                          named_connection &source, extraction_run &run,
                          const std::function<bool(const QSqlQuery &)> &each)
{
    const QString signature = QString::fromUtf8(look_up.signature);
    debug_log(QString::fromUtf8(look_up.starts), signature);
    const QString sql = pasted_statement(look_up.select, guid);
    if (source.is_open()) {
        QSqlQuery query(source.database());
        query.setForwardOnly(true);
        QString error;
        if (sql.isEmpty())
            error = unsafe_key_error();
        else if (!query.exec(sql))
            error = query.lastError().text();
        else
            error = for_each_found_row(query, query.record().count(), run, each);
        if (!error.isEmpty())
            log_failure(query_failure(look_up.query_failed), signature,
                        {.error = error, .query = sql});
    } else {
        log_failure(open_failure(look_up.open_failed), signature, {.error = source.error_text()});
    }
    debug_log(QString::fromUtf8(look_up.ends), signature);
}

QString joined_rows(const profile_look_up &look_up, const QString &guid, named_connection &source,
                    extraction_run &run)
{
    QStringList values;
    for_each_profile_row(look_up, guid, source, run, [&values](const QSqlQuery &row) {
        values.append(row.value(0).toString());
        return true;
    });
    return not_null(values.join(u"; "_s));
}

QString gender_text(const QString &stored)
{
    if (stored.compare("M"_L1, Qt::CaseInsensitive) == 0)
        return u"Male"_s;
    return stored.compare("F"_L1, Qt::CaseInsensitive) == 0 ? u"Female"_s : stored;
}

} // namespace

const database_reader winos_readers::autofill_profiles = {
    .signature = "void opera_winos::extract_webdata_autofill_profiles()",
    .starts = "[extract_webdata_autofill_profiles] -Starts",
    .destination_failed =
        open_failure("[extract_webdata_autofill_profiles]Destination Db opening ---FAILED--- "),
    .source_failed =
        open_failure("[extract_webdata_autofill_profiles]source Db opening ---FAILED--- "),
    .insert_failed =
        query_failure("[extract_webdata_autofill_profiles]---FAILED--- to execute query insert "),
    .ends = "[extract_webdata_autofill_profiles] -Ends",
    .readings = {{.select = "select guid,company_name,address_line_1,address_line_2,city,state,"
                            "zipcode,country,country_code,date_modified from autofill_profiles",
                  .select_failed = {"[extract_webdata_autofill_profiles] query_source_web_data "
                                    "--- NOT EXECUTED ---  ",
                                    "[extract_webdata_autofill_profiles] Executing Alternate "
                                    "Query..."},
                  .insert = profile_insertion(
                      "insert into autofill_profiles(bookmark,system_user,domain_user,guid,"
                      "fullname,date_of_birth,gender,email,phone_number,company_name,"
                      "address_line_1,address_line_2,city,state,zipcode,country,country_code,"
                      "date_modified, source_file, os_scheme_display,source_count_name) "
                      "values(?,?,?,? ,?,?,?,?, ?,?,?,?, ?,?,?,? ,?,?,?,?,?)")},
                 {.select = "select guid,company_name,street_address,dependent_locality,city,state,"
                            "zipcode,origin,country_code,date_modified from autofill_profiles",
                  .select_failed = query_failure("[extract_webdata_autofill_profiles]---FAILED--- "
                                                 "to execute new query_source_web_data "),
                  .insert = profile_insertion(
                      "insert into autofill_profiles(bookmark,system_user,domain_user,guid,"
                      "fullname,date_of_birth,gender,email,phone_number,company_name,"
                      "address_line_1,address_line_2,city,state,zipcode,origin,country_code,"
                      "date_modified, source_file, os_scheme_display,source_count_name) "
                      "values(?,?,?,?, ?,?,?,?, ?,?,?,?, ?,?,?,? ,?,?,?,?,?)")}},
    .searched_columns = {{"autofill_profile_names", "guid"},
                         {"autofill_profile_emails", "guid"},
                         {"autofill_profile_phones", "guid"}},
};

named_connection &opera_winos::profile_source(const QString &signature,
                                              const QString &web_data_path)
{
    std::unique_ptr<named_connection> &kept = profile_sources_[signature];
    if (!kept || !kept->is_open() || kept->database().databaseName() != web_data_path) {
        kept.reset(); // before another connection takes its name
        kept = std::make_unique<named_connection>(signature, web_data_path,
                                                  named_connection::access::read_only);
    }
    return *kept;
}

opera_winos::autofill_profile_info
opera_winos::extract_name_for_autofill_profiles(const QString &guid, const QString &web_data_path)
{
    static constexpr profile_look_up look_up = {
        .signature = "opera_winos::autofill_profile_info "
                     "opera_winos::extract_name_for_autofill_profiles(QString, QString)",
        .starts = "[extract_name_for_autofill_profiles]  -Starts",
        .open_failed = "[extract_name_for_autofill_profiles]source Db opening ---FAILED--- ",
        .select = "select first_name,middle_name,last_name,date_of_birth,gender from "
                  "autofill_profile_names where guid = ",
        .query_failed = "[extract_name_for_autofill_profiles]---FAILED--- to execute query "
                        "query_source_web_data",
        .ends = "[extract_name_for_autofill_profiles]  -Ends"};
    autofill_profile_info info;
    for_each_profile_row(
        look_up, guid, profile_source(QString::fromUtf8(look_up.signature), web_data_path),
        state_.run, [&info](const QSqlQuery &row) {
            QStringList names = {row.value(0).toString(), row.value(1).toString(),
                                 row.value(2).toString()};
            names.removeAll(QString()); // a missing middle name leaves no second blank
            info = {not_null(names.join(u' ')), not_null(row.value(3).toString()),
                    gender_text(not_null(row.value(4).toString()))};
            return false;
        });
    return info;
}

QString opera_winos::extract_email_for_autofill_profiles(const QString &guid,
                                                         const QString &web_data_path)
{
    static constexpr profile_look_up look_up = {
        .signature = "QString opera_winos::extract_email_for_autofill_profiles(QString, QString)",
        .starts = "[extract_email_for_autofill_profiles]  -Starts",
        .open_failed = "[extract_email_for_autofill_profiles]source Db opening ---FAILED--- ",
        .select = "select email from autofill_profile_emails where guid = ",
        .query_failed = "[extract_email_for_autofill_profiles]---FAILED--- to execute query "
                        "query_source_web_data",
        .ends = "[extract_email_for_autofill_profiles]  -Ends"};
    return joined_rows(look_up, guid,
                       profile_source(QString::fromUtf8(look_up.signature), web_data_path),
                       state_.run);
}

QString opera_winos::extract_phone_for_autofill_profiles(const QString &guid,
                                                         const QString &web_data_path)
{
    static constexpr profile_look_up look_up = {
        .signature = "QString opera_winos::extract_phone_for_autofill_profiles(QString, QString)",
        .starts = "[extract_phone_for_autofill_profiles]  -Starts.",
        .open_failed = "[extract_phone_for_autofill_profiles]source Db opening ---FAILED--- ",
        .select = "select number from autofill_profile_phones where guid = ",
        .query_failed = "[extract_phone_for_autofill_profiles]---FAILED--- to execute query "
                        "query_source_web_data",
        .ends = "[extract_phone_for_autofill_profiles]  -Ends"};
    return joined_rows(look_up, guid,
                       profile_source(QString::fromUtf8(look_up.signature), web_data_path),
                       state_.run);
}

void opera_winos::extract_webdata_autofill_profiles()
{
    read_databases(
        winos_readers::autofill_profiles, found_.web_data_1, state_.run, [this](database_row &row) {
            const QString guid = row.text(0);
            const QString copy = row.source().databaseName();
            const autofill_profile_info info = extract_name_for_autofill_profiles(guid, copy);
            row.derived = {info.full_name, info.date_of_birth, info.gender,
                           extract_email_for_autofill_profiles(guid, copy),
                           extract_phone_for_autofill_profiles(guid, copy)};
            return true;
        });
    profile_sources_.clear();
}
