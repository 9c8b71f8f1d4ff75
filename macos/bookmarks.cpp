// Bookmarks and Speed Dial, from the "Bookmarks" file: a walk over its JSON, and a reader that goes
// line by line.

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/extraction/record_reader.h"
#include "common/plugin_static_function.h"
#include "common/values/text_values.h"
#include "common/values/time_values.h"
#include "macos/opera_macos.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace
{

/// Places of a record's values.
enum bookmark_value { date_added, name, url, folder, icon_url };

/// A result table of the walk over the JSON.
struct bookmark_table {
    record_reader reader;
    const char *walk_signature; ///< function info of the walk's own log lines
};

// The Speed Dial reader writes under its own signature the texts of the bookmark reader: hosts know
// them so.
bookmark_table walked_table(const char *signature, const char *walk_signature,
                            const char *insert_failed, const char *insert)
{
    return {
        {.signature = signature,
         .starts = "[extract_11_bookmarks] starts",
         .destination_failed = {"[extract_11_bookmarks] destination_db open --------FAILED------",
                                "[extract_11_bookmarks] end with failure"},
         .insert_failed = query_failure(insert_failed),
         .ends = "[extract_11_bookmarks] ends",
         .insert = {.sql = insert,
                    .values = {untagged, system_user, as_stored(date_added), as_stored(name),
                               as_stored(url), as_stored(folder), as_stored(icon_url),
                               source_file_path, relation_source_file, os_scheme_display,
                               source_count_name}}},
        walk_signature};
}

const bookmark_table bookmarks_11 = walked_table(
    "void opera_macos::extract_11_bookmarks(QString)",
    "void opera_macos::extract_bookmarks_items(QJsonValue, QJsonObject, QString, QSqlQuery, "
    "QString, bool)",
    "[extract_bookmarks_items]insert query execution -----FAILED------ ",
    "insert into bookmarks(bookmark,system_user,date_added, name, url,folder,icon_url, source_file,"
    "artifacts_relation_source_file,os_scheme_display,source_count_name) "
    "values(?,?,?,?,?,?,?,  ?,?,?,?)");

const bookmark_table speeddials_11 = walked_table(
    "void opera_macos::extract_11_speeddials(QString)",
    "void opera_macos::extract_speeddials_items(QJsonValue, QJsonObject, QString, QSqlQuery, "
    "QString, bool)",
    "[sub_xcode_extract_bookmarks_nsitems]insert query execution -----FAILED------ ",
    "insert into speeddials(bookmark,system_user,date_added, name, url,folder,icon_url, source_file,"
    "artifacts_relation_source_file,os_scheme_display,source_count_name) "
    "values(?,?,?,?,?,?,?,?,  ?,?,?)");

const record_reader bookmark_lines = {
    .signature = "void opera_macos::extract_bookmark()",
    .starts = "[extract_bookmark] starts",
    .destination_failed =
        open_failure("[extract_bookmark]Destination Db opening --------FAILED------- "),
    .insert_failed =
        query_failure("[extract_bookmark]insert query execution --------FAILED------- "),
    .ends = "[extract_bookmark] end.",
    .insert = {.sql = "insert into bookmarks(bookmark,system_user,date_added, name, url, "
                      "source_file,artifacts_relation_source_file,os_scheme_display,"
                      "source_count_name) values(?,?,?,?,?,?,?,?,?)",
               .values = {untagged, system_user, as_stored(date_added), as_stored(name),
                          as_stored(url), source_file_path, relation_source_file, os_scheme_display,
                          source_count_name}},
};

/// Characters. The walk's text can grow by every folder of a made-up file, and a bookmark that held
/// on to all of it would make each folder copy it.
constexpr qsizetype longest_folder_path = 30'000;

/// A JSON string, or an empty text for every other type.
QString string_of(const QJsonValue &value)
{
    return value.isString() ? not_null(value.toString()) : empty_text();
}

/// The values of a bookmark in the order of bookmark_value.
QVariantList bookmark_record(const QJsonObject &entry, const QString &folder_path)
{
    const QString seconds =
        microseconds_since_1601_to_unix_seconds(string_of(entry.value("date_added"_L1)));
    const QJsonValue meta_info = entry.value("meta_info"_L1);
    return {not_null(seconds.trimmed()), string_of(entry.value("name"_L1)),
            decode_percent(string_of(entry.value("url"_L1))), folder_path,
            string_of(meta_info.toObject().value("imageData"_L1))};
}

void enter_folder(QString &path, const QString &name)
{
    path += name.isEmpty() ? u"Folder/"_s : name + u'/';
}

void leave_folder(QString &path)
{
    if (path.endsWith(u'/'))
        path.chop(1);
    path.truncate(path.lastIndexOf(u'/') + 1);
}

/// The walk over one file: its INSERT, prepared once, and the folders that it is in.
class bookmark_walk
{
public:
    /// The query belongs to the result database; the folder path is one text for all levels.
    bookmark_walk(const bookmark_table &table, QSqlQuery &query, const source_file &file,
                  QString &folder_path, extraction_run &run)
        : signature_(QString::fromUtf8(table.walk_signature)), file_(file),
          folder_path_(folder_path), run_(run),
          rows_(query, table.reader.insert, signature_, table.reader.insert_failed, run)
    {
        rows_.begin_file(file);
    }

    /// Writes the entries of one "children" value, whose owner is the parent.
    void write_children(const QJsonValue &children, const QJsonObject &parent, bool cancelled)
    {
        debug_log(u"[extract_bookmarks_items] starts"_s, signature_);
        if (children.isArray())
            write_entries(children.toArray(), string_of(parent.value("name"_L1)), cancelled);
        else
            debug_log(u"[extract_bookmarks_items] ends"_s, signature_);
    }

private:
    void write_entries(const QJsonArray &entries, const QString &folder, bool cancelled)
    {
        if (!entries.isEmpty())
            enter_folder(folder_path_, folder);
        for (qsizetype i = 0; i < entries.size(); ++i) {
            if (cancelled || run_.cancelled())
                return;
            const QJsonObject entry = entries.at(i).toObject();
            const QString type = string_of(entry.value("type"_L1));
            if (type == "url"_L1) {
                record_row row(run_, file_,
                               bookmark_record(entry, folder_path_.left(longest_folder_path)));
                rows_.write(row);
            } else if (type == "folder"_L1) {
                write_children(entry.value("children"_L1), entry, false);
            }
            if (i + 1 == entries.size())
                leave_folder(folder_path_);
        }
    }

    const QString signature_;
    const source_file &file_;
    QString &folder_path_;
    extraction_run &run_;
    row_insertion rows_;
};

void walk_items(const bookmark_table &table, const QJsonValue &children, const QJsonObject &parent,
                const QString &source_path, QSqlQuery &query, const QString &account,
                bool cancelled, QString &folder_path, extraction_run &run)
{
    source_file file(source_path, run);
    file.system_user = account;
    bookmark_walk(table, query, file, folder_path, run).write_children(children, parent, cancelled);
}

/// Walks those roots of a "Bookmarks" file that have children.
void read_roots(const bookmark_table &table, const QString &source_path, QString &folder_path,
                extraction_run &run, QList<QJsonValue> (*roots_of)(const QJsonObject &roots))
{
    const QString signature = QString::fromUtf8(table.reader.signature);
    const QStringList files = source_path.isEmpty() ? QStringList() : QStringList(source_path);
    read_records(table.reader, files, run, [&](record_sink &sink) {
        evidence_file file(sink.file().path);
        QByteArray text;
        if (!file.read_json(text)) {
            sink.unreadable(file.errorString());
            debug_log(u"[extract_11_bookmarks] source file opening ---FAILED--- "_s +
                          sink.file().path,
                      signature);
            return reading_end::at_once;
        }
        QJsonParseError error;
        const QJsonObject top = QJsonDocument::fromJson(text, &error).object();
        text.clear();
        if (error.error != QJsonParseError::NoError) {
            // Without a line, a damaged file would look like one without bookmarks.
            log_failure(
                {with_path("[extract_11_bookmarks] source file parsing ---FAILED--- "), error_text},
                signature, {.path = sink.file().path, .error = error.errorString()});
            sink.damaged(error.errorString());
        }
        bookmark_walk walk(table, sink.insert().query(), sink.file(), folder_path, run);
        for (const QJsonValue &value : roots_of(top.value("roots"_L1).toObject())) {
            const QJsonObject root = value.toObject();
            folder_path.clear();
            if (root.contains("children"_L1))
                walk.write_children(root.value("children"_L1), root, run.cancelled());
        }
        return reading_end::next_file;
    });
}

} // namespace

