// Address profiles, from the "Web Data" file: the profile's own row, and names, e-mail addresses
// and phone numbers from tables of their own.

#include "common/debug_log.h"
#include "common/extraction/keyed_rows.h"
#include "common/values/text_values.h"
#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

/// What finds the rows of one profile.
struct profile_look_up {
    const char *signature;
    const char *starts;
    const char *open_failed;
    keyed_select rows;
    const char *ends;
};

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

keyed_select rows_of_profile(const char *statement, const char *failed, const char *table,
                             const char *columns, bool first_row_only = false)
{
    return {.statement = statement,
            .failed = query_failure(failed),
            .table = {.name = table,
                      .key = "guid",
                      .type = own_table::key_type::text,
                      .columns = columns,
                      .first_of_key = first_row_only}};
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
                      "values(?,?,?,? ,?,?,?,?, ?,?,?,?, ?,?,?,? ,?,?,?,?,?)"),
                  .older = true},
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
};

/// The look-up's connection to one private copy, and what is prepared on it.
struct opera_winos::profile_source {
    QString path;
    failure_log failures;
    keyed_rows rows;

    profile_source(const profile_look_up &look_up, const QString &copy, extraction_run &run)
        : path(copy), failures(QString::fromUtf8(look_up.signature), copy, {}),
          rows(look_up.rows, failures.signature(), copy, false, run, failures)
    {
    }
};

void opera_winos::for_each_profile_row(const profile_look_up &look_up, const QString &guid,
                                       const QString &web_data_path,
                                       const std::function<void(const QSqlQuery &)> &each)
{
    const QString signature = QString::fromUtf8(look_up.signature);
    debug_log(QString::fromUtf8(look_up.starts), signature);
    std::shared_ptr<profile_source> &kept = profile_sources_[signature];
    if (!kept || !kept->rows.is_open() || kept->path != web_data_path) {
        kept.reset(); // before another connection takes its name
        kept = std::make_shared<profile_source>(look_up, web_data_path, state_.run);
    }
    if (kept->rows.is_open())
        kept->rows.find(guid, each);
    else
        kept->failures.log(open_failure(look_up.open_failed), kept->rows.error_text(), {});
    debug_log(QString::fromUtf8(look_up.ends), signature);
}

QString opera_winos::joined_profile_rows(const profile_look_up &look_up, const QString &guid,
                                         const QString &web_data_path)
{
    QStringList values;
    for_each_profile_row(look_up, guid, web_data_path, [&values](const QSqlQuery &row) {
        values.append(row.value(0).toString());
    });
    return not_null(values.join(u"; "_s));
}

opera_winos::autofill_profile_info
opera_winos::extract_name_for_autofill_profiles(const QString &guid, const QString &web_data_path)
{
    static const profile_look_up look_up = {
        .signature = "opera_winos::autofill_profile_info "
                     "opera_winos::extract_name_for_autofill_profiles(QString, QString)",
        .starts = "[extract_name_for_autofill_profiles]  -Starts",
        .open_failed = "[extract_name_for_autofill_profiles]source Db opening ---FAILED--- ",
        .rows = rows_of_profile("select first_name,middle_name,last_name,date_of_birth,gender from "
                                "autofill_profile_names where guid = ",
                                "[extract_name_for_autofill_profiles]---FAILED--- to execute query "
                                "query_source_web_data",
                                "autofill_profile_names",
                                "first_name,middle_name,last_name,date_of_birth,gender", true),
        .ends = "[extract_name_for_autofill_profiles]  -Ends"};
    autofill_profile_info info;
    for_each_profile_row(look_up, guid, web_data_path, [&info](const QSqlQuery &row) {
        QStringList names = {row.value(0).toString(), row.value(1).toString(),
                             row.value(2).toString()};
        names.removeAll(QString()); // a missing middle name leaves no second blank
        info = {not_null(names.join(u' ')), not_null(row.value(3).toString()),
                gender_text(not_null(row.value(4).toString()))};
    });
    return info;
}

QString opera_winos::extract_email_for_autofill_profiles(const QString &guid,
                                                         const QString &web_data_path)
{
    static const profile_look_up look_up = {
        .signature = "QString opera_winos::extract_email_for_autofill_profiles(QString, QString)",
        .starts = "[extract_email_for_autofill_profiles]  -Starts",
        .open_failed = "[extract_email_for_autofill_profiles]source Db opening ---FAILED--- ",
        .rows = rows_of_profile("select email from autofill_profile_emails where guid = ",
                                "[extract_email_for_autofill_profiles]---FAILED--- to execute "
                                "query query_source_web_data",
                                "autofill_profile_emails", "email"),
        .ends = "[extract_email_for_autofill_profiles]  -Ends"};
    return joined_profile_rows(look_up, guid, web_data_path);
}

QString opera_winos::extract_phone_for_autofill_profiles(const QString &guid,
                                                         const QString &web_data_path)
{
    static const profile_look_up look_up = {
        .signature = "QString opera_winos::extract_phone_for_autofill_profiles(QString, QString)",
        .starts = "[extract_phone_for_autofill_profiles]  -Starts.",
        .open_failed = "[extract_phone_for_autofill_profiles]source Db opening ---FAILED--- ",
        .rows = rows_of_profile("select number from autofill_profile_phones where guid = ",
                                "[extract_phone_for_autofill_profiles]---FAILED--- to execute "
                                "query query_source_web_data",
                                "autofill_profile_phones", "number"),
        .ends = "[extract_phone_for_autofill_profiles]  -Ends"};
    return joined_profile_rows(look_up, guid, web_data_path);
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
