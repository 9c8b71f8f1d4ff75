#pragma once

#include "sample/database.h"
#include "sample/profile.h"

namespace sample
{

/// The address tables as this generation has them.
void make_address_tables(database &web_data, browser_generation generation);

/// The rows of the address tables: people, their e-mail addresses and telephone numbers.
void write_addresses(database &web_data, const profile &account);

} // namespace sample
