#include "plugin/opera.h"

#include "common/debug_log.h"
#include "common/evidence/file_paths.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "macos/opera_macos.h"
#include "plugin/opera_ios_uid.h"
#include "ui_opera.h"
#include "winos/opera_winos.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QScopedValueRollback>

using namespace Qt::StringLiterals;

opera::opera(QWidget *parent) : QFrame(parent), ui_(new Ui_opera)
{
    ui_->setupUi(this);

    // Direct, so that a run driven by another thread than the controller's counts in order, too.
    macos_extractor_ = new opera_macos(this);
    connect(macos_extractor_, &opera_macos::signal_extracted_records_of_plugin_macos, this,
            &opera::slot_extracted_records_of_plugin, Qt::DirectConnection);
    connect(macos_extractor_, &opera_macos::signal_total_tabs_processed_macos, this,
            &opera::slot_total_tabs_processed, Qt::DirectConnection);

    ios_uid_extractor_ = new opera_ios_uid(this);
    connect(ios_uid_extractor_, &opera_ios_uid::signal_extracted_records_of_plugin_ios_uid, this,
            &opera::slot_extracted_records_of_plugin, Qt::DirectConnection);
    connect(ios_uid_extractor_, &opera_ios_uid::signal_total_tabs_processed_ios_uid, this,
            &opera::slot_total_tabs_processed, Qt::DirectConnection);

    winos_extractor_ = new opera_winos(this);
    connect(winos_extractor_, &opera_winos::signal_extracted_records_of_plugin_winos, this,
            &opera::slot_extracted_records_of_plugin, Qt::DirectConnection);
    connect(winos_extractor_, &opera_winos::signal_total_tabs_processed_winos, this,
            &opera::slot_total_tabs_processed, Qt::DirectConnection);

    helper_ = new plugin_helper_functions(this);
}

opera::~opera()
{
    delete ui_;
}

void opera::pub_set_engine_type(int engine_type)
{
    engine_type_ = engine_type;
    plugin_static_function::set_engine_type(engine_type);
    macos_extractor_->macos_set_engine_type(engine_type);
    ios_uid_extractor_->ios_uid_set_engine_type(engine_type);
    winos_extractor_->winos_set_engine_type(engine_type);

    macos_extractor_->macos_set_plugin_name(pub_get_artifact_name());
    ios_uid_extractor_->ios_uid_set_plugin_name(pub_get_artifact_name());
    winos_extractor_->winos_set_plugin_name(pub_get_artifact_name());
}

QString opera::pub_get_artifact_name()
{
    return QCoreApplication::translate(nullptr, "Opera", nullptr);
}

void opera::pub_set_essentials()
{
    cancelled_ = false;
    extracted_records_ = 0;
    tabs_processed_ = 0;
    plugin_static_function::set_essentials();
    helper_->set_essentials();
    macos_extractor_->macos_set_essentials();
    ios_uid_extractor_->ios_uid_set_essentials();
    winos_extractor_->winos_set_essentials();
}

void opera::pub_set_source_count(int source_count)
{
    macos_extractor_->macos_set_source_count(source_count);
    ios_uid_extractor_->ios_uid_set_source_count(source_count);
    winos_extractor_->winos_set_source_count(source_count);
    plugin_static_function::set_source_count(source_count);
}

void opera::pub_set_ios_uid_backup_pointer(ios_uid_backup_parser *parser)
{
    ios_uid_extractor_->ios_uid_set_ios_backup_pointer(parser);
}

// Records, lists and texts come by value: that is the binary interface with the host.
// NOLINTBEGIN(performance-unnecessary-value-param)
void opera::pub_set_desktop_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info info)
{
    plugin_static_function::set_desktop_info(info);
    macos_extractor_->macos_set_desktop_info(info);
    ios_uid_extractor_->ios_uid_set_desktop_info(info);
    winos_extractor_->winos_set_desktop_info(info);
}

void opera::pub_set_general_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info info)
{
    plugin_static_function::set_general_info(info);
    macos_extractor_->macos_set_general_info(info);
    ios_uid_extractor_->ios_uid_set_general_info(info);
    winos_extractor_->winos_set_general_info(info);
}

void opera::pub_set_source_info(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info info)
{
    os_scheme_internal_ = info.os_scheme_internal;
    const QString signature = u"virtual void opera::pub_set_source_info(%1)"_s.arg(
        u"struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info"_s);
    const QString &root = info.virtual_source_path;
    if (!root.endsWith(u'/'))
        debug_log(u"[pub_set_source_info] source path does not end in / ------FAILED------- "_s +
                      root,
                  signature);
    if (!QFileInfo(root).isDir())
        debug_log(u"[pub_set_source_info] source is missing ------FAILED------- "_s + root,
                  signature);
    if (info.system_account_list.isEmpty())
        debug_log(u"[pub_set_source_info] no accounts are given ------FAILED------- "_s, signature);
    plugin_static_function::set_source_info(info);
    macos_extractor_->macos_set_source_info(info);
    ios_uid_extractor_->ios_uid_set_source_info(info);
    winos_extractor_->winos_set_source_info(info);
}

void opera::pub_set_essential_for_mirva_bench_extraction(QList<QString> tables,
                                                         QList<QString> /*ignored*/)
{
    table_list_ = tables;
    macos_extractor_->macos_set_essential_for_mirva_bench_extraction(tables);
    ios_uid_extractor_->ios_uid_set_essential_for_mirva_bench_extraction(tables);
    winos_extractor_->winos_set_essential_for_mirva_bench_extraction(tables);
}

