#include "common/encryptor_string.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QtEndian>

#include <cstdlib>
#include <optional>

namespace
{

constexpr quint64 fixed_key = 0x5d3e91c07a2b64f1;
constexpr char cipher_version = 3;
constexpr qsizetype header_size = 2; // version, flags
constexpr qsizetype checksum_size = 2;
constexpr qsizetype hash_size = 20;

enum cipher_flag : quint8 { payload_compressed = 0x01, has_checksum = 0x02, has_hash = 0x04 };

quint8 random_byte()
{
    return static_cast<quint8>(std::rand() & 0xff);
}

QByteArray checksum_of(const QByteArray &payload)
{
    QByteArray field(checksum_size, Qt::Uninitialized);
    qToBigEndian(qChecksum(payload), field.data());
    return field;
}

QByteArray hash_of(const QByteArray &payload)
{
    return QCryptographicHash::hash(payload, QCryptographicHash::Sha1);
}

char key_byte(const QByteArray &key_bytes, qsizetype position)
{
    return key_bytes[position % key_bytes.size()];
}

void chain(QByteArray &block, const QByteArray &key_bytes)
{
    char previous = 0;
    qsizetype position = 0;
    for (char &byte : block) {
        byte = static_cast<char>(byte ^ previous ^ key_byte(key_bytes, position++));
        previous = byte;
    }
}

void undo_chain(QByteArray &block, const QByteArray &key_bytes)
{
    char previous = 0;
    qsizetype position = 0;
    for (char &byte : block) {
        const char encrypted = byte;
        byte = static_cast<char>(byte ^ previous ^ key_byte(key_bytes, position++));
        previous = encrypted;
    }
}

/// Takes an integrity field off the front of the block; false when the block is too short for it or
/// it does not match what follows.
bool take_matching(QByteArray &block, qsizetype field_size,
                   QByteArray (*digest)(const QByteArray &))
{
    if (block.size() < field_size)
        return false;
    const QByteArray field = block.first(field_size);
    block.remove(0, field_size);
    return digest(block) == field;
}

/// Nothing for damaged data. The announced length decides how much memory is taken in advance, so
/// it is believed only as far as the stream can possibly expand.
std::optional<QByteArray> decompressed(const QByteArray &payload)
{
    constexpr qsizetype length_prefix_size = 4;
    constexpr qint64 largest_deflate_ratio = 1032;

    const qint64 stream_size = payload.size() - length_prefix_size;
    if (stream_size < 0)
        return std::nullopt;
    const qint64 announced_size = qFromBigEndian<quint32>(payload.constData());
    if (announced_size > stream_size * largest_deflate_ratio)
        return std::nullopt;
    if (stream_size == 0) // no data compresses to the prefix alone
        return QByteArray();

    QByteArray plain = qUncompress(payload);
    if (plain.isEmpty())
        return std::nullopt;
    return plain;
}

} // namespace

encryptor_string::encryptor_string() : key_(fixed_key)
{
    std::srand(static_cast<unsigned>(QDateTime::currentMSecsSinceEpoch() & 0xffff));
    splitKey();
}

void encryptor_string::splitKey()
{
    key_bytes_.resize(sizeof key_);
    qToLittleEndian(key_, key_bytes_.data());
}

QByteArray encryptor_string::encryptToByteArray(QByteArray plain)
{
    if (key_bytes_.isEmpty()) {
        qWarning("No key set.");
        last_error_ = error::no_key;
        return {};
    }

    quint8 flags = 0;
    if (compression_ != compression::never) {
        const QByteArray compressed = qCompress(plain, 9);
        // Nothing at all means that there was no memory for it.
        const bool shorter = !compressed.isEmpty() && compressed.size() < plain.size();
        if (shorter || compression_ == compression::always) {
            plain = compressed;
            flags |= payload_compressed;
        }
    }

    QByteArray block(1, static_cast<char>(random_byte()));
    if (protection_ == protection::checksum) {
        block += checksum_of(plain);
        flags |= has_checksum;
    } else if (protection_ == protection::hash) {
        block += hash_of(plain);
        flags |= has_hash;
    }
    block += plain;
    chain(block, key_bytes_);

    last_error_ = error::none;
    block.prepend(static_cast<char>(flags)).prepend(cipher_version);
    return block;
}

QByteArray encryptor_string::encryptToByteArray(const QString &plain)
{
    return encryptToByteArray(plain.toUtf8());
}

QString encryptor_string::encryptToString(const QByteArray &plain)
{
    return QString::fromLatin1(encryptToByteArray(plain).toBase64());
}

QString encryptor_string::encryptToString(const QString &plain)
{
    return encryptToString(plain.toUtf8());
}

QByteArray encryptor_string::decryptToByteArray(const QByteArray &cipher)
{
    if (key_bytes_.isEmpty()) {
        qWarning("No key set.");
        last_error_ = error::no_key;
        return {};
    }
    if (cipher.size() < header_size || cipher[0] != cipher_version) {
        qWarning("Invalid version or not a cyphertext.");
        last_error_ = error::unknown_version;
        return {};
    }

    const auto flags = static_cast<quint8>(cipher[1]);
    QByteArray block = cipher.sliced(header_size);
    undo_chain(block, key_bytes_);

    // A text cut off before its random byte must not pass for an empty plain text.
    last_error_ = error::integrity_failed;
    if (block.isEmpty())
        return {};
    block.remove(0, 1);
    if ((flags & has_checksum) && !take_matching(block, checksum_size, checksum_of))
        return {};
    if ((flags & has_hash) && !take_matching(block, hash_size, hash_of))
        return {};
    if (flags & payload_compressed) {
        const std::optional<QByteArray> plain = decompressed(block);
        if (!plain)
            return {};
        block = *plain;
    }

    last_error_ = error::none;
    return block;
}

QByteArray encryptor_string::decryptToByteArray(const QString &base64_cipher)
{
    return decryptToByteArray(QByteArray::fromBase64(base64_cipher.toLatin1()));
}

QString encryptor_string::decryptToString(const QByteArray &cipher)
{
    return QString::fromUtf8(decryptToByteArray(cipher));
}

QString encryptor_string::decryptToString(const QString &base64_cipher)
{
    return decryptToString(QByteArray::fromBase64(base64_cipher.toLatin1()));
}
