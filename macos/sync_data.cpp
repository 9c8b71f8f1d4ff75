// Synchronised items, from "SyncData.sqlite3". No driver calls this reader.

#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

using namespace Qt::StringLiterals;

namespace
{

/// Milliseconds since 1970 to Unix seconds, in single precision: present-day times come out as
/// multiples of 128 seconds. Hosts compare these values with those of earlier cases.
QVariant coarse_seconds(source_row &row, int column)
{
    const QString stored = row.text(column);
    if (stored == "0"_L1 || stored.startsWith(u'-'))
        return stored;
    const float seconds = stored.toFloat() / 1000.0F;
    constexpr float beyond_integers = 18446744073709551616.0F; // 2 to the 64th
    if (!(seconds >= 0 && seconds < beyond_integers)) // nor "nan", which compares to nothing
        return stored;
    return QString::number(static_cast<quint64>(seconds));
}

value_rule from_milliseconds(int column)
{
    return from_row(coarse_seconds, column);
}

} // namespace

const database_reader macos_readers::sync_data_11 = {
    .signature = "void opera_macos::extract_sync_data_11()",
    .starts = "[extract_sync_data_11] Starts",
    .destination_failed =
        open_failure("[extract_sync_data_11] Destination Db opening ---FAILED--- "),
    .source_failed = open_failure("[extract_sync_data_11]Source Db opening ---FAILED----"),
    .insert_failed = query_failure("[extract_sync_data_11]Insertion Query -----FAILED-----"),
    .ends = "[extract_sync_data_11] Ends",
    .readings = {{
        .select = "select metahandle, base_version, server_version, local_external_id, "
                  "transaction_version, mtime, server_mtime,ctime,server_ctime, id, "
                  "parent_id,server_parent_id, is_unsynced, is_unapplied_update, is_del, is_dir, "
                  "server_is_dir,server_is_del, non_unique_name, server_non_unique_name, "
                  "unique_client_tag, unique_server_tag, unique_bookmark_tag,specifics, "
                  "server_specifics, server_unique_position, unique_position from metas",
        .select_failed = query_failure("[extract_sync_data_11]Select query ---FAILED---"),
        .insert = {.sql = "insert into sync_data(bookmark,system_user,base_version,"
                          "server_version,local_external_id,transaction_version,mtime,"
                          "server_mtime,ctime,server_ctime, is_unsynced, is_unapplied_update, "
                          "is_del, is_dir, server_is_dir,server_is_del,non_unique_name, "
                          "server_non_unique_name,unique_server_tag,source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,  ?,?,?,?,?, ?,?,?,?,?,  ?,?,?,?,?,?)",
                   .values = {untagged,
                              system_user,
                              as_stored(1),         // base_version
                              as_stored(2),         // server_version
                              as_stored(3),         // local_external_id
                              as_stored(4),         // transaction_version
                              from_milliseconds(5), // mtime
                              from_milliseconds(6), // server_mtime
                              from_milliseconds(7), // ctime
                              from_milliseconds(8), // server_ctime
                              yes_when_one(12),     // is_unsynced
                              yes_when_one(13),     // is_unapplied_update
                              yes_when_one(14),     // is_del
                              yes_when_one(15),     // is_dir
                              yes_when_one(16),     // server_is_dir
                              yes_when_one(17),     // server_is_del
                              as_stored(18),        // non_unique_name
                              as_stored(19),        // server_non_unique_name
                              as_stored(21),        // unique_server_tag
                              source_file_path,
                              relation_source_file,
                              os_scheme_display,
                              source_count_name}},
    }},
    .source_connection = "1",
};

void opera_macos::extract_sync_data_11()
{
    // Version -1: made on this computer and never sent to the server.
    read_databases(macos_readers::sync_data_11, found_.sync_data, state_.run,
                   [](database_row &row) { return row.text(1) != "-1"_L1; });
}
