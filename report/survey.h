#pragma once

#include "report/catalogue.h"
#include "report/result_folder.h"

#include <map>
#include <string>
#include <tuple>
#include <vector>

/// A column of a table over all results.
struct surveyed_column {
    std::string name;
    bool filled = false; ///< some row has a value that says something
    const catalogue::time_column *time = nullptr;
};

/// A table over all results.
struct surveyed_table {
    std::string name;
    std::string label;
    const catalogue::known_table *known = nullptr;
    std::vector<surveyed_column>
        columns; ///< whose row, what is read first, the rest, where it is from
    qint64 rows = 0;
};

/// Whose rows they are.
struct profile_key {
    size_t case_index;
    std::string account;
    std::string profile;

    bool operator<(const profile_key &other) const
    {
        return std::tie(case_index, account, profile) <
               std::tie(other.case_index, other.account, other.profile);
    }
};

struct profile_rows {
    std::map<std::string, qint64> rows; ///< by table
};

struct result_survey {
    std::vector<surveyed_table> tables; ///< in the order of the catalogue, unknown ones last
    std::map<profile_key, profile_rows> profiles;
    bool profiles_complete = true; ///< false where there were too many to tell apart

    const surveyed_table *table(std::string_view name) const;
};

/// Reads every row of every result once.
result_survey survey(const std::vector<result_folder> &results);
