#include "common/plugin_static_function.h"
#include "macos/opera_macos.h"
#include "tests/support/extraction_case.h"
#include "tests/support/scripted_metadata.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

const QString boolean_true = u"<CFBoolean 0x7f80 [0x7fff]>{value = true}"_s;
const QString two_addresses =
    u"(\n    \"https://a.example/a,b.zip?x=1;y=2\",\n    \"https://b.example/Ada\\U2019s (2)\"\n)"_s;

/// The extractor of a macOS source that holds one file.
class metadata_case
{
public:
    metadata_case()
    {
        evidence_.evidence.file(u"Users/ada/a.zip"_s, "zip");
        evidence_.prepare({});
        reader = evidence_.controller.findChild<opera_macos *>();
    }
    QString path(const QString &relative) const { return evidence_.evidence.path(relative); }

    scripted_metadata metadata;
    opera_macos *reader = nullptr;

private:
    extraction_case evidence_{u"macOS"_s};
};

QString document(const QString &content)
{
    return u"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"_s + content + u'\n';
}

} // namespace

class macos_file_metadata_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void every_attribute_in_its_own_field();
    void positions_data();
    void positions();
    void used_dates_data();
    void used_dates();
    void document_of_two_files_where_only_the_second_exists();
    void document_without_content();
    void what_xml_cannot_hold();
    void selection_of_the_host();
    void dictionary_values();
    void missing_dictionary_values_are_logged();
    void dates_of_the_system();
};

void macos_file_metadata_test::every_attribute_in_its_own_field()
{
    metadata_case run;
    const QString path = run.path(u"Users/ada/a.zip"_s);
    run.metadata.files[path] = {
        {{u"kMDItemDateAdded"_s, u"2021-03-05 14:07:09 +0000"_s},
         {u"kMDItemKind"_s, scripted_string(u" Ada\u2019s \"Zip\" "_s)},
         {u"kMDItemContentCreationDate"_s, u"2021-01-01 00:00:00 +0000"_s},
         {u"kMDItemContentModificationDate"_s, u"2021-01-02 00:00:00 +0000"_s},
         {u"kMDItemContentType"_s, scripted_string(u"public.zip"_s)},
         {u"kMDItemFSContentChangeDate"_s, u"2021-01-03 00:00:00 +0000"_s},
         {u"kMDItemFSCreationDate"_s, u"2021-01-04 00:00:00 +0000"_s},
         {u"kMDItemFSName"_s, scripted_string(u"Ben\u2019s file\u2019"_s)},
         {u"kMDItemFSNodeCount"_s, scripted_number(u"12"_s)},
         {u"kMDItemWhereFroms"_s, two_addresses},
         {u"kMDItemAltitude"_s,
          u"<CFNumber 0x7f80 [0x7fff]>{value = -3.50, type = kCFNumberFloat64Type}"_s}},
        {u"1.5"_s, u"N"_s, u"2.5"_s, u"E"_s}};
    const auto found = run.reader->extract_cfstring_attributes(path);
    QCOMPARE(found.date_added, u"2021-03-05 14:07:09 +0000"_s);
    QCOMPARE(found.kind.trimmed(), u"Ada's Zip"_s);
    QCOMPARE(found.content_creation_date, u"2021-01-01 00:00:00 +0000"_s);
    QCOMPARE(found.content_modification_date, u"2021-01-02 00:00:00 +0000"_s);
    QCOMPARE(found.content_type, u"public.zip"_s);
    QCOMPARE(found.content_change_date, u"2021-01-03 00:00:00 +0000"_s);
    QCOMPARE(found.creation_date, u"2021-01-04 00:00:00 +0000"_s);
    QCOMPARE(found.file_name, u"Ben's file\u2019"_s); // no s follows the second one
    QCOMPARE(found.node_count, u"12"_s);
    QCOMPARE(found.where_froms, u"https://a.example/a,b.zip?x=1;y=2;https://b.example/Ada's (2)"_s);
    QCOMPARE(found.where_from_items.size(), 2);
    QCOMPARE(found.altitude, u"-3.50"_s);
    QCOMPARE(found.latitude, u"1.5"_s);
    QCOMPARE(found.longitude, u"2.5"_s);
    // One item and eleven values.
    QCOMPARE(run.metadata.handed_out(), 12);
    QCOMPARE(run.metadata.unreleased(), 0);
}

