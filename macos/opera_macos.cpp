#include "macos/opera_macos.h"

#include "common/debug_log.h"
#include "common/evidence/evidence_problems.h"

#include <vector>

using namespace Qt::StringLiterals;

opera_macos::opera_macos(QWidget *parent)
    : QWidget(parent), extractor_settings([this](qint64 records) {
          Q_EMIT signal_extracted_records_of_plugin_macos(records);
      })
{
}

void opera_macos::macos_set_source_info(const source_record &info)
{
    set_source_info(info);
    for (const auto &account : info.system_account_list)
        state_.account_names.append(account.system_user);
    tidy_account_names(state_.account_names);
}

void opera_macos::macos_set_extended_attributes_list(const QList<QString> &names)
{
    selected_attributes_ = names;
    extended_attributes_ = filter_extended_attribute_list();
}

void opera_macos::macos_extract_artifacts()
{
    state_.run.restart_progress();
    extract_plugin_artifacts();
    state_.run.signal_records();
}

void opera_macos::find_source_file()
{
    enum class folder { cache, profile };
    using lists = std::vector<QStringList found_files::*>;
    struct candidate {
        folder in;
        const char *name;
        lists consumers;
    };
    using f = found_files;
    static const candidate candidates[] = {
        {folder::cache, "Cache", {&f::cached_files}},
        {folder::cache, "Media Cache", {&f::cached_files}},
        {folder::profile, "Preferences", {&f::preferences}},
        {folder::profile, "Local State", {&f::local_state}},
        {folder::profile,
         "History",
         {&f::history, &f::downloads, &f::search_items_11, &f::search_items}},
        {folder::profile, "Favicons", {&f::favicons}},
        {folder::profile, "Cookies", {&f::cookies}},
        {folder::profile, "Bookmarks", {&f::bookmarks}},
        {folder::profile, "Sync Data/SyncData.sqlite3", {&f::sync_data}},
        {folder::profile, "Current Tabs", {&f::sessions}},
        {folder::profile, "Current Session", {&f::sessions}},
        {folder::profile, "Last Session", {&f::sessions}},
        {folder::profile, "Last Tabs", {&f::sessions}},
        {folder::profile, "favorites.db", {&f::topsites}},
        {folder::profile, "Login Data", {&f::logins}},
        {folder::profile,
         "Web Data",
         {&f::web_data_11, &f::web_data, &f::web_data_spare_1, &f::web_data_spare_2}},
        {folder::profile, "thumbnails.db", {&f::thumbnails}},
    };

    const QString signature = u"void opera_macos::find_source_file()"_s;
    debug_log(u"[find_source_file] starts"_s, signature);
    const QString users = state_.run.source_root + u"Users/";
    found_ = {};
    state_.run.folder_sizes = {};
    state_.run.found_files.clear();
    forget_evidence_problems();
    for (const QString &account : std::as_const(state_.account_names)) {
        const QString home = users + account + u"/Library/";
        const QString profile = home + u"Application Support/com.operasoftware.Opera/";
        const QString cache = home + u"Caches/com.operasoftware.Opera/";
        for (const candidate &one : candidates) {
            const QString path =
                (one.in == folder::cache ? cache : profile) + QLatin1StringView(one.name);
            if (!exists_in_evidence(path))
                continue;
            state_.run.found_files.append(path);
            for (const auto list : one.consumers)
                (found_.*list).append(path);
        }
    }
    debug_log(u"[find_source_file] ends"_s, signature);
}

bool opera_macos::run_current_then_older(int (opera_macos::*current)(),
                                         void (opera_macos::*older)())
{
    if ((this->*current)() == -1)
        (this->*older)();
    state_.run.signal_records();
    return true;
}

bool opera_macos::run_once(void (opera_macos::*extractor)())
{
    (this->*extractor)();
    state_.run.signal_records();
    return true;
}

bool opera_macos::run_per_file(const QStringList &files,
                               void (opera_macos::*extractor)(const QString &))
{
    for (const QString &file : files) {
        if (state_.run.cancelled())
            return false;
        (this->*extractor)(file);
        state_.run.signal_records();
    }
    return true;
}

void opera_macos::extract_plugin_artifacts()
{
    using m = opera_macos;
    // clang-format off
    static constexpr table_step<m> steps[] = {
        {"history",           [](m &o) { return o.run_current_then_older(&m::extract_history_11, &m::extract_history_url); }},
        {"bookmarks",         [](m &o) { return o.run_per_file(o.found_.bookmarks, &m::extract_11_bookmarks); }},
        {"speeddials",        [](m &o) { return o.run_per_file(o.found_.bookmarks, &m::extract_11_speeddials); }},
        {"downloads",         [](m &o) { return o.run_current_then_older(&m::extract_download_11, &m::extract_download); }},
        {"search_items",      [](m &o) { return o.run_current_then_older(&m::extract_search_items_11, &m::extract_search_items); }},
        {"cookies",           [](m &o) { return o.run_current_then_older(&m::extract_cookies_11, &m::extract_cookies); }},
        {"logins",            [](m &o) { return o.run_once(&m::extract_logins_11); }},
        {"autofill",          [](m &o) { return o.run_current_then_older(&m::extract_webdata_autofill_11, &m::extract_webdata_autofill); }},
        {"autofill_profiles", [](m &o) { return o.run_current_then_older(&m::extract_webdata_autofill_profiles_11, &m::extract_webdata_autofill_profiles); }},
        {"credits_cards",     [](m &o) { return o.run_once(&m::extract_webdata_credit_cards_11); }},
        {"extensions",        [](m &o) { return o.run_per_file(o.found_.preferences, &m::extract_extensions); }},
        {"sessions",          [](m &o) { return o.run_once(&m::extract_sessions_11); }},
        {"cached_files",      [](m &o) { return o.run_once(&m::extract_cached_files_11); }},
        {"topsites",          [](m &o) { return o.run_once(&m::extract_topsites); }},
    };
    // clang-format on

    const QString signature = u"void opera_macos::extract_plugin_artifacts()"_s;
    debug_log(u"[extract_plugin_artifacts] starts"_s, signature);
    const bool completed =
        run_selected_tables<opera_macos>(*this, state_, steps, [this](int tables) {
            Q_EMIT signal_total_tabs_processed_macos(tables);
        });
    if (completed)
        debug_log(u"[extract_plugin_artifacts] ends"_s, signature);
}
