#pragma once

#include <QByteArray>
#include <QByteArrayList>
#include <QList>
#include <QtEndian>

#ifdef OPERA_WITH_LIBPLIST
inline constexpr bool reads_lists = true;
#else
inline constexpr bool reads_lists = false;
#endif
#ifdef OPERA_WITH_EXIV2
inline constexpr bool reads_pictures = true;
#else
inline constexpr bool reads_pictures = false;
#endif

// Property lists, AppleDouble files and pictures, written byte by byte.

/// The last bytes, at most eight, of a big-endian number.
template <typename type> QByteArray big(type number, int size)
{
    const quint64 bytes = qToBigEndian(static_cast<quint64>(number));
    return QByteArray(reinterpret_cast<const char *>(&bytes), sizeof bytes).last(size);
}

/// The objects as a property list whose first object is the outermost value.
inline QByteArray property_list(const QByteArrayList &objects)
{
    QByteArray file = "bplist00";
    QByteArray offsets;
    for (const QByteArray &object : objects) {
        offsets += big(file.size(), 3);
        file += object;
    }
    const auto table = static_cast<quint64>(file.size());
    return file + offsets + big(0, 6) + "\x03\x02" + big(objects.size(), 8) + big(0, 8) +
           big(table, 8);
}

inline QByteArray text_object(const QByteArray &ascii)
{
    return "\x5f\x10" + big(ascii.size(), 1) + ascii;
}

inline QByteArray list_object(const QList<quint64> &references)
{
    QByteArray object = "\xaf\x10" + big(references.size(), 1);
    for (const quint64 reference : references)
        object += big(reference, 2);
    return object;
}

inline QByteArray little_64(qint64 number)
{
    const qint64 bytes = qToLittleEndian(number);
    return {reinterpret_cast<const char *>(&bytes), sizeof bytes};
}

struct attribute {
    QByteArray name;
    QByteArray value;
    qsizetype shift = 0; ///< of its offset, to make it wrong
};

inline QByteArray apple_double(const QList<attribute> &attributes,
                               const QByteArray &finder_info = {})
{
    QByteArray entries;
    QByteArray values;
    qsizetype at = 50 + 34 + 36;
    for (const attribute &one : attributes)
        at += (11 + one.name.size() + 1 + 3) / 4 * 4;
    for (const attribute &one : attributes) {
        entries += big(at + values.size() + one.shift, 4) + big(one.value.size(), 4) + big(0, 2) +
                   big(one.name.size() + 1, 1) + one.name + '\0';
        entries += QByteArray((4 - entries.size() % 4) % 4, '\0');
        values += one.value;
    }
    const QByteArray rest = finder_info.leftJustified(34, '\0') + "ATTR" + big(0, 8) + big(0, 8) +
                            big(0, 8) + big(0, 4) + big(0, 2) + big(attributes.size(), 2) +
                            entries + values;
    return big(0x00051607'00020000, 8) + QByteArray(16, ' ') + big(2, 2) + big(2, 4) +
           big(50 + rest.size(), 4) + big(0, 4) + big(9, 4) + big(50, 4) + big(rest.size(), 4) +
           rest;
}

/// Degrees, minutes and seconds (or one number) as big-endian fractions of Exif data.
inline QByteArray fractions(const QList<std::pair<quint32, quint32>> &parts)
{
    QByteArray bytes;
    for (const auto &[numerator, denominator] : parts)
        bytes += big(numerator, 4) + big(denominator, 4);
    return bytes;
}

/// A TIFF file that holds nothing but a place.
inline QByteArray tiff_with_place(const char *latitude_side, const QByteArray &latitude,
                                  const char *longitude_side, const QByteArray &longitude,
                                  const QByteArray &altitude = fractions({{25, 2}}), char below = 0)
{
    const auto entry = [](int tag, int type, qsizetype count,
                          const QByteArray &value) -> QByteArray {
        return big(tag, 2) + big(type, 2) + big(count, 4) + value.leftJustified(4, '\0');
    };
    const auto fraction_entry = [&entry](int tag, const QByteArray &value, qsizetype offset) {
        return entry(tag, 5, value.size() / 8, big(offset, 4));
    };
    const qsizetype data = 26 + 2 + 6 * 12 + 4;
    return QByteArray("MM\0*", 4) + big(8, 4) + big(1, 2) + entry(0x8825, 4, 1, big(26, 4)) +
           big(0, 4) + big(6, 2) + entry(1, 2, 2, latitude_side) +
           fraction_entry(2, latitude, data) + entry(3, 2, 2, longitude_side) +
           fraction_entry(4, longitude, data + latitude.size()) +
           entry(5, 1, 1, QByteArray(1, below)) +
           fraction_entry(6, altitude, data + latitude.size() + longitude.size()) + big(0, 4) +
           latitude + longitude + altitude;
}
