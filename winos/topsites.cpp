// Top sites, from "favorites.db".

#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

const database_reader winos_readers::topsites = {
    .signature = "void opera_winos::extract_topsites()",
    .starts = "[extract_topsites] -Starts",
    .destination_failed = open_failure("[extract_topsites]Destination Db opening ---FAILED--- "),
    .source_failed = {with_system_user("[extract_topsites]source Db opening ---FAILED--- for "
                                       "system account--->>>"),
                      with_path("[extract_topsites]source Db opening ---FAILED--- for file "
                                "path--->>>"),
                      error_text},
    .insert_failed = query_failure("[extract_topsites] insert query execution ---FAILED---"),
    .ends = "[extract_topsites] -Ends",
    .readings = {{
        .select = "select url,name,guid from favorites",
        // Hosts know no line of its own for this failure; what the driver says must not be lost.
        .select_failed = {error_text, executed_query},
        .insert = {.sql = "insert into topsites(bookmark,system_user,domain_user,url,title,guid, "
                          "source_file, os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?,?)",
                   .values = {untagged, system_user, domain_user,
                              percent_decoded(0), // url
                              as_stored(1),       // title
                              as_stored(2),       // guid
                              source_file_path, os_scheme_display, source_count_name}},
    }},
};

void opera_winos::extract_topsites()
{
    read_databases(winos_readers::topsites, found_.favorites, state_.run);
}
