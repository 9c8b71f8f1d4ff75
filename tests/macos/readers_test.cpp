#include "macos/macos_readers.h"
#include "tests/support/check_readers.h"

#include <QTest>

class macos_readers_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void every_descriptor_fits_the_schema()
    {
        using namespace macos_readers;
        QCOMPARE(faults_of_readers({&history_11, &history_url, &search_items_11, &search_items,
                                    &cookies_11, &cookies, &logins_11, &login_data, &autofill_11,
                                    &autofill, &autofill_profiles_11, &autofill_profiles,
                                    &credit_cards_11, &topsites}),
                 QStringList());
    }
};

QTEST_APPLESS_MAIN(macos_readers_test)
#include "readers_test.moc"
