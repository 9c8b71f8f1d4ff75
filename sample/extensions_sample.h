#pragma once

#include "sample/profile.h"

#include <QJsonObject>

namespace sample
{

/// Writes the folders of the account's extensions and returns their records, as "Preferences" keeps
/// them below "extensions" > "settings". Throws evidence_error.
QJsonObject write_extensions(const profile &account);

} // namespace sample
