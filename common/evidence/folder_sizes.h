#pragma once

#include <QString>
#include <QtGlobal>

#include <functional>
#include <map>
#include <optional>
#include <utility>

/// Sizes of folders of one source. Whatever folders are asked for, in any order, the entries of
/// each are looked at about once: a walk goes on where an earlier one ended.
class folder_sizes
{
public:
    /// The bytes of all files below the folder, links not followed; none when the run is cancelled
    /// or the walk cannot be made.
    std::optional<quint64> size_of(const QString &folder, const QString &temporary_directory,
                                   const std::function<bool()> &cancelled);

private:
    using identity = std::pair<quint64, quint64>; ///< device and inode
    std::map<identity, quint64> known_;
};
