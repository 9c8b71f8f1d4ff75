// The frame that every extractor runs in, with a descriptor of its own.

#include "common/evidence/evidence_file.h"
#include "common/extraction/database_reader.h"
#include "common/plugin_helper_functions.h"
#include "common/plugin_static_function.h"
#include "common/values/text_values.h"
#include "tests/support/evidence_builder.h"
#include "tests/support/recording_log.h"
#include "tests/support/result_rows.h"

#include <QTest>
#include <QtEndian>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace
{

const database_reader reader = {
    .signature = "int tests::extract()",
    .starts = "starts",
    .destination_failed = open_failure("destination failed"),
    .source_failed = open_failure(with_path("source failed ")),
    .insert_failed = query_failure("insert failed"),
    .ends = "ends",
    .readings = {{.select = "select a, missing from t",
                  .select_failed = {"first failed"},
                  .insert = {.sql = "insert into r(a) values(?)", .values = {as_stored(1)}}},
                 {.select = "select a from t",
                  .select_failed = {"second failed"},
                  .insert = {.sql = "insert into r(a, f) values(?,?)",
                             .values = {as_stored(0), source_file_path}}}},
};

/// Writes each value of table t with the text that table d has for it.
const database_reader by_look_up = {
    .signature = "int tests::look_up()",
    .starts = "starts",
    .destination_failed = {},
    .source_failed = {},
    .insert_failed = {},
    .ends = "ends",
    .readings = {{.select = "select a from t",
                  .select_failed = {"select failed"},
                  .insert = {.sql = "insert into r(a, f) values(?,?)",
                             .values = {as_stored(0), derived(0)}}}},
    .look_ups =
        {{.statement = "select b from d where k = ?",
          .failed = query_failure("look-up failed"),
          .table = {.name = "d", .key = "k", .type = own_table::key_type::number, .columns = "b"},
          .keys_ascend = true}},
};

const QByteArray numbers = "create table t(a); with recursive n(i) as (select 1 union all select "
                           "i+1 from n where i<5) insert into t select i from n;";

/// A result database, a source folder and a run on them, with a clock that a test moves.
struct frame_case {
    evidence_builder evidence;
    QTemporaryDir results;
    plugin_helper_functions helper;
    qint64 now = 0;
    QList<qint64> signalled;
    extraction_run run{[this](qint64 records) { signalled.append(records); },
                       [this] { return now; }};
    recording_log log;

    frame_case()
    {
        helper.set_adhoc_parent_path(results.path() + u"/tmp/"_s);
        run.helper = &helper;
        run.source_root = evidence.root();
        run.destination_path = results.filePath(u"r.sqlite"_s);
        plugin_static_function::bool_cancel_extraction = false;
        execute(u"create table r(a VARCHAR, f VARCHAR)"_s);
    }
    void execute(const QString &sql) const
    {
        plugin_static_function::execute_db_command_by_dbpath(sql, run.destination_path, u"test"_s);
    }
    QString add(const QString &name, const QByteArray &sql)
    {
        evidence.sqlite(name, sql);
        return evidence.path(name);
    }
    QString values() const
    {
        QStringList all;
        for (const QStringList &row : result_rows(run.destination_path, u"select a from r"_s))
            all.append(row.first());
        return all.join(u',');
    }
};

/// Changes a database so that the change stays in its "-wal".
void write_to_log(const QString &path, const QString &sql)
{
    sqlite3 *database = nullptr;
    sqlite3_open(QFile::encodeName(path).constData(), &database);
    sqlite3_db_config(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite3_exec(database, "pragma journal_mode = wal", nullptr, nullptr, nullptr);
    sqlite3_exec(database, sql.toUtf8().constData(), nullptr, nullptr, nullptr);
    sqlite3_close(database);
}

/// Leaves a database as a crash does: changed in part, with the journal of what it was.
void crash_while_writing(const QString &path, const QByteArray &sql)
{
    sqlite3 *database = nullptr;
    const QString work = path + u".work"_s;
    sqlite3_open(QFile::encodeName(work).constData(), &database);
    sqlite3_exec(database, sql.constData(), nullptr, nullptr, nullptr);
    sqlite3_exec(database, "pragma cache_size = 1; begin; update t set a = a + 100", nullptr,
                 nullptr, nullptr);
    for (const QString &suffix : {u""_s, u"-journal"_s})
        QVERIFY(QFile::copy(work + suffix, path + suffix));
    sqlite3_close(database);
}

QByteArray big_endian(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(number, bytes.data());
    return bytes;
}

} // namespace

class extraction_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void alternates_are_tried_in_order();
    void progress_is_signalled_once_a_second();
    void cancelling_keeps_the_rows_so_far();
    void a_damaged_page_is_not_taken_for_the_end();
    void unfinished_changes_data();
    void unfinished_changes();
    void schemas_that_compute_data();
    void schemas_that_compute();
    void texts_that_many_rows_repeat_are_cut();
    void what_memory_cannot_hold();
    void rows_without_end();
    void pages_used_twice_data();
    void pages_used_twice();
    void look_ups_data();
    void look_ups();
    void look_ups_around_damage();
    void bytes_that_are_no_text_stay_bytes();
    void a_failed_insert_loses_its_row_only();
    void a_locked_result_database_is_waited_for_once();
    void unreadable_files_are_skipped();
    void percent_escapes_data();
    void percent_escapes();
};

