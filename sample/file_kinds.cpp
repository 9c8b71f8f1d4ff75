#include "sample/file_kinds.h"

#include "sample/byte_writer.h"
#include "sample/evidence_files.h"

#include <QBuffer>
#include <QImage>

#include <array>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

quint32 crc32(const QByteArray &bytes)
{
    quint32 remainder = 0xffffffffU;
    for (const char character : bytes) {
        remainder ^= static_cast<unsigned char>(character);
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder >> 1U) ^ ((remainder & 1U) != 0 ? 0xedb88320U : 0U);
    }
    return ~remainder;
}

/// One JPEG segment: marker, length (big-endian, counts itself), contents.
QByteArray jpeg_segment(char marker, const QByteArray &contents)
{
    const auto length = static_cast<quint16>(contents.size() + 2);
    QByteArray segment("\xff", 1);
    segment += marker;
    segment += static_cast<char>(length >> 8U);
    segment += static_cast<char>(length & 0xffU);
    return segment + contents;
}

/// One entry of an Exif directory. Values of up to four bytes lie in the entry itself, longer ones
/// at the offset that stands in their place.
void add_exif_entry(byte_writer &to, quint16 tag, quint16 type, quint32 count, quint32 value)
{
    to.add_16(tag).add_16(type).add_32(count).add_32(value);
}

QByteArray exif_data(const gps_position &position)
{
    constexpr quint16 byte = 1;
    constexpr quint16 ascii = 2;
    constexpr quint16 unsigned_long = 4;
    constexpr quint16 rational = 5;
    // Offsets count from the "II": 8 first directory, 26 GPS directory, 104 the seven fractions.
    byte_writer tiff;
    tiff.add("II").add_16(42).add_32(8);
    tiff.add_16(1);
    add_exif_entry(tiff, 0x8825, unsigned_long, 1, 26);
    tiff.add_32(0);
    tiff.add_16(6);
    add_exif_entry(tiff, 1, ascii, 2, position.latitude < 0 ? 'S' : 'N');
    add_exif_entry(tiff, 2, rational, 3, 104);
    add_exif_entry(tiff, 3, ascii, 2, position.longitude < 0 ? 'W' : 'E');
    add_exif_entry(tiff, 4, rational, 3, 128);
    add_exif_entry(tiff, 5, byte, 1, position.altitude < 0 ? 1 : 0);
    add_exif_entry(tiff, 6, rational, 1, 152);
    tiff.add_32(0);
    for (const int seconds : {std::abs(position.latitude), std::abs(position.longitude)}) {
        for (const int part : {seconds / 3600, seconds / 60 % 60, seconds % 60})
            tiff.add_32(static_cast<quint32>(part)).add_32(1);
    }
    tiff.add_32(static_cast<quint32>(std::abs(position.altitude))).add_32(1);
    return QByteArray("Exif\0\0", 6) + tiff.bytes();
}

/// The entropy-coded data of one block of one grey: the block's mean as a difference from 128 and
/// the end-of-block code. Both Huffman tables give every size a code of four bits, its own number.
QByteArray grey_block(int grey)
{
    const int difference = (grey - 128) * 8;
    int size = 0;
    while (std::abs(difference) >> size != 0)
        ++size;
    const int bits = difference < 0 ? difference + (1 << size) - 1 : difference;
    // size (4 bits), the difference (size bits), end of block (4 bits of 0), filled up with ones
    const int length = 4 + size + 4;
    const int filled = (length + 7) / 8 * 8;
    quint32 code = (static_cast<quint32>(size) << static_cast<quint32>(size + 4)) |
                   (static_cast<quint32>(bits) << 4U);
    code = ((code + 1U) << static_cast<quint32>(filled - length)) - 1U;
    QByteArray data;
    for (int shift = filled - 8; shift >= 0; shift -= 8) {
        data += static_cast<char>((code >> static_cast<quint32>(shift)) & 0xffU);
        if (data.back() == '\xff')
            data += '\0';
    }
    return data;
}

} // namespace

QByteArray png_picture(int width, int height, quint64 number)
{
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(static_cast<uint>(number * 0x9e3779U) | 0xff000000U);
    // The number in black and white dots along the first rows, so that no two pictures are equal.
    for (int bit = 0; bit < 64 && bit < width * height; ++bit)
        picture.setPixel(bit % width, bit / width,
                         (number >> static_cast<quint64>(bit) & 1U) != 0 ? 0xffffffffU
                                                                         : 0xff000000U);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "PNG"))
        throw evidence_error(u"cannot make a PNG picture"_s);
    return bytes;
}

