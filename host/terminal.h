#pragma once

#include <QString>

/// What the host prints: errors and the status line on standard error, results on standard output.
namespace terminal
{

/// The text with control characters, line separators and marks of writing direction spelled out, so
/// that text from an evidence source stays on one line, in its order, and cannot steer the
/// terminal.
QString one_line(const QString &text);
/// As much of the text as fits the columns; "…" ends what is cut.
QString cut(const QString &text, int columns);

/// One line on standard error, "opera_extract: " and the text.
void print_error(const QString &text);
/// The text as it is, on standard output, in UTF-8. False when it could not be written.
bool print_result(const QString &text);
/// Flushes standard output. False when anything printed there was lost; says so, unless the reader
/// left of its own will.
bool flush_results();

/// Sends Qt's messages through the host: debug, information and warning lines are printed plainly
/// on standard error once messages are shown, critical ones always.
void install_message_handler();
void show_messages(bool shown);

/// Shows the line in place of the one shown before; needs a standard error that is a terminal.
void show_status(const QString &line);
/// Takes the status line off; done by everything else that is printed on standard error.
void clear_status();
bool is_interactive();

} // namespace terminal
