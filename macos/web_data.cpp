// Form entries and payment cards, from the "Web Data" file. Times are copied as the
// browser stored them; a card number stays in the browser's encrypted form.

#include "macos/macos_readers.h"
#include "macos/opera_macos.h"

const database_reader macos_readers::autofill_11 = {
    .signature = "int opera_macos::extract_webdata_autofill_11()",
    .starts = "[extract_webdata_autofill_11]  starts.",
    .destination_failed =
        open_failure("[extract_webdata_autofill_11]Destination Db opening -----FAILED------ "),
    .source_failed =
        open_failure("[extract_webdata_autofill_11]source Db opening -----FAILED------ "),
    .insert_failed =
        query_failure("[extract_webdata_autofill_11]execute insert query----FAILED------ "),
    .ends = "[extract_webdata_autofill_11] end.",
    .readings = {{
        .select = "select autofill.name, autofill.value, autofill.count, autofill.date_created, "
                  "autofill.date_last_used from autofill",
        .select_failed = query_failure("[extract_webdata_autofill_11] select_query "
                                       "-----FAILED------ "),
        .insert = {.sql = "insert into autofill(bookmark,system_user,name,value,count,"
                          "date_created,date_last_used, source_file,"
                          "artifacts_relation_source_file,os_scheme_display,source_count_name) "
                          "values(?,?,?,?,?,?,?,  ?,?,?,?)",
                   .values = {untagged, system_user,
                              as_stored(0), // name
                              as_stored(1), // value
                              as_stored(2), // count
                              as_stored(3), // date_created
                              as_stored(4), // date_last_used
                              source_file_path, relation_source_file, os_scheme_display,
                              source_count_name}},
    }},
};

const database_reader macos_readers::autofill = {
    .signature = "void opera_macos::extract_webdata_autofill()",
    .starts = "[extract_webdata_autofill] starts",
    .destination_failed =
        open_failure("[extract_webdata_autofill]Destination Db opening --------FAILED------- "),
    .source_failed =
        open_failure("[extract_webdata_autofill]source Db opening --------FAILED------- "),
    .insert_failed = query_failure("[extract_webdata_autofill]--------FAILED------- to execute "
                                   "insert query for autofill"),
    .ends = "[extract_webdata_autofill] end.",
    .readings = {{// Refused on every file, as it names no table autofill_dates to read from. It
                  // stays because hosts expect rows of this reader to come from the second form.
                  .select =
                      "select autofill.name, autofill.value, autofill.count, "
                      "autofill_dates.date_created, autofill_dates.pair_id from autofill where "
                      "autofill.pair_id = autofill_dates.pair_id group by autofill_dates.pair_id",
                  .select_failed = {},
                  .insert = {.sql = "insert into autofill(bookmark,system_user,name,value,count,"
                                    "date_created, pair_id, source_file,os_scheme_display,"
                                    "source_count_name) values(?,?,?,?,?,?,?,?,?,?)",
                             .values = {untagged, system_user,
                                        as_stored(0), // name
                                        as_stored(1), // value
                                        as_stored(2), // count
                                        as_stored(3), // date_created
                                        as_stored(4), // pair_id
                                        source_file_path, os_scheme_display, source_count_name}}},
                 {.select = "select autofill.name, autofill.value, autofill.count, "
                            "autofill.date_created, autofill.date_last_used from autofill",
                  .select_failed =
                      query_failure("[extract_webdata_autofill]--------FAILED------- to "
                                    "execute new query query_source_web_data "),
                  .insert = {.sql = "insert into autofill(bookmark,system_user,name,value,count,"
                                    "date_created, date_last_used, source_file,os_scheme_display,"
                                    "source_count_name) values(?,?,?,?,?,?,?,?,?,?)",
                             .values = {untagged, system_user,
                                        as_stored(0), // name
                                        as_stored(1), // value
                                        as_stored(2), // count
                                        as_stored(3), // date_created
                                        as_stored(4), // date_last_used
                                        source_file_path, os_scheme_display, source_count_name}}}},
};

