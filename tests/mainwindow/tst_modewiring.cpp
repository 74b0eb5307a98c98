#include "tests/mainwindow/panel.h"
#include "tests/support/panelmain.h"
#include "tests/support/strings.h"

#include <QLabel>

#include <optional>

class ModeWiringTest : public QObject {
    Q_OBJECT

private:
    std::optional<LogCatcher> m_silence;

private slots:
    void init() { m_silence.emplace(5); }

    void linesOfEachMode()
    {
        Panel panel;
        QCOMPARE(panel.linesOf({"sgDEVICE_USB_FRONT_Enter()"}),
                 strings({"void MainWindow::USBModeEntered()", "void mp3_lcd::initLevel()",
                          "void MenuForm::setCurrentIdx(MENUIDX)", "void AOEForm::showStop()"}));
        QCOMPARE(panel.linesOf({"sgDEVICE_AOE_Enter()"}),
                 strings({"void MainWindow::USBModeExited()", "void MenuForm::setPrevMode(MENUIDX)",
                          "void mp3_lcd::showTime(QString)", "void MainWindow::AOEModeEntered()",
                          "void AOEForm::initLevel()", "void MenuForm::setCurrentIdx(MENUIDX)"}));
        QCOMPARE(panel.linesOf({"sgDEVICE_IR_Enter()"}),
                 strings({"void MainWindow::AOEModeExited()", "void MenuForm::setPrevMode(MENUIDX)",
                          "void MainWindow::IRModeEntered()", "void MenuForm::setCurrentIdx(MENUIDX)",
                          "void MainWindow::IRMainEntered()", "void IRForm::initLevel()",
                          "void IRForm::showStop()", "void AOEForm::showStop()"}));
        const QStringList toList = panel.linesOf({"sgKEY_SELECT()"});
        QCOMPARE(
            toList.mid(0, 4),
            strings({"void MainWindow::IRMainExited()", "void MainWindow::IRListEntered()",
                     "void RadioListForm::XMLParse()", "void RadioListForm::RadioInfoFromXML(QString)"}));
        QCOMPARE(toList.mid(toList.size() - 2),
                 strings({"void RadioListForm::InitList()", "void RadioListForm::SetCurrentIndexFromXML()"}));
        QCOMPARE(panel.linesOf({"sgKEY_ESC()"}).mid(0, 2),
                 strings({"void MainWindow::IRListExited()", "void MainWindow::IRMainEntered()"}));
        QCOMPARE(panel.linesOf({"sgKEY_LONG_SELECT()"}),
                 strings({"void MainWindow::IRMainExited()", "void MainWindow::IRModeExited()",
                          "void MenuForm::setPrevMode(MENUIDX)", "void MainWindow::MenuModeEntered()"}));
        QCOMPARE(panel.linesOf({"sgDEVICE_Set_Enter()"}),
                 strings({"void MainWindow::MenuModeExited()", "void MainWindow::SetModeEntered()",
                          "void SetupForm::TimerStart()", "void SetupForm::XMLParse()",
                          "void MenuForm::setCurrentIdx(MENUIDX)"}));
        QCOMPARE(panel.linesOf({"sgDEVICE_NetBGM_Enter()"}),
                 strings({"void MainWindow::SetModeExited()", "void MenuForm::setPrevMode(MENUIDX)",
                          "void SetupForm::StopTimer()", "void MainWindow::NetBGMModeEntered()",
                          "void MenuForm::setCurrentIdx(MENUIDX)", "void AOEForm::showStop()"}));
        // NetBGM is not remembered as the mode before the menu: it sets the menu's index instead.
        QCOMPARE(panel.linesOf({"sgKEY_LONG_SELECT()"}),
                 strings({"void MainWindow::NetBGMModeExited()", "void MenuForm::setCurrentIdx(MENUIDX)",
                          "void MainWindow::MenuModeEntered()"}));
    }

