#include "screens/mp3_lcd.h"
#include "screens/panelfont.h"
#include "tests/screens/screenrows.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "widgets/ticker.h"

#include <random>

namespace {

constexpr const char* playImage = ":/Tessaro/image/play_state/play.png";
constexpr const char* pauseImage = ":/Tessaro/image/play_state/pause.png";
constexpr const char* stopImage = ":/Tessaro/image/play_state/stop.png";
constexpr const char* nextImage = ":/Tessaro/image/play_state/next.png";
constexpr const char* prevImage = ":/Tessaro/image/play_state/prev.png";

QPixmap picture(int width, int height, bool translucent)
{
    std::mt19937 random(unsigned(width * 1000 + height));
    QImage image(width, height, translucent ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const QColor colour(int(random() % 256), int(random() % 256), int(random() % 256),
                                translucent ? int(random() % 256) : 255);
            image.setPixelColor(x, y, colour);
        }
    }
    return QPixmap::fromImage(image);
}

QImage inBlocksOfFour(const QImage& image)
{
    QImage result(image.size() * 2, image.format());
    for (int y = 0; y < result.height(); ++y) {
        for (int x = 0; x < result.width(); ++x)
            result.setPixel(x, y, image.pixel(x / 2, y / 2));
    }
    return result;
}

TagInfomation tags(const QPixmap& cover = {})
{
    return {QStringLiteral("The title"), QStringLiteral("The artist"), QStringLiteral("The album"), cover};
}

/** The picture of a title label that shows just this text. */
QImage titleShowing(const QString& text)
{
    Ticker ticker;
    ticker.setStyleSheet(QString::fromLatin1(Screen::grey));
    ticker.setFont(panelFont(12));
    ticker.resize(168, 16);
    ticker.setText(text, true);
    return Screen::drawn(ticker);
}
QImage title(const QWidget& screen)
{
    return Screen::drawn(*Screen::widget(screen, QStringLiteral("lbl_title")));
}

constexpr const char* sourceWidgets[] = {"lbl_album",    "lbl_artist",      "lbl_folder",    "lbl_files",
                                         "lb_folderImg", "lbl_image",       "lbl_title",     "lbShadow",
                                         "lbTime",       "lb_specialState", "lbI_PlayState", "lb_No_CDImg"};

} // namespace

class Mp3LcdTest : public QObject {
    Q_OBJECT

private slots:
    void playState_data()
    {
        QTest::addColumn<QStringList>("slotNames");
        QTest::addColumn<QByteArray>("image");
        const auto add = [](const char* name, std::initializer_list<const char*> slotNames,
                            const char* image) {
            QTest::newRow(name) << strings(slotNames) << QByteArray(image);
        };
        add("stopped at the start", {}, stopImage);
        add("play", {"play_action"}, playImage);
        add("pause", {"pause_action"}, pauseImage);
        add("stop", {"play_action", "stop_action"}, stopImage);
        add("next", {"next_action"}, nextImage);
        add("previous", {"prev_action"}, prevImage);
        add("the toggle plays from stop", {"PlayPause_action"}, playImage);
        add("a second toggle pauses", {"PlayPause_action", "PlayPause_action"}, pauseImage);
        add("a third plays again", {"PlayPause_action", "PlayPause_action", "PlayPause_action"}, playImage);
        add("the toggle pauses what plays", {"play_action", "PlayPause_action"}, pauseImage);
        add("the toggle plays what is paused", {"pause_action", "PlayPause_action"}, playImage);
        add("next keeps the state: playing", {"play_action", "next_action", "PlayPause_action"}, pauseImage);
        add("next keeps the state: stopped", {"next_action", "PlayPause_action"}, playImage);
        add("previous keeps the state: playing", {"play_action", "prev_action", "PlayPause_action"},
            pauseImage);
        add("previous keeps the state: paused", {"pause_action", "prev_action", "PlayPause_action"},
            playImage);
    }
    void playState()
    {
        QFETCH(QStringList, slotNames);
        QFETCH(QByteArray, image);
        mp3_lcd screen;
        for (const QString& name : slotNames)
            QVERIFY(QMetaObject::invokeMethod(&screen, name.toLatin1().constData()));
        QCOMPARE(Screen::image(screen, "lbI_PlayState"), Screen::resource(image.constData()));
    }

