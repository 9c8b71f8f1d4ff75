// AppleDouble: big-endian numbers, offsets from the start of the file.
//   0  magic number, version, 16 bytes of filler, number of entries (16 bits)
//   26 entries of 12 bytes: id, offset, length
// The entry with id 9 holds 32 bytes for the Finder and, after two bytes of padding, the table of
// extended attributes:
//   0  "ATTR", debugging mark, end of the values, their start, their length, 12 bytes reserved
//   32 flags (16 bits), number of attributes (16 bits)
//   36 for each: offset of its value, length, flags (16 bits), length of its name (8 bits), the
//   name
//      with a closing NUL; filled up to four bytes.

#include "common/metadata/apple_double.h"

#include <QList>
#include <QtEndian>

#include <algorithm>

namespace
{

constexpr quint32 magic_number = 0x00051607;
constexpr quint32 version_2 = 0x00020000;
constexpr qint64 file_header_size = 26;
constexpr qint64 file_entry_size = 12;
constexpr quint32 finder_info_id = 9;
constexpr qint64 finder_info_size = 32;
constexpr quint32 table_mark = 0x41545452; // "ATTR"
constexpr qint64 table_header_size = 36;
constexpr qint64 attribute_header_size = 11;

/// Numbers of the file; 0 outside of it.
class big_endian_reader
{
public:
    explicit big_endian_reader(const QByteArray &bytes) : bytes_(bytes) {}

    bool holds(qint64 offset, qint64 length) const
    {
        return offset >= 0 && length >= 0 && offset <= bytes_.size() &&
               length <= bytes_.size() - offset;
    }
    quint8 number_8(qint64 offset) const { return number<quint8>(offset); }
    quint16 number_16(qint64 offset) const { return number<quint16>(offset); }
    quint32 number_32(qint64 offset) const { return number<quint32>(offset); }

private:
    template <typename type> type number(qint64 offset) const
    {
        return holds(offset, sizeof(type)) ? qFromBigEndian<type>(bytes_.constData() + offset)
                                           : type{};
    }

    const QByteArray &bytes_;
};

struct attribute_entry {
    QByteArray name;
    qint64 offset;
    qint64 length;
};

bool overlap(QList<attribute_entry> entries)
{
    std::sort(
        entries.begin(), entries.end(),
        [](const attribute_entry &a, const attribute_entry &b) { return a.offset < b.offset; });
    const auto reaches_next = [](const attribute_entry &a, const attribute_entry &b) {
        return a.offset + a.length > b.offset;
    };
    return std::adjacent_find(entries.cbegin(), entries.cend(), reaches_next) != entries.cend();
}

attribute_values attributes_of_table(const QByteArray &bytes, qint64 table)
{
    const big_endian_reader file(bytes);
    QList<attribute_entry> entries;
    qint64 header = table + table_header_size;
    for (int left = file.number_16(header - 2); left > 0; --left) {
        const qint64 name_size = file.number_8(header + attribute_header_size - 1);
        if (name_size == 0 || !file.holds(header, attribute_header_size + name_size))
            break;
        // The name ends at its first NUL, whatever its length says.
        const QByteArray name(bytes.mid(header + attribute_header_size, name_size).constData());
        const qint64 offset = file.number_32(header);
        const qint64 length = file.number_32(header + 4);
        if (length > 0 && file.holds(offset, length))
            entries.append({name, offset, length});
        header += (attribute_header_size + name_size + 3) / 4 * 4;
    }

    // Without this, values that overlap could add up to any multiple of the file.
    const attribute_entry everything_before = {QByteArray(), 0, header};
    if (overlap(entries + QList<attribute_entry>{everything_before}))
        return {};
    attribute_values values;
    for (const attribute_entry &entry : entries) {
        if (entry.length <= longest_attribute && !values.contains(entry.name))
            values.insert(entry.name, bytes.mid(entry.offset, entry.length));
    }
    return values;
}

} // namespace

attribute_values apple_double_attributes(const QByteArray &bytes)
{
    const big_endian_reader file(bytes);
    if (file.number_32(0) != magic_number || file.number_32(4) != version_2)
        return {};
    const int entries = file.number_16(file_header_size - 2);
    for (int entry = 0; entry < entries; ++entry) {
        const qint64 at = file_header_size + entry * file_entry_size;
        const qint64 offset = file.number_32(at + 4);
        const qint64 length = file.number_32(at + 8);
        if (file.number_32(at) != finder_info_id || length < finder_info_size ||
            offset < file_header_size + entries * file_entry_size ||
            !file.holds(offset, finder_info_size))
            continue;
        const qint64 table = offset + finder_info_size + 2;
        attribute_values values;
        if (length >= finder_info_size + 2 + table_header_size &&
            file.number_32(table) == table_mark)
            values = attributes_of_table(bytes, table);
        values.insert(finder_info_name, bytes.mid(offset, finder_info_size));
        return values;
    }
    return {};
}
