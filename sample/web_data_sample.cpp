#include "sample/web_data_sample.h"

#include "sample/database.h"

using namespace Qt::StringLiterals;

namespace sample
{

// The times of this file are Unix seconds.

namespace
{

struct form_entry {
    std::string name;
    std::string value;
    qint64 count;
    qint64 created;
    qint64 last_used;
};

const form_entry special_entries[] = {
    {"email", "mara@lindqvist.example", 14, days_ago(300), days_ago(1)},
    {"email", "m.lindqvist@example.org", 1, days_ago(12), days_ago(12)},
    {"city", "Nordhafen an der Küste", 3, days_ago(250), days_ago(20)},
    {"q", "100 % 'wool'; \"blanket\"", 2, days_ago(40), days_ago(39)},
    {"comment", "line one\nline two", 1, days_ago(30), days_ago(30)},
    {"empty", "", 1, 0, 0},
    {"名前", "マーラ", 5, days_ago(80), days_ago(7)},
};

/// Writes form entries with the tables that the profile's generation has: the older one keeps the
/// times of an entry, one row for each use, in a table of their own.
class form_entry_writer
{
public:
    form_entry_writer(database &web_data, browser_generation generation)
        : entries_(web_data, "autofill",
                   generation == browser_generation::older
                       ? "name,value,value_lower,count,pair_id"
                       : "name,value,value_lower,count,date_created,date_last_used")
    {
        if (generation == browser_generation::older)
            dates_.emplace(web_data, "autofill_dates", "pair_id,date_created");
    }

