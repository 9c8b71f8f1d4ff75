// What accounts keep about people: cookies, saved logins, form entries, address profiles, cards.

#include "macos/opera_macos.h"
#include "tests/support/extraction_case.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QByteArray older_cookies = "create table cookies(creation_utc integer, host_key, name, "
                                 "value, path, expires_utc integer, secure, httponly, "
                                 "last_access_utc integer);";
const QByteArray current_cookies = older_cookies + "alter table cookies add has_expires;"
                                                   "alter table cookies add persistent;";

const QByteArray newer_logins =
    "create table logins(origin_url, action_url, username_element, username_value, "
    "password_element, password_value blob, submit_element, signon_realm, preferred, date_created "
    "integer, blacklisted_by_user, SSL_VALID2);";
const QByteArray current_logins = newer_logins + "alter table logins add ssl_valid;";

const QByteArray current_autofill =
    "create table autofill(name, value, value_lower, date_created, date_last_used, count);";
/// Dates in a table of their own.
const QByteArray older_autofill = "create table autofill(name, value, pair_id, count);"
                                  "create table autofill_dates(pair_id, date_created);";

const QByteArray profile_details = "create table autofill_profile_emails(guid text, email);"
                                   "create table autofill_profile_phones(guid text, number);";
const QByteArray older_names = "create table autofill_profile_names(guid text, first_name, "
                               "middle_name, last_name, date_of_birth, gender);";
const QByteArray current_profiles =
    "create table autofill_profiles(guid text, company_name, street_address, dependent_locality, "
    "city, state, zipcode, sorting_code, country_code, date_modified, origin, language_code, "
    "use_count, use_date);"
    "create table autofill_profile_names(guid text, first_name, middle_name, last_name, full_name);" +
    profile_details;
/// Between the two: no use counts, but street_address already.
const QByteArray middle_profiles =
    "create table autofill_profiles(guid text, company_name, street_address, dependent_locality, "
    "city, state, zipcode, country_code, date_modified, origin);" +
    older_names + profile_details;
const QByteArray older_profiles =
    "create table autofill_profiles(guid text, company_name, address_line_1, address_line_2, city, "
    "state, zipcode, country, country_code, date_modified);" +
    older_names + profile_details;

const QByteArray older_cards =
    "create table credit_cards(guid, name_on_card, expiration_month, expiration_year, "
    "card_number_encrypted blob, date_modified, origin);";
const QByteArray current_cards = older_cards + "alter table credit_cards add use_count;"
                                               "alter table credit_cards add use_date;";

QString stored(const QString &account, const QString &file)
{
    return u'/' + macos_profile(account) + file;
}

/// The last columns of a row: where it comes from.
QString origin(const QString &account, const QString &file)
{
    return u'|' + stored(account, file) + u"||Shown macOS|Source7";
}

const QString origin_columns =
    u", source_file, artifacts_relation_source_file, os_scheme_display, source_count_name from "_s;

class two_accounts : public extraction_case
{
public:
    two_accounts() : extraction_case(u"macOS"_s) { accounts = {{u"ada"_s}, {u"ben"_s}}; }
    void put(const QString &user, const QString &file, const QByteArray &sql) const
    {
        evidence.sqlite(macos_profile(user) + file, sql);
    }
};

} // namespace

class macos_accounts_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cookies_whole_rows();
    void cookie_times_and_flags_data();
    void cookie_times_and_flags();
    void cookies_of_two_schemas();
    void logins_with_and_without_ssl_valid();
    void logins_that_cannot_be_read();
    void logins_older_reader();
    void autofill_of_two_schemas();
    void profiles_whole_row();
    void profiles_names_data();
    void profiles_names();
    void profiles_without_the_tables_of_details();
    void profiles_of_three_schemas();
    void profiles_guid_is_no_sql();
    void cards_of_two_schemas();
    void cancelled_before_the_call();
};

void macos_accounts_test::cookies_whole_rows()
{
    two_accounts run;
    run.put(u"ada"_s, u"Cookies"_s,
            current_cookies +
                "insert into cookies values(13312345678901234,'.a.example','n','v%20','/p',"
                "13312346400000000,1,0,13312347000000000,0,1);"
                "insert into cookies(name) values(NULL)");
    run.run({u"cookies"_s});
    QCOMPARE(run.lines(u"select bookmark, system_user, creation_utc, host_key, name, value, path, "
                       "expires_utc, secure, last_access_utc, has_expires, persistent, httponly"_s +
                       origin_columns + u"cookies order by INT"_s),
             QStringList({u"0|ada|1667872078|.a.example|n|v%20|/p|1667872800|YES|1667873400|NO|"
                          "YES|NO"_s +
                              origin(u"ada"_s, u"Cookies"_s),
                          u"0|ada|NULL|NULL|NULL|NULL|NULL||NO|NULL|NO|NO|NO"_s +
                              origin(u"ada"_s, u"Cookies"_s)}));
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_cookies_11"_s),
             QStringList({u"[extract_cookies_11] starts."_s, u"[extract_cookies_11] end."_s}));
}

