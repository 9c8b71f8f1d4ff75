#include "report/cells.h"

#include "report/texts.h"

#include <algorithm>
#include <cstdio>

namespace
{

/// Whether the bytes of a text need a look at its characters: anything but ASCII that JSON takes as
/// it is. Evidence is mostly such ASCII.
bool is_plain_json(unsigned char byte)
{
    return byte >= 0x20 && byte < 0x7f && byte != '"' && byte != '\\';
}

/// Whether a cell with the byte has to stand in quotes.
bool needs_quotes(char byte)
{
    return byte == '"' || byte == ',' || byte == '\r' || byte == '\n' || byte == '\0';
}

void append_escape(std::string &out, char32_t unit)
{
    char escape[16];
    std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(unit));
    out += escape;
}

} // namespace

namespace cells
{

void append_csv(std::string &out, std::string_view text)
{
    const bool formula = !text.empty() &&
                         std::string_view("=+-@\t\r\n").find(text[0]) != std::string_view::npos &&
                         !texts::is_number(text);
    if (!formula && std::ranges::none_of(text, needs_quotes)) {
        out += text;
        return;
    }
    out += formula ? "\"'" : "\"";
    for (const char letter : text) {
        if (letter == '"')
            out += '"';
        if (letter != '\0') // ends the text for many readers
            out += letter;
    }
    out += '"';
}

void append_json(std::string &out, std::string_view text)
{
    out += '"';
    while (!text.empty()) {
        size_t plain = 0;
        while (plain < text.size() && is_plain_json(static_cast<unsigned char>(text[plain])))
            ++plain;
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty())
            break;
        const std::string_view before = text;
        char32_t character = texts::take_character(text);
        if (character == '"' || character == '\\') {
            out += '\\';
            out += static_cast<char>(character);
        } else if (character < 0x20 || texts::is_deceptive(character)) {
            if (character > 0xffff) {
                append_escape(out, 0xd7c0 + (character >> 10));
                character = 0xdc00 + (character & 0x3ff);
            }
            append_escape(out, character);
        } else {
            out += before.substr(0, before.size() - text.size());
        }
    }
    out += '"';
}

} // namespace cells
