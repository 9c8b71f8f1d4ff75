#pragma once

#include "report/activity.h"
#include "report/instants.h"
#include "report/result_folder.h"
#include "report/survey.h"

/// What a page is made of.
struct page_contents {
    const std::vector<result_folder> &results;
    const result_survey &found;
    const activity &counted;
    const instants::zone &zone;
    qint64 most_rows; ///< of one table, over all results
};

/// Writes the report as one page that opens offline: it loads nothing, and runs nothing but its own
/// script. Failures are told.
void write_page(const QString &path, const page_contents &contents);
