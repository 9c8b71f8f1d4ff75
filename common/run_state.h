#pragma once

#include "common/host_records.h"

// What the rooms below may ask of the run's process-wide state, which plugin_static_function holds.

/// May be called from any thread.
bool run_is_cancelled();
/// "Source" and the source count, "Source-1" when none is set.
QString numbered_source_name();
const QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> &source_accounts();
