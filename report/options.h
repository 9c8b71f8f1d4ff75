#pragma once

#include <QStringList>

/// What one run is asked to do.
struct report_options {
    QStringList results; ///< as given
    QString html;        ///< files to write; empty for none
    QString xlsx;
    QString csv_folder;
    QString timeline;
    QStringList words; ///< to search for
    QByteArray zone = "UTC";
    qint64 html_rows = 1000; ///< of one table, over all results
    bool search_as_csv = false;
    bool quiet = false;
};

struct command_line {
    enum class action { report, show_help, show_version, refuse };

    action what = action::report;
    report_options options;
    QString text; ///< the help, or the reason for the refusal
};

/// Reads the arguments, the program's name first. Looks at no file.
command_line read_command_line(const QStringList &arguments);
