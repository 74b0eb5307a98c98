#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tests/support/strings.h"

#include <QLabel>

#include <optional>

class ModeWiringTest : public QObject {
    Q_OBJECT

private:
    std::optional<LogCatcher> m_silence;

private slots:
    void init() { m_silence.emplace(5); }

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

VIREO_PORT_TEST_MAIN(ModeWiringTest)
#include "tst_modewiring.moc"
