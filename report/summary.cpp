#include "report/summary.h"

#include "report/run_record.h"
#include "report/terminal.h"
#include "report/texts.h"

namespace
{

void print_line(const std::string &text)
{
    std::string line;
    texts::append_visible(line, text);
    line += '\n';
    terminal::print_result(QByteArrayView(line.data(), static_cast<qsizetype>(line.size())));
}

} // namespace

void print_summary(const std::vector<result_folder> &results, const result_survey &found)
{
    for (size_t i = 0; i < results.size(); ++i) {
        print_line(results[i].name + "  (" + results[i].database.toStdString() + ')');
        for (const auto &[key, rows] : found.profiles) {
            if (key.case_index != i)
                continue;
            print_line("  " + key.account + "  " + key.profile);
            for (const surveyed_table &table : found.tables) {
                if (const auto place = rows.rows.find(table.name); place != rows.rows.end())
                    print_line("    " + table.name + "  " + std::to_string(place->second));
            }
        }
        const run_record record = read_run_record(results[i].home);
        for (const run_record::problem &problem : record.problems)
            print_line("  " + problem.outcome.toStdString() + ": " + problem.path.toStdString() +
                       "  " + problem.sentence.toStdString());
    }
}
