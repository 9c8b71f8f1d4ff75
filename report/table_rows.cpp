#include "report/table_rows.h"

#include "report/result_database.h"
#include "report/terminal.h"
#include "report/texts.h"

#include <algorithm>

using namespace Qt::StringLiterals;

void for_each_row(const std::vector<result_folder> &results, const surveyed_table &table,
                  const std::vector<surveyed_column> &columns,
                  const std::function<bool(size_t case_index, row_cursor &row)> &take)
{
    qint64 count = 0;
    for (size_t i = 0; i < results.size(); ++i) {
        result_database database(results[i]);
        const stored_table *const stored = database.table(table.name);
        if (stored == nullptr)
            continue;
        std::vector<int> places;
        places.reserve(columns.size());
        for (const surveyed_column &column : columns)
            places.push_back(stored->column(column.name));
        std::optional<row_cursor> rows = database.rows(*stored, places);
        while (rows && rows->next()) {
            if (++count % 1024 == 0)
                terminal::show_progress(u"writing rows of "_s + texts::to_qstring(table.name),
                                        count);
            if (terminal::interrupted() || !take(i, *rows))
                return;
        }
    }
}

std::vector<surveyed_column> filled_columns(const surveyed_table &table)
{
    std::vector<surveyed_column> filled;
    std::ranges::copy_if(table.columns, std::back_inserter(filled), &surveyed_column::filled);
    return filled;
}
