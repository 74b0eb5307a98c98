#include "tests/mainwindow/panel.h"
#include "tests/support/panelmain.h"

#include <QLabel>
#include <QMap>

namespace {

/** How each mode is reached from the start state. */
const QMap<QString, QList<const char*>> waysTo = {
    {QStringLiteral("StartState"), {}},
    {QStringLiteral("USBMode"), {"sgDEVICE_USB_FRONT_Enter()"}},
    {QStringLiteral("AOEMode"), {"sgDEVICE_AOE_Enter()"}},
    {QStringLiteral("IRMain"), {"sgDEVICE_IR_Enter()"}},
    {QStringLiteral("IRList"), {"sgDEVICE_IR_Enter()", "sgKEY_SELECT()"}},
    {QStringLiteral("SetMode"), {"sgDEVICE_Set_Enter()"}},
    {QStringLiteral("NetBGMMode"), {"sgDEVICE_NetBGM_Enter()"}},
    {QStringLiteral("MenuMode"), {"sgDEVICE_AOE_Enter()", "sgKEY_LONG_SELECT()"}},
};

/** Where each event leads; an event without a row leaves the mode alone. */
const QMap<QString, QMap<QString, QString>> reactions = {
    {QStringLiteral("StartState"),
     {{QStringLiteral("sgDEVICE_Set_Enter()"), QStringLiteral("SetMode")},
      {QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("USBMode")},
      {QStringLiteral("sgDEVICE_AOE_Enter()"), QStringLiteral("AOEMode")},
      {QStringLiteral("sgDEVICE_IR_Enter()"), QStringLiteral("IRMain")},
      {QStringLiteral("sgDEVICE_NetBGM_Enter()"), QStringLiteral("NetBGMMode")},
      {QStringLiteral("sgKEY_LONG_SELECT()"), QStringLiteral("MenuMode")}}},
    {QStringLiteral("USBMode"),
     {{QStringLiteral("sgDEVICE_Set_Enter()"), QStringLiteral("SetMode")},
      {QStringLiteral("sgDEVICE_AOE_Enter()"), QStringLiteral("AOEMode")},
      {QStringLiteral("sgDEVICE_IR_Enter()"), QStringLiteral("IRMain")},
      {QStringLiteral("sgDEVICE_NetBGM_Enter()"), QStringLiteral("NetBGMMode")},
      {QStringLiteral("sgKEY_LONG_SELECT()"), QStringLiteral("MenuMode")}}},
    {QStringLiteral("AOEMode"),
     {{QStringLiteral("sgDEVICE_Set_Enter()"), QStringLiteral("SetMode")},
      {QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("USBMode")},
      {QStringLiteral("sgDEVICE_IR_Enter()"), QStringLiteral("IRMain")},
      {QStringLiteral("sgDEVICE_NetBGM_Enter()"), QStringLiteral("NetBGMMode")},
      {QStringLiteral("sgKEY_LONG_SELECT()"), QStringLiteral("MenuMode")}}},
    {QStringLiteral("IRMain"),
     {{QStringLiteral("sgDEVICE_Set_Enter()"), QStringLiteral("SetMode")},
      {QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("USBMode")},
      {QStringLiteral("sgDEVICE_AOE_Enter()"), QStringLiteral("AOEMode")},
      {QStringLiteral("sgDEVICE_NetBGM_Enter()"), QStringLiteral("NetBGMMode")},
      {QStringLiteral("sgKEY_SELECT()"), QStringLiteral("IRList")},
      {QStringLiteral("sgKEY_LONG_SELECT()"), QStringLiteral("MenuMode")}}},
    {QStringLiteral("IRList"),
     {{QStringLiteral("sgDEVICE_Set_Enter()"), QStringLiteral("SetMode")},
      {QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("USBMode")},
      {QStringLiteral("sgDEVICE_AOE_Enter()"), QStringLiteral("AOEMode")},
      {QStringLiteral("sgDEVICE_NetBGM_Enter()"), QStringLiteral("NetBGMMode")},
      {QStringLiteral("sgDEVICE_IR_Enter()"), QStringLiteral("IRMain")},
      {QStringLiteral("sgKEY_ESC()"), QStringLiteral("IRMain")}}},
    {QStringLiteral("SetMode"),
     {{QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("USBMode")},
      {QStringLiteral("sgDEVICE_AOE_Enter()"), QStringLiteral("AOEMode")},
      {QStringLiteral("sgDEVICE_IR_Enter()"), QStringLiteral("IRMain")},
      {QStringLiteral("sgDEVICE_NetBGM_Enter()"), QStringLiteral("NetBGMMode")},
      {QStringLiteral("sgKEY_LONG_SELECT()"), QStringLiteral("MenuMode")}}},
    {QStringLiteral("NetBGMMode"),
     {{QStringLiteral("sgDEVICE_Set_Enter()"), QStringLiteral("SetMode")},
      {QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("USBMode")},
      {QStringLiteral("sgDEVICE_AOE_Enter()"), QStringLiteral("AOEMode")},
      {QStringLiteral("sgDEVICE_IR_Enter()"), QStringLiteral("IRMain")},
      {QStringLiteral("sgKEY_LONG_SELECT()"), QStringLiteral("MenuMode")}}},
    // The select key takes the entry in the middle, here audio over Ethernet.
    {QStringLiteral("MenuMode"),
     {{QStringLiteral("sgDEVICE_Set_Enter()"), QStringLiteral("SetMode")},
      {QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("USBMode")},
      {QStringLiteral("sgDEVICE_AOE_Enter()"), QStringLiteral("AOEMode")},
      {QStringLiteral("sgDEVICE_IR_Enter()"), QStringLiteral("IRMain")},
      {QStringLiteral("sgKEY_SELECT()"), QStringLiteral("AOEMode")},
      {QStringLiteral("sgKEY_ESC()"), QStringLiteral("AOEMode")}}},
};

struct Showing {
    QStringList screens;
    int code;
};

const QMap<QString, Showing> showings = {
    {QStringLiteral("StartState"), {{}, 255}},
    {QStringLiteral("USBMode"), {{QStringLiteral("wg_USB")}, 1}},
    {QStringLiteral("AOEMode"), {{QStringLiteral("wg_AOE")}, 2}},
    {QStringLiteral("IRList"), {{QStringLiteral("wg_IRList")}, 3}},
    {QStringLiteral("IRMain"), {{QStringLiteral("wg_IR")}, 4}},
    {QStringLiteral("NetBGMMode"), {{QStringLiteral("wg_NetBGM")}, 5}},
    {QStringLiteral("SetMode"), {{QStringLiteral("wg_Setting")}, 6}},
    {QStringLiteral("MenuMode"), {{QStringLiteral("wg_Menu")}, 0}},
};

void bringTo(Panel& panel, const QString& mode)
{
    for (const char* signal : waysTo.value(mode))
        panel.emitParser(signal);
}

QByteArray operMode(const char* word)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>\n    <type>") + word
        + "</type>\n</config>\n";
}

