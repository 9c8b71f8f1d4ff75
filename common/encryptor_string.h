#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

/// A small symmetric cipher for the lines of the debug log. It keeps casual readers out; it is no
/// protection against cryptanalysis. Cipher text: version 3, flags, then a chained XOR block of one
/// random byte, an integrity field and the payload (compressed when that makes it shorter).
///
/// Failures give an empty result and are kept in last_error(). Cipher text that was cut short or
/// does not decompress counts as failed integrity, without even its two header bytes as unknown
/// version.
class encryptor_string
{
public:
    enum class compression { automatic = 0, always = 1, never = 2 };
    enum class protection { none = 0, checksum = 1, hash = 2 };
    enum class error { none = 0, no_key = 1, unknown_version = 2, integrity_failed = 3 };

    /// Automatic compression, checksum protection, the fixed key. Seeds the C library's generator.
    encryptor_string();

    void set_compression(compression mode) { compression_ = mode; }
    void set_protection(protection mode) { protection_ = mode; }
    error last_error() const { return last_error_; }

    QByteArray encryptToByteArray(QByteArray plain);
    QByteArray encryptToByteArray(const QString &plain);
    /// Base64 of the cipher text; empty when encrypting failed.
    QString encryptToString(const QByteArray &plain);
    QString encryptToString(const QString &plain);

    QByteArray decryptToByteArray(const QByteArray &cipher);
    QByteArray decryptToByteArray(const QString &base64_cipher);
    /// The plain bytes read as UTF-8.
    QString decryptToString(const QByteArray &cipher);
    QString decryptToString(const QString &base64_cipher);

private:
    void splitKey();

    quint64 key_;
    QByteArray key_bytes_;
    compression compression_ = compression::automatic;
    protection protection_ = protection::checksum;
    error last_error_ = error::none;
};
