#pragma once

#include "common/debug_log.h"
#include "common/host_records.h"
#include "common/metadata/metadata_records.h"

#include <QDateTime>
#include <QFile>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QtSql/QSqlDatabase>

#include <atomic>
#include <utility>

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
/// The members are defined by concern: debug_log.cpp, database_commands.cpp, time_conversions.cpp,
/// metadata_values.cpp, file_paths.cpp, file_properties.cpp, metadata/metadata_services.cpp.
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
    static void set_engine_type(int engine_type);
    static void set_source_count(int source_count);
    static void set_cancel_extraction(bool cancel);
    /// Keeps the OS version and the account list.
    static void
    set_source_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &source_info);
    /// Nothing of the desktop record is used.
    static void
    set_desktop_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info &desktop_info);
    /// Takes over the log settings and opens the debug file when logging to a file is on.
    static void
    set_general_info(const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info &general_info);
    /// "Source" and the source count, "Source-1" when none is set.
    static QString get_source_count_name();

    static void clear_variables_mirva_and_artifact_common_source_info(
        struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &source_info);
    static void clear_variables_mirva_and_artifact_common_desktop_info(
        struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info &desktop_info);
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

    // ---- Times and sizes (time_conversions.cpp) ---------------------------------------------
    // Numbers come and go as decimal text. Bad input never fails; it gives the stated text.

    /// Microseconds since 1601-01-01 UTC to Unix seconds, truncated toward zero. Empty and "0" give
    /// an empty text; exactly ten characters are Unix seconds already and come back unchanged; any
    /// other text that is no number counts as 0 and gives -11644473600.
    static QString convert_google_time_to_epoch(const QString &google_time);
    /// Unix seconds (a fraction is dropped) to "dd-MMM-yyyy hh:mm:ss" UTC with English month names.
    /// Zero, no number and values beyond 32 bits give an empty text.
    static QString convert_timestamp_to_human_readable_in_UTC(const QString &timestamp);
    /// "MMM d, yyyy, h:mm:ss AM|PM ZONE" to Unix seconds; local time unless the zone is UTC. As in
    /// the next two, "" and "0" give an empty text, a text that cannot be read gives "0".
    static QString convert_human_readable_to_epoch_1(const QString &text);
    /// "yyyy-MM-dd hh:mm:ss+hhmm" (or -hhmm, or no offset for UTC) to Unix seconds.
    static QString convert_human_readable_to_epoch_2(const QString &text);
    /// "ddd, dd MMM yyyy hh:mm:ss ZONE" to Unix seconds; read as UTC whatever the zone.
    static QString convert_human_readable_to_epoch_3(const QString &text);
    /// "hhmm" to seconds; parts that are no numbers count as 0.
    static quint64 convert_timezone_to_seconds(const QString &zone);
    /// Seconds to "hh:mm:ss Hrs", or "mm:ss Min" below an hour; empty for a negative value.
    static QString get_human_readable_time(const QString &seconds);
    /// Seconds since 2001-01-01 UTC (a fraction is dropped) to Unix seconds; empty for "" and "0".
    static QString convert_apple_time_to_epoch(const QString &apple_time);
    /// A compact or ISO date with "T" and "Z" separators to Unix seconds; empty when unreadable.
    static QString convert_T_Z_time_to_epoch(const QString &text);
    /// A date text read with the given Qt format as UTC, to Unix seconds; empty when unreadable.
    static QString get_posix_timestamp(const QString &text, const QString &format);
    /// Bytes to "n B", "n.nn KB" or "n.nn MB"; never larger units. Empty for an empty text.
    static QString human_readable_size(const QString &bytes);
    /// The leading major version of the source's OS version for a scheme name, or empty.
    static QString get_source_os_scan_version(const QString &scheme);
    /// Replaces "\uXXXX" and "\UXXXX" escapes by their characters. Other escapes stay as they are,
    /// among them those of character 0 and of the backslash. Logs that it runs.
    static QString convert_string_to_unicode(const QString &text);

    // ---- Printed descriptions of metadata values (metadata_values.cpp) ------------------------
    // Each takes the printed description of one attribute value and returns the bare value.

    /// The bare number of "<CFNumber ...>{value = +5, type = ...}", or of a plain number.
    static QString get_filtered_number_value(const QString &description);
    /// The text between "=" behind "]>{" and a closing brace at the end; empty without these marks.
    static QString get_filtered_boolean_value(const QString &description);
    /// As for booleans, without double quotes.
    static QString get_filtered_cfstring_value(const QString &description);
    /// The addresses of a printed array, joined with ";", without double quotes, "<" and ">".
    /// Brackets, commas and semicolons within an address stay.
    static QString get_filtered_wherefrom_value(const QString &description);
    /// The items of a printed array, joined with ";", or a plain text as it is.
    static QString get_filtered_string_value(const QString &description);
    /// A printed date to Unix seconds; empty when unreadable.
    static QString get_filtered_date_value(const QString &description);
    /// An ISO date text, "T" or a blank between date and time, in UTC unless an offset follows. The
    /// result is in UTC without fractions of a second, invalid for any other text. Logs its start
    /// and end.
    static QDateTime get_datetime_from_string_with_iso_date(const QString &text);

    // ---- File metadata through the platform operations (metadata/metadata_services.cpp) --------

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

    // ---- Files and paths (file_paths.cpp) -----------------------------------------------------

    /// A name for a copy of file_path that is free in the directory: NAME, 1_NAME, 2_NAME, ...
    /// Creates the directory. Empty when cancelled.
    static QString get_available_file(const QString &directory, const QString &file_path,
                                      const QString &caller);
    /// True when the directory (not its subfolders) has an entry of that name, both trimmed.
    static bool is_file_exist_in_dir(const QString &directory, const QString &file_name,
                                     const QString &caller);
    /// Ensures a leading "/"; for a home-directory source also moves the path into the home folder
    /// of the given account.
    static QString get_complete_file_path(const QString &path, const QString &user_name,
                                          const QString &source_type);
    /// Ensures a leading "/"; for a home-directory source also removes everything up to and
    /// including the first occurrence of the prefix.
    static QString get_relative_file_path(const QString &path, const QString &prefix,
                                          const QString &source_type);
    /// The values of source_file and artifacts_relation_source_file: the relative path, and for a
    /// home-directory source the path as given (else empty).
    static std::pair<QString, QString> get_final_artifact_source_file(const QString &path,
                                                                      const QString &prefix,
                                                                      const QString &source_type);
    /// System and domain user that a path below PREFIX belongs to: the second "/"-separated part of
    /// what follows the prefix (of which only the length counts), with the domain user of the first
    /// account of that name. Two empty texts when no accounts are known.
    static std::pair<QString, QString> extract_user_name_from_sourcefile(const QString &path,
                                                                         const QString &prefix);
    /// Copies a directory tree; failures are logged. Symbolic links are not followed.
    static void copy_directory(const QString &source, const QString &destination);
    /// Removes a directory tree; a symbolic link is removed, never what it points at.
    static void remove_directory(const QString &directory);
    /// The entries of the first list that the second does not hold, in order.
    static QStringList get_unmatched_varible_list_of_parentlist(const QStringList &parent_list,
                                                                const QStringList &other_list);
    /// The extension of a path's file name without its dot; empty without one. The leading dot of a
    /// hidden file starts no extension.
    static QString mining_suffix(const QString &path);
    /// Bytes of a file, or of all files below a folder (links not counted); empty when nothing
    /// exists there and for a symbolic link. When cancelled, the size of the folder entry itself.
    static QString mining_size(const QString &path);
};
