#pragma once

#include "common/host_records.h"

#include <QList>
#include <QString>
#include <QStringList>

/// What one run is asked to do. Paths are absolute and clean.
struct host_options {
    QString source;
    QString os_scheme;
    QString os_display;
    QString source_type;
    QString result;
    QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> accounts; ///< none given: all
    QStringList tables;                                                     ///< in schema order
    QStringList extended_attributes;
    QString plugin_file; ///< empty: the library beside or near the executable
    QString log_file;    ///< empty: no log file
    int source_count = 1;
    int engine_type = 0;
    bool log_encrypted = false;
    bool clear = false;
    bool append = false; ///< rows of an earlier run are expected
    bool hashes = true;  ///< of the evidence files, for the record of the run
    bool verify = false; ///< they are taken again at the end
    bool verbose = false;
    bool json = false;
    bool quiet = false;
};

struct command_line {
    enum class action { extract, decrypt_log, show_help, show_version, refuse };

    action what = action::extract;
    host_options options;
    QString text; ///< the help, the reason for the refusal, or the log to decrypt
};

/// Reads the arguments, the program's name first. Looks at no file.
command_line read_command_line(const QStringList &arguments);
