#include "sample/web_data_sample.h"

#include <string>
#include <vector>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

struct address {
    std::string guid;
    std::string first_name;
    std::string middle_name;
    std::string last_name;
    std::string full_name;
    std::string born;
    std::string gender;
    std::vector<std::string> emails;
    std::vector<std::string> phones;
    std::string company;
    std::string street; ///< in the older generation: first line
    std::string place;  ///< part of the town; in the older generation: second line
    std::string city;
    std::string state;
    std::string zip;
    std::string country;
    std::string country_code;
    std::string language;
    qint64 modified; ///< Unix seconds, as `used`
    qint64 use_count;
    qint64 used;
};

const address special_addresses[] = {
    {"A1B2C3D4-0001-4000-8000-00000000000A",
     "Mara",
     "Elin",
     "Lindqvist",
     "Mara Elin Lindqvist",
     "1984-02-29",
     "f",
     {"mara@lindqvist.example", "m.lindqvist@example.org"},
     {"+99 555 0101", "+99 555 0102"},
     "Harbour Gazette",
     "Quay Road 7\nThird floor",
     "Old Town",
     "Nordhaven",
     "NH",
     "01234",
     "Exampleland",
     "XA",
     "sv",
     days_ago(70),
     12,
     days_ago(2)},
    {"A1B2C3D4-0002-4000-8000-00000000000B",
     "Jürgen",
     "",
     "Weiß",
     "Jürgen Weiß",
     "1971-10-03",
     "M",
     {"jürgen@weiss.example"},
     {"+99 555 0199"},
     "",
     "Große Gasse 12½",
     "",
     "Süderhafen",
     "",
     "D-99999",
     "Exampleland",
     "XA",
     "de",
     days_ago(65),
     1,
     days_ago(64)},
    // A person of whom only the name is known.
    {"A1B2C3D4-0003-4000-8000-00000000000C",
     "Ko",
     "",
     "",
     "",
     "",
     "X",
     {},
     {},
     "",
     "",
     "",
     "",
     "",
     "",
     "",
     "",
     "",
     0,
     0,
     0},
};

address ordinary_address(number_source &numbers, qint64 number)
{
    const std::string first = make_word(numbers);
    const std::string last = make_word(numbers);
    const qint64 modified = days_ago(60) + numbers.below(30 * day);
    return {
        .guid = make_guid(numbers),
        .first_name = first,
        .middle_name = "",
        .last_name = last,
        .full_name = first + " " + last,
        .born = "1990-01-01",
        .gender = number % 2 == 0 ? "F" : "m",
        .emails = {first + "." + last + "@example.org"},
        .phones = {"+99 555 0" + std::to_string(200 + number % 700)},
        .company = "",
        .street = make_word(numbers) + " street " + std::to_string(number + 1),
        .place = "",
        .city = "Nordhaven",
        .state = "NH",
        .zip = std::to_string(10000 + numbers.below(90000)),
        .country = "Exampleland",
        .country_code = "XA",
        .language = "en",
        .modified = modified,
        .use_count = numbers.below(20),
        .used = modified + numbers.below(10 * day),
    };
}

/// The tables of the current and the older generation.
class address_writer
{
public:
    address_writer(database &web_data, browser_generation generation)
        : older_(generation == browser_generation::older),
          profiles_(web_data, "autofill_profiles",
                    older_ ? "guid,label,company_name,address_line_1,address_line_2,city,state,"
                             "zipcode,country,country_code,date_modified"
                           : "guid,company_name,street_address,dependent_locality,city,state,"
                             "zipcode,sorting_code,country_code,date_modified,origin,"
                             "language_code,use_count,use_date"),
          names_(web_data, "autofill_profile_names",
                 older_ ? "guid,first_name,middle_name,last_name,date_of_birth,gender"
                        : "guid,first_name,middle_name,last_name,full_name"),
          emails_(web_data, "autofill_profile_emails", "guid,email"),
          phones_(web_data, "autofill_profile_phones", "guid,number")
    {
    }

