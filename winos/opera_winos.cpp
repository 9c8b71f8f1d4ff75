#include "winos/opera_winos.h"

#include "common/plugin_static_function.h"

using namespace Qt::StringLiterals;

opera_winos::opera_winos(QWidget *parent)
    : QWidget(parent), state_{.run = extraction_run([this](qint64 records) {
                                  Q_EMIT signal_extracted_records_of_plugin_winos(records);
                              })}
{
    state_.run.idle_extractors_end_early = false;
}

void opera_winos::winos_set_plugin_helper_obj(plugin_helper_functions *helper)
{
    state_.run.helper = helper;
}

void opera_winos::winos_set_record_count(qint64 records)
{
    state_.run.set_records(records);
}

void opera_winos::winos_set_tab_processed_count(int tables)
{
    state_.tabs_processed = tables;
}

void opera_winos::winos_set_desktop_info(
    const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info &info)
{
    desktop_info_ = info;
}

void opera_winos::winos_set_general_info(
    const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info &info)
{
    general_info_ = info;
}

void opera_winos::winos_set_source_info(
    const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &info)
{
    state_.run.source_root = info.virtual_source_path;
    state_.run.source_type = info.source_type_internal;
    state_.run.os_scheme_display = info.os_scheme_display;
    state_.account_names.clear();
    for (const auto &account : info.system_account_list)
        state_.account_names << account.system_user << account.domain_user;
    tidy_account_names(state_.account_names);
}

void opera_winos::winos_set_essentials()
{
    state_.run.set_cancelled(false);
}

void opera_winos::winos_set_plugin_name(const QString &name)
{
    state_.plugin_name = name.trimmed();
}

void opera_winos::winos_set_destination_location(const QString &result_directory,
                                                 const QString & /*temporary_directory*/,
                                                 const QString &destination_db_path)
{
    state_.run.result_directory = result_directory;
    state_.run.destination_path = destination_db_path;
}

void opera_winos::winos_set_essential_for_mirva_bench_extraction(const QList<QString> &tables)
{
    state_.table_list = tables;
}

void opera_winos::winos_set_engine_type(int engine_type)
{
    state_.engine_type = engine_type;
}

void opera_winos::winos_cancel_extraction()
{
    state_.run.set_cancelled(true);
}

void opera_winos::winos_set_source_count(int source_count)
{
    state_.source_count = source_count;
}

void opera_winos::winos_find_artifacts_source()
{
    find_source_file();
}

void opera_winos::winos_extract_artifacts()
{
    state_.run.restart_progress();
    extract_plugin_artifacts();
    state_.run.signal_records();
}

void opera_winos::find_source_file()
{
    const QString signature = u"void opera_winos::find_source_file()"_s;
    plugin_static_function::app_debug(u"[find_source_file] -Starts"_s, signature);
    plugin_static_function::app_debug(u"[find_source_file] -Ends"_s, signature);
}

void opera_winos::extract_plugin_artifacts()
{
    const QString signature = u"void opera_winos::extract_plugin_artifacts()"_s;
    plugin_static_function::app_debug(u"[extract_plugins_artifacts] -Starts"_s, signature);
    plugin_static_function::app_debug(u"[extract_plugins_artifacts] -Ends"_s, signature);
}
