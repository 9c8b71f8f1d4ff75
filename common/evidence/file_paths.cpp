#include "common/evidence/file_paths.h"

#include "common/debug_log.h"
#include "common/evidence/evidence_file.h"
#include "common/run_state.h"
#include "common/values/text_values.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <QSet>

using namespace Qt::StringLiterals;

namespace
{

const QString home_directory_source = u"macOS_Home_Directory"_s;

QString with_leading_slash(const QString &path)
{
    if (path.startsWith(u'/') || path.trimmed().isEmpty())
        return path;
    return u'/' + path;
}

QSet<QString> trimmed_entry_names(const QString &directory)
{
    QSet<QString> names;
    QDirIterator entries(directory,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        entries.next();
        names.insert(entries.fileName().trimmed());
    }
    return names;
}

/// Copies by reading and writing, so that each side's failure can be named.
void copy_file(const QString &source, const QString &destination, const QString &signature)
{
    evidence_file from(source);
    if (!from.open_for_reading(evidence_file::links::refused)) {
        debug_log(u"[copy_directory] source file open ----FAILED---- :"_s + source, signature);
        debug_log(u"[copy_directory] Error:"_s + from.errorString(), signature);
        return;
    }
    QFile to(destination);
    if (!to.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        debug_log(u"[copy_directory] destination file open ----FAILED---- :"_s + destination,
                  signature);
        debug_log(u"[copy_directory] Error:"_s + to.errorString(), signature);
        return;
    }
    while (!from.atEnd()) {
        const QByteArray block = from.read(262'144);
        if (block.isEmpty() || to.write(block) != block.size()) {
            debug_log(u"[copy_directory] Error:"_s + from.errorString() + u' ' + to.errorString(),
                      signature);
            return;
        }
    }
}

} // namespace

QString free_file_name(const QString &directory, const QString &file_path)
{
    QDir().mkpath(directory);
    const QString file_name = QFileInfo(file_path).fileName();
    const auto candidate = [&file_name](qint64 counter) {
        return counter == 0 ? file_name : QString::number(counter) + u'_' + file_name;
    };
    const auto exists = [&](qint64 counter) {
        const QFileInfo entry(directory + u'/' + candidate(counter));
        return entry.exists() || entry.isSymbolicLink();
    };

    // Thousands of accounts have a file of this name: where the numbers that were given out are
    // still taken, the search goes on behind them, without listing the directory each time.
    static thread_local QHash<QString, qint64> next_counters;
    qint64 &next = next_counters[directory + u'/' + file_name];
    if (next > 0 && exists(0) && exists(next - 1)) {
        while (exists(next)) {
            if (run_is_cancelled())
                return {};
            ++next;
        }
    } else {
        const QSet<QString> taken = trimmed_entry_names(directory);
        for (next = 0; taken.contains(candidate(next).trimmed()); ++next) {
        }
    }
    return run_is_cancelled() ? QString() : candidate(next++);
}

bool folder_has_entry(const QString &directory, const QString &file_name)
{
    return trimmed_entry_names(directory).contains(file_name.trimmed());
}

QString complete_file_path(const QString &path, const QString &user_name,
                           const QString &source_type)
{
    static constexpr QLatin1StringView users = "/Users/"_L1;
    QString complete = path;
    if (source_type == home_directory_source && complete.startsWith(users)) {
        const qsizetype end_of_user = complete.indexOf(u'/', users.size());
        const QString rest = end_of_user < 0 ? QString() : complete.mid(end_of_user);
        complete = users + user_name + rest;
    }
    return with_leading_slash(complete);
}

QString relative_file_path(const QString &path, const QString &prefix, const QString &source_type)
{
    QString relative = path;
    if (source_type == home_directory_source) {
        if (const qsizetype found = relative.indexOf(prefix); found >= 0)
            relative.remove(0, found + prefix.size());
    }
    return with_leading_slash(relative);
}

std::pair<QString, QString> source_file_columns(const QString &path, const QString &prefix,
                                                const QString &source_type)
{
    return {relative_file_path(path, prefix, source_type),
            source_type == home_directory_source ? path : u""_s};
}

std::pair<QString, QString> account_of_path(const QString &path, const QString &prefix)
{
    if (source_accounts().isEmpty())
        return {u""_s, u""_s};
    const QStringList parts = path.mid(prefix.size()).split(u'/');
    if (parts.size() < 2)
        return {u""_s, u""_s};
    const QString &candidate = parts.at(1);
    for (const auto &account : source_accounts()) {
        if (account.system_user == candidate)
            return {account.system_user, account.domain_user};
    }
    return {candidate, u""_s};
}

void copy_folder(const QString &source, const QString &destination)
{
    const QString signature =
        u"static void plugin_static_function::copy_directory(QString, QString)"_s;
    if (source.isEmpty() || !QDir(source).exists()) {
        debug_log(u"[copy_directory] source diectory does not exist ----FAILED---- :"_s + source,
                  signature);
        return;
    }
    // Asked of what exists, since a folder that is created in the source would be a trace already.
    QString existing = QDir::cleanPath(QDir(destination).absolutePath());
    while (!QFileInfo::exists(existing) && !QDir(existing).isRoot())
        existing = QFileInfo(existing).path();
    if (is_inside_folder(existing, source)) {
        debug_log(u"[copy_directory] Error:destination lies in the source, "_s + destination,
                  signature);
        return;
    }
    QDir().mkpath(destination);
    QDirIterator entries(source,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (entries.hasNext()) {
        entries.next();
        const QFileInfo entry = entries.fileInfo();
        const QString target = destination + u'/' + entry.fileName();
        if (entry.isSymLink())
            continue;
        if (entry.isDir())
            copy_folder(entry.filePath(), target);
        else
            copy_file(entry.filePath(), target, signature);
    }
}

void remove_folder(const QString &directory)
{
    // An empty path would mean the current directory.
    const QString path = QDir::cleanPath(directory);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).isSymLink())
        QFile::remove(path);
    else
        QDir(path).removeRecursively();
}

QString file_suffix(const QString &path)
{
    QStringView name = QStringView(path).sliced(path.lastIndexOf(u'/') + 1);
    if (name.startsWith(u'.'))
        name = name.sliced(1);

    const qsizetype point = name.lastIndexOf(u'.');
    if (point < 0)
        return empty_text();
    return name.sliced(point + 1).toString();
}

QString size_in_bytes(const QString &path)
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
        if (run_is_cancelled())
            return QString::number(entry.size());
        const QFileInfo found = walk.nextFileInfo();
        if (!found.isDir() && !found.isSymbolicLink())
            total_size += static_cast<quint64>(found.size());
    }
    return QString::number(total_size);
}
