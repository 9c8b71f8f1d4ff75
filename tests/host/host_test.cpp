#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#ifdef Q_OS_LINUX
#include <sys/stat.h>
#include <unistd.h>
#endif

using namespace Qt::StringLiterals;

namespace
{

struct finished {
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

/// Writes a record as the log file holds it. The integrity of the payload is the caller's affair.
QByteArray record(char flags, const QByteArray &integrity, const QByteArray &payload)
{
    const auto key = QByteArray::fromHex("f1642b7ac0913e5d");
    QByteArray cipher = QByteArray("\x03") + flags;
    char last = 0;
    const QByteArray block = "?" + integrity + payload;
    for (qsizetype i = 0; i < block.size(); ++i)
        cipher += last = static_cast<char>(block[i] ^ last ^ key[i % 8]);
    return cipher.toBase64() + "<[{()}]>";
}

QByteArray checksum(const QByteArray &payload)
{
    QByteArray bytes(2, 0);
    qToBigEndian(qChecksum(payload), bytes.data());
    return bytes;
}

QByteArray checked_record(const QByteArray &line)
{
    return record(2, checksum(line), line);
}

} // namespace

/// Runs the host as a user does, with a plug-in that writes down how it is called.
class host_test : public QObject
{
    Q_OBJECT

private:
    finished run(const QStringList &arguments, const QString &interrupt = {})
    {
        QProcess host;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"FAKE_PLUGIN_CALLS"_s, path(u"calls"));
        environment.insert(u"FAKE_PLUGIN_INTERRUPT"_s, interrupt);
        environment.insert(u"FAKE_PLUGIN_TELLS"_s, told_);
        host.setProcessEnvironment(environment);
        host.setWorkingDirectory(folder_->path());
        host.start(QStringLiteral(HOST_PROGRAM), arguments);
        if (!host.waitForFinished() || host.exitStatus() != QProcess::NormalExit)
            return {};
        return {host.exitCode(), host.readAllStandardOutput(), host.readAllStandardError()};
    }

    finished extract(const QStringList &more, const QString &interrupt = {})
    {
        return run(QStringList{u"--plugin"_s, QStringLiteral(FAKE_PLUGIN), u"--source"_s,
                               u"evidence"_s, u"--os"_s, u"macOS"_s, u"--result"_s, u"out"_s} +
                       more,
                   interrupt);
    }

    QString path(QStringView name) const { return folder_->path() + u'/' + name; }

    QStringList calls() const { return read(u"calls").split(u'\n', Qt::SkipEmptyParts); }
    QString read(QStringView name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }

    std::unique_ptr<QTemporaryDir> folder_;
    QString told_; ///< for the plug-in's properties

private Q_SLOTS:
    void init()
    {
        folder_ = std::make_unique<QTemporaryDir>();
        told_.clear();
        for (const char *name : {"evidence/Users/anna", "evidence/Users/Shared", "elsewhere/eve",
                                 "evidence/Users/Default User", "evidence/Users/.hidden"})
            QVERIFY(QDir(folder_->path()).mkpath(QString::fromLatin1(name)));
        QVERIFY(QFile::link(path(u"elsewhere/eve"), path(u"evidence/Users/eve")));
        QVERIFY(QFile::link(path(u"evidence"), path(u"link")));
        QVERIFY(QFile::link(path(u"evidence/new"), path(u"dangling")));
        QVERIFY(QFile(path(u"evidence/Users/file")).open(QIODevice::WriteOnly));
    }

    void refuses_to_start_data()
    {
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("arguments"); // later ones override those of extract()
        QTest::addColumn<QString>("complaint");

        const auto usage = [](const char *arguments, const char *complaint) {
            QTest::newRow(arguments)
                << 2 << QString::fromLatin1(arguments) << QString::fromLatin1(complaint);
        };
        usage("--os macos", "macos");
        usage("--account :corp", "\":corp\"");
        usage("--account", "account");
        usage("--account ../../root", "../../root");
        usage("--table history,passwords", "passwords");
        usage("--source-count -1", "-1");
        usage("--engine 3", "--engine");
        usage("--log-encrypted", "--log");
        usage("--clear --append", "--append");
        usage("--result=", "--result");
        usage("--decipher-log x", "--decipher-log");
        usage("stray", "stray");
        usage("--unknown", "unknown");

        const auto failure = [](const char *arguments, const char *complaint) {
            QTest::newRow(arguments)
                << 1 << QString::fromLatin1(arguments) << QString::fromLatin1(complaint);
        };
        failure("--source missing", "/missing does not exist");
        failure("--source evidence/Users/file", "is no folder");
        failure("--plugin evidence/Users/file", "cannot load");
        failure("--plugin missing.so", "/missing.so");
        failure("--result evidence", "/evidence lies in the evidence");
        failure("--result evidence/a/b/c", "/a/b/c lies in");
        failure("--result link/Users/../new", "lies in");
        failure("--result dangling/new", "lies in");
        failure("--log dangling", "log file");
        failure("--log evidence/log", "log file");
        failure("--result evidence/Users/file/out", "lies in");
        failure("--source elsewhere --result evidence/Users/file/out", "cannot write");
        failure("--log missing/log", "cannot write the log");
#ifdef Q_OS_LINUX
        failure("--result /proc", "cannot write to the result folder /proc");
#endif
    }

