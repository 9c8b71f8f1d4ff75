#include "sample/evidence_files.h"
#include "sample/extensions_sample.h"
#include "sample/profile.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

/// A value deep inside an object: the keys that lead to it, separated by ">".
struct setting {
    const char *path;
    QJsonValue value;
};

void insert_setting(QJsonObject &into, const QStringList &keys, const QJsonValue &value)
{
    if (keys.size() == 1) {
        into.insert(keys.first(), value);
        return;
    }
    QJsonObject inner = into.value(keys.first()).toObject();
    insert_setting(inner, keys.mid(1), value);
    into.insert(keys.first(), inner);
}

void insert_settings(QJsonObject &into, std::initializer_list<setting> settings)
{
    for (const setting &one : settings)
        insert_setting(into, QString::fromUtf8(one.path).split(u'>'), one.value);
}

QJsonValue time_text(qint64 time)
{
    return QString::number(time);
}

/// Every setting that the browser lets its user see.
void insert_browser_settings(QJsonObject &preferences, const profile &account)
{
    const QString downloads = account.windows()
                                  ? QString(u"C:\\Users\\" + account.user + u"\\Downloads")
                                  : QString(u"/Users/" + account.user + u"/Downloads");
    insert_settings(
        preferences,
        {
            {"session>restore_on_startup", 1},
            {"session>startup_urls", QJsonArray{u"https://www.example.org/"_s}},
            {"download>default_directory", downloads},
            {"download>prompt_for_download", true},
            {"speeddial>column_count", 5},
            {"speeddial>disable_animations", false},
            {"themes>installation_times",
             u"{\"ddddeeeeffffgggghhhhiiiijjjjkkkk\":1646000000,\"harbour_dusk\":\"1660000000\"}"_s},
            {"themes>selected_id", u"ddddeeeeffffgggghhhhiiiijjjjkkkk"_s},
            {"profile>block_third_party_cookies", true},
            {"profile>video_popout>enabled", true},
            {"profile>password_manager_enabled", false},
            {"profile>name", account.user},
            {"browser>advanced_settings_enabled", true},
            {"webkit>webprefs>default_fixed_font_size", 17},
            {"power_save_mode>always_show_icon", false},
            {"enable_do_not_track", true},
            {"startpage>should_prompt_for_default_browser", false},
            {"adblocker>enabled", true},
            {"autofill>enabled", true},
            {"autofill>wallet_import_enabled", false},
            {"custom_handlers>enabled", true},
            {"Keybindings>Settings>AdvancedEnabled", true},
            {"Keybindings>Basic>Close tab", QJsonArray{u"Ctrl+W"_s, u"Ctrl+F4"_s}},
            {"Keybindings>Basic>New tab", QJsonArray{u"Ctrl+T"_s}},
            {"Keybindings>Basic>Nothing", QJsonArray{}},
            {"Keybindings>Basic>Not a list", u"Ctrl+N"_s},
        });
}

void insert_content_settings(QJsonObject &preferences)
{
    insert_settings(preferences,
                    {
                        {"profile>default_content_setting_values>cookies", 4},
                        {"profile>default_content_setting_values>images", 1},
                        {"profile>default_content_setting_values>javascript", 2},
                        {"profile>default_content_setting_values>keygen", 2},
                        {"profile>default_content_setting_values>midi_sysex", 3},
                        {"profile>default_content_setting_values>popups", 2},
                        {"profile>default_content_setting_values>media_stream_mic", 2},
                        {"profile>default_content_setting_values>media_stream_camera", 1},
                        {"profile>default_content_setting_values>background_sync", 2},
                        {"profile>default_content_setting_values>geolocation", 1},
                        {"profile>default_content_setting_values>notifications", 2},
                        {"profile>default_content_setting_values>plugins", 5},
                    });
}

void insert_deletion_and_sync(QJsonObject &preferences)
{
    insert_settings(preferences,
                    {
                        {"browser>clear_data>browsing_history", true},
                        {"browser>clear_data>cache", true},
                        {"browser>clear_data>content_licenses", false},
                        {"browser>clear_data>cookies", false},
                        {"browser>clear_data>download_history", true},
                        {"browser>clear_data>form_data", false},
                        {"browser>clear_data>hosted_apps_data", false},
                        {"browser>clear_data>passwords", true},
                        {"browser>clear_data>time_period", 4},
                        {"sync>keep_everything_synced", false},
                        {"sync>opera_last_signed_in_id", u"mara@lindqvist.example"_s},
                        {"sync>first_sync_time", time_text(browser_time(days_ago(500)))},
                        {"sync>last_synced_time", time_text(browser_time(minutes_ago(45), 123456))},
                    });
    constexpr const char *synced[] = {
        "app_settings",
        "apps",
        "autofill",
        "autofill_profile",
        "autofill_wallet",
        "autofill_wallet_metadata",
        "bookmarks",
        "extension_settings",
        "extensions",
        "favicon_images",
        "favicon_tracking",
        "history_delete_directives",
        "passwords",
        "preferences",
        "priority_preferences",
        "search_engines",
        "sessions",
        "tabs",
        "themes",
        "typed_urls",
    };
    bool on = false;
    for (const char *kind : synced) {
        on = !on;
        insert_setting(preferences, {u"sync"_s, QString::fromLatin1(kind)}, on);
    }
}