void macos_accounts_test::cookie_times_and_flags_data()
{
    QTest::addColumn<QByteArray>("stored"); // the same value in all times and in all flags
    QTest::addColumn<QString>("times");     // creation, access, expiry
    QTest::addColumn<QString>("flags");
    const auto row = [](const char *stored, const QString &times, const QString &flags) {
        QTest::newRow(stored) << QByteArray(stored) << times << flags;
    };
    row("0", u"0|0|"_s, u"NO|NO|NO|NO"_s);
    row("''", u"||"_s, u"NO|NO|NO|NO"_s);
    row("1", u"-11644473600|-11644473600|-11644473600"_s, u"YES|YES|YES|YES"_s);
    row("' 1'", u"-11644473600|-11644473600|-11644473600"_s, u"NO|NO|NO|NO"_s);
    row("1667872078", u"1667872078|1667872078|1667872078"_s, u"NO|NO|NO|NO"_s);
    row("x'31'", u"-11644473600|-11644473600|-11644473600"_s, u"YES|YES|YES|YES"_s);
}

void macos_accounts_test::cookie_times_and_flags()
{
    QFETCH(QByteArray, stored);
    QFETCH(QString, times);
    QFETCH(QString, flags);
    two_accounts run;
    run.put(u"ada"_s, u"Cookies"_s,
            current_cookies +
                "insert into cookies(creation_utc, last_access_utc, expires_utc, "
                "secure, has_expires, persistent, httponly) select v, v, v, v, v, "
                "v, v from (select " +
                stored + " as v)");
    run.run({u"cookies"_s});
    QCOMPARE(run.lines(u"select creation_utc, last_access_utc, expires_utc from cookies"_s),
             QStringList(times));
    QCOMPARE(run.lines(u"select secure, has_expires, persistent, httponly from cookies"_s),
             QStringList(flags));
}

void macos_accounts_test::cookies_of_two_schemas()
{
    two_accounts run;
    run.put(u"ada"_s, u"Cookies"_s,
            older_cookies + "insert into cookies values(0,'a','n','v','p',13312346400000000,1,1,"
                            "13312347000000000)");
    run.put(u"ben"_s, u"Cookies"_s,
            current_cookies + "insert into cookies(name, secure, creation_utc) values('m', 1, "
                              "13312345678901234)");
    run.run({u"cookies"_s});
    // The older reader reads the files again that the current one could read.
    QCOMPARE(
        run.lines(u"select system_user, host_key, name, value, path, creation_utc, "
                  "expires_utc, last_access_utc, secure, httponly, source_file from cookies "
                  "order by INT"_s),
        QStringList(
            {u"ben|NULL|m|NULL|NULL|1667872078||NULL|YES|NO|"_s + stored(u"ben"_s, u"Cookies"_s),
             u"ada|a|n|v|p||1667872800|1667873400|NULL|NULL|"_s + stored(u"ada"_s, u"Cookies"_s),
             u"ben|NULL|m|NULL|NULL|1667872078|||NULL|NULL|"_s + stored(u"ben"_s, u"Cookies"_s)}));
    const QStringList current = run.log.messages_of(u"opera_macos::extract_cookies_11"_s);
    QCOMPARE(current.size(), 5);
    QCOMPARE(current.at(1),
             u"[extract_cookies_11]: select_query execute--------FAILED----------"_s);
    QVERIFY(current.at(2).contains(u"no such column: has_expires"_s));
}

