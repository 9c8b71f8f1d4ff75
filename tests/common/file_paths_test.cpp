#include "common/evidence/evidence_file.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "tests/support/evidence_builder.h"
#include "tests/support/recording_log.h"

#include <QDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using services = plugin_static_function;

class file_paths_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { services::set_essentials(); }
    void paths_data();
    void paths();
    void account_of_a_path_data();
    void account_of_a_path();
    void free_names();
    void private_copies();
    void only_regular_files_are_evidence();
    void files_full_of_holes();
    void confinement_data();
    void confinement();
    void copying_trees();
};

void file_paths_test::paths_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("complete");
    QTest::addColumn<QString>("relative");
    const QString home = u"macOS_Home_Directory"_s;
    QTest::newRow("slash added") << u""_s << u"a/b"_s << u"/a/b"_s << u"/a/b"_s;
    QTest::newRow("blank") << u""_s << u"  "_s << u"  "_s << u"  "_s;
    QTest::newRow("other type") << u"x"_s << u"/Users/o/f"_s << u"/Users/o/f"_s << u"/Users/o/f"_s;
    QTest::newRow("home") << home << u"/Users/o/d/f"_s << u"/Users/me/d/f"_s << u"/Users/o/d/f"_s;
    QTest::newRow("home, user alone") << home << u"/Users/o"_s << u"/Users/me"_s << u"/Users/o"_s;
    QTest::newRow("home, prefix") << home << u"/x/root/f"_s << u"/x/root/f"_s << u"/f"_s;
    QTest::newRow("home, prefix twice")
        << home << u"root/a/root/f"_s << u"/root/a/root/f"_s << u"/a/root/f"_s;
}

void file_paths_test::paths()
{
    QFETCH(QString, type);
    QFETCH(QString, path);
    QFETCH(QString, complete);
    QFETCH(QString, relative);
    QCOMPARE(services::get_complete_file_path(path, u"me"_s, type), complete);
    QCOMPARE(services::get_relative_file_path(path, u"root"_s, type), relative);
    const auto [stored, relation] = services::get_final_artifact_source_file(path, u"root"_s, type);
    QCOMPARE(stored, relative);
    QCOMPARE(relation, type == "macOS_Home_Directory"_L1 ? path : QString());
}

void file_paths_test::account_of_a_path_data()
{
    QTest::addColumn<bool>("accounts");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("system");
    QTest::addColumn<QString>("domain");
    QTest::newRow("known") << true << u"/src/Users/ada/f"_s << u"ada"_s << u"first"_s;
    QTest::newRow("unknown") << true << u"/src/Users/eve/f"_s << u"eve"_s << u""_s;
    QTest::newRow("case matters") << true << u"/src/Users/ADA/f"_s << u"ADA"_s << u""_s;
    QTest::newRow("prefix not compared") << true << u"xxxxxUsers/ada/f"_s << u"ada"_s << u"first"_s;
    QTest::newRow("too short") << true << u"/src/Users"_s << u""_s << u""_s;
    QTest::newRow("no accounts") << false << u"/src/Users/ada/f"_s << u""_s << u""_s;
}

void file_paths_test::account_of_a_path()
{
    QFETCH(bool, accounts);
    QFETCH(QString, path);
    if (accounts)
        services::system_account_QList = {
            {u"ben"_s, u"b"_s}, {u"ada"_s, u"first"_s}, {u"ada"_s, u"second"_s}};
    const auto [system, domain] = services::extract_user_name_from_sourcefile(path, u"/src/"_s);
    QTEST(system, "system");
    QTEST(domain, "domain");
}

void file_paths_test::free_names()
{
    QTemporaryDir directory;
    const QString folder = directory.path() + u"/new/er/"_s;
    for (const QString &expected : {u"History"_s, u"1_History"_s, u"2_History"_s}) {
        QCOMPARE(services::get_available_file(folder, u"/any/History"_s, u"me"_s), expected);
        QVERIFY(QFile(folder + expected).open(QIODevice::WriteOnly));
    }
    QVERIFY(services::is_file_exist_in_dir(folder, u" History "_s, u"me"_s));
    QVERIFY(!services::is_file_exist_in_dir(folder, u"history"_s, u"me"_s));
    services::set_cancel_extraction(true);
    QCOMPARE(services::get_available_file(folder, u"Other"_s, u"me"_s), QString());
}

void file_paths_test::private_copies()
{
    evidence_builder evidence;
    evidence.file(u"a/History"_s, "first");
    evidence.file(u"a/History-wal"_s, "wal");
    evidence.file(u"b/History"_s, "second");
    QVERIFY(QFile::link(evidence.path(u"a/History-wal"_s), evidence.path(u"b/History-wal"_s)));
    QTemporaryDir directory;
    const QString parent = directory.path() + u"/tmp/"_s;
    plugin_helper_functions helper;
    helper.set_adhoc_parent_path(parent);

    QCOMPARE(helper.get_adhoc_path_for_database(u"  "_s), QString());
    QCOMPARE(helper.get_adhoc_path_for_database(evidence.path(u"a/History"_s)),
             parent + u"History"_s);
    {
        recording_log log;
        QCOMPARE(helper.get_adhoc_path_for_database(evidence.path(u"b/History"_s)),
                 parent + u"1_History"_s);
        QCOMPARE(log.messages().filter(u"not copied"_s).size(), 1);
    }
    QCOMPARE(helper.get_adhoc_path_for_regular_file(evidence.path(u"a/History"_s)),
             parent + u"2_History"_s);
    QCOMPARE(helper.get_adhoc_path_for_database(evidence.path(u"gone"_s)), parent + u"gone"_s);
    QCOMPARE(QDir(parent).entryList(QDir::Files),
             QStringList({u"1_History"_s, u"2_History"_s, u"History"_s, u"History-wal"_s}));
    QFile copy(parent + u"1_History"_s);
    QVERIFY(copy.open(QIODevice::ReadOnly));
    QCOMPARE(copy.readAll(), "second"_ba);
}

