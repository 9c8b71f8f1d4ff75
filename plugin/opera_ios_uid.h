#pragma once

#include "common/host_records.h"

#include <QList>
#include <QString>
#include <QWidget>

#include <atomic>

class ios_uid_backup_parser;
class plugin_helper_functions;

/// The extractor for iOS backups. It accepts every setting and extracts nothing, so that an iOS
/// source ends with no rows instead of a failure. The controller calls the members; see opera.h.
class opera_ios_uid : public QWidget
{
    Q_OBJECT

public:
    explicit opera_ios_uid(QWidget *parent = nullptr);

    void ios_uid_set_plugin_helper_obj(plugin_helper_functions *helper);
    void ios_uid_set_record_count(qint64 records);
    void ios_uid_set_tab_processed_count(int tables);
    void ios_uid_set_desktop_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info &info);
    void ios_uid_set_general_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info &info);
    void ios_uid_set_source_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &info);
    /// Clears the cancel flag.
    void ios_uid_set_essentials();
    void ios_uid_set_plugin_name(const QString &name);
    void ios_uid_set_destination_location(const QString &result_directory,
                                          const QString &temporary_directory,
                                          const QString &destination_db_path);
    void ios_uid_set_essential_for_mirva_bench_extraction(const QList<QString> &tables);
    void ios_uid_set_engine_type(int engine_type);
    void ios_uid_cancel_extraction();
    void ios_uid_set_source_count(int source_count);
    void ios_uid_find_artifacts_source();
    void ios_uid_extract_artifacts();
    void ios_uid_set_ios_backup_pointer(ios_uid_backup_parser *parser);

    /// Does nothing.
    void find_source_file();
    /// Does nothing.
    void extract_plugin_artifacts();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_ios_uid(qint64 records);
    void signal_total_tabs_processed_ios_uid(int tables);

private:
    plugin_helper_functions *helper_ = nullptr;
    qint64 records_ = 0;
    int tabs_processed_ = 0;
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info source_info_;
    QString plugin_name_;
    QString result_directory_;
    QString temporary_directory_;
    QString destination_db_path_;
    QList<QString> table_list_;
    int engine_type_ = 0;
    std::atomic<bool> cancelled_ = false;
    int source_count_ = 0;
    ios_uid_backup_parser *backup_parser_ = nullptr;
};
