// Icons of sites and thumbnails of pages, from "Favicons" and "thumbnails.db". No driver calls
// these readers, and hosts create the tables they write to.

#include "common/artefacts/stored_pictures.h"
#include "common/values/text_values.h"
#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

using namespace Qt::StringLiterals;

namespace
{

const char *const icons_signature = "void opera_winos::extract_favicons()";

const logged_failure icon_not_written = {
    .signature = icons_signature,
    .lines =
        open_failure(with_path("[extract_favicons]File Open ---FAILED--- for file path--->>>")),
};

const logged_failure icon_look_up_failed = {
    .signature = icons_signature,
    .lines = query_failure("[extract_favicons]source query of icon ---FAILED---"),
};

const logged_failure thumbnail_not_written = {
    .signature = "void opera_winos::extract_thumbnails()",
    .lines =
        open_failure(with_path("[extract_thumbnails]File Open ---FAILED--- for file path--->>>")),
};

/// The reading of all systems with the columns of this one.
source_reading with_insertion(source_reading reading, insertion insert)
{
    reading.insert = std::move(insert);
    return reading;
}

} // namespace

const database_reader winos_readers::favicons = {
    .signature = icons_signature,
    .starts = "[extract_favicons] -Starts",
    .destination_failed = open_failure("[extract_favicons]Destination Db opening ---FAILED--- "),
    .source_failed = open_failure("[extract_favicons]source Db opening ---FAILED--- "),
    .insert_failed = query_failure("[extract_favicons]insert query execution ---FAILED---"),
    .ends = "[extract_favicons] -Ends",
    .readings = {with_insertion(
        favicon_reading(query_failure(
            with_path("[extract_favicons]source query ---FAILED--- for file path--->>>"))),
        {.sql = "insert into favicon(bookmark,system_user,domain_user,id,icon_url,last_updated,"
                "relative_path,width,height,fav_urls,source_file, os_scheme_display,"
                "source_count_name) values(?,?,?,?,?,?,?,?,?,?,?,?,?)",
         .values = {untagged, system_user, domain_user,
                    as_stored(0),          // id
                    derived(icon_address), // icon_url
                    unix_seconds(1),       // last_updated
                    derived(icon_picture), // relative_path
                    as_stored(3),          // width
                    as_stored(4),          // height
                    derived(icon_pages),   // fav_urls
                    source_file_path, os_scheme_display, source_count_name}})},
    .own_tables = tables_of_icons(),
};

const database_reader winos_readers::thumbnails = {
    .signature = "void opera_winos::extract_thumbnails()",
    .starts = "[extract_thumbnails] -Starts",
    .destination_failed = open_failure("[extract_thumbnails]Destination Db opening ---FAILED--- "),
    .source_failed = open_failure("[extract_thumbnails]source Db opening ---FAILED--- "),
    .insert_failed = query_failure("[extract_thumbnails]insert query execution ---FAILED---"),
    .ends = "[extract_thumbnails] -Ends",
    .readings = {with_insertion(
        thumbnail_reading(query_failure(
            with_path("[extract_thumbnails]source query ---FAILED--- for file path--->>>"))),
        {.sql = "insert into thumbnails(bookmark,system_user,domain_user,url,last_used,"
                "actual_path,relative_path,file_name,size,date_created,hash_md5,hash_sha1,"
                "source_file, os_scheme_display,source_count_name) "
                "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
         .values = {untagged, system_user, domain_user,
                    percent_decoded(0), // url
                    unix_seconds(1),    // last_used
                    derived(actual_path), derived(relative_path), derived(file_name),
                    derived(file_size), // size
                    derived(date_created), derived(hash_md5), derived(hash_sha1), source_file_path,
                    os_scheme_display, source_count_name}})},
};

void opera_winos::extract_favicons()
{
    read_databases(winos_readers::favicons, found_.favicons, state_.run, [this](database_row &row) {
        const QString id = icon_id_of(row);
        const QString picture = export_icon(row, icon_not_written);
        const QString address =
            find_icon_url(row.helper_query(0), id, state_.run, icon_look_up_failed);
        const QStringList pages =
            find_icon_pages(row.helper_query(1), id, state_.run, icon_look_up_failed);
        row.derived = {address, picture, not_null(pages.join(u";;"_s))};
        return true;
    });
}

void opera_winos::extract_thumbnails()
{
    row_numbers numbers;
    read_databases(winos_readers::thumbnails, found_.thumbnails, state_.run,
                   [this, &numbers](database_row &row) {
                       const struct_thumbnail_info thumbnail =
                           export_thumbnail(state_.run, thumbnail_of(row), numbers.next(row.file()),
                                            thumbnail_not_written);
                       row.derived = thumbnail_values(thumbnail, empty_text(), empty_text());
                       return true;
                   });
}
