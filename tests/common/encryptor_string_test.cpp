#include "common/encryptor_string.h"

#include <QtTest>

using namespace Qt::StringLiterals;
using error = encryptor_string::error;

class encryptor_string_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void round_trips_in_every_mode();
    void makes_the_documented_layout();
    void decrypts_or_refuses_data();
    void decrypts_or_refuses();
};

void encryptor_string_test::round_trips_in_every_mode()
{
    const QStringList texts = {u""_s, u"a"_s, u"Größe \U0001F600\n"_s, QString(5000, u'x')};
    for (const int mode : {0, 1, 2, 3, 4, 5, 6, 7, 8}) {
        encryptor_string cipher;
        cipher.set_compression(static_cast<encryptor_string::compression>(mode / 3));
        cipher.set_protection(static_cast<encryptor_string::protection>(mode % 3));
        for (const QString &text : texts) {
            QCOMPARE(cipher.decryptToString(cipher.encryptToString(text)), text);
            QCOMPARE(cipher.last_error(), error::none);
        }
    }
}

void encryptor_string_test::makes_the_documented_layout()
{
    encryptor_string cipher;
    const QByteArray short_text = cipher.encryptToByteArray(u"short"_s);
    QVERIFY(short_text.startsWith("\x03\x02"));
    QCOMPARE(short_text.size(), 2 + 1 + 2 + 5); // header, random byte, checksum, text
    const QByteArray long_text = cipher.encryptToByteArray(QByteArray(2000, 'a'));
    QVERIFY(long_text.startsWith("\x03\x03") && long_text.size() < 100);

    int differing = 0; // one random byte may well repeat, but not all of them
    for (int i = 0; i < 32; ++i)
        differing += cipher.encryptToByteArray(u"short"_s) != short_text;
    QVERIFY(differing > 0);
}

/// Encrypts a block that encryptor_string itself would never make.
static QByteArray chained(const QByteArray &flags_hex, QByteArray block)
{
    const QByteArray key = QByteArray::fromHex("f1642b7ac0913e5d");
    for (qsizetype i = 0; i < block.size(); ++i)
        block[i] = static_cast<char>(block[i] ^ (i > 0 ? block[i - 1] : 0) ^ key[i % key.size()]);
    return QByteArray::fromHex("03" + flags_hex) + block;
}

void encryptor_string_test::decrypts_or_refuses_data()
{
    QTest::addColumn<QByteArray>("cipher_text");
    QTest::addColumn<error>("expected");
    QTest::addColumn<QString>("plain");
    const auto row = [](const QByteArray &cipher_text, error expected, const QString &plain = {}) {
        QTest::addRow("%s", cipher_text.toHex().constData()) << cipher_text << expected << plain;
    };
    const auto bytes = QByteArray::fromHex;
    const QByteArray hash_of_abc = bytes("0304ab66d49066b08854cf11045bea036df26f976cce93633f01");
    row(bytes("0300f1dd9f"), error::none, u"Hi"_s);
    row(bytes("0302ab5f1a51a3010b63a4f7e4a7"), error::none, u"123456789"_s); // checksum 906e
    row(bytes("0302ab5f1a51a3010b63a4f7e4a6"), error::integrity_failed);
    row(hash_of_abc, error::none, u"abc"_s);
    row(hash_of_abc.chopped(1), error::integrity_failed);
    row(hash_of_abc.chopped(4), error::integrity_failed); // not even a whole hash
    row({}, error::unknown_version);
    row(bytes("03"), error::unknown_version);
    row(bytes("0200f1dd9f"), error::unknown_version);
    row(bytes("0300"), error::integrity_failed);
    row(chained("02", "r1"), error::integrity_failed);
    row(chained("01", "r12"), error::integrity_failed);
    row(chained("01", bytes("00000000056162636465")), error::integrity_failed); // not zlib's
    const QByteArray compressed = qCompress(QByteArray("some text"));
    row(chained("01", 'r' + compressed), error::none, u"some text"_s);
    row(chained("01", "r\x7f" + compressed.sliced(1)), error::integrity_failed); // 2 GB announced
}

void encryptor_string_test::decrypts_or_refuses()
{
    QFETCH(QByteArray, cipher_text);
    QFETCH(error, expected);
    if (expected == error::unknown_version)
        QTest::ignoreMessage(QtWarningMsg, "Invalid version or not a cyphertext.");

    encryptor_string cipher;
    QTEST(cipher.decryptToString(cipher_text), "plain");
    QCOMPARE(cipher.last_error(), expected);
}

QTEST_GUILESS_MAIN(encryptor_string_test)
#include "encryptor_string_test.moc"
