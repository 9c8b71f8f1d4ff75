#include "macos/macos_readers.h"
#include "sample/sample_evidence.h"
#include "tests/support/check_readers.h"
#include "tests/support/host_tables.h"

#include <QFile>
#include <QMap>
#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QByteArray sync_table =
    "create table metas(metahandle, base_version, server_version, local_external_id, "
    "transaction_version, mtime, server_mtime, ctime, server_ctime, id, parent_id, "
    "server_parent_id, is_unsynced, is_unapplied_update, is_del, is_dir, server_is_dir, "
    "server_is_del, non_unique_name, server_non_unique_name, unique_client_tag, "
    "unique_server_tag, unique_bookmark_tag, specifics, server_specifics, "
    "server_unique_position, unique_position);";

/// The sample's two accounts: a current and an older profile.
void put_sample(reader_case &run)
{
    sample::evidence_request request;
    request.folder = run.evidence.path(u"sample"_s);
    if (const QString problem = sample::write_evidence(request); !problem.isEmpty())
        qFatal("%s", qPrintable(problem));
    for (const QString &user : sample::account_names(request.accounts)) {
        run.accounts.append({user});
        QFile::rename(request.folder + u"/Users/" + user, run.evidence.path(u"Users/"_s + user));
    }
}

/// Label and text of the current profile's settings, in order.
const QString sample_settings =
    u"Enable advanced keyboard shortcuts|YES\n"
    "Shortcuts List|Close tab: Ctrl+W;Ctrl+F4;;New tab: Ctrl+T;;Nothing: ;;\n"
    "Block ads and surf the web up to three times faster|YES\n"
    "Enable auto-filling of forms on webpages|YES\nWallet Import Enabled|NO\n"
    "Show advanced settings|YES\nClear Browsing Data|Browsing History: YES;Cached Images and "
    "Files: YES;Content Licenses: NO;Cookies and other site and plugin data: NO;Download History: "
    "YES;Autofill form data: NO;Hosted App Data: NO;Passwords: YES;Time Period: the beginning of "
    "time;\nHandlers|Allow sites to ask to become default handlers for protocols (recommended)\n"
    "Download location|/Users/mara.lindqvist/Downloads\n"
    "Ask where to save each file before downloading|YES\n"
    "Send a ‘Do Not Track’ request with your browsing traffic|YES\n"
    "Always show battery saver icon in toolbar|NO\nBlock third-party cookies and site data|YES\n"
    "Enable video pop out|YES\nOffer to save passwords I enter on the web|NO\n"
    "Cookies|Keep local data only until I quit my browser\nImages|Show all images (recommended)\n"
    "JavaScript|Do not allow any site to run JavaScript\n"
    "Key generation|Do not allow any site to use key generation in forms (recommended)\n"
    "MIDI full control|Ask me when a site wants to use system exclusive messages to access MIDI "
    "audio devices (recommended)\nPop-ups|Do not allow any site to show pop-ups (recommended)\n"
    "Microphone|Do not allow sites to access my microphone\nCamera|1\n"
    "Background sync|Do not allow recently closed sites to finish sending and receiving data\n"
    "Location|Allow all sites to track my physical location\n"
    "Notifications|Do not allow any site to show desktop notifications\n"
    "Plug-ins|Detect and run important plug-in content (recommended)\n"
    "On startup|Continue where you left off\nMaximum number of columns|5\n"
    "Adjust Speed Dial animations for slower hardware|NO\nOpera is Not Default Browser|NO\n"
    "Keep Sync Everything|NO\nSync Detail|Opera Last Signed ID: mara@lindqvist.example;First sync "
    "Time (UTC): 17-Oct-2021 09:00:00;Last sync Time (UTC): 01-Mar-2023 08:15:00;Apps Settings: "
    "YES;Apps Settings: NO;Autofill: YES;Autofill Profile: NO;Autofill Wallet: YES;Autofill Wallet "
    "Metadata: NO;Bookmarks: YES;Exension Settings: NO;Extensions: YES;Favicon Images: NO;Favicon "
    "Tracking: YES;History: NO;Passwords: YES;Preferences: NO;Periority Preferences: YES;Search "
    "Engines: NO;Sessions: YES;Tabs: NO;Themes: YES;Typed Urls: NO;\n"
    "Themes Detail|Theme Name: ddddeeeeffffgggghhhhiiiijjjjkkkk;Installation Time (UTC): "
    "27-Feb-2022 22:13:20;;Theme Name: harbour_dusk;Installation Time (UTC): 08-Aug-2022 "
    "23:06:40;;\nSelected Theme|ddddeeeeffffgggghhhhiiiijjjjkkkk\nFont Size|Large\n"
    "Custom Blocked Advertisements|own list.txt;küche.txt\n"
    "Last Ads Block Date (UTC)|28-Feb-2023 09:00:00\n"
    "Last Startup Timestamp (UTC)|01-Mar-2023 05:00:00\n"
    "Last Startup Opera Version|95.0.4635.46\nRestarted|NO"_s;

