#include "sample/history_sample.h"

#include <string>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

struct special_page {
    qint64 id;
    const char *url;
    const char *title; ///< null: NULL
    int visit_count;
    int typed_count;
    int hidden;
    qint64 last_visit; ///< Unix seconds; 0: never
};

constexpr special_page special_pages[] = {
    {1, "https://www.example.org/", "Start page", 3, 12, 0, minutes_ago(30)},
    {2, "https://news.harbour-gazette.example/ferry-timetable", "Fährplan für März – Gazette", 2, 1,
     0, minutes_ago(95)},
    {3, "https://shop.tealkettle.test/basket?item=7&colour=gr%C3%BCn", nullptr, 1, 0, 0,
     minutes_ago(200)},
    {4, "https://forum.birdwatch.example/thread/%7Emara?page=2#post-11", "日本の野鳥 ☂", 1, 0, 1,
     minutes_ago(260)},
    {5, "https://ads.tealkettle.test/frame", "", 1, 0, 2, minutes_ago(261)},
    // Never opened, yet known to the browser.
    {6, "https://docs.example.org/never-opened", "Never opened", 0, 0, 0, 0},
    // Its visits are older than the browser keeps them.
    {7, "https://mail.example.org/inbox", "Inbox (4) – Example Mail", 7, 2, 0, days_ago(120)},
    {8, "https://shop.tealkettle.test/sale?text=100%25", "Sale: %1 off, %2 left; 50 %;;", 1, 0, 0,
     minutes_ago(300)},
    {9, " https://wiki.oldmaps.example/blank around ", "  blanks around  ", 1, 0, 0,
     minutes_ago(320)},
    {10, "https://video.lanternfilm.test/watch/long-film", "A very long film – Lantern Film", 3, 0,
     0, days_ago(2)},
};

struct special_visit {
    qint64 page;
    qint64 time; ///< Unix seconds; 0: stored as 0
    qint64 transition;
    qint64 duration; ///< microseconds
};

constexpr special_visit special_visits[] = {
    {1, minutes_ago(3000), 805306369, 12000000},
    {1, minutes_ago(1500), 805306369, 65500000},
    {1, minutes_ago(30), 838860801, 0},
    {2, minutes_ago(2000), 805306368, 3725000000},
    {2, minutes_ago(95), 805306376, 59999999},
    {3, minutes_ago(200), 268435456, 4500000},
    {4, minutes_ago(260), 805306370, 1000000},
    {5, minutes_ago(261), 805306371, 0},
    {8, 0, 805306368, 0},
    {9, minutes_ago(320), 1610612736, -5000000},
    // The greatest duration that fits 32 bits, the one behind it and one of five hours.
    {10, days_ago(4), 805306368, 2147483647},
    {10, days_ago(3), 805306368, 2147483648},
    {10, days_ago(2), 805306368, 18000000000},
};

/// Pages of the last minutes; their rows are still in the write-ahead log.
constexpr special_page latest_pages[] = {
    {11, "https://tickets.northferry.example/booking/4711", "Buchung 4711 – Nordfähre", 1, 0, 0,
     minutes_ago(12)},
    {12, "https://weather.cloudledge.example/harbour", "Weather at the harbour", 1, 1, 0,
     minutes_ago(5)},
    {13, "https://recipes.copperpan.test/fish-soup", "Fish soup – Copper Pan", 2, 0, 0,
     minutes_ago(1)},
};
constexpr special_visit latest_visits[] = {
    {11, minutes_ago(12), 805306368, 300000000},
    {12, minutes_ago(5), 805306369, 120000000},
    {13, minutes_ago(3), 805306368, 90000000},
    {13, minutes_ago(1), 8, 0},
};

/// Adds pages and visits with the columns that the profile's generation has.
class page_writer
{
public:
    page_writer(database &history, const profile &account)
        : with_hidden_(account.windows() || account.generation != browser_generation::older),
          pages_(history, "urls",
                 std::string("id,url,title,visit_count,typed_count,last_visit_time") +
                     (with_hidden_ ? ",hidden" : "")),
          visits_(history, "visits",
                  "url,visit_time,from_visit,transition,segment_id,visit_duration")
    {
    }

    template <typename text>
    void add_page(qint64 id, const text &url, const text &title, qint64 visit_count,
                  int typed_count, int hidden, qint64 last_visit)
    {
        const qint64 time = last_visit == 0 ? 0 : browser_time(last_visit, id % 1000000);
        if (with_hidden_)
            pages_.add(id, url, title, visit_count, typed_count, time, hidden);
        else
            pages_.add(id, url, title, visit_count, typed_count, time);
    }

    void add_visit(qint64 page, qint64 time, qint64 transition, qint64 duration)
    {
        visits_.add(page, time == 0 ? 0 : browser_time(time, page % 1000000), 0, transition, 0,
                    duration);
    }

