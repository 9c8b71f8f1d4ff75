// Drives the real shared library through nothing but the positions of its virtual functions, as a
// host does that was compiled against another header. A function that moved would be called with
// another's arguments, and the run below would not come out.

#include "common/host_records.h"
#include "tests/support/evidence_builder.h"
#include "tests/support/result_rows.h"

#include <QFrame>
#include <QLibrary>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

/// Eighteen functions after those of QFrame; names and header are not the plug-in's. (Not in an
/// unnamed namespace: there the compiler sees that nothing implements them.)
class slots_after_frame : public QFrame
{
public:
    virtual void slot_1(int) = 0;
    virtual QString slot_2() = 0;
    virtual void slot_3() = 0;
    virtual void slot_4(int) = 0;
    virtual void slot_5(void *) = 0;
    virtual void slot_6(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_desktop_info) = 0;
    virtual void slot_7(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_general_info) = 0;
    virtual void slot_8(struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info) = 0;
    virtual void slot_9(QList<QString>, QList<QString>) = 0;
    virtual void slot_10(QString) = 0;
    virtual void slot_11() = 0;
    virtual void slot_12(bool) = 0;
    virtual void slot_13() = 0;
    virtual void slot_14() = 0;
    virtual void slot_15(QList<QString>) = 0;
    virtual void slot_16() = 0;
    virtual void slot_17() = 0;
    virtual void slot_18() = 0;
};

class host_interface_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whole_run_by_slot_number();
};

// The object's class is unknown here by intent, which the vptr check cannot know.
#if defined(__GNUC__)
__attribute__((no_sanitize("vptr")))
#endif
void host_interface_test::whole_run_by_slot_number()
{
    QLibrary library(QStringLiteral(OPERA_LIBRARY));
    const auto create = reinterpret_cast<QFrame *(*)()>(library.resolve("create_object"));
    QVERIFY2(create, qPrintable(library.errorString()));
    std::unique_ptr<QFrame> frame(create());
    QCOMPARE(frame->parent(), nullptr);
    QCOMPARE(frame->metaObject()->className(), "opera");
    QCOMPARE(frame->objectName(), u"opera"_s);
    QCOMPARE(frame->windowTitle(), u"Frame"_s);
    QCOMPARE(frame->size(), QSize(400, 300));
    QCOMPARE(frame->frameStyle(), static_cast<int>(QFrame::StyledPanel) | QFrame::Raised);

    evidence_builder evidence;
    evidence.sqlite(
        macos_profile(u"ada"_s) + u"History"_s,
        "create table urls(id integer primary key, url, title, visit_count, "
        "typed_count, last_visit_time, hidden, favicon_id);"
        "create table visits(id integer primary key, url, visit_time, transition, "
        "visit_duration);"
        "insert into urls values(4,'https://a.example/','A',2,1,13312345678901234,0,0)");
    QTemporaryDir results;

    auto *host_view = reinterpret_cast<slots_after_frame *>(frame.get());
    QSignalSpy records(frame.get(), SIGNAL(signal_extracted_records_of_plugin_overall(qint64)));
    QSignalSpy tables(frame.get(), SIGNAL(signal_tab_processed_of_plugin_overall(int)));
    const QString log_path = results.filePath(u"log.txt"_s);

    host_view->slot_1(2);
    QCOMPARE(host_view->slot_2(), u"Opera"_s);
    host_view->slot_3();
    host_view->slot_4(3);
    host_view->slot_5(nullptr);
    host_view->slot_6({});
    host_view->slot_7(
        {.debug_mode_status = true, .debug_print_in_file = true, .debug_file_path = log_path});
    struct_GLOBAL_COMMON_MIRVA_AND_ARTIFACT_source_info source;
    source.virtual_source_path = evidence.root();
    source.os_scheme_display = u"macOS shown"_s;
    source.os_scheme_internal = u"macOS"_s;
    source.system_account_list = {{u"ada"_s, {}}};
    host_view->slot_8(source);
    host_view->slot_9({u"history"_s}, {u"cookies"_s});
    host_view->slot_10(results.path());
    host_view->slot_11();
    host_view->slot_12(true);
    host_view->slot_15({});
    host_view->slot_14();
    host_view->slot_16();
    host_view->slot_17();

    const QString folder = results.path() + u"/Artifacts_Result/Opera/"_s;
    QCOMPARE(result_rows(folder + u"Opera.sqlite"_s,
                         u"select urls, os_scheme_display, source_count_name from history"_s),
             QList<QStringList>({{u"https://a.example/"_s, u"macOS shown"_s, u"Source3"_s}}));
    QCOMPARE(records.last().first().toLongLong(), 1);
    QCOMPARE(tables.size(), 1);
    QVERIFY(QFileInfo::exists(folder + u"tmp/History"_s));

    host_view->slot_18();
    QVERIFY(!QFileInfo::exists(folder + u"tmp"_s));
    QVERIFY(QFileInfo(log_path).size() > 0);

    host_view->slot_13();
    records.clear();
    host_view->slot_16();
    QCOMPARE(records.size(), 1); // cancelled: the zero alone
}

QTEST_MAIN(host_interface_test)
#include "host_interface_test.moc"