void macos_accounts_test::logins_with_and_without_ssl_valid()
{
    two_accounts run;
    run.put(u"ada"_s, u"Login Data"_s,
            current_logins +
                "insert into logins values('https://a.example/%7Eada%zz','act%20ion','ue','u%7Ev',"
                "'pe',x'763130','se','realm%20',0,13312345678901234,1,0,1)");
    run.put(u"ben"_s, u"Login Data"_s,
            newer_logins +
                "insert into logins values('o','a','ue','uv','pe','pv','se','r',1,0,0,1)");
    run.run({u"logins"_s});
    QCOMPARE(run.lines(u"select bookmark, system_user, origin_url, action_url, username_element, "
                       "username_value, password_element, password_value, submit_element, "
                       "signon_realm, date_created, ssl_valid, preferred, blacklisted_by_user"_s +
                       origin_columns + u"logins order by INT"_s),
             QStringList(
                 {u"0|ada|https://a.example/~ada%zz|act ion|ue|u%7Ev|pe|v10|se|realm%20|"
                  "1667872078|YES|NO|YES"_s +
                      origin(u"ada"_s, u"Login Data"_s),
                  u"0|ben|o|a|ue|uv|pe|pv|se|r|||YES|NO"_s + origin(u"ben"_s, u"Login Data"_s)}));
    QCOMPARE(run.log.messages_of(u"opera_macos::extract_logins_11"_s),
             QStringList({u"[extract_logins_11] starts"_s, u"[extract_logins_11]  end."_s}));
}

void macos_accounts_test::logins_that_cannot_be_read()
{
    two_accounts run;
    run.evidence.file(macos_profile(u"ada"_s) + u"Login Data"_s, QByteArray(5000, 'n'));
    run.put(u"ben"_s, u"Login Data"_s, "create table logins(origin_url, ssl_valid)");
    run.run({u"logins"_s});
    QVERIFY(run.rows(u"select 1 from logins"_s).isEmpty());
    const QString failed = u"[extract_logins_11] to execute query source_login -----FAILED------"_s;
    const QStringList messages = run.log.messages_of(u"opera_macos::extract_logins_11"_s);
    // The probe and the SELECT fail on the first file, the SELECT alone on the second.
    QCOMPARE(messages.count(failed), 3);
    QCOMPARE(messages.size(), 2 + 2 + 3 * 3);
    QVERIFY(messages.at(1).startsWith(
        u"[extract_logins_11] structure of the source is damaged -----FAILED-----"_s));
    QVERIFY(messages.at(2).startsWith(u"file is not a database"_s));
    QCOMPARE(messages.at(5), u"PRAGMA TABLE_INFO(logins)"_s);
    QVERIFY(messages.at(10).contains(u"no such column"_s));
}

void macos_accounts_test::logins_older_reader()
{
    two_accounts run;
    run.put(u"ada"_s, u"Login Data"_s,
            newer_logins + "insert into logins values('o%7E','a','ue','uv','pe','pv','se','r',1,"
                           "13312345678901234,0,1)");
    run.run({});
    run.controller.findChild<opera_macos *>()->extract_login_data();
    QCOMPARE(run.lines(u"select bookmark, system_user, origin_url, action_url, username_element, "
                       "username_value, password_element, password_value, submit_element, "
                       "signon_realm, date_created, ssl_valid"_s +
                       origin_columns + u"logins"_s),
             QStringList(u"0|ada|o%7E|a|ue|uv|pe|pv|se|r|1667872078|NULL"_s +
                         origin(u"ada"_s, u"Login Data"_s)));
}

void macos_accounts_test::autofill_of_two_schemas()
{
    two_accounts run;
    run.put(u"ada"_s, u"Web Data"_s,
            current_autofill + "insert into autofill values('n','v','lower',1600000001,"
                               "13312345678901234,'3')");
    run.put(u"ben"_s, u"Web Data"_s,
            older_autofill + "insert into autofill values('m','w',7,1);"
                             "insert into autofill_dates values(7,1600000002)");
    run.run({u"autofill"_s});
    const QString file = stored(u"ada"_s, u"Web Data"_s);
    QCOMPARE(run.lines(u"select bookmark, system_user, name, value, count, date_created, "
                       "date_last_used, pair_id"_s +
                       origin_columns + u"autofill order by INT"_s),
             QStringList({u"0|ada|n|v|3|1600000001|13312345678901234|NULL|"_s + file +
                              u"||Shown macOS|Source7",
                          u"0|ada|n|v|3|1600000001|13312345678901234|NULL|"_s + file +
                              u"|NULL|Shown macOS|Source7"}));
    const QStringList older = run.log.messages_of(u"opera_macos::extract_webdata_autofill"_s);
    QCOMPARE(older.count(u"[extract_webdata_autofill]--------FAILED------- to execute new query "
                         "query_source_web_data "_s),
             1);
}