void opera_macos::extract_bookmarks_items(const QJsonValue &children, const QJsonObject &parent,
                                          const QString &source_path, QSqlQuery &query,
                                          const QString &account, bool cancelled)
{
    walk_items(bookmarks_11, children, parent, source_path, query, account, cancelled,
               current_folder_path_, state_.run);
}

void opera_macos::extract_speeddials_items(const QJsonValue &children, const QJsonObject &parent,
                                           const QString &source_path, QSqlQuery &query,
                                           const QString &account, bool cancelled)
{
    walk_items(speeddials_11, children, parent, source_path, query, account, cancelled,
               current_folder_path_, state_.run);
}

void opera_macos::extract_11_bookmarks(const QString &source_path)
{
    read_roots(bookmarks_11, source_path, current_folder_path_, state_.run,
               [](const QJsonObject &roots) {
                   QList<QJsonValue> walked = {roots.value("bookmark_bar"_L1),
                                               roots.value("other"_L1), roots.value("synced"_L1)};
                   for (const QJsonValue custom : roots.value("custom_root"_L1).toObject())
                       walked.append(custom);
                   return walked;
               });
}

void opera_macos::extract_11_speeddials(const QString &source_path)
{
    read_roots(speeddials_11, source_path, current_folder_path_, state_.run,
               [](const QJsonObject &roots) -> QList<QJsonValue> {
                   return {roots.value("custom_root"_L1).toObject().value("speedDial"_L1)};
               });
}

