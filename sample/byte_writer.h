#pragma once

#include <QByteArray>
#include <QtEndian>

namespace sample
{

/// Builds little-endian binary data.
class byte_writer
{
public:
    byte_writer &add_8(quint8 value) { return add_number(value); }
    byte_writer &add_16(quint16 value) { return add_number(value); }
    byte_writer &add_32(quint32 value) { return add_number(value); }
    byte_writer &add_64(quint64 value) { return add_number(value); }
    byte_writer &add(const QByteArray &bytes)
    {
        bytes_ += bytes;
        return *this;
    }
    const QByteArray &bytes() const { return bytes_; }

private:
    template <typename number> byte_writer &add_number(number value)
    {
        const number little = qToLittleEndian(value);
        bytes_.append(reinterpret_cast<const char *>(&little), sizeof little);
        return *this;
    }

    QByteArray bytes_;
};

} // namespace sample
