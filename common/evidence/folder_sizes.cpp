#include "common/evidence/folder_sizes.h"

#include "common/evidence/folder_walk.h"

#include <vector>

#ifdef Q_OS_UNIX

namespace
{

/// Entries. To look at fewer again is cheaper than to remember the folder: memory stays below a
/// hundredth of the entries.
constexpr qint64 worth_remembering = 64;

struct sum {
    quint64 bytes = 0;  ///< unsigned: sparse files can add up beyond any real volume
    qint64 entries = 0; ///< that are looked at again when the sum is asked for again
};

} // namespace

std::optional<quint64> folder_sizes::size_of(const QString &folder,
                                             const QString &temporary_directory,
                                             const std::function<bool()> &cancelled)
{
    const auto identity_of = [](const struct stat &status) {
        return identity(status.st_dev, status.st_ino);
    };
    struct stat first = {};
    if (::stat(native_path(folder).constData(), &first) == 0) {
        if (const auto found = known_.find(identity_of(first)); found != known_.end())
            return found->second;
    }
    std::vector<sum> sums(1);
    sum whole;
    const bool complete = walk_folder(folder, temporary_directory, cancelled,
                                      {.enter =
                                           [&](const struct stat &inner) {
                                               ++sums.back().entries;
                                               const auto found = known_.find(identity_of(inner));
                                               if (found == known_.end())
                                                   sums.emplace_back();
                                               else
                                                   sums.back().bytes += found->second;
                                               return found == known_.end();
                                           },
                                       .entry =
                                           [&](const native_place &, const struct stat &entry) {
                                               ++sums.back().entries;
                                               if (!S_ISLNK(entry.st_mode))
                                                   sums.back().bytes +=
                                                       static_cast<quint64>(entry.st_size);
                                               return true;
                                           },
                                       .leave =
                                           [&](const struct stat &left) {
                                               sum inner = sums.back();
                                               sums.pop_back();
                                               if (inner.entries >= worth_remembering) {
                                                   known_.emplace(identity_of(left), inner.bytes);
                                                   inner.entries = 0;
                                               }
                                               sum &outer = sums.empty() ? whole : sums.back();
                                               outer.bytes += inner.bytes;
                                               outer.entries += inner.entries;
                                           }});
    if (!complete || cancelled())
        return {};
    return whole.bytes;
}

#else

std::optional<quint64> folder_sizes::size_of(const QString &, const QString &,
                                             const std::function<bool()> &)
{
    return {};
}

#endif
