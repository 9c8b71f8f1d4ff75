#pragma once

#include "common/extraction/database_reader.h"

/// The descriptors of the Windows extractors that read SQLite files, for the members of opera_winos
/// and for the test that checks every descriptor against the result schema.
namespace winos_readers
{

extern const database_reader history_url;
extern const database_reader history_download;
extern const database_reader search_items;
extern const database_reader cookies;
extern const database_reader login_data;
extern const database_reader autofill;
extern const database_reader autofill_profiles;
extern const database_reader credit_cards;
extern const database_reader topsites;
extern const database_reader favicons;
extern const database_reader thumbnails;

} // namespace winos_readers