void macos_file_metadata_test::positions_data()
{
    QTest::addColumn<QStringList>("held"); // latitude, its reference, longitude, its reference
    QTest::addColumn<QString>("latitude");
    QTest::addColumn<QString>("longitude");
    const auto row = [](const char *name, const QStringList &held, const QString &latitude,
                        const QString &longitude) {
        QTest::newRow(name) << held << latitude << longitude;
    };
    row("south and west", {u"33.87"_s, u"S"_s, u"70.66"_s, u"W"_s}, u"-33.87"_s, u"-70.66"_s);
    row("south and east", {u"33.87"_s, u"S"_s, u"151.2"_s, u"E"_s}, u"-33.87"_s, u"151.2"_s);
    row("north and west", {u"40.7"_s, u"N"_s, u"74"_s, u"W"_s}, u"40.7"_s, u"-74"_s);
    row("no references", {u"40.7"_s, QString(), u"74"_s, QString()}, u"40.7"_s, u"74"_s);
    row("references alone", {QString(), u"S"_s, QString(), u"W"_s}, u""_s, u""_s);
}

void macos_file_metadata_test::positions()
{
    QFETCH(QStringList, held);
    QFETCH(QString, latitude);
    QFETCH(QString, longitude);
    metadata_case run;
    const QString path = run.path(u"Users/ada/a.zip"_s);
    run.metadata.files[path] = {{}, {held.at(0), held.at(1), held.at(2), held.at(3)}};
    QCOMPARE(run.reader->extract_longi_lati_attributes(path), std::pair(latitude, longitude));
    const auto all = run.reader->extract_cfstring_attributes(path);
    QCOMPARE(std::pair(all.latitude, all.longitude), std::pair(latitude, longitude));
    QVERIFY(!all.latitude.isNull() && !all.kind.isNull() && all.kind.isEmpty());
}

void macos_file_metadata_test::used_dates_data()
{
    QTest::addColumn<QString>("printed");
    QTest::addColumn<QString>("expected");
    QTest::newRow("two")
        << u"(\n    \"2021-03-05 00:00:00 +0000\",\n    \"2021-03-07 00:00:00 +0000\"\n)"_s
        << u"2021-03-05 00:00:00 +0000;2021-03-07 00:00:00 +0000"_s;
    QTest::newRow("no list") << u"2021-03-05 00:00:00 +0000"_s << u"2021-03-05 00:00:00 +0000"_s;
    QTest::newRow("empty list") << u"(\n)"_s << u""_s;
    QTest::newRow("empty item") << u"(\"\", , \" 2021-03-05\")"_s << u"2021-03-05"_s;
}

void macos_file_metadata_test::used_dates()
{
    QFETCH(QString, printed);
    QFETCH(QString, expected);
    scripted_metadata metadata;
    metadata.files[u"/a"_s] = {
        {{u"kMDItemUsedDates"_s, printed}, {u"kMDItemLastUsedDate"_s, u" (\"2021-03-08\") "_s}}};
    const auto used = plugin_static_function::extract_used_date(u"/a"_s);
    QCOMPARE(used.used_dates, expected);
    QCOMPARE(used.last_used_date, u"2021-03-08"_s);
    const auto none = plugin_static_function::extract_used_date(u"/b"_s);
    QVERIFY(none.used_dates.isEmpty() && none.last_used_date.isEmpty());
    QCOMPARE(metadata.unreleased(), 0);
}

