#include "report/html.h"

#include "report/texts.h"

namespace html
{

namespace
{

void append_character(std::string &out, char32_t character, std::string_view bytes)
{
    switch (character) {
    case '&':
        out += "&amp;";
        break;
    case '<':
        out += "&lt;";
        break;
    case '>':
        out += "&gt;";
        break;
    case '"':
        out += "&quot;";
        break;
    case '\'':
        out += "&#39;";
        break;
    default:
        out += bytes;
    }
}

} // namespace

void append_text(std::string &out, std::string_view text, size_t longest)
{
    const std::string_view whole = text;
    for (size_t count = 0; !text.empty(); ++count) {
        if (count == longest) {
            out += "<span class=\"cut\"> … cut, ";
            append_number(out, static_cast<long long>(whole.size()));
            out += " bytes</span>";
            return;
        }
        const std::string_view before = text;
        const char32_t character = texts::take_character(text);
        if (character != '\n' && texts::is_deceptive(character))
            out += "<span class=\"c\">" + texts::code_of(character) + "</span>";
        else
            append_character(out, character, before.substr(0, before.size() - text.size()));
    }
}

void append_attribute(std::string &out, std::string_view text)
{
    while (!text.empty()) {
        const std::string_view before = text;
        const char32_t character = texts::take_character(text);
        if (texts::is_deceptive(character))
            out += texts::code_of(character);
        else
            append_character(out, character, before.substr(0, before.size() - text.size()));
    }
}

void append_number(std::string &out, long long number)
{
    std::string digits = std::to_string(number);
    for (size_t place = digits.size(); place > 3 + (number < 0 ? 1U : 0U);)
        digits.insert(place -= 3, ",");
    out += digits;
}

} // namespace html
