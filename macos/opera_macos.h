#pragma once

#include "common/extraction/extractor_state.h"
#include "common/metadata/metadata_records.h"

#include <QCache>
#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

class QJsonObject;
class QJsonValue;
class QSqlDatabase;
class QSqlQuery;
class record_sink;
class source_row;
struct database_reader;
struct record_reader;
struct struct_thumbnail_info;

/// The parts of a name that an address profile holds.
struct struct_autofill_names {
    QString first_name = QStringLiteral("");
    QString middle_name = QStringLiteral("");
    QString last_name = QStringLiteral("");
    QString full_name = QStringLiteral("");
};

/// One URL found in a session file.
struct struct_session_data {
    QString session_name; ///< name of the session file
    QString url;
    QString source_path;
};

/// The extractor for macOS sources: finds the profile files of every account and reads each
/// artefact kind into its result table. The controller calls the members prefixed macos_ in its own
/// calling order; see opera.h. Every extractor logs its start, its failures and its end, counts
/// each row it writes and stops at the next row when cancelled; rows written so far stay.
///
/// The extractors ending in _11 read current schemas. Where one returns -1, some file has an older
/// schema, and the driver runs the older extractor of the same table over all files again, those
/// that were read included.
class opera_macos : public QWidget, private extractor_settings
{
    Q_OBJECT

public:
    explicit opera_macos(QWidget *parent = nullptr);

    // Settings; see extractor_settings.
    using extractor_settings::account_being_read;
    using extractor_settings::forget_readings;
    using extractor_settings::found_paths;
    using extractor_settings::readings;
    void macos_set_plugin_helper_obj(plugin_helper_functions *helper) { set_helper(helper); }
    void macos_set_record_count(qint64 records) { set_record_count(records); }
    void macos_set_tab_processed_count(int tables) { set_tab_processed_count(tables); }
    void macos_set_desktop_info(const desktop_record & /*info*/) {}
    void macos_set_general_info(const general_record & /*info*/) {}
    /// Account names are added to those of earlier calls.
    void macos_set_source_info(const source_record &info);
    void macos_set_essentials() { set_essentials(); }
    void macos_set_plugin_name(const QString &name) { set_plugin_name(name); }
    void macos_set_destination_location(const QString &result_directory,
                                        const QString &temporary_directory,
                                        const QString &destination_db_path)
    {
        set_destination_location(result_directory, temporary_directory, destination_db_path);
    }
    void macos_set_essential_for_mirva_bench_extraction(const QList<QString> &tables)
    {
        set_tables(tables);
    }
    void macos_set_engine_type(int engine_type) { set_engine_type(engine_type); }
    void macos_cancel_extraction() { cancel(); }
    void macos_set_source_count(int source_count) { set_source_count(source_count); }
    void macos_set_extended_attributes_list(const QList<QString> &names);
    void macos_find_artifacts_source() { find_source_file(); }
    /// Runs the driver and signals the final record count.
    void macos_extract_artifacts();

    /// Fills the lists of found files anew from the profile and cache folders of every account.
    void find_source_file();
    /// Runs the extractors of the selected tables in their fixed order.
    void extract_plugin_artifacts();

    /// Table history, with the text of each URL's visits: 0, or -1 on an older schema.
    int extract_history_11();
    /// Table history from the columns that older schemas have, without visits.
    void extract_history_url();
    /// Table search_items: 0, or -1 on an older schema.
    int extract_search_items_11();
    void extract_search_items();

    /// Table downloads, with what the source still holds of each downloaded file: 0, or -1 on an
    /// older schema.
    int extract_download_11();
    void extract_download();
    /// The file name that ends a path; empty when the path ends in "/".
    static QString get_name_for_downloads(const QString &path);

    /// Table cookies: 0, or -1 on an older schema.
    int extract_cookies_11();
    void extract_cookies();
    /// Table logins, with or without the column ssl_valid.
    void extract_logins_11();
    /// An older reader of the same files; no driver calls it.
    void extract_login_data();

    /// Table autofill: 0, or -1 on an older schema.
    int extract_webdata_autofill_11();
    void extract_webdata_autofill();
    /// Table autofill_profiles: 0, or -1 on an older schema.
    int extract_webdata_autofill_profiles_11();
    void extract_webdata_autofill_profiles();
    /// Table credits_cards, with or without use counts and dates.
    void extract_webdata_credit_cards_11();
    /// An older reader of the same files, without use counts and dates; no driver calls it.
    void extract_webdata_credit_cards();
    /// Table keywords, the search engines: 0, or -1 on another schema. No driver calls it.
    int extract_keywords_11();

    /// Look-ups of the current profiles reader, on a query of the source: the first row of the
    /// profile, empty texts without one. A failure is logged. The query is prepared when it is not.
    struct_autofill_names get_name_for_autofill_profiles(const QString &guid, QSqlQuery &query);
    QString get_email_for_autofill_profiles(const QString &guid, QSqlQuery &query);
    QString get_phone_for_autofill_profiles(const QString &guid, QSqlQuery &query);
    /// Look-ups of the older profiles reader: all rows of the profile, joined. A failure is logged
    /// under the caller's signature.
    QString get_name_for_autofill_profiles(const QSqlDatabase &source, const QString &guid,
                                           const QString &caller);
    QString get_email_for_autofill_profiles(const QSqlDatabase &source, const QString &guid,
                                            const QString &caller);
    QString get_phone_for_autofill_profiles(const QSqlDatabase &source, const QString &guid,
                                            const QString &caller);

