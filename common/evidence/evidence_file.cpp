#include "common/evidence/evidence_file.h"

#include "common/evidence/evidence_problems.h"
#include "common/evidence/native_path.h"
#include "common/values/json_values.h"
#include "common/values/text_values.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <filesystem>
#include <span>
#include <system_error>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <linux/fs.h>
#include <sys/ioctl.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

#ifdef Q_OS_UNIX

int open_read_only(const QByteArray &path, int flags)
{
    flags |= O_RDONLY | O_CLOEXEC | O_NONBLOCK;
#ifdef O_NOATIME
    // Only the owner and root may ask for an unchanged access time.
    const int quiet = ::open(path.constData(), flags | O_NOATIME);
    if (quiet >= 0 || errno != EPERM)
        return quiet;
#endif
    return ::open(path.constData(), flags);
}

#endif

#ifdef Q_OS_LINUX

bool share_blocks(const QFile &source, const QFile &copy)
{
    return ::ioctl(copy.handle(), FICLONE, source.handle()) == 0;
}

/// Lets the kernel copy what is no hole; false when the file systems do not offer it. The copy may
/// then hold a part of the source.
bool copy_inside_kernel(const QFile &source, QFile &copy)
{
    const off_t size = source.size();
    off_t end = 0;
    for (off_t at = 0; at < size; at = end) {
        at = ::lseek(source.handle(), at, SEEK_DATA);
        if (at < 0 && errno == ENXIO) // a hole up to the end
            break;
        end = at < 0 ? at : ::lseek(source.handle(), at, SEEK_HOLE);
        if (end <= at)
            return false;
        for (off_t to = at; at < end;) {
            if (::copy_file_range(source.handle(), &at, copy.handle(), &to,
                                  static_cast<size_t>(end - at), 0) <= 0)
                return false;
        }
    }
    return copy.resize(size);
}

#else

bool share_blocks(const QFile &, const QFile &)
{
    return false;
}

bool copy_inside_kernel(const QFile &, QFile &)
{
    return false;
}

#endif

/// Bytes that were read; 0 at the end, -1 on a read error.
qint64 read_at(QFile &file, qint64 place, std::span<char> buffer)
{
#ifdef Q_OS_UNIX
    ssize_t got = 0;
    do {
        got = ::pread(file.handle(), buffer.data(), buffer.size(), place);
    } while (got < 0 && errno == EINTR);
    return got;
#else
    return file.seek(place) ? file.read(buffer.data(), static_cast<qint64>(buffer.size())) : -1;
#endif
}

bool copy_by_reading(evidence_file &source, QFile &copy)
{
    constexpr qint64 block = 4096;
    // Each may keep a broken disk busy for seconds.
    constexpr qint64 most_failures = 1000;
    std::array<char, 262'144> buffer;
    qint64 failures = 0;
    qint64 place = 0;
    if (!copy.resize(0))
        return false;
    while (failures <= most_failures) {
        const qint64 got = read_at(source, place, buffer);
        if (got == 0 || (got < 0 && place >= source.size()))
            break;
        if (got < 0) {
            if (++failures == 1)
                report_evidence_problem(
                    source.path(),
                    u"read error at byte %1; the copy has a hole there"_s.arg(place));
            place += block - place % block;
            continue;
        }
        const bool zeros =
            std::all_of(buffer.begin(), buffer.begin() + got, [](char byte) { return byte == 0; });
        if (!zeros && (!copy.seek(place) || copy.write(buffer.data(), got) != got))
            return false;
        place += got;
    }
    return copy.flush() && copy.resize(failures == 0 ? place : source.size());
}

/// A file full of holes may have any size. Where the room is not known, the copy is tried.
bool fits_beside(qint64 size, const QFile &copy)
{
    std::error_code unknown;
    const auto room =
        std::filesystem::space(copy.filesystemFileName().parent_path(), unknown).available;
    return unknown || static_cast<quint64>(size) <= room;
}

} // namespace

