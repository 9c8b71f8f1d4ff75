#include "sample/file_notes.h"

#include "sample/byte_writer.h"
#include "sample/evidence_files.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QList>

#include <algorithm>
#include <bit>

#ifdef Q_OS_LINUX
#include <sys/xattr.h>
#endif

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

struct attribute {
    QByteArray name;
    QByteArray value;
};

QByteArray big_endian(quint64 number, int size)
{
    QByteArray bytes;
    for (int shift = (size - 1) * 8; shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> static_cast<quint64>(shift) & 0xffU);
    return bytes;
}

/// An object's first byte with its length; lengths from 15 on follow as a number of two bytes.
QByteArray object_start(quint8 kind, qsizetype length)
{
    if (length < 15)
        return big_endian(kind | static_cast<quint8>(length), 1);
    return big_endian(kind | 15U, 1) + big_endian(0x11, 1) +
           big_endian(static_cast<quint64>(length), 2);
}

QByteArray text_object(const QString &text)
{
    if (std::all_of(text.begin(), text.end(), [](QChar c) { return c < u'\x80'; }))
        return object_start(0x50, text.size()) + text.toLatin1();
    QByteArray object = object_start(0x60, text.size());
    for (const QChar c : text)
        object += big_endian(c.unicode(), 2);
    return object;
}

QByteArray date_object(qint64 unix_seconds)
{
    constexpr qint64 start_of_2001 = 978'307'200;
    const auto seconds = static_cast<double>(unix_seconds - start_of_2001);
    return big_endian(0x33, 1) + big_endian(std::bit_cast<quint64>(seconds), 8);
}

/// A binary property list that is a list of the objects: the outer list first, then its items.
QByteArray list_of(const QList<QByteArray> &items)
{
    QByteArray list = object_start(0xa0, items.size());
    for (int number = 1; number <= items.size(); ++number)
        list += big_endian(static_cast<quint64>(number), 1);
    QByteArray file = "bplist00";
    QByteArray offsets;
    for (const QByteArray &object : QList<QByteArray>{list} + items) {
        offsets += big_endian(static_cast<quint64>(file.size()), 2);
        file += object;
    }
    const auto table = static_cast<quint64>(file.size());
    const auto objects = static_cast<quint64>(items.size() + 1);
    return file + offsets + QByteArray(6, '\0') + big_endian(2, 1) + big_endian(1, 1) +
           big_endian(objects, 8) + big_endian(0, 8) + big_endian(table, 8);
}

QList<attribute> attributes_of(const file_notes &notes)
{
    QList<QByteArray> addresses;
    for (const QString &address : notes.where_froms)
        addresses.append(text_object(address));
    QList<attribute> attributes = {
        {"com.apple.metadata:kMDItemDownloadedDate", list_of({date_object(notes.downloaded)})},
        {"com.apple.metadata:kMDItemWhereFroms", list_of(addresses)},
    };
    if (notes.last_used != 0) {
        byte_writer value;
        value.add_64(static_cast<quint64>(notes.last_used)).add_64(250'000'000);
        attributes.append({"com.apple.lastuseddate#PS", value.bytes()});
    }
    return attributes;
}

/// The AppleDouble file of the attributes: a header with two entries (the Finder's information with
/// the attributes behind it, an empty resource fork), then the table of attributes, then their
/// values. All numbers are big-endian, all offsets count from the start of the file.
QByteArray apple_double(const QList<attribute> &attributes)
{
    constexpr qsizetype finder_info = 50;
    constexpr qsizetype finder_info_size = 32;
    constexpr qsizetype padding = 2;
    constexpr qsizetype table_header_size = 36;
    QByteArray values;
    qsizetype values_start = finder_info + finder_info_size + padding + table_header_size;
    for (const attribute &one : attributes)
        values_start += (11 + one.name.size() + 1 + 3) / 4 * 4;

    QByteArray entries;
    for (const attribute &one : attributes) {
        QByteArray entry =
            big_endian(static_cast<quint64>(values_start + values.size()), 4) +
            big_endian(static_cast<quint64>(one.value.size()), 4) + big_endian(0, 2) +
            big_endian(static_cast<quint64>(one.name.size() + 1), 1) + one.name + '\0';
        entries += entry.leftJustified((entry.size() + 3) / 4 * 4, '\0');
        values += one.value;
    }
    const auto end = static_cast<quint64>(values_start + values.size());
    return big_endian(0x00051607, 4) + big_endian(0x00020000, 4) + QByteArray("Mac OS X        ") +
           big_endian(2, 2) + big_endian(9, 4) + big_endian(finder_info, 4) +
           big_endian(end - finder_info, 4) + big_endian(2, 4) + big_endian(end, 4) +
           big_endian(0, 4) + QByteArray(finder_info_size + padding, '\0') + "ATTR" +
           big_endian(0, 4) + big_endian(end, 4) +
           big_endian(static_cast<quint64>(values_start), 4) +
           big_endian(static_cast<quint64>(values.size()), 4) + QByteArray(12, '\0') +
           big_endian(0, 2) + big_endian(static_cast<quint64>(attributes.size()), 2) + entries +
           values;
}

/// A file system that has no such attributes is no failure.
void set_attribute(const QString &path, const attribute &one)
{
#ifdef Q_OS_LINUX
    const QByteArray name = "user." + one.name;
    static_cast<void>(::setxattr(QFile::encodeName(path).constData(), name.constData(),
                                 one.value.constData(), static_cast<size_t>(one.value.size()), 0));
#else
    static_cast<void>(path);
    static_cast<void>(one);
#endif
}

} // namespace

void write_notes(const QString &path, const file_notes &notes)
{
    const QList<attribute> attributes = attributes_of(notes);
    for (const attribute &one : attributes)
        set_attribute(path, one);
    const QFileInfo file(path);
    write_file(file.path() + u"/._" + file.fileName(), apple_double(attributes),
               file.lastModified().toSecsSinceEpoch());
}

} // namespace sample
