#pragma once

#include "common/extraction/extraction_run.h"
#include "common/host_records.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <span>
#include <utility>

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

/// What the extractors of all operating systems take from the controller, who calls it by names of
/// their own: the base that these share.
class extractor_settings
{
protected:
    using desktop_record = struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info;
    using general_record = struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info;
    using source_record = struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info;

    explicit extractor_settings(extraction_run::record_signal signal)
        : state_{.run = extraction_run(std::move(signal))}
    {
    }

    void set_helper(plugin_helper_functions *helper) { state_.run.helper = helper; }
    void set_record_count(qint64 records) { state_.run.set_records(records); }
    void set_tab_processed_count(int tables) { state_.tabs_processed = tables; }
    /// Keeps root, type and display text.
    void set_source_info(const source_record &info)
    {
        state_.run.source_root = info.virtual_source_path;
        state_.run.pictures = {};
        state_.run.spare_bytes = writing_allowance::spare_of_run;
        state_.run.source_type = info.source_type_internal;
        state_.run.os_scheme_display = info.os_scheme_display;
    }
    /// Clears the cancel flag.
    void set_essentials() { state_.run.set_cancelled(false); }
    void set_plugin_name(const QString &name) { state_.plugin_name = name.trimmed(); }
    void set_destination_location(const QString &result_directory,
                                  const QString &temporary_directory,
                                  const QString &destination_db_path)
    {
        state_.run.result_directory = result_directory;
        state_.run.temporary_directory = temporary_directory;
        state_.run.finished_copies.clear();
        state_.run.destination_path = destination_db_path;
    }
    void set_tables(const QStringList &tables) { state_.table_list = tables; }
    void set_engine_type(int engine_type) { state_.engine_type = engine_type; }
    /// May be called from any thread.
    void cancel() { state_.run.set_cancelled(true); }
    void forget_readings() { state_.run.readings.clear(); }
    QVariantList readings() const { return state_.run.readings.as_list(state_.run); }
    /// Of the file that is being read, or was last.
    const QString &account_being_read() const { return state_.run.readings.account(); }
    const QStringList &found_paths() const { return state_.run.found_files; }
    void set_source_count(int source_count) { state_.source_count = source_count; }

    extractor_state state_;
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
