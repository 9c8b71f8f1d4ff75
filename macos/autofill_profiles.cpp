// Address profiles, from the "Web Data" file: the profile's own row, and names, e-mail addresses
// and phone numbers from tables of their own. Times are copied as the browser stored them.

#include "common/values/text_values.h"
#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

/// Places in source_row::derived.
enum profile_value { full_name, last_name, middle_name, email, phone };

const QString emails = u"select email from autofill_profile_emails where guid = ?"_s;
const QString phones = u"select number from autofill_profile_phones where guid = ?"_s;

QString joined_names(QStringList names)
{
    names.removeAll(QString());
    return not_null(names.join(u' '));
}

/// Takes the first value of every row.
auto joining(QStringList &values)
{
    return [&values](const QSqlQuery &row) {
        values.append(row.value(0).toString());
        return true;
    };
}

/// The first value of the profile's first row.
QString first_row(QSqlQuery &query, const QString &select, const QString &guid, extraction_run &run,
                  const char *failed, const QString &signature)
{
    QString value = empty_text();
    look_up_rows(query, select, guid, run, query_failure(failed), signature,
                 [&value](const QSqlQuery &row) {
                     value = not_null(row.value(0).toString());
                     return false;
                 });
    return value;
}

/// The table has no column for a first name of its own, and names fullname twice. Both receive the
/// full name, so that it does not matter which one counts; where the browser stored none, it is
/// made of the parts, so that no first name is lost.
insertion profile_insertion()
{
    return {.sql = "insert into autofill_profiles(bookmark,system_user,guid,fullname,lastname,"
                   "middlename,fullname,email,phone_number,company_name,street_address,"
                   "dependent_locality,city,state,zipcode,origin,country_code,date_modified,"
                   "lang_code, use_count,date_used,source_file,artifacts_relation_source_file,"
                   "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?,  ?,?,?,?,?,  "
                   "?,?,?,?,?,  ?,?,?,?,?,  ?,?,?)",
            .values = {untagged,
                       system_user,
                       as_stored(0),         // guid
                       derived(full_name),   // fullname
                       derived(last_name),   // lastname
                       derived(middle_name), // middlename
                       derived(full_name),   // fullname
                       derived(email),       // email
                       derived(phone),       // phone_number
                       as_stored(1),         // company_name
                       as_stored(2),         // street_address
                       as_stored(3),         // dependent_locality
                       as_stored(4),         // city
                       as_stored(5),         // state
                       as_stored(6),         // zipcode
                       as_stored(7),         // origin
                       as_stored(8),         // country_code
                       as_stored(9),         // date_modified
                       as_stored(10),        // lang_code
                       as_stored(11),        // use_count
                       as_stored(12),        // date_used
                       source_file_path,
                       relation_source_file,
                       os_scheme_display,
                       source_count_name}};
}

/// The tables of a profile's parts, with the columns that the statements of a generation read.
std::vector<own_table> profile_tables(const char *name_columns)
{
    constexpr auto text = own_table::key_type::text;
    return {
        {.name = "autofill_profile_names", .key = "guid", .type = text, .columns = name_columns},
        {.name = "autofill_profile_emails", .key = "guid", .type = text, .columns = "email"},
        {.name = "autofill_profile_phones", .key = "guid", .type = text, .columns = "number"}};
}

} // namespace

const database_reader macos_readers::autofill_profiles_11 = {
    .signature = "int opera_macos::extract_webdata_autofill_profiles_11()",
    .starts = "[extract_webdata_autofill_profiles_11]  starts.",
    .destination_failed = open_failure("[extract_webdata_autofill_profiles_11]Destination Db "
                                       "opening -----FAILED------ "),
    .source_failed = open_failure("[extract_webdata_autofill_profiles_11]source Db opening "
                                  "-----FAILED------ "),
    .insert_failed = query_failure("[extract_webdata_autofill_profiles_11]Insertion Query "
                                   "-----FAILED-----"),
    .ends = "[extract_webdata_autofill_profiles_11] end.",
    .readings = {{
        .select = "select guid,company_name,street_address,dependent_locality,city,state,zipcode,"
                  "origin,country_code,date_modified,language_code, use_count, use_date from "
                  "autofill_profiles",
        .select_failed =
            query_failure("[extract_webdata_autofill_profiles_11] select_query -----FAILED-----"),
        .insert = profile_insertion(),
    }},
    .own_tables = profile_tables("first_name, middle_name, last_name, full_name"),
};

