#pragma once

#include <string>
#include <string_view>

/// How values are written into files that other programs read.
namespace cells
{

/// Appends one cell of a CSV file (RFC 4180). A text that a spreadsheet would take for a formula,
/// one that begins with = + - @, a tab or a line end and is no number, gets an apostrophe in front.
void append_csv(std::string &out, std::string_view text);

/// Appends a JSON string with its quotes. What is deceptive is written as an escape.
void append_json(std::string &out, std::string_view text);

} // namespace cells
