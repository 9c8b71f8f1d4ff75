#include "report/texts.h"

#include <QByteArrayView>

#include <cctype>
#include <cstdio>

namespace texts
{

char32_t take_character(std::string_view &rest)
{
    const auto byte = [&rest](size_t at) { return static_cast<unsigned char>(rest[at]); };
    const unsigned char first = byte(0);
    size_t length = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    char32_t character = first < 0x80 ? first : first & (0x7fU >> length);
    length = qMin(length, rest.size());
    for (size_t i = 1; i < length; ++i)
        character = character << 6 | (byte(i) & 0x3fU);
    rest.remove_prefix(length);
    return character;
}

bool is_deceptive(char32_t c)
{
    if (c < 0xa0)
        return (c < 0x20 && c != '\t') || c >= 0x7f;
    return c == 0xad || c == 0x61c || c == 0x180e || c == 0x200b || c == 0x200e || c == 0x200f ||
           (c >= 0x2028 && c <= 0x202e) || (c >= 0x2060 && c <= 0x206f) || c == 0xfeff ||
           (c >= 0xfff0 && c <= 0xfffb) || (c & 0xfffe) == 0xfffe || (c >= 0xfdd0 && c <= 0xfdef) ||
           (c >= 0xe0000 && c <= 0xe0fff);
}

std::string code_of(char32_t character)
{
    char code[16];
    std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(character));
    return code;
}

void append_visible(std::string &out, std::string_view text)
{
    while (!text.empty()) {
        size_t plain = 0; // most of it
        while (plain < text.size() && text[plain] >= ' ' && text[plain] < 0x7f)
            ++plain;
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty())
            break;
        const std::string_view before = text;
        const char32_t character = take_character(text);
        if (character == '\t' || is_deceptive(character))
            out += '<' + code_of(character) + '>';
        else
            out += before.substr(0, before.size() - text.size());
    }
}

std::string_view valid_utf8(std::string_view text, std::string &storage)
{
    if (QByteArrayView(text.data(), static_cast<qsizetype>(text.size())).isValidUtf8())
        return text;
    storage = to_qstring(text).toStdString();
    return storage;
}

std::string_view cut_to(std::string_view text, size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xc0) == 0x80)
        --bytes;
    return text.substr(0, bytes);
}

std::string_view cut_to_units(std::string_view text, size_t units)
{
    if (text.size() <= units) // no character has more units than bytes
        return text;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view before = rest;
        const size_t taken = take_character(rest) > 0xffff ? 2 : 1;
        if (taken > units)
            return text.substr(0, text.size() - before.size());
        units -= taken;
    }
    return text;
}

bool is_number(std::string_view text)
{
    if (text.empty() || text.find_first_not_of("+-.0123456789eE") != std::string_view::npos)
        return false;
    bool number = false;
    [[maybe_unused]] const double value =
        QByteArrayView(text.data(), static_cast<qsizetype>(text.size())).toDouble(&number);
    return number;
}

std::string site_of(std::string_view url)
{
    const size_t scheme = url.find("://");
    if (scheme == std::string_view::npos || scheme > 32)
        return {};
    std::string_view rest = url.substr(scheme + 3);
    rest = rest.substr(0, rest.find_first_of("/?#\\"));
    if (const size_t user = rest.rfind('@'); user != std::string_view::npos)
        rest.remove_prefix(user + 1);
    if (const size_t port = rest.rfind(':');
        port != std::string_view::npos && rest.find(']', port) == std::string_view::npos)
        rest = rest.substr(0, port);
    std::string site(cut_to(rest, 253));
    for (char &letter : site)
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    return site;
}

} // namespace texts