    void playMode_data()
    {
        QTest::addColumn<QByteArray>("image");
        QTest::newRow("showAll") << QByteArray(":/Tessaro/image/special_state/all.png");
        QTest::newRow("showFolder") << QByteArray(":/Tessaro/image/special_state/folder.png");
        QTest::newRow("showOne") << QByteArray(":/Tessaro/image/special_state/one.png");
        QTest::newRow("showRptAll") << QByteArray(":/Tessaro/image/special_state/all_repeat.png");
        QTest::newRow("showRptFolder") << QByteArray(":/Tessaro/image/special_state/folder_repeat.png");
        QTest::newRow("showRptOne") << QByteArray(":/Tessaro/image/special_state/one_repeat.png");
    }
    void playMode()
    {
        QFETCH(QByteArray, image);
        mp3_lcd screen;
        screen.showAll();
        screen.showShuffle();
        QVERIFY(QMetaObject::invokeMethod(&screen, QTest::currentDataTag()));
        QCOMPARE(Screen::image(screen, "lb_specialState"), Screen::resource(image.constData()));
        QVERIFY(Screen::shown(screen, "lb_shuffle"));
    }

    void shuffleComesAndGoes()
    {
        mp3_lcd screen;
        screen.showShuffle();
        QVERIFY(Screen::shown(screen, "lb_shuffle"));
        screen.showOffShuffle();
        QVERIFY(!Screen::shown(screen, "lb_shuffle"));
    }

    void timeAndCountersAsGiven()
    {
        mp3_lcd screen;
        LogCatcher log;
        screen.showTime(QStringLiteral("0:03:07"));
        screen.showDiskInfo(QStringLiteral("12"), QStringLiteral("FILES: 345"));
        QCOMPARE(Screen::text(screen, "lbTime"), QStringLiteral("0:03:07"));
        QCOMPARE(Screen::text(screen, "lbl_folder"), QStringLiteral("12"));
        QCOMPARE(Screen::text(screen, "lbl_files"), QStringLiteral("FILES: 345"));
        QCOMPARE(
            log.lines(),
            strings({"void mp3_lcd::showTime(QString)", "void mp3_lcd::showDiskInfo(QString, QString)"}));
    }

    void sourceIcons()
    {
        mp3_lcd screen;
        screen.showDiskNormal();
        QVERIFY(Screen::shown(screen, "lb_FrontUSB"));
        screen.showDiskRemoved();
        QVERIFY(!Screen::shown(screen, "lb_FrontUSB"));
        screen.showUSBStreamEntered();
        QVERIFY(Screen::shown(screen, "lb_StreamUSB"));
        screen.showUSBStreamExited();
        QVERIFY(!Screen::shown(screen, "lb_StreamUSB"));
    }

    void tagsWithCover()
    {
        mp3_lcd screen;
        const QPixmap cover = picture(100, 100, false);
        LogCatcher log;
        screen.ShowTagInfo(tags(cover));
        QCOMPARE(log.plain(),
                 strings({"void mp3_lcd::ShowTagInfo(TagInfomation)", "Width size of tag Image  100",
                          "I Album Art Image OK"}));
        QCOMPARE(Screen::text(screen, "lbl_album"), QStringLiteral("The album"));
        QCOMPARE(Screen::text(screen, "lbl_artist"), QStringLiteral("The artist"));
        QCOMPARE(title(screen), titleShowing(QStringLiteral("The title")));
        QCOMPARE(Screen::image(screen, "lbl_image"), cover.toImage());
        for (const char* name : {"lbl_image", "lb_AlbumArt_back", "lbShadow"})
            QVERIFY2(Screen::shown(screen, name), name);
        QVERIFY(!Screen::shown(screen, "lb_No_CDImg"));
    }

    void tagsWithoutCover()
    {
        mp3_lcd screen;
        screen.ShowTagInfo(tags(picture(100, 100, false)));
        LogCatcher log;
        screen.ShowTagInfo(tags());
        QCOMPARE(log.plain(),
                 strings({"void mp3_lcd::ShowTagInfo(TagInfomation)", "Width size of tag Image  0",
                          "I Album Art Image NULL "}));
        QVERIFY(Screen::shown(screen, "lb_No_CDImg"));
        for (const char* name : {"lbl_image", "lb_AlbumArt_back", "lbShadow"})
            QVERIFY2(!Screen::shown(screen, name), name);
    }

    void titleWithoutTextKeepsTheOldOne()
    {
        mp3_lcd screen;
        screen.ShowTagInfo(tags());
        screen.ShowTagInfo({});
        QCOMPARE(title(screen), titleShowing(QStringLiteral("The title")));
        QCOMPARE(Screen::text(screen, "lbl_artist"), QString());
    }

    void textsOfTagsAreKeptLetterForLetter()
    {
        mp3_lcd screen;
        const QString odd = QStringLiteral("<b>노래</b>\n&amp;") + QChar(0);
        screen.ShowTagInfo({odd, odd, odd, {}});
        QCOMPARE(Screen::text(screen, "lbl_artist"), odd);
        QCOMPARE(Screen::text(screen, "lbl_album"), odd);
        QVERIFY(!screen.grab().isNull());
    }

