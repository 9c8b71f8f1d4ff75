#include "host/decrypt_log.h"

#include "host/terminal.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QFile>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace
{

constexpr quint64 key = 0x5d3e91c07a2b64f1;
constexpr char version = 3;
constexpr char compressed_flag = 0x01;
constexpr char checksum_flag = 0x02;
constexpr char hash_flag = 0x04;

constexpr qsizetype kib = 1024;
constexpr qsizetype longest_record = 8 * 1024 * kib;
constexpr qsizetype longest_line = 64 * 1024 * kib;
/// The declared length of compressed data binds nobody: this bounds what it can grow to, since zlib
/// packs about 1030 bytes into one at best.
constexpr qsizetype longest_compressed_line = 256 * kib;

constexpr QByteArrayView separator = "<[{()}]>";

/// A decrypted line, or what is wrong with the record.
struct decrypted_line {
    QByteArray line;
    QString damage;
};

/// Takes the chained XOR off: every byte was mixed with the encrypted byte before it and the key.
QByteArray plain_block(const QByteArray &cipher)
{
    QByteArray plain = cipher;
    char previous = 0;
    for (qsizetype i = 0; i < cipher.size(); ++i) {
        const char key_byte = static_cast<char>(key >> (8 * (i % 8)) & 0xff);
        plain[i] = static_cast<char>(cipher[i] ^ previous ^ key_byte);
        previous = cipher[i];
    }
    return plain;
}

decrypted_line decompressed(const QByteArray &payload)
{
    if (payload.size() < 4)
        return {{}, u"it is cut short"_s};
    const quint32 declared = qFromBigEndian<quint32>(payload.constData());
    if (declared > longest_line || payload.size() > longest_compressed_line)
        return {{}, u"its line is too long"_s};
    const QByteArray line = qUncompress(payload);
    if (line.size() != static_cast<qsizetype>(declared))
        return {{}, u"it does not decompress"_s};
    return {line, {}};
}

decrypted_line decrypt(const QByteArray &record)
{
    if (record.isEmpty())
        return {{}, u"it is empty or too long"_s};
    const auto decoded =
        QByteArray::fromBase64Encoding(record, QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded || (*decoded).size() < 3)
        return {{}, u"it is no cipher text"_s};
    const QByteArray &cipher = *decoded;
    if (cipher[0] != version)
        return {{}, u"it is of an unknown version"_s};

    const char flags = cipher[1];
    QByteArray payload = plain_block(cipher.mid(2)).mid(1); // after the random byte
    if (flags & checksum_flag) {
        if (payload.size() < 2)
            return {{}, u"it is cut short"_s};
        const quint16 checksum = qFromBigEndian<quint16>(payload.constData());
        payload.remove(0, 2);
        if (checksum != qChecksum(payload))
            return {{}, u"its checksum does not match"_s};
    }
    if (flags & hash_flag) {
        const QByteArray hash = payload.left(20);
        payload.remove(0, 20);
        if (hash != QCryptographicHash::hash(payload, QCryptographicHash::Sha1))
            return {{}, u"its hash does not match"_s};
    }
    return flags & compressed_flag ? decompressed(payload) : decrypted_line{payload, {}};
}

/// Cuts a file into the records before the separators, reading it piece by piece.
class log_record_reader
{
public:
    explicit log_record_reader(QFile &file) : file_(file) {}

    /// The next record; false at the end of the file. A record that is too long comes empty.
    bool next(QByteArray &record)
    {
        bool too_long = false;
        for (;;) {
            const qsizetype end = buffer_.indexOf(separator, searched_);
            if (end >= 0) {
                record = too_long ? QByteArray() : buffer_.sliced(start_, end - start_);
                start_ = searched_ = end + separator.size();
                return true;
            }
            // The buffer may end in the first bytes of a separator.
            searched_ = qMax(start_, buffer_.size() - separator.size() + 1);
            if (searched_ - start_ > longest_record) {
                too_long = true;
                start_ = searched_;
            }
            buffer_.remove(0, start_);
            searched_ -= start_;
            start_ = 0;
            const QByteArray piece = file_.read(64 * kib);
            if (piece.isEmpty())
                return false;
            buffer_ += piece;
        }
    }

    /// What stands after the last separator.
    bool has_rest() const { return !buffer_.trimmed().isEmpty(); }

private:
    QFile &file_;
    QByteArray buffer_;
    qsizetype start_ = 0;
    qsizetype searched_ = 0;
};

void report(qint64 number, const QString &damage)
{
    terminal::print_error(u"record " + QString::number(number) + u" is damaged: " + damage);
}

} // namespace

int decrypt_log(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        terminal::print_error(u"cannot read the log " + path + u": " + file.errorString());
        return 1;
    }

    int status = 0;
    qint64 number = 0;
    log_record_reader reader(file);
    for (QByteArray record; reader.next(record);) {
        ++number;
        const decrypted_line result = decrypt(record);
        if (!result.damage.isEmpty()) {
            report(number, result.damage);
            status = 1;
        } else if (!terminal::print_result(terminal::one_line(QString::fromUtf8(result.line)) +
                                           u'\n')) {
            return 1; // reported once for all output
        }
    }
    if (file.error() != QFileDevice::NoError) {
        terminal::print_error(u"cannot read the log " + path + u": " + file.errorString());
        status = 1;
    } else if (reader.has_rest()) {
        report(number + 1, u"it has no end"_s);
        status = 1;
    }
    return status;
}