const database_reader macos_readers::autofill_profiles = {
    .signature = "void opera_macos::extract_webdata_autofill_profiles()",
    .starts = "[extract_webdata_autofill_profiles] starts",
    .destination_failed = open_failure("[extract_webdata_autofill_profiles]Destination Db opening "
                                       "--------FAILED------- "),
    .source_failed = open_failure("[extract_webdata_autofill_profiles]source Db opening "
                                  "--------FAILED------- "),
    .insert_failed = query_failure("[extract_webdata_autofill_profiles]--------FAILED------- to "
                                   "execute query insert "),
    .ends = "[extract_webdata_autofill_profiles] end.",
    .readings =
        {{.select = "select guid,company_name,address_line_1,address_line_2,city,state,zipcode,"
                    "country,country_code,date_modified from autofill_profiles",
          .select_failed = {},
          .insert = {.sql = "insert into autofill_profiles(bookmark,system_user,guid,fullname,"
                            "email,phone_number,company_name,address_line_1,address_line_2,city,"
                            "state,zipcode,country,country_code,date_modified, source_file,"
                            "os_scheme_display,source_count_name) "
                            "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
                     .values = {untagged, system_user,
                                as_stored(0),       // guid
                                derived(full_name), // fullname
                                derived(email),     // email
                                derived(phone),     // phone_number
                                as_stored(1),       // company_name
                                as_stored(2),       // address_line_1
                                as_stored(3),       // address_line_2
                                as_stored(4),       // city
                                as_stored(5),       // state
                                as_stored(6),       // zipcode
                                as_stored(7),       // country
                                as_stored(8),       // country_code
                                as_stored(9),       // date_modified
                                source_file_path, os_scheme_display, source_count_name}}},
         {.select = "select guid,company_name,street_address,dependent_locality,city,state,"
                    "zipcode,origin,country_code,date_modified from autofill_profiles",
          .select_failed =
              query_failure("[extract_webdata_autofill_profiles]--------FAILED---2---- "
                            "to execute query_source_web_data "),
          .insert = {.sql = "insert into autofill_profiles(bookmark,system_user,guid,fullname,"
                            "email,phone_number,company_name,address_line_1,address_line_2,city,"
                            "state,zipcode,origin,country_code,date_modified, source_file,"
                            "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                            "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
                     .values = {untagged, system_user,
                                as_stored(0),       // guid
                                derived(full_name), // fullname
                                derived(email),     // email
                                derived(phone),     // phone_number
                                as_stored(1),       // company_name
                                as_stored(2),       // address_line_1, from street_address
                                as_stored(3),       // address_line_2, from dependent_locality
                                as_stored(4),       // city
                                as_stored(5),       // state
                                as_stored(6),       // zipcode
                                as_stored(7),       // origin
                                as_stored(8),       // country_code
                                as_stored(9),       // date_modified
                                source_file_path, relation_source_file, os_scheme_display,
                                source_count_name}}}},
    .own_tables = profile_tables("first_name, middle_name, last_name, date_of_birth, gender"),
};

struct_autofill_names opera_macos::get_name_for_autofill_profiles(const QString &guid,
                                                                  QSqlQuery &query)
{
    struct_autofill_names names;
    look_up_rows(query,
                 u"select first_name,middle_name,last_name,full_name from autofill_profile_names "
                 "where guid = ?"_s,
                 guid, state_.run,
                 query_failure("[get_name_for_autofill_profiles]-----FAILED------ to execute query "
                               "query_source_web_data"),
                 u"struct_autofill_names opera_macos::get_name_for_autofill_profiles(QString, "
                 "QSqlQuery)"_s,
                 [&names](const QSqlQuery &row) {
                     names = {row.value(0).toString(), row.value(1).toString(),
                              row.value(2).toString(), row.value(3).toString()};
                     return false;
                 });
    return names;
}

