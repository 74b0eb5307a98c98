#include "screens/mp3_lcd.h"
#include "tests/screens/screenrows.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "widgets/ticker.h"

namespace {

constexpr const char* stopImage = ":/Tessaro/image/play_state/stop.png";

} // namespace

/** The player as it is built: what stands where, and the slots it is told by. */
class Mp3LcdFormTest : public QObject {
    Q_OBJECT

private slots:
    void layout_data()
    {
        using Screen::grey;
        Screen::addRows(
            QVector<Screen::Row>{
                {"lbl_background_alpha", {0, 0, 320, 240}},
                {"lbl_background", {0, 0, 320, 240}, "", ":/Tessaro/image/init/background.png"},
                {"lb_FrontUSB", {200, 21, 40, 19}, "", ":/Tessaro/image/input/front_usb.png", true},
                {"lb_StreamUSB", {155, 21, 40, 19}, "", ":/Tessaro/image/input/back_usb.png", true},
                {"lb_DiskStat", {245, 18, 55, 20}, "", ":/Tessaro/image/input/usb.png"},
                {"lb_shuffle", {52, 20, 30, 20}, "", ":/Tessaro/image/special_state/shuffle.png", true},
                {"lb_specialState", {18, 16, 33, 31}, "", ":/Tessaro/image/special_state/all_repeat.png"},
                {"lbI_PlayState", {21, 53, 17, 16}, "", stopImage, true},
                {"lbTime", {40, 51, 91, 20}, grey},
                {"lb_folderImg", {21, 100, 19, 14}, "", ":/Tessaro/image/memory/folder.png"},
                {"lbl_folder", {55, 100, 41, 20}, grey},
                {"lbl_files", {98, 100, 91, 20}, grey},
                {"lbl_artist", {21, 126, 168, 16}, grey},
                {"lbl_title", {21, 151, 168, 16}, grey},
                {"lbl_album", {21, 172, 168, 20}, grey},
                {"lb_AlbumArt_back", {195, 95, 100, 100}, "", ":/Tessaro/image/album_art/album_back.png"},
                {"lb_No_CDImg", {190, 100, 113, 100}, "", ":/Tessaro/image/album_art/no_cd_image.png"},
                {"lbl_image", {200, 100, 100, 100}},
                {"lbShadow", {200, 200, 100, 32}},
                {"lb_botAlpha", {0, 200, 320, 40}, Screen::band},
            }
            + Screen::meterRows({21, 56, 91, 126, 161, 196, 231, 266}));
    }
    void layout() { Screen::compareRow(mp3_lcd()); }

    void nothingElseIsOnTheForm()
    {
        mp3_lcd screen;
        QCOMPARE(screen.size(), QSize(320, 240));
        QCOMPARE(screen.findChildren<QWidget*>().size(), 20 + 16);
        QVERIFY(qobject_cast<Ticker*>(Screen::widget(screen, QStringLiteral("lbl_title"))));
    }

    void whatMustBeOnTopIsOnTop()
    {
        mp3_lcd screen;
        using Screen::lies;
        QVERIFY(lies(screen, "lbl_background", "lbl_background_alpha"));
        for (const QWidget* const child : screen.findChildren<QWidget*>()) {
            const QByteArray name = child->objectName().toLatin1();
            if (!name.startsWith("lbl_background"))
                QVERIFY2(lies(screen, name.constData(), "lbl_background"), name.constData());
        }
        for (const Screen::Row& row : Screen::meterRows({}).mid(8))
            QVERIFY(lies(screen, row.name, QByteArray(row.name).chopped(2).constData()));
        QVERIFY(lies(screen, "lbl_image", "lb_AlbumArt_back"));
        QVERIFY(lies(screen, "lb_botAlpha", "lbShadow"));
    }

