#include "sample/evidence_files.h"
#include "sample/file_kinds.h"
#include "sample/file_notes.h"
#include "sample/history_sample.h"

#include <QFileInfo>

#include <optional>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

struct special_download {
    /// A name: a file in the account's folder "Downloads". With a separator or colon: a path as the
    /// browser stored it.
    const char *target_macos;
    const char *target_windows;
    bool exists;       ///< only for a name
    const char *chain; ///< URLs, separated by blanks
    qint64 started;    ///< Unix seconds
    int state;         ///< 0 running, 1 complete, 2 cancelled, 3 and 4 interrupted
    int opened;
    const char *mime_type;
    const char *etag;
    const char *last_modified;
};

constexpr special_download special_downloads[] = {
    {"timetable.pdf", "timetable.pdf", true, "https://news.harbour-gazette.example/timetable.pdf",
     days_ago(30), 1, 1, "application/pdf", "\"5f-1a2b\"", "Tue, 15 Nov 1994 08:12:31 GMT"},
    {"beach.jpg", "beach.jpg", true,
     "https://photos.silverbeach.test/get?id=7 https://cdn.silverbeach.test/full/beach%20day.jpg",
     days_ago(28), 1, 0, "image/jpeg", "W/\"77aa\"", "Sat, 04 Feb 2023 10:00:00 GMT"},
    {"Übersicht 2022.zip", "Übersicht 2022.zip", true,
     "https://docs.example.org/%C3%9Cbersicht%202022.zip", days_ago(21), 1, 1, "application/zip",
     "", ""},
    {"notes.tar.gz", "notes.tar.gz", true, "https://docs.example.org/notes.tar.gz", days_ago(20), 1,
     0, "application/gzip", "\"gz\"", "Mon, 30 Jan 2023 23:59:59 GMT"},
    {"README", "README", true, "https://docs.example.org/README", days_ago(19), 1, 0, "text/plain",
     "", "Sunday, 06-Nov-94 08:49:37 GMT"},
    {".profile-settings", ".profile-settings", true, "https://docs.example.org/.profile-settings",
     days_ago(19), 1, 0, "text/plain", "", ""},
    {"deleted-later.png", "deleted-later.png", false,
     "https://photos.silverbeach.test/deleted-later.png", days_ago(18), 1, 1, "image/png", "", ""},
    {"cancelled.iso", "cancelled.iso", false, "https://mirror.example.org/cancelled.iso",
     days_ago(12), 2, 0, "application/octet-stream", "", ""},
    {"film.mp4", "film.mp4", false, "https://video.lanternfilm.test/film.mp4", days_ago(9), 3, 0,
     "video/mp4", "\"%1\"", "Wed, 01 Feb 2023 00:00:00 GMT"},
    {"song.flac", "song.flac", false, "https://music.reedandbow.example/song.flac", days_ago(8), 4,
     0, "audio/flac", "", ""},
    // No entry in the chain table.
    {"saved-from-a-page.txt", "saved-from-a-page.txt", false, "", days_ago(7), 1, 0, "text/plain",
     "", ""},
    // Another volume, a path of two characters, and one that leads out of the source.
    {"/Volumes/STICK/letters.7z", "D:\\Backup\\letters.7z", false,
     "https://mail.example.org/attachment?n=2", days_ago(5), 1, 0, "application/x-7z-compressed",
     "", ""},
    {"C:", "C:", false, "https://docs.example.org/short", days_ago(4), 1, 0, "", "", ""},
    {"/Users/%user%/Downloads/../../../../outside.txt",
     "C:\\Users\\%user%\\Downloads\\..\\..\\..\\..\\outside.txt", false,
     "https://docs.example.org/outside.txt", days_ago(3), 1, 0, "text/plain", "", ""},
    {"", "", false, "https://docs.example.org/running.bin", minutes_ago(20), 0, 0,
     "application/octet-stream", "", ""},
};

/// The latest one; its row is still in the write-ahead log.
constexpr special_download latest_download = {
    "boarding-pass.pdf",
    "boarding-pass.pdf",
    true,
    "https://tickets.northferry.example/booking/4711/pass",
    minutes_ago(10),
    1,
    1,
    "application/pdf",
    "\"4711\"",
    "Wed, 01 Mar 2023 08:50:00 GMT"};
