// The settings of "Preferences". Labels and texts are what hosts show and search for, leading
// blanks and misspellings included: correct nothing here.

#include "macos/preference_settings.h"

#include "common/values/text_values.h"
#include "common/values/time_values.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace
{

// ---- Texts of numbers ---------------------------------------------------------------------------

// clang-format off
constexpr number_text startup_texts[] = {
    {1, "Continue where you left off"},
    {4, "Open a specific page or set of pages"},
    {5, "Open the New Tab Page"},
};
constexpr number_text font_size_texts[] = {
    {6,  "Very Small"},
    {9,  "Small"},
    {13, "Medium"},
    {17, "Large"},
    {21, "Very Large"},
};
/// Whole entries.
constexpr number_text handler_entries[] = {
    {1, "Handlers:+:Allow sites to ask to become default handlers for protocols (recommended)"},
    {0, "Handlers:+:Do not allow any site to handle protocols"},
};
constexpr number_text cookie_texts[] = {
    {1, "Allow local data to be set (recommended)"},
    {2, "Block sites from setting any data"},
    {4, "Keep local data only until I quit my browser"},
};
constexpr number_text image_texts[] = {
    {1, "Show all images (recommended)"},
    {2, "Do not show any images"},
};
constexpr number_text javascript_texts[] = {
    {1, "Allow all sites to run JavaScript (recommended)"},
    {2, "Do not allow any site to run JavaScript"},
};
constexpr number_text keygen_texts[] = {
    {1, "Allow all sites to use key generation in forms"},
    {2, "Do not allow any site to use key generation in forms (recommended)"},
};
constexpr number_text midi_texts[] = {
    {1, "Allow all sites to use system exclusive messages to access MIDI audio devices"},
    {2, "Do not allow any sites to use system exclusive messages to access MIDI audio devices"},
    {3, "Ask me when a site wants to use system exclusive messages to access MIDI audio devices (recommended)"},
};
constexpr number_text popup_texts[] = {
    {1, "Allow all sites to show pop-ups"},
    {2, "Do not allow any site to show pop-ups (recommended)"},
};
constexpr number_text microphone_texts[] = {
    {2, "Do not allow sites to access my microphone"},
};
constexpr number_text camera_texts[] = {
    {2, "Do not allow sites to access my camera"},
};
constexpr number_text background_sync_texts[] = {
    {2, " Do not allow recently closed sites to finish sending and receiving data"},
};
constexpr number_text location_texts[] = {
    {1, "Allow all sites to track my physical location"},
    {2, "Do not allow any site to track my physical location"},
};
constexpr number_text notification_texts[] = {
    {1, "Allow all sites to show desktop notifications"},
    {2, "Do not allow any site to show desktop notifications"},
};
constexpr number_text plugin_texts[] = {
    {1, "Run all plug-in content"},
    {2, "Do not run plug-ins by default"},
    {3, "Click to play"},
    {5, "Detect and run important plug-in content (recommended)"},
};
/// Whole items of the clearing of browsing data.
constexpr number_text period_texts[] = {
    {0, "Time Period: the past hour;"},
    {1, "Time Period: the past day;"},
    {2, "Time Period: the past week;"},
    {3, "Time Period: the last 4 weeks;"},
    {4, "Time Period: the beginning of time;"},
};

// ---- Settings that several values make up -------------------------------------------------------

using enum json_type;
using namespace setting_rules;

constexpr setting cleared_kinds[] = {
    {{"browsing_history"}, boolean, yes_no, "Browsing History: "},
    {{"cache"},            boolean, yes_no, "Cached Images and Files: "},
    {{"content_licenses"}, boolean, yes_no, "Content Licenses: "},
    {{"cookies"},          boolean, yes_no, "Cookies and other site and plugin data: "},
    {{"download_history"}, boolean, yes_no, "Download History: "},
    {{"form_data"},        boolean, yes_no, "Autofill form data: "},
    {{"hosted_apps_data"}, boolean, yes_no, "Hosted App Data: "},
    {{"passwords"},        boolean, yes_no, "Passwords: "},
};
constexpr setting sync_items[] = {
    {{"opera_last_signed_in_id"},   string,  as_it_stands, "Opera Last Signed ID: "},
    {{"first_sync_time"},           string,  utc_moment,   "First sync Time (UTC): "},
    {{"last_synced_time"},          string,  utc_moment,   "Last sync Time (UTC): "},
    {{"app_settings"},              boolean, yes_no,       "Apps Settings: "},
    {{"apps"},                      boolean, yes_no,       "Apps Settings: "},
    {{"autofill"},                  boolean, yes_no,       "Autofill: "},
    {{"autofill_profile"},          boolean, yes_no,       "Autofill Profile: "},
    {{"autofill_wallet"},           boolean, yes_no,       "Autofill Wallet: "},
    {{"autofill_wallet_metadata"},  boolean, yes_no,       "Autofill Wallet Metadata: "},
    {{"bookmarks"},                 boolean, yes_no,       "Bookmarks: "},
    {{"extension_settings"},        boolean, yes_no,       "Exension Settings: "},
    {{"extensions"},                boolean, yes_no,       "Extensions: "},
    {{"favicon_images"},            boolean, yes_no,       "Favicon Images: "},
    {{"favicon_tracking"},          boolean, yes_no,       "Favicon Tracking: "},
    {{"history_delete_directives"}, boolean, yes_no,       "History: "},
    {{"passwords"},                 boolean, yes_no,       "Passwords: "},
    {{"preferences"},               boolean, yes_no,       "Preferences: "},
    {{"priority_preferences"},      boolean, yes_no,       "Periority Preferences: "},
    {{"search_engines"},            boolean, yes_no,       "Search Engines: "},
    {{"sessions"},                  boolean, yes_no,       "Sessions: "},
    {{"tabs"},                      boolean, yes_no,       "Tabs: "},
    {{"themes"},                    boolean, yes_no,       "Themes: "},
    {{"typed_urls"},                boolean, yes_no,       "Typed Urls: "},
};
// clang-format on

std::optional<QString> cleared_data_text(const QJsonValue &value, number_texts /*texts*/)
{
    const QJsonObject object = value.toObject();
    const QJsonValue period = object.value("time_period"_L1);
    QString text = joined_settings(object, cleared_kinds);
    if (period.isDouble())
        text += text_of_number(period, period_texts).value_or(QString());
    return text;
}

std::optional<QString> sync_text(const QJsonValue &value, number_texts /*texts*/)
{
    return joined_settings(value.toObject(), sync_items);
}

std::optional<QString> shortcuts_text(const QJsonValue &value, number_texts texts)
{
    const QJsonObject commands = value.toObject();
    QString text;
    for (auto command = commands.begin(); command != commands.end(); ++command) {
        if (command.value().isArray())
            text += command.key() + u": " +
                    joined_strings(command.value(), texts).value_or(QString()) + u";;";
    }
    return text;
}

/// Themes come as the text of a JSON object: {"ID":SECONDS,...}.
std::optional<QString> themes_text(const QJsonValue &value, number_texts texts)
{
    QString list = plain_text(value, texts).value_or(QString());
    list.removeIf([](QChar c) { return c == u'"' || c == u'{' || c == u'}'; });
    QString text;
    for (const QString &theme : list.split(u',', Qt::SkipEmptyParts)) {
        const QString installed = theme.section(u':', 1, 1);
        text += u"Theme Name: " + theme.section(u':', 0, 0) + u';' + u"Installation Time (UTC): " +
                unix_seconds_to_utc_text(installed) + u";;";
    }
    return text;
}

constexpr setting_rule cleared_data = {cleared_data_text};
constexpr setting_rule sync_details = {sync_text};
constexpr setting_rule shortcut_list = {shortcuts_text};
constexpr setting_rule theme_details = {themes_text};

// ---- The settings -------------------------------------------------------------------------------

/// What sites may do that have no exception of their own.
constexpr setting content(const char *kind, number_texts texts, const char *label,
                          const char *default_entry = nullptr)
{
    return {{"profile", "default_content_setting_values", kind},
            number,
            known_or_decimal(texts),
            label,
            default_entry};
}

// clang-format off
// Rows follow the document, whose topmost keys are sorted; below one key they follow this list.
constexpr setting settings[] = {
    {{"Keybindings", "Settings", "AdvancedEnabled"},        boolean, yes_no,                            "Enable advanced keyboard shortcuts:+:"},
    {{"Keybindings", "Basic"},                              object,  shortcut_list,                     "Shortcuts List:+:"},
    {{"adblocker", "enabled"},                              boolean, yes_no,                            "Block ads and surf the web up to three times faster:+:"},
    {{"autofill", "enabled"},                               boolean, yes_no,                            "Enable auto-filling of forms on webpages:+:"},
    {{"autofill", "wallet_import_enabled"},                 boolean, yes_no,                            "Wallet Import Enabled:+:"},
    {{"browser", "advanced_settings_enabled"},              boolean, yes_no,                            "Show advanced settings:+:"},
    {{"browser", "clear_data"},                             object,  cleared_data,                      "Clear Browsing Data:+:"},
    {{"custom_handlers", "enabled"},                        boolean, by_flag(handler_entries),          ""},
    {{"download", "default_directory"},                     string,  unless_empty,                      "Download location:+:"},
    {{"download", "prompt_for_download"},                   boolean, yes_no,                            "Ask where to save each file before downloading:+:"},
    {{"enable_do_not_track"},                               boolean, yes_no,                            "Send a ‘Do Not Track’ request with your browsing traffic:+:"},
    {{"power_save_mode", "always_show_icon"},               boolean, yes_no,                            "Always show battery saver icon in toolbar:+:"},
    {{"profile", "block_third_party_cookies"},              boolean, yes_no,                            "Block third-party cookies and site data:+:"},
    {{"profile", "video_popout", "enabled"},                boolean, yes_no,                            "Enable video pop out:+:"},
    {{"profile", "password_manager_enabled"},               boolean, yes_no,                            "Offer to save passwords I enter on the web:+:"},
    content("cookies",             cookie_texts,          "Cookies:+:"),
    content("images",              image_texts,           "Images:+:"),
    content("javascript",          javascript_texts,      "JavaScript:+:"),
    content("keygen",              keygen_texts,          "Key generation:+:"),
    content("midi_sysex",          midi_texts,            "MIDI full control:+:"),
    content("popups",              popup_texts,           "Pop-ups:+:"),
    content("media_stream_mic",    microphone_texts,      "Microphone:+:",      "Microphone:+:Ask me when a site requires access to my microphone (recommended)"),
    content("media_stream_camera", camera_texts,          "Camera:+:",          "Camera:+:Ask me when a site requires access to my camera (recommended)"),
    content("background_sync",     background_sync_texts, "Background sync:+:", "Background sync:+:Allow recently closed sites to finish sending and receiving data (recommended)"),
    content("geolocation",         location_texts,        "Location:+:",        "Location:+:Ask me when a site tries to track my physical location (recommended)"),
    content("notifications",       notification_texts,    "Notifications:+:",   "Notifications:+:Ask me when a site wants to show desktop notifications (recommended)"),
    content("plugins",             plugin_texts,          "Plug-ins:+:"),
    {{"session", "restore_on_startup"},                     number,  known_only(startup_texts),         "On startup:+:"},
    {{"speeddial", "column_count"},                         number,  decimal,                           "Maximum number of columns:+:"},
    {{"speeddial", "disable_animations"},                   boolean, yes_no,                            "Adjust Speed Dial animations for slower hardware:+:"},
    {{"startpage", "should_prompt_for_default_browser"},    boolean, yes_no,                            "Opera is Not Default Browser:+:"},
    {{"sync", "keep_everything_synced"},                    boolean, yes_no,                            "Keep Sync Everything:+:"},
    {{"sync"},                                              object,  sync_details,                      "Sync Detail:+:"},
    {{"themes", "installation_times"},                      text,    theme_details,                     "Themes Detail:+:"},
    {{"themes", "selected_id"},                             string,  unless_empty,                      "Selected Theme:+:"},
    {{"webkit", "webprefs", "default_fixed_font_size"},     number,  known_or_decimal(font_size_texts), "Font Size:+:"},
};
// clang-format on

} // namespace

std::span<const setting> preference_settings()
{
    return settings;
}