    void refuses_to_start()
    {
        QFETCH(int, status);
        QFETCH(QString, arguments);
        QFETCH(QString, complaint);

        const finished host = extract(arguments.split(u' '));
        QCOMPARE(host.status, status);
        QVERIFY2(host.errors.contains(complaint.toUtf8()), host.errors.constData());
        QCOMPARE(host.errors.count('\n'), 1);
        QCOMPARE(host.errors.contains("--help"), status == 2);
        QCOMPARE(host.output, QByteArray());
        QCOMPARE(calls(), QStringList());
        QCOMPARE(QDir(path(u"evidence")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
                 QStringList(u"Users"_s));
    }

    void refuses_a_result_that_leads_into_the_evidence()
    {
        QVERIFY(QDir(folder_->path()).mkpath(u"out"_s));
        QVERIFY(QFile::link(path(u"evidence"), path(u"out/Artifacts_Result")));
        QCOMPARE(extract({}).status, 1);
        QCOMPARE(calls(), QStringList(u"engine_type 0"_s));
    }

    void refuses_evidence_and_logs_in_the_folder_of_the_plugin()
    {
        const QString temporary = u"case/Artifacts_Result/Fake_Browser/tmp"_s;
        QVERIFY(QDir(folder_->path()).mkpath(temporary + u"/evidence/Users/anna"_s));
        for (const QStringList &more :
             {QStringList{u"--source"_s, temporary + u"/evidence"_s},
              QStringList{u"--log"_s, temporary + u"/../Fake_Browser.sqlite"_s}}) {
            const finished host = extract(QStringList{u"--result"_s, u"case"_s} + more);
            QCOMPARE(host.status, 1);
            QVERIFY2(host.errors.contains("plug-in's folder"), host.errors.constData());
            QCOMPARE(calls().constLast(), u"engine_type 0"_s);
        }
    }

#ifdef Q_OS_LINUX
    void tells_of_accounts_that_are_not_read()
    {
        const QByteArray latin = QFile::encodeName(path(u"evidence/Users/j")) + "\xfcrgen";
        QCOMPARE(::mkdir(latin.constData(), 0700), 0);
        const QByteArray notes = extract({u"--account"_s, u"Anna"_s}).errors;
        QVERIFY2(notes.contains("no folder of account Anna in "), notes.constData());
        QVERIFY2(notes.contains("/Users/j%FCrgen\n"), notes.constData());
        QCOMPARE(extract({u"--quiet"_s}).errors, QByteArray());
        ::rmdir(latin.constData()); // which Qt cannot name either
    }
#endif

    void calls_in_the_documented_order_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("expected");

        QTest::newRow("defaults")
            << u"--os winOS"_s
            << u"engine_type 0;essentials;engine_type 0;source_count 1;desktop_info;general_info 0000;"
               "source_info evidence/  Windows winOS anna|;"
               "tables history,bookmarks,speeddials,downloads,search_items,cookies,logins,autofill,"
               "autofill_profiles,credits_cards,extensions,sessions,cached_files,topsites;"
               "result_directory out;create_tables;attributes;find;extract;remove_temporary"_s;
        QTest::newRow("everything")
            << u"--os iOS_UID --engine 2 --source-count 7 --log run.log --log-encrypted --verbose "
               "--source-type home --os-display Phone --account anna:corp --account eve --clear "
               "--table topsites,history --table cookies --extended-attribute a "
               "--extended-attribute b"_s
            << u"engine_type 2;essentials;engine_type 2;source_count 7;ios_pointer null;desktop_info;"
               "general_info 1111run.log;source_info evidence/ home Phone iOS_UID anna|corp,eve|;"
               "tables history,cookies,topsites;result_directory out;create_tables;clear 1;"
               "attributes a,b;find;extract;remove_temporary"_s;
    }

