#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class QObject;

/// An entry of the plug-in's reading record; see docs/hosting.md.
struct file_reading {
    QString table; ///< empty for what no reader could reach
    QString path;  ///< in the source, begins with "/"
    QString reader;
    QString outcome;
    QString sentence;
    qint64 rows = 0;
};

/// The files of one browser profile, and what the run has of them.
struct profile_outcome {
    QString account;
    QString channel;            ///< for example Opera Stable; empty when the path does not tell
    QString folder;             ///< in the source
    QMap<QString, qint64> rows; ///< by table
    QMap<QString, QList<file_reading>> files; ///< by path; without readings where no table wants it
};

/// What the examiner must know of a file.
struct run_warning {
    QString outcome;
    QString path;
    QString sentence;

    bool operator==(const run_warning &) const = default;
};

/// What the plug-in tells; nothing when it lacks the property.
QList<file_reading> readings_of(const QObject &plugin);

/// The profiles by account and channel. Files are paths in the source, those without readings
/// included.
QList<profile_outcome> profiles_of(const QList<file_reading> &readings, const QStringList &files);

/// What is not as it should be, each once, worst first. That a reader does not know a schema which
/// another of the same table does is as it should be.
QList<run_warning> warnings_of(const QList<file_reading> &readings);
/// Puts warnings into their order, worst first.
void sort_warnings(QList<run_warning> &warnings);
