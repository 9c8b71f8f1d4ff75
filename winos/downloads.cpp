// Downloads, from the "History" file, and what the source still holds of the downloaded files.

#include "common/artefacts/history_tables.h"
#include "common/evidence/evidence_file.h"
#include "common/evidence/file_paths.h"
#include "common/values/text_values.h"
#include "common/values/time_values.h"
#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

#include <QFileInfo>
#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

/// Places in source_row::derived.
enum download_value { full_path, name, file_extension, file_existence, file_size, path_in_source };

/// Whole Unix seconds; 0 for a time that the browser has not stored.
QVariant whole_seconds(source_row &row, int column)
{
    const QString seconds = microseconds_since_1601_to_unix_seconds(row.text(column));
    return QString::number(seconds.section(u'.', 0, 0).trimmed().toULongLong());
}

QVariant trimmed_url(source_row &row, int column)
{
    return not_null(decode_percent(row.text(column)).trimmed());
}

/// The addresses that led to the download, first to last, each followed by a blank.
QVariant url_chain(source_row &row, int id_column)
{
    QString urls = empty_text();
    row.look_up(0, row.stored(id_column), [&urls](const QSqlQuery &link) {
        urls += decode_percent(link.value(0).toString()).trimmed() + u' ';
    });
    return urls;
}

insertion download_insertion(value_rule url, value_rule referrer)
{
    return {.sql = "insert into downloads(bookmark,system_user,domain_user,full_path, name, "
                   "file_extension, url,start_time,received_bytes,total_bytes,end_time,"
                   "source_file,referrer, file_existence, file_size ,preview_file_path, "
                   "export_file_paths,windows_path, os_scheme_display,source_count_name) "
                   "values(?,?,?,?,?,?, ?,?,?,?,?,?,?,?, ?,?,?,?,?,?)",
            .values = {untagged,
                       system_user,
                       domain_user,
                       derived(full_path),
                       derived(name),
                       derived(file_extension),
                       url,
                       from_row(whole_seconds, 2), // start_time
                       as_stored(3),               // received_bytes
                       as_stored(4),               // total_bytes
                       from_row(whole_seconds, 5), // end_time
                       source_file_path,
                       referrer,
                       derived(file_existence),
                       derived(file_size),
                       derived(path_in_source), // preview_file_path
                       derived(path_in_source), // export_file_paths
                       as_stored(0),            // windows_path
                       os_scheme_display,
                       source_count_name}};
}

/// "C:\Users\a" to the source root and "Users/a". What names no drive (a share of another machine,
/// a relative path, under four characters) has no place under the root and stays as it is. The path
/// does not pass through get_complete_file_path, which would put a slash before the drive.
QString source_side_path(const QString &windows_path, const QString &source_root)
{
    QString path = windows_path;
    path.replace(u'\\', u'/');
    const bool on_drive = path.size() >= 4 && path.at(0).isLetter() && path.at(1) == u':';
    if (!on_drive || path.at(2) != u'/')
        return path;
    qsizetype start = 3;
    while (start < path.size() && path.at(start) == u'/')
        ++start;
    return source_root + (source_root.endsWith(u'/') ? u""_s : u"/"_s) + path.mid(start);
}

} // namespace

const database_reader winos_readers::history_download = {
    .signature = "void opera_winos::extract_history_download()",
    .starts = "[extract_history_download] -Starts",
    .destination_failed =
        open_failure("[extract_history_download]Destination Db opening ---FAILED--- "),
    .source_failed = open_failure("[extract_history_download]Source Db opening ---FAILED--- "),
    .insert_failed = query_failure("[extract_history_download]insert query execution ---FAILED---"),
    .ends = "[extract_history_download] -Ends",
    .readings = {{.select = "select full_path,url,start_time,received_bytes,total_bytes,end_time "
                            "from downloads",
                  .select_failed = {"[extract_history_download]source_dwnld query --- NOT EXECUTED "
                                    "---",
                                    "Executing Alternate Query ..."},
                  .insert = download_insertion(from_row(trimmed_url, 1), empty_value),
                  .older = true},
                 {.select = "select downloads.target_path, downloads.id, downloads.start_time, "
                            "downloads.received_bytes, downloads.total_bytes, downloads.end_time, "
                            "downloads.referrer from downloads",
                  .select_failed = query_failure(
                      with_path("[extract_history_download]source_dwnld query execution "
                                "---FAILED--- for file --->>>")),
                  .insert = download_insertion(from_row(url_chain, 1), as_stored(6))}},
    .look_ups = {{.statement = "select url from downloads_url_chains where id = ",
                  .failed = open_failure(
                      with_path("[extract_history_download]source_url_chain_query execution "
                                "---FAILED--- for file --->>>")),
                  .table = url_chains,
                  .keys_ascend = true}},
};

QString opera_winos::extract_name_for_downloads(const QString &path)
{
    return not_null(path.section(u'/', -1));
}

void opera_winos::derive_download(source_row &row)
{
    const QString path = source_side_path(row.text(0), state_.run.source_root);
    // What the browser recorded may name any place; only a file of the source is looked at.
    const bool exists = is_inside_folder(path, state_.run.source_root);
    const QString file = extract_name_for_downloads(path);

    row.derived.resize(path_in_source + 1);
    row.derived[full_path] = path;
    row.derived[name] = file;
    row.derived[file_extension] = file_suffix(file);
    row.derived[file_existence] = yes_or_no(exists);
    row.derived[file_size] = exists ? size_in_source(path, state_.run) : empty_text();
    row.derived[path_in_source] = path_inside_source(path, state_.run);
}

void opera_winos::extract_history_download()
{
    read_databases(winos_readers::history_download, found_.history_for_downloads, state_.run,
                   [this](database_row &row) {
                       derive_download(row);
                       return true;
                   });
}
