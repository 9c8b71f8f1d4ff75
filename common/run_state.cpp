// The process-wide state of plugin_static_function and what sets it.

#include "common/run_state.h"

#include "common/plugin_static_function.h"
#include "common/values/text_values.h"

#include <algorithm>

QString plugin_static_function::source_os_version_full;
QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account>
    plugin_static_function::system_account_QList;
int plugin_static_function::source_count_int = -1;
std::atomic<bool> plugin_static_function::bool_cancel_extraction = false;

void plugin_static_function::set_essentials()
{
    debug_file_path_QString.clear();
    type_engine_int = -1;
    bool_cancel_extraction = false;
    source_count_int = -1;
    debug_mode_status_bool = false;
    debug_print_in_file_bool = false;
    debug_print_on_terminal_bool = false;
    debug_encryption_status_bool = false;
    system_account_QList.clear();
}

void plugin_static_function::set_source_info(
    const struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info &source_info)
{
    source_os_version_full = source_info.os_version_full;
    system_account_QList = source_info.system_account_list;
}

bool run_is_cancelled()
{
    return plugin_static_function::bool_cancel_extraction;
}

QString numbered_source_name()
{
    return u"Source" + QString::number(plugin_static_function::source_count_int);
}

const QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> &source_accounts()
{
    return plugin_static_function::system_account_QList;
}

QString plugin_static_function::get_source_os_scan_version(const QString &scheme)
{
    if (scheme != u"macOS" && scheme != u"iOS" && scheme != u"winOS")
        return empty_text();

    const auto is_digit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    const QString &version = source_os_version_full;
    const auto begin = std::ranges::find_if(version, is_digit);
    const auto end = std::find_if_not(begin, version.cend(), is_digit);
    return empty_text() + QStringView(begin, end);
}

void plugin_static_function::clear_variables_mirva_and_artifact_common_general_info(
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info &general_info)
{
    const bool encryption = general_info.debug_encryption_status;
    general_info = {};
    general_info.debug_encryption_status = encryption;
}
