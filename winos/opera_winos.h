#pragma once

#include "common/extraction/extractor_state.h"
#include "common/host_records.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

class plugin_helper_functions;

/// The extractor for Windows sources. The controller calls the members prefixed winos_ in its own
/// calling order; see opera.h.
class opera_winos : public QWidget
{
    Q_OBJECT

public:
    explicit opera_winos(QWidget *parent = nullptr);

    void winos_set_plugin_helper_obj(plugin_helper_functions *helper);
    void winos_set_record_count(qint64 records);
    void winos_set_tab_processed_count(int tables);
    void winos_set_desktop_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info &info);
    void winos_set_general_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info &info);
    /// Keeps root, type and display text; both names of every account are searched.
    void winos_set_source_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &info);
    /// Clears the cancel flag.
    void winos_set_essentials();
    void winos_set_plugin_name(const QString &name);
    void winos_set_destination_location(const QString &result_directory,
                                        const QString &temporary_directory,
                                        const QString &destination_db_path);
    void winos_set_essential_for_mirva_bench_extraction(const QList<QString> &tables);
    void winos_set_engine_type(int engine_type);
    /// May be called from any thread.
    void winos_cancel_extraction();
    void winos_set_source_count(int source_count);
    void winos_find_artifacts_source();
    /// Runs the driver and signals the final record count.
    void winos_extract_artifacts();

    void find_source_file();
    void extract_plugin_artifacts();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_winos(qint64 records);
    void signal_total_tabs_processed_winos(int tables);

private:
    extractor_state state_;
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info desktop_info_;
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info general_info_;
};
