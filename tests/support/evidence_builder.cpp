#include "tests/support/evidence_builder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace
{

void must(bool condition, const char *what)
{
    if (!condition)
        qFatal("evidence_builder: %s", what);
}

void execute(sqlite3 *database, const QByteArray &sql)
{
    char *error = nullptr;
    if (sqlite3_exec(database, sql.constData(), nullptr, nullptr, &error) != SQLITE_OK)
        qFatal("evidence_builder: %s in %s", error, sql.constData());
}

sqlite3 *open_database(const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    sqlite3 *database = nullptr;
    must(sqlite3_open(path.toUtf8().constData(), &database) == SQLITE_OK, "cannot open database");
    return database;
}

QByteArray content_of(const QString &path)
{
    // Reading must not move the access time, which is part of what is compared.
    QFile file;
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOATIME);
    must(file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle),
         "cannot read file");
    return file.readAll();
}

} // namespace

evidence_builder::evidence_builder()
{
    must(directory_.isValid(), "no temporary folder");
    root_ = directory_.path() + u"/evidence ü/"_s;
    QDir().mkpath(root_ + u"Users"_s);
}

void evidence_builder::file(const QString &relative, const QByteArray &content) const
{
    const QString target = path(relative);
    QDir().mkpath(QFileInfo(target).path());
    QFile file(target);
    must(file.open(QIODevice::WriteOnly), "cannot write file");
    must(file.write(content) == content.size(), "cannot write file");
}

void evidence_builder::sqlite(const QString &relative, const QByteArray &sql) const
{
    sqlite3 *database = open_database(path(relative));
    execute(database, sql);
    sqlite3_close(database);
}

void evidence_builder::sqlite_wal(const QString &relative, const QByteArray &sql) const
{
    const QString target = path(relative);
    sqlite3 *database = open_database(target);
    execute(database, "PRAGMA journal_mode=WAL; PRAGMA wal_autocheckpoint=0;" + sql);
    // Closing would move the rows into the database, so the files are taken while it is open.
    const QByteArray main = content_of(target);
    const QByteArray wal = content_of(target + u"-wal"_s);
    sqlite3_close(database);
    file(relative, main);
    file(relative + u"-wal"_s, wal);
}

QMap<QString, QString> evidence_builder::fingerprints() const
{
    QMap<QString, QString> all;
    QDirIterator entries(root_, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo entry(entries.next());
        QString print = QString::number(entry.size()) + u' ' +
                        QString::number(entry.lastModified().toMSecsSinceEpoch());
        if (entry.isFile())
            print += u' ' + QString::number(entry.lastRead().toMSecsSinceEpoch()) + u' ' +
                     QString::fromLatin1(QCryptographicHash::hash(content_of(entry.filePath()),
                                                                  QCryptographicHash::Sha256)
                                             .toHex());
        all.insert(entry.filePath().mid(root_.size()), print);
    }
    return all;
}

QString macos_profile(const QString &account)
{
    return u"Users/"_s + account + u"/Library/Application Support/com.operasoftware.Opera/";
}

QString macos_cache(const QString &account)
{
    return u"Users/"_s + account + u"/Library/Caches/com.operasoftware.Opera/";
}

QString winos_profile(const QString &account)
{
    return u"Users/"_s + account + u"/AppData/Roaming/Opera Software/Opera Stable/";
}
