#pragma once

#include "sample/instants.h"
#include "sample/invented.h"
#include "sample/sample_evidence.h"

#include <string>
#include <string_view>

namespace sample
{

/// How many ordinary rows a table gets beside its special ones.
struct row_counts {
    qint64 small;     ///< at scale 1
    qint64 per_scale; ///< times the scale, from scale 2 on
};

// The counts that the help and the description name.
inline constexpr row_counts page_rows = {6, 40};
inline constexpr row_counts search_rows = {5, 10};
inline constexpr row_counts download_rows = {2, 10};
inline constexpr row_counts cookie_rows = {8, 100};
inline constexpr row_counts login_rows = {4, 10};
inline constexpr row_counts form_rows = {6, 50};
inline constexpr row_counts address_rows = {2, 5};
inline constexpr row_counts card_rows = {2, 5};
inline constexpr row_counts icon_rows = {5, 20};
inline constexpr row_counts thumbnail_rows = {3, 10};
inline constexpr row_counts top_site_rows = {6, 20};
inline constexpr row_counts bookmark_rows = {8, 100};
inline constexpr row_counts site_exception_rows = {2, 10};
inline constexpr row_counts extension_rows = {2, 5};
inline constexpr row_counts sync_rows = {5, 50};
inline constexpr row_counts session_kilobytes = {2, 10};
inline constexpr row_counts cache_files = {10, 100};

/// One account of the evidence and how its profile is to be written. Folders end in "/".
struct profile {
    os_scheme system = os_scheme::macos;
    browser_generation generation = browser_generation::current;
    QString user;
    QString source_root;
    QString home;
    QString profile_folder;
    QString cache_folder;
    qint64 scale = 1;
    quint64 seed = 1;
    QStringList parts;

    bool windows() const { return system == os_scheme::windows; }
    bool has(const QString &part) const { return parts.contains(part); }
    qint64 rows(const row_counts &counts) const
    {
        return scale == 1 ? counts.small : counts.per_scale * scale;
    }
    /// Numbers of this account's own for one purpose: a part does not depend on the others.
    number_source numbers(std::string_view purpose) const
    {
        return number_source(number_of(user.toStdString() + "/" + std::string(purpose), seed));
    }
};

// Each writes the files of one or several parts, as far as the profile asks for them.
// All throw evidence_error.

/// "History" (pages, search terms, downloads) and the downloaded files.
void write_history_file(const profile &account);
void write_cookies_file(const profile &account);
void write_login_file(const profile &account);
/// "Web Data": form entries, addresses, cards and search engines.
void write_web_data_file(const profile &account);
void write_favicons_file(const profile &account);
void write_thumbnails_file(const profile &account);
/// "favorites.db"
void write_top_sites_file(const profile &account);
void write_bookmarks_file(const profile &account);
/// "Preferences" (settings, site exceptions, extensions) and the folders of the extensions.
void write_preferences_file(const profile &account);
void write_local_state_file(const profile &account);
void write_sync_file(const profile &account);
void write_session_files(const profile &account);
void write_cache_folders(const profile &account);

} // namespace sample
