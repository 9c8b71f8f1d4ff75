// History and search terms, from the "History" file.

#include "common/artefacts/history_tables.h"
#include "common/debug_log.h"
#include "common/evidence/file_paths.h"
#include "common/values/text_values.h"
#include "common/values/time_values.h"
#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

/// Columns of the look-up in the table urls, and their places in source_row::derived.
enum visit_value {
    url,
    title,
    visit_count,
    typed_count,
    last_visit_time,
    hidden,
    local_path ///< of file URLs, not a column of the look-up
};

/// Whole part of a time or duration that may have been stored as a decimal fraction.
QString whole_part(const QString &text)
{
    return text.contains(u'.') ? text.section(u'.', 0, 0).trimmed() : text;
}

QVariant visit_time(source_row &row, int column)
{
    if (const std::optional<qint64> number = whole_number(row.stored(column)); number >= 0)
        return microseconds_since_1601_to_unix_seconds(row.stored(column));
    const quint64 microseconds = whole_part(row.text(column)).toULongLong();
    return microseconds_since_1601_to_unix_seconds(QString::number(microseconds));
}

/// Durations of 2^31 microseconds (36 minutes) and more count as zero: hosts rely on the limit.
QVariant visit_duration(source_row &row, int column)
{
    const QVariant stored = row.stored(column);
    const std::optional<qint64> number = whole_number(stored);
    const bool fits = number && *number == static_cast<int>(*number);
    const int microseconds =
        number ? static_cast<int>(fits ? *number : 0) : whole_part(stored.toString()).toInt();
    return seconds_to_duration_text(microseconds / 1'000'000);
}

QString yes_no_or_stored(const QString &flag)
{
    if (flag == "1"_L1 || flag == "0"_L1)
        return yes_or_no(flag == "1"_L1);
    return flag;
}

} // namespace

const database_reader winos_readers::history_url = {
    .signature = "void opera_winos::extract_history_url()",
    .starts = "[extract_history_url] starts",
    .destination_failed = open_failure("[extract_history_url]Destination Db opening ---FAILED---"),
    .source_failed = open_failure("[extract_history_url]Source Db opening ---FAILED---"),
    .insert_failed = query_failure("[extract_history_url]insert query execution ---FAILED---"),
    .ends = "[extract_history_url] -Ends",
    .readings = {{
        .select = "select url,visit_duration,visit_time from visits",
        .select_failed =
            query_failure("[extract_history_url] source query select from visits ---FAILED---"),
        .insert = {.sql = "insert into history(bookmark, system_user,domain_user,urls,title,"
                          "visit_count,typed_count,last_visit_date,source_file,url_text, "
                          "preview_file_path,export_file_paths,visit_time,visit_duration,hidden, "
                          "os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)",
                   .values = {untagged, system_user, domain_user,
                              text_of(derived(url)), // urls
                              text_of(derived(title)), derived(visit_count), derived(typed_count),
                              derived(last_visit_time), // last_visit_date
                              source_file_path,
                              text_of(derived(local_path)), // url_text
                              text_of(derived(local_path)), // preview_file_path
                              text_of(derived(local_path)), // export_file_paths
                              from_row(visit_time, 2), text_of(from_row(visit_duration, 1)),
                              text_of(derived(hidden)), os_scheme_display, source_count_name}},
    }},
    .look_ups = {{.statement = "select url,title,visit_count,typed_count,last_visit_time,hidden "
                               "from urls WHERE id=?",
                  .failed = query_failure(
                      "[extract_history_url]source query select from urls ---FAILED---"),
                  .table = {.name = "urls",
                            .key = "id",
                            .type = own_table::key_type::number,
                            .columns = "url,title,visit_count,typed_count,last_visit_time,hidden",
                            .first_of_key = true},
                  .joined_by = "url"}},
};

