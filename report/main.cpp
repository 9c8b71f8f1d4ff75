#include "report/options.h"
#include "report/terminal.h"
#include "report/timeline.h"
#include "report/timeline_file.h"

#include <QCoreApplication>

#include <csignal>
#include <optional>

using namespace Qt::StringLiterals;

namespace
{

int report(const report_options &options)
{
    terminal::set_quiet(options.quiet);
    terminal::watch_interruption();
    const std::vector<result_folder> results = find_results(options.results);
    const instants::zone zone(options.zone);
    std::optional<timeline_file> timeline;
    if (!options.timeline.isEmpty()) {
        timeline.emplace(options.timeline,
                         options.timeline.endsWith(".csv"_L1) ? timeline_file::format::csv
                                                              : timeline_file::format::jsonl,
                         results, zone);
        const auto counts =
            read_timeline(results, [&](const event &event) { return timeline->write(event); });
        timeline->commit();
        terminal::print_note(QString::number(counts.events));
    }
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
