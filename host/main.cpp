#include "host/cancel_watch.h"
#include "host/decrypt_log.h"
#include "host/evidence_source.h"
#include "host/extraction_session.h"
#include "host/options.h"
#include "host/plugin_loader.h"
#include "host/result_location.h"
#include "host/terminal.h"
#include "plugin/opera.h"

#include <QApplication>

#include <csignal>

using namespace Qt::StringLiterals;

namespace
{

enum exit_status { done = 0, cannot_run = 1, wrong_usage = 2, no_profile = 3, interrupted = 130 };

/// The exit status once everything printed has reached standard output.
int finished(int status)
{
    return !terminal::flush_results() && status == done ? int{cannot_run} : status;
}

int fail_with(const QString &problem)
{
    terminal::print_error(problem);
    return cannot_run;
}

int extract(host_options options, cancel_watch &cancel)
{
    QString problem = source_problem(options.source);
    if (problem.isEmpty())
        problem = evidence_conflict(options);
    if (!problem.isEmpty())
        return fail_with(problem);

    const loaded_plugin plugin = load_plugin(options.plugin_file);
    problem = plugin.controller ? make_writable(options) : plugin.problem;
    if (!problem.isEmpty())
        return fail_with(problem);

    if (options.accounts.isEmpty())
        options.accounts = accounts_of_source(options.source);
    for (const QString &note : notes_on_accounts(options.source, options.accounts)) {
        if (!options.quiet)
            terminal::print_error(u"note: " + note);
    }

    const extraction_outcome outcome = run_extraction(*plugin.controller, options, cancel);
    if (!outcome.problem.isEmpty())
        return fail_with(outcome.problem);
    terminal::print_result(summary_text(outcome, options));
    if (!outcome.loss.isEmpty())
        return fail_with(outcome.loss);
    // What comes later, comes to a complete run that is recorded as such.
    if (outcome.cancelled)
        return interrupted;
    if (!outcome.no_profile.isEmpty()) {
        terminal::print_error(u"no profile was found; " + outcome.no_profile);
        return no_profile;
    }
    return done;
}

int run(const host_options &options, char **arguments)
{
    cancel_watch cancel;
    // The controller is a widget, though never shown: no display is needed.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt would take some of our options for its own: it gets none.
    int argument_count = 1;
    const QApplication application(argument_count, arguments);
    terminal::show_messages(options.verbose);

    // While Ctrl-C is still watched: it must not cut off the summary.
    return finished(extract(options, cancel));
}

command_line read_arguments(int argument_count, char **arguments)
{
    const QCoreApplication application(argument_count, arguments);
    return read_command_line(QCoreApplication::arguments());
}

int act(const command_line &command, char **arguments)
{
    switch (command.what) {
    case command_line::action::show_help:
        terminal::print_result(command.text);
        return finished(done);
    case command_line::action::show_version:
        terminal::print_result(u"opera_extract " + QStringLiteral(OPERA_EXTRACT_VERSION) + u'\n');
        return finished(done);
    case command_line::action::refuse:
        terminal::print_error(command.text + u"; opera_extract --help shows the usage");
        return wrong_usage;
    case command_line::action::decrypt_log:
        return finished(decrypt_log(command.text));
    case command_line::action::extract:
        break;
    }
    return run(command.options, arguments);
}

} // namespace

int main(int argument_count, char **arguments)
{
#ifdef SIGPIPE
    // A reader that went away is noticed as a failed write.
    std::signal(SIGPIPE, SIG_IGN);
#endif
#ifdef SIGXFSZ
    // So is a file that may not grow: the rows before it stay, and the temporary copies go.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    terminal::install_message_handler();

    return act(read_arguments(argument_count, arguments), arguments);
}
