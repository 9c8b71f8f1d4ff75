#include "sample/sample_evidence.h"

#include "sample/evidence_files.h"
#include "sample/file_kinds.h"
#include "sample/profile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <array>
#include <exception>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

/// Lies in the root of an evidence source that was made here: it may be replaced.
constexpr QLatin1StringView mark_name = "/.made_by_sample_evidence"_L1;
constexpr const char *mark_text =
    "Invented evidence. A new run of sample_evidence may replace it.\n";

/// The folders that are made in the root.
constexpr std::array root_folders = {"Users"_L1, "Applications"_L1, "Program Files"_L1};

struct part {
    const char *name;
    const char *contents;
    row_counts counts;
    /// Parts that lie in one file follow one another and have the same writer.
    void (*write)(const profile &account);
};

constexpr part parts[] = {
    {"history", "History: pages, each with 2.5 visits on average", page_rows, write_history_file},
    {"search_terms", "History: search terms, each with its page", search_rows, write_history_file},
    {"downloads", "History: downloads; the files themselves", download_rows, write_history_file},
    {"cookies", "Cookies", cookie_rows, write_cookies_file},
    {"logins", "Login Data", login_rows, write_login_file},
    {"form_entries", "Web Data: form entries", form_rows, write_web_data_file},
    {"addresses", "Web Data: addresses", address_rows, write_web_data_file},
    {"cards", "Web Data: credit cards", card_rows, write_web_data_file},
    {"search_engines", "Web Data: search engines", {0, 0}, write_web_data_file},
    {"favicons", "Favicons: icons", icon_rows, write_favicons_file},
    {"thumbnails", "thumbnails.db: pictures", thumbnail_rows, write_thumbnails_file},
    {"top_sites", "favorites.db: sites", top_site_rows, write_top_sites_file},
    {"bookmarks", "Bookmarks: nodes", bookmark_rows, write_bookmarks_file},
    {"preferences", "Preferences: settings; site exceptions of each kind", site_exception_rows,
     write_preferences_file},
    {"extensions", "Preferences: extensions; their folders", extension_rows,
     write_preferences_file},
    {"local_state", "Local State", {0, 0}, write_local_state_file},
    {"sync", "Sync Data/SyncData.sqlite3: items", sync_rows, write_sync_file},
    {"sessions", "Current/Last Session and Tabs: KB of each", session_kilobytes,
     write_session_files},
    {"cache", "Cache and Media Cache: files", cache_files, write_cache_folders},
};

QString generation_name(browser_generation generation)
{
    switch (generation) {
    case browser_generation::current:
        return u"current"_s;
    case browser_generation::older:
        return u"older"_s;
    case browser_generation::newest:
        break;
    }
    return u"newest"_s;
}

void remove_folder(const QString &path)
{
    // Never through a link.
    const bool removed =
        QFileInfo(path).isSymLink() ? QFile::remove(path) : QDir(path).removeRecursively();
    if (!removed)
        throw evidence_error(u"cannot remove the earlier " + path);
}

bool is_marked(const QString &root)
{
    QFile mark(root + mark_name);
    return !QFileInfo(mark).isSymLink() && mark.open(QIODevice::ReadOnly) &&
           mark.read(1000) == mark_text;
}

/// Makes the root folder, empties it of earlier evidence and marks it.
void prepare_root(const QString &root)
{
    if (QFileInfo::exists(root) && !QFileInfo(root).isDir())
        throw evidence_error(root + u" is no folder");
    make_folder(root);
    const bool empty =
        QDir(root).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
    if (!empty && !is_marked(root))
        throw evidence_error(root + u" is not empty and holds no earlier sample evidence; give a "
                                    u"new or an empty folder");
    write_file(root + mark_name, mark_text, latest_instant);
    for (const QLatin1StringView name : root_folders)
        remove_folder(root + u'/' + name);
}

/// The folder that all users of a computer share; nobody's profile.
void write_shared_folder(const evidence_request &request, const QString &root)
{
    if (request.system == os_scheme::windows)
        write_file(root + u"Users/Public/desktop.ini", "[.ShellClassInfo]\r\n", days_ago(900));
    else
        write_file(root + u"Users/Shared/.localized", QByteArray(), days_ago(900));
}

