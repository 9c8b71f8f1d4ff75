#pragma once

#include "common/extraction/database_reader.h"

/// The descriptors of the macOS extractors that read SQLite files, for the members of opera_macos
/// and for the test that checks every descriptor against the result schema.
namespace macos_readers
{

extern const database_reader history_11;
extern const database_reader history_url;
extern const database_reader search_items_11;
extern const database_reader search_items;
extern const database_reader download_11;
extern const database_reader download;
extern const database_reader cookies_11;
extern const database_reader cookies;
extern const database_reader logins_11;
extern const database_reader login_data;
extern const database_reader autofill_11;
extern const database_reader autofill;
extern const database_reader autofill_profiles_11;
extern const database_reader autofill_profiles;
extern const database_reader credit_cards_11;
extern const database_reader topsites;

// Read by no driver; all but the first write to tables that only the host creates.
extern const database_reader credit_cards;
extern const database_reader keywords_11;
extern const database_reader favicons_11;
extern const database_reader thumbnails;
extern const database_reader sync_data_11;

} // namespace macos_readers
