// Form entries and payment cards, from the "Web Data" file. A card number stays in the browser's
// encrypted form.

#include "winos/opera_winos.h"
#include "winos/winos_readers.h"

namespace
{

/// The order of the values is one for both statements, although the alternate one names name and
/// domain_user the other way round: hosts know the two as exchanged in its rows.
insertion autofill_insertion(const char *sql)
{
    return {.sql = sql,
            .values = {untagged_number, system_user, domain_user,
                       as_stored(0),    // the entry's name
                       as_stored(1),    // value
                       as_stored(2),    // count
                       unix_seconds(3), // date_created
                       as_stored(4),    // pair_id, or date_last_used as stored
                       source_file_path, os_scheme_display, source_count_name}};
}

} // namespace

const database_reader winos_readers::autofill = {
    .signature = "void opera_winos::extract_webdata_autofill()",
    .starts = "[extract_webdata_autofill]  -Starts",
    .destination_failed =
        open_failure("[extract_webdata_autofill]Destination Db opening ---FAILED--- "),
    .source_failed = open_failure("[extract_webdata_autofill]source Db opening ---FAILED--- "),
    .insert_failed = query_failure("[extract_webdata_autofill]---FAILED--- to execute insert query "
                                   "for autofill"),
    .ends = "[extract_webdata_autofill] -Ends",
    .readings = {{.select = "select autofill.name, autofill.value, autofill.count, "
                            "autofill_dates.date_created, autofill_dates.pair_id from autofill, "
                            "autofill_dates where autofill.pair_id = autofill_dates.pair_id group "
                            "by autofill_dates.pair_id",
                  .select_failed = {"[extract_webdata_autofill] query_source_web_data --- NOT "
                                    "EXECUTED --- ",
                                    "[extract_webdata_autofill] Executing Alternate Query ...."},
                  .insert = autofill_insertion(
                      "insert into autofill(bookmark,system_user,domain_user,name,value,count,"
                      "date_created, pair_id, source_file, os_scheme_display,source_count_name) "
                      "values(?,?,?,?, ?,?,?,?, ?,?,?)"),
                  .older = true},
                 {.select = "select autofill.name, autofill.value, autofill.count, "
                            "autofill.date_created, autofill.date_last_used from autofill",
                  .select_failed = query_failure("[extract_webdata_autofill] ---FAILED--- to "
                                                 "execute new query query_source_web_data "),
                  .insert = autofill_insertion(
                      "insert into autofill(bookmark,system_user,name,domain_user,value,count,"
                      "date_created, date_last_used, source_file, os_scheme_display,"
                      "source_count_name) values(?,?,?,?, ?,?,?,?, ?,?,?)")}},
    .own_tables = {{.name = "autofill",
                    .key = "pair_id",
                    .type = own_table::key_type::number,
                    .columns = "name, value, count"},
                   {.name = "autofill_dates",
                    .key = "pair_id",
                    .type = own_table::key_type::number,
                    .columns = "date_created"}},
};

const database_reader winos_readers::credit_cards = {
    .signature = "void opera_winos::extract_webdata_credit_cards()",
    .starts = "[extract_webdata_credit_cards] -Starts",
    .destination_failed =
        open_failure("[extract_webdata_credit_cards]Destination Db opening ---FAILED--- "),
    .source_failed = open_failure("[extract_webdata_credit_cards]source Db opening ---FAILED--- "),
    .insert_failed =
        query_failure("[extract_webdata_credit_cards]---FAILED--- to execute query insert"),
    .ends = "[extract_webdata_credit_cards] -Ends.",
    .readings = {{
        .select = "select guid,name_on_card,expiration_month,expiration_year,date_modified,"
                  "card_number_encrypted from credit_cards",
        .select_failed = query_failure("[extract_webdata_credit_cards]---FAILED--- to execute "
                                       "query query_source_web_data"),
        .insert = {.sql = "insert into credits_cards(bookmark,system_user,domain_user,guid,"
                          "name_on_card,expiration_month,expiration_year,date_modified,"
                          "card_number_encrypted,source_file, os_scheme_display,"
                          "source_count_name) values(?,?,?,?,?,?,?,?,?,?,?,?)",
                   .values = {untagged_number, system_user, domain_user,
                              as_stored(0),    // guid
                              as_stored(1),    // name_on_card
                              as_stored(2),    // expiration_month
                              as_stored(3),    // expiration_year
                              unix_seconds(4), // date_modified
                              as_stored(5),    // card_number_encrypted
                              source_file_path, os_scheme_display, source_count_name}},
    }},
};

void opera_winos::extract_webdata_autofill()
{
    read_databases(winos_readers::autofill, found_.web_data_1, state_.run);
}

void opera_winos::extract_webdata_credit_cards()
{
    read_databases(winos_readers::credit_cards, found_.web_data_1, state_.run);
}
