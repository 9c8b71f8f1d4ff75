#pragma once

#include "common/extraction/extractor_state.h"

#include <QWidget>

class ios_uid_backup_parser;

/// The extractor for iOS backups. It accepts every setting and extracts nothing, so that an iOS
/// source ends with no rows instead of a failure. The controller calls the members; see opera.h.
class opera_ios_uid : public QWidget, private extractor_settings
{
    Q_OBJECT

public:
    explicit opera_ios_uid(QWidget *parent = nullptr);

    // Settings; see extractor_settings.
    void ios_uid_set_plugin_helper_obj(plugin_helper_functions *helper) { set_helper(helper); }
    void ios_uid_set_record_count(qint64 records) { set_record_count(records); }
    void ios_uid_set_tab_processed_count(int tables) { set_tab_processed_count(tables); }
    void ios_uid_set_desktop_info(const desktop_record & /*info*/) {}
    void ios_uid_set_general_info(const general_record & /*info*/) {}
    void ios_uid_set_source_info(const source_record &info) { set_source_info(info); }
    void ios_uid_set_essentials() { set_essentials(); }
    void ios_uid_set_plugin_name(const QString &name) { set_plugin_name(name); }
    void ios_uid_set_destination_location(const QString &result_directory,
                                          const QString &temporary_directory,
                                          const QString &destination_db_path)
    {
        set_destination_location(result_directory, temporary_directory, destination_db_path);
    }
    void ios_uid_set_essential_for_mirva_bench_extraction(const QList<QString> &tables)
    {
        set_tables(tables);
    }
    void ios_uid_set_engine_type(int engine_type) { set_engine_type(engine_type); }
    void ios_uid_cancel_extraction() { cancel(); }
    void ios_uid_set_source_count(int source_count) { set_source_count(source_count); }
    void ios_uid_find_artifacts_source() { find_source_file(); }
    void ios_uid_extract_artifacts() { extract_plugin_artifacts(); }
    void ios_uid_set_ios_backup_pointer(ios_uid_backup_parser *parser) { backup_parser_ = parser; }

    void find_source_file() {}
    void extract_plugin_artifacts() {}

Q_SIGNALS:
    void signal_extracted_records_of_plugin_ios_uid(qint64 records);
    void signal_total_tabs_processed_ios_uid(int tables);

private:
    ios_uid_backup_parser *backup_parser_ = nullptr;
};