namespace
{

/// The three texts of one JSON object of the line-by-line reader.
struct line_bookmark {
    QString date_added = empty_text();
    QString name = empty_text();
    QString url; ///< null until the object's "url" line
};

/// The value of a line that begins with the key; null for every other line.
QString value_of_line(const QString &line, QLatin1StringView key)
{
    if (!line.startsWith(key))
        return {};
    return not_null(line.mid(key.size()).remove(u',').remove(u'"').trimmed());
}

bool write_line_bookmark(const line_bookmark &bookmark, record_sink &sink)
{
    if (bookmark.url.isNull())
        return true;
    using common = plugin_static_function;
    const QString seconds = microseconds_since_1601_to_unix_seconds(bookmark.date_added);
    return sink.write({not_null(seconds.section(u'.', 0, 0)),
                       common::convert_string_to_unicode(bookmark.name), bookmark.url});
}

/// Reads the browser's own layout, one key or bracket a line. Each object keeps its values on a
/// stack until its closing bracket, so that a URL meets the name and date of its own object,
/// whatever the order of its keys and whatever objects lie inside.
void read_bookmark_lines(evidence_file &file, record_sink &sink)
{
    std::vector<line_bookmark> objects(1);
    while (!file.atEnd()) {
        if (sink.run().cancelled())
            return;
        const QString line = QString::fromUtf8(file.read_short_line()).trimmed();
        if (line.startsWith(u'}') && objects.size() > 1) {
            if (!write_line_bookmark(objects.back(), sink))
                return;
            objects.pop_back();
        }
        line_bookmark &object = objects.back();
        if (const QString found = value_of_line(line, "\"url\":"_L1); !found.isNull())
            object.url = found;
        else if (const QString label = value_of_line(line, "\"name\":"_L1); !label.isNull())
            object.name = label;
        else if (const QString time = value_of_line(line, "\"date_added\":"_L1); !time.isNull())
            object.date_added = time;
        if (line.endsWith(u'{'))
            objects.emplace_back();
    }
    // A file that is cut off leaves objects open.
    for (; !objects.empty(); objects.pop_back()) {
        if (!write_line_bookmark(objects.back(), sink))
            return;
    }
}

} // namespace

void opera_macos::extract_bookmark()
{
    read_records(bookmark_lines, found_.bookmarks, state_.run, [](record_sink &sink) {
        const QString signature = QString::fromUtf8(bookmark_lines.signature);
        evidence_file file(sink.file().path);
        if (file.open_whole()) {
            read_bookmark_lines(file, sink);
        } else {
            sink.unreadable(file.errorString());
            debug_log(u"[extract_bookmark]source file -----FAILED----- to open"_s, signature);
            debug_log(u"-----Error----"_s + file.errorString(), signature);
        }
        return reading_end::next_file;
    });
}
