#pragma once

#include "report/instants.h"
#include "report/result_folder.h"
#include "report/survey.h"

/// Writes a workbook with one sheet per table that has rows, a further one where a sheet is full.
/// Times are dates, in UTC and, when it is another, in the zone. Failures are told.
void write_spreadsheet(const QString &path, const std::vector<result_folder> &results,
                       const result_survey &found, const instants::zone &zone);
