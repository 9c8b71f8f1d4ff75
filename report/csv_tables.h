#pragma once

#include "report/result_folder.h"
#include "report/survey.h"

/// Writes one file per table that has rows into the folder, TABLE.csv, with all columns and the
/// case in front; times are ISO 8601, UTC. Failures are told.
void write_csv_tables(const QString &folder, const std::vector<result_folder> &results,
                      const result_survey &found);