void call_all_readers(opera_macos &reader, const reader_case &run)
{
    reader.extract_favicons_11();
    reader.extract_thumbnails();
    reader.extract_sync_data_11();
    reader.extract_keywords_11();
    for (const auto &account : run.accounts) {
        const QString profile = run.evidence.path(macos_profile(account.system_user));
        reader.extract_preferences(profile + u"Preferences");
        reader.extract_local_preferences(profile + u"Local State");
        reader.extract_website_exceptions(profile + u"Preferences");
    }
}

} // namespace

class macos_unselected_readers_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void every_descriptor_fits_the_tables();
    void sample_with_and_without_the_tables();
    void synchronised_items();
    void single_precision_times_data();
    void single_precision_times();
    void search_engines();
    void cards_of_older_schemas();
};

void macos_unselected_readers_test::every_descriptor_fits_the_tables()
{
    using namespace macos_readers;
    QCOMPARE(
        faults_of_readers({&credit_cards, &keywords_11, &favicons_11, &thumbnails, &sync_data_11},
                          host_tables),
        QStringList());
}

void macos_unselected_readers_test::sample_with_and_without_the_tables()
{
    struct expectation {
        const char *function;
        const char *table;
        const char *failure;
        qsizetype rows;
        qsizetype calls = 1;
        qsizetype lines_per_failure = 3;
    };
    constexpr expectation expectations[] = {
        {"extract_favicons_11", "favicon",
         "[extract_favicons_11]Insertion Query ----------FAILED------------", 22},
        {"extract_thumbnails", "thumbnails",
         "[extract_thumbnails]insert query --------FAILED------- to execute ", 14, 1, 2},
        {"extract_sync_data_11", "sync_data",
         "[extract_sync_data_11]Insertion Query -----FAILED-----", 20},
        {"extract_keywords_11", "keywords",
         "[extract_keywords_11] insert query execution ------FAILED--------", 6},
        {"extract_preferences", "preferences",
         "[extract_preferences] insert query --------FAILED------", 48, 2},
        {"extract_local_preferences", "preferences",
         "[extract_local_preferences] insert query --------FAILED------", 6, 2},
        {"extract_website_exceptions", "website_exceptions",
         "[extract_website_exceptions] insert_excep_query execute-------FAILED-----", 122, 2},
    };
    reader_case run;
    put_sample(run);
    call_all_readers(run.ready(), run);
    QVERIFY(run.log.messages().filter(u"FAILED"_s).isEmpty());
    QMap<QString, qsizetype> rows;
    for (const expectation &one : expectations)
        rows[QString::fromUtf8(one.table)] += one.rows;
    for (auto table = rows.begin(); table != rows.end(); ++table)
        QCOMPARE(run.rows(u"select 1 from "_s + table.key()).size(), table.value());
    QCOMPARE(run.lines(u"select key, value from preferences where account_name like 'mara%'"_s)
                 .join(u'\n'),
             sample_settings);

    reader_case without;
    put_sample(without);
    call_all_readers(without.ready(false), without);
    for (const expectation &one : expectations) {
        const QStringList lines =
            without.log.messages_of(u"opera_macos::"_s + QLatin1StringView(one.function));
        // Two files with half of the rows each; ten failures of a file are listed, the rest
        // counted.
        const qsizetype listed = 2 * qMin<qsizetype>(10, one.rows / 2);
        const qsizetype counts = one.rows > listed ? 2 : 0;
        QCOMPARE(lines.filter(u" more such failures -----FAILED----- "_s).size(), counts);
        QCOMPARE(lines.filter(u"no such table: "_s + QLatin1StringView(one.table)).size(), listed);
        QCOMPARE(lines.size(), listed * one.lines_per_failure + counts + 2 * one.calls);
    }
}