    void textsAreSmallUprightAndPlain()
    {
        mp3_lcd screen;
        for (const char* name : {"lbl_album", "lbl_artist", "lbl_folder", "lbl_files", "lbl_title", "lbTime"})
            QVERIFY2(Screen::hasPanelFont(screen, name), name);
        for (const char* name : {"lbl_album", "lbl_artist", "lbl_folder", "lbl_files", "lbTime"}) {
            QCOMPARE(Screen::label(screen, name)->textFormat(), Qt::PlainText);
        }
        for (const char* name : {"lbl_background", "lbl_background_alpha"})
            QVERIFY(!Screen::label(screen, name)->autoFillBackground());
    }

    void hiddenAtTheStart()
    {
        mp3_lcd screen;
        for (const char* name :
             {"lb_shuffle", "lbl_image", "lbShadow", "lb_AlbumArt_back", "lb_FrontUSB", "lb_StreamUSB"})
            QVERIFY2(!Screen::shown(screen, name), name);
        for (const char* name : {"lb_No_CDImg", "lbTime", "lbl_title", "lb_specialState", "lbI_PlayState",
                                 "lb_DiskStat", "lb_botAlpha", "lbl_background"})
            QVERIFY2(Screen::shown(screen, name), name);
    }

    void constructionLogsNothing()
    {
        LogCatcher log;
        mp3_lcd screen;
        QCOMPARE(log.lines(), QStringList());
    }

    /** New ones stand behind these. */
    void slotsInOrder()
    {
        const QStringList first = strings({"play_action()",
                                           "pause_action()",
                                           "stop_action()",
                                           "next_action()",
                                           "prev_action()",
                                           "PlayPause_action()",
                                           "showAll()",
                                           "showFolder()",
                                           "showOne()",
                                           "showRptAll()",
                                           "showRptFolder()",
                                           "showRptOne()",
                                           "showShuffle()",
                                           "showOffShuffle()",
                                           "showTime(QString)",
                                           "showDiskInfo(QString,QString)",
                                           "showDiskNormal()",
                                           "showDiskRemoved()",
                                           "showUSBStreamEntered()",
                                           "showUSBStreamExited()",
                                           "showUSBFrontEntered()",
                                           "showUSBFrontExited()",
                                           "showAUXEntered()",
                                           "showAUXExited()",
                                           "showLevel(uchar)",
                                           "initLevel()",
                                           "ShowTagInfo(TagInfomation)"});
        QCOMPARE(ownMethods(mp3_lcd::staticMetaObject).mid(0, first.size()), first);
    }

    void signatureOfEachSlot_data()
    {
        QTest::addColumn<QStringList>("lines");
        for (const char* name : {"play_action",
                                 "pause_action",
                                 "stop_action",
                                 "next_action",
                                 "prev_action",
                                 "PlayPause_action",
                                 "showAll",
                                 "showFolder",
                                 "showOne",
                                 "showRptFolder",
                                 "showRptOne",
                                 "showShuffle",
                                 "showOffShuffle",
                                 "showDiskNormal",
                                 "showDiskRemoved",
                                 "showUSBStreamEntered",
                                 "showUSBFrontExited",
                                 "showAUXEntered",
                                 "showAUXExited",
                                 "initLevel"})
            QTest::newRow(name) << QStringList(QStringLiteral("void mp3_lcd::%1()").arg(QLatin1String(name)));
        QTest::newRow("showRptAll") << QStringList();
        QTest::newRow("showUSBStreamExited") << QStringList();
        QTest::newRow("showUSBFrontEntered")
            << strings({"void mp3_lcd::showUSBFrontEntered()", "void mp3_lcd::initLevel()"});
    }
    void signatureOfEachSlot()
    {
        QFETCH(QStringList, lines);
        mp3_lcd screen;
        LogCatcher log;
        QVERIFY(QMetaObject::invokeMethod(&screen, QTest::currentDataTag()));
        QCOMPARE(log.lines(), lines);
    }
};

VIREO_TEST_MAIN(Mp3LcdFormTest)
#include "tst_mp3_lcd_form.moc"
