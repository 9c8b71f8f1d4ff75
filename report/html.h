#pragma once

#include <string>
#include <string_view>

/// Text on its way into the page. Whatever it holds, it stays text.
namespace html
{

/// Appends the text escaped, with what is deceptive shown as its code; line ends and tabs stay.
/// Behind `longest` characters it is cut, with a mark that says how long it was.
void append_text(std::string &out, std::string_view text, size_t longest = 1000);
/// The text for an attribute in double quotes.
void append_attribute(std::string &out, std::string_view text);
/// Appends a number with separators for thousands: 1,234,567.
void append_number(std::string &out, long long number);

} // namespace html
