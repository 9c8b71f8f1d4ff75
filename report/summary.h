#pragma once

#include "report/result_folder.h"
#include "report/survey.h"

/// Prints what the results hold: rows by table, account and profile, and what went wrong.
void print_summary(const std::vector<result_folder> &results, const result_survey &found);
