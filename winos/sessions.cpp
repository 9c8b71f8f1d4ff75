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

constexpr qsizetype longest_address = 2 << 20; ///< bytes; the browser opens none that is longer

/// Calls `each` with the addresses of the file, in order, until it returns false.
void for_each_address(const QString &path, const std::function<bool(const QString &address)> &each)
{
    const QString signature = u"QStringList opera_winos::extract_session_data(QString)"_s;
    debug_log(u"[extract_session_data] - Starts"_s, signature);
    evidence_file file(path);
    if (!file.open_whole()) {
        log_failure(open_failure("[extract_session_data]File Open ---FAILED---"), signature,
                    {.error = file.errorString()});
        return;
    }
    const QByteArray content = file.readAll();
    file.close();

    const QByteArrayMatcher marker("http");
    for (qsizetype at = marker.indexIn(content); at >= 0;) {
        const qsizetype zero = content.indexOf('\0', at);
        const qsizetype end = zero < 0 ? content.size() : zero;
        const bool is_cut = end - at > longest_address;
        const QString address =
            decode_percent(content.mid(at, is_cut ? longest_address : end - at)).trimmed();
        if (!each(is_cut ? address + cut_mark : not_null(address)))
            break;
        at = marker.indexIn(content, end);
    }
    debug_log(u"[extract_session_data] - Ends"_s, signature);
}

} // namespace

QStringList opera_winos::extract_session_data(const QString &path)
{
    QStringList urls;
    for_each_address(path, [&urls](const QString &address) {
        urls.append(address);
        return true;
    });
    return urls;
}

void opera_winos::read_sessions(const record_reader &reader, const QStringList &files)
{
    read_records(reader, files, state_.run, [](record_sink &sink) {
        if (const QString reason = reason_not_readable(sink.file().path); !reason.isEmpty())
            sink.unreadable(reason);
        // Written as they are found: together they take many times the file.
        for_each_address(sink.file().path,
                         [&sink](const QString &address) { return sink.write({address}); });
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
