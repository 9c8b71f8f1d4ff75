#include "macos/macos_readers.h"
#include "tests/support/check_readers.h"
#include "tests/support/host_tables.h"

#include <QFile>
#include <QTest>

class macos_readers_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void every_descriptor_fits_the_schema()
    {
        using namespace macos_readers;
        const std::vector<const database_reader *> readers = {&history_11,
                                                              &history_url,
                                                              &search_items_11,
                                                              &search_items,
                                                              &download_11,
                                                              &download,
                                                              &cookies_11,
                                                              &cookies,
                                                              &logins_11,
                                                              &login_data,
                                                              &autofill_11,
                                                              &autofill,
                                                              &autofill_profiles_11,
                                                              &autofill_profiles,
                                                              &credit_cards_11,
                                                              &topsites,
                                                              &credit_cards,
                                                              &keywords_11,
                                                              &favicons_11,
                                                              &thumbnails,
                                                              &sync_data_11};
        QCOMPARE(faults_of_readers(readers, host_tables), QStringList());

        // A reader that is declared but missing above would go unchecked.
        QFile header(QFINDTESTDATA("../../macos/macos_readers.h"));
        QVERIFY(header.open(QIODevice::ReadOnly));
        QCOMPARE(header.readAll().count("extern const database_reader "),
                 static_cast<qsizetype>(readers.size()));
    }
};

QTEST_APPLESS_MAIN(macos_readers_test)
#include "readers_test.moc"