void extraction_test::alternates_are_tried_in_order()
{
    frame_case c;
    const QStringList files = {c.add(u"two"_s, numbers),
                               c.add(u"one"_s, "create table t(a, missing);"
                                               "insert into t values(1,'chosen')"),
                               c.add(u"none"_s, "create table other(a)")};
    QCOMPARE(read_databases(reader, files, c.run), -1);
    QCOMPARE(c.values(), u"1,2,3,4,5,chosen"_s);
    QCOMPARE(c.log.messages(), QStringList({u"starts"_s, u"first failed"_s, u"first failed"_s,
                                            u"second failed"_s, u"ends"_s}));
    QVERIFY(QSqlDatabase::connectionNames().filter(u"tests::extract"_s).isEmpty());
}

void extraction_test::progress_is_signalled_once_a_second()
{
    frame_case c;
    const QStringList files = {c.add(u"f"_s, numbers)};
    c.run.set_records(10);
    read_databases(reader, files, c.run);
    QCOMPARE(c.signalled, QList<qint64>());
    c.now = 1000; // not yet more than a second
    read_databases(reader, files, c.run);
    QCOMPARE(c.signalled, QList<qint64>());
    c.now = 1001;
    read_databases(reader, files, c.run);
    QCOMPARE(c.signalled, QList<qint64>({21}));
    QCOMPARE(c.run.records(), 25);
}

void extraction_test::cancelling_keeps_the_rows_so_far()
{
    frame_case c;
    // The clock is read once a written row: it stops the run after the second.
    int rows = 0;
    extraction_run cancelling([](qint64) {},
                              [&] {
                                  if (++rows == 3) // the first reading is the start
                                      cancelling.set_cancelled(true);
                                  return 0;
                              });
    cancelling.helper = &c.helper;
    cancelling.source_root = c.run.source_root;
    cancelling.destination_path = c.run.destination_path;
    const QStringList files = {c.add(u"f"_s, numbers), c.add(u"g"_s, numbers)};
    QCOMPARE(read_databases(reader, files, cancelling), 0);
    QCOMPARE(c.values(), u"1,2"_s);
    QVERIFY(!c.log.has(u"ends"_s));

    // Idle: macOS extractors end after their start line, Windows extractors run through.
    c.log.clear();
    QCOMPARE(read_databases(reader, files, cancelling), 0);
    cancelling.idle_extractors_end_early = false;
    QCOMPARE(read_databases(reader, {}, cancelling), 0);
    QCOMPARE(c.log.messages(), QStringList({u"starts"_s, u"starts"_s, u"ends"_s}));
}

