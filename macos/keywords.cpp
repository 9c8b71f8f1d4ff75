// Search engines, from the "Web Data" file. No driver calls this reader.

#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

const database_reader macos_readers::keywords_11 = {
    .signature = "int opera_macos::extract_keywords_11()",
    .starts = "[extract_keywords_11] starts",
    .destination_failed =
        open_failure("[extract_keywords_11]Destination Db opening -----FAILED------ "),
    .source_failed = open_failure("[extract_keywords_11]source Db opening -----FAILED------ "),
    .insert_failed =
        query_failure("[extract_keywords_11] insert query execution ------FAILED--------"),
    .ends = "[extract_keywords_11] end.",
    .readings = {{
        .select = "select short_name,keyword,favicon_url,url,suggest_url,date_created,"
                  "last_modified,usage_count,safe_for_autoreplace,prepopulate_id from keywords",
        .select_failed =
            query_failure("[extract_keywords_11] select_query execution ------FAILED--------"),
        .insert = {.sql = "insert into keywords(bookmark,system_user,short_name,keyword,"
                          "favicon_url,url,suggest_url,date_created,last_modified,usage_count,"
                          "safe_for_autoreplace,prepopulate_id,source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
                   .values = {untagged, system_user,
                              as_stored(0),    // short_name
                              as_stored(1),    // keyword
                              as_stored(2),    // favicon_url
                              as_stored(3),    // url
                              as_stored(4),    // suggest_url
                              unix_seconds(5), // date_created
                              unix_seconds(6), // last_modified
                              as_stored(7),    // usage_count
                              yes_when_one(8), // safe_for_autoreplace
                              as_stored(9),    // prepopulate_id
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
};

int opera_macos::extract_keywords_11()
{
    return read_databases(macos_readers::keywords_11, found_.web_data_11, state_.run);
}
