// What the browser keeps of a person: cookies, logins, form entries, addresses and cards.

#include "tests/support/extraction_case.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QString profile = winos_profile(u"ada"_s);
const QString web_data = profile + u"Web Data"_s;

const QByteArray profile_details =
    "create table autofill_profile_names(guid, first_name, middle_name, last_name, date_of_birth, "
    "gender);"
    "create table autofill_profile_emails(guid, email);"
    "create table autofill_profile_phones(guid, number);";

} // namespace

class winos_accounts_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cookies_and_logins();
    void autofill_of_both_generations();
    void cards();
    void profiles_of_both_generations();
    void genders_data();
    void genders();
    void a_guid_cannot_write_sql();
};

void winos_accounts_test::cookies_and_logins()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.sqlite(profile + u"Cookies"_s,
                        "create table cookies(creation_utc, host_key, name, value, path, "
                        "expires_utc, last_access_utc);"
                        "insert into cookies values(0,'.a.example','n','v%20','/',"
                        "13312345678901234,NULL)");
    run.evidence.sqlite(profile + u"Login Data"_s,
                        "create table logins(origin_url, action_url, username_element, "
                        "username_value, password_element, password_value, submit_element, "
                        "signon_realm, date_created);"
                        "insert into logins values('https://a/%20','b','ue','uv','pe',x'763130',"
                        "'s','r',13312345678901234)");
    run.run({u"cookies"_s, u"logins"_s});
    QCOMPARE(run.rows(u"select typeof(bookmark), bookmark, system_user, domain_user, creation_utc, "
                      "host_key, name, value, path, expires_utc, last_access_utc, source_file "
                      "from cookies"_s),
             QList<QStringList>(
                 {{u"integer"_s, u"0"_s, u"ada"_s, u"CORP"_s, u""_s, u".a.example"_s, u"n"_s,
                   u"v%20"_s, u"/"_s, u"1667872078"_s, u""_s, u"/"_s + profile + u"Cookies"}}));
    QCOMPARE(run.rows(u"select bookmark, domain_user, origin_url, action_url, username_element, "
                      "username_value, password_element, password_value, submit_element, "
                      "signon_realm, date_created from logins"_s),
             QList<QStringList>({{u"0"_s, u"CORP"_s, u"https://a/%20"_s, u"b"_s, u"ue"_s, u"uv"_s,
                                  u"pe"_s, u"v10"_s, u"s"_s, u"r"_s, u"1667872078"_s}}));
}

void winos_accounts_test::autofill_of_both_generations()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}, {u"ben"_s, u"LAB"_s}};
    run.evidence.sqlite(web_data, "create table autofill(name, value, count, pair_id);"
                                  "create table autofill_dates(pair_id, date_created);"
                                  "insert into autofill values('city','Ulm',2,9);"
                                  "insert into autofill_dates values(9,13312345678901234)");
    run.evidence.sqlite(winos_profile(u"ben"_s) + u"Web Data"_s,
                        "create table autofill(name, value, count, date_created, date_last_used);"
                        "insert into autofill values('mail','b@b',1,1667872078,1667999999)");
    run.run({u"autofill"_s});
    // The statement for current files exchanges two columns.
    QCOMPARE(run.rows(u"select system_user, domain_user, name, value, count, date_created, "
                      "pair_id, date_last_used from autofill order by INT"_s),
             QList<QStringList>({{u"ada"_s, u"CORP"_s, u"city"_s, u"Ulm"_s, u"2"_s, u"1667872078"_s,
                                  u"9"_s, u"NULL"_s},
                                 {u"ben"_s, u"mail"_s, u"LAB"_s, u"b@b"_s, u"1"_s, u"1667872078"_s,
                                  u"NULL"_s, u"1667999999"_s}}));
    QCOMPARE(
        run.log.messages_of(u"opera_winos::extract_webdata_autofill"_s),
        QStringList({u"[extract_webdata_autofill]  -Starts"_s,
                     u"[extract_webdata_autofill] query_source_web_data --- NOT EXECUTED --- "_s,
                     u"[extract_webdata_autofill] Executing Alternate Query ...."_s,
                     u"[extract_webdata_autofill] -Ends"_s}));
}

void winos_accounts_test::cards()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}};
    run.evidence.sqlite(web_data, "create table credit_cards(guid, name_on_card, expiration_month, "
                                  "expiration_year, date_modified, card_number_encrypted);"
                                  "insert into credit_cards values('g','A. Ada',2,2031,"
                                  "13312345678901234,'enc')");
    run.run({u"credits_cards"_s});
    QCOMPARE(run.rows(u"select bookmark, domain_user, guid, name_on_card, expiration_month, "
                      "expiration_year, date_modified, card_number_encrypted from "
                      "credits_cards"_s),
             QList<QStringList>({{u"0"_s, u"CORP"_s, u"g"_s, u"A. Ada"_s, u"2"_s, u"2031"_s,
                                  u"1667872078"_s, u"enc"_s}}));
}

