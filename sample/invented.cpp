#include "sample/invented.h"

#include <array>
#include <cctype>

namespace sample
{

namespace
{

struct site {
    const char *host;
    const char *name;
};

constexpr std::array sites = {
    site{"news.harbour-gazette.example", "Harbour Gazette"},
    site{"shop.tealkettle.test", "Teal Kettle"},
    site{"forum.birdwatch.example", "Vogelfreunde Süd"},
    site{"video.lanternfilm.test", "Lantern Film"},
    site{"wiki.oldmaps.example", "Vieilles cartes"},
    site{"mail.example.org", "Example Mail"},
    site{"tickets.northferry.example", "Nordfähre"},
    site{"recipes.copperpan.test", "Copper Pan"},
    site{"weather.cloudledge.example", "Cloud Ledge"},
    site{"photos.silverbeach.test", "Silver Beach 銀の浜"},
    site{"docs.example.org", "Example Documents"},
    site{"music.reedandbow.example", "Reed & Bow"},
};

constexpr std::array words = {
    "amber",  "basket", "candle", "dune",   "ember",  "ferry",  "garden",  "harbour",
    "island", "jacket", "kettle", "ladder", "meadow", "north",  "orchard", "paper",
    "quartz", "river",  "signal", "timber", "umbra",  "valley", "willow",  "yellow",
};

template <typename items> const auto &one_of(const items &from, number_source &numbers)
{
    return from[static_cast<size_t>(numbers.below(static_cast<qint64>(from.size())))];
}

std::string capitalized(std::string word)
{
    word[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(word[0])));
    return word;
}

} // namespace

quint64 number_source::next()
{
    // Weyl sequence with two mixing rounds.
    state_ += 0x9e3779b97f4a7c15U;
    quint64 mixed = state_;
    mixed = (mixed ^ (mixed >> 30U)) * 0xbf58476d1ce4e5b9U;
    mixed = (mixed ^ (mixed >> 27U)) * 0x94d049bb133111ebU;
    return mixed ^ (mixed >> 31U);
}

quint64 number_of(std::string_view text, quint64 seed)
{
    number_source mixer(seed);
    quint64 result = mixer.next();
    for (const char character : text)
        result = number_source(result ^ static_cast<unsigned char>(character)).next();
    return result;
}

invented_page make_page(number_source &numbers, qint64 number)
{
    const site &where = one_of(sites, numbers);
    const std::string first = make_word(numbers);
    const std::string second = make_word(numbers);
    const std::string count = std::to_string(number);

    invented_page page;
    page.host = where.host;
    page.url = "https://" + page.host + "/" + first + "/" + second + "-" + count + ".html";
    page.title = capitalized(first) + " " + second + " " + count + " – " + where.name;
    return page;
}

std::string make_word(number_source &numbers)
{
    return one_of(words, numbers);
}

std::string make_search_term(number_source &numbers)
{
    std::string term = make_word(numbers);
    term += " " + make_word(numbers);
    if (numbers.below(2) == 0)
        term += " " + make_word(numbers);
    return term;
}

std::string percent_encoded(std::string_view text)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80 && (std::isalnum(byte) != 0 ||
                            std::string_view("-._/").find(character) != std::string_view::npos)) {
            encoded += character;
        } else {
            encoded += '%';
            encoded += digits[byte >> 4U];
            encoded += digits[byte & 0x0fU];
        }
    }
    return encoded;
}

std::string make_extension_id(number_source &numbers)
{
    std::string id;
    for (int letter = 0; letter < 32; ++letter)
        id += static_cast<char>('a' + numbers.below(16));
    return id;
}

std::string make_guid(number_source &numbers)
{
    constexpr char digits[] = "0123456789ABCDEF";
    std::string guid = "00000000-0000-4000-8000-000000000000";
    for (size_t place = 0; place < guid.size(); ++place) {
        if (guid[place] == '0')
            guid[place] = digits[numbers.below(16)];
    }
    return guid;
}

} // namespace sample