void macos_file_metadata_test::document_of_two_files_where_only_the_second_exists()
{
    metadata_case run;
    const QString missing = run.path(u"Users/ada/missing.zip"_s);
    const QString path = run.path(u"Users/ada/a.zip"_s);
    const scripted_metadata::file known = {
        {{u"kMDItemDateAdded"_s, u" 2021-03-05 14:07:09 +0000 "_s},
         {u"kMDItemFSNodeCount"_s, scripted_number(u"12"_s)},
         {u"kMDItemKind"_s, boolean_true},
         {u"kMDItemFSName"_s, scripted_string(u"a & <b>"_s)},
         {u"kMDItemWhereFroms"_s, two_addresses},
         {u"org_bittorrent_torrent_filenames"_s, u"(\n    one,\n    \"two 2\"\n)"_s},
         {u"unasked"_s, u"x"_s}}};
    run.metadata.files = {{missing, known}, {path, known}};
    const QStringList all = run.reader->filter_extended_attribute_list();
    const auto found = run.reader->get_extended_attributes({missing, path}, {all, all});
    QCOMPARE(found.search_text,
             u"2021-03-05 14:07:09 +0000;++::++;true;++::++;a & <b>;++::++;12;++::++;"
             "https://a.example/a,b.zip?x=1;y=2;https://b.example/Ada's (2);++::++;one;two 2"_s);
    QCOMPARE(
        found.xml_text,
        document(u"<Extended_Attributes_XML_Header>\n"
                 "    <Extended_Attributes_Artifact_Source_Header>\n"
                 "        <File_Path>/Users/ada/a.zip</File_Path>\n"
                 "        <kMDItemDateAdded>2021-03-05 14:07:09 +0000</kMDItemDateAdded>\n"
                 "        <kMDItemKind>true</kMDItemKind>\n"
                 "        <kMDItemFSName>a &amp; &lt;b&gt;</kMDItemFSName>\n"
                 "        <kMDItemFSNodeCount>12</kMDItemFSNodeCount>\n"
                 "        <kMDItemWhereFroms>https://a.example/a,b.zip?x=1;y=2;https://b.example/"
                 "Ada's (2)</kMDItemWhereFroms>\n"
                 "        <org_bittorrent_torrent_filenames>one;two 2"
                 "</org_bittorrent_torrent_filenames>\n"
                 "    </Extended_Attributes_Artifact_Source_Header>\n"
                 "</Extended_Attributes_XML_Header>"_s));
    QCOMPARE(run.metadata.unreleased(), 0);
}

void macos_file_metadata_test::document_without_content()
{
    metadata_case run;
    const QString empty = document(u"<Extended_Attributes_XML_Header/>"_s);
    const QString without_item = run.path(u"Users/ada/a.zip"_s);
    for (const QStringList &files : {QStringList(), QStringList(without_item)}) {
        const auto found = run.reader->get_extended_attributes(files, {{u"kMDItemKind"_s}});
        QCOMPARE(found.search_text, u""_s);
        QCOMPARE(found.xml_text, empty);
    }
}

void macos_file_metadata_test::what_xml_cannot_hold()
{
    metadata_case run;
    const QString path = run.path(u"Users/ada/a.zip"_s);
    run.metadata.files[path] = {{{u"a"_s, u"x\u0001\u001b\ufffey"_s}}};
    const auto found = run.reader->get_extended_attributes({path}, {{u"a"_s}});
    QVERIFY(found.xml_text.contains(u"<a>xy</a>"_s));
    QCOMPARE(found.search_text, u"x\u0001\u001b\ufffey"_s);
}

void macos_file_metadata_test::selection_of_the_host()
{
    opera_macos reader;
    const auto names_of_selection = [&reader](const QStringList &selected) {
        reader.macos_set_extended_attributes_list(selected);
        return reader.filter_extended_attribute_list().join(u' ');
    };
    QCOMPARE(names_of_selection({}),
             u"kMDItemDateAdded kMDItemKind kMDItemContentCreationDate "
             "kMDItemContentModificationDate kMDItemContentType kMDItemFSContentChangeDate "
             "kMDItemFSCreationDate kMDItemFSName kMDItemFSNodeCount kMDItemWhereFroms "
             "kMDItemLatitude kMDItemLongitude kMDItemAltitude org_bittorrent_torrent_filenames "
             "kMDItemUsedDates kMDItemLastUsedDate"_s);
    QCOMPARE(names_of_selection({u"kMDItemKind"_s, u"kMDItemUnknown"_s, u"kMDItemDateAdded"_s}),
             u"kMDItemDateAdded kMDItemKind"_s);
}