bool evidence_file::open_for_reading(links last_component)
{
#ifdef Q_OS_UNIX
    const int descriptor =
        open_read_only(native_path(path_), last_component == links::refused ? O_NOFOLLOW : 0);
    if (descriptor < 0) {
        setErrorString(error_text_of(errno));
        return false;
    }
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(descriptor);
        setErrorString(u"Not a regular file"_s);
        return false;
    }
    return QFile::open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
#else
    const QFileInfo info(fileName());
    if (!info.isFile() || (last_component == links::refused && info.isSymLink())) {
        setErrorString(u"Not a regular file"_s);
        return false;
    }
    return QFile::open(QIODevice::ReadOnly);
#endif
}

bool evidence_file::open_whole(qint64 largest)
{
    if (!open_for_reading())
        return false;
    if (size() <= largest)
        return true;
    close();
    setErrorString(u"Too large to be held in memory"_s);
    return false;
}

bool evidence_file::read_json(QByteArray &text)
{
    constexpr qint64 spare_bytes = 48 << 20;
    constexpr qint64 bytes_per_byte = 7; // one more is the text itself
    if (!open_whole(largest_json))
        return false;
    text = readAll();
    close();
    if (parsed_json_bytes(text) <= spare_bytes + bytes_per_byte * text.size())
        return true;
    text.clear();
    setErrorString(u"Its values would take too much memory"_s);
    report_evidence_problem(path_, errorString() + u"; the file is not read");
    return false;
}

QByteArray evidence_file::read_short_line()
{
    QByteArray line = readLine(longest_line);
    if (line.size() < longest_line - 1 || line.endsWith('\n'))
        return line;
    for (QByteArray rest = line; !rest.isEmpty() && !rest.endsWith('\n');)
        rest = readLine(longest_line);
    report_evidence_problem(path_, u"a line of over 4 MiB is cut"_s);
    return line + cut_mark.toUtf8();
}

qint64 evidence_file::stored_size() const
{
#ifdef Q_OS_UNIX
    constexpr qint64 block = 512;
    struct stat status = {};
    if (::fstat(handle(), &status) == 0 && status.st_blocks > 0)
        return status.st_blocks * block;
#endif
    return size();
}

qint64 evidence_file::readData(char *data, qint64 length)
{
    qint64 read = 0;
    ended_ = failed_;
    while (read < length && !failed_) {
        const qint64 got = QFile::readData(data + read, length - read);
        if (got == 0)
            break;
        failed_ = got < 0;
        if (failed_)
            report_evidence_problem(path_, errorString() + u"; the rest is not read");
        else
            read += got;
    }
    return failed_ && read == 0 ? -1 : read;
}

qint64 evidence_file::readLineData(char *data, qint64 length)
{
    // Goes through readData(), which the nearer ones do not.
    return QIODevice::readLineData(data, length); // NOLINT(bugprone-parent-virtual-call)
}

bool copy_evidence_file(const QString &source, const QString &copy,
                        evidence_file::links last_component)
{
    evidence_file from(source);
    if (!from.open_for_reading(last_component))
        return false;
    QFile to(copy);
    if (!to.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    if (share_blocks(from, to) || (fits_beside(from.size(), to) &&
                                   (copy_inside_kernel(from, to) || copy_by_reading(from, to))))
        return true;
    to.close();
    QFile::remove(copy);
    return false;
}

bool is_inside_folder(const QString &path, const QString &folder)
{
    // The canonical path of links that form a circle is the path itself, unresolved.
    if (!status_of(path).exists)
        return false;
    const QString resolved_path = canonical_path(path);
    const QString resolved_folder = canonical_path(folder);
    if (resolved_path.isEmpty() || resolved_folder.isEmpty())
        return false;
    return resolved_path == resolved_folder || resolved_folder == "/"_L1 ||
           resolved_path.startsWith(resolved_folder + u'/');
}

bool leads_anywhere(const QString &path)
{
#ifdef Q_OS_UNIX
    struct stat status = {};
    return ::stat(native_path(path).constData(), &status) == 0 ||
           (errno != ENOENT && errno != ENOTDIR && errno != EACCES && errno != ELOOP);
#else
    return QFileInfo::exists(path);
#endif
}
