#include "common/evidence/folder_walk.h"

#ifdef Q_OS_UNIX

#include "common/evidence/evidence_problems.h"
#include "common/evidence/listed_names.h"

#include <cerrno>
#include <deque>
#include <dirent.h>
#include <fcntl.h>
#include <set>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace
{

/// Folders above are opened again by their "..".
constexpr std::size_t most_open = 16;
/// Bytes. Longer paths would be resolved from their beginning with every call.
constexpr qsizetype longest_native_path = 1000;

class open_folder
{
public:
    explicit open_folder(int descriptor = -1) : descriptor_(descriptor) {}
    open_folder(open_folder &&other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    open_folder &operator=(open_folder &&other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~open_folder() { close(); }

    int get() const { return descriptor_; }
    bool is_open() const { return descriptor_ >= 0; }
    void close()
    {
        if (is_open())
            ::close(std::exchange(descriptor_, -1));
    }

private:
    int descriptor_;
};

open_folder opened(int parent, const char *name, int flags)
{
    flags |= O_RDONLY | O_DIRECTORY | O_CLOEXEC;
#ifdef O_NOATIME
    open_folder quiet(::openat(parent, name, flags | O_NOATIME));
    if (quiet.is_open() || errno != EPERM)
        return quiet;
#endif
    return open_folder(::openat(parent, name, flags));
}

using identity = std::pair<dev_t, ino_t>;

identity identity_of(const struct stat &status)
{
    return {status.st_dev, status.st_ino};
}

class walk
{
public:
    walk(const QString &scratch_path, const std::function<bool()> &cancelled,
         const folder_visit &visit)
        : names_(scratch_path), cancelled_(cancelled), visit_(visit)
    {
    }

    bool run(const QString &first_folder)
    {
        shown_ = first_folder.endsWith(u'/') ? first_folder.chopped(1) : first_folder;
        native_ = native_path(shown_);
        const QByteArray links_followed = native_ + '/';
        open_folder first = opened(AT_FDCWD, links_followed.constData(), 0);
        if (!first.is_open()) {
            if (errno != ENOENT)
                report_evidence_problem(shown_, error_text_of(errno));
            return true;
        }
        bool complete = enter(std::move(first), 0, 0);
        while (complete && !folders_.empty() && !cancelled_()) {
            const QByteArray name = names_.take();
            if (name.isNull()) {
                if (!leave())
                    break;
            } else if (name.endsWith('/')) {
                complete = meet_folder(name.chopped(1));
            } else if (!meet_entry(name)) {
                break;
            }
        }
        return complete;
    }

private:
    struct folder {
        open_folder handle;
        struct stat status;
        qsizetype shown_size;  ///< of the path of the folder around it
        qsizetype native_size; ///< likewise
    };

    /// Of the innermost folder, for system calls of paths below it.
    QByteArray native_folder() const
    {
#ifdef Q_OS_LINUX
        static const bool by_descriptor = ::access("/proc/self/fd", X_OK) == 0;
        if (by_descriptor && native_.size() > longest_native_path)
            return "/proc/self/fd/" + QByteArray::number(folders_.back().handle.get());
#endif
        return native_;
    }

    bool enter(open_folder handle, qsizetype shown_size, qsizetype native_size)
    {
        struct stat status = {};
        ::fstat(handle.get(), &status);
        const bool circle = inside_.contains(identity_of(status));
        if (circle)
            report_evidence_problem(shown_, u"the folder contains itself"_s);
        if (circle || (!folders_.empty() && visit_.enter && !visit_.enter(status))) {
            step_out(shown_size, native_size);
            return true;
        }
        inside_.insert(identity_of(status));
        folders_.push_back({std::move(handle), status, shown_size, native_size});
        if (folders_.size() > most_open)
            folders_[folders_.size() - 1 - most_open].handle.close();
        return list();
    }

    void step_out(qsizetype shown_size, qsizetype native_size)
    {
        shown_.truncate(shown_size);
        native_.truncate(native_size);
    }

    /// Names of folders get a closing "/", so that their order is that of the paths below them.
    bool list()
    {
        names_.begin();
        const int copy = ::fcntl(folders_.back().handle.get(), F_DUPFD_CLOEXEC, 0);
        DIR *const entries = copy >= 0 ? ::fdopendir(copy) : nullptr;
        if (entries == nullptr) {
            report_evidence_problem(shown_, error_text_of(errno));
            if (copy >= 0)
                ::close(copy);
            return names_.end();
        }
        bool stored = true;
        errno = 0;
        for (const dirent *entry = ::readdir(entries); entry != nullptr && stored && !cancelled_();
             errno = 0, entry = ::readdir(entries)) {
            QByteArray name(entry->d_name);
            if (name != "." && name != "..")
                stored = names_.add(is_folder(*entry) ? name + '/' : name);
        }
        if (stored && errno != 0)
            report_evidence_problem(shown_, error_text_of(errno));
        ::closedir(entries);
        return stored && names_.end();
    }

    bool is_folder(const dirent &entry) const
    {
        if (entry.d_type != DT_UNKNOWN)
            return entry.d_type == DT_DIR;
        struct stat status = {};
        return ::fstatat(folders_.back().handle.get(), entry.d_name, &status,
                         AT_SYMLINK_NOFOLLOW) == 0 &&
               S_ISDIR(status.st_mode);
    }

    bool meet_folder(const QByteArray &name)
    {
        const qsizetype shown_size = shown_.size();
        const qsizetype native_size = native_.size();
        open_folder inner = opened(folders_.back().handle.get(), name.constData(), O_NOFOLLOW);
        const int error = errno;
        shown_ += u'/' + shown_name(name);
        native_ += '/' + name;
        if (inner.is_open())
            return enter(std::move(inner), shown_size, native_size);
        report_evidence_problem(shown_, error_text_of(error));
        step_out(shown_size, native_size);
        return true;
    }

    /// False when the visitor wants no more.
    bool meet_entry(const QByteArray &name)
    {
        const native_place place(shown_, native_folder(), name);
        struct stat status = {};
        if (::fstatat(folders_.back().handle.get(), name.constData(), &status,
                      AT_SYMLINK_NOFOLLOW) != 0) {
            report_evidence_problem(place.shown, error_text_of(errno));
            return true;
        }
        return !visit_.entry || visit_.entry(place, status);
    }

    /// False when there is no way back to the folder around it.
    bool leave()
    {
        const folder left = std::move(folders_.back());
        folders_.pop_back();
        names_.leave();
        inside_.erase(identity_of(left.status));
        if (visit_.leave)
            visit_.leave(left.status);
        if (folders_.empty())
            return true;
        step_out(left.shown_size, left.native_size);
        folder &outer = folders_.back();
        if (outer.handle.is_open())
            return true;
        outer.handle = opened(left.handle.get(), "..", 0);
        struct stat status = {};
        if (outer.handle.is_open() && ::fstat(outer.handle.get(), &status) == 0 &&
            identity_of(status) == identity_of(outer.status))
            return true;
        report_evidence_problem(shown_, u"the way back to the folder is lost"_s);
        return false;
    }

    listed_names names_;
    const std::function<bool()> &cancelled_;
    const folder_visit &visit_;
    std::deque<folder> folders_; ///< from the first one to the innermost
    std::set<identity> inside_;
    QString shown_;     ///< path of the innermost folder
    QByteArray native_; ///< likewise
};

} // namespace

bool walk_folder(const QString &folder, const QString &temporary_directory,
                 const std::function<bool()> &cancelled, const folder_visit &visit)
{
    return walk(temporary_directory + u"files_by_path.sqlite"_s, cancelled, visit).run(folder);
}

#endif
