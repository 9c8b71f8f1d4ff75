// Cached files: every file of the cache folders but the cache's own bookkeeping.

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/evidence/file_paths.h"
#include "common/evidence/native_path.h"
#include "common/evidence/sorted_walk.h"
#include "common/extraction/record_reader.h"
#include "common/values/text_values.h"
#include "macos/opera_macos.h"

#include <QMimeDatabase>

using namespace Qt::StringLiterals;

namespace
{

const record_reader cached_files_11 = {
    .signature = "void opera_macos::extract_cached_files_11()",
    .starts = "[extract_cached_files_11] starts",
    .destination_failed = open_failure("[extract_cached_files_11] ---------FAILED-------- to open "
                                       "destination database"),
    .insert_failed =
        query_failure("[extract_cached_files_11]---------FAILED-------- to execute query"),
    .ends = "[extract_cached_files_11] Ends",
    .insert = {.sql = "insert into cached_files (bookmark,system_user, file_name, file_path,"
                      "file_type,file_size,file_date_created,content_creation_date,"
                      "content_modification_date, preview_file_path,export_file_paths,"
                      "content_type,fs_content_change_date, fs_creation_date,fs_name,"
                      "fs_node_count,last_used_date,all_used_dates, wherefroms,latitude,"
                      "longitude,altitude,torrent_names, source_file,"
                      "artifacts_relation_source_file,extended_attributes_key_value,"
                      "extended_attributes_value_for_search,os_scheme_display,"
                      "source_count_name) values(?,?,?,?,?,?,?,?,?, ?,?,?,?,?,  ?,?,?,?,?,  "
                      "?,?,?,?,?,  ?,?,?,?,?)",
               .values = {untagged,          system_user,
                          as_stored(0),  // file_name
                          as_stored(1),  // file_path
                          as_stored(2),  // file_type
                          as_stored(3),  // file_size
                          as_stored(4),  // file_date_created
                          as_stored(5),  // content_creation_date
                          as_stored(6),  // content_modification_date
                          as_stored(7),  // preview_file_path
                          as_stored(7),  // export_file_paths
                          as_stored(8),  // content_type
                          as_stored(9),  // fs_content_change_date
                          as_stored(10), // fs_creation_date
                          as_stored(11), // fs_name
                          as_stored(12), // fs_node_count
                          as_stored(13), // last_used_date
                          as_stored(14), // all_used_dates
                          as_stored(15), // wherefroms
                          as_stored(16), // latitude
                          as_stored(17), // longitude
                          as_stored(18), // altitude
                          as_stored(19), // torrent_names
                          source_file_path,  relation_source_file,
                          as_stored(20), // extended_attributes_key_value
                          as_stored(21), // extended_attributes_value_for_search
                          os_scheme_display, source_count_name}},
};

/// The media type that the file's own bytes show; the browser's names in the cache tell nothing.
QMimeType media_type(const QString &path)
{
    static const QMimeDatabase types;
    constexpr qint64 enough_bytes = 4096;
    evidence_file file(path);
    return types.mimeTypeForData(file.open_for_reading() ? file.read(enough_bytes) : QByteArray());
}

bool is_bookkeeping(const QString &name)
{
    return name == "index"_L1 || name.startsWith("data_"_L1);
}

} // namespace

bool opera_macos::read_cache_folder(record_sink &sink)
{
    const QString folder = sink.file().path;
    const auto write_file = [&](const QString &path) {
        const QString file_name = path.section(u'/', -1);
        if (is_bookkeeping(file_name))
            return true;
        const file_description file = describe_file(path);
        const QMimeType type = media_type(path);
        const QString inside = complete_file_path(path_inside_source(path, state_.run),
                                                  sink.file().system_user, state_.run.source_type);
        return sink.write(
            {file_name,
             inside,
             not_null(type.preferredSuffix()),
             QString::number(status_of(path).size),
             file.birth_time,
             file.content_creation_date,
             file.content_modification_date,
             relative_file_path(inside, state_.run.source_root, state_.run.source_type),
             type.name(),
             file.fs_content_change_date,
             file.fs_creation_date,
             file.fs_name,
             file.fs_node_count,
             file.last_used_date,
             file.all_used_dates,
             file.where_froms,
             file.latitude,
             file.longitude,
             file.altitude,
             file.torrent_names,
             file.attribute_document,
             file.attribute_values});
    };
    return for_each_file(
        folder, state_.run.temporary_directory, [this] { return state_.run.cancelled(); },
        write_file);
}

void opera_macos::extract_cached_files_11()
{
    read_records(cached_files_11, found_.cached_files, state_.run, [this](record_sink &sink) {
        if (!read_cache_folder(sink)) {
            sink.unreadable(u"the folder cannot be listed"_s);
            debug_log(u"[extract_cached_files_11] folder listing ---------FAILED----------"_s +
                          sink.file().path,
                      QString::fromUtf8(cached_files_11.signature));
        }
        return reading_end::next_file;
    });
}
