// Open and recent tabs, from the session files.

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/extraction/record_reader.h"
#include "common/values/text_values.h"
#include "macos/opera_macos.h"

#include <QByteArrayMatcher>
#include <QtEndian>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

const record_reader sessions_11 = {
    .signature = "void opera_macos::extract_sessions_11()",
    .starts = "[extract_sessions_11] Starts",
    .destination_failed =
        open_failure("[extract_sessions_11] Destination Db opening ---FAILED--- "),
    .insert_failed = query_failure("[extract_sessions_11] insert query  ---------FAILED----------"),
    .ends = "[extract_sessions_11] Ends",
    .insert = {.sql = "INSERT into sessions(bookmark,system_user,session_name,url,source_file,"
                      "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                      "values(?,?,?,?,?,?,?,?)",
               .values = {untagged, system_user, as_stored(0), as_stored(1), source_file_path,
                          relation_source_file, os_scheme_display, source_count_name}},
};

constexpr char url_marker_bytes[] = "\0\0\0\0\0\0\0\0\2\0\0\0";
constexpr qsizetype marker_size = 12;
constexpr qsizetype record_size = marker_size + 4; ///< marker and length of the URL

/// Records of an honest file do not overlap much, so its URLs together are shorter than the file.
/// A file made of markers that each claim all the rest of it would yield the square of its size:
/// once the URLs add up to this many times the file, each ends at the next marker.
constexpr qint64 most_url_bytes_per_file_byte = 8;

constexpr qsizetype longest_url = 2 << 20; ///< bytes; the browser opens none that is longer

/// Calls `each` with the URLs behind the markers, in file order, until it returns false.
void for_each_record(const QByteArray &content, const QString &source_path,
                     const extraction_run &run,
                     const std::function<bool(const struct_session_data &)> &each)
{
    const QString session_name = source_path.section(u'/', -1);
    const QByteArrayMatcher marker(url_marker_bytes, marker_size);
    const qint64 most_url_bytes = most_url_bytes_per_file_byte * content.size();
    qint64 url_bytes = 0;

    qsizetype at = marker.indexIn(content);
    while (at >= 0 && at + record_size <= content.size() && !run.cancelled()) {
        const auto claimed = qFromLittleEndian<quint32>(content.constData() + at + marker_size);
        const qsizetype start = at + record_size;
        const qsizetype next = marker.indexIn(content, start);
        qsizetype length = std::min<qsizetype>(claimed, content.size() - start);
        if (url_bytes + length > most_url_bytes && next >= 0)
            length = std::min(length, next - start);
        url_bytes += length;
        QString url = QString::fromUtf8(content.constData() + start, std::min(length, longest_url));
        if (length > longest_url)
            url += cut_mark;
        // The marker's bytes also occur where no URL follows.
        if (!url.isEmpty() && !each({session_name, url, source_path}))
            break;
        at = next;
    }
}

} // namespace

void opera_macos::extract_sessions_11()
{
    read_records(sessions_11, found_.sessions, state_.run, [this](record_sink &sink) {
        const QString &path = sink.file().path;
        evidence_file file(path);
        if (!file.open_whole()) {
            const QString signature = QString::fromUtf8(sessions_11.signature);
            sink.unreadable(file.errorString());
            debug_log(u"[extract_sessions_11] file open -----FAILED-----"_s + path, signature);
            debug_log(u"----Error---"_s + file.errorString(), signature);
            return reading_end::next_file;
        }
        for_each_record(file.readAll(), path, state_.run,
                        [&sink](const struct_session_data &record) {
                            return sink.write({record.session_name, record.url});
                        });
        return reading_end::next_file;
    });
}
