// Top sites, from "favorites.db".

#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

const database_reader macos_readers::topsites = {
    .signature = "void opera_macos::extract_topsites()",
    .starts = "[extract_topsites] starts",
    .destination_failed =
        open_failure("[extract_topsites]Destination Db opening --------FAILED------- "),
    .source_failed = open_failure(with_path("[extract_topsites]source Db opening "
                                            "--------FAILED------- for file path------")),
    .insert_failed = query_failure("[extract_topsites] insert query executed------FAILED-----"),
    .ends = "[extract_topsites] end.",
    .readings = {{
        .select = "select url,name,guid from favorites",
        .select_failed = query_failure("[extract_topsites] select query executed------FAILED-----"),
        .insert = {.sql = "insert into topsites(bookmark,system_user,url,title,guid, source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?,?)",
                   .values = {untagged, system_user,
                              percent_decoded(0), // url
                              as_stored(1),       // title
                              as_stored(2),       // guid
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
    .source_connection = "1",
};

void opera_macos::extract_topsites()
{
    read_databases(macos_readers::topsites, found_.topsites, state_.run, [](database_row &row) {
        return !row.text(0).isEmpty() || !row.text(1).isEmpty();
    });
}
