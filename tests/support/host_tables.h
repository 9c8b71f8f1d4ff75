#pragma once

#include "macos/opera_macos.h"
#include "tests/support/extraction_case.h"

#include <sqlite3.h>

// Result tables that the plug-in writes to but leaves to the host to create. Their last columns:
#define OPERA_SOURCE_COLUMNS                                                                       \
    ", source_file, artifacts_relation_source_file, os_scheme_display, source_count_name);"

inline const QByteArray host_tables =
    "begin; create table favicon(bookmark, system_user, id, icon_url, last_updated, relative_path, width, "
    "height, fav_urls" OPERA_SOURCE_COLUMNS
    "create table thumbnails(bookmark, system_user, url, last_used, actual_path, relative_path, "
    "file_name, size, date_created, hash_md5, hash_sha1, ext_attributes_key_value, "
    "ext_attributes_value_for_search" OPERA_SOURCE_COLUMNS
    "create table preferences(bookmark, account_name, key, value" OPERA_SOURCE_COLUMNS
    "create table website_exceptions(bookmark, system_user, exception_type, hostname, behaviour, "
    "timestamp" OPERA_SOURCE_COLUMNS
    "create table sync_data(bookmark, system_user, base_version, server_version, "
    "local_external_id, transaction_version, mtime, server_mtime, ctime, server_ctime, "
    "is_unsynced, is_unapplied_update, is_del, is_dir, server_is_dir, server_is_del, "
    "non_unique_name, server_non_unique_name, unique_server_tag" OPERA_SOURCE_COLUMNS
    "create table keywords(bookmark, system_user, short_name, keyword, favicon_url, url, "
    "suggest_url, date_created, last_modified, usage_count, safe_for_autoreplace, "
    "prepopulate_id" OPERA_SOURCE_COLUMNS " commit;";

#undef OPERA_SOURCE_COLUMNS

/// A macOS source whose readers a test calls itself.
class reader_case : public extraction_case
{
public:
    reader_case() : extraction_case(QStringLiteral("macOS")) {}

    /// The extractor behind a run that selected no table, with the host's tables or without.
    opera_macos &ready(bool with_host_tables = true)
    {
        prepare({});
        sqlite3 *results = nullptr;
        if (with_host_tables &&
            (sqlite3_open(database().toUtf8().constData(), &results) != SQLITE_OK ||
             sqlite3_exec(results, host_tables.constData(), nullptr, nullptr, nullptr) !=
                 SQLITE_OK))
            qFatal("reader_case: %s", sqlite3_errmsg(results));
        sqlite3_close(results);
        find();
        extract();
        log.clear();
        return *controller.findChild<opera_macos *>();
    }

    /// The rows of a query, each with "|" between its columns.
    QStringList lines(const QString &query) const
    {
        QStringList joined;
        for (const QStringList &row : rows(query))
            joined.append(row.join(u'|'));
        return joined;
    }
};
