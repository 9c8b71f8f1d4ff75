#include "report/event_sorter.h"
#include "report/instants.h"
#include "report/visits.h"

#include <QtTest>

#include <random>

using namespace Qt::StringLiterals;

class report_events_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sorts_more_than_fits_in_memory();
    void reads_times_data();
    void reads_times();
    void takes_visits_apart();
};

void report_events_test::sorts_more_than_fits_in_memory()
{
    constexpr int count = 20'000; // some runs of runs, at 2 KiB each
    std::mt19937 random(1);       // NOLINT: the same numbers every time
    event_sorter sorter(2048);
    for (int i = 0; i < count; ++i) {
        const std::string title(random() % 50, 'a');
        const std::string url = std::to_string(i);
        ::event one;
        one.where.at = static_cast<qint64>(random() % 5000) - 2500;
        one.where.row = i;
        one.texts[::event::title] = title;
        one.texts[::event::url] = url;
        QVERIFY(sorter.add(one));
    }
    std::vector<bool> seen(count);
    ::event::place last{-10'000, {}, {}, {}, {}, {}};
    int given = 0;
    QVERIFY(sorter.for_each([&](const ::event &one) {
        const auto row = static_cast<size_t>(one.where.row);
        const bool good = last < one.where && !seen[row] &&
                          one.texts[::event::url] == std::to_string(row) &&
                          one.texts[::event::message].empty();
        seen[row] = true;
        last = one.where;
        given += good ? 1 : 0;
        return true;
    }));
    QCOMPARE(given, count);
}

void report_events_test::reads_times_data()
{
    using enum instants::stored_form;
    QTest::addColumn<qint64>("stored");
    QTest::addColumn<instants::stored_form>("form");
    QTest::addColumn<QString>("expected");
    QTest::newRow("seconds") << qint64{1677541200} << unix_seconds
                             << u"2023-02-27T23:40:00.000000+00:00"_s;
    QTest::newRow("before 1970") << qint64{-1} << unix_seconds
                                 << u"1969-12-31T23:59:59.000000+00:00"_s;
    QTest::newRow("not recorded") << qint64{0} << unix_seconds << QString();
    QTest::newRow("last of all") << qint64{253402300799} << unix_seconds
                                 << u"9999-12-31T23:59:59.000000+00:00"_s;
    QTest::newRow("later than that") << qint64{253402300800} << unix_seconds << QString();
    QTest::newRow("least number") << std::numeric_limits<qint64>::min() << as_the_browser_had_it
                                  << QString();
    QTest::newRow("browser: seconds")
        << qint64{1677541200} << as_the_browser_had_it << u"2023-02-27T23:40:00.000000+00:00"_s;
    QTest::newRow("browser: milliseconds")
        << qint64{1677541200123} << as_the_browser_had_it << u"2023-02-27T23:40:00.123000+00:00"_s;
    QTest::newRow("browser: since 1601") << qint64{13322014800123456} << as_the_browser_had_it
                                         << u"2023-02-27T23:40:00.123456+00:00"_s;
}

void report_events_test::reads_times()
{
    QFETCH(qint64, stored);
    QFETCH(instants::stored_form, form);
    std::string text;
    if (const auto at = instants::of(stored, form))
        instants::append_iso(text, *at);
    QTEST(QString::fromStdString(text), "expected");
}

void report_events_test::takes_visits_apart()
{
    std::string_view rest = "Visit Timestamp (UTC): 27-Feb-2023 23:40:00;Transition: 805306369;;"
                            "Transition: -1610612728;;"
                            "Visit Timestamp (UTC): 31-Feb-2023 00:00:00;Transition: x;;";
    const auto first = take_visit(rest);
    QVERIFY(first && first->at && first->transition);
    QCOMPARE(*first->at, qint64{1677541200} * 1'000'000);
    QVERIFY(is_typed(*first->transition));
    QCOMPARE(transition_words(*first->transition), std::string("typed; chain start, chain end"));
    const auto second = take_visit(rest);
    QVERIFY(second && !second->at && second->transition);
    QCOMPARE(transition_words(*second->transition),
             std::string("reload; chain end, server redirect"));
    const auto third = take_visit(rest);
    QVERIFY(third && !third->at && !third->transition);
    QVERIFY(!take_visit(rest));
}

QTEST_APPLESS_MAIN(report_events_test)
#include "events_test.moc"