/// An older profile: few settings, and values that no table of meanings knows.
void insert_few_settings(QJsonObject &preferences)
{
    insert_settings(preferences, {
                                     {"session>restore_on_startup", 2},
                                     {"download>default_directory", u""_s},
                                     {"speeddial>column_count", u"five"_s},
                                     {"webkit>webprefs>default_fixed_font_size", 16},
                                     {"custom_handlers>enabled", false},
                                     {"browser>clear_data>cache", false},
                                     {"browser>clear_data>time_period", 5},
                                     {"profile>default_content_setting_values>plugins", 4},
                                     {"profile>default_content_setting_values>popups", 1.9},
                                     {"profile>default_content_setting_values>geolocation", u"2"_s},
                                     {"sync>last_synced_time", u"0"_s},
                                     {"enable_do_not_track", u"yes"_s},
                                 });
}

void insert_site_exceptions(QJsonObject &preferences, const profile &account)
{
    constexpr const char *kinds[] = {
        "ads",
        "images",
        "javascript",
        "keygen",
        "popups",
        "background_sync",
        "notifications",
        "detached_video",
        "media_stream_mic",
        "media_stream_camera",
        "midi_sysex",
        "geolocation",
        "fullscreen",
        "cookies",
        "plugins",
        "no_known_kind",
    };
    const qint64 decided = days_ago(33);
    QJsonObject exceptions;
    number_source numbers = account.numbers("site exceptions");
    for (const char *kind : kinds) {
        QJsonObject sites = {
            {u"https://shop.tealkettle.test:443,*"_s,
             QJsonObject{{u"setting"_s, QJsonArray{1, decided}}}},
            {u"[*.]ads.tealkettle.test,*"_s,
             QJsonObject{{u"setting"_s, QJsonArray{2.7, decided + 1}}}},
        };
        for (qint64 row = 0; row < account.rows(site_exception_rows); ++row) {
            const QString site = QString::fromStdString(make_page(numbers, row).host);
            sites.insert(u"https://" + QString::number(row) + u'.' + site + u":443,*",
                         QJsonObject{{u"setting"_s, QJsonArray{1 + numbers.below(2),
                                                               decided + numbers.below(day)}}});
        }
        exceptions.insert(QString::fromLatin1(kind), sites);
    }
    const QJsonObject odd = {
        {u"https://three.example:443,*"_s, QJsonObject{{u"setting"_s, QJsonArray{1, 2, 3}}}},
        {u"https://plain-number.example:443,*"_s, QJsonObject{{u"setting"_s, 2}}},
        {u"https://asking.example:443,*"_s, QJsonObject{{u"setting"_s, QJsonArray{3, decided}}}},
        {u"https://texts.example:443,*"_s, QJsonObject{{u"setting"_s, QJsonArray{u"1"_s, u"2"_s}}}},
        {u"https://no-setting.example:443,*"_s, QJsonObject{}},
    };
    exceptions.insert(u"fullscreen"_s, odd);
    insert_setting(preferences, {u"profile"_s, u"content_settings"_s, u"exceptions"_s}, exceptions);
}

} // namespace

void write_preferences_file(const profile &account)
{
    QJsonObject preferences;
    if (account.has(u"preferences"_s)) {
        if (account.generation == browser_generation::older) {
            insert_few_settings(preferences);
        } else {
            insert_browser_settings(preferences, account);
            insert_content_settings(preferences);
            insert_deletion_and_sync(preferences);
        }
        insert_site_exceptions(preferences, account);
    }
    if (account.has(u"extensions"_s))
        insert_setting(preferences, {u"extensions"_s, u"settings"_s}, write_extensions(account));
    write_file(account.profile_folder + u"Preferences",
               QJsonDocument(preferences).toJson(QJsonDocument::Compact), latest_instant);
}

void write_local_state_file(const profile &account)
{
    QJsonObject state;
    insert_settings(state, {{"was>restarted", account.generation == browser_generation::older},
                            {"uninstall_metrics>launch_count", u"321"_s}});
    if (account.generation != browser_generation::older)
        insert_settings(
            state,
            {{"adblocker>user_files", QJsonArray{u"own list.txt"_s, u"küche.txt"_s}},
             {"adblocker>stats>by_date>last_date_stored", time_text(browser_time(days_ago(1)))},
             {"startup_metric>last_startup_timestamp",
              time_text(browser_time(minutes_ago(240), 987654))},
             {"startup_metric>last_startup_version", u"95.0.4635.46"_s}});
    write_file(account.profile_folder + u"Local State",
               QJsonDocument(state).toJson(QJsonDocument::Compact), latest_instant);
}

} // namespace sample