void macos_unselected_readers_test::synchronised_items()
{
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(
        macos_profile(u"ada"_s) + u"Sync Data/SyncData.sqlite3"_s,
        sync_table + "insert into metas values(1,7,8,9,10,0,-5,128000,'x','id','p','sp',1,0,'1',2,"
                     "NULL,1,'name',NULL,'client','server','mark',x'01',x'02',x'03',x'04');"
                     "insert into metas(base_version) values(-1),('-1'),(NULL)");
    run.ready().extract_sync_data_11();
    const QString end =
        u"|/"_s + macos_profile(u"ada"_s) + u"Sync Data/SyncData.sqlite3||Shown macOS|Source7";
    QCOMPARE(run.lines(u"select * from sync_data"_s),
             QStringList(
                 {u"0|ada|7|8|9|10|0|-5|128|0|YES|NO|YES|NO|NO|YES|name|NULL|server"_s + end,
                  u"0|ada|NULL|NULL|NULL|NULL|0|0|0|0|NO|NO|NO|NO|NO|NO|NULL|NULL|NULL"_s + end}));
}

void macos_unselected_readers_test::single_precision_times_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QString>("written");
    // Of that size, milliseconds are multiples of 131072 and seconds multiples of 128.
    QTest::newRow("present day") << QByteArray("1667872078000") << u"1667872000"_s;
    QTest::newRow("two minutes before") << QByteArray("1667871950000") << u"1667871872"_s;
    QTest::newRow("truncated") << QByteArray("1999") << u"1"_s;
    QTest::newRow("negative behind a blank") << QByteArray("' -5000'") << u" -5000"_s;
    QTest::newRow("no number") << QByteArray("'nan'") << u"nan"_s;
    QTest::newRow("beyond integers") << QByteArray("1e30") << u"1e+30"_s;
    QTest::newRow("beyond single precision") << QByteArray("'1e300'") << u"1e300"_s;
}

void macos_unselected_readers_test::single_precision_times()
{
    QFETCH(QByteArray, stored);
    QFETCH(QString, written);
    reader_case run;
    run.accounts = {{u"ada"_s}};
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"Sync Data/SyncData.sqlite3"_s,
                        sync_table + "insert into metas(base_version,mtime) values(1," + stored +
                            ")");
    run.ready().extract_sync_data_11();
    QCOMPARE(run.lines(u"select mtime from sync_data"_s), QStringList(written));
}

void macos_unselected_readers_test::search_engines()
{
    reader_case run;
    run.accounts = {{u"ada"_s}, {u"ben"_s}};
    const QByteArray columns = "short_name, keyword, favicon_url, url, suggest_url, date_created, "
                               "last_modified, usage_count, safe_for_autoreplace";
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"Web Data"_s,
                        "create table keywords(" + columns +
                            ", prepopulate_id);"
                            "insert into keywords values('S','s','f','u',NULL,1667872078,"
                            "13312345678901234,3,1,2)");
    run.evidence.sqlite(macos_profile(u"ben"_s) + u"Web Data"_s,
                        "create table keywords(" + columns + ")");
    opera_macos &reader = run.ready();
    QCOMPARE(reader.extract_keywords_11(), -1);
    QCOMPARE(run.lines(u"select * from keywords"_s),
             QStringList(u"0|ada|S|s|f|u|NULL|1667872078|1667872078|3|YES|2|/"_s +
                         macos_profile(u"ada"_s) + u"Web Data||Shown macOS|Source7"));
}

void macos_unselected_readers_test::cards_of_older_schemas()
{
    reader_case run;
    run.accounts = {{u"ada"_s}, {u"ben"_s}, {u"cleo"_s}};
    const QByteArray columns = "guid, name_on_card, expiration_month, expiration_year, "
                               "date_modified, card_number_encrypted";
    run.evidence.sqlite(macos_profile(u"ada"_s) + u"Web Data"_s,
                        "create table credit_cards(" + columns +
                            ", origin);"
                            "insert into credit_cards values('g','n',1,2030,5,'c','o')");
    run.evidence.sqlite(macos_profile(u"ben"_s) + u"Web Data"_s,
                        "create table credit_cards(" + columns +
                            ");"
                            "insert into credit_cards values('h','m',2,2031,6,'d')");
    run.evidence.sqlite(macos_profile(u"cleo"_s) + u"Web Data"_s, "create table other(a)");
    run.ready().extract_webdata_credit_cards();
    QCOMPARE(run.lines(u"select system_user, guid, name_on_card, expiration_month, "
                       "expiration_year, date_modified, card_number_encrypted, origin, use_count "
                       "from credits_cards order by INT"_s),
             QStringList({u"ada|g|n|1|2030|5|c|o|NULL"_s, u"ben|h|m|2|2031|6|d||NULL"_s}));
    const QStringList lines = run.log.messages_of(u"opera_macos::extract_webdata_credit_cards"_s);
    QCOMPARE(lines.size(), 5);
    QVERIFY(lines.at(2).contains(u"no such table: credit_cards"_s));
}

QTEST_MAIN(macos_unselected_readers_test)
#include "unselected_readers_test.moc"
