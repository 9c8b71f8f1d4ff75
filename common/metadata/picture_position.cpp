#include "common/metadata/picture_position.h"

#include <QtEndian>

#include <algorithm>
#include <array>

#ifdef OPERA_WITH_EXIV2
#include <exiv2/exiv2.hpp>
#include <mutex>
#endif

namespace
{

bool is_heic(const QByteArray &beginning)
{
    constexpr std::array brands = {"heic", "heix", "heim", "heis", "hevc", "mif1", "msf1", "avif"};
    return beginning.mid(4, 4) == "ftyp" &&
           std::any_of(brands.begin(), brands.end(),
                       [&beginning](const char *brand) { return beginning.mid(8, 4) == brand; });
}

constexpr qint64 most_bytes = 64 << 20;
constexpr qint64 least_bytes = 64 << 10;
constexpr qint64 most_times_stored = 16; ///< that a file which its file system packs may be longer
constexpr int most_parts = 10'000;       ///< that are passed over in search of the position
constexpr int most_kept = 4;
constexpr qint64 largest_part = 256 << 10; ///< with a position: more than a JPEG segment can hold

/// Exif data of a JPEG file: segments of the mark 0xff, a kind and a length, behind it the picture.
QByteArray jpeg_with_position(QIODevice &file)
{
    QByteArray kept = file.read(2);
    int kept_parts = 0;
    for (int part = 0; part < most_parts && kept_parts < most_kept; ++part) {
        const QByteArray head = file.read(4);
        const auto kind = static_cast<quint8>(head.size() == 4 ? head.at(1) : '\xda');
        if (kind == 0xda || kind == 0xd9 || head.at(0) != '\xff')
            break;
        const qint64 length = qFromBigEndian<quint16>(head.constData() + 2) - 2;
        if (length < 0)
            break;
        if (kind == 0xe1 && file.peek(6) == QByteArray("Exif\0\0", 6)) {
            kept += head + file.read(length);
            ++kept_parts;
        } else if (!file.seek(file.pos() + length)) {
            break;
        }
    }
    return kept + QByteArray("\xff\xda\0\2\xff\xd9", 6);
}

/// The chunks of a PNG file: length, kind, content, checksum.
QByteArray png_with_position(QIODevice &file)
{
    constexpr qint64 around_content = 12;
    QByteArray kept = file.read(8);
    int kept_parts = 0;
    for (int part = 0; part < most_parts && kept_parts < most_kept; ++part) {
        const QByteArray head = file.peek(100);
        if (head.size() < around_content)
            break;
        const qint64 length = qFromBigEndian<quint32>(head.constData());
        const QByteArray kind = head.mid(4, 4);
        const QByteArray key = head.mid(8, head.indexOf('\0', 8) - 8);
        const bool is_text = kind == "tEXt" || kind == "zTXt" || kind == "iTXt";
        const bool wanted =
            kind == "eXIf" ||
            (is_text && (key == "Raw profile type exif" || key == "Raw profile type APP1"));
        if ((wanted && length <= largest_part) || kind == "IHDR" || kind == "IEND") {
            kept += file.read(std::min(length, largest_part) + around_content);
            kept_parts += wanted ? 1 : 0;
        } else if (!file.seek(file.pos() + length + around_content)) {
            break;
        }
        if (kind == "IEND")
            return kept;
    }
    return kept + QByteArray("\0\0\0\0IEND\xae\x42\x60\x82", 12);
}

/// The chunks of a WebP file: kind, length, content, filled up to an even length.
QByteArray webp_with_position(QIODevice &file)
{
    QByteArray kept = file.read(12);
    for (int part = 0; part < most_parts; ++part) {
        const QByteArray head = file.peek(8);
        if (head.size() < 8)
            break;
        const qint64 length = qFromLittleEndian<quint32>(head.constData() + 4);
        const qint64 whole = 8 + length + length % 2;
        if (head.startsWith("VP8X") || (head.startsWith("EXIF") && length <= largest_part))
            kept += file.read(std::min(whole, 8 + largest_part));
        else if (!file.seek(file.pos() + whole))
            break;
        if (head.startsWith("EXIF"))
            break;
    }
    qToLittleEndian(static_cast<quint32>(kept.size() - 8), kept.data() + 4);
    return kept;
}

} // namespace

QByteArray position_data(QIODevice &file, qint64 stored)
{
    const QByteArray beginning = file.peek(16);
    if (beginning.startsWith("\xff\xd8\xff"))
        return jpeg_with_position(file);
    if (beginning.startsWith("\x89PNG\r\n\x1a\n"))
        return png_with_position(file);
    if (beginning.startsWith("RIFF"))
        return beginning.size() < 12 ? QByteArray() : webp_with_position(file);
    return file.read(std::clamp(stored * most_times_stored, least_bytes, most_bytes));
}