void macos_accounts_test::profiles_whole_row()
{
    two_accounts run;
    run.put(u"ada"_s, u"Web Data"_s,
            current_profiles +
                "insert into autofill_profiles values('g','co','st','dl','ci','sta','zip','sort',"
                "'cc',1600000001,'or','lang',12,1600000002);"
                "insert into autofill_profile_names values('h','no','no','no','no');"
                "insert into autofill_profile_names values('g','Ada','M','Lovelace','Dr Ada');"
                "insert into autofill_profile_names values('g','2','2','2','2');"
                "insert into autofill_profile_emails values('g','a@a.example');"
                "insert into autofill_profile_emails values('g','b@a.example');"
                "insert into autofill_profile_phones values('g','+1');"
                "insert into autofill_profile_phones values('g','+2');");
    run.run({u"autofill_profiles"_s});
    QCOMPARE(run.lines(u"select bookmark, system_user, guid, firstname, lastname, middlename, "
                       "fullname, email, phone_number, company_name, street_address, "
                       "dependent_locality, city, state, zipcode, origin, country_code, "
                       "date_modified, lang_code, use_count, date_used, address_line_1"_s +
                       origin_columns + u"autofill_profiles"_s),
             QStringList(u"0|ada|g|NULL|Lovelace|M|Dr Ada|a@a.example|+1|co|st|dl|ci|sta|zip|or|cc|"
                         "1600000001|lang|12|1600000002|NULL"_s +
                         origin(u"ada"_s, u"Web Data"_s)));
}

void macos_accounts_test::profiles_names_data()
{
    QTest::addColumn<QByteArray>("names"); // first, middle, last, full
    QTest::addColumn<QString>("expected"); // full, last, middle
    const auto row = [](const char *names, const QString &expected) {
        QTest::newRow(names) << QByteArray(names) << expected;
    };
    row("'Ada', 'M', 'L', 'Dr Ada'", u"Dr Ada|L|M"_s);
    row("'Ada', 'M', 'L', ''", u"Ada M L|L|M"_s);
    row("'Ada', NULL, 'L', NULL", u"Ada L|L|NULL"_s);
    row("NULL, NULL, NULL, NULL", u"|NULL|NULL"_s);
}

void macos_accounts_test::profiles_names()
{
    QFETCH(QByteArray, names);
    QFETCH(QString, expected);
    two_accounts run;
    run.put(u"ada"_s, u"Web Data"_s,
            current_profiles +
                "insert into autofill_profiles(guid) values('g');"
                "insert into autofill_profile_names values('g'," +
                names + ")");
    run.run({u"autofill_profiles"_s});
    QCOMPARE(run.lines(u"select fullname, lastname, middlename from autofill_profiles"_s),
             QStringList(expected));
}

void macos_accounts_test::profiles_without_the_tables_of_details()
{
    two_accounts run;
    run.put(u"ada"_s, u"Web Data"_s,
            current_profiles + "drop table autofill_profile_names;"
                               "drop table autofill_profile_emails;"
                               "drop table autofill_profile_phones;"
                               "insert into autofill_profiles(guid, city) values('g', 'x');"
                               "insert into autofill_profiles(guid, city) values(NULL, 'y')");
    run.run({u"autofill_profiles"_s});
    QCOMPARE(run.lines(u"select guid, fullname, lastname, middlename, email, phone_number, city "
                       "from autofill_profiles order by INT"_s),
             QStringList({u"g||||||x"_s, u"NULL||||||y"_s}));
    for (const QString &name : {u"name"_s, u"email"_s, u"phone"_s})
        QCOMPARE(run.log.messages().count(u"[get_"_s + name +
                                          u"_for_autofill_profiles]-----FAILED------ to execute "
                                          "query query_source_web_data"),
                 2);
}

