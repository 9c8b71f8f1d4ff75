#pragma once

#include "common/extraction/extractor_state.h"

#include <QCache>
#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <map>
#include <memory>

class QSqlQuery;
class record_sink;
class source_row;
struct profile_look_up;
struct record_reader;

/// The extractor for Windows sources: finds the profile files of every account and reads each
/// artefact kind into its result table. The controller calls the members prefixed winos_ in its own
/// calling order; see opera.h. Every extractor logs its start, its failures and its end, counts
/// each row it writes and stops at the next row when cancelled; rows written so far stay.
class opera_winos : public QWidget, private extractor_settings
{
    Q_OBJECT

public:
    /// One bookmark of the line-by-line reader; texts as the file holds them.
    struct bookmarks_data {
        QString date_added; ///< microseconds since 1601-01-01 UTC
        QString name;
        QString type;
        QString url;
    };

    /// What an address profile's table of names holds.
    struct autofill_profile_info {
        QString full_name = QStringLiteral("");
        QString date_of_birth = QStringLiteral("");
        QString gender = QStringLiteral("");
    };

    explicit opera_winos(QWidget *parent = nullptr);

    // Settings; see extractor_settings.
    using extractor_settings::account_being_read;
    using extractor_settings::forget_readings;
    using extractor_settings::found_paths;
    using extractor_settings::readings;
    void winos_set_plugin_helper_obj(plugin_helper_functions *helper) { set_helper(helper); }
    void winos_set_record_count(qint64 records) { set_record_count(records); }
    void winos_set_tab_processed_count(int tables) { set_tab_processed_count(tables); }
    void winos_set_desktop_info(const desktop_record &info) { desktop_info_ = info; }
    void winos_set_general_info(const general_record &info) { general_info_ = info; }
    /// Both names of every account are searched.
    void winos_set_source_info(const source_record &info);
    void winos_set_essentials() { set_essentials(); }
    void winos_set_plugin_name(const QString &name) { set_plugin_name(name); }
    void winos_set_destination_location(const QString &result_directory,
                                        const QString &temporary_directory,
                                        const QString &destination_db_path)
    {
        set_destination_location(result_directory, temporary_directory, destination_db_path);
    }
    void winos_set_essential_for_mirva_bench_extraction(const QList<QString> &tables)
    {
        set_tables(tables);
    }
    void winos_set_engine_type(int engine_type) { set_engine_type(engine_type); }
    void winos_cancel_extraction() { cancel(); }
    void winos_set_source_count(int source_count) { set_source_count(source_count); }
    void winos_find_artifacts_source() { find_source_file(); }
    /// Runs the driver and signals the final record count.
    void winos_extract_artifacts();

    /// Fills the lists of found files anew from the profile folder of every account.
    void find_source_file();
    /// Runs the extractors of the selected tables in their fixed order.
    void extract_plugin_artifacts();

    /// True when the table downloads holds a name that contains the text, which is pasted into the
    /// statement as it is ("%" and "_" match as wildcards). False also when the result database
    /// does not open or the statement fails. No extractor calls it.
    bool check_duplicate_file(const QString &name);

    /// Table history: one row per visit.
    void extract_history_url();
    /// Table downloads, with what the source still holds of each downloaded file.
    void extract_history_download();
    /// Table search_items.
    void extract_search_items();
    /// The path under the source root that a file URL on drive C: names; empty for all others.
    QString file_url_to_unix_name(const QString &url) const;
    /// The last element of a path; empty when the path ends in "/".
    static QString extract_name_for_downloads(const QString &path);

    /// Table cookies.
    void extract_cookies();
    /// Table logins; passwords stay encrypted.
    void extract_login_data();

    /// Table autofill.
    void extract_webdata_autofill();
    /// Table autofill_profiles.
    void extract_webdata_autofill_profiles();
    /// Table credits_cards; card numbers stay encrypted.
    void extract_webdata_credit_cards();
    /// Look-ups of one profile in a private copy of a "Web Data" file. A failure is logged and
    /// gives empty texts. Each keeps its connection to the copy until it is given another one, or
    /// the extractor above ends.
    autofill_profile_info extract_name_for_autofill_profiles(const QString &guid,
                                                             const QString &web_data_path);
    QString extract_email_for_autofill_profiles(const QString &guid, const QString &web_data_path);
    QString extract_phone_for_autofill_profiles(const QString &guid, const QString &web_data_path);

    /// Table bookmarks, line by line from every "Bookmarks" file.
    void extract_bookmark();
    /// What stands behind the last occurrence of the key in the line, trimmed; the whole line
    /// without one, empty for an empty key.
    static QString bookmarks_string_chopper(const QString &line, const QString &key);
    /// Table topsites.
    void extract_topsites();

    /// Table sessions, from "Current Session" and "Last Session".
    void extract_current_session();
    void extract_last_session();
    /// The texts of a file that begin with "http" and end before a zero byte, percent-decoded and
    /// trimmed, in file order. Empty, and logged, when the file does not open.
    static QStringList extract_session_data(const QString &path);

    /// Table extensions: one row per installed version; icons are copied to "Images/".
    void extract_extensions();

    /// Tables favicon and thumbnails, which only the host creates; the pictures become files in
    /// "Images/". No driver calls them.
    void extract_favicons();
    void extract_thumbnails();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_winos(qint64 records);
    void signal_total_tabs_processed_winos(int tables);

private:
    /// Absolute paths of found files, one list per consumer. That several lists hold the same paths
    /// is the agreement: each extractor reads its own list.
    struct found_files {
        QStringList history_for_downloads;
        QStringList history;
        QStringList bookmarks;
        QStringList favorites;
        QStringList login_data;
        QStringList cookies;
        QStringList web_data_1;
        QStringList web_data_2; ///< filled, read by nothing
        QStringList web_data_3; ///< filled, read by nothing
        QStringList search_history;
        QStringList thumbnails;
        QStringList favicons;
        QStringList extensions;
        QStringList current_session;
        QStringList last_session;
    };

    // What a step of the driver does; see table_step.
    bool run_once(void (opera_winos::*extractor)());
    bool run_sessions();

    /// The path inside the source, beginning with "/", that a file URL names; empty for all others.
    QString local_path_of(const QString &url) const;
    using path_cache = QCache<QString, QString>; ///< local paths, by address
    void derive_visit(source_row &row, path_cache &local_paths) const;
    void derive_download(source_row &row);
    void read_sessions(const record_reader &reader, const QStringList &files);
    void for_each_profile_row(const profile_look_up &look_up, const QString &guid,
                              const QString &web_data_path,
                              const std::function<void(const QSqlQuery &row)> &each);
    QString joined_profile_rows(const profile_look_up &look_up, const QString &guid,
                                const QString &web_data_path);

    found_files found_;
    /// Opening reads the whole schema: a connection serves all rows of a file.
    struct profile_source;
    std::map<QString, std::shared_ptr<profile_source>> profile_sources_; ///< by signature
    desktop_record desktop_info_;
    general_record general_info_;
};
