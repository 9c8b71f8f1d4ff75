#pragma once

#include "common/extraction/extraction_run.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <span>

/// What the extractor of one operating system holds beside its lists of found files.
struct extractor_state {
    extraction_run run;
    QStringList account_names = {};
    QStringList table_list = {}; ///< result tables the host wants filled
    QString plugin_name = {};
    int engine_type = 0;
    int source_count = 0;
    int tabs_processed = 0;
};

/// The accounts' names, without duplicates (the first stays) and empty ones.
void tidy_account_names(QStringList &names);

/// One result table of a driver's fixed order. The action runs the table's extractors and signals
/// the record count after each; false means that the run was cancelled in between and the driver
/// must return at once.
template <typename extractor> struct table_step {
    const char *table;
    bool (*action)(extractor &);
};

/// Runs the steps whose tables are selected, in their order, and signals the number of tables done
/// after each. Nothing runs for an engine type other than 0, 1 and 2 or an empty selection. False
/// when a step asked the driver to return at once.
template <typename extractor>
bool run_selected_tables(extractor &owner, extractor_state &state,
                         std::span<const table_step<extractor>> steps,
                         const std::function<void(int)> &signal_tables)
{
    const bool engine_known = static_cast<unsigned>(state.engine_type) <= 2U;
    if (!engine_known)
        return true;
    for (const table_step<extractor> &step : steps) {
        if (!state.table_list.contains(QLatin1StringView(step.table)))
            continue;
        if (!step.action(owner))
            return false;
        signal_tables(++state.tabs_processed);
    }
    return true;
}
