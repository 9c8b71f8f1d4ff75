#pragma once

#include "common/debug_log.h"
#include "common/evidence/file_paths.h"
#include "common/metadata/metadata_records.h"
#include "common/metadata/printed_items.h"
#include "common/run_state.h"
#include "common/values/text_values.h"
#include "common/values/time_values.h"

#include <QDateTime>
#include <QFile>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtSql/QSqlDatabase>

#include <atomic>

// Types of the system whose metadata is read; opaque everywhere else.
struct __CFString; // NOLINT(bugprone-reserved-identifier): the system's own name
#ifdef __OBJC__
@class NSDate;
@class NSObject;
#else
class NSDate;
class NSObject;
#endif

/// Process-wide state and the static services that every extractor shares. The state is fed by the
/// controller from the host's records; apart from the cancel flag it is used on one thread only.
///
/// The last argument of many operations is the caller's function info: the caller's signature text,
/// under which log lines appear. These texts are fixed literals, because compilers spell the
/// signature of one function differently and the texts also name database connections.
///
/// What needs no state is a line over a free function, whose header says what it gives. The other
/// members are defined by concern: run_state.cpp, debug_log.cpp, database_commands.cpp,
/// metadata_services.cpp.
class plugin_static_function : public QObject
{
    Q_OBJECT

public:
    // ---- State of the run -----------------------------------------------------------------

    static QString debug_file_path_QString;
    static QFile debug_file_regular_QFile;
    static int type_engine_int; ///< -1 when not set
    static bool debug_mode_status_bool;
    static bool debug_print_in_file_bool;
    static bool debug_print_on_terminal_bool;
    static bool debug_encryption_status_bool;
    static QString source_os_version_full;
    static QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> system_account_QList;
    static int source_count_int; ///< -1 when not set
    static std::atomic<bool> bool_cancel_extraction;

