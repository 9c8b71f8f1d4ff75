#include "host/extraction_session.h"

#include "host/cancel_watch.h"
#include "host/evidence_source.h"
#include "host/options.h"
#include "host/progress_display.h"
#include "host/result_location.h"
#include "host/result_tables.h"
#include "host/run_record.h"
#include "host/terminal.h"
#include "plugin/opera.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QVariant>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info general_record(const host_options &options)
{
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info info;
    info.debug_mode_status = options.verbose || !options.log_file.isEmpty();
    info.debug_print_on_terminal = options.verbose;
    info.debug_print_in_file = !options.log_file.isEmpty();
    info.debug_encryption_status = options.log_encrypted;
    info.debug_file_path = options.log_file;
    return info;
}

struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info source_record(const host_options &options)
{
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info info;
    info.virtual_source_path =
        options.source.endsWith(u'/') ? options.source : options.source + u'/';
    info.source_type_internal = options.source_type;
    info.os_scheme_display = options.os_display;
    info.os_scheme_internal = options.os_scheme;
    info.system_account_list = options.accounts;
    return info;
}

bool connect_progress(opera &plugin, progress_display &progress)
{
    return QObject::connect(&plugin, SIGNAL(signal_extracted_records_of_plugin_overall(qint64)),
                            &progress, SLOT(show_records(qint64))) &&
           QObject::connect(&plugin, SIGNAL(signal_tab_processed_of_plugin_overall(int)), &progress,
                            SLOT(show_tables_done(int)));
}

/// The files that the plug-in found, by paths on this machine.
QStringList found_files(const opera &plugin, const host_options &options)
{
    return files_to_print(plugin.property("found_files").toStringList(), options.source);
}

/// Finds and extracts, unless Ctrl-C came before; one that comes later stops the plug-in. Prints of
/// the found files are taken meanwhile.
void find_and_extract(opera &plugin, const host_options &options, cancel_watch &cancel,
                      evidence_prints &prints)
{
    cancel.set_action([&plugin] { plugin.pub_cancel_extraction(); });
    if (!cancel.cancelled()) {
        plugin.pub_find_source_file();
        prints.start(found_files(plugin, options), options.hashes,
                     [&cancel] { return cancel.cancelled(); });
        plugin.pub_extract_artifacts();
    }
    cancel.set_action({});
}

/// Appends what the prints have to say, those of the second time included.
void compare_prints(extraction_outcome &outcome, const host_options &options, cancel_watch &cancel)
{
    QStringList files;
    for (const evidence_print &print : std::as_const(outcome.prints)) {
        files.append(print.path);
        if (!print.problem.isEmpty())
            outcome.warnings.append({u"not hashed"_s, print.path, print.problem});
    }
    if (!options.verify || cancel.cancelled())
        return;
    evidence_prints again;
    again.start(files, true, [&cancel] { return cancel.cancelled(); });
    for (qsizetype i = 0; const evidence_print &after : again.finish()) {
        const evidence_print &before = outcome.prints.at(i++);
        if (before.sha256.isEmpty() || (after.sha256.isEmpty() && after.problem.isEmpty()))
            continue;
        ++outcome.verified;
        if (after.sha256 != before.sha256)
            outcome.warnings.append({u"changed"_s, after.path,
                                     after.sha256.isEmpty()
                                         ? after.problem
                                         : QString::fromLatin1("SHA-256 was " + before.sha256 +
                                                               ", is " + after.sha256)});
    }
}

/// What the plug-in and the prints tell of the evidence, with paths as they are in the source.
void describe_evidence(extraction_outcome &outcome, const opera &plugin,
                       const host_options &options, cancel_watch &cancel, evidence_prints &prints)
{
    const auto inside = [&options](const QString &path) {
        const QString root =
            options.source.endsWith(u'/') ? options.source.chopped(1) : options.source;
        return path.startsWith(root + u'/') ? path.sliced(root.size()) : path;
    };
    outcome.prints = prints.finish();
    compare_prints(outcome, options, cancel);
    QStringList files;
    for (evidence_print &print : outcome.prints) {
        print.path = inside(print.path);
        files.append(print.path);
    }
    for (run_warning &warning : outcome.warnings)
        warning.path = inside(warning.path);
    const QList<file_reading> readings = readings_of(plugin);
    outcome.profiles = profiles_of(readings, files);
    const QList<run_warning> told = warnings_of(readings);
    // What the plug-in could not read either needs no second line.
    outcome.warnings.removeIf([&told](const run_warning &one) {
        return one.outcome == "not hashed"_L1 &&
               std::ranges::any_of(told, [&one](const run_warning &other) {
                   return other.path == one.path && other.outcome != "damaged"_L1;
               });
    });
    outcome.warnings += told;
    sort_warnings(outcome.warnings);

    const QVariant found = plugin.property("found_files");
    if (!found.isValid() || !found.toList().isEmpty() || outcome.cancelled)
        return;
    outcome.no_profile = cause_of_no_profile(options.source, options.os_scheme, options.accounts);
    if (!outcome.warnings.isEmpty())
        outcome.no_profile = u"see the warnings: what cannot be read may hold it"_s;
}