const database_reader winos_readers::search_items = {
    .signature = "void opera_winos::extract_search_items()",
    .starts = "[extract_search_items] -Starts",
    .destination_failed =
        open_failure("[extract_search_items]Destination Db opening ---FAILED--- "),
    .source_failed = {with_system_user("[extract_search_items]source Db opening ---FAILED--- for "
                                       "system account--->>>"),
                      with_path("[extract_search_items]source Db opening ---FAILED--- for file "
                                "path--->>>"),
                      error_text},
    .insert_failed = query_failure("[extract_search_items] ----FAILED---- to execute query insert"),
    .ends = "[extract_search_items] end.",
    .readings = {{
        .select = "select keyword_search_terms.term,urls.url from keyword_search_terms,urls where "
                  "keyword_search_terms.url_id = urls.id ",
        // Hosts know no line of its own for this failure; what the driver says must not be lost.
        .select_failed = {error_text, executed_query},
        .insert = {.sql = "insert into search_items(bookmark,system_user,domain_user,term,url, "
                          "source_file, os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?)",
                   .values = {untagged, system_user, domain_user,
                              as_stored(0), // term
                              as_stored(1), // url
                              source_file_path, os_scheme_display, source_count_name}},
    }},
    .own_tables = search_tables("url"),
};

QString opera_winos::file_url_to_unix_name(const QString &file_url) const
{
    debug_log(u"[file_url_to_unix_name] -Starts"_s,
              u"QString opera_winos::file_url_to_unix_name(QString)"_s);
    if (!file_url.contains("C:/"_L1))
        return empty_text();
    // The first ":/" ends the scheme, the second one the drive.
    const qsizetype scheme = file_url.indexOf(":/"_L1);
    const qsizetype drive = file_url.indexOf(":/"_L1, scheme + 2);
    if (drive < 0)
        return empty_text();
    return state_.run.source_root + file_url.mid(drive + 2);
}

QString opera_winos::local_path_of(const QString &address) const
{
    if (!address.contains("file://"_L1))
        return empty_text();
    // Without the root, so that the value names a place in the evidence and not in the folder where
    // it happened to be mounted.
    return relative_file_path(path_inside_source(file_url_to_unix_name(address), state_.run),
                              state_.run.source_root, state_.run.source_type);
}

/// A visit whose URL is missing or cannot be read keeps its time and duration.
void opera_winos::derive_visit(source_row &row, path_cache &local_paths) const
{
    row.derived.fill(QVariant(), local_path + 1);
    row.look_up(0, row.stored(0), [&row](const QSqlQuery &urls) {
        for (const int column : {url, title, visit_count, typed_count, last_visit_time, hidden}) {
            const QVariant value = urls.value(column);
            row.derived[column] = whole_number(value) ? value : value.toString();
        }
    });
    const QString address = decode_percent(row.derived.at(url).toString());
    row.derived[url] = address;
    row.derived[last_visit_time] =
        microseconds_since_1601_to_unix_seconds(row.derived.at(last_visit_time));
    const std::optional<qint64> flag = whole_number(row.derived.at(hidden));
    row.derived[hidden] = flag == 0 || flag == 1
                              ? yes_or_no(flag == 1)
                              : yes_no_or_stored(row.derived.at(hidden).toString());
    if (!address.contains("file://"_L1)) {
        row.derived[local_path] = empty_text();
    } else if (const QString *known = local_paths.object(address)) {
        row.derived[local_path] = *known;
    } else {
        row.derived[local_path] = local_path_of(address);
        local_paths.insert(address, new QString(row.derived.at(local_path).toString()));
    }
}

void opera_winos::extract_history_url()
{
    // Pages are visited again and again within a short time.
    constexpr qsizetype most_pages = 1'000;
    path_cache local_paths(most_pages);
    QString file;
    read_databases(winos_readers::history_url, found_.history, state_.run, [&](database_row &row) {
        if (row.file().path != file) {
            file = row.file().path;
            local_paths.clear();
        }
        derive_visit(row, local_paths);
        return true;
    });
}

void opera_winos::extract_search_items()
{
    read_databases(winos_readers::search_items, found_.search_history, state_.run);
}