void extraction_test::a_damaged_page_is_not_taken_for_the_end()
{
    frame_case c;
    const QString path =
        c.add(u"f"_s, "pragma page_size=512; create table t(a);"
                      "with recursive n(i) as (select 1 union all select i+1 from n where i<200) "
                      "insert into t select printf('%0100d', i) from n;");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.seek(file.size() - 30 * 512);
    file.write(QByteArray(512, '\xff'));
    file.close();
    QCOMPARE(read_databases(reader, {path}, c.run), 0);
    QVERIFY(c.run.records() > 0);
    QVERIFY(c.run.records() < 200);
    QVERIFY(
        c.log.has(u"[extract] rows of the source end early ---------FAILED----------"_s + path));
}

void extraction_test::unfinished_changes_data()
{
    QTest::addColumn<QByteArray>("start"); // replaces as many bytes of the journal
    QTest::addColumn<int>("zeros");   // behind the name of a file that lists journals; < 0: none
    QTest::addColumn<bool>("before"); // the rows are those before the changes
    QTest::addColumn<bool>("told");
    const QByteArray magic = QByteArray::fromHex("d9d505f920a163d7");
    const QByteArray changed = magic + QByteArray(8, '\xff');
    QTest::newRow("after a crash") << QByteArray() << -1 << true << false;
    QTest::newRow("finished") << QByteArray(512, '\0') << -1 << false << false;
    QTest::newRow("of another format") << QByteArray("other") << -1 << false << false;
    QTest::newRow("more pages than there are")
        << changed + big_endian(0x7fffffff) << -1 << false << true;
    QTest::newRow("unknown size of pages")
        << changed + big_endian(2) + big_endian(512) + big_endian(0) << -1 << false << true;
    QTest::newRow("names another file") << QByteArray() << 0 << false << true;
    QTest::newRow("names another file before zeros") << QByteArray() << 8 << true << false;
    QTest::newRow("a record too short before the name")
        << QByteArray("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7\0\0\0\0", 12) << 0 << false << true;
}

void extraction_test::unfinished_changes()
{
    QFETCH(QByteArray, start);
    QFETCH(int, zeros);
    QFETCH(bool, before);
    QFETCH(bool, told);
    frame_case c;
    const QString path = c.evidence.path(u"f"_s);
    crash_while_writing(path, "create table t(a, b); with recursive n(i) as (select 1 union all "
                              "select i+1 from n where i<50) insert into t select i, "
                              "zeroblob(3000) from n");
    // A list of journals of the examiner, and one that it names.
    const QString list = c.results.filePath(u"list"_s);
    const QString named = c.results.filePath(u"named"_s);
    for (const QString &victim : {list, named}) {
        QFile file(victim);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QFile::encodeName(named) + '\0');
    }
    QFile journal(path + u"-journal"_s);
    QVERIFY(journal.open(QIODevice::ReadWrite));
    QVERIFY(journal.write(start) == start.size() && journal.seek(journal.size()));
    if (zeros >= 0) {
        const QByteArray name = QFile::encodeName(list);
        quint32 sum = 0;
        for (const char byte : name)
            sum += static_cast<quint32>(static_cast<signed char>(byte));
        journal.write(big_endian(0) + name + big_endian(static_cast<quint32>(name.size())) +
                      big_endian(sum) + QByteArray::fromHex("d9d505f920a163d7") +
                      QByteArray(zeros, '\0'));
    }
    journal.close();
    const QMap<QString, QString> evidence = c.evidence.fingerprints();
    read_databases(reader, {path}, c.run);
    QStringList rows;
    for (int number = 1; number <= 50; ++number)
        rows.append(QString::number(number));
    QCOMPARE(c.values() == rows.join(u','), before);
    QCOMPARE(!c.log.messages().filter(u"[evidence] reading"_s).isEmpty(), told);
    QCOMPARE(!c.log.messages().filter(u"unfinished changes are taken out"_s).isEmpty(), before);
    QVERIFY(QFile::exists(list) && QFile::exists(named));
    QVERIFY(!QFile::exists(c.results.path() + u"/tmp/f-journal"));
    QCOMPARE(c.evidence.fingerprints(), evidence);
}