    void add(const address &who)
    {
        if (older_) {
            profiles_.add(who.guid, "", who.company, who.street, who.place, who.city, who.state,
                          who.zip, who.country, who.country_code, who.modified);
            names_.add(who.guid, who.first_name, who.middle_name, who.last_name, who.born,
                       who.gender);
        } else {
            profiles_.add(who.guid, who.company, who.street, who.place, who.city, who.state,
                          who.zip, "", who.country_code, who.modified,
                          "https://shop.tealkettle.test", who.language, who.use_count, who.used);
            names_.add(who.guid, who.first_name, who.middle_name, who.last_name, who.full_name);
        }
        for (const std::string &email : who.emails)
            emails_.add(who.guid, email);
        for (const std::string &phone : who.phones)
            phones_.add(who.guid, phone);
    }

private:
    bool older_;
    insertion profiles_;
    insertion names_;
    insertion emails_;
    insertion phones_;
};

/// The newest generation keeps every piece of an address as a row of its own.
class token_writer
{
public:
    explicit token_writer(database &web_data)
        : addresses_(web_data, "addresses", "guid,use_count,use_date,date_modified,language_code"),
          tokens_(web_data, "address_type_tokens", "guid,type,value,verification_status")
    {
    }

    void add(const address &who)
    {
        constexpr int name = 7;
        constexpr int email = 9;
        constexpr int phone = 14;
        constexpr int city = 33;
        addresses_.add(who.guid, who.use_count, who.used, who.modified, who.language);
        tokens_.add(who.guid, name, who.full_name, 3);
        tokens_.add(who.guid, city, who.city, 3);
        if (!who.emails.empty())
            tokens_.add(who.guid, email, who.emails.front(), 0);
        if (!who.phones.empty())
            tokens_.add(who.guid, phone, who.phones.front(), 0);
    }

private:
    insertion addresses_;
    insertion tokens_;
};

template <typename writer_type> void add_all(writer_type writer, const profile &account)
{
    for (const address &who : special_addresses)
        writer.add(who);
    number_source numbers = account.numbers("addresses");
    for (qint64 row = 0; row < account.rows(address_rows); ++row)
        writer.add(ordinary_address(numbers, row));
}

} // namespace

void make_address_tables(database &web_data, browser_generation generation)
{
    switch (generation) {
    case browser_generation::current:
        web_data.run_all({
            "create table autofill_profiles(guid VARCHAR PRIMARY KEY,company_name VARCHAR,"
            "street_address VARCHAR,dependent_locality VARCHAR,city VARCHAR,state VARCHAR,"
            "zipcode VARCHAR,sorting_code VARCHAR,country_code VARCHAR,"
            "date_modified INTEGER NOT NULL DEFAULT 0,origin VARCHAR DEFAULT '',"
            "language_code VARCHAR,use_count INTEGER NOT NULL DEFAULT 0,"
            "use_date INTEGER NOT NULL DEFAULT 0)",
            "create table autofill_profile_names(guid VARCHAR,first_name VARCHAR,"
            "middle_name VARCHAR,last_name VARCHAR,full_name VARCHAR)",
        });
        break;
    case browser_generation::older:
        web_data.run_all({
            "create table autofill_profiles(guid VARCHAR PRIMARY KEY,label VARCHAR,"
            "company_name VARCHAR,address_line_1 VARCHAR,address_line_2 VARCHAR,city VARCHAR,"
            "state VARCHAR,zipcode VARCHAR,country VARCHAR,country_code VARCHAR,"
            "date_modified INTEGER NOT NULL DEFAULT 0)",
            "create table autofill_profile_names(guid VARCHAR,first_name VARCHAR,"
            "middle_name VARCHAR,last_name VARCHAR,date_of_birth VARCHAR,gender VARCHAR)",
        });
        break;
    case browser_generation::newest:
        web_data.run_all({
            "create table addresses(guid VARCHAR PRIMARY KEY,"
            "use_count INTEGER NOT NULL DEFAULT 0,use_date INTEGER NOT NULL DEFAULT 0,"
            "date_modified INTEGER NOT NULL DEFAULT 0,language_code VARCHAR)",
            "create table address_type_tokens(guid VARCHAR,type INTEGER,value VARCHAR,"
            "verification_status INTEGER DEFAULT 0,PRIMARY KEY (guid,type))",
        });
        return;
    }
    web_data.run_all({"create table autofill_profile_emails(guid VARCHAR,email VARCHAR)",
                      "create table autofill_profile_phones(guid VARCHAR,number VARCHAR)"});
}

void write_addresses(database &web_data, const profile &account)
{
    if (account.generation == browser_generation::newest)
        add_all(token_writer(web_data), account);
    else
        add_all(address_writer(web_data, account.generation), account);
}

} // namespace sample
