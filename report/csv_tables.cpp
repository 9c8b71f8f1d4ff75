#include "report/csv_tables.h"

#include "report/cells.h"
#include "report/output_file.h"
#include "report/result_database.h"
#include "report/table_rows.h"
#include "report/terminal.h"
#include "report/texts.h"

#include <QDir>

using namespace Qt::StringLiterals;

namespace
{

/// The table's name where it is a plain word, since names of unknown tables may lead anywhere.
QString file_name(const surveyed_table &table, size_t number)
{
    const bool plain =
        table.name.size() < 100 &&
        table.name.find_first_not_of(
            "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_") == std::string::npos;
    return plain ? texts::to_qstring(table.name) + u".csv"
                 : QString(u"table_"_s + QString::number(number) + u".csv");
}

void write_table(const QString &path, const std::vector<result_folder> &results,
                 const surveyed_table &table)
{
    output_file file(path);
    std::string line = "case";
    for (const surveyed_column &column : table.columns) {
        line += ',';
        cells::append_csv(line, column.name);
    }
    file.write(line + "\r\n");
    std::string time;
    for_each_row(results, table, table.columns, [&](size_t case_index, row_cursor &row) {
        line.clear();
        cells::append_csv(line, results[case_index].name);
        for (size_t i = 0; i < table.columns.size(); ++i) {
            line += ',';
            const catalogue::time_column *const form = table.columns[i].time;
            const std::optional<qint64> number = form ? row.whole_number(i) : std::nullopt;
            if (const auto at = number ? instants::of(*number, form->form) : std::nullopt) {
                time.clear();
                instants::append_iso(time, *at);
                line += time;
            } else {
                cells::append_csv(line, row.text(i));
            }
        }
        return file.write(line += "\r\n");
    });
    file.commit();
}

} // namespace

void write_csv_tables(const QString &folder, const std::vector<result_folder> &results,
                      const result_survey &found)
{
    if (!QDir().mkpath(folder)) {
        terminal::print_error(u"cannot make the folder " + folder);
        return;
    }
    for (size_t i = 0; i < found.tables.size() && !terminal::interrupted(); ++i) {
        if (found.tables[i].rows > 0)
            write_table(folder + u'/' + file_name(found.tables[i], i), results, found.tables[i]);
    }
}
