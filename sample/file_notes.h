#pragma once

#include <QString>
#include <QStringList>

namespace sample
{

/// What macOS notes beside a file that was downloaded. Unix seconds.
struct file_notes {
    QStringList where_froms;
    qint64 downloaded;
    qint64 last_used; ///< 0: never opened
};

/// Gives an existing file its notes in both ways in which they reach other systems: as extended
/// attributes "user.com.apple..." where the file system takes them, and in an AppleDouble companion
/// "._NAME" with the file's modification date. Throws evidence_error.
void write_notes(const QString &path, const file_notes &notes);

} // namespace sample
