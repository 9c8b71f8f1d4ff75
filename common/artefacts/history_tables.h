#pragma once

#include "common/extraction/own_table.h"

#include <vector>

// Tables of the "History" file that statements join or search, the same on all systems.

/// The addresses of each download, first to last.
constexpr own_table url_chains = {.name = "downloads_url_chains",
                                  .key = "id",
                                  .type = own_table::key_type::number,
                                  .columns = "url",
                                  .order = "chain_index"};

/// Search terms and the pages that they led to, of which the statement takes the columns.
inline std::vector<own_table> search_tables(const char *page_columns)
{
    return {{.name = "keyword_search_terms",
             .key = "url_id",
             .type = own_table::key_type::number,
             .columns = "term",
             .indexed = false},
            {.name = "urls",
             .key = "id",
             .type = own_table::key_type::number,
             .columns = page_columns,
             .filter = "id in (select url_id from main.keyword_search_terms not indexed)"}};
}
