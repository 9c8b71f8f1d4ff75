#pragma once

#include <QByteArray>
#include <QIODevice>

#include <optional>

/// Where a picture was taken, as its Exif data say.
struct picture_place {
    std::optional<double> latitude;  ///< degrees; negative: south
    std::optional<double> longitude; ///< degrees; negative: west
    std::optional<double> altitude;  ///< metres; negative: below the sea
};

/// True for the beginning (16 bytes suffice) of a JPEG, PNG, TIFF, WebP or HEIC file.
bool may_hold_position(const QByteArray &beginning);

/// Of a picture file what may hold its position, as a file of the same kind: of a JPEG, PNG or WebP
/// file only the parts with Exif data, of the others the beginning, and both bounded by what the
/// file stores (bytes; less than its size when it has holes).
QByteArray position_data(QIODevice &file, qint64 stored);

/// The place in the bytes of a picture file. A coordinate is left out when it has no reference
/// (N or S, E or W), lies outside of the earth or cannot be computed. Everything is left out when
/// the library that reads the data is not built in.
picture_place picture_place_of(const QByteArray &bytes);