void extraction_test::schemas_that_compute_data()
{
    QTest::addColumn<QByteArray>("table");
    QTest::addColumn<QString>("rows");
    const QByteArray endless = "create view t as with recursive c(a) as (select 1 union all "
                               "select a + 1 from c) select count(*) as a from c;";
    const QByteArray stored = "create table t(a); insert into t values(1);";
    const QByteArray forging = "pragma writable_schema = on;";
    QTest::newRow("view without end") << endless << u""_s;
    QTest::newRow("view that calls itself something else")
        << endless + forging + "update sqlite_master set type = cast('VIEW' as blob);" << u""_s;
    QTest::newRow("virtual table of that name")
        << QByteArray("create virtual table t using fts5(a); insert into t values(1);") << u""_s;
    QTest::newRow("virtual table and view beside rows")
        << stored + "create virtual table \"v\"\"w\" using fts5(b);" +
               "create view pragma_table_xinfo as select 1;"
        << u"1"_s;
    QTest::newRow("selected column is computed")
        << QByteArray("create table t(b, a text as (hex(zeroblob(b))));"
                      "insert into t(b) values(100000000);")
        << u""_s;
    QTest::newRow("computed column that another table's name hides")
        << QByteArray("create table pragma_table_xinfo(a); create table pragma_table_list(a);"
                      "create table t(b, a text as (instr(b, b)));"
                      "insert into t(b) values('x');")
        << u""_s;
    QTest::newRow("another column is computed")
        << stored + "alter table t add column b as (1);" << u"1"_s;
}

void extraction_test::schemas_that_compute()
{
    QFETCH(QByteArray, table);
    frame_case c;
    read_databases(reader, {c.add(u"f"_s, table)}, c.run);
    QTEST(c.values(), "rows");
    QCOMPARE(c.log.has(u"second failed"_s) || c.log.messages().join(u'|').contains(u"end early"_s),
             c.values().isEmpty());
}

void extraction_test::texts_that_many_rows_repeat_are_cut()
{
    static const database_reader repeating = {
        .signature = "int tests::repeat()",
        .starts = "starts",
        .destination_failed = {},
        .source_failed = {},
        .insert_failed = {},
        .ends = "ends",
        .readings = {{.select = "select i from t",
                      .select_failed = {},
                      .insert = {.sql = "insert into r(a) values(?)", .values = {derived(0)}}}},
    };
    frame_case c;
    const QString path = c.add(u"f"_s, "create table t(i); with recursive n(i) as (select 1 union "
                                       "all select i+1 from n where i<60) insert into t select i "
                                       "from n;");
    read_databases(repeating, {path}, c.run, [](database_row &row) {
        row.derived = {QString(1'000'000, u'x')};
        return true;
    });
    const QList<QStringList> lengths =
        result_rows(c.run.destination_path, u"select length(a), count(*) from r group by 1"_s);
    QCOMPARE(lengths.size(), 2);
    QCOMPARE(lengths.first().first(), u"98"_s);
    QCOMPARE(c.run.records(), 60);
    QVERIFY(c.values().endsWith(u"x\u2026[cut]"_s));
    QCOMPARE(c.log.messages().count(u"[repeat] long texts are cut -----FAILED-----"_s + path), 1);
}

