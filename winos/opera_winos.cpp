#include "winos/opera_winos.h"

#include "common/debug_log.h"
#include "common/evidence/evidence_problems.h"
#include "common/named_connection.h"

#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

opera_winos::opera_winos(QWidget *parent)
    : QWidget(parent), extractor_settings([this](qint64 records) {
          Q_EMIT signal_extracted_records_of_plugin_winos(records);
      })
{
    state_.run.idle_extractors_end_early = false;
}

void opera_winos::winos_set_source_info(const source_record &info)
{
    set_source_info(info);
    state_.account_names.clear();
    for (const auto &account : info.system_account_list)
        state_.account_names << account.system_user << account.domain_user;
    tidy_account_names(state_.account_names);
}

void opera_winos::winos_extract_artifacts()
{
    state_.run.restart_progress();
    extract_plugin_artifacts();
    state_.run.signal_records();
}

void opera_winos::find_source_file()
{
    struct candidate {
        QStringList found_files::*consumer;
        const char *name;
        const char *found;
    };
    static constexpr const char *at_path = "[find_source_file] found at path-->>";
    static constexpr const char *source_at_path =
        "[find_source_file] Source file found at path-->>";
    using f = found_files;
    static constexpr candidate candidates[] = {
        {&f::history_for_downloads, "History", at_path},
        {&f::history, "History", at_path},
        {&f::bookmarks, "Bookmarks", at_path},
        {&f::favorites, "favorites.db", at_path},
        {&f::login_data, "Login Data", at_path},
        {&f::cookies, "Cookies", at_path},
        {&f::web_data_1, "Web Data", at_path},
        {&f::web_data_2, "Web Data", at_path},
        {&f::web_data_3, "Web Data", at_path},
        {&f::search_history, "History", at_path},
        {&f::thumbnails, "thumbnails.db", "[find_source_file] Opera Thumbnail Path Found:"},
        {&f::favicons, "Favicons", source_at_path},
        {&f::extensions, "Extensions/", source_at_path},
        {&f::current_session, "Current Session", source_at_path},
        {&f::last_session, "Last Session", source_at_path},
    };

    const QString signature = u"void opera_winos::find_source_file()"_s;
    debug_log(u"[find_source_file] -Starts"_s, signature);
    found_ = {};
    state_.run.folder_sizes = {};
    state_.run.found_files.clear();
    forget_evidence_problems();
    for (const QString &account : std::as_const(state_.account_names)) {
        const QString profile = state_.run.source_root + u"Users/" + account +
                                u"/AppData/Roaming/Opera Software/Opera Stable/";
        for (const candidate &one : candidates) {
            const QString path = profile + QLatin1StringView(one.name);
            if (!exists_in_evidence(path))
                continue;
            state_.run.found_files.append(path);
            (found_.*one.consumer).append(path);
            debug_log(QLatin1StringView(one.found) + path, signature);
        }
    }
    debug_log(u"[find_source_file] -Ends"_s, signature);
}

bool opera_winos::run_once(void (opera_winos::*extractor)())
{
    (this->*extractor)();
    state_.run.signal_records();
    return true;
}

bool opera_winos::run_sessions()
{
    run_once(&opera_winos::extract_current_session);
    return !state_.run.cancelled() && run_once(&opera_winos::extract_last_session);
}

void opera_winos::extract_plugin_artifacts()
{
    using w = opera_winos;
    // clang-format off
    static constexpr table_step<w> steps[] = {
        {"history",           [](w &o) { return o.run_once(&w::extract_history_url); }},
        {"downloads",         [](w &o) { return o.run_once(&w::extract_history_download); }},
        {"bookmarks",         [](w &o) { return o.run_once(&w::extract_bookmark); }},
        {"topsites",          [](w &o) { return o.run_once(&w::extract_topsites); }},
        {"cookies",           [](w &o) { return o.run_once(&w::extract_cookies); }},
        {"logins",            [](w &o) { return o.run_once(&w::extract_login_data); }},
        {"autofill",          [](w &o) { return o.run_once(&w::extract_webdata_autofill); }},
        {"autofill_profiles", [](w &o) { return o.run_once(&w::extract_webdata_autofill_profiles); }},
        {"credits_cards",     [](w &o) { return o.run_once(&w::extract_webdata_credit_cards); }},
        {"search_items",      [](w &o) { return o.run_once(&w::extract_search_items); }},
        {"extensions",        [](w &o) { return o.run_once(&w::extract_extensions); }},
        {"sessions",          [](w &o) { return o.run_sessions(); }},
    };
    // clang-format on

    const QString signature = u"void opera_winos::extract_plugin_artifacts()"_s;
    debug_log(u"[extract_plugins_artifacts] -Starts"_s, signature);
    const bool completed =
        run_selected_tables<opera_winos>(*this, state_, steps, [this](int tables) {
            Q_EMIT signal_total_tabs_processed_winos(tables);
        });
    if (completed)
        debug_log(u"[extract_plugins_artifacts] -Ends"_s, signature);
}

bool opera_winos::check_duplicate_file(const QString &name)
{
    named_connection result(u"check_duplicate_file"_s, state_.run.destination_path,
                            named_connection::access::read_only);
    if (!result.is_open())
        return false;
    QSqlQuery query(result.database());
    query.setForwardOnly(true);
    return query.exec(u"select name from downloads where name LIKE '%" + name + u"%'") &&
           query.next();
}
