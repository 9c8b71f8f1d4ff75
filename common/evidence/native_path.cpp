#include "common/evidence/native_path.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <algorithm>
#include <cstring>

#ifdef Q_OS_LINUX
#include <array>
#include <climits>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

thread_local const native_place *current_place = nullptr;

/// The length of the character that begins there; 0 when the bytes are none.
qsizetype character_length(QByteArrayView bytes)
{
    const auto first = static_cast<unsigned char>(bytes.front());
    const qsizetype length = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    if (length > bytes.size())
        return 0;
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes.first(length));
    return decoder.hasError() || text.isEmpty() ? 0 : length;
}

} // namespace

QString shown_name(const QByteArray &name)
{
    if (name.isValidUtf8())
        return QString::fromUtf8(name);
    QString shown;
    for (QByteArrayView rest = name; !rest.isEmpty();) {
        const qsizetype length = character_length(rest);
        shown += length > 0 ? QString::fromUtf8(rest.first(length))
                            : u"\\x" + QString::fromLatin1(rest.first(1).toByteArray().toHex());
        rest = rest.sliced(std::max<qsizetype>(length, 1));
    }
    return shown;
}

QByteArray native_path(const QString &shown)
{
    const native_place *place = current_place;
    if (place != nullptr && shown == place->shown)
        return place->native_folder + '/' + place->name;
    if (place != nullptr && shown == place->shown_companion)
        return place->native_folder + "/._" + place->name;
    if (place != nullptr && shown.startsWith(place->shown_folder) &&
        shown.size() > place->shown_folder.size() && shown.at(place->shown_folder.size()) == u'/')
        return place->native_folder + QFile::encodeName(shown.sliced(place->shown_folder.size()));
    return QFile::encodeName(shown);
}

native_place::native_place(const QString &folder, const QByteArray &native, const QByteArray &entry)
    : shown_folder(folder), native_folder(native), name(entry),
      shown(folder + u'/' + shown_name(entry)),
      shown_companion(folder + u"/._" + shown_name(entry)), before_(current_place)
{
    current_place = this;
}

QString canonical_path(const QString &shown)
{
    const QByteArray native = native_path(shown);
#ifdef Q_OS_LINUX
    const int descriptor = ::open(native.constData(), O_PATH | O_CLOEXEC);
    if (descriptor < 0)
        return {};
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(("/proc/self/fd/" + std::to_string(descriptor)).c_str(),
                                      target.data(), target.size() - 1);
    target[static_cast<std::size_t>(std::max<ssize_t>(length, 0))] = '\0';
    // The system's answer may be of a file that is removed, or of a place outside of this root.
    struct stat meant = {};
    struct stat found = {};
    const bool same = length > 0 && target.front() == '/' && ::fstat(descriptor, &meant) == 0 &&
                      ::lstat(target.data(), &found) == 0 && meant.st_dev == found.st_dev &&
                      meant.st_ino == found.st_ino;
    ::close(descriptor);
    if (same)
        return QFile::decodeName(target.data());
#endif
    return native == QFile::encodeName(shown) ? QFileInfo(shown).canonicalFilePath() : QString();
}

QString resolved_path(const QString &shown)
{
    const bool has_place = native_path(shown) != QFile::encodeName(shown);
    return has_place ? shown : canonical_path(shown);
}

native_place::~native_place()
{
    current_place = before_;
}

file_status status_of(const QString &shown)
{
#ifdef Q_OS_LINUX
    const auto time = [](const struct statx_timestamp &stamp) {
        // As local time, each would ask the system for the zone.
        return QDateTime::fromMSecsSinceEpoch(stamp.tv_sec * 1000 + stamp.tv_nsec / 1'000'000,
                                              Qt::UTC);
    };
    struct statx found = {};
    if (::statx(AT_FDCWD, native_path(shown).constData(), 0, STATX_BASIC_STATS | STATX_BTIME,
                &found) != 0)
        return {};
    return {true,
            S_ISDIR(found.stx_mode),
            static_cast<qint64>(found.stx_size),
            (found.stx_mask & STATX_BTIME) != 0 ? time(found.stx_btime) : QDateTime(),
            time(found.stx_mtime),
            {quint64{found.stx_dev_major} << 32 | found.stx_dev_minor, found.stx_ino}};
#else
    const QFileInfo found(shown);
    return {found.exists(),    found.isDir(),        found.size(),
            found.birthTime(), found.lastModified(), {}};
#endif
}

QString error_text_of(int error)
{
    return QString::fromLocal8Bit(std::strerror(error));
}
