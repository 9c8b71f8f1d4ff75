#include "common/plugin_helper_functions.h"

#include <QtTest>

using namespace Qt::StringLiterals;

class media_classification_test : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void classifies_by_extension();
};

void media_classification_test::classifies_by_extension()
{
    const plugin_helper_functions helper;
    const QStringList images = {u"photo.JPG "_s, u"first.001"_s, u"last.zvi"_s,
                                u"tile.accountpicture-ms"_s, u"\u202e.pn\u200eg"_s};
    const QStringList audios = {u"first.2sf"_s, u"a.song.mp3"_s, u"last.ym"_s, u"both.mod"_s};
    const QStringList videos = {u"first.264"_s, u"last.xvid"_s, u"tape.dv-avi"_s, u"both.mod"_s};
    const QStringList others = {u"photo.jpg."_s, u"photo.jpg.. "_s, u"jpg"_s,
                                u"photo.jpgx"_s, u"photo.jp"_s,     u""_s};
    for (const QString &name : images + audios + videos + others) {
        const auto context = qUtf8Printable(name);
        QVERIFY2(helper.check_is_image_by_extn(name) == images.contains(name), context);
        QVERIFY2(helper.check_is_audio_by_extn(name) == audios.contains(name), context);
        QVERIFY2(helper.check_is_video_by_extn(name) == videos.contains(name), context);
    }
}

QTEST_MAIN(media_classification_test)
#include "media_classification_test.moc"