void macos_file_metadata_test::dictionary_values()
{
    using common = plugin_static_function;
    scripted_metadata metadata;
    scripted_metadata::object key{u"key"_s};
    scripted_metadata::object one{u"1"_s, u"__NSCFNumber"_s};
    scripted_metadata::object yes{u"1"_s, u"__NSCFBoolean"_s};
    scripted_metadata::object no{u"0"_s, u"__NSCFBoolean"_s};
    scripted_metadata::object list{u""_s, u"__NSArrayI"_s, {&one, &key}};
    scripted_metadata::object dictionary;
    const QString label = u"L"_s;

    dictionary.members = {{&key, &one}};
    QCOMPARE(common::get_nsstring_values(&dictionary, &key), u"1"_s);
    QCOMPARE(common::get_nsnumber_values(&dictionary, &key), u"1"_s);
    QCOMPARE(common::get_nsnumber_values_yes_no(&dictionary, &key), u"1"_s);
    QCOMPARE(common::get_nsstring_key_and_values(&dictionary, &key, label), u"L:+:1"_s);
    QCOMPARE(common::get_nsnumber_key_and_values(&dictionary, &key, label), u"L:+:1"_s);
    dictionary.members = {{&key, &yes}};
    QCOMPARE(common::get_nsnumber_values_yes_no(&dictionary, &key), u"YES"_s);
    QCOMPARE(common::get_nsnumber_key_and_value_yes_no(&dictionary, &key, label), u"L:+:YES"_s);
    dictionary.members = {{&key, &no}};
    QCOMPARE(common::get_nsnumber_values_yes_no(&dictionary, &key), u"NO"_s);
    dictionary.members = {{&key, &list}};
    QCOMPARE(common::get_nsarray_key_and_values(&dictionary, &key, label), u"L:+:1;key"_s);
}

void macos_file_metadata_test::missing_dictionary_values_are_logged()
{
    using common = plugin_static_function;
    scripted_metadata metadata;
    const recording_log log;
    scripted_metadata::object key{u"key"_s};
    scripted_metadata::object dictionary;
    QCOMPARE(common::get_nsstring_values(&dictionary, &key), u""_s);
    QCOMPARE(common::get_nsnumber_values(&dictionary, &key), u""_s);
    QCOMPARE(common::get_nsnumber_values_yes_no(&dictionary, &key), u""_s);
    QCOMPARE(common::get_nsarray_key_and_values(&dictionary, &key, u"L"_s), u"L:+:"_s);
    QCOMPARE(log.messages(),
             QStringList({u"[get_nsstring_values]-----FAILED----- to get value: key"_s,
                          u"[get_nsnumber_values]-----FAILED----- to get value: key"_s,
                          u"[get_nsnumber_values_yes_no]-----FAILED----- to get value: key"_s,
                          u"[get_nsstring_values]-----FAILED----- to get value: key"_s}));
    QCOMPARE(common::get_nsnumber_values(nullptr, nullptr), u""_s);
}

void macos_file_metadata_test::dates_of_the_system()
{
    scripted_metadata metadata;
    const auto seconds = [](scripted_metadata::object date) {
        return plugin_static_function::convert_nsdate_to_epoch(reinterpret_cast<NSDate *>(&date),
                                                               nullptr);
    };
    QCOMPARE(seconds({u"05-Mar-2021,14:07:09 PM"_s}), u"1614953229"_s);
    QCOMPARE(seconds({u"05-Mar-2021,00:00:00 AM"_s}), u"1614902400"_s);
    QCOMPARE(seconds({u"31-Dec-1969,23:59:59 PM"_s}), u"-1"_s);
    QCOMPARE(seconds({u"no date"_s}), u""_s);
    QCOMPARE(plugin_static_function::convert_nsdate_to_epoch(nullptr, nullptr), u""_s);
}

QTEST_MAIN(macos_file_metadata_test)
#include "file_metadata_test.moc"