bool may_hold_position(const QByteArray &beginning)
{
    return beginning.startsWith("\xff\xd8\xff") || beginning.startsWith("\x89PNG\r\n\x1a\n") ||
           beginning.startsWith(QByteArray("II*\0", 4)) ||
           beginning.startsWith(QByteArray("MM\0*", 4)) ||
           (beginning.startsWith("RIFF") && beginning.mid(8, 4) == "WEBP") || is_heic(beginning);
}

#ifdef OPERA_WITH_EXIV2

namespace
{

std::mutex library_in_use;

/// The library keeps state for the whole process and writes what it thinks of a file to the
/// standard error stream.
class quiet_library
{
public:
    quiet_library() : lock_(library_in_use), level_(Exiv2::LogMsg::level())
    {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
    }
    ~quiet_library() { Exiv2::LogMsg::setLevel(level_); }
    quiet_library(const quiet_library &) = delete;
    quiet_library &operator=(const quiet_library &) = delete;

private:
    std::lock_guard<std::mutex> lock_;
    Exiv2::LogMsg::Level level_;
};

std::optional<double> quotient(const Exiv2::Exifdatum &value, int part)
{
    // The library returns unsigned fractions as signed ones: a great number would turn negative.
    const bool is_signed = value.typeId() == Exiv2::signedRational;
    if (!is_signed && value.typeId() != Exiv2::unsignedRational)
        return {};
    const Exiv2::Rational fraction = value.toRational(part);
    if (fraction.second == 0 || (!is_signed && (fraction.first < 0 || fraction.second < 0)))
        return {};
    return static_cast<double>(fraction.first) / static_cast<double>(fraction.second);
}

/// Degrees, minutes and seconds; the latter two may be missing.
std::optional<double> angle(const Exiv2::Exifdatum &value)
{
    if (value.count() < 1 || value.count() > 3)
        return {};
    double degrees = 0;
    double unit = 1;
    for (int part = 0; part < static_cast<int>(value.count()); ++part) {
        const std::optional<double> number = quotient(value, part);
        if (!number || *number < 0)
            return {};
        degrees += *number / unit;
        unit *= 60;
    }
    return degrees;
}

std::optional<double> coordinate(const Exiv2::ExifData &data, const char *key,
                                 const char *reference_key, char positive, char negative,
                                 double limit)
{
    const auto value = data.findKey(Exiv2::ExifKey(key));
    const auto reference = data.findKey(Exiv2::ExifKey(reference_key));
    if (value == data.end() || reference == data.end())
        return {};
    const std::string side = reference->toString();
    const std::optional<double> degrees = angle(*value);
    if (side.empty() || (side[0] != positive && side[0] != negative) || !degrees ||
        *degrees > limit)
        return {};
    return side[0] == negative ? -*degrees : *degrees;
}

std::optional<double> altitude(const Exiv2::ExifData &data)
{
    const auto value = data.findKey(Exiv2::ExifKey("Exif.GPSInfo.GPSAltitude"));
    if (value == data.end() || value->count() != 1)
        return {};
    const std::optional<double> metres = quotient(*value, 0);
    const auto reference = data.findKey(Exiv2::ExifKey("Exif.GPSInfo.GPSAltitudeRef"));
    const bool below = reference != data.end() && reference->toString() == "1";
    return metres && below ? -*metres : metres;
}

picture_place place_in(const Exiv2::ExifData &data)
{
    return {
        coordinate(data, "Exif.GPSInfo.GPSLatitude", "Exif.GPSInfo.GPSLatitudeRef", 'N', 'S', 90),
        coordinate(data, "Exif.GPSInfo.GPSLongitude", "Exif.GPSInfo.GPSLongitudeRef", 'E', 'W',
                   180),
        altitude(data)};
}

} // namespace

picture_place picture_place_of(const QByteArray &bytes)
{
    if (!may_hold_position(bytes))
        return {};
    try {
        const quiet_library quiet;
#if defined(EXV_ENABLE_BMFF) && !EXIV2_TEST_VERSION(0, 28, 0)
        Exiv2::enableBMFF(true);
#endif
        const auto image = Exiv2::ImageFactory::open(
            reinterpret_cast<const Exiv2::byte *>(bytes.constData()), bytes.size());
        image->readMetadata();
        return place_in(image->exifData());
    } catch (...) {
        // Whatever is wrong with the file: it shows no place.
        return {};
    }
}

#else

picture_place picture_place_of(const QByteArray & /*bytes*/)
{
    return {};
}

#endif
