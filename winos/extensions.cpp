// Extensions and themes, from the manifests in the folder "Extensions", one folder for each
// extension and in it one for each installed version.

#include "common/artefacts/extension_manifest.h"
#include "common/evidence/evidence_file.h"
#include "common/evidence/sorted_walk.h"
#include "common/extraction/record_reader.h"
#include "common/values/json_values.h"
#include "common/values/text_values.h"
#include "winos/opera_winos.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace
{

const record_reader extensions_reader = {
    .signature = "void opera_winos::extract_extensions()",
    .starts = "[extract_extensions] -Starts",
    .destination_failed = open_failure("[extract_extensions]Destination Db opening ---FAILED--- "),
    .insert_failed = query_failure("[extract_extensions]insert query execution ---FAILED---"),
    .ends = "[extract_extensions] -Ends",
    .insert = {.sql = "insert into extensions(bookmark,system_user,domain_user,name,description,"
                      "version,default_locale,offline_enabled,update_url,path,icon_source_path,"
                      "icon_copy_path,preview_file_path,source_file, os_scheme_display,"
                      "source_count_name) values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
               .values = {untagged, system_user, domain_user,
                          as_stored(0), // name
                          as_stored(1), // description
                          as_stored(2), // version
                          as_stored(3), // default_locale
                          as_stored(4), // offline_enabled
                          as_stored(5), // update_url
                          as_stored(6), // path
                          as_stored(7), // icon_source_path
                          as_stored(8), // icon_copy_path
                          as_stored(8), // preview_file_path
                          source_file_path, os_scheme_display, source_count_name}},
};

void report(const char *text, const QString &path)
{
    log_failure({with_path(text)}, QString::fromUtf8(extensions_reader.signature), {.path = path});
}

QJsonObject read_object(const QString &path)
{
    evidence_file file(path);
    QByteArray text;
    return file.read_json(text) ? relaxed_json_object(text) : QJsonObject();
}

/// The extension's own texts in its default language. Their names do not tell case.
class extension_messages
{
public:
    extension_messages(const QString &folder, const QString &locale)
    {
        const QString path = folder + u"/_locales/" + locale + u"/messages.json";
        if (locale.isEmpty() || !is_inside_folder(path, folder))
            return;
        const QJsonObject entries = read_object(path);
        for (auto entry = entries.begin(); entry != entries.end(); ++entry)
            messages_.insert(entry.key().toLower(),
                             json_text(entry.value().toObject().value("message"_L1)));
    }

    /// The text with each "__MSG_name__" replaced by the message. Unknown ones stay, and all that
    /// come when the text has grown longer than any name or description.
    QString resolved(const QString &text) const
    {
        static const QRegularExpression mark(u"__MSG_([A-Za-z0-9_@]+?)__"_s);
        QString result = empty_text();
        qsizetype copied = 0;
        for (auto marks = mark.globalMatch(text); marks.hasNext();) {
            const QRegularExpressionMatch found = marks.next();
            result += QStringView(text).sliced(copied, found.capturedStart() - copied);
            result += result.size() < longest_text
                          ? messages_.value(found.captured(1).toLower(), found.captured())
                          : found.captured();
            copied = found.capturedEnd();
        }
        return result + QStringView(text).sliced(copied);
    }

private:
    static constexpr qsizetype longest_text = 100'000; ///< characters

    QHash<QString, QString> messages_;
};

/// Writes the row of one version. False when the run is cancelled.
bool write_version(const QString &manifest_path, const QString &id, record_sink &sink)
{
    const QJsonObject manifest = read_object(manifest_path);
    if (manifest.isEmpty()) {
        sink.damaged(u"no JSON object: "_s + path_inside_source(manifest_path, sink.run()));
        report("[extract_extensions]manifest is no JSON object ---FAILED--- for file --->>>",
               manifest_path);
        return true;
    }
    extraction_run &run = sink.run();
    const source_file file(manifest_path, run);
    const QString folder = QFileInfo(manifest_path).path();
    const QString locale = json_text(manifest.value("default_locale"_L1));
    const extension_messages messages(folder, locale);
    const exported_picture picture = export_extension_picture(
        folder, id, manifest, file, run, QString::fromUtf8(extensions_reader.signature));

    // Each row is traced to its own manifest instead of to the folder of all.
    sink.insert().begin_file(file);
    return sink.write({messages.resolved(json_text(manifest.value("name"_L1))),
                       messages.resolved(json_text(manifest.value("description"_L1))),
                       json_text(manifest.value("version"_L1)), locale,
                       json_flag(manifest.value("offline_enabled"_L1)),
                       json_text(manifest.value("update_url"_L1)), path_inside_source(folder, run),
                       picture.source_path, picture.copy_path});
}

} // namespace

void opera_winos::extract_extensions()
{
    read_records(extensions_reader, found_.extensions, state_.run, [](record_sink &sink) {
        const extraction_run &run = sink.run();
        const QString folder = QDir::cleanPath(sink.file().path);
        if (!QFileInfo(folder).isDir()) {
            sink.unreadable(u"no folder"_s);
            report("[extract_extensions]source folder opening ---FAILED--- for path--->>>",
                   sink.file().path);
            return reading_end::next_file;
        }
        const bool listed = for_each_file(
            folder, run.temporary_directory, [&run] { return run.cancelled(); },
            [&](const QString &path) {
                const QStringList parts = path.mid(folder.size() + 1).split(u'/');
                if (parts.size() != 3 || parts.at(2) != "manifest.json"_L1)
                    return true;
                return write_version(path, parts.at(0), sink);
            });
        if (!listed) {
            sink.unreadable(u"the folder cannot be listed"_s);
            report("[extract_extensions]source folder listing ---FAILED--- for path--->>>",
                   sink.file().path);
        }
        return reading_end::next_file;
    });
}
