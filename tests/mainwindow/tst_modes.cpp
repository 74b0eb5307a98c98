#include "tests/mainwindow/panel.h"
#include "tests/support/configbytes.h"
#include "tests/support/panelmain.h"

#include <optional>

namespace {

struct Reaction {
    const char* mode;
    const char* event;
    const char* next;
};

/** Where each event leads; an event without a row leaves the mode alone. */
constexpr Reaction reactions[] = {
    {"StartState", "sgDEVICE_Set_Enter()", "SetMode"},
    {"StartState", "sgDEVICE_USB_FRONT_Enter()", "USBMode"},
    {"StartState", "sgDEVICE_AOE_Enter()", "AOEMode"},
    {"StartState", "sgDEVICE_IR_Enter()", "IRMain"},
    {"StartState", "sgDEVICE_NetBGM_Enter()", "NetBGMMode"},
    {"StartState", "sgKEY_LONG_SELECT()", "MenuMode"},
    {"USBMode", "sgDEVICE_Set_Enter()", "SetMode"},
    {"USBMode", "sgDEVICE_AOE_Enter()", "AOEMode"},
    {"USBMode", "sgDEVICE_IR_Enter()", "IRMain"},
    {"USBMode", "sgDEVICE_NetBGM_Enter()", "NetBGMMode"},
    {"USBMode", "sgKEY_LONG_SELECT()", "MenuMode"},
    {"AOEMode", "sgDEVICE_Set_Enter()", "SetMode"},
    {"AOEMode", "sgDEVICE_USB_FRONT_Enter()", "USBMode"},
    {"AOEMode", "sgDEVICE_IR_Enter()", "IRMain"},
    {"AOEMode", "sgDEVICE_NetBGM_Enter()", "NetBGMMode"},
    {"AOEMode", "sgKEY_LONG_SELECT()", "MenuMode"},
    {"IRMain", "sgDEVICE_Set_Enter()", "SetMode"},
    {"IRMain", "sgDEVICE_USB_FRONT_Enter()", "USBMode"},
    {"IRMain", "sgDEVICE_AOE_Enter()", "AOEMode"},
    {"IRMain", "sgDEVICE_NetBGM_Enter()", "NetBGMMode"},
    {"IRMain", "sgKEY_SELECT()", "IRList"},
    {"IRMain", "sgKEY_LONG_SELECT()", "MenuMode"},
    {"IRList", "sgDEVICE_Set_Enter()", "SetMode"},
    {"IRList", "sgDEVICE_USB_FRONT_Enter()", "USBMode"},
    {"IRList", "sgDEVICE_AOE_Enter()", "AOEMode"},
    {"IRList", "sgDEVICE_NetBGM_Enter()", "NetBGMMode"},
    {"IRList", "sgDEVICE_IR_Enter()", "IRMain"},
    {"IRList", "sgKEY_ESC()", "IRMain"},
    {"SetMode", "sgDEVICE_USB_FRONT_Enter()", "USBMode"},
    {"SetMode", "sgDEVICE_AOE_Enter()", "AOEMode"},
    {"SetMode", "sgDEVICE_IR_Enter()", "IRMain"},
    {"SetMode", "sgDEVICE_NetBGM_Enter()", "NetBGMMode"},
    {"SetMode", "sgKEY_LONG_SELECT()", "MenuMode"},
    {"NetBGMMode", "sgDEVICE_Set_Enter()", "SetMode"},
    {"NetBGMMode", "sgDEVICE_USB_FRONT_Enter()", "USBMode"},
    {"NetBGMMode", "sgDEVICE_AOE_Enter()", "AOEMode"},
    {"NetBGMMode", "sgDEVICE_IR_Enter()", "IRMain"},
    {"NetBGMMode", "sgKEY_LONG_SELECT()", "MenuMode"},
    // The select key takes the entry in the middle, here audio over Ethernet.
    {"MenuMode", "sgDEVICE_Set_Enter()", "SetMode"},
    {"MenuMode", "sgDEVICE_USB_FRONT_Enter()", "USBMode"},
    {"MenuMode", "sgDEVICE_AOE_Enter()", "AOEMode"},
    {"MenuMode", "sgDEVICE_IR_Enter()", "IRMain"},
    {"MenuMode", "sgKEY_SELECT()", "AOEMode"},
    {"MenuMode", "sgKEY_ESC()", "AOEMode"},
};

QString reaction(const QString& mode, const QByteArray& event)
{
    for (const Reaction& each : reactions)
        if (mode == QLatin1String(each.mode) && event == each.event)
            return QString::fromLatin1(each.next);
    return mode;
}

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

QByteArray operMode(const char* word)
{
    return ConfigBytes::config({ConfigBytes::element("type", QString::fromLatin1(word))});
}

} // namespace

class ModesTest : public QObject {
    Q_OBJECT

private:
    std::optional<LogCatcher> m_silence;

private slots:
    void init() { m_silence.emplace(5); }

    void everyEventInEveryMode_data()
    {
        QTest::addColumn<QString>("mode");
        for (const QString& mode : Panel::waysTo().keys())
            QTest::newRow(qPrintable(mode)) << mode;
    }
    void everyEventInEveryMode()
    {
        QFETCH(QString, mode);
        const QMetaObject& meta = PAparser::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QByteArray event = meta.method(i).methodSignature();
            Panel panel;
            panel.bringTo(mode);
            QCOMPARE(panel.mode(), mode);
            panel.emitParser(event.constData());
            const QString expected = reaction(mode, event);
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
        panel.bringTo(QStringLiteral("IRList"));
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
        panel.bringTo(before);
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
        panel.bringTo(mode);
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
        panel.bringTo(QStringLiteral("IRList"));
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
};

VIREO_TEST_MAIN(ModesTest)
#include "tst_modes.moc"
