#pragma once

#include <QString>

#include <functional>

/// Calls `each` with the path of every regular file below the folder, hidden ones included, ordered
/// by path, whatever order the file system lists them in; it stops when `each` returns false or the
/// run is cancelled. Symbolic links are neither followed nor listed. However many files there are,
/// memory stays flat: what a large folder lists is sorted in a scratch database in the temporary
/// directory. The path is the shown one; while `each` runs, native_path() leads to the file.
///
/// False when the scratch database cannot be written. A folder that does not exist has no
/// files.
bool for_each_file(const QString &folder, const QString &temporary_directory,
                   const std::function<bool()> &cancelled,
                   const std::function<bool(const QString &path)> &each);
