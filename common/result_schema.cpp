// The schema of the result database, as data. Hosts and stored reports rely on the statements
// character for character, odd blanks and misspelled types included: correct nothing here.

#include "common/result_schema.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace
{

constexpr result_column leading_columns[] = {
    {"bookmark", "integer"},
    {"INT", "INTEGER PRIMARY KEY"},
    {"system_user", "varchar(100)"},
    {"domain_user", "VARCHAR(100)"},
};

constexpr result_column trailing_columns[] = {
    {"mirva_tag_value", "varchar(100)"},
    {"notes_icon", "VARCHAR(1024)"},
    {"tags_icon", "VARCHAR(1024)"},
    {"os_scheme_display", "VARCHAR(100)"},
    {"source_count_name", "VARCHAR(500)"},
    {"source_file", "varchar(500)"},
    {"artifacts_relation_source_file", "VARCHAR(1024)"},
    {"notes", "VARCHAR(500)"},
};

constexpr result_column history_columns[] = {
    {"id", "VARCHAR(500)"},
    {"urls", "VARCHAR(500)"},
    {"url_text", "VARCHAR(500)"},
    {"title", "VARCHAR(300)"},
    {"typed_count", "VARCHAR(100)"},
    {"hidden", "VARCHAR(100)"},
    {"last_visit_date", "INTEGER"},
    {"visit_time", "VARCHAR(100)"},
    {"last_visit_time", "INTEGER"},
    {"visited_detail", "varchar(1024)"},
    {"visit_count", "varchar(1024)"},
    {"visit_duration", "VARCHAR(500)"},
    {"preview_file_path", "varchar(1024)"},
    {"export_file_paths", "varchar(1024)"},
    {"LINKFILENAME", "VARCHAR(1024)"},
    {"extended_attributes_key_value", "varchar(200)"},
    {"extended_attributes_value_for_search", "varchar(200)"},
    {"bookmarked_extended_attributes", "varchar(1024)"},
    {"bookmarked_exif_data", "varchar(1024)"},
};

constexpr result_column bookmarks_columns[] = {
    {"date_added", "INTEGER"},    {"name", "VARCHAR(300)"},   {"url", "VARCHAR(100)"},
    {"url_text", "VARCHAR(500)"}, {"folder", "VARCHAR(100)"}, {"icon_url", "VARCHAR(100)"},
};

constexpr result_column speeddials_columns[] = {
    {"date_added", "INTEGER"},  {"name", "VARCHAR(300)"},     {"url", "VARCHAR(100)"},
    {"folder", "VARCHAR(100)"}, {"icon_url", "VARCHAR(100)"},
};

constexpr result_column downloads_columns[] = {
    {"name", "VARCHAR(500)"},
    {"full_path", "VARCHAR(500)"},
    {"file_extension", "VARCHAR(500)"},
    {"file_size", "INTEGER"},
    {"file_existence", "VARCHAR(500)"},
    {"url", "VARCHAR(300)"},
    {"referrer", "VARCHAR(300)"},
    {"received_bytes", "varchar(300)"},
    {"total_bytes", "varchar(300)"},
    {"start_time", "INTEGER"},
    {"end_time", "INTEGER"},
    {"last_modified", "INTEGER"},
    {"state", "VARCHAR(300)"},
    {"guid", "VARCHAR(300)"},
    {"opened", "VARCHAR(300)"},
    {"site_url", "VARCHAR(300)"},
    {"tab_url", "VARCHAR(300)"},
    {"tab_referrer_url", "VARCHAR(300)"},
    {"etag", "VARCHAR(300)"},
    {"mime_type", "VARCHAR(300)"},
    {"original_mime_type", "VARCHAR(300)"},
    {"content_type", "varchar(100)"},
    {"kind", "varchar(100)"},
    {"fs_name", "varchar(100)"},
    {"fs_node_count", "varchar(100)"},
    {"wherefroms", "varchar(100)"},
    {"latitude", "varchar(100)"},
    {"longitude", "varchar(100)"},
    {"altitude", "varchar(100)"},
    {"torrent_names", "varchar(5000)"},
    {"date_added", "INTEGER"},
    {"first_date", "INTEGER"},
    {"last_date", "INTEGER"},
    {"fs_creation_date", "INTEGER"},
    {"fs_content_change_date", "INTEGER"},
    {"content_creation_date", "INTEGER"},
    {"content_modification_date", " INTEGER"},
    {"last_used_date", "INTEGER"},
    {"all_used_dates", "INTEGER"},
    {"windows_path", "varchar(100)"},
    {"preview_file_path", "varchar(1024)"},
    {"export_file_paths", "varchar(1024)"},
    {"LINKFILENAME", "VARCHAR(1024)"},
    {"bookmarked_extended_attributes", "VARCHAR"},
    {"bookmarked_exif_data", "varchar(1024)"},
    {"extended_attributes_key_value", "varchar(200)"},
    {"extended_attributes_value_for_search", "varchar(200)"},
};

constexpr result_column search_items_columns[] = {
    {"term", "INTEGER"},
    {"url", "VARCHAR(500)"},
    {"title", "varchar(1024)"},
    {"last_visit_time", "INTEGER"},
};

constexpr result_column cookies_columns[] = {
    {"creation_utc", "INTEGER"},    {"host_key", "VARCHAR(300)"},   {"name", "VARCHAR(100)"},
    {"value", "VARCHAR(100)"},      {"path", "VARCHAR(100)"},       {"expires_utc", "INTEGER"},
    {"last_access_utc", "INTEGER"}, {"secure", "VARCHAR(100)"},     {"has_expires", "VARCHAR(100)"},
    {"httponly", "VARCHAR(100)"},   {"persistent", "VARCHAR(100)"},
};

constexpr result_column logins_columns[] = {
    {"origin_url", "VARCHAR(500)"},       {"action_url", "VARCHAR(300)"},
    {"username_element", "VARCHAR(100)"}, {"username_value", "VARCHAR(100)"},
    {"password_element", "VARCHAR(100)"}, {"password_value", "VARCHAR(100)"},
    {"submit_element", "VARCHAR(100)"},   {"signon_realm", "VARCHAR(100)"},
    {"date_created", "INTEGER"},          {"ssl_valid", "varchar(1024)"},
    {"preferred", "varchar(1024)"},       {"blacklisted_by_user", "varchar(1024)"},
};

constexpr result_column autofill_columns[] = {
    {"name", "VARCHAR(500)"},    {"value", "VARCHAR(300)"},     {"count", "VARCHAR(300)"},
    {"date_created", "INTEGER"}, {"date_last_used", "INTEGER"}, {"pair_id", "INTEGER"},
};

constexpr result_column autofill_profiles_columns[] = {
    {"guid", "INTEGER"},
    {"firstname", "VARCHAR(500)"},
    {"lastname", "VARCHAR(500)"},
    {"middlename", "VARCHAR(500)"},
    {"fullname", "VARCHAR(500)"},
    {"email", "VARCHAR(500)"},
    {"phone_number", "VARCHAR(500)"},
    {"company_name", "VARCHAR(500)"},
    {"street_address", "VARCHAR(500)"},
    {"dependent_locality", "VARCHAR(500)"},
    {"city", "VARCHAR(500)"},
    {"state", "VARCHAR(500)"},
    {"zipcode", "VARCHAR(500)"},
    {"country", "VARCHAR(500)"},
    {"origin", "VARCHAR(500)"},
    {"lang_code", "VARCHAR(500)"},
    {"use_count", "VARCHAR(500)"},
    {"country_code", "VARCHAR(500)"},
    {"date_modified", "INTEGER"},
    {"date_used", "INTEGER"},
    {"date_of_birth", "VARCHAR(500)"},
    {"gender", "VARCHAR(500)"},
    {"address_line_1", "VARCHAR(500)"},
    {"address_line_2", "VARCHAR(500)"},
};

constexpr result_column credits_cards_columns[] = {
    {"guid", "INTEGER"},
    {"name_on_card", "VARCHAR(500)"},
    {"card_number_encrypted", "VARCHAR(500)"},
    {"expiration_month", "VARCHAR(300)"},
    {"expiration_year", "VARCHAR(200)"},
    {"origin", "VARCHAR(200)"},
    {"use_count", "VARCHAR(200)"},
    {"date_modified", "INTEGER"},
    {"use_date", "INTEGER"},
};

constexpr result_column extensions_columns[] = {
    {"name", "VARCHAR(1024)"},
    {"description", "VARCHAR(1024)"},
    {"version", "VARCHAR(1024)"},
    {"container", "VARCHAR(1024)"},
    {"current_locale", "VARCHAR(1024)"},
    {"default_locale", "VARCHAR(1024)"},
    {"offline_enabled", "VARCHAR(1024)"},
    {"update_url", "VARCHAR(1024)"},
    {"was_installed_by_default", "VARCHAR(1024)"},
    {"was_installed_by_oem", "VARCHAR(1024)"},
    {"path", "VARCHAR(1024)"},
    {"state_value", "VARCHAR(1024)"},
    {"icon_source_path", "VARCHAR(1024)"},
    {"icon_copy_path", "VARCHAR(1024)"},
    {"install_time", "INTEGER"},
    {"lastpingtime", "INTEGER"},
    {"url", "VARCHAR(1024)"},
    {"origin_url", "VARCHAR(1024)"},
    {"icon_filename", "VARCHAR(100)"},
    {"icon_filepath", "VARCHAR(1024)"},
    {"preview_file_path", "varchar(1024)"},
};

constexpr result_column sessions_columns[] = {
    {"session_name", "VARCHAR(1024)"},
    {"url", "VARCHAR(1024)"},
};

constexpr result_column cached_files_columns[] = {
    {"file_name", "VARCHAR(1000)"},
    {"file_path", "varvhar(200)"},
    {"file_type", "varchar(10)"},
    {"content_creation_date", "INTEGER"},
    {"content_modification_date", " INTEGER"},
    {"content_type", "varchar(10)"},
    {"fs_content_change_date", "integer"},
    {"fs_creation_date", " INTEGER"},
    {" fs_name", "VARCHAR(1000)"},
    {"fs_node_count", "varvhar(200)"},
    {"last_used_date", "INTEGER"},
    {"file_date_created", "INTEGER"},
    {"file_size", "INTEGER"},
    {"wherefroms", "VARCHAR(1000)"},
    {"latitude", "VARCHAR(1000)"},
    {"longitude", "VARCHAR(1000)"},
    {"altitude", "VARCHAR(1000)"},
    {"torrent_names", "varchar(5000)"},
    {"all_used_dates", "INTEGER"},
    {"preview_file_path", "varchar(1024)"},
    {"export_file_paths", "varchar(1024)"},
    {"LINKFILENAME", "VARCHAR(1024)"},
    {"bookmarked_extended_attributes", "VARCHAR(500)"},
    {"bookmarked_exif_data", "varchar(1024)"},
    {"extended_attributes_key_value", "varchar(200)"},
    {"extended_attributes_value_for_search", "varchar(200)"},
};

constexpr result_column topsites_columns[] = {
    {"url", "VARCHAR(500)"},
    {"title", "VARCHAR(300)"},
    {"guid", "VARCHAR(100)"},
};

constexpr result_column exportfilelist_columns[] = {
    {"INT", "INTEGER PRIMARY KEY"},    {"record", "VARCHAR(150)"},
    {"table_name", "VARCHAR(1000)"},   {"filepath", "VARCHAR(1000)"},
    {"exp_newpath", "VARCHAR(1000)"},  {"exp_relativepath", "VARCHAR(1000)"},
    {"exp_size", "INTEGER"},           {"exp_hashmd5", "VARCHAR(1000)"},
    {"exp_hashsha1", "VARCHAR(1000)"}, {"exp_LINKFILENAME", "varchar(500)"},
    {"exp_time", "INTEGER"},
};

constexpr result_table tables[] = {
    {"history", history_columns},
    {"bookmarks", bookmarks_columns},
    {"speeddials", speeddials_columns},
    {"downloads", downloads_columns},
    {"search_items", search_items_columns},
    {"cookies", cookies_columns},
    {"logins", logins_columns},
    {"autofill", autofill_columns},
    {"autofill_profiles", autofill_profiles_columns},
    {"credits_cards", credits_cards_columns},
    {"extensions", extensions_columns},
    {"sessions", sessions_columns},
    {"cached_files", cached_files_columns, true, "create table"},
    {"topsites", topsites_columns},
    {"exportfilelist", exportfilelist_columns, false},
};

void append(QStringList &columns, std::span<const result_column> more)
{
    for (const result_column &column : more)
        columns.append(QLatin1StringView(column.name) + u' ' + QLatin1StringView(column.type));
}

} // namespace

std::span<const result_table> result_tables()
{
    return tables;
}

QString create_statement(const result_table &table)
{
    QStringList columns;
    if (table.has_common_columns)
        append(columns, leading_columns);
    append(columns, table.own_columns);
    if (table.has_common_columns)
        append(columns, trailing_columns);
    return QLatin1StringView(table.create_keyword) + u" IF NOT EXISTS " +
           QLatin1StringView(table.name) + u'(' + columns.join(u',') + u')';
}