    template <typename page_rows_type, typename visit_rows_type>
    void add_all(const page_rows_type &pages, const visit_rows_type &visits)
    {
        for (const special_page &page : pages)
            add_page(page.id, page.url, page.title, page.visit_count, page.typed_count, page.hidden,
                     page.last_visit);
        for (const special_visit &visit : visits)
            add_visit(visit.page, visit.time, visit.transition, visit.duration);
    }

private:
    bool with_hidden_;
    insertion pages_;
    insertion visits_;
};

const char *urls_table(const profile &account)
{
    switch (account.generation) {
    case browser_generation::current:
        return "create table urls(id INTEGER PRIMARY KEY,url LONGVARCHAR,title LONGVARCHAR,"
               "visit_count INTEGER DEFAULT 0 NOT NULL,typed_count INTEGER DEFAULT 0 NOT NULL,"
               "last_visit_time INTEGER NOT NULL,hidden INTEGER DEFAULT 0 NOT NULL,"
               "favicon_id INTEGER DEFAULT 0 NOT NULL)";
    case browser_generation::older:
        // On Windows "hidden" stays: there is only one way to read this table.
        if (!account.windows())
            return "create table urls(id INTEGER PRIMARY KEY,url LONGVARCHAR,title LONGVARCHAR,"
                   "visit_count INTEGER DEFAULT 0 NOT NULL,typed_count INTEGER DEFAULT 0 NOT NULL,"
                   "last_visit_time INTEGER NOT NULL)";
        break;
    case browser_generation::newest:
        break;
    }
    return "create table urls(id INTEGER PRIMARY KEY AUTOINCREMENT,url LONGVARCHAR,"
           "title LONGVARCHAR,visit_count INTEGER DEFAULT 0 NOT NULL,"
           "typed_count INTEGER DEFAULT 0 NOT NULL,last_visit_time INTEGER NOT NULL,"
           "hidden INTEGER DEFAULT 0 NOT NULL)";
}

const char *visits_table(browser_generation generation)
{
    switch (generation) {
    case browser_generation::current:
        return "create table visits(id INTEGER PRIMARY KEY,url INTEGER NOT NULL,"
               "visit_time INTEGER NOT NULL,from_visit INTEGER,"
               "transition INTEGER DEFAULT 0 NOT NULL,segment_id INTEGER,"
               "visit_duration INTEGER DEFAULT 0 NOT NULL)";
    case browser_generation::older:
        return "create table visits(id INTEGER PRIMARY KEY,url INTEGER NOT NULL,"
               "visit_time INTEGER NOT NULL,from_visit INTEGER,"
               "transition INTEGER DEFAULT 0 NOT NULL,segment_id INTEGER,is_indexed BOOLEAN,"
               "visit_duration INTEGER DEFAULT 0 NOT NULL)";
    case browser_generation::newest:
        break;
    }
    return "create table visits(id INTEGER PRIMARY KEY AUTOINCREMENT,url INTEGER NOT NULL,"
           "visit_time INTEGER NOT NULL,from_visit INTEGER,external_referrer_url TEXT,"
           "transition INTEGER DEFAULT 0 NOT NULL,segment_id INTEGER,"
           "visit_duration INTEGER DEFAULT 0 NOT NULL,"
           "incremented_omnibox_typed_score BOOLEAN DEFAULT FALSE NOT NULL,opener_visit INTEGER,"
           "originator_cache_guid TEXT,originator_visit_id INTEGER,originator_from_visit INTEGER,"
           "originator_opener_visit INTEGER,is_known_to_sync BOOLEAN DEFAULT FALSE NOT NULL)";
}

const char *search_terms_table(browser_generation generation)
{
    if (generation == browser_generation::newest)
        return "create table keyword_search_terms(keyword_id INTEGER NOT NULL,"
               "url_id INTEGER NOT NULL,term LONGVARCHAR NOT NULL,"
               "normalized_term LONGVARCHAR NOT NULL)";
    return "create table keyword_search_terms(keyword_id INTEGER NOT NULL,"
           "url_id INTEGER NOT NULL,lower_term LONGVARCHAR NOT NULL,term LONGVARCHAR NOT NULL)";
}

void make_page_tables(database &history, const profile &account)
{
    history.run_all({
        "create table meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY,value LONGVARCHAR)",
        urls_table(account),
        visits_table(account.generation),
        "create table visit_source(id INTEGER PRIMARY KEY,source INTEGER NOT NULL)",
        search_terms_table(account.generation),
        "create table segments(id INTEGER PRIMARY KEY,name VARCHAR,url_id INTEGER NOT NULL)",
    });
    history.run("create table segment_usage(id INTEGER PRIMARY KEY,segment_id INTEGER NOT NULL,"
                "time_slot INTEGER NOT NULL,visit_count INTEGER DEFAULT 0 NOT NULL)");
    insertion meta(history, "meta", "key,value");
    meta.add("version", account.generation == browser_generation::newest ? "67" : "32");
    meta.add("last_compatible_version", "16");
    meta.add("early_expiration_threshold", std::to_string(browser_time(days_ago(90))));
}