QByteArray jpeg_picture(int grey, const gps_position *position)
{
    QByteArray file("\xff\xd8", 2);
    if (position != nullptr)
        file += jpeg_segment('\xe1', exif_data(*position));
    else
        file += jpeg_segment('\xe0', QByteArray("JFIF\0\1\1\0\0\1\0\1\0\0", 14));
    file += jpeg_segment('\xdb', QByteArray(1, '\0') + QByteArray(64, '\1'));
    file += jpeg_segment('\xc0', QByteArray("\x08\0\x08\0\x08\1\1\x11\0", 9));
    for (const char table : {'\x00', '\x10'}) {
        // Twelve codes, all of four bits, for the sizes 0 to 11.
        QByteArray contents(1, table);
        for (int bits = 1; bits <= 16; ++bits)
            contents += bits == 4 ? '\x0c' : '\0';
        for (char size = 0; size < 12; ++size)
            contents += size;
        file += jpeg_segment('\xc4', contents);
    }
    file += jpeg_segment('\xda', QByteArray("\1\1\0\0\x3f\0", 6));
    return file + grey_block(grey) + QByteArray("\xff\xd9", 2);
}

QByteArray gzip_file(const QByteArray &bytes)
{
    // qCompress: 4 bytes of length and 2 of zlib header before the deflated data, 4 bytes behind.
    const QByteArray deflated = qCompress(bytes).mid(6).chopped(4);
    byte_writer file;
    file.add(QByteArray("\x1f\x8b\x08\0\0\0\0\0\0\xff", 10)).add(deflated);
    file.add_32(crc32(bytes)).add_32(static_cast<quint32>(bytes.size()));
    return file.bytes();
}

QByteArray zip_archive(const QByteArray &file_name, const QByteArray &bytes)
{
    const auto size = static_cast<quint32>(bytes.size());
    const auto name_size = static_cast<quint16>(file_name.size());
    byte_writer common; // the fields that both headers hold: version to length of the extra field
    common.add_16(20).add_16(0x0800).add_16(0).add_16(0x4800).add_16(0x5661);
    common.add_32(crc32(bytes)).add_32(size).add_32(size).add_16(name_size).add_16(0);

    byte_writer file;
    file.add("PK\3\4").add(common.bytes()).add(file_name).add(bytes);
    const auto directory = static_cast<quint32>(file.bytes().size());
    file.add("PK\1\2").add_16(20).add(common.bytes());
    file.add_16(0).add_16(0).add_16(0).add_32(0).add_32(0).add(file_name);
    const auto directory_size = static_cast<quint32>(file.bytes().size()) - directory;
    file.add("PK\5\6").add_16(0).add_16(0).add_16(1).add_16(1);
    file.add_32(directory_size).add_32(directory).add_16(0);
    return file.bytes();
}

QByteArray pdf_document(const QByteArray &line)
{
    const QByteArray drawing = "BT /F1 18 Tf 72 720 Td (" + line + ") Tj ET";
    const std::array<QByteArray, 5> objects = {
        QByteArray("<< /Type /Catalog /Pages 2 0 R >>"),
        QByteArray("<< /Type /Pages /Kids [3 0 R] /Count 1 >>"),
        QByteArray("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R "
                   "/Resources << /Font << /F1 5 0 R >> >> >>"),
        "<< /Length " + QByteArray::number(drawing.size()) + " >>\nstream\n" + drawing +
            "\nendstream",
        QByteArray("<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>"),
    };
    QByteArray file = "%PDF-1.4\n";
    QByteArray offsets;
    int number = 0;
    for (const QByteArray &object : objects) {
        offsets += QByteArray::number(file.size()).rightJustified(10, '0') + " 00000 n \n";
        file += QByteArray::number(++number) + " 0 obj\n" + object + "\nendobj\n";
    }
    const QByteArray table = QByteArray::number(file.size());
    return file + "xref\n0 6\n0000000000 65535 f \n" + offsets +
           "trailer\n<< /Size 6 /Root 1 0 R >>\nstartxref\n" + table + "\n%%EOF\n";
}

} // namespace sample
