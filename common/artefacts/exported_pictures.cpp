#include "common/artefacts/exported_pictures.h"

#include "common/evidence/evidence_file.h"
#include "common/evidence/native_path.h"

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

/// True when a regular file, no link, has these bytes. It may be of an earlier run.
bool holds_same_bytes(const QString &path, const QString &source)
{
    evidence_file there(path);
    evidence_file wanted(source);
    if (!there.open_for_reading(evidence_file::links::refused) || !wanted.open_for_reading() ||
        there.size() != wanted.size())
        return false;
    constexpr qint64 block = 262'144;
    while (!wanted.atEnd()) {
        const QByteArray bytes = wanted.read(block);
        if (bytes.isEmpty() || there.read(block) != bytes)
            return false;
    }
    return true;
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

QString copy_picture(const QString &source, const QString &folder, const QString &account,
                     const QStringList &parts, const QString &suffix, copied_pictures &copied)
{
    const copied_pictures::identity identity = status_of(source).identity;
    if (const auto known = copied.names.find({account, identity}); known != copied.names.end())
        return known->second;
    QString name = safe_picture_name(parts, suffix);
    if (name.isEmpty())
        return {};
    // A file system may not tell case. Of very many pictures of one name each takes the number
    // behind the last one's.
    int &number = copied.numbers[name.toLower()];
    for (bool free = false; !free; ++number) {
        if (number > 0)
            name = safe_picture_name(parts + QStringList(QString::number(number + 1)), suffix);
        if (name.isEmpty())
            return {};
        const QFileInfo there(folder + name);
        const bool is_same = !there.isSymLink() && holds_same_bytes(there.filePath(), source);
        free = there.isSymLink() || !there.exists();
        if (free) {
            clear_the_way(there.filePath());
            if (!copy_evidence_file(source, there.filePath()))
                return {};
        }
        free = free || is_same;
    }
    if (identity != copied_pictures::identity())
        copied.names.emplace(std::pair(account, identity), name);
    return name;
}
