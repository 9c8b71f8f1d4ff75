#pragma once

#include <QString>

#include <string>
#include <string_view>

/// Texts of the evidence, in UTF-8, on their way into files, pages and terminals.
namespace texts
{

/// The next character of valid UTF-8, taken off the front of `rest`, which is not empty.
char32_t take_character(std::string_view &rest);

/// Whether a reader would not see the character, or would see the text around it in another order:
/// control characters but tab, bidirectional controls, invisible separators, noncharacters, tags.
bool is_deceptive(char32_t character);

/// "U+202E" for U+202E.
std::string code_of(char32_t character);

/// Appends the text on one line: what is deceptive, line ends and tabs included, as "<U+202E>".
void append_visible(std::string &out, std::string_view text);

/// The text with every invalid byte replaced by U+FFFD; `text` itself when it is valid. What is
/// made lies in `storage`.
std::string_view valid_utf8(std::string_view text, std::string &storage);

/// The longest beginning of at most `bytes` bytes that ends with a whole character.
std::string_view cut_to(std::string_view text, size_t bytes);
/// The longest beginning of at most `units` UTF-16 units.
std::string_view cut_to_units(std::string_view text, size_t units);

/// Whether the text is a decimal number as SQLite would take it: sign, digits, point, exponent.
bool is_number(std::string_view text);

/// The host of an address, in lower case; empty for what is none.
std::string site_of(std::string_view url);

inline std::string_view view_of(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}
inline std::string to_string(const QString &text)
{
    return text.toStdString();
}
inline QString to_qstring(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace texts
