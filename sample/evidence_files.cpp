#include "sample/evidence_files.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTimeZone>

using namespace Qt::StringLiterals;

namespace sample
{

void fail_to_write(const QFileDevice &file)
{
    // A write that stops halfway, as on a full disk, is no error to the device.
    const QString reason =
        file.error() == QFileDevice::NoError ? u"not all bytes were written"_s : file.errorString();
    throw evidence_error(u"cannot write " + file.fileName() + u": " + reason);
}

void make_folder(const QString &path)
{
    if (!QDir().mkpath(path))
        throw evidence_error(u"cannot make the folder " + path);
}

void make_folder_of(const QString &file)
{
    make_folder(QFileInfo(file).path());
}

void date_file(const QString &path, qint64 modified)
{
    QFile file(path);
    const QDateTime time = QDateTime::fromSecsSinceEpoch(modified, QTimeZone::utc());
    if (!file.open(QIODevice::ReadWrite) ||
        !file.setFileTime(time, QFileDevice::FileModificationTime))
        throw evidence_error(u"cannot date " + path + u": " + file.errorString());
}

void write_file(const QString &path, const QByteArray &bytes, qint64 modified)
{
    make_folder_of(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        fail_to_write(file);
    file.close();
    date_file(path, modified);
}

} // namespace sample
