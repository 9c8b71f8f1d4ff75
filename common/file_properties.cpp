#include "common/plugin_static_function.h"
#include "common/values/text_values.h"

#include <QDirIterator>
#include <QFileInfo>

QString plugin_static_function::mining_suffix(const QString &path)
{
    QStringView name = QStringView(path).sliced(path.lastIndexOf(u'/') + 1);
    if (name.startsWith(u'.'))
        name = name.sliced(1);

    const qsizetype point = name.lastIndexOf(u'.');
    if (point < 0)
        return empty_text();
    return name.sliced(point + 1).toString();
}

QString plugin_static_function::mining_size(const QString &path)
{
    const QFileInfo entry(path);
    // Links of a mounted source lead into the examiner's own file system.
    if (!entry.exists() || entry.isSymbolicLink())
        return empty_text();
    if (!entry.isDir())
        return QString::number(entry.size());

    quint64 total_size = 0; // unsigned: sparse files can add up beyond any real volume
    QDirIterator walk(path, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    while (walk.hasNext()) {
        if (bool_cancel_extraction)
            return QString::number(entry.size());
        const QFileInfo found = walk.nextFileInfo();
        if (!found.isDir() && !found.isSymbolicLink())
            total_size += static_cast<quint64>(found.size());
    }
    return QString::number(total_size);
}
