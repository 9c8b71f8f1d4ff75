// History and search terms, from the "History" file.

#include "common/artefacts/history_tables.h"
#include "common/values/text_values.h"
#include "common/values/time_values.h"
#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

QVariant look_up_key(const QVariant &id)
{
    return whole_number(id) ? id : QVariant(id.toString().trimmed());
}

/// Characters, of some 60,000 visits. A made-up file gives all its visits to one URL.
constexpr qsizetype longest_visits = 4 << 20;

/// All visits of a URL as one text: "Visit Timestamp (UTC): ...;Transition: ...", joined by ";;".
/// Behind longest_visits the rest is only counted.
QVariant visit_text(source_row &row, int id_column)
{
    QString visits = empty_text();
    qint64 left_out = 0;
    const found_rows found =
        row.look_up(0, look_up_key(row.stored(id_column)), [&](const QSqlQuery &visit) {
            if (visits.size() > longest_visits) {
                ++left_out;
                return;
            }
            const QVariant seconds = microseconds_since_1601_to_unix_seconds(visit.value(0));
            if (const std::optional<qint64> number = whole_number(seconds))
                visits += u"Visit Timestamp (UTC): " + unix_seconds_to_utc_text(*number) + u';';
            else if (const QString text = seconds.toString(); !text.isEmpty())
                visits += u"Visit Timestamp (UTC): " + unix_seconds_to_utc_text(text) + u';';
            const QVariant stored = visit.value(1);
            const std::optional<qint64> whole = whole_number(stored);
            const QString transition = whole ? QString::number(*whole) : stored.toString();
            if (!transition.isEmpty())
                visits += u"Transition: " + transition + u';';
            if (!visits.isEmpty())
                visits += u';';
        });
    if (found == found_rows::none)
        return empty_text();
    if (visits.endsWith(";;"_L1))
        visits.chop(2);
    if (left_out > 0)
        visits += u";;" + QString::number(left_out) + u" more visits" + cut_mark;
    return visits;
}

} // namespace

