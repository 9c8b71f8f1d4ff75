#include "host/evidence_prints.h"

#include "host/evidence_source.h"

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <vector>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

constexpr std::size_t piece_size = 1 << 20;

/// Opens a regular file for reading; says what keeps it from that.
QString open_quietly(QFile &file)
{
#ifdef Q_OS_UNIX
    const QByteArray path = QFile::encodeName(file.fileName());
    // A FIFO would block, and a device could have effects.
    const int flags = O_RDONLY | O_CLOEXEC | O_NONBLOCK;
    int descriptor = -1;
#ifdef O_NOATIME
    // Only the owner and root may ask for an unchanged access time.
    descriptor = ::open(path.constData(), flags | O_NOATIME);
    if (descriptor < 0 && errno == EPERM)
#endif
        descriptor = ::open(path.constData(), flags);
    if (descriptor < 0)
        return qt_error_string(errno);
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(descriptor);
        return u"not a regular file"_s;
    }
    // Hours of zeros tell nothing of a file that takes no room.
    constexpr qint64 usual_size = 16LL << 30;
    constexpr qint64 block = 512;
    if (status.st_size > usual_size && status.st_blocks * block < status.st_size / 2) {
        ::close(descriptor);
        return u"mostly a hole, which is not hashed"_s;
    }
    if (!file.open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered,
                   QFileDevice::AutoCloseHandle))
        return file.errorString();
#else
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return file.errorString();
#endif
    return {};
}

void add_hash(evidence_print &print, const std::function<bool()> &stopped)
{
    QFile file(print.path);
    print.problem = open_quietly(file);
    if (!print.problem.isEmpty())
        return;
    std::vector<char> piece(piece_size);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    qint64 read = 0;
    do {
        if (stopped())
            return;
        read = file.read(piece.data(), static_cast<qint64>(piece.size()));
        hash.addData(QByteArrayView(piece.data(), qMax(read, qint64{0})));
    } while (read > 0);
    if (read < 0)
        print.problem = file.errorString();
    else
        print.sha256 = hash.result().toHex();
}

evidence_print print_of(const QString &path)
{
    const QFileInfo info(path);
    return {.path = path, .size = info.size(), .modified = info.lastModified().toUTC()};
}

} // namespace

QStringList files_to_print(const QStringList &found, const QString &source)
{
    QStringList files;
    for (const QString &path : found) {
        if (!QFileInfo(path).isFile() || !lies_within(path, source))
            continue;
        files.append(path);
        for (const char *suffix : {"-wal", "-shm", "-journal"}) {
            const QFileInfo companion(path + QLatin1StringView(suffix));
            if (companion.isFile() && !companion.isSymLink())
                files.append(companion.filePath());
        }
    }
    files.removeDuplicates();
    return files;
}

void evidence_prints::start(const QStringList &files, bool hashes,
                            const std::function<bool()> &stopped)
{
    finish();
    prints_.clear();
    thread_ = std::thread([this, files, hashes, stopped] {
        for (const QString &path : files) {
            prints_.append(print_of(path));
            if (hashes && !stopped())
                add_hash(prints_.last(), stopped);
        }
    });
}

const QList<evidence_print> &evidence_prints::finish()
{
    if (thread_.joinable())
        thread_.join();
    return prints_;
}
