#include "host/evidence_source.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

using namespace Qt::StringLiterals;

namespace
{

/// The path with every link resolved, also one that leads to something not yet there: opening such
/// a link for writing would create its target.
std::filesystem::path resolved(std::filesystem::path path)
{
    namespace fs = std::filesystem;
    constexpr int most_links = 40;
    std::error_code error;
    for (int links = 0; links < most_links; ++links) {
        fs::path existing = path;
        fs::path rest;
        while (!fs::exists(fs::symlink_status(existing, error)) && existing.has_relative_path()) {
            rest = rest.empty() ? existing.filename() : existing.filename() / rest;
            existing = existing.parent_path();
        }
        const fs::path real = fs::canonical(existing, error);
        if (!error)
            return rest.empty() ? real : real / rest;
        const fs::path target = fs::read_symlink(existing, error);
        if (error)
            break;
        path = (existing.parent_path() / target / rest).lexically_normal();
    }
    return path;
}

#ifdef Q_OS_LINUX

/// Where the path lies on its device, led by the device's number: a mount can show a folder at
/// several places. Empty when the system does not tell.
std::string place_on_device(const std::filesystem::path &path)
{
    std::ifstream mounts("/proc/self/mountinfo");
    std::string place;
    std::size_t longest = 0;
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream fields(line);
        std::string number;
        std::string parent;
        std::string device;
        std::string root;
        std::string point;
        fields >> number >> parent >> device >> root >> point;
        const auto plain = [](std::string &text) { // blanks are escaped as octal numbers
            for (std::size_t at = 0; (at = text.find('\\', at)) != std::string::npos; ++at)
                text.replace(at, 4, 1, static_cast<char>(std::stoi(text.substr(at + 1, 3), {}, 8)));
        };
        plain(root);
        plain(point);
        const std::filesystem::path below = path.lexically_relative(point);
        // Of two mounts at one place the later one counts.
        if (below.empty() || *below.begin() == ".." || point.size() < longest)
            continue;
        longest = point.size();
        place = device + ':' + (std::filesystem::path(root) / below).lexically_normal().native();
    }
    while (place.ends_with('.') || place.ends_with('/'))
        place.pop_back();
    return place;
}

#else

std::string place_on_device(const std::filesystem::path &)
{
    return {};
}

#endif

QString users_of(const QString &source)
{
    return source + u"/Users";
}

bool users_lead_out(const QString &source)
{
    return QFileInfo(users_of(source)).isSymLink() && !lies_within(users_of(source), source);
}

} // namespace

QString source_problem(const QString &source)
{
    const QFileInfo folder(source);
    if (!folder.exists())
        return u"the source " + source + u" does not exist";
    if (!folder.isDir())
        return u"the source " + source + u" is no folder";
    if (!folder.isReadable() || !folder.isExecutable())
        return u"the source " + source + u" cannot be read";
    return {};
}

QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account>
accounts_of_source(const QString &source)
{
    static const QStringList nobodys = {u"Shared"_s,       u"Public"_s,    u"Default"_s,
                                        u"Default User"_s, u"All Users"_s, u"Guest"_s};
    QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> accounts;
    if (users_lead_out(source))
        return {};
    const QStringList names =
        QDir(users_of(source))
            .entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Name);
    for (const QString &name : names) {
        if (!name.startsWith(u'.') && !nobodys.contains(name))
            accounts.append({name, {}});
    }
    return accounts;
}

QStringList
notes_on_accounts(const QString &source,
                  const QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> &accounts)
{
    const QString users = users_of(source);
    QStringList notes;
    if (users_lead_out(source))
        notes.append(u"not followed, as it leads out of the source: "_s + users);
    if (accounts.isEmpty())
        notes.append(u"no account has a folder under "_s + users);
    for (const auto &account : accounts) {
        if (!QFileInfo(users + u'/' + account.system_user).isDir())
            notes.append(u"no folder of account "_s + account.system_user + u" in " + users);
    }
#ifdef Q_OS_UNIX
    std::error_code error;
    for (std::filesystem::directory_iterator entry(QFileInfo(users).filesystemFilePath(), error);
         !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const QByteArray name = QByteArray::fromStdString(entry->path().filename().native());
        if (QFile::encodeName(QFile::decodeName(name)) != name)
            notes.append(u"not read, as its name is no text: "_s + users + u'/' +
                         QString::fromLatin1(name.toPercentEncoding(" ")));
    }
    if (error && error != std::errc::no_such_file_or_directory)
        notes.append(u"accounts may be missing, as the folder cannot be listed: "_s + users +
                     u": " + QString::fromLocal8Bit(error.message().c_str()));
#endif
    return notes;
}

QString
cause_of_no_profile(const QString &source, const QString &os_scheme,
                    const QList<struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_system_account> &accounts)
{
    if (os_scheme != "macOS"_L1 && os_scheme != "winOS"_L1)
        return u"nothing is read of "_s + os_scheme + u" sources";
    const QString users = users_of(source);
    if (!QFileInfo(users).isDir()) {
        const QStringList folders = QDir(source).entryList(
            QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks, QDir::Name);
        for (const QString &folder : folders) {
            if (QFileInfo(source + u'/' + folder + u"/Users").isDir())
                return u"a `Users` folder lies one level down, in `"_s + folder + u"/`";
        }
        return u"the source has no `Users` folder"_s;
    }
    QStringList missing;
    for (const auto &account : accounts) {
        const QString home = users + u'/' + account.system_user;
        if (!QFileInfo(home).isDir())
            missing.append(account.system_user);
        if (os_scheme == "macOS"_L1 && QFileInfo(home + u"/AppData").isDir())
            return u"this looks like a Windows source, to be read with --os winOS"_s;
        if (os_scheme == "winOS"_L1 && QFileInfo(home + u"/Library").isDir())
            return u"this looks like a macOS source, to be read with --os macOS"_s;
    }
    if (missing.size() == accounts.size())
        return missing.isEmpty() ? u"`Users` has no accounts"_s
                                 : u"no such account: "_s + missing.join(u", "_s);
    return u"no account has used the browser"_s;
}

bool lies_within(const QString &path, const QString &folder)
{
    // Folders are compared by identity: their spelling may differ where case does not count.
    const std::filesystem::path evidence = QFileInfo(folder).filesystemFilePath();
    std::error_code error;
    std::filesystem::path parent = resolved(QFileInfo(path).filesystemFilePath());
    // A mount of a folder in the evidence has none of the evidence's folders above it.
    const std::string source_place = place_on_device(resolved(evidence));
    if (!source_place.empty() && (place_on_device(parent) + '/').starts_with(source_place + '/'))
        return true;
    while (!std::filesystem::equivalent(parent, evidence, error)) {
        if (!parent.has_relative_path())
            return false;
        parent = parent.parent_path();
    }
    return true;
}
