// Settings of a profile ("Preferences") and of the whole browser ("Local State"), as pairs of label
// and text. No driver calls these readers.

#include "macos/opera_macos.h"
#include "macos/preference_settings.h"

namespace
{

insertion preference_insertion()
{
    return {.sql = "INSERT into preferences(bookmark,account_name,key,value,source_file,"
                   "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                   "values(?,?,?,?,?,?,?,?)",
            .values = {untagged, system_user,
                       as_stored(0), // key
                       as_stored(1), // value
                       source_file_path, relation_source_file, os_scheme_display,
                       source_count_name}};
}

const record_reader preferences_reader = {
    .signature = "void opera_macos::extract_preferences(QString)",
    .starts = "[extract_preferences] Starts",
    .destination_failed = {"[extract_preferences] destination_db open --------FAILED------",
                           "[extract_preferences] end with failure"},
    .insert_failed = query_failure("[extract_preferences] insert query --------FAILED------"),
    .ends = "[extract_preferences] ends",
    .insert = preference_insertion(),
};

const record_reader local_preferences_reader = {
    .signature = "void opera_macos::extract_local_preferences(QString)",
    .starts = "[extract_local_preferences] Starts",
    .destination_failed = {"[extract_local_preferences] destination_db open --------FAILED------",
                           "[extract_local_preferences] end with failure"},
    .insert_failed = query_failure("[extract_local_preferences] insert query --------FAILED------"),
    .ends = "[extract_local_preferences] ends",
    .insert = preference_insertion(),
};

using enum json_type;
using namespace setting_rules;

// clang-format off
constexpr setting local_settings[] = {
    {{"adblocker", "user_files"},                           array,   joined,       "Custom Blocked Advertisements:+:"},
    {{"adblocker", "stats", "by_date", "last_date_stored"}, text,    utc_moment,   "Last Ads Block Date (UTC):+:"},
    {{"startup_metric", "last_startup_timestamp"},          text,    utc_moment,   "Last Startup Timestamp (UTC):+:"},
    {{"startup_metric", "last_startup_version"},            string,  as_it_stands, "Last Startup Opera Version:+:"},
    {{"was", "restarted"},                                  boolean, yes_no,       "Restarted:+:"},
};
// clang-format on

} // namespace

void opera_macos::extract_preferences(const QString &source_path)
{
    read_json_file(preferences_reader, "[extract_preferences] source file opening ---FAILED--- ",
                   source_path, state_.run, [](const QJsonObject &document, record_sink &sink) {
                       write_settings(document, preference_settings(), sink);
                   });
}

void opera_macos::extract_local_preferences(const QString &source_path)
{
    read_json_file(local_preferences_reader,
                   "[extract_local_preferences] source file opening ---FAILED--- ", source_path,
                   state_.run, [](const QJsonObject &document, record_sink &sink) {
                       write_settings(document, local_settings, sink);
                   });
}