namespace
{

insertion card_insertion(value_rule use_count, value_rule use_date)
{
    return {.sql = "insert into credits_cards(bookmark,system_user,guid,name_on_card,"
                   "expiration_month,expiration_year,date_modified,card_number_encrypted,origin, "
                   "use_count,use_date,source_file,artifacts_relation_source_file,"
                   "os_scheme_display,source_count_name) values(?,?,?,?,?,?,?,?,  ?,?,?,?,?,  "
                   "?,?)",
            .values = {untagged, system_user,
                       as_stored(0), // guid
                       as_stored(1), // name_on_card
                       as_stored(2), // expiration_month
                       as_stored(3), // expiration_year
                       as_stored(4), // date_modified
                       as_stored(5), // card_number_encrypted
                       as_stored(6), // origin
                       use_count, use_date, source_file_path, relation_source_file,
                       os_scheme_display, source_count_name}};
}

} // namespace

const database_reader macos_readers::credit_cards_11 = {
    .signature = "void opera_macos::extract_webdata_credit_cards_11()",
    .starts = "[extract_webdata_credit_cards_11]  starts.",
    .destination_failed =
        open_failure("[extract_webdata_credit_cards_11]Destination Db opening -----FAILED------ "),
    .source_failed =
        open_failure("[extract_webdata_credit_cards_11]source Db opening -----FAILED------ "),
    .insert_failed =
        query_failure("[extract_webdata_credit_cards_11]execute query insert-----FAILED------ "),
    .ends = "[extract_webdata_credit_cards_11] ends",
    .readings = {{.select = "select guid,name_on_card,expiration_month,expiration_year,"
                            "date_modified,card_number_encrypted,origin, use_count,use_date "
                            "from credit_cards",
                  .select_failed = {},
                  .insert = card_insertion(as_stored(7), as_stored(8))},
                 {.select = "select guid,name_on_card,expiration_month,expiration_year,"
                            "date_modified,card_number_encrypted,origin from credit_cards",
                  .select_failed = query_failure("[extract_webdata_credit_cards_11] "
                                                 "select_query-----FAILED------ "),
                  .insert = card_insertion(empty_value, empty_value)}},
};

namespace
{

insertion older_card_insertion(value_rule origin)
{
    return {.sql = "insert into credits_cards(bookmark,system_user,guid,name_on_card,"
                   "expiration_month,expiration_year,date_modified,card_number_encrypted,origin,"
                   "source_file,artifacts_relation_source_file,os_scheme_display,"
                   "source_count_name) values(?,?,?,?,?,?,?,?,?,?,?,?,?)",
            .values = {untagged, system_user,
                       as_stored(0), // guid
                       as_stored(1), // name_on_card
                       as_stored(2), // expiration_month
                       as_stored(3), // expiration_year
                       as_stored(4), // date_modified
                       as_stored(5), // card_number_encrypted
                       origin, source_file_path, relation_source_file, os_scheme_display,
                       source_count_name}};
}

} // namespace

const database_reader macos_readers::credit_cards = {
    .signature = "void opera_macos::extract_webdata_credit_cards()",
    .starts = "[extract_webdata_credit_cards] starts",
    .destination_failed =
        open_failure("[extract_webdata_credit_cards]Destination Db opening --------FAILED------- "),
    .source_failed =
        open_failure("[extract_webdata_credit_cards]source Db opening --------FAILED------- "),
    .insert_failed = query_failure("[extract_webdata_credit_cards]--------FAILED------- to "
                                   "execute query insert "),
    .ends = "[extract_webdata_credit_cards] end.",
    .readings = {{.select = "select guid,name_on_card,expiration_month,expiration_year,"
                            "date_modified,card_number_encrypted,origin from credit_cards",
                  .select_failed = {},
                  .insert = older_card_insertion(as_stored(6))},
                 {.select = "select guid,name_on_card,expiration_month,expiration_year,"
                            "date_modified,card_number_encrypted from credit_cards",
                  .select_failed =
                      query_failure("[extract_webdata_credit_cards]--------FAILED------- to "
                                    "execute query query_source_web_data "),
                  .insert = older_card_insertion(empty_value)}},
};

int opera_macos::extract_webdata_autofill_11()
{
    return read_databases(macos_readers::autofill_11, found_.web_data_11, state_.run);
}

void opera_macos::extract_webdata_autofill()
{
    read_databases(macos_readers::autofill, found_.web_data, state_.run);
}

void opera_macos::extract_webdata_credit_cards_11()
{
    read_databases(macos_readers::credit_cards_11, found_.web_data_11, state_.run);
}

void opera_macos::extract_webdata_credit_cards()
{
    read_databases(macos_readers::credit_cards, found_.web_data, state_.run);
}
