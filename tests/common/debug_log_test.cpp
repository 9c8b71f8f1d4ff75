#include "common/encryptor_string.h"
#include "common/plugin_static_function.h"
#include "tests/support/recording_log.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace
{

QByteArray content_of(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class debug_log_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { plugin_static_function::set_essentials(); }
    void function_names_data();
    void function_names();
    void engine_tags_data();
    void engine_tags();
    void plain_file();
    void encrypted_file();
    void nothing_when_off();
};

void debug_log_test::function_names_data()
{
    QTest::addColumn<QString>("info");
    QTest::addColumn<QString>("name");
    QTest::newRow("virtual") << u"virtual void opera::f()"_s << u"opera::f"_s;
    QTest::newRow("arguments") << u"static bool a::b(QString, QString)"_s << u"a::b"_s;
    QTest::newRow("bare") << u"  plain "_s << u"plain"_s;
    QTest::newRow("blank before (") << u"int a::b (int)"_s << u"a::b"_s;
    QTest::newRow("empty") << u"  "_s << u"FUNCTION INFO IS EMPTY ---FAILED--- debug!!!"_s;
}

void debug_log_test::function_names()
{
    QFETCH(QString, info);
    QFETCH(QString, name);
    recording_log log;
    plugin_static_function::app_debug(u"m"_s, info);
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(log.lines().first().function, name);
    QCOMPARE(log.lines().first().message, u"m"_s);
}

void debug_log_test::engine_tags_data()
{
    QTest::addColumn<int>("engine");
    QTest::addColumn<QString>("tag");
    QTest::newRow("0") << 0 << u"[MIRVA_BENCH]"_s;
    QTest::newRow("1") << 1 << u"[MIRVA_SCOUT]"_s;
    QTest::newRow("2") << 2 << u"[MIRVA_PROBE]"_s;
    QTest::newRow("3") << 3 << u"[ -----FAILED----- to find Engine Type ][3]"_s;
    QTest::newRow("not set") << -1 << u"[ -----FAILED----- to find Engine Type ][-1]"_s;
}

void debug_log_test::engine_tags()
{
    QFETCH(int, engine);
    QFETCH(QString, tag);
    recording_log log;
    plugin_static_function::set_engine_type(engine);
    plugin_static_function::app_debug(u"m"_s, u"f()"_s);
    QCOMPARE(log.lines().first().engine, tag);
}

void debug_log_test::plain_file()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(u"log"_s);
    for (int run = 0; run < 2; ++run) {
        plugin_static_function::set_engine_type(1);
        plugin_static_function::set_general_info({false, true, false, true, false, path});
        plugin_static_function::app_debug(u"über %1"_s, u"void a::b()"_s);
        plugin_static_function::close_debug_file();
        plugin_static_function::app_debug(u"closed"_s, u"void a::b()"_s);
    }
    const QStringList lines = QString::fromUtf8(content_of(path)).split(u'\n');
    QCOMPARE(lines.size(), 3); // appended, and nothing after the last line break
    static const QRegularExpression form(
        u"^\\[\\d{4}-[A-Z][a-z]{2}-\\d\\dT\\d\\d-\\d\\d-\\d\\d\\]\\[MIRVA_SCOUT\\]"
        "\\[Artifacts Extraction\\]\\[a::b\\]:-- über %1$"_s);
    QVERIFY2(form.match(lines.at(0)).hasMatch(), qPrintable(lines.at(0)));
    QVERIFY(form.match(lines.at(1)).hasMatch());
}

void debug_log_test::encrypted_file()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(u"log"_s);
    plugin_static_function::set_general_info({false, true, false, true, true, path});
    plugin_static_function::app_debug(u"first"_s, u"a::b"_s);
    plugin_static_function::app_debug(u"second"_s, u"a::b"_s);
    plugin_static_function::close_debug_file();
    const QByteArray content = content_of(path);
    QVERIFY(!content.contains('\n'));
    QVERIFY(content.endsWith("<[{()}]>"));
    const QStringList records = QString::fromLatin1(content).split(u"<[{()}]>"_s);
    QCOMPARE(records.size(), 3);
    encryptor_string cipher;
    QVERIFY(cipher.decryptToString(records.at(0)).endsWith(u"[a::b]:-- first"_s));
    QVERIFY(cipher.decryptToString(records.at(1)).endsWith(u"[a::b]:-- second"_s));
}

void debug_log_test::nothing_when_off()
{
    QTemporaryDir directory;
    const QString path = directory.filePath(u"log"_s);
    recording_log log;
    plugin_static_function::set_general_info({true, false, true, true, true, path});
    plugin_static_function::app_debug(u"m"_s, u"f"_s);
    QVERIFY(log.lines().isEmpty());
    QVERIFY(!QFileInfo::exists(path));
    // A path that cannot be opened is no reason to lose the other lines.
    plugin_static_function::set_general_info({true, true, true, true, false, directory.path()});
    plugin_static_function::app_debug(u"m"_s, u"f"_s);
    QCOMPARE(log.lines().size(), 1);
}

QTEST_APPLESS_MAIN(debug_log_test)
#include "debug_log_test.moc"
