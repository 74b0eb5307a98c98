#include "link/packet.h"
#include "screens/menuform.h"
#include "tests/mainwindow/listing.h"
#include "tests/mainwindow/panel.h"
#include "tests/support/configbytes.h"
#include "tests/support/ownport.h"

#include <memory>
#include <optional>

namespace {

const Listing& listing()
{
    return Listing::accepted();
}

QStringList screensOf(const QString& mode)
{
    return listing().modes().value(mode).screen.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/** What the operating-mode file held when a screen came to show. */
class FileAtShow : public QObject {
public:
    FileAtShow(QWidget* screen, const UnitRoot& unit)
        : m_unit(unit)
    {
        screen->installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Show)
            content = m_unit.readConf(QStringLiteral("oper_mode.xml"));
        return false;
    }
    QByteArray content;

private:
    const UnitRoot& m_unit;
};

/** Where an event leads as the listing has it; escape leads from the menu to where it was opened, the select
 * key to the entry in the middle: audio over Ethernet, from which the menu was opened. */
QString reaction(const QString& mode, const QString& event)
{
    const bool leavesMenu = event == QLatin1String("sgKEY_SELECT()") || event == QLatin1String("sgKEY_ESC()");
    return mode == QLatin1String("MenuMode") && leavesMenu ? QStringLiteral("AOEMode")
                                                           : listing().after(mode, event);
}

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
        for (const QString& mode : listing().modes().keys())
            QTest::newRow(qPrintable(mode)) << mode;
    }
    void everyEventInEveryMode()
    {
        QFETCH(QString, mode);
        auto panel = std::make_unique<Panel>();
        const QMetaObject& meta = PAparser::staticMetaObject;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QByteArray event = meta.method(i).methodSignature();
            panel->bringTo(mode);
            if (panel->mode() != mode) { // there is no way back to the start state
                panel.reset();
                panel = std::make_unique<Panel>();
            }
            panel->emitParser(event.constData());
            const QString expected = reaction(mode, QString::fromLatin1(event));
            QVERIFY2(panel->mode() == expected,
                     (mode.toLatin1() + " on " + event + " went to " + panel->mode().toLatin1()).constData());
            QCOMPARE(panel->screens(), screensOf(expected));
            // Opening the DHCP choice by the select key is reported by a code of its own.
            const bool dhcp = mode == QStringLiteral("SetMode") && event == "sgKEY_SELECT()";
            QCOMPARE(panel->code(),
                     dhcp ? int(ModeCode::DhcpOpened) : listing().modes().value(expected).code);
            if (dhcp)
                panel->emitParser("sgKEY_ESC()");
        }
    }

    void menuEntries()
    {
        const QMetaObject& meta = MenuForm::staticMetaObject;
        int entries = 0;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QByteArray entry = meta.method(i).methodSignature();
            if (meta.method(i).methodType() != QMetaMethod::Signal)
                continue;
            ++entries;
            Panel panel;
            // Outside the menu its signals move nothing.
            Panel::emitOf(panel.widget("wg_Menu"), entry.constData());
            QCOMPARE(panel.mode(), QStringLiteral("StartState"));
            panel.emitParser("sgKEY_LONG_SELECT()");
            Panel::emitOf(panel.widget("wg_Menu"), entry.constData());
            const QString mode = listing().after(QStringLiteral("MenuMode"), QString::fromLatin1(entry));
            QVERIFY(mode != QLatin1String("MenuMode"));
            QCOMPARE(panel.mode(), mode);
            QCOMPARE(panel.screens(), screensOf(mode));
        }
        QVERIFY(entries >= 5);
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
        for (auto mode = listing().modes().begin(); mode != listing().modes().end(); ++mode)
            if (listing().after(mode.key(), QStringLiteral("sgKEY_LONG_SELECT()"))
                    == QLatin1String("MenuMode")
                && mode.key() != QLatin1String("StartState") && mode.key() != QLatin1String("MenuMode"))
                QTest::newRow(qPrintable(mode.key())) << mode.key() << mode.key();
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
        panel.window.stackBuff(
            packetOf(Command::Device, int(wire::Source::FrontUsb) | int(wire::Source::Radio)));
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

    void operatingModeIsWrittenBeforeTheScreenShows_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QByteArray>("content");
        QTest::newRow("USB") << "USBMode" << operMode("usb");
        QTest::newRow("AOE shows first") << "AOEMode" << QByteArray();
        QTest::newRow("radio") << "IRMain" << operMode("radio");
    }
    void operatingModeIsWrittenBeforeTheScreenShows()
    {
        QFETCH(QString, mode);
        QFETCH(QByteArray, content);
        Panel panel;
        const FileAtShow file(panel.widget(screensOf(mode).first().toLatin1().constData()), panel.unit);
        panel.bringTo(mode);
        QCOMPARE(panel.screens(), screensOf(mode));
        QCOMPARE(file.content, content);
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

VIREO_PORT_TEST_MAIN(ModesTest)
#include "tst_modes.moc"