    void add(const form_entry &entry)
    {
        const QString lower = QString::fromStdString(entry.value).toLower();
        if (!dates_) {
            entries_.add(entry.name, entry.value, lower, entry.count, entry.created,
                         entry.last_used);
            return;
        }
        entries_.add(entry.name, entry.value, lower, entry.count, ++pair_);
        dates_->add(pair_, entry.created);
        if (entry.count > 1)
            dates_->add(pair_, entry.last_used);
    }

private:
    insertion entries_;
    std::optional<insertion> dates_;
    qint64 pair_ = 0;
};

void write_form_entries(database &web_data, const profile &account)
{
    form_entry_writer writer(web_data, account.generation);
    for (const form_entry &entry : special_entries)
        writer.add(entry);
    number_source numbers = account.numbers("form entries");
    for (qint64 row = 0; row < account.rows(form_rows); ++row) {
        const qint64 created = days_ago(90) + numbers.below(60 * day);
        writer.add({.name = make_word(numbers),
                    .value = make_search_term(numbers) + " " + std::to_string(row),
                    .count = 1 + numbers.below(6),
                    .created = created,
                    .last_used = created + numbers.below(20 * day)});
    }
}

struct card {
    const char *guid;
    const char *name;
    int month;
    int year;
    QByteArray number; ///< encrypted by the browser
};

const card special_cards[] = {
    {"5B8E0F6C-0001-4A6E-9D0E-6B1F00000001", "Mara Lindqvist", 7, 2026,
     QByteArray("v10\x07\0\x91\xc4\xff %1", 12)},
    {"5B8E0F6C-0002-4A6E-9D0E-6B1F00000002", "Jürgen Weiß", 12, 2024, QByteArray()},
};

void write_cards(database &web_data, const profile &account)
{
    const bool counted = account.generation != browser_generation::older;
    insertion rows(web_data, "credit_cards",
                   std::string("guid,name_on_card,expiration_month,expiration_year,"
                               "card_number_encrypted,date_modified,origin") +
                       (counted ? ",use_count,use_date" : ""));
    const auto add = [&](const auto &guid, const auto &name, int month, int year,
                         const QByteArray &number, qint64 modified, qint64 used) {
        if (counted)
            rows.add(guid, name, month, year, number, modified, "https://shop.tealkettle.test",
                     used, modified + used * day);
        else
            rows.add(guid, name, month, year, number, modified, "https://shop.tealkettle.test");
    };
    qint64 used = 9;
    for (const card &row : special_cards)
        add(row.guid, row.name, row.month, row.year, row.number, days_ago(60), used--);
    number_source numbers = account.numbers("cards");
    for (qint64 row = 0; row < account.rows(card_rows); ++row) {
        const std::string guid = make_guid(numbers);
        const std::string name = make_search_term(numbers);
        const qint64 modified = days_ago(50) + numbers.below(40 * day);
        const int month = static_cast<int>(1 + row % 12);
        add(guid, name, month, 2025, QByteArray("v10\x01\x02\x03", 6), modified, numbers.below(9));
    }
}

void write_search_engines(database &web_data)
{
    struct search_engine {
        const char *name;
        const char *keyword;
        const char *url;
        int usage;
    };
    constexpr search_engine engines[] = {
        {"Lantern Search", "l", "https://search.lantern.example/find?q={searchTerms}", 40},
        {"Vogelfreunde Süd", "vogel", "https://forum.birdwatch.example/?s={searchTerms}", 2},
        {"Old Maps", "maps", "https://wiki.oldmaps.example/?find={searchTerms}", 0},
    };
    insertion rows(web_data, "keywords",
                   "id,short_name,keyword,favicon_url,url,safe_for_autoreplace,originating_url,"
                   "date_created,usage_count,input_encodings,suggest_url,prepopulate_id,"
                   "last_modified,sync_guid");
    qint64 id = 2;
    for (const search_engine &engine : engines) {
        rows.add(id, engine.name, engine.keyword, "https://example.org/favicon.ico", engine.url, 0,
                 "", days_ago(400), engine.usage, "UTF-8", "", id == 2 ? 1 : 0, days_ago(10), "");
        ++id;
    }
}

void make_web_data_tables(database &web_data, browser_generation generation)
{
    const bool older = generation == browser_generation::older;
    web_data.run_all({
        "create table meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY,value LONGVARCHAR)",
        older ? "create table autofill(name VARCHAR,value VARCHAR,value_lower VARCHAR,"
                "pair_id INTEGER PRIMARY KEY,count INTEGER DEFAULT 1)"
              : "create table autofill(name VARCHAR,value VARCHAR,value_lower VARCHAR,"
                "date_created INTEGER DEFAULT 0,date_last_used INTEGER DEFAULT 0,"
                "count INTEGER DEFAULT 1,PRIMARY KEY (name,value))",
        older ? "create table credit_cards(guid VARCHAR PRIMARY KEY,name_on_card VARCHAR,"
                "expiration_month INTEGER,expiration_year INTEGER,card_number_encrypted BLOB,"
                "date_modified INTEGER NOT NULL DEFAULT 0,origin VARCHAR DEFAULT '')"
              : "create table credit_cards(guid VARCHAR PRIMARY KEY,name_on_card VARCHAR,"
                "expiration_month INTEGER,expiration_year INTEGER,card_number_encrypted BLOB,"
                "date_modified INTEGER NOT NULL DEFAULT 0,origin VARCHAR DEFAULT '',"
                "use_count INTEGER NOT NULL DEFAULT 0,use_date INTEGER NOT NULL DEFAULT 0,"
                "billing_address_id VARCHAR)",
        "create table keywords(id INTEGER PRIMARY KEY,short_name VARCHAR NOT NULL,"
        "keyword VARCHAR NOT NULL,favicon_url VARCHAR NOT NULL,url VARCHAR NOT NULL,"
        "safe_for_autoreplace INTEGER,originating_url VARCHAR,date_created INTEGER DEFAULT 0,"
        "usage_count INTEGER DEFAULT 0,input_encodings VARCHAR,suggest_url VARCHAR,"
        "prepopulate_id INTEGER DEFAULT 0,last_modified INTEGER DEFAULT 0,sync_guid VARCHAR)",
    });
    if (older)
        web_data.run("create table autofill_dates(pair_id INTEGER DEFAULT 0,"
                     "date_created INTEGER DEFAULT 0)");
    make_address_tables(web_data, generation);
}

} // namespace

void write_web_data_file(const profile &account)
{
    database web_data(account.profile_folder + u"Web Data");
    make_web_data_tables(web_data, account.generation);
    if (account.has(u"form_entries"_s))
        write_form_entries(web_data, account);
    if (account.has(u"addresses"_s))
        write_addresses(web_data, account);
    if (account.has(u"cards"_s))
        write_cards(web_data, account);
    if (account.has(u"search_engines"_s))
        write_search_engines(web_data);
    web_data.finish(latest_instant);
}

} // namespace sample
