#include "report/catalogue.h"

#include <algorithm>

namespace catalogue
{

namespace
{

using enum instants::stored_form;
using names = const std::string_view[];

constexpr names origin_columns = {"bookmark",
                                  "INT",
                                  "system_user",
                                  "domain_user",
                                  "account_name",
                                  "os_scheme_display",
                                  "source_count_name",
                                  "source_file",
                                  "artifacts_relation_source_file",
                                  "mirva_tag_value",
                                  "notes_icon",
                                  "tags_icon",
                                  "notes"};

constexpr names history_first = {"urls",           "title",       "last_visit_date",
                                 "visit_time",     "visit_count", "typed_count",
                                 "visit_duration", "hidden",      "visited_detail"};
constexpr names history_identity = {"urls"};
constexpr time_column history_times[] = {
    {"visited_detail", visits, "Page visited", "Visited [“{title}” ]{urls}", true, standing::own,
     'v'},
    {"visit_time", unix_seconds, "Page visited", "Visited [“{title}” ]{urls}", true, standing::own,
     'v'},
    {"last_visit_date", unix_seconds, "Page last visited", "Last visited [“{title}” ]{urls}", true,
     standing::derived, 'v'},
    {"last_visit_time", unix_seconds, "Page last visited", "Last visited [“{title}” ]{urls}", true,
     standing::derived, 'v'},
};

constexpr names search_first = {"term", "last_visit_time", "url", "title"};
constexpr names search_identity = {"term", "url"};
constexpr time_column search_times[] = {
    {"last_visit_time", unix_seconds, "Searched", "Searched for {term}[ at {url}]", true},
};

constexpr names download_first = {
    "name",           "url",       "start_time",   "end_time",       "state",     "received_bytes",
    "total_bytes",    "full_path", "windows_path", "file_existence", "file_size", "opened",
    "last_used_date", "referrer",  "tab_url",      "mime_type",      "wherefroms"};
constexpr names download_identity = {"full_path", "name"};
constexpr time_column download_times[] = {
    {"start_time", unix_seconds, "Download started", "Download of {name|url} started", true},
    {"end_time", unix_seconds, "Download ended", "Download of {name|url} ended"},
    {"last_modified", unix_seconds, "File changed on the server",
     "{name|url} was last changed on the server"},
    {"last_used_date", unix_seconds, "File last used", "Downloaded file {name} was last opened",
     true, standing::derived, 'u'},
    {"all_used_dates", seconds_joined, "File used", "Downloaded file {name} was opened", true,
     standing::own, 'u'},
    {"first_date", unix_seconds, "File first used", "Downloaded file {name} was first opened", true,
     standing::derived, 'u'},
    {"last_date", unix_seconds, "File last used", "Downloaded file {name} was last opened", true,
     standing::derived, 'u'},
    {"date_added", unix_seconds, "File created", "Downloaded file {name} was created", false,
     standing::own, 'c'},
    {"fs_creation_date", unix_seconds, "File created", "Downloaded file {name} was created", false,
     standing::derived, 'c'},
    {"content_creation_date", unix_seconds, "File content created",
     "Content of downloaded file {name} was created"},
    {"fs_content_change_date", unix_seconds, "File written",
     "Downloaded file {name} was last written", false, standing::own, 'w'},
    {"content_modification_date", unix_seconds, "File written",
     "Downloaded file {name} was last written", false, standing::derived, 'w'},
};

constexpr names cookie_first = {
    "host_key",    "name",   "value",    "path",       "creation_utc", "last_access_utc",
    "expires_utc", "secure", "httponly", "persistent", "has_expires"};
constexpr names cookie_identity = {"host_key", "name", "path"};
constexpr time_column cookie_times[] = {
    {"creation_utc", unix_seconds, "Cookie created", "Cookie {name} of {host_key} was created"},
    {"last_access_utc", unix_seconds, "Cookie last used",
     "Cookie {name} of {host_key} was last used"},
    {"expires_utc", unix_seconds, "Cookie expires", "Cookie {name} of {host_key} expires"},
};

constexpr names login_first = {"origin_url",   "username_value",     "date_created",
                               "signon_realm", "action_url",         "password_value",
                               "preferred",    "blacklisted_by_user"};
constexpr names login_identity = {"origin_url", "username_value"};
constexpr time_column login_times[] = {
    {"date_created", unix_seconds, "Login saved",
     "Login[ of {username_value}] for {origin_url|signon_realm} was saved", true},
};

constexpr names bookmark_first = {"name", "url", "date_added", "folder"};
constexpr names bookmark_identity = {"url", "name", "folder"};
constexpr time_column bookmark_times[] = {
    {"date_added", unix_seconds, "Bookmark added", "Bookmark {name|url} was added", true},
};
constexpr time_column speed_dial_times[] = {
    {"date_added", unix_seconds, "Speed Dial entry added", "Speed Dial entry {name|url} was added",
     true},
};

constexpr names form_first = {"name", "value", "count", "date_created", "date_last_used"};
constexpr names form_identity = {"value"};
constexpr time_column form_times[] = {
    {"date_created", as_the_browser_had_it, "Form value first used",
     "{value} was first entered into a form field {name}", true, standing::own, 'f'},
    {"date_last_used", as_the_browser_had_it, "Form value last used",
     "{value} was last entered into a form field {name}", true, standing::derived, 'f'},
};

constexpr names address_first = {
    "fullname",       "lastname",  "email",     "phone_number", "street_address", "address_line_1",
    "address_line_2", "zipcode",   "city",      "state",        "country_code",   "country",
    "company_name",   "use_count", "date_used", "date_modified"};
constexpr names address_identity = {"guid"};
constexpr time_column address_times[] = {
    {"date_modified", as_the_browser_had_it, "Address changed",
     "Address of {fullname|guid} was last changed"},
    {"date_used", as_the_browser_had_it, "Address last used",
     "Address of {fullname|guid} was last used", true},
};

constexpr names card_first = {"name_on_card",          "expiration_month", "expiration_year",
                              "card_number_encrypted", "use_count",        "use_date",
                              "date_modified"};
constexpr names card_identity = {"guid"};
constexpr time_column card_times[] = {
    {"date_modified", as_the_browser_had_it, "Payment card changed",
     "Payment card of {name_on_card|guid} was last changed"},
    {"use_date", as_the_browser_had_it, "Payment card last used",
     "Payment card of {name_on_card|guid} was last used", true},
};

constexpr names extension_first = {"name",         "version",     "state_value",
                                   "install_time", "description", "lastpingtime",
                                   "update_url",   "path",        "was_installed_by_default"};
constexpr names extension_identity = {"name", "version", "path"};
constexpr time_column extension_times[] = {
    {"install_time", unix_seconds, "Extension installed",
     "Extension {name|path}[ {version}] was installed", true},
    {"lastpingtime", unix_seconds, "Extension asked for updates",
     "Extension {name|path} was last asked about at its update server"},
};

constexpr names session_first = {"url", "session_name"};
constexpr names top_site_first = {"title", "url"};

constexpr names cached_first = {"file_name",
                                "file_type",
                                "content_type",
                                "file_size",
                                "content_modification_date",
                                "fs_content_change_date",
                                "last_used_date",
                                "wherefroms",
                                "file_path"};
constexpr names cached_identity = {"file_path"};
constexpr time_column cached_times[] = {
    {"fs_content_change_date", unix_seconds, "Cached file written",
     "Cached file {file_name} was last written", false, standing::own, 'w'},
    {"content_modification_date", unix_seconds, "Cached file written",
     "Cached file {file_name} was last written", false, standing::derived, 'w'},
    {"file_date_created", unix_seconds, "Cached file created",
     "Cached file {file_name} was created", false, standing::own, 'c'},
    {"fs_creation_date", unix_seconds, "Cached file created", "Cached file {file_name} was created",
     false, standing::derived, 'c'},
    {"content_creation_date", unix_seconds, "Cached file's content created",
     "Content of cached file {file_name} was created"},
    {"all_used_dates", seconds_joined, "Cached file used", "Cached file {file_name} was opened",
     false, standing::own, 'u'},
    {"last_used_date", unix_seconds, "Cached file last used",
     "Cached file {file_name} was last opened", false, standing::derived, 'u'},
};

constexpr names export_first = {"filepath", "exp_newpath", "exp_relativepath", "exp_size",
                                "exp_time"};
constexpr time_column export_times[] = {
    {"exp_time", unix_seconds, "File exported", "The examiner exported {filepath}"},
};

constexpr names icon_first = {"icon_url", "last_updated", "fav_urls"};
constexpr time_column icon_times[] = {
    {"last_updated", unix_seconds, "Icon fetched", "Icon {icon_url} was last fetched"},
};
constexpr names thumbnail_first = {"url", "last_used", "file_name"};
constexpr time_column thumbnail_times[] = {
    {"last_used", unix_seconds, "Thumbnail last used", "Thumbnail of {url} was last used"},
};
constexpr names preference_first = {"key", "value"};
constexpr names exception_first = {"hostname", "exception_type", "behaviour", "timestamp"};
constexpr time_column exception_times[] = {
    {"timestamp", as_the_browser_had_it, "Permission decided",
     "Permission {exception_type} of {hostname} was decided: {behaviour}", true},
};
constexpr names sync_first = {"non_unique_name", "server_non_unique_name", "mtime", "ctime",
                              "server_mtime",    "server_ctime",           "is_del"};
constexpr time_column sync_times[] = {
    {"ctime", as_the_browser_had_it, "Synchronised item created",
     "Synchronised item {non_unique_name} was created"},
    {"mtime", as_the_browser_had_it, "Synchronised item changed",
     "Synchronised item {non_unique_name} was changed"},
    {"server_ctime", as_the_browser_had_it, "Synchronised item created on the server",
     "Synchronised item {non_unique_name} was created on the server"},
    {"server_mtime", as_the_browser_had_it, "Synchronised item changed on the server",
     "Synchronised item {non_unique_name} was changed on the server"},
};
constexpr names keyword_first = {"short_name",   "keyword",       "url",
                                 "date_created", "last_modified", "usage_count"};
constexpr time_column keyword_times[] = {
    {"date_created", unix_seconds, "Search engine added", "Search engine {short_name} was added"},
    {"last_modified", unix_seconds, "Search engine changed",
     "Search engine {short_name} was last changed"},
};

constexpr known_table all[] = {
    {"history", "History", history_first, history_times, "urls", "title",
     "[it lasted {visit_duration}]", history_identity},
    {"search_items", "Searches", search_first, search_times, "url", "title", "{term}",
     search_identity},
    {"downloads", "Downloads", download_first, download_times, "url", "name",
     "{windows_path|full_path}[; {state}][; {received_bytes} of {total_bytes} bytes]",
     download_identity, "state", "referrer"},
    {"bookmarks", "Bookmarks", bookmark_first, bookmark_times, "url", "name", "{folder}",
     bookmark_identity},
    {"speeddials", "Speed Dial", bookmark_first, speed_dial_times, "url", "name", "{folder}",
     bookmark_identity},
    {"topsites", "Top sites", top_site_first, {}, "url", "title"},
    {"logins", "Saved logins", login_first, login_times, "origin_url", "", "{username_value}",
     login_identity},
    {"autofill", "Form entries", form_first, form_times, "", "", "used {count} times",
     form_identity, "artifacts_relation_source_file", "date_last_used"},
    {"autofill_profiles", "Addresses", address_first, address_times, "", "fullname",
     "[{email}][; {phone_number}]", address_identity, "street_address"},
    {"credits_cards", "Payment cards", card_first, card_times, "", "name_on_card",
     "[expires {expiration_month}/{expiration_year}]", card_identity},
    {"cookies", "Cookies", cookie_first, cookie_times, "host_key", "name", "[path {path}]",
     cookie_identity, "secure"},
    {"extensions", "Extensions", extension_first, extension_times, "update_url", "name",
     "[version {version}][; {state_value}]", extension_identity},
    {"sessions", "Sessions", session_first, {}, "url"},
    {"cached_files", "Cached files", cached_first, cached_times, "wherefroms", "file_name",
     "{file_path}[; {file_size} bytes]", cached_identity},
    {"favicon", "Icons", icon_first, icon_times, "icon_url"},
    {"thumbnails", "Thumbnails", thumbnail_first, thumbnail_times, "url"},
    {"preferences", "Settings", preference_first, {}},
    {"website_exceptions", "Permissions", exception_first, exception_times, "hostname"},
    {"sync_data", "Synchronised items", sync_first, sync_times, "", "non_unique_name"},
    {"keywords", "Search engines", keyword_first, keyword_times, "url", "short_name"},
    {"exportfilelist", "Exported files", export_first, export_times, "", "filepath"},
};

} // namespace

std::span<const known_table> tables()
{
    return all;
}

const known_table *find(std::string_view name)
{
    const auto *found =
        std::ranges::find_if(all, [name](const known_table &table) { return table.name == name; });
    return found == std::end(all) ? nullptr : found;
}

const time_column *find_time(const known_table *table, std::string_view column)
{
    if (table == nullptr)
        return nullptr;
    for (const time_column &time : table->times)
        if (time.column == column)
            return &time;
    return nullptr;
}

bool is_origin_column(std::string_view column)
{
    return std::ranges::find(origin_columns, column) != std::end(origin_columns);
}

} // namespace catalogue
