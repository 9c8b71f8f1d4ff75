#include "sample/database.h"
#include "sample/file_kinds.h"
#include "sample/profile.h"

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

/// Favicons: a site's icon, its pictures and the pages that show it.
class icon_writer
{
public:
    explicit icon_writer(database &favicons)
        : icons_(favicons, "favicons", "id,url,icon_type"),
          bitmaps_(favicons, "favicon_bitmaps",
                   "icon_id,last_updated,image_data,width,height,last_requested"),
          pages_(favicons, "icon_mapping", "page_url,icon_id")
    {
    }

    void add_icon(qint64 id, const std::string &url) { icons_.add(id, url, 1); }
    void add_bitmap(qint64 icon, qint64 updated, const QByteArray &picture, int side)
    {
        bitmaps_.add(icon, updated, picture, side, side, 0);
    }
    void add_page(qint64 icon, const std::string &url) { pages_.add(url, icon); }

private:
    insertion icons_;
    insertion bitmaps_;
    insertion pages_;
};

void add_special_icons(icon_writer &icons)
{
    const qint64 updated = browser_time(days_ago(3), 500000);
    icons.add_icon(1, "https://www.example.org/favicon.ico");
    icons.add_bitmap(1, updated, png_picture(16, 16, 1), 16);
    icons.add_page(1, "https://www.example.org/a");
    icons.add_page(1, "https://www.example.org/b");
    icons.add_page(1, "https://www.example.org/c?x=%20");

    // One icon in two sizes, and one picture that is empty.
    icons.add_icon(2, "https://shop.tealkettle.test/icons/kettle.png");
    icons.add_bitmap(2, updated, png_picture(16, 16, 2), 16);
    icons.add_bitmap(2, updated, png_picture(32, 32, 2002), 32);
    icons.add_page(2, "https://shop.tealkettle.test/");
    icons.add_icon(3, "https://mail.example.org/favicon.ico");
    icons.add_bitmap(3, 0, QByteArray(), 0);
    icons.add_page(3, "https://mail.example.org/inbox");

    // No page shows it; and a picture whose icon is gone.
    icons.add_icon(4, "https://wiki.oldmaps.example/favicon.ico");
    icons.add_bitmap(4, updated, png_picture(16, 16, 4), 16);
    icons.add_bitmap(999, updated, png_picture(16, 16, 999), 16);
}

} // namespace

void write_favicons_file(const profile &account)
{
    database favicons(account.profile_folder + u"Favicons");
    favicons.run_all({
        "create table meta(key LONGVARCHAR NOT NULL UNIQUE PRIMARY KEY,value LONGVARCHAR)",
        "insert into meta values('version','8')",
        "create table favicons(id INTEGER PRIMARY KEY,url LONGVARCHAR NOT NULL,"
        "icon_type INTEGER DEFAULT 1)",
        "create table favicon_bitmaps(id INTEGER PRIMARY KEY,icon_id INTEGER NOT NULL,"
        "last_updated INTEGER DEFAULT 0,image_data BLOB,width INTEGER DEFAULT 0,"
        "height INTEGER DEFAULT 0,last_requested INTEGER DEFAULT 0)",
        "create table icon_mapping(id INTEGER PRIMARY KEY,page_url LONGVARCHAR NOT NULL,"
        "icon_id INTEGER)",
    });
    {
        icon_writer icons(favicons);
        add_special_icons(icons);
        number_source numbers = account.numbers("favicons");
        for (qint64 row = 0; row < account.rows(icon_rows); ++row) {
            const qint64 id = 10 + row;
            const invented_page page = make_page(numbers, row + 1);
            icons.add_icon(id, "https://" + page.host + "/icon-" + std::to_string(id) + ".png");
            icons.add_bitmap(id, browser_time(days_ago(30) + numbers.below(20 * day)),
                             png_picture(16, 16, static_cast<quint64>(id)), 16);
            icons.add_page(id, page.url);
        }
    }
    favicons.run_all({"create index favicons_url on favicons(url)",
                      "create index favicon_bitmaps_icon_id on favicon_bitmaps(icon_id)",
                      "create index icon_mapping_icon_id_idx on icon_mapping(icon_id)",
                      "create index icon_mapping_page_url_idx on icon_mapping(page_url)"});
    favicons.finish(latest_instant);
}

void write_thumbnails_file(const profile &account)
{
    database thumbnails(account.profile_folder + u"thumbnails.db");
    thumbnails.run("create table thumbnails(url TEXT PRIMARY KEY,last_used INTEGER,"
                   "image_data BLOB)");
    {
        insertion rows(thumbnails, "thumbnails", "url,last_used,image_data");
        rows.add("https://www.example.org/start%20page", browser_time(days_ago(1), 7),
                 png_picture(48, 32, 11));
        rows.add("https://shop.tealkettle.test/caf%C3%A9", browser_time(days_ago(2)),
                 jpeg_picture(90));
        rows.add("https://mail.example.org/", 0, QByteArray());
        rows.add("https://wiki.oldmaps.example/", nullptr, nullptr);
        number_source numbers = account.numbers("thumbnails");
        for (qint64 row = 0; row < account.rows(thumbnail_rows); ++row) {
            const invented_page page = make_page(numbers, row + 1);
            rows.add(page.url, browser_time(days_ago(30) + numbers.below(20 * day)),
                     png_picture(48, 32, static_cast<quint64>(100 + row)));
        }
    }
    thumbnails.finish(latest_instant);
}

void write_top_sites_file(const profile &account)
{
    database favorites(account.profile_folder + u"favorites.db");
    favorites.run("create table favorites(id INTEGER PRIMARY KEY,idx INTEGER,name TEXT,url TEXT,"
                  "guid TEXT,type INTEGER DEFAULT 0)");
    {
        insertion rows(favorites, "favorites", "idx,name,url,guid");
        number_source numbers = account.numbers("top sites");
        qint64 place = 0;
        const auto add = [&](const auto &url, const auto &name) {
            rows.add(place++, name, url, make_guid(numbers));
        };
        add("https://www.example.org/", "Start page");
        add("https://shop.tealkettle.test/caf%C3%A9%20set", "Café set, \"blue\"");
        add("", "");
        add("https://wiki.oldmaps.example/", "");
        add("", "A folder");
        add(nullptr, nullptr);
        add("https://forum.birdwatch.example/100%", "野鳥 %1");
        for (qint64 row = 0; row < account.rows(top_site_rows); ++row) {
            const invented_page page = make_page(numbers, row + 1);
            add(page.url, page.title);
        }
    }
    favorites.finish(latest_instant);
}

} // namespace sample
