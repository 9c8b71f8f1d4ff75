#include "report/activity.h"
#include "report/csv_tables.h"
#include "report/options.h"
#include "report/page.h"
#include "report/search.h"
#include "report/spreadsheet.h"
#include "report/summary.h"
#include "report/survey.h"
#include "report/terminal.h"
#include "report/timeline.h"
#include "report/timeline_file.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;

namespace
{

std::optional<timeline_file> open_timeline(const report_options &options,
                                           const std::vector<result_folder> &results,
                                           const instants::zone &zone)
{
    if (options.timeline.isEmpty())
        return std::nullopt;
    return std::optional<timeline_file>(std::in_place, options.timeline,
                                        options.timeline.endsWith(".csv"_L1)
                                            ? timeline_file::format::csv
                                            : timeline_file::format::jsonl,
                                        results, zone);
}

/// Reads all events once, for the timeline and for the page.
void write_by_time(const report_options &options, const std::vector<result_folder> &results,
                   const instants::zone &zone, const result_survey &found)
{
    constexpr qint64 most_latest = 2000;
    auto timeline = open_timeline(options, results, zone);
    activity counted(zone, static_cast<size_t>(qMin(options.html_rows, most_latest)));
    const timeline_counts counts = read_timeline(results, [&](const event &event) {
        if (!options.html.isEmpty())
            counted.add(event);
        return !timeline || timeline->write(event);
    });
    if (counts.impossible_times > 0)
        terminal::print_note(QString::number(counts.impossible_times) +
                             u" times lie outside the years 1 to 9999 and are no events");
    // One that could not be written tells so when it is committed.
    if (timeline && (counts.complete || counts.refused) && timeline->commit())
        terminal::print_note(options.timeline + u": " + QString::number(counts.events) +
                             u" events, " + QString::number(counts.repeated) +
                             u" repeated ones left out");
    if (!options.html.isEmpty())
        write_page(options.html, {results, found, counted, zone, options.html_rows});
}

bool is_database(const QString &path, const std::vector<result_folder> &results)
{
    const QString canonical = QFileInfo(path).canonicalFilePath();
    return !canonical.isEmpty() &&
           std::ranges::any_of(results, [&canonical](const result_folder &result) {
               return QFileInfo(result.database).canonicalFilePath() == canonical;
           });
}

int report(const report_options &options)
{
    terminal::set_quiet(options.quiet);
    terminal::watch_interruption();
    const std::vector<result_folder> results = find_results(options.results);
    const instants::zone zone(options.zone);
    for (const QString &path : {options.html, options.xlsx, options.timeline}) {
        if (is_database(path, results)) {
            terminal::print_error(path + u" is a result database and stays as it is");
            return terminal::exit_status();
        }
    }

    const bool by_time = !options.html.isEmpty() || !options.timeline.isEmpty();
    const bool by_table = !options.xlsx.isEmpty() || !options.csv_folder.isEmpty();
    const bool only_summary = !by_time && !by_table && options.words.isEmpty();
    result_survey found;
    if (by_table || !options.html.isEmpty() || only_summary)
        found = survey(results);
    if (only_summary)
        print_summary(results, found);
    if (by_time)
        write_by_time(options, results, zone, found);
    if (!options.xlsx.isEmpty() && !terminal::interrupted())
        write_spreadsheet(options.xlsx, results, found, zone);
    if (!options.csv_folder.isEmpty() && !terminal::interrupted())
        write_csv_tables(options.csv_folder, results, found);
    if (!options.words.isEmpty() && !terminal::interrupted())
        search_results(results, options.words, options.search_as_csv);
    terminal::flush_results();
    return terminal::interrupted() ? 130 : terminal::exit_status();
}

int act(const command_line &command)
{
    switch (command.what) {
    case command_line::action::show_help:
        terminal::print_result(command.text.toUtf8());
        break;
    case command_line::action::show_version:
        terminal::print_result("opera_report " OPERA_REPORT_VERSION "\n");
        break;
    case command_line::action::refuse:
        terminal::print_error(command.text + u"; opera_report --help shows the usage");
        return 2;
    case command_line::action::report:
        return report(command.options);
    }
    terminal::flush_results();
    return terminal::exit_status();
}

} // namespace

int main(int argument_count, char **arguments)
{
#ifdef SIGPIPE
    // A reader that went away is noticed as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
#endif
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    const QCoreApplication application(argument_count, arguments);
    return act(read_command_line(QCoreApplication::arguments()));
}