    void aTextThatEndsInAZeroLooksLikeTheTextAlone()
    {
        mp3_lcd screen;
        screen.ShowTagInfo(tags());
        const QImage plain = screen.grab().toImage();
        const QChar zero(0);
        screen.ShowTagInfo({tags().strTitle + zero, tags().strArtist + zero, tags().strAlbum + zero, {}});
        QCOMPARE(screen.grab().toImage(), plain);
    }

    void aMegabyteOfTagsIsShown()
    {
        mp3_lcd screen;
        const QString megabyte(1000000, QLatin1Char('x'));
        screen.ShowTagInfo({megabyte, megabyte, megabyte, {}});
        QCOMPARE(title(screen), titleShowing(QString(20, QLatin1Char('x'))));
        QVERIFY(!screen.grab().isNull());
    }

    void reflection_data()
    {
        QTest::addColumn<QPixmap>("cover");
        QTest::addColumn<QImage>("flat"); // the cover squeezed to the reflection's size
        const auto addSqueezed = [](const char* name, const QPixmap& cover) {
            QTest::newRow(name) << cover
                                << cover.toImage().scaled(100, 32, Qt::IgnoreAspectRatio,
                                                          Qt::FastTransformation);
        };
        const QImage flat = picture(100, 32, false).toImage();
        QTest::newRow("already of the reflection's size") << QPixmap::fromImage(flat) << flat;
        QTest::newRow("each pixel a block of four") << QPixmap::fromImage(inBlocksOfFour(flat)) << flat;
        addSqueezed("as the readers give it", picture(100, 100, false));
        addSqueezed("translucent", picture(100, 100, true));
        addSqueezed("one pixel", picture(1, 1, false));
        addSqueezed("high and narrow", picture(3, 300, true));
        addSqueezed("low and wide", picture(1000, 2, false));
    }
    void reflection()
    {
        QFETCH(QPixmap, cover);
        QFETCH(QImage, flat);
        mp3_lcd screen;
        screen.ShowTagInfo(tags(cover));
        const QImage shadow = Screen::image(screen, "lbShadow");
        QCOMPARE(shadow.size(), QSize(100, 32));
        for (int y = 0; y < 32; ++y) {
            for (int x = 0; x < 100; ++x) {
                const bool stays = x == 0 || y == 0 || y == 16;
                QCOMPARE(shadow.pixelColor(x, y), flat.pixelColor(x, stays ? y : 32 - y));
            }
        }
    }

    void diskRemoved()
    {
        mp3_lcd screen;
        screen.showDiskNormal();
        screen.showDiskInfo(QStringLiteral("12"), QStringLiteral("FILES: 345"));
        screen.ShowTagInfo(tags(picture(100, 100, false)));
        screen.showDiskRemoved();
        QVERIFY(!Screen::shown(screen, "lb_FrontUSB"));
        QCOMPARE(Screen::text(screen, "lbl_files"), QStringLiteral("FILES: "));
        QCOMPARE(Screen::text(screen, "lbl_folder"), QStringLiteral(" "));
        QCOMPARE(title(screen), titleShowing(QStringLiteral("Title")));
        QCOMPARE(Screen::text(screen, "lbl_album"), QStringLiteral("Album"));
        QCOMPARE(Screen::text(screen, "lbl_artist"), QStringLiteral("Artist"));
        QVERIFY(Screen::image(screen, "lbl_image").isNull());
        QVERIFY(Screen::image(screen, "lbShadow").isNull());
        QVERIFY(!Screen::shown(screen, "lb_AlbumArt_back"));
        QVERIFY(Screen::shown(screen, "lb_No_CDImg"));
    }

    void frontUsbEnteredShowsEverythingButTheFrame()
    {
        mp3_lcd screen;
        screen.showUSBFrontExited();
        for (const char* name : sourceWidgets)
            QVERIFY2(!Screen::shown(screen, name), name);
        QVERIFY(!Screen::shown(screen, "lb_AlbumArt_back"));
        screen.ShowTagInfo(tags(picture(100, 100, false)));
        screen.showLevel(8);
        screen.showUSBFrontEntered();
        for (const char* name : sourceWidgets)
            QVERIFY2(Screen::shown(screen, name), name);
        QVERIFY(!Screen::shown(screen, "lb_AlbumArt_back"));
        QVERIFY(!Screen::shown(screen, "lbLevel1_2"));
    }

    void auxChangesNothing()
    {
        mp3_lcd screen;
        screen.ShowTagInfo(tags());
        const QImage before = screen.grab().toImage();
        screen.showAUXEntered();
        screen.showAUXExited();
        QCOMPARE(screen.grab().toImage(), before);
    }
};

VIREO_TEST_MAIN(Mp3LcdTest)
#include "tst_mp3_lcd.moc"