void winos_accounts_test::profiles_of_both_generations()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s, u"CORP"_s}, {u"ben"_s}};
    run.evidence.sqlite(
        web_data, "create table autofill_profiles(guid, company_name, address_line_1, "
                  "address_line_2, city, state, zipcode, country, country_code, date_modified);"
                  "insert into autofill_profiles values('G1','Co','1 Road','Yard','Ulm','BW',"
                  "'89073','Germany','DE',13312345678901234);" +
                      profile_details +
                      "insert into autofill_profile_names values('G1','Ada','','Byron',"
                      "'1815-12-10','f');"
                      "insert into autofill_profile_emails values('G1','a@a'),('G1','b@b'),"
                      "('G2','c@c');"
                      "insert into autofill_profile_phones values('G1','+49 1')");
    run.evidence.sqlite(winos_profile(u"ben"_s) + u"Web Data"_s,
                        "create table autofill_profiles(guid, company_name, street_address, "
                        "dependent_locality, city, state, zipcode, origin, country_code, "
                        "date_modified);"
                        "insert into autofill_profiles values('H1','','2 Lane','Hollow','Bern','',"
                        "'3000','https://shop','CH',1667872078)");
    run.run({u"autofill_profiles"_s});
    QCOMPARE(run.rows(u"select system_user, domain_user, guid, fullname, date_of_birth, gender, "
                      "email, phone_number, company_name, address_line_1, address_line_2, city, "
                      "state, zipcode, country, origin, country_code, date_modified from "
                      "autofill_profiles order by INT"_s),
             QList<QStringList>(
                 {{u"ada"_s, u"CORP"_s, u"G1"_s, u"Ada Byron"_s, u"1815-12-10"_s, u"Female"_s,
                   u"a@a; b@b"_s, u"+49 1"_s, u"Co"_s, u"1 Road"_s, u"Yard"_s, u"Ulm"_s, u"BW"_s,
                   u"89073"_s, u"Germany"_s, u"NULL"_s, u"DE"_s, u"1667872078"_s},
                  {u"ben"_s, u""_s, u"H1"_s, u""_s, u""_s, u""_s, u""_s, u""_s, u""_s, u"2 Lane"_s,
                   u"Hollow"_s, u"Bern"_s, u""_s, u"3000"_s, u"NULL"_s, u"https://shop"_s, u"CH"_s,
                   u"1667872078"_s}}));
    // The second file has no detail tables; that is logged and costs only the details.
    QVERIFY(run.log.has(u"[extract_phone_for_autofill_profiles]---FAILED--- to execute query "
                        "query_source_web_data"_s));
}

void winos_accounts_test::genders_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("M") << QByteArray("M") << u"Male"_s;
    QTest::newRow("f") << QByteArray("f") << u"Female"_s;
    QTest::newRow("other") << QByteArray("X") << u"X"_s;
    QTest::newRow("word") << QByteArray("male") << u"male"_s;
}

void winos_accounts_test::genders()
{
    QFETCH(QByteArray, stored);
    QFETCH(QString, shown);
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(web_data, "create table autofill_profiles(guid, company_name, "
                                  "street_address, dependent_locality, city, state, zipcode, "
                                  "origin, country_code, date_modified);"
                                  "insert into autofill_profiles(guid) values('G');" +
                                      profile_details +
                                      "insert into autofill_profile_names(guid, gender) "
                                      "values('G','" +
                                      stored + "')");
    run.run({u"autofill_profiles"_s});
    QCOMPARE(run.rows(u"select gender from autofill_profiles"_s), QList<QStringList>({{shown}}));
}

void winos_accounts_test::a_guid_cannot_write_sql()
{
    extraction_case run(u"winOS"_s);
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(web_data, "create table autofill_profiles(guid, company_name, "
                                  "street_address, dependent_locality, city, state, zipcode, "
                                  "origin, country_code, date_modified);"
                                  "insert into autofill_profiles(guid) values('x\" or 1=1 --');" +
                                      profile_details +
                                      "insert into autofill_profile_emails values('other','a@a')");
    run.run({u"autofill_profiles"_s});
    QCOMPARE(run.rows(u"select guid, email from autofill_profiles"_s),
             QList<QStringList>({{u"x\" or 1=1 --"_s, u""_s}}));
    QCOMPARE(run.log.messages_of(u"opera_winos::extract_email_for_autofill_profiles"_s).size(), 2);
}

QTEST_MAIN(winos_accounts_test)
#include "accounts_test.moc"
