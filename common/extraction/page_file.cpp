#include "common/extraction/page_file.h"

#include <QtEndian>

using namespace Qt::StringLiterals;

namespace
{

constexpr int log_header_size = 32;
constexpr int frame_header_size = 24;

quint32 number_at(const QByteArray &bytes, int at)
{
    return qFromBigEndian<quint32>(bytes.constData() + at);
}

/// The running checksum of a write-ahead log.
struct log_checksum {
    bool big_endian;
    quint32 first = 0;
    quint32 second = 0;

    /// Takes in whole pairs of 32-bit numbers.
    void add(const QByteArray &bytes, qsizetype from, qsizetype size)
    {
        for (qsizetype at = from; at < from + size; at += 8) {
            first += word(bytes, at) + second;
            second += word(bytes, at + 4) + first;
        }
    }

    bool stands_at(const QByteArray &bytes, int at) const
    {
        return number_at(bytes, at) == first && number_at(bytes, at + 4) == second;
    }

private:
    quint32 word(const QByteArray &bytes, qsizetype at) const
    {
        const char *data = bytes.constData() + at;
        return big_endian ? qFromBigEndian<quint32>(data) : qFromLittleEndian<quint32>(data);
    }
};

} // namespace

page_file::page_file(const QString &path) : file_(path), log_(path + u"-wal"_s) {}

bool page_file::open()
{
    if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    const QByteArray header = file_.read(header_size);
    if (header.size() < header_size || !header.startsWith(QByteArray("SQLite format 3\0", 16)))
        return false;
    const int stored_size = qFromBigEndian<quint16>(header.constData() + 16);
    page_size_ = stored_size == 1 ? 65536 : stored_size;
    usable_size_ = page_size_ - static_cast<uchar>(header.at(20));
    if (page_size_ < 512 || (page_size_ & (page_size_ - 1)) != 0 || usable_size_ < 480)
        return false;
    stored_pages_ = static_cast<quint32>(qMin<qint64>(file_.size() / page_size_, 0x7fffffff));
    page_count_ = stored_pages_;
    if (log_.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        read_log();
    return page_count_ > 0;
}

void page_file::read_log()
{
    const QByteArray header = log_.read(log_header_size);
    if (header.size() < log_header_size || (number_at(header, 0) & ~1U) != 0x377f0682 ||
        number_at(header, 8) != static_cast<quint32>(page_size_))
        return;
    log_checksum checksum{(number_at(header, 0) & 1) != 0};
    checksum.add(header, 0, 24);
    if (!checksum.stands_at(header, 24))
        return;
    QHash<quint32, qint64> uncommitted;
    for (;;) {
        const qint64 page_at = log_.pos() + frame_header_size;
        const QByteArray frame = log_.read(frame_header_size + page_size_);
        if (frame.size() < frame_header_size + page_size_ || frame.mid(8, 8) != header.mid(16, 8))
            return;
        checksum.add(frame, 0, 8);
        checksum.add(frame, frame_header_size, page_size_);
        if (!checksum.stands_at(frame, 16))
            return;
        uncommitted.insert(number_at(frame, 0), page_at);
        if (const quint32 pages_after_commit = number_at(frame, 4); pages_after_commit != 0) {
            logged_.insert(uncommitted);
            uncommitted.clear();
            page_count_ = pages_after_commit;
        }
    }
}

QByteArray page_file::page(quint32 number)
{
    const auto logged = logged_.constFind(number);
    QFile &from = logged == logged_.cend() ? file_ : log_;
    const qint64 at = logged == logged_.cend() ? qint64(number - 1) * page_size_ : *logged;
    if (!holds(number) || !from.seek(at))
        return {};
    QByteArray page = from.read(page_size_);
    return page.size() == page_size_ ? page : QByteArray();
}

bool page_file::take_over_log()
{
    file_.close();
    if (!file_.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return false;
    const QHash<quint32, qint64> logged = logged_;
    const qint64 enough_pages = 2 * (qint64(stored_pages_) + logged.size());
    for (auto one = logged.cbegin(); one != logged.cend(); ++one) {
        if (!holds(one.key()))
            continue;
        const QByteArray newer = page(one.key());
        if (one.key() > enough_pages || newer.isEmpty() || !write(one.key(), newer))
            return false;
    }
    logged_.clear();
    stored_pages_ = static_cast<quint32>(file_.size() / page_size_);
    log_.close();
    QFile::remove(file_.fileName() + u"-shm"_s);
    return !log_.exists() || log_.remove();
}

bool page_file::write(quint32 number, const QByteArray &page)
{
    return file_.seek(qint64(number - 1) * page_size_) && file_.write(page) == page.size();
}