void extraction_test::what_memory_cannot_hold()
{
    frame_case c;
    const auto reads = [&c](const QByteArray &json) {
        c.evidence.file(u"f"_s, json);
        evidence_file file(c.evidence.path(u"f"_s));
        QByteArray text;
        return file.read_json(text) && text == json;
    };
    const QByteArray entry = R"({"name":"an address","url":"https://a.example/page"},)";
    QVERIFY(reads('[' + entry.repeated(100'000) + "0]"));
    QVERIFY(reads("[\"" + QByteArray("[\\\"{,").repeated(1'000'000) + "\"]"));
    QVERIFY(!reads('[' + QByteArray("[0],").repeated(1'000'000) + "0]"));
    QVERIFY(!reads('[' + QByteArray("0,").repeated(4'000'000) + "0]"));
    QVERIFY(!read_within_memory(u"big"_s, c.run, [] { throw std::bad_alloc(); }));
    QCOMPARE(c.run.lost_records(), 1);
    QCOMPARE(c.log.messages().filter(u"[evidence] reading"_s).size(), 2); // f is told once
}

void extraction_test::rows_without_end()
{
    static const database_reader crossing = {
        .signature = "int tests::cross()",
        .starts = "starts",
        .destination_failed = {},
        .source_failed = {},
        .insert_failed = {},
        .ends = "ends",
        .readings = {{.select = "select x.a from t as x, t as y",
                      .select_failed = {},
                      .insert = {.sql = "insert into r(a) values(?)", .values = {as_stored(0)}}}},
    };
    frame_case c;
    const QString path = c.add(u"f"_s, "create table t(a integer);"
                                       "with recursive n(i) as (select 1 union all select i+1 "
                                       "from n where i<1000) insert into t select i from n;");
    read_databases(crossing, {path}, c.run);
    QCOMPARE(c.run.records(), 1'000 + QFileInfo(path).size() / 6);
    QCOMPARE(
        c.log.messages().mid(1, 2),
        QStringList({u"[cross] rows of the source end early ---------FAILED----------"_s + path,
                     u"more work than a file of this size can need"_s}));
    QCOMPARE(c.log.messages().last(), u"ends"_s);
}

void extraction_test::pages_used_twice_data()
{
    QTest::addColumn<int>("child"); // instead of the second one of the table's first page
    QTest::addColumn<bool>("in_log");
    for (const bool in_log : {false, true}) {
        QTest::addRow("shared %d", in_log) << 3 << in_log;
        QTest::addRow("in a circle %d", in_log) << 2 << in_log;
    }
}

void extraction_test::pages_used_twice()
{
    QFETCH(int, child);
    QFETCH(bool, in_log);
    frame_case c;
    const QString path = c.add(u"f"_s, "create table t(a);"
                                       "with recursive n(i) as (select 1 union all select i+1 "
                                       "from n where i<5000) insert into t select i from n;");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QByteArray page = file.read(2 * 4096).right(4096);
    const int second = qFromBigEndian<quint16>(page.constData() + 14);
    qToBigEndian(quint32(child), page.data() + second);
    file.seek(4096);
    file.write(page);
    file.close();
    if (in_log) // the schema still comes from the file
        write_to_log(path, u"update t set a = 0 where rowid = 1"_s);
    read_databases(reader, {path}, c.run);
    QVERIFY(c.run.records() > 400 && c.run.records() <= 1'000 + file.size() / 6);
    QVERIFY(c.values().startsWith(in_log ? u"0,2,3"_s : u"1,2,3"_s));
    const qsizetype told = c.log.messages().indexOf(
        u"[extract] structure of the source is damaged -----FAILED-----"_s + path);
    QVERIFY(told >= 0);
    QVERIFY(c.log.messages().at(told + 1).contains(u"tree page 2"_s));
}

void extraction_test::look_ups_data()
{
    QTest::addColumn<QByteArray>("change");
    QTest::addColumn<QString>("first"); // what is found for key 7
    QTest::addColumn<int>("found");     // keys with a row
    const QString both = u"first+last"_s;
    QTest::newRow("no index") << QByteArray() << both << 60'000;
    QTest::newRow("partial index")
        << QByteArray("create index i on d(k) where k > 100;") << both << 60'000;
    QTest::newRow("index that covers another order")
        << QByteArray("create index i on d(k, b desc); create index own_d on d(b);") << both
        << 60'000;
    QTest::newRow("forged statistics") << QByteArray("create index i on d(b, k); analyze; "
                                                     "update sqlite_stat1 set stat = '60001 1 1';")
                                       << both << 60'000;
    QTest::newRow("keys that descend")
        << QByteArray("create table u(a integer); insert into u select a from t order by a desc;"
                      "drop table t; alter table u rename to t;")
        << both << 60'000;
    QTest::newRow("table without row ids")
        << QByteArray("create table e(k integer, n integer, b, primary key(k, n)) without rowid;"
                      "insert into e select k, rowid, b from d; drop table d;"
                      "alter table e rename to d;")
        << both << 60'000;
    QTest::newRow("long default") << "alter table d add column c default '" +
                                         QByteArray(900'000, 'x') + "';"
                                  << both << 60'000;
    QTest::newRow("no table") << QByteArray("drop table d;") << u"NULL"_s << 0;
}

/// Sixty thousand rows would take minutes if every look-up read the table from end to end.
void extraction_test::look_ups()
{
    QFETCH(QByteArray, change);
    frame_case c;
    const QString path =
        c.add(u"f"_s, "create table t(a integer); create table d(k integer, b);"
                      "with recursive n(i) as (select 1 union all select i+1 from n where i<60000) "
                      "insert into t select i from n;"
                      "insert into d select 60001 - a, 'second' from t;"
                      "update d set b = 'first' where k = 7; insert into d values(7, 'last');" +
                          change);
    const auto before = c.evidence.fingerprints();
    read_databases(by_look_up, {path}, c.run, [](database_row &row) {
        QStringList found;
        row.look_up(0, row.stored(0),
                    [&found](const QSqlQuery &d) { found += d.value(0).toString(); });
        row.derived = {found.join(u'+')};
        return true;
    });
    QCOMPARE(c.run.records(), 60'000);
    QTEST(result_rows(c.run.destination_path, u"select f from r where a = '7'"_s).at(0).at(0),
          "first");
    QTEST(result_rows(c.run.destination_path, u"select count(*) from r where f <> ''"_s)
              .at(0)
              .at(0)
              .toInt(),
          "found");
    QCOMPARE(c.log.has(u"look-up failed"_s), change == "drop table d;");
    QVERIFY(c.log.messages().size() < 40);
    QCOMPARE(c.evidence.fingerprints(), before);
}

/// A page of the table that holds the keys' rows cannot be read: what other pages hold is found.
void extraction_test::look_ups_around_damage()
{
    frame_case c;
    const QString path = c.add(
        u"f"_s, "create table t(a integer); create table d(k integer, b);"
                "with recursive n(i) as (select 1 union all select i+1 from n where i<2000) "
                "insert into t select i from n; insert into d select a, 'row of '||a from t;");
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    const QByteArray pages = file.readAll();
    file.seek(pages.indexOf("row of 1000") / 4096 * 4096);
    file.write(QByteArray(4096, '\xff'));
    file.close();
    read_databases(by_look_up, {path}, c.run, [](database_row &row) {
        row.derived = {QString()};
        row.look_up(0, row.stored(0),
                    [&row](const QSqlQuery &d) { row.derived = {d.value(0).toString()}; });
        return true;
    });
    const auto rows = result_rows(c.run.destination_path,
                                  u"select count(*), min(a + 0), max(a + 0) from r where f = "
                                  "'row of '||a"_s);
    QVERIFY(rows.at(0).at(0).toInt() > 1700 && rows.at(0).at(0).toInt() < 2000);
    QCOMPARE(rows.at(0).mid(1), QStringList({u"1"_s, u"2000"_s}));
    QCOMPARE(c.log.messages().count(u"look-up failed"_s), 1);
}

void extraction_test::bytes_that_are_no_text_stay_bytes()
{
    frame_case c;
    read_databases(reader,
                   {c.add(u"f"_s, "create table t(a blob); insert into t values(x'763130'),"
                                  "(x'7631FF00'), (x''), (null)")},
                   c.run);
    QCOMPARE(result_rows(c.run.destination_path, u"select typeof(a), hex(a) from r"_s),
             QList<QStringList>({{u"text"_s, u"763130"_s},
                                 {u"blob"_s, u"7631FF00"_s},
                                 {u"text"_s, u""_s},
                                 {u"null"_s, u""_s}}));
}

void extraction_test::a_failed_insert_loses_its_row_only()
{
    frame_case c;
    c.execute(u"create trigger no before insert on r when new.a = '3' begin select raise(abort, "
              "'not three'); end"_s);
    read_databases(reader, {c.add(u"f"_s, numbers)}, c.run);
    QCOMPARE(c.values(), u"1,2,4,5"_s);
    QCOMPARE(c.run.records(), 4);
    QCOMPARE(c.log.messages(), QStringList({u"starts"_s, u"first failed"_s, u"insert failed"_s,
                                            u"not three Unable to fetch row"_s,
                                            u"insert into r(a, f) values(?,?)"_s, u"ends"_s}));

    c.log.clear();
    c.execute(u"drop table r"_s);
    read_databases(reader, {c.evidence.path(u"f"_s)}, c.run);
    QCOMPARE(c.log.messages().count(u"insert failed"_s), 5);
    QVERIFY(c.log.messages().at(3).contains(u"no such table: r"_s));
}

void extraction_test::a_locked_result_database_is_waited_for_once()
{
    frame_case c;
    sqlite3 *other = nullptr;
    sqlite3_open(c.run.destination_path.toUtf8().constData(), &other);
    sqlite3_exec(other, "begin immediate", nullptr, nullptr, nullptr);
    QElapsedTimer timer;
    timer.start();
    read_databases(reader, {c.add(u"f"_s, numbers)}, c.run);
    QVERIFY(timer.elapsed() < 15'000); // five rows, a wait of five seconds
    QCOMPARE(c.log.messages().count(u"insert failed"_s), 5);
    sqlite3_close(other);
    QCOMPARE(c.values(), u""_s);
}

void extraction_test::unreadable_files_are_skipped()
{
    frame_case c;
    QVERIFY(QDir().mkpath(c.evidence.path(u"folder"_s)));
    const QStringList files = {c.evidence.path(u"folder"_s), c.evidence.path(u"gone"_s),
                               c.add(u"f"_s, numbers)};
    QCOMPARE(read_databases(reader, files, c.run), 0);
    QCOMPARE(c.values(), u"1,2,3,4,5"_s);
    QVERIFY(c.log.has(u"source failed "_s + files.first()));

    c.run.destination_path = c.evidence.path(u"folder"_s);
    c.log.clear();
    QCOMPARE(read_databases(reader, files, c.run), 0);
    QCOMPARE(c.log.messages().size(), 3);
    QCOMPARE(c.log.messages().at(1), u"destination failed"_s);
}

void extraction_test::percent_escapes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("decoded");
    QTest::newRow("none") << u"a b"_s << u"a b"_s;
    QTest::newRow("both cases") << u"%7e%7E"_s << u"~~"_s;
    QTest::newRow("utf-8") << u"%C3%BC ü"_s << u"ü ü"_s;
    QTest::newRow("no hexadecimal digits") << u"100%zz%4g"_s << u"100%zz%4g"_s;
    QTest::newRow("cut off") << u"a%4"_s << u"a%4"_s;
    QTest::newRow("last") << u"a%41"_s << u"aA"_s;
}

void extraction_test::percent_escapes()
{
    QFETCH(QString, text);
    QFETCH(QString, decoded);
    QCOMPARE(decode_percent(text), decoded);
}

QTEST_MAIN(extraction_test)
#include "extraction_test.moc"
