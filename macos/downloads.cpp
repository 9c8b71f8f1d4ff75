// Downloads, from the "History" file, and what the source still holds of the downloaded files.

#include "common/artefacts/history_tables.h"
#include "common/evidence/evidence_file.h"
#include "common/evidence/file_paths.h"
#include "common/evidence/native_path.h"
#include "common/values/text_values.h"
#include "common/values/time_values.h"
#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

#include <QFileInfo>
#include <QtSql/QSqlQuery>

#include <utility>

using namespace Qt::StringLiterals;

namespace
{

/// Places in source_row::derived.
enum download_value {
    name,
    file_extension,
    file_existence,
    file_size,
    path_in_source,
    date_added,
    content_creation_date,
    content_modification_date,
    content_type,
    fs_content_change_date,
    fs_creation_date,
    fs_name,
    fs_node_count,
    last_used_date,
    all_used_dates,
    first_date,
    last_date,
    wherefroms,
    latitude,
    longitude,
    altitude,
    torrent_names,
    kind,
    attribute_document,
    attribute_values,
};

/// The addresses that led to the download, first to last, each followed by ";;".
QVariant url_chain(source_row &row, int id_column)
{
    QString urls = empty_text();
    row.look_up(0, row.stored(id_column),
                [&urls](const QSqlQuery &link) { urls += link.value(0).toString() + u";;"; });
    return urls;
}

keyed_select chain_of_download(failure_lines failed)
{
    return {.statement = "select url from downloads_url_chains where id = ?",
            .failed = std::move(failed),
            .table = url_chains,
            .keys_ascend = true};
}

QVariant download_state(source_row &row, int column)
{
    const QString state = row.text(column);
    if (state == "1"_L1)
        return u"Complete"_s;
    return state == "2"_L1 ? u"Incomplete"_s : u"Unknown"_s;
}

QVariant http_date(source_row &row, int column)
{
    return http_date_to_unix_seconds(row.text(column));
}

insertion older_insertion(const value_rule &url, const value_rule &referrer, int first_time)
{
    return {.sql = "insert into downloads(bookmark,system_user,full_path, name, file_extension, "
                   "url,start_time,received_bytes,total_bytes,end_time,source_file,"
                   "artifacts_relation_source_file,referrer, file_existence, file_size, "
                   "date_added,content_creation_date,content_modification_date,content_type, "
                   "preview_file_path, export_file_paths,fs_content_change_date, "
                   "fs_creation_date,fs_name,fs_node_count,last_used_date,all_used_dates,"
                   "first_date, last_date,wherefroms,latitude,longitude,altitude,torrent_names,"
                   "extended_attributes_key_value,extended_attributes_value_for_search,"
                   "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?,?,?,  ?,?,?,?,? "
                   ",?,?,?,?,?, ?,?,?,?,?, ?,?,?,?,?, ?,?,?,?,?, ?,?,?,?)",
            .values = {untagged,
                       system_user,
                       as_stored(0), // full_path
                       derived(name),
                       derived(file_extension),
                       url,
                       unix_seconds(first_time),     // start_time
                       as_stored(first_time + 1),    // received_bytes
                       as_stored(first_time + 2),    // total_bytes
                       unix_seconds(first_time + 3), // end_time
                       source_file_path,
                       relation_source_file,
                       referrer,
                       derived(file_existence),
                       derived(file_size),
                       derived(date_added),
                       derived(content_creation_date),
                       derived(content_modification_date),
                       derived(content_type),
                       derived(path_in_source), // preview_file_path
                       derived(path_in_source), // export_file_paths
                       derived(fs_content_change_date),
                       derived(fs_creation_date),
                       derived(fs_name),
                       derived(fs_node_count),
                       derived(last_used_date),
                       derived(all_used_dates),
                       derived(first_date),
                       derived(last_date),
                       derived(wherefroms),
                       derived(latitude),
                       derived(longitude),
                       derived(altitude),
                       derived(torrent_names),
                       derived(attribute_document),
                       derived(attribute_values),
                       os_scheme_display,
                       source_count_name}};
}

} // namespace

