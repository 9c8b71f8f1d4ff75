#pragma once

#include <QByteArray>
#include <QString>

namespace sample
{

/// A small PNG picture; another number gives another picture.
QByteArray png_picture(int width, int height, quint64 number);

/// A picture's place on earth: whole seconds of arc, negative in the south and west, and metres.
struct gps_position {
    int latitude;
    int longitude;
    int altitude;
};

/// A grey JPEG picture (8 by 8 dots), with its place in the Exif data when one is given.
QByteArray jpeg_picture(int grey, const gps_position *position = nullptr);

/// The bytes as a gzip file.
QByteArray gzip_file(const QByteArray &bytes);

/// A zip archive that holds one file, not compressed.
QByteArray zip_archive(const QByteArray &file_name, const QByteArray &bytes);

/// A PDF document with one page and one line of text (letters, digits and blanks).
QByteArray pdf_document(const QByteArray &line);

} // namespace sample
