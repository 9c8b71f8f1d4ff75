#include "tests/support/host_tables.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

/// JSON written with single quotes.
QByteArray json(QByteArray text)
{
    return text.replace('\'', '"');
}

const QString preferences = macos_profile(u"ada"_s) + u"Preferences"_s;

const QString default_rows =
    u"Microphone|Ask me when a site requires access to my microphone (recommended)\n"
    "Camera|Ask me when a site requires access to my camera (recommended)\n"
    "Background sync|Allow recently closed sites to finish sending and receiving data "
    "(recommended)\n"
    "Location|Ask me when a site tries to track my physical location (recommended)\n"
    "Notifications|Ask me when a site wants to show desktop notifications (recommended)"_s;

} // namespace

class macos_settings_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settings_of_a_profile_data();
    void settings_of_a_profile();
    void local_state();
    void site_exceptions();
    void files_that_cannot_be_read_data();
    void files_that_cannot_be_read();
};

void macos_settings_test::settings_of_a_profile_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("rows");
    const auto add = [](const char *name, const QByteArray &document, const QString &rows) {
        QTest::newRow(name) << json(document) << rows;
    };
    add("nothing", "{}", {});
    add("no content settings", "{'profile':{}}", default_rows);
    add("content settings of other types",
        "{'profile':{'default_content_setting_values':{'cookies':'1','geolocation':true}}}",
        default_rows);
    add("branches of other types", "{'profile':[],'browser':1,'session':null,'sync':'s'}", {});
    add("startup without a text", "{'session':{'restore_on_startup':2}}", u"On startup|"_s);
    add("font size without a text", "{'webkit':{'webprefs':{'default_fixed_font_size':16}}}",
        u"Font Size|16"_s);
    add("negative fraction", "{'speeddial':{'column_count':-0.5}}",
        u"Maximum number of columns|0"_s);
    add("beyond integers", "{'speeddial':{'column_count':1e22}}",
        u"Maximum number of columns|10000000000000000000000"_s);
    add("empty texts", "{'download':{'default_directory':''},'themes':{'selected_id':''}}", {});
    add("themes as an object", "{'themes':{'installation_times':{'a':1667872078}}}",
        u"Themes Detail|Theme Name: a;Installation Time (UTC): 08-Nov-2022 01:47:58;;"_s);
    add("themes with blanks", "{'themes':{'installation_times':'{a:x,b,}','selected_id':' t '}}",
        u"Themes Detail|Theme Name: a;Installation Time (UTC): ;;Theme Name: b;Installation Time "
        "(UTC): ;;\nSelected Theme|t"_s);
    add("separator in a value", "{'download':{'default_directory':' /Users/:+:x '}}",
        u"Download location|/Users/"_s);
    add("unknown period", "{'browser':{'clear_data':{'time_period':5,'cache':'yes'}}}",
        u"Clear Browsing Data|"_s);
    add("shortcuts of other types", "{'Keybindings':{'Basic':{'a':['+',5,'='],'b':'list'}}}",
        u"Shortcuts List|a: +;=;;"_s);
    add("sync details of other types", "{'sync':{'apps':1,'first_sync_time':5,'tabs':true}}",
        u"Sync Detail|Tabs: YES;"_s);
}

void macos_settings_test::settings_of_a_profile()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, rows);
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.file(preferences, document);
    run.ready().extract_preferences(run.evidence.path(preferences));
    QCOMPARE(run.lines(u"select key, value from preferences"_s).join(u'\n'), rows);
    QCOMPARE(run.log.messages(),
             QStringList({u"[extract_preferences] Starts"_s, u"[extract_preferences] ends"_s}));
}

void macos_settings_test::local_state()
{
    reader_case run;
    run.accounts = {{u"ada"_s}};
    const QString path = macos_profile(u"ada"_s) + u"Local State"_s;
    run.evidence.file(path, json("{'was':{'restarted':true},'startup_metric':"
                                 "{'last_startup_version':' 95 ',"
                                 "'last_startup_timestamp':13312345678901234},"
                                 "'adblocker':{'user_files':['a',1,'b'],'stats':{'by_date':"
                                 "{'last_date_stored':'13312345678901234'}}}}"));
    run.ready().extract_local_preferences(run.evidence.path(path));
    const QString begin = u"0|ada|"_s;
    const QString end = u"|/"_s + path + u"||Shown macOS|Source7";
    QCOMPARE(run.lines(u"select * from preferences"_s),
             QStringList({begin + u"Custom Blocked Advertisements|a;b" + end,
                          begin + u"Last Ads Block Date (UTC)|08-Nov-2022 01:47:58" + end,
                          begin + u"Last Startup Timestamp (UTC)|08-Nov-2022 01:47:58" + end,
                          begin + u"Last Startup Opera Version|95" + end,
                          begin + u"Restarted|YES" + end}));
}

void macos_settings_test::site_exceptions()
{
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.file(preferences,
                      json("{'profile':{'content_settings':{'exceptions':{'other':{'a':{"
                           "'setting':[1,2]}},'plugins':{'b':{'setting':[2.9,13312345678901235]},"
                           "'a':{'setting':[1,7.5]}},'images':[],'ads':{'e':{'setting':['x',3,4]},"
                           "'d':{'setting':1},'c':{'setting':[1,2,3]},'b':{},'a':5}}}}}"));
    run.ready().extract_website_exceptions(run.evidence.path(preferences));
    QCOMPARE(run.lines(u"select exception_type, hostname, behaviour, timestamp from "
                       "website_exceptions"_s),
             QStringList({u"Block Advertisements|b||"_s, u"Block Advertisements|c||"_s,
                          u"Block Advertisements|d||"_s, u"Block Advertisements|e|Unknown|4"_s,
                          u"Plug-ins|a|Allow|7"_s, u"Plug-ins|b|Block|13312345678901235"_s}));
    QCOMPARE(opera_macos::get_exact_name(u"other"_s), u""_s);
}

void macos_settings_test::files_that_cannot_be_read_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no object") << QByteArray("[{}]");
    QTest::newRow("cut off") << json("{'profile':{}");
    QTest::newRow("nested deeply") << QByteArray(100'000, '[');
}

void macos_settings_test::files_that_cannot_be_read()
{
    QFETCH(QByteArray, content);
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.file(preferences, content);
    opera_macos &reader = run.ready();
    const QString path = run.evidence.path(preferences);
    reader.extract_preferences(path);
    reader.extract_local_preferences(path);
    reader.extract_website_exceptions(path);
    QStringList expected;
    for (const QString &name : {u"[extract_preferences]"_s, u"[extract_local_preferences]"_s,
                                u"[extract_website_exceptions]"_s})
        expected << name + u" Starts"_s << name + u" source file opening ---FAILED--- "_s + path;
    QCOMPARE(run.log.messages(), expected);
}

QTEST_MAIN(macos_settings_test)
#include "settings_test.moc"