constexpr qint64 latest_download_id = 100;

/// The page whose links led to the downloads.
constexpr const char *list_page = "https://www.example.org/list?page=2";

QByteArray contents_of(const QString &name)
{
    constexpr gps_position southern_beach = {-(33 * 3600 + 53 * 60 + 27), 151 * 3600 + 16 * 60 + 37,
                                             4};
    const QString suffix = QFileInfo(name).suffix();
    if (suffix == "pdf"_L1)
        return pdf_document("Harbour Gazette");
    if (suffix == "jpg"_L1)
        return jpeg_picture(180, &southern_beach);
    if (suffix == "zip"_L1)
        return zip_archive("overview.txt", "Nothing of interest.\n");
    if (suffix == "gz"_L1)
        return gzip_file("Notes of an invented person.\n");
    return "Written for " + name.toUtf8() + "\n";
}

/// Adds downloads with the columns that the profile's generation has.
class download_writer
{
public:
    download_writer(database &history, const profile &account)
        : account_(account), older_(account.generation == browser_generation::older),
          downloads_(history, "downloads",
                     older_ ? "id,full_path,url,start_time,received_bytes,total_bytes,state,"
                              "end_time,opened"
                            : "id,guid,current_path,target_path,start_time,received_bytes,"
                              "total_bytes,state,danger_type,interrupt_reason,hash,end_time,opened,"
                              "referrer,site_url,tab_url,tab_referrer_url,http_method,by_ext_id,"
                              "by_ext_name,etag,last_modified,mime_type,original_mime_type"),
          numbers_(account.numbers("downloads"))
    {
        if (!older_)
            chains_.emplace(history, "downloads_url_chains", "id,chain_index,url");
    }

    void add(qint64 id, const special_download &download)
    {
        const QString stored =
            QString::fromUtf8(account_.windows() ? download.target_windows : download.target_macos);
        const bool is_name = !stored.isEmpty() && !stored.contains(u'/') &&
                             !stored.contains(u'\\') && !stored.contains(u':');
        const QString target = is_name ? path_in_downloads(stored)
                                       : QString(stored).replace(u"%user%"_s, account_.user);
        const QStringList chain = QString::fromUtf8(download.chain).split(u' ', Qt::SkipEmptyParts);
        qint64 size = 700000 + numbers_.below(9000000);
        if (is_name && download.exists)
            size = write_downloaded_file(account_.home + u"Downloads/" + stored, download, chain,
                                         !account_.windows());
        if (older_)
            add_older(id, download, target, size, chain.isEmpty() ? QString() : chain.last());
        else
            add_row(id, download, target, size, chain);
    }

private:
    QString path_in_downloads(const QString &name) const
    {
        if (account_.windows())
            return u"C:\\Users\\" + account_.user + u"\\Downloads\\" + name;
        return u"/Users/" + account_.user + u"/Downloads/" + name;
    }

    /// Returns the file's size.
    static qint64 write_downloaded_file(const QString &path, const special_download &download,
                                        const QStringList &chain, bool with_notes)
    {
        const QByteArray contents = contents_of(QFileInfo(path).fileName());
        write_file(path, contents, download.started + 3);
        if (with_notes)
            write_notes(path, {.where_froms = {chain.value(chain.size() - 1),
                                               QString::fromLatin1(list_page)},
                               .downloaded = download.started + 3,
                               .last_used = download.opened != 0 ? download.started + 300 : 0});
        return contents.size();
    }

    static qint64 received(const special_download &download, qint64 size)
    {
        return download.state == 1 ? size : size / 3;
    }

    /// This generation counts the times of downloads in Unix seconds.
    void add_older(qint64 id, const special_download &download, const QString &target, qint64 size,
                   const QString &url)
    {
        const qint64 ended = download.state == 0 ? 0 : download.started + 3;
        downloads_.add(id, target, url, download.started, received(download, size), size,
                       download.state, ended, download.opened);
    }

