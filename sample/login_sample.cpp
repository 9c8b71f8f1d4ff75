#include "sample/database.h"
#include "sample/profile.h"

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

struct login {
    std::string origin;
    std::string action;
    std::string user_field;
    std::string user;
    std::string realm;
    QByteArray password; ///< encrypted by the browser
    qint64 created;      ///< browser time
    int ssl_valid;
    int preferred;
    int never_save;
};

const QByteArray encrypted("v10\x02\x9c\0\x7f\x41\xe2\x10\xfe", 11);

const login special_logins[] = {
    {"https://mail.example.org/%7Emara/login", "https://mail.example.org/%7Emara/check", "user",
     "mara%7Elindqvist", "https://mail.example.org/", encrypted, browser_time(days_ago(200), 77), 1,
     1, 0},
    {"https://shop.tealkettle.test/sign%20in", "", "e-mail", "jürgen@weiss.example",
     "https://shop.tealkettle.test/", encrypted, browser_time(days_ago(150)), 0, 1, 0},
    // Never save passwords of this site.
    {"https://bank.copperpan.test/", "https://bank.copperpan.test/", "", "",
     "https://bank.copperpan.test/", QByteArray(), browser_time(days_ago(140)), 1, 0, 1},
    {"http://router.example/", "http://router.example/100%", "name", "admin %1", "router",
     QByteArray("plain text"), 0, 0, 2, 0},
    // A form of the older kind: seconds since 1970.
    {"ftp://files.example.org/", "", "", "anonymous", "ftp://files.example.org/", encrypted,
     days_ago(900), 0, 0, 0},
};

const char *logins_table(browser_generation generation)
{
    switch (generation) {
    case browser_generation::current:
        return "create table logins(origin_url VARCHAR NOT NULL,action_url VARCHAR,"
               "username_element VARCHAR,username_value VARCHAR,password_element VARCHAR,"
               "password_value BLOB,submit_element VARCHAR,signon_realm VARCHAR NOT NULL,"
               "ssl_valid INTEGER NOT NULL,preferred INTEGER NOT NULL,"
               "date_created INTEGER NOT NULL,blacklisted_by_user INTEGER NOT NULL,"
               "scheme INTEGER NOT NULL DEFAULT 0,password_type INTEGER,times_used INTEGER)";
    case browser_generation::older:
        return "create table logins(origin_url VARCHAR NOT NULL,action_url VARCHAR,"
               "username_element VARCHAR,username_value VARCHAR,password_element VARCHAR,"
               "password_value BLOB,submit_element VARCHAR,signon_realm VARCHAR NOT NULL,"
               "preferred INTEGER NOT NULL,date_created INTEGER NOT NULL,"
               "blacklisted_by_user INTEGER NOT NULL,scheme INTEGER NOT NULL DEFAULT 0)";
    case browser_generation::newest:
        break;
    }
    return "create table logins(origin_url VARCHAR NOT NULL,action_url VARCHAR,"
           "username_element VARCHAR,username_value VARCHAR,password_element VARCHAR,"
           "password_value BLOB,submit_element VARCHAR,signon_realm VARCHAR NOT NULL,"
           "date_created INTEGER NOT NULL,blacklisted_by_user INTEGER NOT NULL,"
           "scheme INTEGER NOT NULL DEFAULT 0,password_type INTEGER,times_used INTEGER,"
           "form_data BLOB,display_name VARCHAR,icon_url VARCHAR,federation_url VARCHAR,"
           "skip_zero_click INTEGER,generation_upload_status INTEGER,"
           "possible_username_pairs BLOB,id INTEGER PRIMARY KEY AUTOINCREMENT,"
           "date_last_used INTEGER NOT NULL DEFAULT 0,moving_blocked_for BLOB,"
           "date_password_modified INTEGER NOT NULL DEFAULT 0)";
}

/// Writes logins with the columns that the profile's generation has.
class login_writer
{
public:
    login_writer(database &logins, browser_generation generation)
        : generation_(generation),
          rows_(logins, "logins",
                std::string("origin_url,action_url,username_element,username_value,"
                            "password_element,password_value,submit_element,signon_realm,"
                            "date_created,blacklisted_by_user") +
                    (generation == browser_generation::newest    ? ""
                     : generation == browser_generation::current ? ",preferred,ssl_valid"
                                                                 : ",preferred"))
    {
    }

    void add(const login &row)
    {
        const auto add_with = [&](const auto &...further) {
            rows_.add(row.origin, row.action, row.user_field, row.user, "password", row.password,
                      "submit", row.realm, row.created, row.never_save, further...);
        };
        if (generation_ == browser_generation::current)
            add_with(row.preferred, row.ssl_valid);
        else if (generation_ == browser_generation::older)
            add_with(row.preferred);
        else
            add_with();
    }

private:
    browser_generation generation_;
    insertion rows_;
};

login ordinary_login(number_source &numbers, qint64 number)
{
    const invented_page page = make_page(numbers, number);
    const std::string site = "https://" + page.host + "/";
    const qint64 created = days_ago(90) + numbers.below(80 * day);
    return {
        .origin = page.url,
        .action = site + "check",
        .user_field = "user",
        .user = make_word(numbers) + std::to_string(number) + "@example.org",
        .realm = site,
        .password = encrypted,
        .created = browser_time(created, numbers.below(1000000)),
        .ssl_valid = 1,
        .preferred = numbers.below(5) != 0 ? 1 : 0,
        .never_save = 0,
    };
}

} // namespace

void write_login_file(const profile &account)
{
    database logins(account.profile_folder + u"Login Data");
    logins.run_all({"create table meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY,"
                    "value LONGVARCHAR)",
                    "insert into meta values('version','17')", logins_table(account.generation)});
    {
        login_writer writer(logins, account.generation);
        for (const login &row : special_logins)
            writer.add(row);
        number_source numbers = account.numbers("logins");
        for (qint64 row = 0; row < account.rows(login_rows); ++row)
            writer.add(ordinary_login(numbers, row));
    }
    logins.finish(latest_instant);
}

} // namespace sample