const database_reader macos_readers::download_11 = {
    .signature = "int opera_macos::extract_download_11()",
    .starts = "[extract_download_11] starts",
    .destination_failed =
        open_failure("[extract_download_11]Destination Db opening -----FAILED------ "),
    .source_failed = open_failure("[extract_download_11]Source Db opening -----FAILED------ "),
    .insert_failed = query_failure("[extract_download_11]insert query execution -----FAILED------"),
    .ends = "[extract_download_11] ends",
    .readings = {{
        .select = "select target_path, id, start_time,received_bytes, total_bytes,end_time, "
                  "referrer,state, opened,  etag, mime_type,original_mime_type, last_modified,"
                  "guid,site_url, tab_url,tab_referrer_url from downloads",
        .select_failed = query_failure(with_path("[extract_download_11]select_query execution "
                                                 "-----FAILED------ for file --->>>")),
        .insert = {.sql =
                       "insert into downloads(bookmark,system_user,full_path, name, file_extension,"
                       "file_existence, file_size, url,start_time,received_bytes,total_bytes,"
                       "end_time,referrer,state, opened, etag, mime_type,original_mime_type, "
                       "last_modified,guid,site_url, tab_url,tab_referrer_url,date_added,"
                       "content_creation_date,content_type,preview_file_path, export_file_paths,"
                       "fs_content_change_date, fs_creation_date,fs_name,fs_node_count,"
                       "last_used_date,all_used_dates,wherefroms,latitude,longitude,altitude,"
                       "torrent_names,kind,source_file,artifacts_relation_source_file,"
                       "extended_attributes_key_value,extended_attributes_value_for_search,"
                       "os_scheme_display,source_count_name) values (?,?,?,?,?,?,?,?,?, ?,?,?,?,?, "
                       "?,?,?,?,?, ?,?,?,?,?,  ?,?,?,?,?,  ?,?,?,?,?,  ?,?,?,?,?,  ?,?,?,?,?,?,?)",
                   .values = {untagged,
                              system_user,
                              as_stored(0), // full_path
                              derived(name),
                              derived(file_extension),
                              derived(file_existence),
                              derived(file_size),
                              from_row(url_chain, 1),      // url
                              unix_seconds(2),             // start_time
                              as_stored(3),                // received_bytes
                              as_stored(4),                // total_bytes
                              unix_seconds(5),             // end_time
                              as_stored(6),                // referrer
                              from_row(download_state, 7), // state
                              yes_when_one(8),             // opened
                              as_stored(9),                // etag
                              as_stored(10),               // mime_type
                              as_stored(11),               // original_mime_type
                              from_row(http_date, 12),     // last_modified
                              as_stored(13),               // guid
                              as_stored(14),               // site_url
                              as_stored(15),               // tab_url
                              as_stored(16),               // tab_referrer_url
                              derived(date_added),
                              derived(content_creation_date),
                              derived(content_type),
                              derived(path_in_source), // preview_file_path
                              derived(path_in_source), // export_file_paths
                              derived(fs_content_change_date),
                              derived(fs_creation_date),
                              derived(fs_name),
                              derived(fs_node_count),
                              derived(last_used_date),
                              derived(all_used_dates),
                              derived(wherefroms),
                              derived(latitude),
                              derived(longitude),
                              derived(altitude),
                              derived(torrent_names),
                              derived(kind),
                              source_file_path,
                              relation_source_file,
                              derived(attribute_document),
                              derived(attribute_values),
                              os_scheme_display,
                              source_count_name}},
    }},
    .look_ups = {chain_of_download(
        query_failure(with_path("[extract_download_11]source_url_chain_query execution "
                                "-----FAILED------ for file --->>>")))},
};

