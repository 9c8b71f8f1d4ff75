// Open and recent tabs, from the session files.

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/extraction/record_reader.h"
#include "common/values/text_values.h"
#include "winos/opera_winos.h"

#include <QByteArrayMatcher>

using namespace Qt::StringLiterals;

namespace
{

// Bookmark is written into the statement here.
const insertion session_insertion = {
    .sql = "insert into sessions(bookmark,system_user,domain_user,url,source_file, "
           "os_scheme_display,source_count_name) values(0,?,?,?,?,?,?)",
    .values = {system_user, domain_user, as_stored(0), source_file_path, os_scheme_display,
               source_count_name}};

const record_reader current_session = {
    .signature = "void opera_winos::extract_current_session()",
    .starts = "[extract_current_session] -Starts",
    .destination_failed =
        open_failure("[extract_current_session]Destination Db opening ---FAILED---"),
    .insert_failed = query_failure("[extract_current_session] insert query execution ---FAILED---"),
    .ends = "[extract_current_session] -Ends",
    .insert = session_insertion,
};

const record_reader last_session = {
    .signature = "void opera_winos::extract_last_session()",
    .starts = "[extract_last_session] -Starts",
    .destination_failed = open_failure("[extract_last_session]Destination Db opening ---FAILED---"),
    .insert_failed = query_failure("[extract_last_session] insert query execution ---FAILED---"),
    .ends = "[extract_last_session] -Ends",
    .insert = session_insertion,
};

} // namespace

QStringList opera_winos::extract_session_data(const QString &path)
{
    const QString signature = u"QStringList opera_winos::extract_session_data(QString)"_s;
    debug_log(u"[extract_session_data] - Starts"_s, signature);
    evidence_file file(path);
    if (!file.open_whole()) {
        log_failure(open_failure("[extract_session_data]File Open ---FAILED---"), signature,
                    {.error = file.errorString()});
        return {};
    }
    const QByteArray content = file.readAll();
    file.close();

    QStringList urls;
    const QByteArrayMatcher marker("http");
    for (qsizetype at = marker.indexIn(content); at >= 0;) {
        const qsizetype zero = content.indexOf('\0', at);
        const qsizetype end = zero < 0 ? content.size() : zero;
        urls.append(not_null(decode_percent(content.mid(at, end - at)).trimmed()));
        at = marker.indexIn(content, end);
    }
    debug_log(u"[extract_session_data] - Ends"_s, signature);
    return urls;
}

void opera_winos::read_sessions(const record_reader &reader, const QStringList &files)
{
    read_records(reader, files, state_.run, [](record_sink &sink) {
        if (const QString reason = reason_not_readable(sink.file().path); !reason.isEmpty())
            sink.unreadable(reason);
        const QStringList urls = extract_session_data(sink.file().path);
        for (const QString &url : urls) {
            if (!sink.write({url}))
                break;
        }
        return reading_end::next_file;
    });
}

void opera_winos::extract_current_session()
{
    read_sessions(current_session, found_.current_session);
}

void opera_winos::extract_last_session()
{
    read_sessions(last_session, found_.last_session);
}