/// An earlier run's rows would be there twice, and nobody would see it.
void tell_of_rows(const QList<table_rows> &rows_before)
{
    qint64 rows = 0;
    for (const table_rows &counted : rows_before)
        rows += counted.rows;
    if (rows > 0)
        terminal::print_error(u"note: the result holds " + QString::number(rows) +
                              u" rows already, and this run adds its own (--clear empties the "
                              "tables first, --append silences this)");
}

void keep_record(extraction_outcome &outcome, const host_options &options)
{
    QString note;
    const QString problem = write_run_record(outcome, options, note);
    if (!note.isEmpty())
        terminal::print_error(u"note: " + note);
    if (outcome.loss.isEmpty())
        outcome.loss = problem;
}

QList<table_rows> difference(QList<table_rows> after, const QList<table_rows> &before)
{
    for (qsizetype i = 0; i < after.size(); ++i)
        after[i].rows -= before.value(i).rows;
    return after;
}

/// The plug-in counts a record when its statement succeeds; on a full disk the commit may yet fail.
QString lost_records(const extraction_outcome &outcome)
{
    qint64 kept = 0;
    for (const table_rows &counted : outcome.rows)
        kept += counted.rows;
    if (kept >= outcome.records) {
        const bool lost = std::ranges::any_of(outcome.warnings, [](const run_warning &one) {
            return one.outcome == "not committed"_L1;
        });
        return lost
                   ? u"some records did not get into the result database; the warnings tell which"_s
                   : QString();
    }
    return QString::number(outcome.records - kept) + u" of " + QString::number(outcome.records) +
           u" records did not get into the result database; --log FILE tells why";
}

/// All calls between the engine type and finding.
void prepare(opera &plugin, const host_options &options, const cancel_watch &cancel)
{
    plugin.pub_set_essentials();
    plugin.pub_set_engine_type(options.engine_type); // which the essentials take from the log's tag
    plugin.pub_set_source_count(options.source_count);
    if (options.os_scheme == "iOS_UID"_L1)
        plugin.pub_set_ios_uid_backup_pointer(nullptr);
    plugin.pub_set_desktop_info({});
    plugin.pub_set_general_info(general_record(options));
    plugin.pub_set_source_info(source_record(options));
    plugin.pub_set_essential_for_mirva_bench_extraction(options.tables, {});
    plugin.pub_set_result_directory(options.result);
    plugin.pub_create_db_tables();
    if (options.clear && !cancel.cancelled())
        plugin.pub_set_clear_db(true);
    plugin.pub_set_extended_attributes_list(options.extended_attributes);
}

} // namespace

extraction_outcome run_extraction(opera &plugin, const host_options &options, cancel_watch &cancel)
{
    extraction_outcome outcome;
    progress_display progress(reading_order(options.os_scheme, options.tables),
                              terminal::is_interactive() && !options.quiet);
    if (!connect_progress(plugin, progress)) {
        outcome.problem = u"the plug-in lacks the progress signals"_s;
        return outcome;
    }
    QElapsedTimer since_start;
    since_start.start();
    outcome.started = QDateTime::currentDateTimeUtc();
    progress.watch(plugin);

    plugin.pub_set_engine_type(options.engine_type);
    outcome.database = database_path(options.result, plugin.pub_get_artifact_name());
    outcome.problem = evidence_conflict(options, outcome.database);
    if (outcome.problem.isEmpty() && QFileInfo::exists(outcome.database))
        outcome.problem = database_problem(outcome.database);
    if (!outcome.problem.isEmpty())
        return outcome;

    prepare(plugin, options, cancel);
    const QList<table_rows> rows_before = count_rows(outcome.database, options.tables);
    if (!options.append && !options.quiet)
        tell_of_rows(rows_before);
    evidence_prints prints;
    if (!rows_before.isEmpty())
        find_and_extract(plugin, options, cancel, prints);
    plugin.pub_remove_temporary_asthetics();
    terminal::clear_status();

    const QList<table_rows> rows_after = count_rows(outcome.database, options.tables);
    if (rows_before.isEmpty() || rows_after.isEmpty())
        outcome.problem = u"the result database " + outcome.database + u" cannot be made or read";
    outcome.records = progress.records();
    outcome.rows = difference(rows_after, rows_before);
    outcome.cancelled = cancel.cancelled();
    describe_evidence(outcome, plugin, options, cancel, prints);
    outcome.loss = lost_records(outcome);
    outcome.seconds = static_cast<double>(since_start.elapsed()) / 1000.0;
    outcome.cancelled = cancel.cancelled();
    outcome.ended = QDateTime::currentDateTimeUtc();
    keep_record(outcome, options);
    return outcome;
}