    void inputReachesOnlyTheScreenThatShows_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("start") << "StartState" << QStringList();
        QTest::newRow("USB") << "USBMode"
                             << strings({"void mp3_lcd::showTime(QString)",
                                         "void mp3_lcd::showLevel(unsigned char)",
                                         "void mp3_lcd::initLevel()", "void mp3_lcd::next_action()",
                                         "void mp3_lcd::prev_action()"});
        QTest::newRow("radio") << "IRMain"
                               << strings({"void IRForm::showLevel(unsigned char)",
                                           "void IRForm::initLevel()",
                                           "void IRForm::showIRInfo(QString, QString)",
                                           "void IRForm::showPlay()"});
        QTest::newRow("station list")
            << "IRList"
            << strings({"void RadioListForm::up_action()", "currentIndex [ -1 ] ", "NextIndex [ -2 ] ",
                        "void RadioListForm::down_action()", "currentIndex [ -1 ] ", "NextIndex [ 0 ] "});
        QTest::newRow("NetBGM takes none") << "NetBGMMode" << QStringList();
        QTest::newRow("menu") << "MenuMode"
                              << strings({"void MenuForm::prev_action()", "void MenuForm::next_action()"});
    }
    void inputReachesOnlyTheScreenThatShows()
    {
        QFETCH(QString, mode);
        QFETCH(QStringList, lines);
        Panel panel;
        panel.bringTo(mode);
        const QStringList seen =
            panel.linesOf({"sgPlayTime(QString)", "sgMasterLevel(uchar)", "sgKEY_NEXT()", "sgKEY_PREV()",
                           "sgIRInfo(QString,QString)", "sgEncLeft()", "sgEncRight()"});
        QCOMPARE(seen, lines);
    }

    void connectionInfoReachesTheScreenOnlyInItsMode()
    {
        Panel panel;
        QCOMPARE(panel.linesOf({"sgAoeInfo(QString,QString)", "sgAOE_STAT_OK()", "sgAOE_STAT_FAIL()",
                                "sgAOE_STAT_OVER()"}),
                 QStringList());
        QCOMPARE(panel.linesOf({"sgAOE_STAT_STOP()"}), strings({"void AOEForm::showStop()"}));
        panel.emitParser("sgDEVICE_AOE_Enter()");
        const QStringList play = strings({"void AOEForm::showPlay()", "void AOEForm::AoeInfoFromXML()"});
        QCOMPARE(panel.linesOf({"sgAoeInfo(QString,QString)"}),
                 strings({"void AOEForm::showAoeInfo(QString, QString)"}) + play);
        QCOMPARE(panel.linesOf({"sgAOE_STAT_OK()"}), play);
        QCOMPARE(panel.linesOf({"sgAOE_STAT_FAIL()"}), strings({"void AOEForm::showFailMSG()"}));
        QCOMPARE(panel.linesOf({"sgAOE_STAT_OVER()"}), strings({"void AOEForm::showOVERMSG()"}));
        QCOMPARE(panel.linesOf({"sgAOE_STAT_STOP()"}), strings({"void AOEForm::showStop()"}));
        panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
        QCOMPARE(panel.linesOf({"sgAOE_STAT_OK()"}), QStringList());
    }

    void playerFollowsInEveryMode()
    {
        Panel panel;
        panel.emitParser("sgDEVICE_AOE_Enter()");
        QCOMPARE(
            panel.linesOf({"sgKEY_PLAY()", "sgKEY_PAUSE()", "sgKEY_PLAY_PAUSE()", "sgKEY_STOP()",
                           "sgDiskStatNormal()", "sgDiskRemoved()", "sgDiskInfo(QString,QString)",
                           "sgDEVICE_USB_STREAM_Enter()", "sgDEVICE_USB_STREAM_Exit()", "sgMode_All()",
                           "sgMode_Folder()", "sgMode_One()", "sgMode_rpt_All()", "sgMode_rpt_Folder()",
                           "sgMode_rpt_One()", "sgMode_shuffle()", "sgMode_off_Shuffle()"}),
            strings({"void mp3_lcd::play_action()", "void mp3_lcd::pause_action()",
                     "void mp3_lcd::PlayPause_action()", "void mp3_lcd::stop_action()",
                     "void mp3_lcd::showDiskNormal()", "void mp3_lcd::showDiskRemoved()",
                     "void mp3_lcd::showDiskInfo(QString, QString)", "void mp3_lcd::showUSBStreamEntered()",
                     "void mp3_lcd::showAll()", "void mp3_lcd::showFolder()", "void mp3_lcd::showOne()",
                     "void mp3_lcd::showRptFolder()", "void mp3_lcd::showRptOne()",
                     "void mp3_lcd::showShuffle()", "void mp3_lcd::showOffShuffle()"}));
    }

    void leavingUsbResetsTheTime()
    {
        Panel panel;
        panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
        panel.window.stackBuff(QByteArray::fromHex("02000300012345"));
        auto* time = panel.window.findChild<QLabel*>(QStringLiteral("lbTime"));
        QCOMPARE(time->text(), QStringLiteral("01:23:45"));
        // The source announced again is no new entry.
        QCOMPARE(panel.linesOf({"sgDEVICE_USB_FRONT_Enter()"}), QStringList());
        QCOMPARE(time->text(), QStringLiteral("01:23:45"));
        panel.emitParser("sgDEVICE_AOE_Enter()");
        QCOMPARE(time->text(), QStringLiteral("00:00:00"));
        panel.window.stackBuff(QByteArray::fromHex("02000300012345"));
        QCOMPARE(time->text(), QStringLiteral("00:00:00"));
    }

    void reportLogsTheCallAndThePacket()
    {
        Panel panel;
        panel.emitParser("sgDEVICE_AOE_Enter()");
        LogCatcher log(0);
        emit panel.parser().sgMenuRequest();
        // Behind them comes the toolkit's own remark that nobody is connected.
        QVERIFY(log.lines().size() >= 3);
        QCOMPARE(log.lines().at(0), QStringLiteral("void MainWindow::ResponseCurrentMode()"));
        QVERIFY(log.lines().at(1).contains(QStringLiteral("tcp_server::makePktData")));
        QCOMPARE(log.lines().at(2), QStringLiteral("WritePkt [ 0d00010002 ]"));
    }

    void dhcpChoiceHasItsCodes()
    {
        Panel panel;
        panel.emitParser("sgDEVICE_Set_Enter()");
        QCOMPARE(panel.code(), 6);
        QCOMPARE(panel.linesOf({"sgKEY_SELECT()"}),
                 strings({"void SetupForm::select_action()", "void MainWindow::DhcpOpened()",
                          "void SetupForm::StopTimer()"}));
        QCOMPARE(panel.code(), 7);
        QCOMPARE(panel.linesOf({"sgKEY_ESC()"}),
                 strings({"void SetupForm::esc_action()", "void MainWindow::DhcpClosed()",
                          "void SetupForm::XMLParse()"}));
        QCOMPARE(panel.code(), 6);
    }
};

VIREO_TEST_MAIN(ModeWiringTest)
#include "tst_modewiring.moc"