QString opera_macos::get_email_for_autofill_profiles(const QString &guid, QSqlQuery &query)
{
    return first_row(query, emails, guid, state_.run,
                     "[get_email_for_autofill_profiles]-----FAILED------ to execute query "
                     "query_source_web_data",
                     u"QString opera_macos::get_email_for_autofill_profiles(QString, "
                     "QSqlQuery)"_s);
}

QString opera_macos::get_phone_for_autofill_profiles(const QString &guid, QSqlQuery &query)
{
    return first_row(query, phones, guid, state_.run,
                     "[get_phone_for_autofill_profiles]-----FAILED------ to execute query "
                     "query_source_web_data",
                     u"QString opera_macos::get_phone_for_autofill_profiles(QString, "
                     "QSqlQuery)"_s);
}

QString opera_macos::get_name_for_autofill_profiles(const QSqlDatabase &source, const QString &guid,
                                                    const QString &caller)
{
    QSqlQuery query(source);
    QString text = empty_text();
    look_up_rows(query,
                 u"select first_name,middle_name,last_name,date_of_birth,gender from "
                 "autofill_profile_names where guid = ?"_s,
                 guid, state_.run,
                 query_failure("[get_name_for_autofill_profiles]--------FAILED------- to execute "
                               "query"),
                 caller, [&text](const QSqlQuery &row) {
                     text += u"Name: " +
                             joined_names({row.value(0).toString(), row.value(1).toString(),
                                           row.value(2).toString()}) +
                             u";Date of Birth: " + row.value(3).toString() + u";Gender: " +
                             row.value(4).toString() + u";; ";
                     return true;
                 });
    return text;
}

QString opera_macos::get_email_for_autofill_profiles(const QSqlDatabase &source,
                                                     const QString &guid, const QString &caller)
{
    QSqlQuery query(source);
    QStringList values;
    look_up_rows(query, emails, guid, state_.run,
                 query_failure("[get_email_for_autofill_profiles]--------FAILED------- ---to "
                               "execute query "),
                 caller, joining(values));
    return not_null(values.join(u"; "_s));
}

QString opera_macos::get_phone_for_autofill_profiles(const QSqlDatabase &source,
                                                     const QString &guid, const QString &caller)
{
    QSqlQuery query(source);
    QStringList values;
    look_up_rows(query, u"select number from autofill_profile_phones where guid = "_s, guid,
                 state_.run,
                 query_failure("[get_phone_for_autofill_profiles]--------FAILED------- "
                               "*****to execute query query_source_phone"),
                 caller, joining(values));
    return not_null(values.join(u"; "_s));
}

int opera_macos::extract_webdata_autofill_profiles_11()
{
    return read_databases(
        macos_readers::autofill_profiles_11, found_.web_data_11, state_.run,
        [this](database_row &row) {
            const QString guid = row.text(0);
            const struct_autofill_names name =
                get_name_for_autofill_profiles(guid, row.helper_query(0));
            row.derived = {name.full_name.isEmpty()
                               ? joined_names({name.first_name, name.middle_name, name.last_name})
                               : name.full_name,
                           name.last_name, name.middle_name,
                           get_email_for_autofill_profiles(guid, row.helper_query(1)),
                           get_phone_for_autofill_profiles(guid, row.helper_query(2))};
            return true;
        });
}

void opera_macos::extract_webdata_autofill_profiles()
{
    const QString signature = QString::fromUtf8(macos_readers::autofill_profiles.signature);
    read_databases(
        macos_readers::autofill_profiles, found_.web_data, state_.run, [&](database_row &row) {
            const QSqlDatabase source = row.source();
            const QString guid = row.text(0);
            row.derived = {get_name_for_autofill_profiles(source, guid, signature), empty_text(),
                           empty_text(), get_email_for_autofill_profiles(source, guid, signature),
                           get_phone_for_autofill_profiles(source, guid, signature)};
            return true;
        });
}
