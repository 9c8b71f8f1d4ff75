// Extensions and themes, from the "Preferences" file; their pictures, from the folders of the
// extensions.

#include "common/artefacts/extension_manifest.h"
#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/extraction/record_reader.h"
#include "common/values/json_values.h"
#include "common/values/time_values.h"
#include "macos/opera_macos.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace
{

const record_reader extensions_reader = {
    .signature = "void opera_macos::extract_extensions(QString)",
    .starts = "[extract_extensions_and_themes] Starts",
    .destination_failed = {"[extract_extensions_and_themes] destination_db open "
                           "--------FAILED------",
                           "[extract_extensions_and_themes] end with failure"},
    .insert_failed = query_failure("[xcode_extract_extensions]Insertion Query -----FAILED-----"),
    .ends = "[extract_extensions_and_themes] ends",
    .insert = {.sql = "insert into extensions(bookmark,system_user,name,description,version,"
                      "container,current_locale,default_locale,offline_enabled,update_url, "
                      "was_installed_by_default, was_installed_by_oem,install_time,lastpingtime,"
                      "path,state_value,icon_source_path,icon_copy_path,preview_file_path,"
                      "source_file,artifacts_relation_source_file,os_scheme_display,"
                      "source_count_name) values(?,?,?,?,?,?,?,?,  ?,?,?,?,?, ?,?,?,?,?, "
                      "?,?,?,?,?)",
               .values = {untagged,          system_user,
                          as_stored(0),  // name
                          as_stored(1),  // description
                          as_stored(2),  // version
                          as_stored(3),  // container
                          as_stored(4),  // current_locale
                          as_stored(5),  // default_locale
                          as_stored(6),  // offline_enabled
                          as_stored(7),  // update_url
                          as_stored(8),  // was_installed_by_default
                          as_stored(9),  // was_installed_by_oem
                          as_stored(10), // install_time
                          as_stored(11), // lastpingtime
                          as_stored(12), // path
                          as_stored(13), // state_value
                          as_stored(14), // icon_source_path
                          as_stored(15), // icon_copy_path
                          as_stored(15), // preview_file_path
                          source_file_path,  relation_source_file,
                          os_scheme_display, source_count_name}},
};

/// The browser stores 1 for enabled and 0 for disabled; others (blocked, external) have no name.
QString state_of(const QJsonValue &value)
{
    const QString state = json_text(value);
    if (state == "1"_L1)
        return u"Enable"_s;
    return state == "0"_L1 ? u"Disable"_s : u"Unknown"_s;
}

QString seconds_of(const QJsonValue &browser_time)
{
    return microseconds_since_1601_to_unix_seconds(json_text(browser_time));
}

/// Where the extension's files lie. A recorded path is relative to the profile's "Extensions"
/// folder; an absolute one names a place of the source computer: in its applications, or in the
/// profile that the file belonged to, whose "Extensions" folder is the one beside the file now.
QString extension_folder(const QString &recorded, const QString &profile, const QString &root)
{
    static constexpr QLatin1StringView extensions = "/Extensions/"_L1;
    static constexpr QLatin1StringView applications = "/Applications/"_L1;
    if (recorded.isEmpty())
        return {};
    if (!recorded.startsWith(u'/'))
        return profile + extensions + recorded;
    const QString as_recorded = root + recorded.mid(1);
    if (is_inside_folder(as_recorded, root))
        return as_recorded;
    if (const qsizetype at = recorded.indexOf(applications); at >= 0)
        return root + recorded.mid(at + 1);
    if (const qsizetype at = recorded.lastIndexOf(extensions); at >= 0)
        return profile + recorded.mid(at);
    return as_recorded;
}

} // namespace

void opera_macos::extract_extensions(const QString &source_path)
{
    const QStringList files = source_path.isEmpty() ? QStringList() : QStringList(source_path);
    read_records(extensions_reader, files, state_.run, [this](record_sink &sink) {
        evidence_file file(sink.file().path);
        QByteArray text;
        const QJsonDocument document =
            file.read_json(text) ? QJsonDocument::fromJson(text) : QJsonDocument();
        if (!document.isObject()) {
            if (file.isOpen())
                sink.damaged(u"no JSON object"_s);
            else
                sink.unreadable(file.errorString());
            debug_log(u"[extract_extensions_and_themes] source file opening ---FAILED--- "_s +
                          sink.file().path,
                      QString::fromUtf8(extensions_reader.signature));
            return reading_end::at_once;
        }
        const QJsonObject settings =
            document.object().value("extensions"_L1).toObject().value("settings"_L1).toObject();
        for (auto entry = settings.begin(); entry != settings.end(); ++entry) {
            const QJsonObject extension = entry.value().toObject();
            const QJsonObject manifest = extension.value("manifest"_L1).toObject();
            const QString folder =
                extension_folder(json_text(extension.value("path"_L1)),
                                 QFileInfo(sink.file().path).path(), state_.run.source_root);
            const exported_picture picture =
                export_extension_picture(folder, entry.key(), manifest, sink.file(), state_.run,
                                         QString::fromUtf8(extensions_reader.signature));
            if (!sink.write({json_text(manifest.value("name"_L1)),
                             json_text(manifest.value("description"_L1)),
                             json_text(manifest.value("version"_L1)),
                             json_text(extension.value("container"_L1)),
                             json_text(manifest.value("current_locale"_L1)),
                             json_text(manifest.value("default_locale"_L1)),
                             json_flag(manifest.value("offline_enabled"_L1)),
                             json_text(manifest.value("update_url"_L1)),
                             json_flag(extension.value("was_installed_by_default"_L1)),
                             json_flag(extension.value("was_installed_by_oem"_L1)),
                             seconds_of(extension.value("install_time"_L1)),
                             seconds_of(extension.value("lastpingday"_L1)),
                             json_text(extension.value("path"_L1)),
                             state_of(extension.value("state"_L1)), picture.source_path,
                             picture.copy_path}))
                break;
        }
        return reading_end::next_file;
    });
}
