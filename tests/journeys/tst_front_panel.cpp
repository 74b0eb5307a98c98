#include "tests/journeys/panelprocess.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"
#include "tests/tools/windowhand.h"
#include "tools/supervisor/encoderknob.h"
#include "tools/supervisor/keybutton.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>

#include <memory>
#include <optional>

namespace {

/** The demo unit, whole, in a place of the test's own. */
struct DemoUnit {
    DemoUnit()
    {
        if (QProcess::execute(QStringLiteral("cp"),
                              {QStringLiteral("-r"),
                               QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/root/."), root.path({})}))
            qFatal("cannot copy the demo unit");
    }
    UnitRoot root;
};

/** The real panel and, in this process, the window of the stand-in supervisor, joined by the real link. */
struct Unit {
    Unit()
    {
        startPanel();
        window = std::make_unique<SupervisorWindow>(QStringLiteral("127.0.0.1"), tcp_server::port);
        window->show();
        window->activateWindow();
    }
    void startPanel() { panel.emplace(QStringList{QStringLiteral("2")}); }

    template <typename Widget> Widget* child(const char* name)
    {
        return WindowHand::child<Widget>(*window, name);
    }
    void key(const char* name) { QTest::mouseClick(child<KeyButton>(name), Qt::LeftButton); }
    void turn(int notches) { WindowHand::wheel(child<EncoderKnob>("encoder"), 120 * notches); }
    void pressLong(const char* name)
    {
        auto* button = child<QWidget>(name);
        QTest::mousePress(button, Qt::LeftButton);
        WindowHand::fire(button->findChild<QTimer*>(QStringLiteral("hold")));
        QTest::mouseRelease(button, Qt::LeftButton);
    }
    /** Whether the window comes to name this mode, as the panel has answered. */
    bool shows(const char* mode)
    {
        const QString wanted = QStringLiteral("Mode: ") + QLatin1String(mode);
        const bool shown = QTest::qWaitFor([&] { return child<QLabel>("mode")->text() == wanted; }, 10000);
        if (!shown)
            qDebug() << child<QLabel>("mode")->text() << child<QLabel>("link")->text();
        return shown;
    }
    bool prints(const QString& text)
    {
        return QTest::qWaitFor(
            [&] {
                const QStringList lines = panel->lines();
                return std::any_of(lines.begin(), lines.end(),
                                   [&](const QString& line) { return line.contains(text); });
            },
            10000);
    }

    DemoUnit demoUnit;
    std::optional<PanelProcess> panel;
    std::unique_ptr<SupervisorWindow> window;
};

} // namespace

/** What somebody does who has only the stand-in supervisor's window and the panel beside it. */
class FrontPanelTest : public QObject {
    Q_OBJECT

private slots:
    void everyModeIsReachedByHand()
    {
        Unit unit;
        QVERIFY(unit.shows("none"));
        QTest::mouseClick(unit.child<QCheckBox>("usb"), Qt::LeftButton, Qt::NoModifier, QPoint(5, 8));
        QVERIFY(unit.shows("usb"));
        unit.pressLong("encoder");
        QVERIFY(unit.shows("menu"));
        unit.turn(1);
        QTest::mouseClick(unit.child<EncoderKnob>("encoder"), Qt::LeftButton);
        QVERIFY(unit.shows("aoe"));
        unit.pressLong("select");
        QVERIFY(unit.shows("menu"));
        QTest::keyClick(unit.child<EncoderKnob>("encoder"), Qt::Key_Right);
        unit.key("select");
        QVERIFY(unit.shows("radio"));
        unit.key("select");
        QVERIFY(unit.shows("radio-list"));
        unit.key("esc");
        QVERIFY(unit.shows("radio"));
        for (const char* next : {"netbgm", "setup"}) {
            unit.pressLong("encoder");
            QVERIFY(unit.shows("menu"));
            unit.turn(1);
            unit.key("select");
            QVERIFY(unit.shows(next));
        }
        unit.key("select");
        QVERIFY(unit.shows("dhcp"));
        unit.key("esc");
        QVERIFY(unit.shows("setup"));
    }

    void aStationIsChosenFromTheList()
    {
        Unit unit;
        QVERIFY(unit.shows("none"));
        unit.child<QCheckBox>("ir")->click();
        QVERIFY(unit.shows("radio"));
        unit.key("select");
        QVERIFY(unit.shows("radio-list"));
        unit.turn(1);
        unit.key("select");
        QVERIFY(unit.shows("radio"));
        const QByteArray chosen = unit.demoUnit.root.readConf(QStringLiteral("radio.xml"));
        QVERIFY2(chosen.contains("<name>Harbour Morning News</name>"), chosen.constData());
    }

    void musicIsShownTrackAfterTrack()
    {
        Unit unit;
        QVERIFY(unit.shows("none"));
        WindowHand::openDemoMusic(*unit.window);
        QVERIFY(unit.shows("usb"));
        unit.key("play-pause");
        QVERIFY(unit.prints(QStringLiteral("MP3 Tag (utf-16)[ Small Hours ]")));
        QVERIFY(unit.prints(QStringLiteral("Album Art Image OK")));
        unit.key("next");
        QVERIFY(unit.prints(QStringLiteral("sunset-walk.flac")));
        QVERIFY(unit.shows("usb"));
    }

    void aPanelThatComesBackIsToldEverythingAgain()
    {
        Unit unit;
        QVERIFY(unit.shows("none"));
        WindowHand::openDemoMusic(*unit.window);
        QVERIFY(unit.shows("usb"));
        unit.panel.reset();
        QTRY_VERIFY(unit.child<QLabel>("link")->text().startsWith(QLatin1String("No link")));
        unit.startPanel();
        QTRY_VERIFY_WITH_TIMEOUT(unit.child<QLabel>("link")->text().startsWith(QLatin1String("Connected")),
                                 20000);
        QVERIFY(unit.shows("usb"));
    }

    void noticesReachThePanel()
    {
        Unit unit;
        QVERIFY(unit.shows("none"));
        unit.child<QCheckBox>("aoe")->click();
        QVERIFY(unit.shows("aoe"));
        for (const char* notice :
             {"aoe ok", "aoe over", "aoe fail", "aoe stop", "upgrade start", "upgrade fail"}) {
            unit.child<QPushButton>(notice)->click();
            QVERIFY(unit.shows("aoe"));
        }
        QVERIFY(unit.panel->isRunning());
    }
};

VIREO_PORT_TEST_MAIN(FrontPanelTest)
#include "tst_front_panel.moc"