profile profile_of(const evidence_request &request, const QString &root, int account)
{
    profile result;
    result.system = request.system;
    result.generation = generation_of(request, account);
    result.user = account_names(account + 1).last();
    result.source_root = root;
    result.home = root + u"Users/" + result.user + u'/';
    if (result.windows()) {
        const QString product = u"Opera Software/Opera Stable/"_s;
        result.profile_folder = result.home + u"AppData/Roaming/" + product;
        result.cache_folder = result.home + u"AppData/Local/" + product;
    } else {
        const QString product = u"com.operasoftware.Opera/"_s;
        result.profile_folder = result.home + u"Library/Application Support/" + product;
        result.cache_folder = result.home + u"Library/Caches/" + product;
    }
    result.scale = request.scale;
    result.seed = request.seed;
    for (const part &one : parts) {
        const QString name = QString::fromLatin1(one.name);
        if (request.only.isEmpty() || request.only.contains(name))
            result.parts.append(name);
    }
    return result;
}

void write_account(const profile &account)
{
    make_folder(account.profile_folder);
    write_file(account.home + u"Documents/Annual report.pdf", pdf_document("Annual report"),
               days_ago(60));
    void (*last_writer)(const profile &) = nullptr;
    for (const part &one : parts) {
        if (account.has(QString::fromLatin1(one.name)) && one.write != last_writer) {
            one.write(account);
            last_writer = one.write;
        }
    }
}

} // namespace

QList<part_description> evidence_parts()
{
    QList<part_description> descriptions;
    for (const part &one : parts)
        descriptions.append({QString::fromLatin1(one.name), QString::fromLatin1(one.contents)});
    return descriptions;
}

QStringList account_names(int count)
{
    static const QStringList people = {u"mara.lindqvist"_s, u"jürgen weiß"_s,  u"tove brandt"_s,
                                       u"k.okoro"_s,        u"Émile Dufour"_s, u"sadie.holm"_s};
    QStringList names;
    for (int place = 0; place < count; ++place) {
        const auto round = place / people.size();
        QString name = people.at(place % people.size());
        if (round > 0)
            name += u' ' + QString::number(round + 1);
        names.append(name);
    }
    return names;
}

browser_generation generation_of(const evidence_request &request, int account)
{
    switch (request.generation) {
    case generation_choice::current:
        return browser_generation::current;
    case generation_choice::older:
        return browser_generation::older;
    case generation_choice::newest:
        return browser_generation::newest;
    case generation_choice::in_turn:
        break;
    }
    constexpr std::array turn = {browser_generation::current, browser_generation::older,
                                 browser_generation::newest};
    return turn[static_cast<size_t>(account) % turn.size()];
}

QString write_evidence(const evidence_request &request)
{
    try {
        // An empty path would quietly mean the current folder.
        if (request.folder.isEmpty())
            throw evidence_error(u"no folder is given"_s);
        const QString folder = QDir::cleanPath(QDir::current().absoluteFilePath(request.folder));
        prepare_root(folder);
        const QString root = folder + u'/';
        write_shared_folder(request, root);
        for (int account = 0; account < request.accounts; ++account)
            write_account(profile_of(request, root, account));
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    }
    return {};
}

QString describe_evidence(const evidence_request &request)
{
    QString text = u"Accounts (folders below Users):\n"_s;
    for (int account = 0; account < request.accounts; ++account)
        text += u"  " + account_names(account + 1).last() + u" - " +
                generation_name(generation_of(request, account)) + u" browser generation\n";
    text += u"Ordinary rows of each account, beside the special ones:\n";
    for (const part &one : parts) {
        const profile account = profile_of(request, QString(), 0);
        const QString name = QString::fromLatin1(one.name);
        if (account.has(name))
            text += u"  " + name.leftJustified(16) +
                    QString::number(account.rows(one.counts)).rightJustified(10) + u"  " +
                    QString::fromLatin1(one.contents) + u'\n';
    }
    return text;
}

} // namespace sample
