#include "report/result_folder.h"

#include "report/terminal.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QSet>

using namespace Qt::StringLiterals;

namespace
{

const QString database_name = u"Opera.sqlite"_s;
const QString place = u"/Artifacts_Result/Opera"_s;

QStringList databases_of(const QString &argument)
{
    const QFileInfo named(argument);
    if (named.isFile())
        return {argument};
    for (const QString &folder : {QString(), place}) {
        const QString path = argument + folder + u'/' + database_name;
        if (QFileInfo(path).isFile())
            return {path};
    }
    QStringList found;
    QDirIterator files(argument, {database_name}, QDir::Files | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (files.hasNext() && !terminal::interrupted())
        found.append(files.next());
    found.sort();
    return found;
}

/// The folder that the examiner named for the result.
QString result_root(const QString &home)
{
    return home.endsWith(place) && home.size() > place.size() ? home.chopped(place.size()) : home;
}

QString common_folder(const std::vector<result_folder> &results)
{
    QString common = result_root(results.front().home) + u'/';
    for (const result_folder &result : results) {
        const QString root = result_root(result.home) + u'/';
        while (!root.startsWith(common))
            common.truncate(common.lastIndexOf(u'/', -2) + 1);
    }
    return common;
}

void name_cases(std::vector<result_folder> &results)
{
    if (results.empty())
        return;
    const QString common = common_folder(results);
    for (result_folder &result : results) {
        const QString root = result_root(result.home);
        QString name = root.mid(common.size());
        if (name.isEmpty())
            name = root.section(u'/', -1);
        result.name = name.toStdString();
    }
}

} // namespace

std::vector<result_folder> find_results(const QStringList &arguments)
{
    std::vector<result_folder> results;
    QSet<QString> seen;
    for (const QString &argument : arguments) {
        const QStringList found =
            argument.isEmpty() ? QStringList() : databases_of(QDir::cleanPath(argument));
        if (found.isEmpty())
            terminal::print_error(argument + u": there is no " + database_name + u" in it");
        for (const QString &path : found) {
            const QFileInfo file(path);
            const QString canonical = file.canonicalFilePath();
            if (canonical.isEmpty() || seen.contains(canonical))
                continue;
            seen.insert(canonical);
            const QString absolute = QDir::cleanPath(file.absoluteFilePath());
            results.push_back({absolute, QFileInfo(absolute).absolutePath(), {}});
        }
    }
    name_cases(results);
    return results;
}