void macos_accounts_test::profiles_of_three_schemas()
{
    two_accounts run;
    run.accounts.append({u"cid"_s});
    run.put(u"ada"_s, u"Web Data"_s,
            older_profiles +
                "insert into autofill_profiles values('g','co','l1','l2','ci','st','zip','country',"
                "'cc',1600000001);"
                "insert into autofill_profile_names values('g','Ada','','L','1815','f');"
                "insert into autofill_profile_names values('g','Augusta',NULL,'K',NULL,NULL);"
                "insert into autofill_profile_emails values('g','a@a.example');"
                "insert into autofill_profile_emails values('g','b@a.example');"
                "insert into autofill_profile_phones values('g','+1');"
                "insert into autofill_profile_phones values('h','+2');"
                "insert into autofill_profile_phones values('g','+3');");
    run.put(u"ben"_s, u"Web Data"_s,
            middle_profiles + "insert into autofill_profiles values('g','co','st','dl','ci','sta',"
                              "'zip','cc',1600000002,'or')");
    run.put(u"cid"_s, u"Web Data"_s,
            current_profiles + "insert into autofill_profiles(guid, city) values('k', 'ci')");
    run.run({u"autofill_profiles"_s});
    // The names of the current schema lack a date of birth, which the older reader asks for.
    QCOMPARE(
        run.lines(u"select bookmark, system_user, guid, fullname, email, phone_number, "
                  "company_name, address_line_1, address_line_2, street_address, city, state, "
                  "zipcode, country, origin, country_code, date_modified"_s +
                  origin_columns + u"autofill_profiles order by INT"_s),
        QStringList({u"0|cid|k||||NULL|NULL|NULL|NULL|ci|NULL|NULL|NULL|NULL|NULL|NULL"_s +
                         origin(u"cid"_s, u"Web Data"_s),
                     u"0|ada|g|Name: Ada L;Date of Birth: 1815;Gender: f;; Name: Augusta K;Date of "
                     "Birth: ;Gender: ;; |a@a.example; b@a.example|+1; +3|co|l1|l2|NULL|ci|st|zip|"
                     "country|NULL|cc|1600000001|"_s +
                         stored(u"ada"_s, u"Web Data"_s) + u"|NULL|Shown macOS|Source7",
                     u"0|ben|g||||co|st|dl|NULL|ci|sta|zip|NULL|or|cc|1600000002"_s +
                         origin(u"ben"_s, u"Web Data"_s),
                     u"0|cid|k||||NULL|NULL|NULL|NULL|ci|NULL|NULL|NULL|NULL|NULL|NULL"_s +
                         origin(u"cid"_s, u"Web Data"_s)}));
    QCOMPARE(run.log.messages().count(
                 u"[get_name_for_autofill_profiles]--------FAILED------- to execute query"_s),
             1);
}

void macos_accounts_test::profiles_guid_is_no_sql()
{
    two_accounts run;
    run.put(u"ada"_s, u"Web Data"_s,
            older_profiles + "insert into autofill_profiles(guid) values('x\" or \"1\"=\"1');"
                             "insert into autofill_profiles(guid) values('GUID');"
                             "insert into autofill_profile_phones values('g','+1')");
    run.run({u"autofill_profiles"_s});
    QCOMPARE(run.lines(u"select phone_number from autofill_profiles"_s),
             QStringList({u""_s, u""_s}));
    QVERIFY(run.log.messages().filter(u"autofill_profiles]--------FAILED"_s).isEmpty());
}

void macos_accounts_test::cards_of_two_schemas()
{
    two_accounts run;
    run.accounts.append({u"cid"_s});
    run.put(u"ada"_s, u"Web Data"_s,
            current_cards + "insert into credit_cards values('g','Ada',7,2027,x'763130',1600000001,"
                            "'or',4,1600000002)");
    run.put(u"ben"_s, u"Web Data"_s,
            older_cards + "insert into credit_cards values('h','Ben',8,2028,'enc',1600000003,"
                          "NULL)");
    run.put(u"cid"_s, u"Web Data"_s, "create table credit_cards(guid)");
    run.run({u"credits_cards"_s});
    QCOMPARE(run.lines(u"select bookmark, system_user, guid, name_on_card, expiration_month, "
                       "expiration_year, date_modified, card_number_encrypted, origin, use_count, "
                       "use_date"_s +
                       origin_columns + u"credits_cards order by INT"_s),
             QStringList({u"0|ada|g|Ada|7|2027|1600000001|v10|or|4|1600000002"_s +
                              origin(u"ada"_s, u"Web Data"_s),
                          u"0|ben|h|Ben|8|2028|1600000003|enc|NULL||"_s +
                              origin(u"ben"_s, u"Web Data"_s)}));
    const QStringList messages =
        run.log.messages_of(u"opera_macos::extract_webdata_credit_cards_11"_s);
    QCOMPARE(messages.size(), 5);
    QCOMPARE(messages.at(1), u"[extract_webdata_credit_cards_11] select_query-----FAILED------ "_s);
}

void macos_accounts_test::cancelled_before_the_call()
{
    two_accounts run;
    run.put(u"ada"_s, u"Cookies"_s, older_cookies);
    run.run({});
    run.log.clear();
    opera_macos &reader = *run.controller.findChild<opera_macos *>();
    reader.macos_cancel_extraction();
    QCOMPARE(reader.extract_cookies_11(), 0);
    QCOMPARE(run.log.messages(), QStringList(u"[extract_cookies_11] starts."_s));
}

QTEST_MAIN(macos_accounts_test)
#include "accounts_test.moc"