const database_reader macos_readers::history_11 = {
    .signature = "int opera_macos::extract_history_11()",
    .starts = "[extract_history_11] starts",
    .destination_failed =
        open_failure("[extract_history_11]open destination database ---------FAILED----------"),
    .source_failed =
        open_failure("[extract_history_11]: Source database not open ---------FAILED----------"),
    .insert_failed = query_failure("[extract_history_11] insert query  ---------FAILED----------"),
    .ends = "[extract_history_11] ends",
    .readings = {{
        .select = "select id,url,title,typed_count,last_visit_time, hidden, favicon_id,visit_count "
                  "from urls",
        .select_failed =
            query_failure("[extract_history_11] select_query  ---------FAILED----------"),
        .insert = {.sql = "INSERT into history(bookmark,system_user,id,urls,title,typed_count,"
                          "hidden,last_visit_date,visited_detail,visit_count,source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,  ?,?,?,?,?, ?,?,?)",
                   .values = {untagged, system_user,
                              trimmed(0),                       // id
                              text_of(trimmed(1)),              // urls
                              text_of(trimmed(2)),              // title
                              trimmed(3),                       // typed_count
                              yes_when_trimmed_one(5),          // hidden
                              unix_seconds(4),                  // last_visit_date
                              text_of(from_row(visit_text, 0)), // visited_detail
                              trimmed(7),                       // visit_count
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
    .look_ups = {{.statement = "select visit_time, transition, visit_duration from visits where "
                               "url = ?",
                  // Hosts know this line, although the query is none for an icon.
                  .failed = query_failure(
                      "[extract_history_11] select_icon_query  ---------FAILED----------"),
                  .table = {.name = "visits",
                            .key = "url",
                            .type = own_table::key_type::number,
                            .columns = "visit_time, transition"},
                  .keys_ascend = true}},
};

const database_reader macos_readers::history_url = {
    .signature = "void opera_macos::extract_history_url()",
    .starts = "[extract_history_url] starts",
    .destination_failed =
        open_failure("[extract_history_url]Destination Db opening --------FAILED------- "),
    .source_failed = open_failure("[extract_history_url]Source Db opening --------FAILED------- "),
    .insert_failed =
        query_failure("[extract_history_url]insert query execution --------FAILED------- "),
    .ends = "[extract_history_url] end",
    .readings = {{
        .select = "select url,title,visit_count,typed_count,last_visit_time from urls",
        .select_failed = query_failure(with_path("[extract_history_url]source_url query execution "
                                                 "--------FAILED------->")),
        .insert = {.sql = "insert into history(bookmark, system_user,urls,title,visit_count,"
                          "typed_count,last_visit_date,source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?,?,?,?)",
                   // Trimmed as by the current reader, so that a URL that both read is the same.
                   .values = {untagged, system_user,
                              trimmed(0),      // urls
                              trimmed(1),      // title
                              trimmed(2),      // visit_count
                              trimmed(3),      // typed_count
                              unix_seconds(4), // last_visit_date
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
};

const database_reader macos_readers::search_items_11 = {
    .signature = "int opera_macos::extract_search_items_11()",
    .starts = "[extract_search_items_11] starts",
    .destination_failed =
        open_failure("[extract_search_items_11]Destination Db opening -----FAILED------ "),
    .source_failed = open_failure("[extract_search_items_11]source Db opening -----FAILED------ "),
    .insert_failed =
        query_failure("[extract_search_items_11] insert query execution ------FAILED--------"),
    .ends = "[extract_search_items_11] end.",
    .readings = {{
        .select = "select keyword_search_terms.term,urls.url, urls.title, urls.last_visit_time "
                  "from keyword_search_terms,urls where keyword_search_terms.url_id = urls.id ",
        .select_failed =
            query_failure("[extract_search_items_11] select_query execution ------FAILED--------"),
        .insert = {.sql = "insert into search_items(bookmark,system_user,term,url,title, "
                          "last_visit_time,source_file,artifacts_relation_source_file,"
                          "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?,  ?,?,?)",
                   .values = {untagged, system_user,
                              as_stored(0),    // term
                              as_stored(1),    // url
                              as_stored(2),    // title
                              unix_seconds(3), // last_visit_time
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
    .own_tables = search_tables("url, title, last_visit_time"),
};

const database_reader macos_readers::search_items = {
    .signature = "void opera_macos::extract_search_items()",
    .starts = "[extract_search_items] starts",
    .destination_failed =
        open_failure("[extract_search_items]Destination Db opening --------FAILED------- "),
    .source_failed = {with_system_user("[extract_search_items]source Db opening "
                                       "--------FAILED------- for system account--->>>"),
                      with_path("[extract_search_items]source Db opening --------FAILED------- "
                                "for file path--->>>"),
                      error_text},
    .insert_failed =
        query_failure("[extract_search_items] insert query executed------FAILED------"),
    .ends = "[extract_search_items] end.",
    .readings = {{
        .select = "select keyword_search_terms.term,urls.url from keyword_search_terms,urls where "
                  "keyword_search_terms.url_id = urls.id ",
        .select_failed =
            query_failure("[extract_search_items] select query executed------FAILED------"),
        .insert = {.sql = "insert into search_items(bookmark,system_user,term,url, source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,?)",
                   .values = {untagged, system_user,
                              as_stored(0), // term
                              as_stored(1), // url
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
    .own_tables = search_tables("url"),
};

int opera_macos::extract_history_11()
{
    return read_databases(macos_readers::history_11, found_.history, state_.run);
}

void opera_macos::extract_history_url()
{
    read_databases(macos_readers::history_url, found_.history, state_.run);
}

int opera_macos::extract_search_items_11()
{
    return read_databases(macos_readers::search_items_11, found_.search_items_11, state_.run);
}

void opera_macos::extract_search_items()
{
    read_databases(macos_readers::search_items, found_.search_items, state_.run);
}