/// Files of the computer that were opened in the browser.
qint64 add_local_files(page_writer &writer, const profile &account, qint64 id)
{
    const std::string user = percent_encoded(account.user.toStdString());
    const std::string home = (account.windows() ? "C:/Users/" : "Users/") + user;
    const std::string files[] = {
        "file:///" + home + "/Documents/Annual%20report.pdf",
        "file:///" + home + "/Documents/not-there-any-more.html",
        account.windows() ? "file:///D:/scans/letter%201.png"
                          : "file:///Volumes/STICK/scans/letter%201.png",
    };
    for (const std::string &url : files) {
        const qint64 visited = days_ago(id);
        writer.add_page(id, url, url.substr(url.rfind('/') + 1), 1, 0, 0, visited);
        writer.add_visit(id, visited, 805306368, 20000000);
        ++id;
    }
    return id;
}

qint64 add_ordinary_pages(page_writer &writer, const profile &account, qint64 id)
{
    constexpr int visits_of_page[] = {1, 4, 2, 3};
    number_source numbers = account.numbers("pages");
    for (qint64 page = 0; page < account.rows(page_rows); ++page, ++id) {
        const invented_page where = make_page(numbers, page + 1);
        const int visits = visits_of_page[page % 4];
        qint64 time = days_ago(85) + numbers.below(80) * day;
        for (int visit = 0; visit < visits; ++visit) {
            time += 60 + numbers.below(80000);
            const qint64 transition = 805306368 + numbers.below(9);
            writer.add_visit(id, time, transition, numbers.below(900) * 1000000);
        }
        writer.add_page(id, where.url, where.title, visits, numbers.below(4) == 0 ? 1 : 0, 0, time);
    }
    return id;
}

/// Search terms, each with the result page that it led to.
class search_writer
{
public:
    search_writer(database &history, const profile &account, page_writer &pages)
        : pages_(pages), terms_(history, "keyword_search_terms",
                                account.generation == browser_generation::newest
                                    ? "keyword_id,url_id,normalized_term,term"
                                    : "keyword_id,url_id,lower_term,term")
    {
    }

    void add(qint64 id, const std::string &term, qint64 time)
    {
        const std::string url = "https://search.lantern.example/find?q=" + percent_encoded(term);
        pages_.add_page(id, url, term + " – Lantern Search", 1, 0, 0, time);
        if (time != 0)
            pages_.add_visit(id, time, 805306373, 8000000);
        terms_.add(2, id, QString::fromStdString(term).toLower(), term);
    }

private:
    page_writer &pages_;
    insertion terms_;
};

void add_searches(search_writer &searches, const profile &account, qint64 id)
{
    searches.add(id++, "Fähre nach Nordhaven", minutes_ago(90));
    searches.add(id++, "100 % \"wool\" 'blanket'; price", minutes_ago(199));
    searches.add(id++, "野鳥 図鑑", minutes_ago(265));
    searches.add(id++, "12345", 0);
    number_source numbers = account.numbers("searches");
    for (qint64 row = 0; row < account.rows(search_rows); ++row) {
        const std::string term = make_search_term(numbers);
        searches.add(id++, term, days_ago(60) + numbers.below(50 * day));
    }
}

/// The rows that the browser had not yet moved into the file.
void add_latest_rows(const QString &path, const profile &account)
{
    database history(path, database::rows_go::into_the_log);
    {
        page_writer pages(history, account);
        if (account.has(u"history"_s))
            pages.add_all(latest_pages, latest_visits);
        if (account.has(u"search_terms"_s))
            search_writer(history, account, pages)
                .add(14, "fish soup without fish", minutes_ago(2));
        if (account.has(u"downloads"_s))
            add_latest_download(history, account);
    }
    history.finish(latest_instant);
}

} // namespace

void write_history_file(const profile &account)
{
    const QString path = account.profile_folder + u"History";
    database history(path);
    make_page_tables(history, account);
    make_download_tables(history, account);
    {
        page_writer pages(history, account);
        qint64 id = 15; // up to here the special pages and those of the write-ahead log
        if (account.has(u"history"_s)) {
            pages.add_all(special_pages, special_visits);
            id = add_local_files(pages, account, id);
            id = add_ordinary_pages(pages, account, id);
        }
        if (account.has(u"search_terms"_s)) {
            search_writer searches(history, account, pages);
            add_searches(searches, account, id);
        }
    }
    if (account.has(u"downloads"_s))
        add_downloads(history, account);
    history.run_all({
        "create index visits_url_index on visits(url)",
        "create index visits_time_index on visits(visit_time)",
        "create index urls_url_index on urls(url)",
        "create index keyword_search_terms_index1 on keyword_search_terms(keyword_id,url_id)",
    });
    history.finish(latest_instant);

    if (account.generation == browser_generation::current)
        add_latest_rows(path, account);
}

} // namespace sample
