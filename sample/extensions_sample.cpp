#include "sample/extensions_sample.h"

#include "sample/evidence_files.h"
#include "sample/file_kinds.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <vector>

using namespace Qt::StringLiterals;

namespace sample
{

namespace
{

enum class extension_place { in_profile, in_browser };

struct extension {
    QString id;
    QString name;
    QString description;
    QString version;
    int state; ///< 0 disabled, 1 enabled
    extension_place place = extension_place::in_profile;
    std::vector<int> icon_sizes = {}; ///< sides of the pictures that the manifest names
    bool icons_exist = true;
    QString odd_icon = {};    ///< an icon's path of another kind
    QString theme_image = {}; ///< makes it a theme
    qint64 installed = browser_time(days_ago(300), 111111);
    qint64 last_ping = browser_time(days_ago(2));
};

std::vector<extension> special_extensions()
{
    return {
        {.id = u"aaaabbbbccccddddeeeeffffgggghhhh"_s,
         .name = u"Reading Lamp"_s,
         .description = u"Dims the page, softly. 100 % \"warm\" light"_s,
         .version = u"1.4.2"_s,
         .state = 1,
         .icon_sizes = {16, 48, 128}},
        {.id = u"bbbbccccddddeeeeffffgggghhhhiiii"_s,
         .name = u"Coupon Finch"_s,
         .description = u"Findet Gutscheine für Wasserkessel"_s,
         .version = u"0.9"_s,
         .state = 0,
         .icon_sizes = {48},
         .icons_exist = false},
        {.id = u"ccccddddeeeeffffgggghhhhiiiijjjj"_s,
         .name = u"Plain Notes"_s,
         .description = QString(),
         .version = u"2.0.0.1"_s,
         .state = 2,
         .last_ping = 0},
        {.id = u"ddddeeeeffffgggghhhhiiiijjjjkkkk"_s,
         .name = u"Harbour Dusk"_s,
         .description = u"A theme"_s,
         .version = u"3"_s,
         .state = 1,
         .theme_image = u"images/dusk sky.png"_s},
        {.id = u"eeeeffffgggghhhhiiiijjjjkkkkllll"_s,
         .name = u"Built-in Reader"_s,
         .description = u"Comes with the browser"_s,
         .version = u"1.0"_s,
         .state = 1,
         .place = extension_place::in_browser,
         .icon_sizes = {32}},
        // Names a file outside its own folder as its icon.
        {.id = u"ffffgggghhhhiiiijjjjkkkkllllmmmm"_s,
         .name = u"Nosy Parrot"_s,
         .description = u"Asks for a picture that is none of its own"_s,
         .version = u"1.1"_s,
         .state = 1,
         .odd_icon = u"../../../Login Data"_s},
    };
}

QString icon_name(int side)
{
    return u"icons/icon_" + QString::number(side) + u".png";
}

QJsonObject manifest_of(const extension &item)
{
    QJsonObject icons;
    for (const int side : item.icon_sizes)
        icons.insert(QString::number(side), icon_name(side));
    if (!item.odd_icon.isEmpty())
        icons.insert(u"48"_s, item.odd_icon);

    QJsonObject manifest = {{u"current_locale"_s, u"de"_s},
                            {u"default_locale"_s, u"en"_s},
                            {u"manifest_version"_s, 2},
                            {u"name"_s, item.name},
                            {u"offline_enabled"_s, item.state == 1},
                            {u"update_url"_s, u"https://updates.example.org/extensions"_s},
                            {u"version"_s, item.version}};
    if (!item.description.isEmpty())
        manifest.insert(u"description"_s, item.description);
    if (!icons.isEmpty())
        manifest.insert(u"icons"_s, icons);
    if (!item.theme_image.isEmpty()) {
        const QJsonObject images = {{u"theme_ntp_background"_s, item.theme_image}};
        manifest.insert(u"theme"_s, QJsonObject{{u"images"_s, images}});
    }
    return manifest;
}

/// The browser's own folder for what comes with it, as it stands in the record.
QString browser_folder(os_scheme system)
{
    return system == os_scheme::windows
               ? u"C:\\Program Files\\Opera\\resources\\"_s
               : u"/Applications/Opera.app/Contents/Resources/extensions/"_s;
}

/// The folder of the extension in the evidence; ends in "/".
QString folder_of(const extension &item, const profile &account)
{
    if (item.place == extension_place::in_profile)
        return account.profile_folder + u"Extensions/" + item.id + u'/' + item.version + u"_0/";
    QString folder = browser_folder(account.system).replace(u'\\', u'/');
    folder = folder.mid(account.windows() ? 3 : 1);
    return account.source_root + folder + item.id + u'/';
}

void write_folder(const extension &item, const profile &account)
{
    const QString folder = folder_of(item, account);
    // On disk a manifest holds no current language, and its texts are names of messages.
    QJsonObject manifest = manifest_of(item);
    manifest.remove(u"current_locale"_s);
    manifest.insert(u"name"_s, u"__MSG_name__"_s);
    write_file(folder + u"manifest.json", QJsonDocument(manifest).toJson(), days_ago(300));
    for (const QString &language : {u"de"_s, u"en"_s}) {
        const QJsonObject name = {{u"message"_s, QString(item.name)}};
        write_file(folder + u"_locales/" + language + u"/messages.json",
                   QJsonDocument(QJsonObject{{u"name"_s, name}}).toJson(), days_ago(300));
    }

    const quint64 number = number_of(item.id.toStdString(), account.seed);
    if (item.icons_exist) {
        for (const int side : item.icon_sizes)
            write_file(folder + icon_name(side), png_picture(side, side, number + quint64(side)),
                       days_ago(300));
    }
    if (!item.theme_image.isEmpty())
        write_file(folder + item.theme_image, png_picture(160, 90, number), days_ago(300));
}

QJsonObject record_of(const extension &item, const profile &account)
{
    const bool built_in = item.place == extension_place::in_browser;
    QJsonObject record = {
        {u"container"_s, built_in ? u""_s : u"https://addons.example.org/"_s},
        {u"creation_flags"_s, built_in ? 1 : 9},
        {u"from_webstore"_s, !built_in},
        {u"install_time"_s, QString::number(item.installed)},
        {u"location"_s, built_in ? 5 : 1},
        {u"manifest"_s, manifest_of(item)},
        {u"path"_s, built_in ? QString(browser_folder(account.system) + item.id)
                             : QString(item.id + u'/' + item.version + u"_0")},
        {u"state"_s, item.state},
        {u"was_installed_by_default"_s, built_in},
        {u"was_installed_by_oem"_s, false},
    };
    if (item.last_ping != 0)
        record.insert(u"lastpingday"_s, QString::number(item.last_ping));
    return record;
}

} // namespace

QJsonObject write_extensions(const profile &account)
{
    std::vector<extension> items = special_extensions();
    number_source numbers = account.numbers("extensions");
    for (qint64 row = 0; row < account.rows(extension_rows); ++row) {
        const QString word = QString::fromStdString(make_word(numbers));
        items.push_back({.id = QString::fromStdString(make_extension_id(numbers)),
                         .name = u"Helper " + word + u' ' + QString::number(row + 1),
                         .description = u"Does something with " + word,
                         .version = u"1." + QString::number(row),
                         .state = static_cast<int>(numbers.below(2)),
                         .icon_sizes = {48},
                         .installed = browser_time(days_ago(200) + numbers.below(100 * day))});
    }

    QJsonObject settings;
    for (const extension &item : items) {
        write_folder(item, account);
        settings.insert(item.id, record_of(item, account));
    }
    return settings;
}

} // namespace sample