const database_reader macos_readers::download = {
    .signature = "void opera_macos::extract_download()",
    .starts = "[extract_download] starts",
    .destination_failed =
        open_failure("[extract_download]Destination Db opening --------FAILED------- "),
    .source_failed = open_failure("[extract_download]Source Db opening --------FAILED------- "),
    .insert_failed =
        query_failure("[extract_download]insert query execution --------FAILED-------"),
    .ends = "[extract_download] ends",
    .readings = {{.select = "select full_path,url,start_time,received_bytes,total_bytes,end_time "
                            "from downloads",
                  .select_failed = {},
                  .insert = older_insertion(as_stored(1), empty_value, 2)},
                 {.select = "select downloads.target_path, downloads.id, downloads.start_time, "
                            "downloads.received_bytes, downloads.total_bytes, "
                            "downloads.end_time, downloads.referrer from downloads",
                  .select_failed = query_failure("[extract_download]source_dwnld query execution "
                                                 "--------FAILED--2----"),
                  .insert = older_insertion(from_row(url_chain, 1), as_stored(6), 2)}},
    .look_ups = {chain_of_download(
        query_failure(with_path("[extract_download]source_url_chain_query execution "
                                "--------FAILED------- for file --->>>")))},
};

QString opera_macos::get_name_for_downloads(const QString &path)
{
    return not_null(path.section(u'/', -1));
}

file_description opera_macos::describe_once(const QString &path, description_cache &known) const
{
    // A path can be written in many ways. A link has a name of its own.
    const QFileInfo info(path);
    const QString key = canonical_path(path) + u'/' + info.fileName();
    if (const file_description *described = known.object(key))
        return *described;
    const file_description file = describe_file(path);
    constexpr qsizetype short_texts = 1'000;
    const qsizetype text = short_texts + file.where_froms.size() + file.attribute_document.size() +
                           file.attribute_values.size();
    known.insert(key, new file_description(file), qMin(text, known.maxCost()));
    return file;
}

void opera_macos::derive_download(source_row &row, description_cache &known)
{
    const extraction_run &run = row.run();
    const QString inside = complete_file_path(row.text(0), row.file().system_user, run.source_type);
    const QString complete = run.source_root.chopped(run.source_root.endsWith(u'/')) + inside;
    // What the browser recorded may name any place; only a file of the source is looked at.
    const bool exists = !inside.trimmed().isEmpty() && is_inside_folder(complete, run.source_root);
    file_description file;
    if (exists)
        file = describe_once(complete, known);
    else
        file.attribute_document = get_extended_attributes({}, {}).xml_text;

    row.derived.resize(attribute_values + 1);
    const auto set = [&row](download_value place, const QString &value) {
        row.derived[place] = not_null(value);
    };
    set(name, get_name_for_downloads(inside));
    set(file_extension, file_suffix(inside));
    set(file_existence, yes_or_no(exists));
    set(file_size, exists ? size_in_source(complete, state_.run) : empty_text());
    set(path_in_source, relative_file_path(inside, run.source_root, run.source_type));
    set(date_added, file.birth_time);
    set(content_creation_date, file.content_creation_date);
    set(content_modification_date, file.content_modification_date);
    set(content_type, file.content_type);
    set(fs_content_change_date, file.fs_content_change_date);
    set(fs_creation_date, file.fs_creation_date);
    set(fs_name, file.fs_name);
    set(fs_node_count, file.fs_node_count);
    set(last_used_date, file.last_used_date);
    set(all_used_dates, file.all_used_dates);
    set(first_date, file.first_used_date);
    set(last_date, file.final_used_date);
    set(wherefroms, file.where_froms);
    set(latitude, file.latitude);
    set(longitude, file.longitude);
    set(altitude, file.altitude);
    set(torrent_names, file.torrent_names);
    set(kind, file.kind);
    set(attribute_document, file.attribute_document);
    set(attribute_values, file.attribute_values);
}

int opera_macos::read_downloads(const database_reader &reader)
{
    constexpr qsizetype most_text = 500'000; // characters, of all descriptions together
    description_cache known(most_text);
    return read_databases(reader, found_.downloads, state_.run, [&](database_row &row) {
        derive_download(row, known);
        return true;
    });
}

int opera_macos::extract_download_11()
{
    return read_downloads(macos_readers::download_11);
}

void opera_macos::extract_download()
{
    read_downloads(macos_readers::download);
}