void file_paths_test::only_regular_files_are_evidence()
{
    evidence_builder evidence;
    evidence.file(u"file"_s, "content");
    const QString fifo = evidence.path(u"fifo"_s);
    QCOMPARE(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    QVERIFY(QFile::link(evidence.path(u"file"_s), evidence.path(u"link"_s)));
    const auto opens = [&](const QString &name, evidence_file::links links) {
        evidence_file file(evidence.path(name));
        const bool opened = file.open_for_reading(links);
        return opened ? file.readAll() : (file.errorString().isEmpty() ? "?"_ba : "no"_ba);
    };
    using links = evidence_file::links;
    QCOMPARE(opens(u"file"_s, links::refused), "content"_ba);
    QCOMPARE(opens(u"link"_s, links::followed), "content"_ba);
    QCOMPARE(opens(u"link"_s, links::refused), "no"_ba);
    QCOMPARE(opens(u"fifo"_s, links::followed), "no"_ba); // and does not wait for a writer
    QCOMPARE(opens(u""_s, links::followed), "no"_ba);     // the folder
    QCOMPARE(opens(u"gone"_s, links::followed), "no"_ba);
}

void file_paths_test::files_full_of_holes()
{
    evidence_builder evidence;
    evidence.file(u"large"_s, "begin");
    const QString path = evidence.path(u"large"_s);
    QVERIFY(QFile::resize(path, evidence_file::largest_bytes + 1));
    evidence_file file(path);
    QVERIFY(!file.open_whole());
    QCOMPARE(file.errorString(), u"Too large to be held in memory"_s);

    struct stat status = {};
    const QString copy = evidence.path(u"copy"_s);
    QVERIFY(copy_evidence_file(path, copy));
    QCOMPARE(::stat(QFile::encodeName(copy).constData(), &status), 0);
    QCOMPARE(status.st_size, evidence_file::largest_bytes + 1);
    QVERIFY(status.st_blocks * 512 < 1'000'000); // st_blocks counts units of 512 bytes
    QVERIFY(QFile::resize(path, 1LL << 42));
    QVERIFY(!copy_evidence_file(path, evidence.path(u"too large"_s)));
    QVERIFY(!QFile::exists(evidence.path(u"too large"_s)));
}

void file_paths_test::confinement_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("inside");
    QTest::newRow("file") << u"in/file"_s << true;
    QTest::newRow("folder itself") << u"in"_s << true;
    QTest::newRow("dots that stay") << u"in/sub/../file"_s << true;
    QTest::newRow("dots that leave") << u"in/../out/file"_s << false;
    QTest::newRow("same beginning") << u"inner/file"_s << false;
    QTest::newRow("link out") << u"in/link/file"_s << false;
    QTest::newRow("missing") << u"in/gone"_s << false;
}

void file_paths_test::confinement()
{
    QFETCH(QString, path);
    QFETCH(bool, inside);
    evidence_builder evidence;
    for (const QString &name : {u"in/file"_s, u"in/sub/file"_s, u"inner/file"_s, u"out/file"_s})
        evidence.file(name, "x");
    QVERIFY(QFile::link(evidence.path(u"out"_s), evidence.path(u"in/link"_s)));
    QCOMPARE(is_inside_folder(evidence.path(path), evidence.path(u"in/"_s)), inside);
}

void file_paths_test::copying_trees()
{
    evidence_builder evidence;
    evidence.file(u"tree/a"_s, "1");
    evidence.file(u"tree/sub/.hidden"_s, "2");
    QVERIFY(QFile::link(u"/"_s, evidence.path(u"tree/root"_s)));
    services::copy_directory(evidence.path(u"tree"_s), evidence.path(u"copy"_s));
    QVERIFY(QFileInfo(evidence.path(u"copy/sub/.hidden"_s)).isFile());
    QVERIFY(!QFileInfo(evidence.path(u"copy/root"_s)).isSymLink());

    recording_log log;
    services::copy_directory(evidence.path(u"gone"_s), evidence.path(u"copy"_s));
    QCOMPARE(log.messages(),
             QStringList({u"[copy_directory] source diectory does not exist ----FAILED---- :"_s +
                          evidence.path(u"gone"_s)}));
    QCOMPARE(services::get_unmatched_varible_list_of_parentlist({u"a"_s, u"b"_s, u"a"_s},
                                                                {u"b"_s, u"c"_s}),
             QStringList({u"a"_s, u"a"_s}));
}

QTEST_MAIN(file_paths_test)
#include "file_paths_test.moc"