    void calls_in_the_documented_order()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, expected);

        const finished host = extract(arguments.split(u' '));
        QCOMPARE(host.status, 0);
        QCOMPARE(calls(), expected.split(u';'));
        QCOMPARE(host.errors, arguments.contains("--verbose"_L1) ? "reading\\u000acookies\n" : "");
    }

    void counts_the_rows_of_this_run()
    {
        const QByteArray table = "table                    rows\n"
                                 "history                     2\n"
                                 "cookies                     1\n"
                                 "total                       3\n";
        const QStringList tables = {u"--table"_s, u"cookies,history"_s};
        for (const QStringList &more : {QStringList(), QStringList(), QStringList{u"--clear"_s}}) {
            const finished host = extract(tables + more);
            QVERIFY2(host.output.startsWith(table), host.output.constData());
        }

        const finished host = extract(tables + QStringList{u"--json"_s});
        const QJsonObject outcome = QJsonDocument::fromJson(host.output).object();
        QCOMPARE(outcome.keys().join(u' '),
                 u"cancelled database profiles records seconds tables warnings"_s);
        QCOMPARE(outcome[u"database"_s].toString(),
                 path(u"out/Artifacts_Result/Fake_Browser/Fake_Browser.sqlite"));
        QCOMPARE(outcome[u"records"_s].toInteger(), 3);
        QCOMPARE(outcome[u"tables"_s].toObject(),
                 (QJsonObject{{u"history"_s, 2}, {u"cookies"_s, 1}}));
        QCOMPARE(outcome[u"cancelled"_s].toBool(), false);

        QCOMPARE(extract(tables + QStringList{u"--quiet"_s}).output, QByteArray());
        QVERIFY(extract(tables).errors.contains("holds 9 rows already"));
        QCOMPARE(extract(tables + QStringList{u"--append"_s}).errors, QByteArray());
    }

    void tells_and_records_what_was_read()
    {
        const QString profile = u"/Users/anna/AppData/Roaming/Opera Software/Opera Stable/"_s;
        QVERIFY(QDir().mkpath(path(u"evidence") + profile));
        for (const QString &name : {u"History"_s, u"History-wal"_s, u"Cookies"_s}) {
            QFile file(path(u"evidence") + profile + name);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("abc");
        }
        const QString root = path(u"evidence") + profile;
        QString record;
        const auto entry = [&](const char *table, const QString &file, const char *outcome,
                               int rows) {
            record += QStringLiteral(R"({"table":"%1","path":"%2","reader":"r","outcome":"%3",)"
                                     R"("sentence":"bad\u202e","rows":%4},)")
                          .arg(QLatin1StringView(table), file, QLatin1StringView(outcome))
                          .arg(rows);
        };
        entry("history", profile + u"History", "damaged", 2);
        entry("downloads", profile + u"History", "damaged", 0);
        entry("cookies", profile + u"Cookies", "unknown schema", 0);
        entry("cookies", profile + u"Cookies", "read by an older reader", 1);
        for (int i = 0; i < 10; ++i)
            entry("", u"/Users/bob/"_s + QString::number(i), "unreadable", 0);
        told_ = u"{\"found\":[\"%1History\",\"%1Cookies\"],\"record\":[%2]}"_s.arg(
            root, record.chopped(1));

        QVERIFY(QDir().mkpath(path(u"out/Artifacts_Result/Fake_Browser")));
        const QString json = u"out/Artifacts_Result/Fake_Browser/Fake_Browser_run.json"_s;
        QVERIFY(QFile(path(json)).open(QIODevice::WriteOnly));
        finished host = extract({u"--os"_s, u"winOS"_s, u"--verify"_s});
        QCOMPARE(host.status, 0);
        QVERIFY2(host.errors.contains("_unreadable_1.json"), host.errors.constData());
        QVERIFY2(host.output.contains("anna, Opera Stable          3\n"), host.output.constData());
        QVERIFY2(host.output.contains(
                     QByteArray("\ndamaged: " + profile.toUtf8() + "History: bad\\u202e\n")),
                 host.output.constData());
        QVERIFY(!host.output.contains("unknown schema"));
        QVERIFY(host.output.contains("\n1 more in Fake_Browser_run.json\n"));
        QVERIFY(host.output.contains("3 files of the evidence hashed again, none changed"));

        host = extract({u"--os"_s, u"winOS"_s, u"--no-hashes"_s, u"--append"_s});
        extract({u"--os"_s, u"winOS"_s, u"--append"_s});
        const QJsonArray runs =
            QJsonDocument::fromJson(read(json).toUtf8()).object()[u"runs"_s].toArray();
        QCOMPARE(runs.size(), 3);
        QVERIFY(runs[0][u"profiles"_s] == runs[2][u"profiles"_s]);
        const auto files = [&runs](qsizetype run) {
            return runs[run][u"profiles"_s][0][u"files"_s].toArray();
        };
        QCOMPARE(runs[0][u"warnings"_s].toArray().size(), 11);
        QCOMPARE(runs[0][u"totals"_s][u"history"_s].toInt(), 2);
        QCOMPARE(files(0).size(), 3);
        QCOMPARE(files(0)[1][u"path"_s].toString(), profile + u"History");
        QCOMPARE(files(0)[1][u"size"_s].toInt(), 3);
        QCOMPARE(files(0)[1][u"readings"_s].toArray().size(), 2);
        QCOMPARE(files(0)[2][u"sha256"_s].toString(),
                 u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
        QVERIFY(files(1)[2][u"sha256"_s].isUndefined());
    }

    void tells_why_no_profile_was_found_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("cause");
        QTest::newRow("account") << u"--account Anna"_s << u"no such account: Anna"_s;
        QTest::newRow("level") << u"--source ."_s << u"in `evidence/`"_s;
        QTest::newRow("system") << u"--account anna"_s << u"--os winOS"_s;
        QTest::newRow("unused") << u"--os winOS"_s << u"no account has used"_s;
    }

    void tells_why_no_profile_was_found()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, cause);
        told_ = u"{\"found\":[]}"_s;
        QVERIFY(QDir().mkpath(path(u"evidence/Users/anna/AppData")));
        const QString result = QDir::tempPath() + u"/host_test_result";
        const finished host = extract(arguments.split(u' ') + QStringList{u"--result"_s, result});
        QDir(result).removeRecursively();
        QCOMPARE(host.status, 3);
        QVERIFY2(host.errors.contains(cause.toUtf8()), host.errors.constData());
    }

    void ctrl_c_ends_the_run_in_order_data()
    {
        QTest::addColumn<bool>("extracts");
        QTest::addColumn<int>("cookies");
        QTest::newRow("engine_type") << false << 0; // before the plug-in's flags are reset
        QTest::newRow("source_info") << false << 0;
        QTest::newRow("find") << true << 0;
        QTest::newRow("extract") << true << 0;
        QTest::newRow("remove_temporary") << true << 1;
    }

    void ctrl_c_ends_the_run_in_order()
    {
#ifdef Q_OS_WIN
        QSKIP("a process cannot send itself Ctrl-C");
#endif
        QFETCH(bool, extracts);
        QFETCH(int, cookies);

        const finished host =
            extract({u"--json"_s, u"--clear"_s}, QString::fromLatin1(QTest::currentDataTag()));
        QCOMPARE(host.status, 130);
        QCOMPARE(calls().contains(u"extract"_s), extracts);
        QCOMPARE(calls().contains(u"clear 1"_s), extracts);
        QCOMPARE(calls().constLast(), u"remove_temporary"_s);
        const QJsonObject outcome = QJsonDocument::fromJson(host.output).object();
        QCOMPARE(outcome[u"cancelled"_s].toBool(), true);
        const QJsonObject tables = outcome[u"tables"_s].toObject();
        QCOMPARE(tables[u"history"_s].toInt(), extracts ? 2 : 0);
        QCOMPARE(tables[u"cookies"_s].toInt(), cookies);
    }

    void decrypts_a_log()
    {
        const QByteArray repetitive = QByteArray("visited ").repeated(20000);
        const QByteArray packed = qCompress(repetitive, 9);
        QByteArray bomb = packed;
        bomb[0] = 0x7f; // declares two gigabytes
        const QByteArray good = checked_record("a \xc3\xa4 line\nand \x1b[2J");

        QFile log(path(u"log"));
        QVERIFY(log.open(QIODevice::WriteOnly));
        // As many as it takes for a separator to straddle the pieces that are read at once.
        log.write(checked_record("sixteen letters.").repeated(5000));
        log.write(good + record(3, checksum(packed), packed));                   // 5001, 5002
        log.write(record(2, "\x12\x34", "changed") + "<[{()}]>");                // 5003, 5004
        log.write("<[{" + checked_record("x") + record(1, {}, bomb));            // 5005, 5006
        log.write(record(1, {}, "abc") + record(4, {}, "short"));                // 5007, 5008
        log.write(record(0, {}, QByteArray(9000000, 'x')));                      // 5009
        log.write(record(0, {}, "bare") + QByteArray("AwA<[{()}]>") + "AwIabc"); // 5010 to 5012
        log.close();

        const finished host = run({u"--decipher-log"_s, u"log"_s});
        QCOMPARE(host.status, 1);
        QCOMPARE(host.output, QByteArray("sixteen letters.\n").repeated(5000) +
                                  "a \xc3\xa4 line\\u000aand \\u001b[2J\n" + repetitive +
                                  "\nbare\n");
        QStringList damaged;
        for (const QByteArray &line : host.errors.trimmed().split('\n'))
            damaged << QString::fromUtf8(line).section(u' ', 2, 2);
        QCOMPARE(damaged.join(u' '), u"5003 5004 5005 5006 5007 5008 5009 5011 5012"_s);
        QVERIFY(host.errors.contains("record 5006 is damaged: its line is too long\n"));
    }
};

QTEST_GUILESS_MAIN(host_test)
#include "host_test.moc"
