#include "common/artefacts/stored_pictures.h"

#include "common/artefacts/exported_pictures.h"
#include "common/values/text_values.h"

#include <QDateTime>
#include <QFileInfo>
#include <QtSql/QSqlError>
#include <QtSql/QSqlQuery>

#include <utility>

using namespace Qt::StringLiterals;

namespace
{

enum icon_column { bitmap_icon_id, last_updated, icon_image, width, height };
enum thumbnail_column { page_url, last_used, page_image };
constexpr QLatin1StringView pictures_folder = "Images/"_L1;

void report(const logged_failure &failure, const failure_details &details)
{
    log_failure(failure.lines, QString::fromUtf8(failure.signature), details);
}

} // namespace

source_reading favicon_reading(failure_lines select_failed)
{
    return {.select = "select icon_id, last_updated, image_data, width, height from "
                      "favicon_bitmaps",
            .select_failed = std::move(select_failed),
            .insert = {.sql = "insert into favicon(bookmark,system_user,id,icon_url,last_updated,"
                              "relative_path,width,height,fav_urls,source_file,"
                              "artifacts_relation_source_file,os_scheme_display,"
                              "source_count_name) values(?,?,?,?,?,?, ?, ?,?,?,?,?,?)",
                       .values = {untagged, system_user,
                                  as_stored(bitmap_icon_id),  // id
                                  derived(icon_address),      // icon_url
                                  unix_seconds(last_updated), // last_updated
                                  derived(icon_picture),      // relative_path
                                  as_stored(width),           // width
                                  as_stored(height),          // height
                                  derived(icon_pages),        // fav_urls
                                  source_file_path, relation_source_file, os_scheme_display,
                                  source_count_name}}};
}

std::vector<own_table> tables_of_icons()
{
    return {
        {.name = "favicons", .key = "id", .type = own_table::key_type::number, .columns = "url"},
        {.name = "icon_mapping",
         .key = "icon_id",
         .type = own_table::key_type::number,
         .columns = "page_url"}};
}

QString icon_id_of(const source_row &row)
{
    return row.text(bitmap_icon_id);
}

QString export_icon(const source_row &row, const logged_failure &not_written)
{
    const QByteArray picture = row.stored(icon_image).toByteArray();
    if (picture.isEmpty())
        return empty_text();
    const QString folder = row.run().result_directory + pictures_folder;
    const QString name = safe_picture_name({icon_id_of(row), row.file().system_user}, u".png"_s);
    if (name.isEmpty()) {
        report(not_written,
               {.path = folder, .error = u"The stored icon id does not suit a file name"_s});
        return empty_text();
    }
    QString error;
    if (!write_picture(folder + name, picture, &error)) {
        report(not_written, {.path = folder + name, .error = error});
        return empty_text();
    }
    return u"./"_s + pictures_folder + name;
}

QString find_icon_url(QSqlQuery &query, const QString &icon_id, extraction_run &run,
                      const logged_failure &failed)
{
    QString url = empty_text();
    look_up_rows(query, u"select url from favicons where id = ?"_s, icon_id, run, failed.lines,
                 QString::fromUtf8(failed.signature), [&url](const QSqlQuery &row) {
                     url = not_null(row.value(0).toString());
                     return false;
                 });
    return url;
}

QStringList find_icon_pages(QSqlQuery &query, const QString &icon_id, extraction_run &run,
                            const logged_failure &failed)
{
    QStringList pages;
    look_up_rows(query, u"select page_url from icon_mapping where icon_id = ?"_s, icon_id, run,
                 failed.lines, QString::fromUtf8(failed.signature), [&pages](const QSqlQuery &row) {
                     pages.append(row.value(0).toString());
                     return true;
                 });
    return pages;
}

source_reading thumbnail_reading(failure_lines select_failed)
{
    return {.select = "select url, last_used, image_data from thumbnails",
            .select_failed = std::move(select_failed),
            .insert = {.sql = "insert into thumbnails(bookmark,system_user, url, last_used , "
                              "actual_path,relative_path, file_name, size, date_created,hash_md5,"
                              "hash_sha1 ,source_file,artifacts_relation_source_file,"
                              "ext_attributes_key_value,ext_attributes_value_for_search,"
                              "os_scheme_display,source_count_name) "
                              "values(?,?,?,?,?,?,?,?,?, ?,?,?,?,?, ?,?,?)",
                       .values = {untagged_number, system_user,
                                  percent_decoded(page_url), // url
                                  unix_seconds(last_used),   // last_used
                                  derived(actual_path),      // actual_path
                                  derived(relative_path),    // relative_path
                                  derived(file_name),        // file_name
                                  derived(file_size),        // size
                                  derived(date_created),     // date_created
                                  derived(hash_md5),         // hash_md5
                                  derived(hash_sha1),        // hash_sha1
                                  source_file_path, relation_source_file,
                                  derived(attribute_document), // ext_attributes_key_value
                                  derived(attribute_values),   // ext_attributes_value_for_search
                                  os_scheme_display, source_count_name}}};
}

QByteArray thumbnail_of(const source_row &row)
{
    return row.stored(page_image).toByteArray();
}

struct_thumbnail_info export_thumbnail(const extraction_run &run, const QByteArray &picture,
                                       int number, const logged_failure &not_written)
{
    const QString name = QString::number(number) + u".png";
    const QString path = run.result_directory + pictures_folder + name;
    QString error;
    if (!write_picture(path, picture, &error)) {
        report(not_written, {.path = path, .error = error});
        return {};
    }
    const QFileInfo file(path);
    struct_thumbnail_info thumbnail;
    thumbnail.relative_path = u"./"_s + pictures_folder + name;
    thumbnail.actual_path = path;
    thumbnail.file_name = name;
    thumbnail.date_created = not_null(file.birthTime().toString(Qt::ISODate).replace(u':', u'-'));
    thumbnail.size = QString::number(file.size());
    return thumbnail;
}

QVariantList thumbnail_values(const struct_thumbnail_info &thumbnail, const QString &document,
                              const QString &values)
{
    return {thumbnail.actual_path,
            thumbnail.relative_path,
            thumbnail.file_name,
            thumbnail.size,
            thumbnail.date_created,
            thumbnail.hash_md5,
            thumbnail.hash_sha1,
            document,
            values};
}

int row_numbers::next(const source_file &file)
{
    if (file.path != path_) {
        path_ = file.path;
        number_ = 0;
    }
    return ++number_;
}
