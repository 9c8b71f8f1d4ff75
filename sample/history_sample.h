#pragma once

#include "sample/database.h"
#include "sample/profile.h"

namespace sample
{

/// The columns of "downloads" and "downloads_url_chains".
void make_download_tables(database &history, const profile &account);
/// The rows of both, and the downloaded files that still exist.
void add_downloads(database &history, const profile &account);
/// A row that belongs into the write-ahead log.
void add_latest_download(database &history, const profile &account);

} // namespace sample
