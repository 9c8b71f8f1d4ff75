// Binary property lists: "bplist00", the objects, the table of their offsets, and in the last 32
// bytes (numbers big-endian)
//   6  size of an offset, size of a reference (8 bits each)
//   8  number of objects, number of the outermost, offset of the table (64 bits each)
// An object begins with its kind (4 bits) and its length (4 bits); a length of 15 says that a whole
// number with the real length follows. Lists hold references, which are numbers of objects.

#include "common/metadata/property_list.h"

#include <QtEndian>

#include <cmath>
#include <cstring>

namespace
{

constexpr qsizetype largest_file = 1024 * 1024;
constexpr int deepest_level = 8;
constexpr int most_values = 20'000;
constexpr quint64 most_contents = 4 * 1024 * 1024;
constexpr quint64 header_size = 8;
constexpr quint64 trailer_size = 32;

enum object_kind : quint8 {
    simple = 0x0,
    integer = 0x1,
    real_number = 0x2,
    date = 0x3,
    data = 0x4,
    ascii_text = 0x5,
    utf16_text = 0x6,
    list = 0xa,
    dictionary = 0xd,
};

class structure_check
{
public:
    explicit structure_check(const QByteArray &bytes) : bytes_(bytes) {}

    bool passes()
    {
        if (!bytes_.startsWith("bplist00") || bytes_.size() > largest_file ||
            bytes_.size() < static_cast<qsizetype>(header_size + trailer_size))
            return false;
        const quint64 trailer = static_cast<quint64>(bytes_.size()) - trailer_size;
        offset_size_ = number(trailer + 6, 1);
        reference_size_ = number(trailer + 7, 1);
        objects_ = number(trailer + 8, 8);
        table_ = number(trailer + 24, 8);
        if (offset_size_ < 1 || offset_size_ > 8 || reference_size_ < 1 || reference_size_ > 8)
            return false;
        if (table_ < header_size || table_ > trailer ||
            objects_ > (trailer - table_) / offset_size_)
            return false;
        return object_passes(number(trailer + 16, 8), 0);
    }

private:
    /// The number of so many bytes at an offset inside the file.
    quint64 number(quint64 offset, quint64 size) const
    {
        quint64 value = 0;
        for (quint64 i = 0; i < size; ++i)
            value = value << 8U | static_cast<quint8>(bytes_[static_cast<qsizetype>(offset + i)]);
        return value;
    }

    /// Counts contents that begin at an offset; false when they leave the objects' part of the file
    /// or there is too much of them.
    bool take(quint64 offset, quint64 length)
    {
        if (offset > table_ || length > table_ - offset)
            return false;
        contents_ += length;
        return contents_ <= most_contents;
    }

    /// Reads the length in an object's first byte or behind it; moves the offset to the contents.
    bool read_length(quint64 &offset, quint64 &length)
    {
        length = number(offset++, 1) & 0xfU;
        if (length != 0xf)
            return true;
        if (!take(offset, 1))
            return false;
        const quint64 mark = number(offset++, 1);
        const quint64 size = quint64{1} << (mark & 0xfU);
        if (mark >> 4U != integer || size > 8 || !take(offset, size))
            return false;
        length = number(offset, size);
        offset += size;
        // Lengths are multiplied below; none that long could lie in the file.
        return length <= static_cast<quint64>(largest_file);
    }

    bool date_passes(quint64 offset)
    {
        if (!take(offset, 8))
            return false;
        const quint64 bits = number(offset, 8);
        double seconds = 0;
        std::memcpy(&seconds, &bits, sizeof seconds);
        // The decoder's seconds have 32 bits; the comparison also fails for what is no number.
        return std::abs(seconds) < 2147483647.0;
    }

    bool members_pass(quint64 offset, quint64 length, quint8 kind, int level)
    {
        const quint64 members = kind == dictionary ? length * 2 : length;
        if (level >= deepest_level || !take(offset, members * reference_size_))
            return false;
        for (quint64 i = 0; i < members; ++i) {
            const quint64 reference = number(offset + i * reference_size_, reference_size_);
            const bool is_key = kind == dictionary && i < length;
            if (!object_passes(reference, level + 1, is_key))
                return false;
        }
        return true;
    }

    bool text_passes(quint64 offset, quint64 length, quint64 character_size, bool is_key)
    {
        if (!take(offset, length * character_size))
            return false;
        // The decoder ends the process when a key holds a NUL.
        for (quint64 i = 0; is_key && i < length; ++i) {
            if (number(offset + i * character_size, character_size) == 0)
                return false;
        }
        return true;
    }

    bool object_passes(quint64 reference, int level, bool is_key = false)
    {
        if (reference >= objects_ || ++values_ > most_values)
            return false;
        quint64 offset = number(table_ + reference * offset_size_, offset_size_);
        if (offset < header_size || !take(offset, 1))
            return false;
        const auto kind = static_cast<quint8>(number(offset, 1) >> 4U);
        if (is_key && kind != ascii_text && kind != utf16_text)
            return false;

        const quint64 low_bits = number(offset, 1) & 0xfU;
        switch (kind) {
        case simple:
            return low_bits == 0x8 || low_bits == 0x9; // false and true
        case integer:
            return low_bits <= 3 && take(offset + 1, quint64{1} << low_bits);
        case real_number:
            return (low_bits == 2 || low_bits == 3) && take(offset + 1, quint64{1} << low_bits);
        case date:
            return low_bits == 3 && date_passes(offset + 1);
        default:
            break;
        }
        quint64 length = 0;
        if (!read_length(offset, length))
            return false;
        switch (kind) {
        case data:
            return take(offset, length);
        case ascii_text:
            return text_passes(offset, length, 1, is_key);
        case utf16_text:
            return text_passes(offset, length, 2, is_key);
        case list:
        case dictionary:
            return members_pass(offset, length, kind, level);
        default:
            return false;
        }
    }

    const QByteArray &bytes_;
    quint64 offset_size_ = 0;
    quint64 reference_size_ = 0;
    quint64 objects_ = 0;
    quint64 table_ = 0;
    int values_ = 0;
    quint64 contents_ = 0;
};

} // namespace

bool is_harmless_property_list(const QByteArray &bytes)
{
    return structure_check(bytes).passes();
}
