// Icons of sites and thumbnails of pages, from "Favicons" and "thumbnails.db". No driver calls
// these readers.

#include "common/artefacts/stored_pictures.h"
#include "common/values/text_values.h"
#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

using namespace Qt::StringLiterals;

namespace
{

const logged_failure icon_not_written = {
    .signature = "void opera_macos::extract_favicons_11()",
    .lines = {with_path("[extract_favicons_11]file open -----FAILED-----"), error_text},
};

// Hosts know this line for both look-ups, although neither inserts anything.
const failure_lines icon_look_up_failed =
    query_failure("[get_icon_url]Insertion Query -----FAILED-----");

const logged_failure thumbnail_not_written = {
    .signature = "struct_thumbnail_info opera_macos::get_thumbnail_image(QByteArray, int)",
    .lines = {with_path("[get_thumbnail_image] file open --------FAILED-----"),
              {"-----Error----", failure_line::detail::error}},
};

} // namespace

const database_reader macos_readers::favicons_11 = {
    .signature = "void opera_macos::extract_favicons_11()",
    .starts = "[extract_favicons_11] Starts",
    .destination_failed =
        open_failure("[extract_favicons_11] Destination Db opening ---FAILED--- "),
    .source_failed =
        open_failure(with_path("[extract_favicons_11]Source Db opening ----FAILED---")),
    .insert_failed =
        query_failure("[extract_favicons_11]Insertion Query ----------FAILED------------"),
    .ends = "[extract_favicons_11] Ends",
    .readings = {favicon_reading(
        {"[extract_favicons_11]Select query --------FAILED----------", error_text})},
    .own_tables = tables_of_icons(),
    .source_connection = "1",
};

const database_reader macos_readers::thumbnails = {
    .signature = "void opera_macos::extract_thumbnails()",
    .starts = "[extract_thumbnails]  starts.",
    .destination_failed =
        open_failure("[extract_thumbnails]Destination Db opening --------FAILED------- "),
    .source_failed = open_failure("[extract_thumbnails]source Db opening --------FAILED------- "),
    .insert_failed = {"[extract_thumbnails]insert query --------FAILED------- to execute ",
                      error_text},
    .ends = "[extract_thumbnails] end.",
    .readings = {thumbnail_reading(
        query_failure("[extract_thumbnails] query --------FAILED------- to execute"))},
    .source_connection = "1",
};

QString opera_macos::get_icon_url(QSqlQuery &query, const QString &icon_id)
{
    return find_icon_url(
        query, icon_id, state_.run,
        {"QString opera_macos::get_icon_url(QSqlQuery, QString)", icon_look_up_failed});
}

QStringList opera_macos::get_fav_urls(QSqlQuery &query, const QString &icon_id)
{
    return find_icon_pages(
        query, icon_id, state_.run,
        {"QStringList opera_macos::get_fav_urls(QSqlQuery, QString)", icon_look_up_failed});
}

struct_thumbnail_info opera_macos::get_thumbnail_image(const QByteArray &image_data,
                                                       int number) const
{
    return export_thumbnail(state_.run, image_data, number, thumbnail_not_written);
}

void opera_macos::extract_favicons_11()
{
    read_databases(macos_readers::favicons_11, found_.favicons, state_.run,
                   [this](database_row &row) {
                       const QString icon_id = icon_id_of(row);
                       const QString picture = export_icon(row, icon_not_written);
                       const QString address = get_icon_url(row.helper_query(0), icon_id);
                       const QStringList pages = get_fav_urls(row.helper_query(1), icon_id);
                       row.derived = {address, picture, not_null(pages.join(u";;"_s))};
                       return true;
                   });
}

void opera_macos::extract_thumbnails()
{
    row_numbers numbers;
    read_databases(macos_readers::thumbnails, found_.thumbnails, state_.run,
                   [this, &numbers](database_row &row) {
                       const struct_thumbnail_info thumbnail =
                           get_thumbnail_image(thumbnail_of(row), numbers.next(row.file()));
                       const struct_extended_attributes extended =
                           get_extended_attributes({thumbnail.actual_path}, {extended_attributes_});
                       row.derived =
                           thumbnail_values(thumbnail, extended.xml_text, extended.search_text);
                       return true;
                   });
}
