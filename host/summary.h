#pragma once

#include "host/evidence_prints.h"
#include "host/readings.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>

struct host_options;

/// Rows of one result table.
struct table_rows {
    QString table;
    qint64 rows = 0;
};

/// What a run has to show for itself.
struct extraction_outcome {
    QString problem;    ///< why it could not run; empty when it could
    QString loss;       ///< what the database did not keep; empty when it kept all records
    QString no_profile; ///< the likely cause when no profile was found
    QString database;
    qint64 records = 0;     ///< the plug-in's own count
    QList<table_rows> rows; ///< rows of this run
    QList<profile_outcome> profiles;
    QList<run_warning> warnings;  ///< worst first
    QList<evidence_print> prints; ///< by path in the source
    qsizetype verified = 0;       ///< files whose hash was taken again
    QDateTime started;
    QDateTime ended;
    double seconds = 0;
    bool cancelled = false;
};

/// The rows that the tables hold now; empty when one of them cannot be read. Opens the database
/// read-only.
QList<table_rows> count_rows(const QString &database, const QStringList &tables);

// As --json and the record of the run hold them.
QJsonObject profile_object(const profile_outcome &profile);
QJsonArray warnings_array(const QList<run_warning> &warnings);
QJsonObject totals_object(const QList<table_rows> &rows);

/// The outcome as the JSON object or the table that the options ask for, ready to print.
QString summary_text(const extraction_outcome &outcome, const host_options &options);
