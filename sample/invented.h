#pragma once

#include <QtGlobal>

#include <string>
#include <string_view>

namespace sample
{

/// Numbers that are the same for the same start on every platform. Draw one in an expression at
/// most, but for lists in braces: compilers differ in the order of evaluation.
class number_source
{
public:
    explicit number_source(quint64 start) : state_(start) {}

    quint64 next();
    /// A number from 0 to `limit` - 1.
    qint64 below(qint64 limit) { return static_cast<qint64>(next() % static_cast<quint64>(limit)); }

private:
    quint64 state_;
};

/// A start for number_source that depends on every character of the text.
quint64 number_of(std::string_view text, quint64 seed);

struct invented_page {
    std::string host;
    std::string url;
    std::string title;
};

/// A page of an invented site; `number` keeps the pages apart. All hosts lie in domains that are
/// reserved for examples and tests.
invented_page make_page(number_source &numbers, qint64 number);

/// A word in lower case.
std::string make_word(number_source &numbers);

/// Two or three words as somebody might type them into a search field.
std::string make_search_term(number_source &numbers);

/// The text with every byte but letters, digits and "-._/" written as "%XX".
std::string percent_encoded(std::string_view text);

/// Thirty-two letters from "a" to "p", as the browser names its extensions.
std::string make_extension_id(number_source &numbers);

/// Thirty-two hexadecimal digits in five groups.
std::string make_guid(number_source &numbers);

} // namespace sample