void opera::pub_set_result_directory(QString result_directory)
{
    set_destination_location(result_directory);
}

// NOLINTEND(performance-unnecessary-value-param)

void opera::pub_create_db_tables()
{
    create_destination_database();
}

void opera::pub_set_clear_db(bool clear)
{
    if (clear)
        clear_db_tables();
}

void opera::pub_cancel_extraction()
{
    cancelled_ = true;
    macos_extractor_->macos_cancel_extraction();
    ios_uid_extractor_->ios_uid_cancel_extraction();
    winos_extractor_->winos_cancel_extraction();
    plugin_static_function::set_cancel_extraction(true);
    helper_->set_cancel_extraction(true);
}

opera::extractor_kind opera::matching_extractor(const QString &signature)
{
    if (os_scheme_internal_ == "macOS"_L1)
        return extractor_kind::macos;
    if (os_scheme_internal_ == "iOS_UID"_L1)
        return extractor_kind::ios_uid;
    if (os_scheme_internal_ == "winOS"_L1)
        return extractor_kind::winos;
    debug_log(
        u"------FAILED------- supported os scheme internal not matched, received os scheme internal =  "_s +
            os_scheme_internal_ + u", plugin name is " + pub_get_artifact_name(),
        signature);
    return extractor_kind::none;
}

void opera::pub_find_source_file()
{
    QStringList found;
    switch (matching_extractor(u"virtual void opera::pub_find_source_file()"_s)) {
    case extractor_kind::macos:
        macos_extractor_->macos_find_artifacts_source();
        found = macos_extractor_->found_paths();
        break;
    case extractor_kind::ios_uid:
        ios_uid_extractor_->ios_uid_find_artifacts_source();
        break;
    case extractor_kind::winos:
        winos_extractor_->winos_find_artifacts_source();
        found = winos_extractor_->found_paths();
        break;
    case extractor_kind::none:
        break;
    }
    found.removeDuplicates();
    found_files_ = found;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param)
void opera::pub_set_extended_attributes_list(QList<QString> names)
{
    macos_extractor_->macos_set_extended_attributes_list(names);
}

void opera::pub_extract_artifacts()
{
    const QString signature = u"virtual void opera::pub_extract_artifacts()"_s;
    if (extracting_) {
        debug_log(u"[pub_extract_artifacts] is running already ------FAILED-------"_s, signature);
        return;
    }
    const QScopedValueRollback running(extracting_, true);
    macos_extractor_->forget_readings();
    winos_extractor_->forget_readings();
    reading_record_.clear();
    extract_matching(signature);
    if (os_scheme_internal_ == "macOS"_L1)
        reading_record_ = macos_extractor_->readings();
    else if (os_scheme_internal_ == "winOS"_L1)
        reading_record_ = winos_extractor_->readings();
}

void opera::extract_matching(const QString &signature)
{
    debug_log(u"[pub_extract_artifacts] - START"_s, signature);
    Q_EMIT signal_extracted_records_of_plugin_overall(0);

    macos_extractor_->macos_set_plugin_helper_obj(helper_);
    macos_extractor_->macos_set_record_count(extracted_records_);
    macos_extractor_->macos_set_tab_processed_count(tabs_processed_);
    ios_uid_extractor_->ios_uid_set_plugin_helper_obj(helper_);
    ios_uid_extractor_->ios_uid_set_record_count(extracted_records_);
    ios_uid_extractor_->ios_uid_set_tab_processed_count(tabs_processed_);
    winos_extractor_->winos_set_plugin_helper_obj(helper_);
    winos_extractor_->winos_set_record_count(extracted_records_);
    winos_extractor_->winos_set_tab_processed_count(tabs_processed_);

    const extractor_kind kind = matching_extractor(signature);
    if (kind != extractor_kind::none && cancelled_)
        return;
    switch (kind) {
    case extractor_kind::macos:
        macos_extractor_->macos_extract_artifacts();
        break;
    case extractor_kind::ios_uid:
        ios_uid_extractor_->ios_uid_extract_artifacts();
        break;
    case extractor_kind::winos:
        winos_extractor_->winos_extract_artifacts();
        break;
    case extractor_kind::none:
        break;
    }

    Q_EMIT signal_extracted_records_of_plugin_overall(extracted_records_);
    debug_log(u"[pub_extract_artifacts] - END"_s, signature);
}

QString opera::reading_account() const
{
    return os_scheme_internal_ == "winOS"_L1 ? winos_extractor_->account_being_read()
                                             : macos_extractor_->account_being_read();
}

void opera::pub_generate_chat_html_pages() {}

void opera::pub_remove_temporary_asthetics()
{
    remove_folder(temporary_directory_);
    plugin_static_function::close_debug_file();
}

void opera::slot_extracted_records_of_plugin(qint64 records)
{
    extracted_records_ = records;
    Q_EMIT signal_extracted_records_of_plugin_overall(records);
}

void opera::slot_total_tabs_processed(int tables)
{
    tabs_processed_ = tables;
    Q_EMIT signal_tab_processed_of_plugin_overall(tables);
}

void opera::slot_m_process_finished(int /*exit_code*/)
{
    process_finished_ = true;
}
