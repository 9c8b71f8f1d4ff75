#pragma once

#include "report/result_folder.h"
#include "report/survey.h"

#include <functional>
#include <vector>

class row_cursor;

/// Gives every row of a table, result by result, with the columns in the survey's order. `take`
/// gets the place of the result and the row, and says whether it wants more.
void for_each_row(const std::vector<result_folder> &results, const surveyed_table &table,
                  const std::vector<surveyed_column> &columns,
                  const std::function<bool(size_t case_index, row_cursor &row)> &take);

/// The columns of the table that have values.
std::vector<surveyed_column> filled_columns(const surveyed_table &table);
