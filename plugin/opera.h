#pragma once

#include "common/host_records.h"

#include <QFrame>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <atomic>

class Ui_opera;
class ios_uid_backup_parser;
class opera_ios_uid;
class opera_macos;
class opera_winos;
class plugin_helper_functions;

/// The controller that the host drives. The host gets one from create_object() and uses nothing but
/// its virtual operations and its two signals; it owns the controller and deletes it. The order of
/// the virtual operations is the binary interface with the host: never reorder, insert or remove.
///
/// Calling order of a run: engine type, essentials, source count, (iOS pointer,) desktop, general
/// and source record, table list, result directory, create tables, clear, extended attributes,
/// find, extract, remove temporary data. All calls come from one thread, but
/// pub_cancel_extraction(), which may come from any thread.
///
/// Properties tell what the operations cannot; see docs/hosting.md.
class opera : public QFrame
{
    Q_OBJECT
    Q_PROPERTY(QStringList found_files READ found_files)
    Q_PROPERTY(QString reading_account READ reading_account)
    Q_PROPERTY(QVariantList reading_record READ reading_record)

public:
    explicit opera(QWidget *parent = nullptr);
    ~opera() override;

    /// Engine type of the run: 0, 1 or 2; any other value extracts and clears nothing.
    virtual void pub_set_engine_type(int engine_type);
    /// The plug-in's name ("Opera", translated); names the result folder and database.
    virtual QString pub_get_artifact_name();
    /// Resets cancel flags, counters and log settings, so that a further source can be read.
    virtual void pub_set_essentials();
    /// Number of the source; "Source" and this number fill every source_count_name column.
    virtual void pub_set_source_count(int source_count);
    /// Stored by the iOS extractor; never dereferenced.
    virtual void pub_set_ios_uid_backup_pointer(ios_uid_backup_parser *parser);
    /// Accepted; nothing of it is read.
    virtual void pub_set_desktop_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info info);
    /// Configures and opens the debug log; nothing is logged before.
    virtual void pub_set_general_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info info);
    /// The evidence source: root path, OS scheme, accounts.
    virtual void pub_set_source_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info info);
    /// Names of the result tables to fill; the second list is ignored.
    virtual void pub_set_essential_for_mirva_bench_extraction(QList<QString> tables,
                                                              QList<QString> ignored);
    /// Lays out the result location under this directory and creates its folders. An empty one is
    /// logged; nothing can be written then.
    virtual void pub_set_result_directory(QString result_directory);
    /// Creates the result tables that are missing; failures are logged.
    virtual void pub_create_db_tables();
    /// True empties the tables of the table list at once; false does nothing.
    virtual void pub_set_clear_db(bool clear);
    /// Asks a run to stop at its next row; rows written so far stay. May be called from any thread.
    virtual void pub_cancel_extraction();
    /// Finds the browser's files of every account; an unknown OS scheme is logged.
    virtual void pub_find_source_file();
    /// Names of the metadata attributes the host wants; macOS sources only.
    virtual void pub_set_extended_attributes_list(QList<QString> names);
    /// Reads the found files into the result database; returns when done or cancelled. A call that
    /// comes while one lasts is logged and does nothing.
    virtual void pub_extract_artifacts();
    /// Does nothing: the browser keeps no chats.
    virtual void pub_generate_chat_html_pages();
    /// Removes the private copies of the evidence files and closes the debug file.
    virtual void pub_remove_temporary_asthetics();

    /// Builds the result paths from the host's directory, creates the folders, hands the paths on.
    void set_destination_location(const QString &result_directory);
    /// create_db_tables() between a start and an end line.
    void create_destination_database();
    /// Creates all fifteen result tables; a failed one is logged and the next is tried.
    void create_db_tables();
    /// Empties the tables of the table list (engine types 0, 1 and 2 only).
    void clear_db_tables();

    /// Paths of the files and folders that were found, each once.
    QStringList found_files() const { return found_files_; }
    /// Account whose files are being read, or were last.
    QString reading_account() const;
    /// What became of each file in the last extraction, a map for each; set when it has ended.
    QVariantList reading_record() const { return reading_record_; }

Q_SIGNALS:
    /// Running number of rows written; about once a second and at the start and end of a run.
    void signal_extracted_records_of_plugin_overall(qint64 records);
    /// Running number of result tables done.
    void signal_tab_processed_of_plugin_overall(int tables);

public Q_SLOTS:
    void slot_extracted_records_of_plugin(qint64 records);
    void slot_total_tabs_processed(int tables);
    void slot_m_process_finished(int exit_code);

private:
    enum class extractor_kind { none, macos, ios_uid, winos };

    extractor_kind matching_extractor(const QString &signature);
    void extract_matching(const QString &signature);

    Ui_opera *ui_;
    int tabs_processed_ = 0;
    bool process_finished_ = false;
    bool extracting_ = false;
    qint64 extracted_records_ = 0;
    QString temporary_directory_;
    QString destination_db_path_;
    QString plugin_result_directory_;
    QString images_directory_;
    int engine_type_ = 0;
    std::atomic<bool> cancelled_ = false;
    QString os_scheme_internal_;
    QList<QString> table_list_;
    QStringList found_files_;
    QVariantList reading_record_;
    plugin_helper_functions *helper_ = nullptr;
    opera_macos *macos_extractor_ = nullptr;
    opera_ios_uid *ios_uid_extractor_ = nullptr;
    opera_winos *winos_extractor_ = nullptr;
};