    /// Resets all of the above but the OS version for a new run; an open debug file stays open.
    static void set_essentials();
    static void set_engine_type(int engine_type) { type_engine_int = engine_type; }
    static void set_source_count(int source_count) { source_count_int = source_count; }
    static void set_cancel_extraction(bool cancel) { bool_cancel_extraction = cancel; }
    /// Keeps the OS version and the account list.
    static void
    set_source_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &source_info);
    /// Nothing of the desktop record is used.
    static void
    set_desktop_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info & /*desktop_info*/)
    {
    }
    /// Takes over the log settings and opens the debug file when logging to a file is on.
    static void
    set_general_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info &general_info);
    static QString get_source_count_name() { return numbered_source_name(); }
    /// The leading major version of the source's OS version for a scheme name, or empty.
    static QString get_source_os_scan_version(const QString &scheme);

    static void clear_variables_mirva_and_artifact_common_source_info(
        struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &source_info)
    {
        source_info = {};
    }
    static void clear_variables_mirva_and_artifact_common_desktop_info(
        struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info &desktop_info)
    {
        desktop_info = {};
    }
    /// Leaves debug_encryption_status as it was.
    static void clear_variables_mirva_and_artifact_common_general_info(
        struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info &general_info);

    // ---- Debug log (debug_log.cpp) ----------------------------------------------------------

    static void app_debug(const QString &message, const QString &function_info)
    {
        debug_log(message, function_info);
    }
    /// Opens the debug file for appending when logging to a file is on; a failure is not reported.
    static void open_debug_file();
    static void close_debug_file();
    /// Base64 cipher text of the text, empty for an empty text. The caller is not used.
    static QString encrypt_string(const QString &text, const QString &caller);

    // ---- Database commands (database_commands.cpp) ------------------------------------------
    // A failure is logged and gives false or an empty list. The *_by_dbpath operations open a
    // connection of their own, close it and leave it registered; the next call of the same
    // caller replaces it. The *_by_dbreference operations only use the caller's open connection.

    static bool execute_db_command_by_dbpath(const QString &command, const QString &db_path,
                                             const QString &caller);
    static bool execute_db_command_with_addbindvalue_by_dbpath(const QString &command,
                                                               const QStringList &bind_values,
                                                               const QString &db_path,
                                                               const QString &caller);
    static bool execute_db_command_by_dbreference(const QString &command, QSqlDatabase &database,
                                                  const QString &caller);
    static bool execute_db_command_with_addbindvalue_by_dbreference(const QString &command,
                                                                    const QStringList &bind_values,
                                                                    QSqlDatabase &database,
                                                                    const QString &caller);

    /// One column of every result row as text; stops early, with the rows so far, when cancelled.
    static QStringList get_stringlist_from_db_by_dbreference(const QString &command, int column,
                                                             QSqlDatabase &database,
                                                             const QString &caller);
    static QStringList get_stringlist_from_db_with_addbindvalues_by_dbreference(
        const QString &command, const QStringList &bind_values, int column, QSqlDatabase &database,
        const QString &caller);
    static QStringList get_stringlist_from_db_by_dbpath(const QString &command, int column,
                                                        const QString &db_path,
                                                        const QString &caller);
    static QStringList get_stringlist_from_db_with_addbindvalues_by_dbpath(
        const QString &command, const QStringList &bind_values, int column, const QString &db_path,
        const QString &caller);

    /// True when the value equals (case-sensitively) the column of some result row.
    static bool check_value_existence_in_db_by_dbreference(const QString &command, int column,
                                                           const QString &value,
                                                           const QSqlDatabase &database);
    static QStringList get_total_tables_list_by_dbpath(const QString &db_path,
                                                       const QString &caller);

    // ---- Times, sizes and escapes (values/time_values.h, values/text_values.h) ----------------

    static QString convert_google_time_to_epoch(const QString &microseconds)
    {
        return microseconds_since_1601_to_unix_seconds(microseconds);
    }
    static QString convert_timestamp_to_human_readable_in_UTC(const QString &unix_seconds)
    {
        return unix_seconds_to_utc_text(unix_seconds);
    }
    static QString convert_human_readable_to_epoch_1(const QString &text)
    {
        return english_date_to_unix_seconds(text);
    }
    static QString convert_human_readable_to_epoch_2(const QString &text)
    {
        return sql_date_to_unix_seconds(text);
    }
    static QString convert_human_readable_to_epoch_3(const QString &text)
    {
        return http_date_to_unix_seconds(text);
    }
    static quint64 convert_timezone_to_seconds(const QString &zone)
    {
        return hhmm_to_seconds(zone);
    }
    static QString get_human_readable_time(const QString &seconds)
    {
        return seconds_to_duration_text(seconds);
    }
    static QString convert_apple_time_to_epoch(const QString &seconds)
    {
        return seconds_since_2001_to_unix_seconds(seconds);
    }
    static QString convert_T_Z_time_to_epoch(const QString &text)
    {
        return iso_date_to_unix_seconds(text);
    }
    static QString get_posix_timestamp(const QString &text, const QString &format)
    {
        return utc_date_to_unix_seconds(text, format);
    }
    static QString human_readable_size(const QString &bytes) { return bytes_to_size_text(bytes); }
    /// decode_unicode_escapes(), logging that it runs.
    static QString convert_string_to_unicode(const QString &text)
    {
        debug_log(QStringLiteral(" : running"),
                  QStringLiteral(
                      "static QString plugin_static_function::convert_string_to_unicode(QString)"));
        return decode_unicode_escapes(text);
    }

    // ---- Printed descriptions of metadata values (metadata/printed_items.h) --------------------

    static QString get_filtered_number_value(const QString &description)
    {
        return bare_number(description);
    }
    static QString get_filtered_boolean_value(const QString &description)
    {
        return bare_boolean(description);
    }
    static QString get_filtered_cfstring_value(const QString &description)
    {
        return bare_string(description);
    }
    static QString get_filtered_wherefrom_value(const QString &description)
    {
        return joined_addresses(description);
    }
    static QString get_filtered_string_value(const QString &description)
    {
        return joined_items(description);
    }
    static QString get_filtered_date_value(const QString &description)
    {
        return printed_date_to_unix_seconds(description);
    }
    static QDateTime get_datetime_from_string_with_iso_date(const QString &text)
    {
        return iso_text_to_date_time(text);
    }

    // ---- File metadata through the platform operations (metadata_services.cpp) ----------------

    /// When a file was last and ever used; empty texts for a file without metadata.
    static struct_GLOBAL_ARTIFACT_used_dates extract_used_date(const QString &file_path);
    /// The text of a system string; empty for null.
    static QString convert_cfstring_to_qstring(const __CFString *string);
    /// A system date to Unix seconds; empty for null. The formatter may be null.
    static QString convert_nsdate_to_epoch(NSDate *date, NSObject *formatter);
    // Readers of system dictionaries. A missing value is logged and gives an empty text.
    static QString get_nsstring_values(void *dictionary, void *key);
    static QString get_nsnumber_values(void *dictionary, void *key);
    /// YES or NO of a boolean, the number of a number.
    static QString get_nsnumber_values_yes_no(void *dictionary, void *key);
    // The same, as LABEL + ":+:" + value.
    static QString get_nsnumber_key_and_value_yes_no(void *dictionary, void *key,
                                                     const QString &label);
    static QString get_nsstring_key_and_values(void *dictionary, void *key, const QString &label);
    static QString get_nsnumber_key_and_values(void *dictionary, void *key, const QString &label);
    /// The elements joined with ";".
    static QString get_nsarray_key_and_values(void *dictionary, void *key, const QString &label);

    // ---- Files and paths (evidence/file_paths.h) ----------------------------------------------
    // The caller is not used.

    static QString get_available_file(const QString &directory, const QString &file_path,
                                      const QString & /*caller*/)
    {
        return free_file_name(directory, file_path);
    }
    static bool is_file_exist_in_dir(const QString &directory, const QString &file_name,
                                     const QString & /*caller*/)
    {
        return folder_has_entry(directory, file_name);
    }
    static QString get_complete_file_path(const QString &path, const QString &user_name,
                                          const QString &source_type)
    {
        return complete_file_path(path, user_name, source_type);
    }
    static QString get_relative_file_path(const QString &path, const QString &prefix,
                                          const QString &source_type)
    {
        return relative_file_path(path, prefix, source_type);
    }
    static std::pair<QString, QString> get_final_artifact_source_file(const QString &path,
                                                                      const QString &prefix,
                                                                      const QString &source_type)
    {
        return source_file_columns(path, prefix, source_type);
    }
    static std::pair<QString, QString> extract_user_name_from_sourcefile(const QString &path,
                                                                         const QString &prefix)
    {
        return account_of_path(path, prefix);
    }
    static void copy_directory(const QString &source, const QString &destination)
    {
        copy_folder(source, destination);
    }
    static void remove_directory(const QString &directory) { remove_folder(directory); }
    /// The entries of the first list that the second does not hold, in order.
    static QStringList get_unmatched_varible_list_of_parentlist(const QStringList &parent_list,
                                                                const QStringList &other_list)
    {
        QStringList unmatched = parent_list;
        unmatched.removeIf([&](const QString &entry) { return other_list.contains(entry); });
        return unmatched;
    }
    static QString mining_suffix(const QString &path) { return file_suffix(path); }
    static QString mining_size(const QString &path) { return size_in_bytes(path); }
};