    /// Table bookmarks, from the JSON of one "Bookmarks" file.
    void extract_11_bookmarks(const QString &source_path);
    /// Table speeddials, from the Speed Dial root of the same file.
    void extract_11_speeddials(const QString &source_path);
    /// Write the entries of one "children" array, and of the folders in it, below the current
    /// folder path. The query belongs to the result database; `parent` owns the array.
    void extract_bookmarks_items(const QJsonValue &children, const QJsonObject &parent,
                                 const QString &source_path, QSqlQuery &query,
                                 const QString &account, bool cancelled);
    void extract_speeddials_items(const QJsonValue &children, const QJsonObject &parent,
                                  const QString &source_path, QSqlQuery &query,
                                  const QString &account, bool cancelled);
    /// Table bookmarks, line by line from every "Bookmarks" file; no driver calls it.
    void extract_bookmark();
    /// Table topsites. Rows without URL and title are skipped.
    void extract_topsites();

    /// The metadata attributes to read: the fixed list, in its order, narrowed to those that the
    /// host selected when it selected any.
    QStringList filter_extended_attribute_list() const;
    /// The attributes of each file (attributes[i] for the i-th; the last list serves the rest) as
    /// search text and XML document. Files without metadata contribute nothing.
    struct_extended_attributes
    get_extended_attributes(const QList<QString> &file_paths,
                            const QList<QList<QString>> &attributes) const;
    struct_GLOBAL_ARTIFACT_cfstring_attributes
    extract_cfstring_attributes(const QString &file_path) const;
    /// Latitude and longitude of a picture, negative in the south and west.
    std::pair<QString, QString> extract_longi_lati_attributes(const QString &file_path) const;

    /// Table cached_files: the files of every cache folder, by path.
    void extract_cached_files_11();
    /// Table extensions, from one "Preferences" file; icons are copied to "Images/".
    void extract_extensions(const QString &source_path);

    /// Table sessions: the URLs behind the URL marker in every session file.
    void extract_sessions_11();

    // The readers from here to the signals write to tables that only the host creates; no driver
    // calls them.

    /// Table favicon; the pictures become files in "Images/".
    void extract_favicons_11();
    /// Look-ups of the icons' reader, on a query of the source: the icon's own address, and every
    /// page that shows it. A failure is logged. The query is prepared when it is not.
    QString get_icon_url(QSqlQuery &query, const QString &icon_id);
    QStringList get_fav_urls(QSqlQuery &query, const QString &icon_id);
    /// Table thumbnails; the pictures become files in "Images/", numbered anew for every source
    /// file, so that a later file's pictures replace an earlier one's.
    void extract_thumbnails();
    /// Writes one thumbnail; all texts are empty, and the failure is logged, when that fails.
    struct_thumbnail_info get_thumbnail_image(const QByteArray &image_data, int number) const;

    /// Table preferences, from one "Preferences" and one "Local State" file.
    void extract_preferences(const QString &source_path);
    void extract_local_preferences(const QString &source_path);
    /// Table website_exceptions, from one "Preferences" file.
    void extract_website_exceptions(const QString &source_path);
    /// What examiners read for a type of exception; empty for an unknown one.
    static QString get_exact_name(const QString &type);
    /// Table sync_data. Items that were never sent to the server are skipped.
    void extract_sync_data_11();

Q_SIGNALS:
    void signal_extracted_records_of_plugin_macos(qint64 records);
    void signal_total_tabs_processed_macos(int tables);

private:
    /// Absolute paths of found files, one list per consumer. That several lists hold the same paths
    /// is the agreement: each extractor reads its own list.
    struct found_files {
        QStringList cached_files;
        QStringList preferences;
        QStringList local_state;
        QStringList history;
        QStringList downloads;
        QStringList search_items_11;
        QStringList search_items;
        QStringList favicons;
        QStringList cookies;
        QStringList bookmarks;
        QStringList sync_data;
        QStringList sessions;
        QStringList topsites;
        QStringList logins;
        QStringList web_data_11;
        QStringList web_data;
        QStringList web_data_spare_1; ///< filled, read by nothing
        QStringList web_data_spare_2; ///< filled, read by nothing
        QStringList thumbnails;
        QStringList never_filled;
    };

    // What a step of the driver does; see table_step.
    bool run_current_then_older(int (opera_macos::*current)(), void (opera_macos::*older)());
    bool run_once(void (opera_macos::*extractor)());
    bool run_per_file(const QStringList &files, void (opera_macos::*extractor)(const QString &));

    /// Everything that is known about an existing file of the source.
    file_description describe_file(const QString &path) const;
    /// What is known about files that several downloads name.
    using description_cache = QCache<QString, file_description>;
    file_description describe_once(const QString &path, description_cache &known) const;
    /// Puts the values of a download that depend on the downloaded file into the row.
    void derive_download(source_row &row, description_cache &known);
    int read_downloads(const database_reader &reader);
    bool read_cache_folder(record_sink &sink);

    found_files found_;
    QStringList selected_attributes_; ///< as the host gave them
    QStringList extended_attributes_; ///< to be read
    /// Folders that the bookmark walk is in, each followed by "/"; one text for all its levels.
    QString current_folder_path_;
};
