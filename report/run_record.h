#pragma once

#include <QStringList>

#include <vector>

/// What the record of the runs, Opera_run.json beside a database, tells of what went wrong and of
/// who read what. It may be missing, and every key in it too.
struct run_record {
    struct problem {
        QString outcome;
        QString path;
        QString sentence;
    };
    struct run {
        QString program; ///< name and version
        QString source;
        QString started;
        QString ended;
        bool cancelled = false;
        qint64 files = 0;
    };

    std::vector<run> runs;
    std::vector<problem> problems; ///< each once
};

/// The record beside the database; an empty one where there is none. One that cannot be read is
/// told.
run_record read_run_record(const QString &folder);
