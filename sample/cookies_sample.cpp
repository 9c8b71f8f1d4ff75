#include "sample/database.h"
#include "sample/profile.h"

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

/// A flag of a cookie; the browser writes 0 or 1.
using flag = std::optional<int>;

struct cookie {
    qint64 created; ///< browser time, as all three
    std::string host;
    std::string name;
    std::string value;
    std::string path;
    qint64 expires;
    qint64 accessed;
    flag secure;
    flag has_expires;
    flag persistent;
    flag http_only;
    QByteArray encrypted_value = {};
};

std::vector<cookie> special_cookies()
{
    const qint64 created = browser_time(days_ago(100), 234567);
    const qint64 accessed = browser_time(minutes_ago(31), 1);
    const qint64 expires = browser_time(latest_instant + 365 * day);
    return {
        {created, ".example.org", "session", "q1w2e3", "/", expires, accessed, 1, 1, 1, 1},
        {created + 1, "shop.tealkettle.test", "basket", "item=7; größe=XL", "/basket", expires,
         accessed, 0, 1, 1, 0},
        // A session cookie: it has no end and no time of use.
        {created + 2, "mail.example.org", "sid", "0", "/", 0, 0, 1, 0, 0, 1},
        {0, "forum.birdwatch.example", "born-never", "x", "/", 0, accessed, 1, 0, 0, std::nullopt},
        {created + 4, "ads.tealkettle.test", "id", "", "/", expires, accessed, 2, 1, 1, 0},
        // The value is encrypted and stands in a column of its own.
        {created + 5, ".northferry.example", "login", "", "/booking", expires, accessed, 1, 1, 1, 1,
         QByteArray("v10\x8f\0\x11 %1 \xff\xfe", 12)},
        {created + 6, "photos.silverbeach.test", "銀", "%E9%8A%80 %s 'quoted' \"twice\"", "/a b",
         expires, accessed, std::nullopt, std::nullopt, std::nullopt, std::nullopt},
    };
}

/// Writes cookies with the columns that the profile's generation has.
class cookie_writer
{
public:
    cookie_writer(database &cookies, browser_generation generation)
        : generation_(generation), rows_(cookies, "cookies", columns(generation))
    {
    }

    void add(const cookie &row)
    {
        switch (generation_) {
        case browser_generation::current:
            rows_.add(row.created, row.host, row.name, row.value, row.path, row.expires,
                      row.accessed, row.secure, row.http_only, row.has_expires, row.persistent,
                      row.encrypted_value);
            break;
        case browser_generation::older:
            rows_.add(row.created, row.host, row.name, row.value, row.path, row.expires,
                      row.accessed, row.secure, row.http_only);
            break;
        case browser_generation::newest:
            rows_.add(row.created, row.host, row.name, row.value, row.path, row.expires,
                      row.accessed, row.secure, row.http_only, row.has_expires, row.persistent,
                      row.encrypted_value, row.created);
            break;
        }
    }

private:
    static const char *columns(browser_generation generation)
    {
        switch (generation) {
        case browser_generation::current:
            return "creation_utc,host_key,name,value,path,expires_utc,last_access_utc,secure,"
                   "httponly,has_expires,persistent,encrypted_value";
        case browser_generation::older:
            return "creation_utc,host_key,name,value,path,expires_utc,last_access_utc,secure,"
                   "httponly";
        case browser_generation::newest:
            break;
        }
        return "creation_utc,host_key,name,value,path,expires_utc,last_access_utc,is_secure,"
               "is_httponly,has_expires,is_persistent,encrypted_value,last_update_utc";
    }

    browser_generation generation_;
    insertion rows_;
};

/// The flags carry no NOT NULL, unlike the browser's: a row with NULLs is among the samples.
const char *cookies_table(browser_generation generation)
{
    switch (generation) {
    case browser_generation::current:
        return "create table cookies(creation_utc INTEGER NOT NULL UNIQUE PRIMARY KEY,"
               "host_key TEXT NOT NULL,name TEXT NOT NULL,value TEXT NOT NULL,path TEXT NOT NULL,"
               "expires_utc INTEGER NOT NULL,secure INTEGER,httponly INTEGER,"
               "last_access_utc INTEGER NOT NULL,has_expires INTEGER DEFAULT 1,"
               "persistent INTEGER DEFAULT 1,priority INTEGER NOT NULL DEFAULT 1,"
               "encrypted_value BLOB DEFAULT '',firstpartyonly INTEGER NOT NULL DEFAULT 0)";
    case browser_generation::older:
        return "create table cookies(creation_utc INTEGER NOT NULL UNIQUE PRIMARY KEY,"
               "host_key TEXT NOT NULL,name TEXT NOT NULL,value TEXT NOT NULL,path TEXT NOT NULL,"
               "expires_utc INTEGER NOT NULL,secure INTEGER,httponly INTEGER,"
               "last_access_utc INTEGER NOT NULL)";
    case browser_generation::newest:
        break;
    }
    return "create table cookies(creation_utc INTEGER NOT NULL,host_key TEXT NOT NULL,"
           "top_frame_site_key TEXT NOT NULL DEFAULT '',name TEXT NOT NULL,value TEXT NOT NULL,"
           "encrypted_value BLOB NOT NULL,path TEXT NOT NULL,expires_utc INTEGER NOT NULL,"
           "is_secure INTEGER,is_httponly INTEGER,last_access_utc INTEGER NOT NULL,"
           "has_expires INTEGER,is_persistent INTEGER,priority INTEGER NOT NULL DEFAULT 1,"
           "samesite INTEGER NOT NULL DEFAULT -1,source_scheme INTEGER NOT NULL DEFAULT 2,"
           "source_port INTEGER NOT NULL DEFAULT 443,last_update_utc INTEGER NOT NULL)";
}

cookie ordinary_cookie(number_source &numbers, qint64 number)
{
    const qint64 created = days_ago(90) + numbers.below(80 * day);
    const bool lasting = numbers.below(4) != 0;
    return {
        // The creation time is the table's key: the number keeps it unique.
        .created = browser_time(days_ago(99)) + number * 1000 + numbers.below(1000),
        .host = make_page(numbers, number).host,
        .name = make_word(numbers) + "_" + std::to_string(number),
        .value = make_guid(numbers),
        .path = "/",
        .expires = lasting ? browser_time(latest_instant + numbers.below(400) * day) : 0,
        .accessed = browser_time(created, numbers.below(1000000)),
        .secure = numbers.below(3) != 0 ? 1 : 0,
        .has_expires = lasting ? 1 : 0,
        .persistent = lasting ? 1 : 0,
        .http_only = numbers.below(2) != 0 ? 1 : 0,
    };
}

} // namespace

void write_cookies_file(const profile &account)
{
    database cookies(account.profile_folder + u"Cookies");
    cookies.run_all({"create table meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY,"
                     "value LONGVARCHAR)",
                     "insert into meta values('version','9')", cookies_table(account.generation)});
    {
        cookie_writer writer(cookies, account.generation);
        for (const cookie &row : special_cookies())
            writer.add(row);
        number_source numbers = account.numbers("cookies");
        for (qint64 row = 0; row < account.rows(cookie_rows); ++row)
            writer.add(ordinary_cookie(numbers, row));
    }
    cookies.finish(latest_instant);
}

} // namespace sample
