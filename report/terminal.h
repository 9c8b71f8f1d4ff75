#pragma once

#include <QString>

/// What the program prints: errors, notes and progress on standard error, results on standard
/// output.
namespace terminal
{

/// One line on standard error, "opera_report: " and the text, without anything that could steer the
/// terminal; the same line once, since a result is read several times. Counts as a failure:
/// exit_status() is 1 from then on.
void print_error(const QString &text);
/// The same for what is worth knowing but no failure.
void print_note(const QString &text);
int exit_status();

/// UTF-8 text as it is on standard output. False once anything could not be written, which is told
/// once, unless the reader left of its own will.
bool print_result(QByteArrayView text);
bool flush_results();

/// Progress is shown only where standard error is a terminal.
void set_quiet(bool quiet);
/// Shows "what: number" in place of the line before, at most ten times a second.
void show_progress(const QString &what, qint64 number);

/// Ctrl-C and SIGTERM ask the work to stop; a second one ends the process.
void watch_interruption();
bool interrupted();

} // namespace terminal
