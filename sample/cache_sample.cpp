#include "sample/byte_writer.h"
#include "sample/evidence_files.h"
#include "sample/file_kinds.h"
#include "sample/file_notes.h"
#include "sample/profile.h"

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

/// The start of the cache's index and of its block files: a mark, the version, the rest empty.
QByteArray cache_file_start(quint32 mark, quint32 version, qsizetype size)
{
    byte_writer start;
    start.add_32(mark).add_32(version);
    return start.bytes() + QByteArray(size - start.bytes().size(), '\0');
}

/// What the cache needs for itself.
void write_bookkeeping(const QString &folder)
{
    write_file(folder + u"index", cache_file_start(0xc103cac3U, 0x20000U, 368 + 1024),
               latest_instant);
    for (int number = 0; number < 4; ++number)
        write_file(folder + u"data_" + QString::number(number),
                   cache_file_start(0xc104cac3U, 0x20000U, 8192), latest_instant);
}

QByteArray page_text(quint64 number)
{
    return "<!DOCTYPE html><html><head><title>Page " + QByteArray::number(number) +
           "</title></head><body><p>Invented text.</p></body></html>\n";
}

/// Files of the kinds that pages are made of, in turn.
QByteArray cached_bytes(qint64 number, number_source &numbers)
{
    const auto variant = static_cast<quint64>(number);
    switch (number % 8) {
    case 0:
        return png_picture(24, 24, variant);
    case 1:
        return jpeg_picture(static_cast<int>(variant % 256));
    case 2:
        return page_text(variant);
    case 3:
        return gzip_file(page_text(variant));
    case 4:
        return "GIF89a\x01" + QByteArray(1, '\0') + "\x01" + QByteArray(1, '\0') +
               QByteArray("\0\0\0;", 4);
    case 5:
        return "function f" + QByteArray::number(variant) + "() { return " +
               QByteArray::number(static_cast<quint64>(numbers.below(1000000))) + "; }\n";
    case 6:
        return pdf_document("Cached " + QByteArray::number(variant));
    default: {
        QByteArray noise;
        for (int byte = 0; byte < 200; ++byte)
            noise += static_cast<char>(numbers.below(256));
        return noise;
    }
    }
}

void write_cached_files(const QString &folder, qint64 count, number_source numbers)
{
    for (qint64 number = 1; number <= count; ++number) {
        const QString name = u"f_" + QString::number(number, 16).rightJustified(6, u'0');
        const qint64 stored = days_ago(40) + numbers.below(39 * day);
        write_file(folder + name, cached_bytes(number, numbers), stored);
    }
}

/// A picture with its place that was opened once from the cache.
void write_noted_picture(const QString &path, bool with_notes)
{
    constexpr gps_position western_valley = {36 * 3600 + 15 * 60, -(116 * 3600 + 49 * 60 + 33),
                                             -86};
    write_file(path, jpeg_picture(90, &western_valley), days_ago(15));
    if (with_notes)
        write_notes(path,
                    {.where_froms = {u"https://photos.silverbeach.test/valley (evening).jpg"_s,
                                     u"https://photos.silverbeach.test/Jörg’s album"_s},
                     .downloaded = days_ago(15),
                     .last_used = days_ago(14)});
}

} // namespace

void write_cache_folders(const profile &account)
{
    // One file in five lies in the media cache.
    const qint64 files = account.rows(cache_files);
    const QString cache = account.cache_folder + u"Cache/";
    write_bookkeeping(cache);
    write_cached_files(cache, files - files / 5, account.numbers("cache"));
    write_file(cache + u"old_entries/f_00000a", png_picture(12, 12, 4711), days_ago(50));
    write_file(cache + u"old_entries/data_9", "not cached\n", days_ago(50));
    write_file(cache + u".hidden entry.html", page_text(0), days_ago(45));
    write_file(cache + u"empty", QByteArray(), days_ago(44));
    write_noted_picture(cache + u"old_entries/f_00000b", !account.windows());

    const QString media = account.cache_folder + u"Media Cache/";
    write_bookkeeping(media);
    write_cached_files(media, files / 5, account.numbers("media cache"));
}

} // namespace sample
