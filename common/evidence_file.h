#pragma once

#include <QFile>
#include <QString>

/// A file of the evidence, opened for reading without leaving a trace: the access time stays as it
/// was where the system allows that, and only regular files open (a FIFO or device would block or
/// have effects).
class evidence_file : public QFile
{
public:
    enum class links { followed, refused };

    explicit evidence_file(const QString &path) : QFile(path) {}

    /// False, with errorString() set, when there is no regular file to read.
    bool open_for_reading(links last_component = links::followed);
};

/// Copies a regular file of the evidence by the cheapest means the system offers (shared blocks,
/// copying inside the kernel, reading and writing). On failure no partial copy is left.
bool copy_evidence_file(const QString &source, const QString &copy,
                        evidence_file::links last_component = evidence_file::links::followed);

/// True when the path, dots and links resolved, lies below the folder (or is it). False when either
/// does not exist.
bool is_inside_folder(const QString &path, const QString &folder);
