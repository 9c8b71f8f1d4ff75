#pragma once

#include "common/evidence/native_path.h"

#include <QString>
#include <QtGlobal>

#include <functional>

#ifdef Q_OS_UNIX

#include <sys/stat.h>

/// What a walk meets. Each may be left out.
struct folder_visit {
    /// A folder below the first one, before its entries; false: its entries are passed over.
    std::function<bool(const struct stat &folder)> enter = {};
    /// An entry that is no folder; links are not followed. False ends the walk.
    std::function<bool(const native_place &place, const struct stat &entry)> entry = {};
    /// The folder whose entries have all been met, the first one included.
    std::function<void(const struct stat &folder)> leave = {};
};

/// Goes over everything below a folder, ordered by the bytes of the paths, in a time linear in the
/// number of entries however deep they lie. Memory and open descriptors are bounded: what a very
/// large folder lists is kept in a scratch database in the temporary directory. What cannot be read
/// is reported and passed over; a folder that is not there has no entries.
///
/// False when the scratch database cannot be written.
bool walk_folder(const QString &folder, const QString &temporary_directory,
                 const std::function<bool()> &cancelled, const folder_visit &visit);

#endif
