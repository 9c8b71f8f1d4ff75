#include "common/artefacts/exported_pictures.h"

#include "common/evidence/evidence_file.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace
{

constexpr qsizetype longest_name = 200; ///< bytes; file systems commonly take 255

/// Makes way for a new file: what is there is removed, a link instead of what it points at.
void clear_the_way(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile::remove(path);
}

} // namespace

QString safe_picture_name(const QStringList &parts, const QString &suffix)
{
    QString name = parts.join(u'_') + suffix;
    const bool suits = std::ranges::none_of(name, [](QChar c) {
        return c == u'/' || c == u'\\' || c == u':' || c.unicode() < u' ' || c.unicode() == 0x7f;
    });
    if (!suits || name.isEmpty() || name.contains(u".."_s) || name.toUtf8().size() > longest_name)
        return {};
    return name;
}

bool write_picture(const QString &path, const QByteArray &bytes, QString *error)
{
    clear_the_way(path);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.write(bytes) == bytes.size() &&
        file.flush())
        return true;
    if (error != nullptr)
        *error = file.errorString();
    return false;
}

bool copy_picture(const QString &source, const QString &target)
{
    clear_the_way(target);
    return copy_evidence_file(source, target);
}