QStringList linesOf(Panel& panel, std::initializer_list<const char*> signals_)
{
    LogCatcher log(0);
    for (const char* signal : signals_)
        panel.emitParser(signal);
    QStringList lines = log.plain();
    lines.erase(std::remove_if(lines.begin(), lines.end(),
                               [](const QString& line) { return line.startsWith(QStringLiteral("E ")); }),
                lines.end());
    return lines;
}

QStringList list(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* text : texts)
        result << QString::fromLatin1(text);
    return result;
}

} // namespace

class ModesTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m_silence = std::make_unique<LogCatcher>(5); }
    void cleanup() { m_silence.reset(); }

    void startsWithTheLogoAlone()
    {
        Panel panel;
        QCOMPARE(panel.mode(), QStringLiteral("StartState"));
        QCOMPARE(panel.screens(), QStringList());
        QCOMPARE(panel.window.size(), QSize(320, 240));
        QVERIFY(panel.window.windowFlags().testFlag(Qt::FramelessWindowHint));
        QVERIFY(!panel.widget("lb_MainOrvane")->isHidden());
        for (const char* overlay : {"lbl_background_alpha", "lb_sysup", "lb_sysup_bot", "lb_sysup_msg"})
            QVERIFY(panel.window.centralWidget()
                        ->findChild<QWidget*>(QString::fromLatin1(overlay), Qt::FindDirectChildrenOnly)
                        ->isHidden());
        QVERIFY(panel.unit.readConf(QStringLiteral("oper_mode.xml")).isEmpty());
    }

    void stackOfTheScreens()
    {
        Panel panel;
        QStringList names;
        for (const QObject* child : panel.window.centralWidget()->children()) {
            if (child->isWidgetType())
                names << child->objectName();
        }
        QCOMPARE(names,
                 list({"lb_MainOrvane", "wg_USB", "wg_IR", "wg_AOE", "wg_Setting", "wg_Menu", "wg_NetBGM",
                       "wg_IRList", "lbl_background_alpha", "lb_sysup", "lb_sysup_msg", "lb_sysup_bot"}));
    }

    void layout_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QRect>("box");
        QTest::addColumn<QString>("style");
        for (const char* screen :
             {"wg_USB", "wg_IR", "wg_AOE", "wg_Setting", "wg_Menu", "wg_NetBGM", "wg_IRList"})
            QTest::newRow(screen) << screen << QRect(0, 0, 320, 240) << QString();
        QTest::newRow("veil") << "lbl_background_alpha" << QRect(0, 0, 320, 240)
                              << "background-color: rgba(45, 45, 45, 200);";
        QTest::newRow("upgrade head") << "lb_sysup" << QRect(30, 50, 246, 24) << QString();
        QTest::newRow("upgrade foot") << "lb_sysup_bot" << QRect(25, 150, 269, 26) << QString();
        QTest::newRow("upgrade text")
            << "lb_sysup_msg" << QRect(30, 102, 260, 20) << "color: rgb(175, 227, 255);";
        QTest::newRow("logo") << "lb_MainOrvane" << QRect(0, 0, 320, 240) << QString();
    }
    void layout()
    {
        QFETCH(QString, name);
        QFETCH(QRect, box);
        QFETCH(QString, style);
        Panel panel;
        const auto* widget =
            panel.window.centralWidget()->findChild<QWidget*>(name, Qt::FindDirectChildrenOnly);
        QVERIFY(widget);
        QCOMPARE(widget->geometry(), box);
        QCOMPARE(widget->styleSheet(), style);
    }

    void everyEventInEveryMode_data()
    {
        QTest::addColumn<QString>("mode");
        for (const QString& mode : waysTo.keys())
            QTest::newRow(qPrintable(mode)) << mode;
    }
    void everyEventInEveryMode()
    {
        QFETCH(QString, mode);
        const QMetaObject& meta = PAparser::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QByteArray event = meta.method(i).methodSignature();
            Panel panel;
            bringTo(panel, mode);
            QCOMPARE(panel.mode(), mode);
            panel.emitParser(event.constData());
            const QString expected = reactions.value(mode).value(QString::fromLatin1(event), mode);
            QVERIFY2(panel.mode() == expected,
                     (mode.toLatin1() + " on " + event + " went to " + panel.mode().toLatin1()).constData());
            QCOMPARE(panel.screens(), showings.value(expected).screens);
            // Opening the DHCP choice by the select key is reported by a code of its own.
            const bool dhcp = mode == QStringLiteral("SetMode") && event == "sgKEY_SELECT()";
            QCOMPARE(panel.code(), dhcp ? 7 : showings.value(expected).code);
        }
    }

    void menuEntries_data()
    {
        QTest::addColumn<QByteArray>("entry");
        QTest::addColumn<QString>("mode");
        QTest::newRow("USB") << QByteArray("sgUSBMode()") << "USBMode";
        QTest::newRow("AOE") << QByteArray("sgAOEMode()") << "AOEMode";
        QTest::newRow("internet radio") << QByteArray("sgIRMode()") << "IRMain";
        QTest::newRow("setup") << QByteArray("sgSetupMode()") << "SetMode";
        QTest::newRow("NetBGM") << QByteArray("sgNetBGMMode()") << "NetBGMMode";
    }
    void menuEntries()
    {
        QFETCH(QByteArray, entry);
        QFETCH(QString, mode);
        Panel panel;
        // Outside the menu its signals move nothing.
        Panel::emitOf(panel.widget("wg_Menu"), entry.constData());
        QCOMPARE(panel.mode(), QStringLiteral("StartState"));
        panel.emitParser("sgKEY_LONG_SELECT()");
        Panel::emitOf(panel.widget("wg_Menu"), entry.constData());
        QCOMPARE(panel.mode(), mode);
        QCOMPARE(panel.screens(), showings.value(mode).screens);
    }

    void stationListSignalsBackOnlyFromTheList()
    {
        Panel panel;
        panel.emitParser("sgDEVICE_AOE_Enter()");
        Panel::emitOf(panel.widget("wg_IRList"), "sgSetMain()");
        QCOMPARE(panel.mode(), QStringLiteral("AOEMode"));
        bringTo(panel, QStringLiteral("IRList"));
        Panel::emitOf(panel.widget("wg_IRList"), "sgSetMain()");
        QCOMPARE(panel.mode(), QStringLiteral("IRMain"));
    }

    void escapeFromTheMenuReturns_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("start state: nothing to return to, so setup") << "StartState"
                                                                     << "SetMode";
        QTest::newRow("USB") << "USBMode"
                             << "USBMode";
        QTest::newRow("AOE") << "AOEMode"
                             << "AOEMode";
        QTest::newRow("radio") << "IRMain"
                               << "IRMain";
        QTest::newRow("setup") << "SetMode"
                               << "SetMode";
        QTest::newRow("NetBGM") << "NetBGMMode"
                                << "NetBGMMode";
    }
    void escapeFromTheMenuReturns()
    {
        QFETCH(QString, before);
        QFETCH(QString, after);
        Panel panel;
        bringTo(panel, before);
        panel.emitParser("sgKEY_LONG_SELECT()");
        QCOMPARE(panel.mode(), QStringLiteral("MenuMode"));
        panel.emitParser("sgKEY_ESC()");
        QCOMPARE(panel.mode(), after);
        // And again: the way through the menu does not change what is remembered.
        panel.emitParser("sgKEY_LONG_SELECT()");
        panel.emitParser("sgKEY_ESC()");
        QCOMPARE(panel.mode(), after);
    }

    void startStateIsForgottenOnceAModeWasActive()
    {
        Panel panel;
        panel.emitParser("sgKEY_LONG_SELECT()");
        panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
        panel.emitParser("sgKEY_LONG_SELECT()");
        panel.emitParser("sgKEY_ESC()");
        QCOMPARE(panel.mode(), QStringLiteral("USBMode"));
    }

    void deviceBitsAreTakenInTheirOrder()
    {
        Panel panel;
        // Front USB and radio at once: first USB, then the radio.
        panel.window.stackBuff(QByteArray::fromHex("0700010009"));
        QCOMPARE(panel.mode(), QStringLiteral("IRMain"));
        QCOMPARE(panel.unit.readConf(QStringLiteral("oper_mode.xml")), operMode("radio"));
    }

    void operatingModeFile_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("USB") << "USBMode" << operMode("usb");
        QTest::newRow("AOE") << "AOEMode" << operMode("aoe");
        QTest::newRow("radio") << "IRMain" << operMode("radio");
        QTest::newRow("setup writes none") << "SetMode" << QByteArray();
        QTest::newRow("NetBGM writes none") << "NetBGMMode" << QByteArray();
    }
    void operatingModeFile()
    {
        QFETCH(QString, mode);
        QFETCH(QByteArray, content);
        Panel panel;
        bringTo(panel, mode);
        QCOMPARE(panel.unit.readConf(QStringLiteral("oper_mode.xml")), content);
        // The menu leaves it alone; coming back writes it whole again.
        panel.unit.writeConf(QStringLiteral("oper_mode.xml"),
                             "a longer text than the file would ever hold "
                             "<type>usb</type><type>usb</type><type>usb</type>");
        const QByteArray before = panel.unit.readConf(QStringLiteral("oper_mode.xml"));
        panel.emitParser("sgKEY_LONG_SELECT()");
        QCOMPARE(panel.unit.readConf(QStringLiteral("oper_mode.xml")), before);
        panel.emitParser("sgKEY_ESC()");
        QCOMPARE(panel.unit.readConf(QStringLiteral("oper_mode.xml")), content.isEmpty() ? before : content);
    }

    void stationListLeavesTheOperatingModeAndReturningWritesIt()
    {
        Panel panel;
        bringTo(panel, QStringLiteral("IRList"));
        panel.unit.writeConf(QStringLiteral("oper_mode.xml"), "x");
        panel.emitParser("sgKEY_ESC()");
        QCOMPARE(panel.unit.readConf(QStringLiteral("oper_mode.xml")), operMode("radio"));
    }

    void missingFolderIsLoggedAndTheModeChanges()
    {
        Panel panel;
        QVERIFY(QDir(panel.unit.path(QStringLiteral("/opt/orvane/conf"))).removeRecursively());
        LogCatcher log(4);
        panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
        QCOMPARE(log.plain(), QStringList(QStringLiteral("E No such file or directory")));
        QCOMPARE(panel.mode(), QStringLiteral("USBMode"));
    }

    void linesOfEachMode()
    {
        Panel panel;
        QCOMPARE(linesOf(panel, {"sgDEVICE_USB_FRONT_Enter()"}),
                 list({"void MainWindow::USBModeEntered()", "void mp3_lcd::initLevel()",
                       "void MenuForm::setCurrentIdx(MENUIDX)", "void AOEForm::showStop()"}));
        QCOMPARE(linesOf(panel, {"sgDEVICE_AOE_Enter()"}),
                 list({"void MainWindow::USBModeExited()", "void MenuForm::setPrevMode(MENUIDX)",
                       "void mp3_lcd::showTime(QString)", "void MainWindow::AOEModeEntered()",
                       "void AOEForm::initLevel()", "void MenuForm::setCurrentIdx(MENUIDX)"}));
        QCOMPARE(linesOf(panel, {"sgDEVICE_IR_Enter()"}),
                 list({"void MainWindow::AOEModeExited()", "void MenuForm::setPrevMode(MENUIDX)",
                       "void MainWindow::IRModeEntered()", "void MenuForm::setCurrentIdx(MENUIDX)",
                       "void MainWindow::IRMainEntered()", "void IRForm::initLevel()",
                       "void IRForm::showStop()", "void AOEForm::showStop()"}));
        const QStringList toList = linesOf(panel, {"sgKEY_SELECT()"});
        QCOMPARE(toList.mid(0, 4),
                 list({"void MainWindow::IRMainExited()", "void MainWindow::IRListEntered()",
                       "void RadioListForm::XMLParse()", "void RadioListForm::RadioInfoFromXML(QString)"}));
        QCOMPARE(toList.mid(toList.size() - 2),
                 list({"void RadioListForm::InitList()", "void RadioListForm::SetCurrentIndexFromXML()"}));
        QCOMPARE(linesOf(panel, {"sgKEY_ESC()"}).mid(0, 2),
                 list({"void MainWindow::IRListExited()", "void MainWindow::IRMainEntered()"}));
        QCOMPARE(linesOf(panel, {"sgKEY_LONG_SELECT()"}),
                 list({"void MainWindow::IRMainExited()", "void MainWindow::IRModeExited()",
                       "void MenuForm::setPrevMode(MENUIDX)", "void MainWindow::MenuModeEntered()"}));
        QCOMPARE(linesOf(panel, {"sgDEVICE_Set_Enter()"}),
                 list({"void MainWindow::MenuModeExited()", "void MainWindow::SetModeEntered()",
                       "void SetupForm::TimerStart()", "void SetupForm::XMLParse()",
                       "void MenuForm::setCurrentIdx(MENUIDX)"}));
        QCOMPARE(linesOf(panel, {"sgDEVICE_NetBGM_Enter()"}),
                 list({"void MainWindow::SetModeExited()", "void MenuForm::setPrevMode(MENUIDX)",
                       "void SetupForm::StopTimer()", "void MainWindow::NetBGMModeEntered()",
                       "void MenuForm::setCurrentIdx(MENUIDX)", "void AOEForm::showStop()"}));
        // NetBGM is not remembered as the mode before the menu: it sets the menu's index instead.
        QCOMPARE(linesOf(panel, {"sgKEY_LONG_SELECT()"}),
                 list({"void MainWindow::NetBGMModeExited()", "void MenuForm::setCurrentIdx(MENUIDX)",
                       "void MainWindow::MenuModeEntered()"}));
    }

    void inputReachesOnlyTheScreenThatShows_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("start") << "StartState" << QStringList();
        QTest::newRow("USB") << "USBMode"
                             << list({"void mp3_lcd::showTime(QString)",
                                      "void mp3_lcd::showLevel(unsigned char)", "void mp3_lcd::initLevel()",
                                      "void mp3_lcd::next_action()", "void mp3_lcd::prev_action()"});
        QTest::newRow("radio") << "IRMain"
                               << list({"void IRForm::showLevel(unsigned char)", "void IRForm::initLevel()",
                                        "void IRForm::showIRInfo(QString, QString)",
                                        "void IRForm::showPlay()"});
        QTest::newRow("station list")
            << "IRList"
            << list({"void RadioListForm::up_action()", "currentIndex [ -1 ] ", "NextIndex [ -2 ] ",
                     "void RadioListForm::down_action()", "currentIndex [ -1 ] ", "NextIndex [ 0 ] "});
        QTest::newRow("NetBGM takes none") << "NetBGMMode" << QStringList();
        QTest::newRow("menu") << "MenuMode"
                              << list({"void MenuForm::prev_action()", "void MenuForm::next_action()"});
    }
    void inputReachesOnlyTheScreenThatShows()
    {
        QFETCH(QString, mode);
        QFETCH(QStringList, lines);
        Panel panel;
        bringTo(panel, mode);
        const QStringList seen =
            linesOf(panel,
                    {"sgPlayTime(QString)", "sgMasterLevel(uchar)", "sgKEY_NEXT()", "sgKEY_PREV()",
                     "sgIRInfo(QString,QString)", "sgEncLeft()", "sgEncRight()"});
        QCOMPARE(seen, lines);
    }

    void connectionInfoReachesTheScreenOnlyInItsMode()
    {
        Panel panel;
        QCOMPARE(linesOf(panel,
                         {"sgAoeInfo(QString,QString)", "sgAOE_STAT_OK()", "sgAOE_STAT_FAIL()",
                          "sgAOE_STAT_OVER()"}),
                 QStringList());
        QCOMPARE(linesOf(panel, {"sgAOE_STAT_STOP()"}), list({"void AOEForm::showStop()"}));
        panel.emitParser("sgDEVICE_AOE_Enter()");
        const QStringList play = list({"void AOEForm::showPlay()", "void AOEForm::AoeInfoFromXML()"});
        QCOMPARE(linesOf(panel, {"sgAoeInfo(QString,QString)"}),
                 list({"void AOEForm::showAoeInfo(QString, QString)"}) + play);
        QCOMPARE(linesOf(panel, {"sgAOE_STAT_OK()"}), play);
        QCOMPARE(linesOf(panel, {"sgAOE_STAT_FAIL()"}), list({"void AOEForm::showFailMSG()"}));
        QCOMPARE(linesOf(panel, {"sgAOE_STAT_OVER()"}), list({"void AOEForm::showOVERMSG()"}));
        QCOMPARE(linesOf(panel, {"sgAOE_STAT_STOP()"}), list({"void AOEForm::showStop()"}));
        panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
        QCOMPARE(linesOf(panel, {"sgAOE_STAT_OK()"}), QStringList());
    }

    void playerFollowsInEveryMode()
    {
        Panel panel;
        panel.emitParser("sgDEVICE_AOE_Enter()");
        QCOMPARE(linesOf(panel,
                         {"sgKEY_PLAY()", "sgKEY_PAUSE()", "sgKEY_PLAY_PAUSE()", "sgKEY_STOP()",
                          "sgDiskStatNormal()", "sgDiskRemoved()", "sgDiskInfo(QString,QString)",
                          "sgDEVICE_USB_STREAM_Enter()", "sgDEVICE_USB_STREAM_Exit()", "sgMode_All()",
                          "sgMode_Folder()", "sgMode_One()", "sgMode_rpt_All()", "sgMode_rpt_Folder()",
                          "sgMode_rpt_One()", "sgMode_shuffle()", "sgMode_off_Shuffle()"}),
                 list({"void mp3_lcd::play_action()", "void mp3_lcd::pause_action()",
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
        QCOMPARE(linesOf(panel, {"sgDEVICE_USB_FRONT_Enter()"}), QStringList());
        QCOMPARE(time->text(), QStringLiteral("01:23:45"));
        panel.emitParser("sgDEVICE_AOE_Enter()");
        QCOMPARE(time->text(), QStringLiteral("00:00:00"));
        panel.window.stackBuff(QByteArray::fromHex("02000300012345"));
        QCOMPARE(time->text(), QStringLiteral("00:00:00"));
    }

    void upgradeOverlay()
    {
        Panel panel;
        auto* central = panel.window.centralWidget();
        const auto hidden = [central] {
            QList<bool> result;
            for (const char* name : {"lbl_background_alpha", "lb_sysup", "lb_sysup_bot", "lb_sysup_msg"})
                result << central->findChild<QWidget*>(QString::fromLatin1(name), Qt::FindDirectChildrenOnly)
                              ->isHidden();
            return result;
        };
        panel.window.stackBuff(QByteArray::fromHex("0f00010001"));
        QCOMPARE(hidden(), QList<bool>({false, false, false, false}));
        panel.window.stackBuff(QByteArray::fromHex("10000400") + "<b>x");
        auto* text = panel.window.findChild<QLabel*>(QStringLiteral("lb_sysup_msg"));
        QCOMPARE(text->text(), QStringLiteral("<b>x"));
        QCOMPARE(text->textFormat(), Qt::PlainText);
        QCOMPARE(text->font().pointSize(), 14);
        QCOMPARE(text->font().family(), QStringLiteral("Unifont"));
        // Modes change beneath it.
        panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
        QCOMPARE(hidden(), QList<bool>({false, false, false, false}));
        panel.window.stackBuff(QByteArray::fromHex("0f00010002"));
        QCOMPARE(hidden(), QList<bool>({true, true, true, true}));
    }

    void controlCharactersOfTheUpgradeMessageDrawNothing()
    {
        Panel panel;
        auto* text = panel.window.findChild<QLabel*>(QStringLiteral("lb_sysup_msg"));
        panel.window.stackBuff(QByteArray::fromHex("10000300") + "50%");
        const QImage plain = text->grab().toImage();
        panel.window.stackBuff(QByteArray::fromHex("10000500") + "5\r0%\x07");
        QCOMPARE(text->text(), QStringLiteral("5\r0%\x07"));
        QCOMPARE(text->grab().toImage(), plain);
        text->clear();
        QVERIFY(text->grab().toImage() != plain);
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
        QCOMPARE(linesOf(panel, {"sgKEY_SELECT()"}),
                 list({"void SetupForm::select_action()", "void MainWindow::DhcpOpened()",
                       "void SetupForm::StopTimer()"}));
        QCOMPARE(panel.code(), 7);
        QCOMPARE(linesOf(panel, {"sgKEY_ESC()"}),
                 list({"void SetupForm::esc_action()", "void MainWindow::DhcpClosed()",
                       "void SetupForm::XMLParse()"}));
        QCOMPARE(panel.code(), 6);
    }

    void networkRestart_data()
    {
        QTest::addColumn<QByteArray>("command");
        QTest::addColumn<bool>("runs");
        QTest::newRow("takes time") << QByteArray("#!/bin/sh\nsleep 0.3\necho \"$@\" > \"$0.ran\"\n") << true;
        QTest::newRow("fails") << QByteArray("#!/bin/sh\necho \"$@\" > \"$0.ran\"\nexit 3\n") << true;
        QTest::newRow("floods its output")
            << QByteArray("#!/bin/sh\nhead -c 50000000 /dev/zero\necho \"$@\" > \"$0.ran\"\n") << true;
        QTest::newRow("missing") << QByteArray() << false;
    }
    void networkRestart()
    {
        QFETCH(QByteArray, command);
        QFETCH(bool, runs);
        Panel panel;
        const QString path = panel.unit.path(QStringLiteral("/etc/rc.d/init.d/network"));
        if (runs) {
            UnitRoot::write(path, command);
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        }
        panel.emitParser("sgDEVICE_Set_Enter()");
        LogCatcher log(0);
        Panel::emitOf(panel.widget("wg_Setting"), "sgLoadingMode()");
        QStringList lines = log.plain();
        lines.removeAll(QStringLiteral("E XML [No such file or directory]"));
        QCOMPARE(lines,
                 list({"void MainWindow::LoadingModeEntered()", "void SetupForm::StopTimer()",
                       "void MainWindow::LoadingModeExited()", "void SetupForm::ReloadPage()",
                       "void SetupForm::XMLParse()"}));
        QCOMPARE(UnitRoot::read(path + QStringLiteral(".ran")),
                 runs ? QByteArray("restart\n") : QByteArray());
        // The setup screen has its input back.
        log.clear();
        panel.emitParser("sgKEY_ESC()");
        QCOMPARE(log.plain(), list({"void SetupForm::esc_action()"}));
    }

    void hangingNetworkRestartIsGivenUpAfterHalfAMinute()
    {
        Panel panel;
        const QString path = panel.unit.path(QStringLiteral("/etc/rc.d/init.d/network"));
        UnitRoot::write(path, "#!/bin/sh\nexec sleep 300\n");
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        panel.emitParser("sgDEVICE_Set_Enter()");
        QElapsedTimer timer;
        timer.start();
        Panel::emitOf(panel.widget("wg_Setting"), "sgLoadingMode()");
        QVERIFY(timer.elapsed() >= 30000);
        QCOMPARE(panel.screens(), list({"wg_Setting"}));
        QTest::qWait(100);
    }

    void stationSlotsOfThePastKeepTheirTexts()
    {
        Panel panel;
        LogCatcher log(0);
        panel.window.setIRTitle(QStringLiteral("t"));
        panel.window.setIRUrl(QStringLiteral("u"));
        QCOMPARE(log.lines(),
                 list({"void MainWindow::setIRTitle(QString)", "void MainWindow::setIRUrl(QString)"}));
    }

private:
    std::unique_ptr<LogCatcher> m_silence;
};

VIREO_TEST_MAIN(ModesTest)
#include "tst_modes.moc"
