#include "host/extraction_session.h"

#include "host/cancel_watch.h"
#include "host/options.h"
#include "host/progress_display.h"
#include "host/result_location.h"
#include "host/result_tables.h"
#include "host/terminal.h"
#include "plugin/opera.h"

#include <QElapsedTimer>
#include <QFileInfo>

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

/// Finds and extracts, unless Ctrl-C came before; one that comes later stops the plug-in.
void find_and_extract(opera &plugin, cancel_watch &cancel)
{
    cancel.set_action([&plugin] { plugin.pub_cancel_extraction(); });
    if (!cancel.cancelled()) {
        plugin.pub_find_source_file();
        plugin.pub_extract_artifacts();
    }
    cancel.set_action({});
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
    if (kept >= outcome.records)
        return {};
    return QString::number(outcome.records - kept) + u" of " + QString::number(outcome.records) +
           u" records did not get into the result database; --log FILE tells why";
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

    plugin.pub_set_engine_type(options.engine_type);
    outcome.database = database_path(options.result, plugin.pub_get_artifact_name());
    outcome.problem = evidence_conflict(options, outcome.database);
    if (outcome.problem.isEmpty() && QFileInfo::exists(outcome.database))
        outcome.problem = database_problem(outcome.database);
    if (!outcome.problem.isEmpty())
        return outcome;

    plugin.pub_set_essentials();
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

    const QList<table_rows> rows_before = count_rows(outcome.database, options.tables);
    if (!rows_before.isEmpty())
        find_and_extract(plugin, cancel);
    plugin.pub_remove_temporary_asthetics();
    terminal::clear_status();

    const QList<table_rows> rows_after = count_rows(outcome.database, options.tables);
    if (rows_before.isEmpty() || rows_after.isEmpty())
        outcome.problem = u"the result database " + outcome.database + u" cannot be made or read";
    outcome.records = progress.records();
    outcome.rows = difference(rows_after, rows_before);
    outcome.loss = lost_records(outcome);
    outcome.seconds = static_cast<double>(since_start.elapsed()) / 1000.0;
    outcome.cancelled = cancel.cancelled();
    return outcome;
}
