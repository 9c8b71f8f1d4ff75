// What single sites are allowed or denied, from "Preferences". No driver calls this reader.

#include "common/values/text_values.h"
#include "macos/opera_macos.h"
#include "macos/setting_walk.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

const record_reader website_exceptions_reader = {
    .signature = "void opera_macos::extract_website_exceptions(QString)",
    .starts = "[extract_website_exceptions] Starts",
    .destination_failed = {"[extract_website_exceptions] destination_db open --------FAILED------",
                           "[extract_website_exceptions] end with failure"},
    .insert_failed =
        query_failure("[extract_website_exceptions] insert_excep_query execute-------FAILED-----"),
    .ends = "[extract_website_exceptions] ends",
    .insert = {.sql = "insert into website_exceptions(bookmark, system_user,exception_type, "
                      "hostname,behaviour, timestamp,source_file,artifacts_relation_source_file,"
                      "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?, ?,?,?)",
               .values = {untagged, system_user,
                          as_stored(0), // exception_type
                          as_stored(1), // hostname
                          as_stored(2), // behaviour
                          as_stored(3), // timestamp
                          source_file_path, relation_source_file, os_scheme_display,
                          source_count_name}},
};

struct exception_type {
    QLatin1StringView key;
    const char *label;
};

/// In the order of the rows.
constexpr exception_type exception_types[] = {
    {"ads"_L1, "Block Advertisements"},
    {"images"_L1, "Images"},
    {"javascript"_L1, "JavaScript"},
    {"keygen"_L1, "Key generation"},
    {"popups"_L1, "Pop-ups"},
    {"background_sync"_L1, "Background sync"},
    {"notifications"_L1, "Notifications"},
    {"detached_video"_L1, "Video pop out"},
    {"media_stream_mic"_L1, "Microphone"},
    {"media_stream_camera"_L1, "Camera"},
    {"midi_sysex"_L1, "MIDI full control"},
    {"geolocation"_L1, "Location"},
    {"fullscreen"_L1, "Full screen"},
    {"cookies"_L1, "Cookies"},
    {"plugins"_L1, "Plug-ins"},
};

QString behaviour_text(const QString &number)
{
    if (number == "1"_L1)
        return u"Allow"_s;
    return number == "2"_L1 ? u"Block"_s : u"Unknown"_s;
}

/// Behaviour and time of a "setting", which is an array of the two; empty texts for all others.
std::pair<QString, QString> decision_of(const QJsonValue &stored)
{
    const QJsonArray items = stored.toArray();
    QStringList numbers;
    for (const auto &item : items) {
        if (item.isDouble())
            numbers.append(whole_decimal(item));
    }
    if (numbers.size() != 2)
        return {empty_text(), empty_text()};
    return {behaviour_text(numbers.first()), numbers.last()};
}

/// False when the run is cancelled.
bool write_sites(const QJsonObject &sites, const QString &label, record_sink &sink)
{
    for (auto site = sites.begin(); site != sites.end(); ++site) {
        if (!site.value().isObject())
            continue;
        const auto [behaviour, timestamp] =
            decision_of(site.value().toObject().value("setting"_L1));
        if (!sink.write({label, site.key(), behaviour, timestamp}))
            return false;
    }
    return true;
}

} // namespace

QString opera_macos::get_exact_name(const QString &type)
{
    const auto known = std::ranges::find(exception_types, type, &exception_type::key);
    return known == std::end(exception_types) ? empty_text() : QString::fromUtf8(known->label);
}

void opera_macos::extract_website_exceptions(const QString &source_path)
{
    read_json_file(website_exceptions_reader,
                   "[extract_website_exceptions] source file opening ---FAILED--- ", source_path,
                   state_.run, [](const QJsonObject &document, record_sink &sink) {
                       const QJsonObject exceptions = document.value("profile"_L1)
                                                          .toObject()
                                                          .value("content_settings"_L1)
                                                          .toObject()
                                                          .value("exceptions"_L1)
                                                          .toObject();
                       for (const exception_type &type : exception_types) {
                           if (!write_sites(exceptions.value(type.key).toObject(),
                                            get_exact_name(type.key), sink))
                               return;
                       }
                   });
}
