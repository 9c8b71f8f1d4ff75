#include "common/evidence/sorted_walk.h"

#include "common/evidence/folder_walk.h"

#ifdef Q_OS_UNIX

bool for_each_file(const QString &folder, const QString &temporary_directory,
                   const std::function<bool()> &cancelled,
                   const std::function<bool(const QString &path)> &each)
{
    return walk_folder(folder, temporary_directory, cancelled,
                       {.entry = [&each](const native_place &place, const struct stat &entry) {
                           return !S_ISREG(entry.st_mode) || each(place.shown);
                       }});
}

#else

#include "common/named_connection.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QtSql/QSqlQuery>

using namespace Qt::StringLiterals;

namespace
{

/// Paths are kept as bytes, so that they are ordered alike in every locale and come back unchanged.
bool list_files(const QString &folder, QSqlDatabase &scratch,
                const std::function<bool()> &cancelled)
{
    QSqlQuery query(scratch);
    if (!query.exec(u"PRAGMA synchronous = OFF"_s) || !query.exec(u"PRAGMA journal_mode = OFF"_s) ||
        !query.exec(u"CREATE TABLE files(path BLOB)"_s) || !scratch.transaction() ||
        !query.prepare(u"INSERT INTO files VALUES(?)"_s))
        return false;
    QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext() && !cancelled()) {
        const QFileInfo entry = entries.nextFileInfo();
        if (entry.isSymbolicLink() || !entry.isFile())
            continue;
        query.bindValue(0, entry.filePath().toUtf8());
        if (!query.exec())
            return false;
    }
    return scratch.commit();
}

} // namespace

bool for_each_file(const QString &folder, const QString &temporary_directory,
                   const std::function<bool()> &cancelled,
                   const std::function<bool(const QString &path)> &each)
{
    const QString scratch_path = temporary_directory + u"files_by_path.sqlite"_s;
    QFile::remove(scratch_path);
    bool complete = false;
    {
        named_connection scratch(u"for_each_file"_s, scratch_path);
        complete = scratch.is_open() && list_files(folder, scratch.database(), cancelled);
        if (complete) {
            QSqlQuery files(scratch.database());
            files.setForwardOnly(true);
            complete = files.exec(u"SELECT path FROM files ORDER BY path"_s);
            while (!cancelled() && files.next()) {
                if (!each(QString::fromUtf8(files.value(0).toByteArray())))
                    break;
            }
        }
    }
    QFile::remove(scratch_path);
    return complete;
}

#endif