    void add_row(qint64 id, const special_download &download, const QString &target, qint64 size,
                 const QStringList &chain)
    {
        const qint64 ended = download.state == 0 ? 0 : browser_time(download.started + 3, 250000);
        const QString current = download.state == 1 ? target : target + u".opdownload";
        const char *referrer = chain.isEmpty() ? "" : list_page;
        downloads_.add(id, make_guid(numbers_), current, target, browser_time(download.started, id),
                       received(download, size), size, download.state, 0,
                       download.state == 1 ? 0 : 40, QByteArray(), ended, download.opened, referrer,
                       "https://example.org/", referrer, "https://www.example.org/", "GET", "", "",
                       download.etag, download.last_modified, download.mime_type,
                       download.mime_type);
        for (qsizetype link = 0; link < chain.size(); ++link)
            chains_->add(id, link, chain.at(link));
    }

    const profile &account_;
    bool older_;
    insertion downloads_;
    std::optional<insertion> chains_;
    number_source numbers_;
};

} // namespace

void make_download_tables(database &history, const profile &account)
{
    if (account.generation == browser_generation::older) {
        history.run("create table downloads(id INTEGER PRIMARY KEY,full_path LONGVARCHAR NOT NULL,"
                    "url LONGVARCHAR NOT NULL,start_time INTEGER NOT NULL,"
                    "received_bytes INTEGER NOT NULL,total_bytes INTEGER NOT NULL,"
                    "state INTEGER NOT NULL,end_time INTEGER NOT NULL,opened INTEGER NOT NULL)");
        return;
    }
    const std::string added_later =
        account.generation == browser_generation::newest
            ? ",last_access_time INTEGER NOT NULL DEFAULT 0,transient INTEGER NOT NULL DEFAULT 0,"
              "embedder_download_data VARCHAR NOT NULL DEFAULT '',"
              "by_web_app_id VARCHAR NOT NULL DEFAULT ''"
            : "";
    const std::string downloads =
        "create table downloads(id INTEGER PRIMARY KEY,guid VARCHAR NOT NULL,"
        "current_path LONGVARCHAR NOT NULL,target_path LONGVARCHAR NOT NULL,"
        "start_time INTEGER NOT NULL,received_bytes INTEGER NOT NULL,"
        "total_bytes INTEGER NOT NULL,state INTEGER NOT NULL,danger_type INTEGER NOT NULL,"
        "interrupt_reason INTEGER NOT NULL,hash BLOB NOT NULL,end_time INTEGER NOT NULL,"
        "opened INTEGER NOT NULL,referrer VARCHAR NOT NULL,site_url VARCHAR NOT NULL,"
        "tab_url VARCHAR NOT NULL,tab_referrer_url VARCHAR NOT NULL,"
        "http_method VARCHAR NOT NULL,by_ext_id VARCHAR NOT NULL,by_ext_name VARCHAR NOT NULL,"
        "etag VARCHAR NOT NULL,last_modified VARCHAR NOT NULL,mime_type VARCHAR(255) NOT NULL,"
        "original_mime_type VARCHAR(255) NOT NULL" +
        added_later + ")";
    history.run(downloads.c_str());
    history.run("create table downloads_url_chains(id INTEGER NOT NULL,"
                "chain_index INTEGER NOT NULL,url LONGVARCHAR NOT NULL,"
                "PRIMARY KEY (id,chain_index))");
}

void add_downloads(database &history, const profile &account)
{
    download_writer writer(history, account);
    qint64 id = 1;
    for (const special_download &download : special_downloads)
        writer.add(id++, download);

    id = latest_download_id + 1;
    number_source numbers = account.numbers("ordinary downloads");
    for (qint64 row = 0; row < account.rows(download_rows); ++row) {
        const std::string name =
            make_word(numbers) + "-" + std::to_string(row + 1) + (row % 2 == 0 ? ".txt" : ".pdf");
        const std::string url = make_page(numbers, row).url + "/" + name;
        writer.add(id++, {.target_macos = name.c_str(),
                          .target_windows = name.c_str(),
                          .exists = row % 4 == 0,
                          .chain = url.c_str(),
                          .started = days_ago(80) + numbers.below(70 * day),
                          .state = 1,
                          .opened = row % 3 == 0 ? 1 : 0,
                          .mime_type = row % 2 == 0 ? "text/plain" : "application/pdf",
                          .etag = "",
                          .last_modified = "Sun, 01 Jan 2023 12:00:00 GMT"});
    }
}

void add_latest_download(database &history, const profile &account)
{
    download_writer(history, account).add(latest_download_id, latest_download);
}

} // namespace sample
