#include "common/plugin_static_function.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;

class file_properties_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void suffix_is_what_follows_the_last_dot();
    void size_counts_files_but_no_links();
};

void file_properties_test::suffix_is_what_follows_the_last_dot()
{
    const auto suffix = plugin_static_function::mining_suffix;
    QCOMPARE(suffix(u"/a/archive.tar.gz"_s), u"gz");
    QCOMPARE(suffix(u"/a/.config.json"_s), u"json");
    for (const QString &path : {u"/a.b/name"_s, u"/a/.bashrc"_s, u"/b.d/"_s, u"a."_s, QString()})
        QVERIFY2(suffix(path).isEmpty() && !suffix(path).isNull(), qUtf8Printable(path));
}

void file_properties_test::size_counts_files_but_no_links()
{
    const QTemporaryDir root;
    const auto path = [&root](const char *name) {
        return root.filePath(QString::fromLatin1(name));
    };
    const auto write_file = [&path](const char *name, qsizetype size) {
        QFile file(path(name));
        return file.open(QIODevice::WriteOnly) && file.write(QByteArray(size, 'x')) == size;
    };
    QVERIFY(QDir().mkpath(path("folder/inner")));
    QVERIFY(write_file("outside", 100'000) && write_file("folder/seven", 7) &&
            write_file("folder/inner/.hidden", 30));
    QVERIFY(QFile::link(root.path(), path("folder/folder_link")));
    QVERIFY(QFile::link(path("outside"), path("folder/file_link")));

    const auto mining_size = plugin_static_function::mining_size;
    QCOMPARE(mining_size(path("outside")), u"100000");
    QCOMPARE(mining_size(path("folder")), u"37");
    QCOMPARE(mining_size(path("folder/folder_link")), u"");
    QVERIFY(mining_size(path("missing")).isEmpty() && !mining_size(path("missing")).isNull());

    plugin_static_function::set_cancel_extraction(true);
    const QString cancelled = mining_size(root.path());
    plugin_static_function::set_cancel_extraction(false);
    QCOMPARE(cancelled, QString::number(QFileInfo(root.path()).size()));
}

QTEST_GUILESS_MAIN(file_properties_test)
#include "file_properties_test.moc"
