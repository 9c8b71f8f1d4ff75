#pragma once

#include <QString>

struct extraction_outcome;
struct host_options;

/// Where the record of the runs lies: beside the database, "_run.json" for its suffix.
QString run_record_path(const QString &database);

/// Appends the run to the record, which is replaced as a whole or not at all. A record that cannot
/// be understood is kept under another name, which `note` tells. Says what failed; empty when all
/// is well.
QString write_run_record(const extraction_outcome &outcome, const host_options &options,
                         QString &note);
