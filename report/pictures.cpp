#include "report/pictures.h"

#include "report/result_database.h"
#include "report/texts.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace
{

constexpr qint64 largest_picture = 256 * 1024;
constexpr quint32 longest_side = 4096;
constexpr qsizetype most_exported = 100'000;
constexpr size_t longest_path = 4096;

/// The media type by the first bytes, for kinds that are pictures and nothing else (SVG is a
/// document). Empty also for sides that only a picture made to fill memory has.
QByteArray media_type(const QByteArray &bytes)
{
    const auto at = [&bytes](qsizetype place) { return bytes.constData() + place; };
    if (bytes.startsWith("\x89PNG\r\n\x1a\n") && bytes.size() > 24)
        return qFromBigEndian<quint32>(at(16)) <= longest_side &&
                       qFromBigEndian<quint32>(at(20)) <= longest_side
                   ? "image/png"
                   : "";
    if (bytes.startsWith("GIF8") && bytes.size() > 10)
        return qFromLittleEndian<quint16>(at(6)) <= longest_side &&
                       qFromLittleEndian<quint16>(at(8)) <= longest_side
                   ? "image/gif"
                   : "";
    if (bytes.startsWith("\xff\xd8\xff"))
        return "image/jpeg";
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP")
        return "image/webp";
    return {};
}

} // namespace

pictures::pictures(result_database &database, qint64 &budget)
    : folder_(QFileInfo(database.folder().home).canonicalFilePath()), budget_(budget)
{
    const stored_table *const table = database.table("exportfilelist");
    if (table == nullptr)
        return;
    auto rows = database.rows(*table, {table->column("filepath"), table->column("exp_relativepath"),
                                       table->column("exp_newpath")});
    while (rows && exported_.size() < most_exported && rows->next()) {
        const std::string_view relative = rows->text(1);
        const std::string_view path = relative.empty() ? rows->text(2) : relative;
        if (path.size() <= longest_path && rows->text(0).size() <= longest_path)
            exported_.insert(texts::to_qstring(rows->text(0)), texts::to_qstring(path));
    }
}

std::string pictures::data_of(std::string_view path)
{
    if (path.empty() || path.size() > longest_path || folder_.isEmpty())
        return {};
    QString named = texts::to_qstring(path);
    if (!named.startsWith("./"_L1)) {
        named = exported_.value(named);
        if (named.isEmpty())
            return {};
    }
    const QFileInfo info(QFileInfo(named).isRelative() ? folder_ + u'/' + named : named);
    const QString real = info.canonicalFilePath();
    if (!real.startsWith(folder_ + u'/') || !info.isFile() ||
        info.size() > qMin(largest_picture, budget_))
        return {};
    QFile file(real);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.read(largest_picture);
    const QByteArray type = media_type(bytes);
    if (type.isEmpty())
        return {};
    budget_ -= bytes.size();
    return "data:" + type.toStdString() + ";base64," + bytes.toBase64().toStdString();
}
