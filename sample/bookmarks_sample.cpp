#include "sample/file_kinds.h"
#include "sample/pretty_json.h"
#include "sample/profile.h"

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

/// Writes bookmark nodes; their ids count up.
class bookmark_writer
{
public:
    bookmark_writer(pretty_json &json, const profile &account)
        : json_(json), numbers_(account.numbers("bookmarks"))
    {
    }

    /// A folder's children are written between open and close. The key is null but for roots.
    void open_folder(const char *key = nullptr)
    {
        json_.open_object(key);
        json_.open_array("children");
    }

    void close_folder(const QString &name)
    {
        json_.close_array();
        add_common(time(), name, QString());
        json_.add_text("type", u"folder"_s);
        json_.close_object();
    }

    /// `icon` is the picture of the entry, a data text or an address; without it there is none.
    void add_link(const QString &url, const QString &name, const QString &icon = {},
                  qint64 added = -1)
    {
        json_.open_object();
        add_common(added < 0 ? time() : added, name, icon);
        json_.add_text("type", u"url"_s);
        json_.add_text("url", url);
        json_.close_object();
    }

    void add_separator()
    {
        json_.open_object();
        add_common(time(), u"-"_s, QString());
        json_.add_text("type", u"separator"_s);
        json_.close_object();
    }

    void add_ordinary_links(qint64 count)
    {
        for (qint64 row = 0; row < count; ++row) {
            const invented_page page = make_page(numbers_, row + 1);
            add_link(QString::fromStdString(page.url), QString::fromStdString(page.title));
        }
    }

private:
    qint64 time() { return browser_time(days_ago(400) + numbers_.below(390 * day)); }

    void add_common(qint64 added, const QString &name, const QString &icon)
    {
        ++id_;
        json_.add_text("date_added", QString::number(added));
        json_.add_text("guid", QString::fromStdString(make_guid(numbers_)));
        json_.add_text("id", QString::number(id_));
        if (!icon.isEmpty()) {
            json_.open_object("meta_info");
            json_.add_text("imageData", icon);
            json_.close_object();
        }
        json_.add_text("name", name);
    }

    pretty_json &json_;
    number_source numbers_;
    qint64 id_ = 0;
};

void write_bookmark_bar(bookmark_writer &bookmarks, const profile &account)
{
    bookmarks.open_folder("bookmark_bar");
    bookmarks.add_link(u"https://www.example.org/"_s, u"Start page"_s,
                       u"data:image/png;base64," +
                           QString::fromLatin1(png_picture(8, 8, 77).toBase64()));
    bookmarks.add_link(u"https://shop.tealkettle.test/caf%C3%A9%20set?a=1,2"_s,
                       u"Tea, \"green\" & <kettles>, 5 % off,"_s,
                       u"https://shop.tealkettle.test/kettle.png"_s);
    bookmarks.open_folder();
    {
        bookmarks.add_link(u"https://docs.example.org/plan"_s, u"Plan für März"_s);
        bookmarks.open_folder();
        bookmarks.add_link(u"https://tickets.northferry.example/"_s, u"Nordfähre"_s);
        bookmarks.close_folder(u"Ferry / Fähre"_s);
        bookmarks.add_link(u"https://docs.example.org/after"_s, u"Behind the inner folder"_s);
    }
    bookmarks.close_folder(u"Work"_s);
    bookmarks.open_folder();
    bookmarks.close_folder(u"Empty"_s);
    bookmarks.add_separator();
    QString home = account.windows() ? u"file:///C:/Users/"_s : u"file:///Users/"_s;
    home += QString::fromStdString(percent_encoded(account.user.toStdString()));
    bookmarks.add_link(home + u"/Documents/Annual%20report.pdf", u"Annual report"_s);
    bookmarks.add_link(account.windows() ? u"file:///D:/scans/letter%201.png"_s
                                         : u"file:///Volumes/STICK/scans/letter%201.png"_s,
                       u"Letter on another volume"_s);
    bookmarks.add_link(u"https://forum.birdwatch.example/"_s, QString(), {}, 0);
    bookmarks.close_folder(u"Bookmarks bar"_s);
}

void write_custom_root(pretty_json &json, bookmark_writer &bookmarks)
{
    json.open_object("custom_root");
    bookmarks.open_folder("speedDial");
    bookmarks.add_link(u"https://news.harbour-gazette.example/"_s, u"Harbour Gazette"_s,
                       u"https://news.harbour-gazette.example/dial.png"_s);
    bookmarks.add_link(u"https://weather.cloudledge.example/my%20harbour"_s, u"Weather"_s);
    bookmarks.open_folder();
    bookmarks.add_link(u"https://recipes.copperpan.test/"_s, u"Copper Pan"_s);
    bookmarks.add_link(u"https://music.reedandbow.example/"_s, u"Reed & Bow"_s);
    bookmarks.close_folder(u"Evening"_s);
    bookmarks.close_folder(u"Speed Dials"_s);
    // A root without a name.
    bookmarks.open_folder("trash");
    bookmarks.add_link(u"https://ads.tealkettle.test/thrown-away"_s, u"Thrown away"_s);
    bookmarks.close_folder(QString());
    bookmarks.open_folder("unsorted");
    bookmarks.add_link(u"https://photos.silverbeach.test/%E9%8A%80"_s, u"銀の浜"_s);
    bookmarks.close_folder(u"Unsorted Bookmarks"_s);
    bookmarks.open_folder("userRoot");
    bookmarks.close_folder(u"userRoot"_s);
    json.close_object();
}

/// Groups of ten nodes: a folder and nine links in it.
void write_ordinary_folders(bookmark_writer &bookmarks, qint64 nodes)
{
    constexpr qint64 group = 10;
    for (qint64 node = 0; node < nodes; node += group) {
        bookmarks.open_folder();
        bookmarks.add_ordinary_links(qMin(group, nodes - node) - 1);
        bookmarks.close_folder(u"Folder " + QString::number(node / group + 1));
    }
}

} // namespace

void write_bookmarks_file(const profile &account)
{
    pretty_json json(account.profile_folder + u"Bookmarks");
    bookmark_writer bookmarks(json, account);
    json.open_object();
    number_source numbers = account.numbers("checksum");
    json.add_text("checksum", QString::fromStdString(make_extension_id(numbers)));
    json.open_object("roots");
    write_bookmark_bar(bookmarks, account);
    write_custom_root(json, bookmarks);
    bookmarks.open_folder("other");
    write_ordinary_folders(bookmarks, account.rows(bookmark_rows));
    bookmarks.close_folder(u"Other bookmarks"_s);
    bookmarks.open_folder("synced");
    bookmarks.add_link(u"https://mail.example.org/"_s, u"Example Mail"_s);
    bookmarks.close_folder(u"Mobile bookmarks"_s);
    json.close_object();
    json.add_number("version", 1);
    json.close_object();
    json.finish(latest_instant);
}

} // namespace sample
