#include "plugin/opera_ios_uid.h"

opera_ios_uid::opera_ios_uid(QWidget *parent) : QWidget(parent) {}

void opera_ios_uid::ios_uid_set_plugin_helper_obj(plugin_helper_functions *helper)
{
    helper_ = helper;
}

void opera_ios_uid::ios_uid_set_record_count(qint64 records)
{
    records_ = records;
}

void opera_ios_uid::ios_uid_set_tab_processed_count(int tables)
{
    tabs_processed_ = tables;
}

void opera_ios_uid::ios_uid_set_desktop_info(
    const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info & /*info*/)
{
}

void opera_ios_uid::ios_uid_set_general_info(
    const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info & /*info*/)
{
}

void opera_ios_uid::ios_uid_set_source_info(
    const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &info)
{
    source_info_ = info;
}

void opera_ios_uid::ios_uid_set_essentials()
{
    cancelled_ = false;
}

void opera_ios_uid::ios_uid_set_plugin_name(const QString &name)
{
    plugin_name_ = name.trimmed();
}

void opera_ios_uid::ios_uid_set_destination_location(const QString &result_directory,
                                                     const QString &temporary_directory,
                                                     const QString &destination_db_path)
{
    result_directory_ = result_directory;
    temporary_directory_ = temporary_directory;
    destination_db_path_ = destination_db_path;
}

void opera_ios_uid::ios_uid_set_essential_for_mirva_bench_extraction(const QList<QString> &tables)
{
    table_list_ = tables;
}

void opera_ios_uid::ios_uid_set_engine_type(int engine_type)
{
    engine_type_ = engine_type;
}

void opera_ios_uid::ios_uid_cancel_extraction()
{
    cancelled_ = true;
}

void opera_ios_uid::ios_uid_set_source_count(int source_count)
{
    source_count_ = source_count;
}

void opera_ios_uid::ios_uid_find_artifacts_source()
{
    find_source_file();
}

void opera_ios_uid::ios_uid_extract_artifacts()
{
    extract_plugin_artifacts();
}

void opera_ios_uid::ios_uid_set_ios_backup_pointer(ios_uid_backup_parser *parser)
{
    backup_parser_ = parser;
}

void opera_ios_uid::find_source_file() {}

void opera_ios_uid::extract_plugin_artifacts() {}
