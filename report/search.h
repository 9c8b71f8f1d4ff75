#pragma once

#include "report/result_folder.h"

#include <QStringList>

#include <vector>

/// Prints every value of every table that holds one of the words, whatever its case, as it stands
/// or with its percent escapes decoded: as readable lines, or as CSV. Bytes are not searched.
void search_results(const std::vector<result_folder> &results, const QStringList &words,
                    bool as_csv);
