#include "sample/database.h"
#include "sample/profile.h"

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

/// A synchronized thing. Its times are milliseconds since 1970.
struct synced_item {
    qint64 handle;
    qint64 base_version; ///< -1: never sent to the server
    qint64 changed;
    qint64 created;
    int unsynced;
    int deleted;
    int folder;
    std::string name;
    const char *server_tag; ///< null for what the user made
};

constexpr qint64 milliseconds(qint64 unix_seconds)
{
    return unix_seconds * 1000 + 789;
}

const synced_item special_items[] = {
    {1, 0, 0, 0, 0, 0, 1, "root", nullptr},
    {2, 1645000000000, milliseconds(days_ago(400)), milliseconds(days_ago(400)), 0, 0, 1,
     "Bookmarks", "bookmarks_root"},
    {3, 1645000000123, milliseconds(days_ago(100)), milliseconds(days_ago(101)), 0, 0, 0,
     "Nordfähre; 100 %", nullptr},
    {4, -1, milliseconds(days_ago(1)), milliseconds(days_ago(1)), 1, 0, 0, "Not yet sent", nullptr},
    {5, 1645000000500, -62135596800000, 0, 0, 1, 0, "Deleted", nullptr},
    {6, 1645000000777, milliseconds(days_ago(50)), milliseconds(days_ago(60)), 1, 0, 0, "",
     nullptr},
};

void add_item(insertion &rows, const synced_item &item)
{
    const std::string id = "s" + std::to_string(item.handle);
    const QByteArray specifics = "\x0a\x05" + QByteArray::fromStdString(item.name).left(5);
    rows.add(item.handle, item.base_version, item.base_version, item.handle * 10, item.handle + 3,
             item.changed, item.changed, item.created, item.created, id, "r", "r", item.unsynced, 0,
             item.deleted, item.folder, item.folder, item.deleted, item.name, item.name,
             item.server_tag, nullptr, nullptr, specifics, specifics, QByteArray(), QByteArray());
}

} // namespace

void write_sync_file(const profile &account)
{
    database sync(account.profile_folder + u"Sync Data/SyncData.sqlite3");
    sync.run_all({
        "create table share_version(id VARCHAR(128) PRIMARY KEY,data INT)",
        "insert into share_version values('invented',89)",
        "create table metas(metahandle BIGINT PRIMARY KEY ON CONFLICT FAIL,"
        "base_version BIGINT DEFAULT -1,server_version BIGINT DEFAULT 0,"
        "local_external_id BIGINT DEFAULT 0,transaction_version BIGINT DEFAULT 0,"
        "mtime BIGINT DEFAULT 0,server_mtime BIGINT DEFAULT 0,ctime BIGINT DEFAULT 0,"
        "server_ctime BIGINT DEFAULT 0,id VARCHAR(255) DEFAULT 'r',"
        "parent_id VARCHAR(255) DEFAULT 'r',server_parent_id VARCHAR(255) DEFAULT 'r',"
        "is_unsynced BIT DEFAULT 0,is_unapplied_update BIT DEFAULT 0,is_del BIT DEFAULT 0,"
        "is_dir BIT DEFAULT 0,server_is_dir BIT DEFAULT 0,server_is_del BIT DEFAULT 0,"
        "non_unique_name VARCHAR,server_non_unique_name VARCHAR(255),unique_server_tag VARCHAR,"
        "unique_client_tag VARCHAR,unique_bookmark_tag VARCHAR,specifics BLOB,"
        "server_specifics BLOB,server_unique_position BLOB,unique_position BLOB)",
    });
    {
        insertion rows(sync, "metas",
                       "metahandle,base_version,server_version,local_external_id,"
                       "transaction_version,mtime,server_mtime,ctime,server_ctime,id,parent_id,"
                       "server_parent_id,is_unsynced,is_unapplied_update,is_del,is_dir,"
                       "server_is_dir,server_is_del,non_unique_name,server_non_unique_name,"
                       "unique_server_tag,unique_client_tag,unique_bookmark_tag,specifics,"
                       "server_specifics,server_unique_position,unique_position");
        for (const synced_item &item : special_items)
            add_item(rows, item);
        number_source numbers = account.numbers("sync");
        for (qint64 row = 0; row < account.rows(sync_rows); ++row) {
            const qint64 created = days_ago(300) + numbers.below(200 * day);
            add_item(rows, {.handle = 100 + row,
                            .base_version = 1646000000000 + row,
                            .changed = milliseconds(created + numbers.below(90 * day)),
                            .created = milliseconds(created),
                            .unsynced = 0,
                            .deleted = numbers.below(10) == 0 ? 1 : 0,
                            .folder = numbers.below(8) == 0 ? 1 : 0,
                            .name = make_page(numbers, row + 1).title,
                            .server_tag = nullptr});
        }
    }
    sync.finish(latest_instant);
}

} // namespace sample
