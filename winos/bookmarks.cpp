// Bookmarks, from the text of the "Bookmarks" file: the browser writes one key a line.

#include "common/evidence/evidence_file.h"
#include "common/extraction/record_reader.h"
#include "common/values/text_values.h"
#include "winos/opera_winos.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace
{

const record_reader bookmarks_reader = {
    .signature = "void opera_winos::extract_bookmark()",
    .starts = "[extract_bookmark] starts",
    .destination_failed = open_failure("[extract_bookmark]Destination Db opening ---FAILED---"),
    .insert_failed = query_failure("[extract_bookmark]insert query execution ---FAILED---"),
    .ends = "[extract_bookmark] ends",
    .insert = {.sql = "insert into bookmarks(bookmark,system_user,domain_user,date_added, name, "
                      "url, source_file,url_text, os_scheme_display,source_count_name) "
                      "values(?,?,?,?,?,?,?,?,?,?)",
               .values = {untagged, system_user, domain_user,
                          unix_seconds(0), // date_added
                          as_stored(1),    // name
                          as_stored(2),    // url
                          source_file_path,
                          as_stored(3), // url_text
                          os_scheme_display, source_count_name}},
};

/// The line without the marks of JSON: name: A, B
QString bare_line(QByteArray line)
{
    line = line.trimmed();
    line.replace('"', QByteArray());
    if (line.endsWith(','))
        line.chop(1);
    return QString::fromLocal8Bit(line);
}

/// Calls `each` for the bookmarks of the file until it returns false. Keys come in alphabetical
/// order, so that a node's "url" ends it. Values neither outlive their node nor pass from a folder,
/// whose own keys follow its children, to the bookmark behind it.
void for_each_bookmark(evidence_file &file,
                       const std::function<bool(const opera_winos::bookmarks_data &)> &each)
{
    const auto chopper = opera_winos::bookmarks_string_chopper;
    opera_winos::bookmarks_data current;
    while (!file.atEnd()) {
        const QString line = bare_line(file.read_short_line());
        if (line.startsWith("type:"_L1)) {
            current.type = chopper(line, u"type:"_s);
            if (current.type == "folder"_L1)
                current = {};
        } else if (line.startsWith("name:"_L1)) {
            current.name = chopper(line, u"name:"_s);
        } else if (line.startsWith("url:"_L1)) {
            current.url = chopper(line, u"url:"_s);
            if (!each(current))
                return;
            current = {};
        } else if (line.startsWith("date_added:"_L1)) {
            current.date_added = chopper(line, u"date_added:"_s);
        }
    }
}

} // namespace

QString opera_winos::bookmarks_string_chopper(const QString &line, const QString &key)
{
    if (key.isEmpty())
        return empty_text();
    const qsizetype last = line.lastIndexOf(key);
    return not_null(last < 0 ? line.trimmed() : line.mid(last + key.size()).trimmed());
}

void opera_winos::extract_bookmark()
{
    read_records(bookmarks_reader, found_.bookmarks, state_.run, [this](record_sink &sink) {
        evidence_file file(sink.file().path);
        if (!file.open_whole()) {
            sink.unreadable(file.errorString());
            log_failure(open_failure("[extract_bookmarks] File Open ---FAILED---"),
                        QString::fromUtf8(bookmarks_reader.signature),
                        {.error = file.errorString()});
            return reading_end::next_file;
        }
        for_each_bookmark(file, [&](const bookmarks_data &bookmark) {
            return sink.write({bookmark.date_added, bookmark.name, bookmark.url,
                               local_path_of(decode_percent(bookmark.url))});
        });
        // Lines are found in a damaged file just as in a sound one.
        QJsonParseError error;
        if (file.size() <= evidence_file::largest_json && file.seek(0)) {
            QJsonDocument::fromJson(file.readAll(), &error);
            if (error.error != QJsonParseError::NoError)
                sink.damaged(error.errorString());
        }
        return reading_end::next_file;
    });
}
