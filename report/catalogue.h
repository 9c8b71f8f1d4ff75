#pragma once

#include "report/instants.h"

#include <span>
#include <string_view>

/// What reports know of the result tables: which columns an examiner reads first, which hold times,
/// and what happened at these times.
namespace catalogue
{

/// How an event stands when another tells of the same.
enum class standing : unsigned char {
    own,     ///< always
    derived, ///< once, and only where nothing else tells of it
};

/// A column that holds times.
struct time_column {
    std::string_view column;
    instants::stored_form form;
    std::string_view description; ///< what happened, as `timestamp_desc`
    /// One sentence. {name} is the column's value, {a|b} the first that has one; what stands in [ ]
    /// is left out when a column in it is empty.
    std::string_view message;
    bool is_activity = false; ///< somebody used the browser then
    standing stands = standing::own;
    char same = 0; ///< times of a row with the same letter tell of the same thing
};

struct known_table {
    std::string_view name;
    std::string_view label;
    std::span<const std::string_view> first_columns; ///< in the order of reading
    std::span<const time_column> times;
    std::string_view url = {}; ///< columns; {a|b} is not understood here
    std::string_view title = {};
    std::string_view detail = {}; ///< as a message
    /// Columns that tell one thing from another, so that rows of two readers can be matched.
    std::span<const std::string_view> identity = {};
    /// NULL in rows of the reader for older files, on macOS and on Windows.
    std::string_view older_macos = {};
    std::string_view older_windows = {};
};

/// All that are known, in the order of a report.
std::span<const known_table> tables();
/// nullptr for a table that is not known.
const known_table *find(std::string_view name);
/// The column of the table that holds times under this name, nullptr if it holds none.
const time_column *find_time(const known_table *table, std::string_view column);
/// Columns that every table has and that say where a row comes from.
bool is_origin_column(std::string_view column);

} // namespace catalogue
