#include "tests/support/panelmain.h"
#include "tests/tools/fakepanel.h"
#include "tests/tools/supervisorrun.h"
#include "tools/supervisor/commandline.h"
#include "tools/supervisor/encoderknob.h"
#include "tools/supervisor/frontpanel.h"
#include "tools/supervisor/keybutton.h"
#include "tools/supervisor/script.h"
#include "tools/supervisor/supervisorwindow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QStatusBar>
#include <QTabWidget>
#include <QWheelEvent>

/** Lets a running timer come to its end now. */
static void fire(QTimer* timer)
{
    QVERIFY(timer && timer->isActive());
    QTimerEvent event(timer->timerId());
    QCoreApplication::sendEvent(timer, &event);
}

/** The window on a panel of the test's own. */
struct Stage {
    Stage()
        : window(QStringLiteral("127.0.0.1"), panel.port())
    {
        window.show();
        window.activateWindow();
        panel.mode = 1;
    }

    bool isUp()
    {
        return QTest::qWaitFor([this] { return text("mode") == QLatin1String("Mode: usb"); });
    }

    /** Whether the panel has received these words and nothing else but questions for the mode. */
    bool hears(const QStringList& lines)
    {
        QByteArray expected;
        for (const QString& line : lines)
            expected += parseWords(splitLine(line).words).action.packet;
        const QByteArray mark = QByteArray::fromHex("0400010063"); // behind all that was sent before
        emit window.findChild<FrontPanel*>()->said({QStringLiteral("level"), QStringLiteral("99")});
        const bool arrived = QTest::qWaitFor([&] { return panel.packets.contains(mark); });
        panel.packets.removeAll(mark);
        const QByteArray heard = panel.packetsButRequests().join();
        panel.packets.clear();
        if (heard != expected)
            qDebug() << "heard" << heard.toHex(' ') << "instead of" << expected.toHex(' ');
        return arrived && heard == expected;
    }
    bool hears(const char* line) { return hears(QStringList{QString::fromLatin1(line)}); }

    template <typename Widget> Widget* child(const char* name)
    {
        auto* found = window.findChild<Widget*>(QString::fromLatin1(name));
        if (!found)
            qFatal("the window has no %s", name);
        return found;
    }
    EncoderKnob* knob() { return child<EncoderKnob>("encoder"); }
    QString text(const char* label) { return child<QLabel>(label)->text(); }
    QTimer* timer(const char* name) { return child<QTimer>(name); }
    void openDemoMusic()
    {
        auto* folder = child<QLineEdit>("folder");
        folder->setText(QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/music"));
        QTest::keyClick(folder, Qt::Key_Return);
    }

    FakePanel panel;
    SupervisorWindow window;
};

class WindowTest : public QObject {
    Q_OBJECT

private:
    static QString fileLine(const char* name)
    {
        return QStringLiteral("file %1/tools/demo-unit/music/%2")
            .arg(QStringLiteral(VIREO_SOURCE_DIR), QString::fromLatin1(name));
    }
    static QStringList diskLines()
    {
        return {QStringLiteral("device usb"), QStringLiteral("disk-state normal"), QStringLiteral("disk 4 2"),
                QStringLiteral("mode all")};
    }
    static void wheel(QWidget* widget, int delta)
    {
        const QPointF middle = widget->rect().center();
        QWheelEvent event(middle, widget->mapToGlobal(middle.toPoint()), QPoint(), QPoint(0, delta),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(widget, &event);
    }

private slots:
    void asksForTheModeAtOnceAndAfterEachAction()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        QCOMPARE(stage.text("link"), QStringLiteral("Connected to 127.0.0.1:") + stage.panel.portText());
        QVERIFY(stage.hears(QStringList())); // a running panel is left as it is
        stage.panel.mode = 0;
        QTest::mouseClick(stage.child<KeyButton>("mode"), Qt::LeftButton);
        QTRY_COMPARE(stage.text("mode"), QStringLiteral("Mode: menu"));
        stage.panel.mode = 255;
        QTest::mouseClick(stage.child<KeyButton>("esc"), Qt::LeftButton);
        QTRY_COMPARE(stage.text("mode"), QStringLiteral("Mode: none"));
    }

    void wheelTurnsTheEncoder()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        wheel(stage.knob(), 120);
        QVERIFY(stage.hears("enc 1"));
        wheel(stage.knob(), -360);
        QVERIFY(stage.hears("enc -3"));
    }

    void partsOfANotchAddUp()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        wheel(stage.knob(), 50);
        wheel(stage.knob(), 50);
        QVERIFY(stage.hears(QStringList()));
        wheel(stage.knob(), 50);
        QVERIFY(stage.hears("enc 1"));
    }

    void arrowsTurnTheEncoder_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("line");
        QTest::newRow("left") << int(Qt::Key_Left) << "enc -1";
        QTest::newRow("right") << int(Qt::Key_Right) << "enc 1";
        QTest::newRow("up") << int(Qt::Key_Up) << "enc 1";
        QTest::newRow("down") << int(Qt::Key_Down) << "enc -1";
        QTest::newRow("page up") << int(Qt::Key_PageUp) << "enc 5";
        QTest::newRow("page down") << int(Qt::Key_PageDown) << "enc -5";
    }
    void arrowsTurnTheEncoder()
    {
        QFETCH(int, key);
        QFETCH(QString, line);
        Stage stage;
        QVERIFY(stage.isUp());
        QTest::keyClick(stage.knob(), Qt::Key(key));
        QVERIFY(stage.hears({line}));
    }

    void dragTurnsTheEncoderAndIsNoPress()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        EncoderKnob* knob = stage.knob();
        const QPoint middle = knob->rect().center();
        const auto drag = [&](double degrees) {
            const double angle = qDegreesToRadians(degrees);
            const QPoint at = middle + QPoint(qRound(60 * std::sin(angle)), qRound(-60 * std::cos(angle)));
            QMouseEvent move(QEvent::MouseMove, QPointF(at), QPointF(knob->mapToGlobal(at)), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(knob, &move);
        };
        QTest::mousePress(knob, Qt::LeftButton, Qt::NoModifier, middle + QPoint(0, -60));
        for (int degrees = 10; degrees <= 95; degrees += 5)
            drag(degrees);
        QTest::mouseRelease(knob, Qt::LeftButton, Qt::NoModifier, middle + QPoint(60, 5));
        QStringList six;
        for (int i = 0; i < 6; ++i)
            six << QStringLiteral("enc 1");
        QVERIFY(stage.hears(six)); // 95 degrees hold six detents of 15
        QVERIFY(!knob->findChild<QTimer*>(QStringLiteral("hold"))->isActive());
    }

    void dragAcrossTheBottomGoesOn()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        EncoderKnob* knob = stage.knob();
        const QPoint middle = knob->rect().center();
        const QPoint below = middle + QPoint(-40, 60);
        QTest::mousePress(knob, Qt::LeftButton, Qt::NoModifier, middle + QPoint(40, 60));
        QMouseEvent move(QEvent::MouseMove, QPointF(below), QPointF(knob->mapToGlobal(below)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(knob, &move);
        QTest::mouseRelease(knob, Qt::LeftButton, Qt::NoModifier, below);
        QVERIFY(stage.hears("enc 4")); // 67 degrees clockwise through the bottom
    }

    void pressOfTheEncoder()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        EncoderKnob* knob = stage.knob();
        QTest::mouseClick(knob, Qt::LeftButton);
        QVERIFY(stage.hears("key select"));
        QTest::keyClick(knob, Qt::Key_Return);
        QVERIFY(stage.hears("key select"));
        QTest::mousePress(knob, Qt::LeftButton);
        fire(knob->findChild<QTimer*>(QStringLiteral("hold")));
        QVERIFY(stage.hears("key long-select")); // while it is still held
        QTest::mouseRelease(knob, Qt::LeftButton);
        QVERIFY(stage.hears(QStringList()));
        QTest::keyPress(knob, Qt::Key_Space);
        fire(knob->findChild<QTimer*>(QStringLiteral("hold")));
        QTest::keyRelease(knob, Qt::Key_Space);
        QVERIFY(stage.hears("key long-select"));
    }

    void otherMouseButtonsDoNotPress()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        QTest::mouseClick(stage.knob(), Qt::RightButton);
        QVERIFY(stage.hears(QStringList()));
    }

    void keys_data()
    {
        QTest::addColumn<QString>("key");
        for (const char* key : {"stop", "play-pause", "prev", "next", "mode", "select", "esc"})
            QTest::newRow(key) << QString::fromLatin1(key);
    }
    void keys()
    {
        QFETCH(QString, key);
        Stage stage;
        QVERIFY(stage.isUp());
        auto* button = stage.child<KeyButton>(qPrintable(key));
        auto* hold = button->findChild<QTimer*>(QStringLiteral("hold"));
        QCOMPARE(hold->interval(), 800);
        QTest::mousePress(button, Qt::LeftButton);
        QVERIFY(stage.hears(QStringList())); // nothing before the release
        QTest::mouseRelease(button, Qt::LeftButton);
        QVERIFY(stage.hears({QStringLiteral("key ") + key}));
        QTest::mousePress(button, Qt::LeftButton);
        fire(hold);
        QVERIFY(stage.hears({QStringLiteral("key long-") + key}));
        QTest::mouseRelease(button, Qt::LeftButton);
        QVERIFY(stage.hears(QStringList()));
        QTest::keyClick(button, Qt::Key_Space);
        QVERIFY(stage.hears({QStringLiteral("key ") + key}));
    }

    void keyLeftBeforeItsReleaseIsNotPressed()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        auto* button = stage.child<KeyButton>("mode");
        QTest::mousePress(button, Qt::LeftButton);
        const QPoint outside(button->width() + 50, 5);
        QMouseEvent move(QEvent::MouseMove, QPointF(outside), QPointF(button->mapToGlobal(outside)),
                         Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(button, &move);
        QVERIFY(!button->findChild<QTimer*>(QStringLiteral("hold"))->isActive());
        QTest::mouseRelease(button, Qt::LeftButton, Qt::NoModifier, outside);
        QVERIFY(stage.hears(QStringList()));
    }

    void sourceSwitches()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QCheckBox>("usb")->click();
        QVERIFY(stage.hears("device usb"));
        stage.child<QCheckBox>("stream")->click();
        QVERIFY(stage.hears("device usb stream"));
        stage.child<QCheckBox>("aoe")->click();
        stage.child<QCheckBox>("usb")->click();
        stage.child<QCheckBox>("stream")->click();
        QVERIFY(stage.hears({QStringLiteral("device usb stream aoe"), QStringLiteral("device stream aoe"),
                             QStringLiteral("device aoe")}));
        stage.child<QCheckBox>("ir")->click();
        stage.child<QCheckBox>("aux")->click();
        QVERIFY(stage.hears({QStringLiteral("device ir aoe"), QStringLiteral("device aux ir aoe")}));
        for (const char* name : {"aux", "ir", "aoe"})
            stage.child<QCheckBox>(name)->click();
        QVERIFY(stage.hears(
            {QStringLiteral("device ir aoe"), QStringLiteral("device aoe"), QStringLiteral("device none")}));
    }

    void diskIsInsertedPlayedAndEjected()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(diskLines()));
        QCOMPARE(stage.child<QListWidget>("tracks")->count(), 4);
        QVERIFY(!stage.timer("tick")->isActive());
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        QVERIFY(stage.timer("tick")->isActive());
        QCOMPARE(stage.text("state"), QStringLiteral("Playing"));
        stage.timer("tick")->stop(); // so that no level comes between
        QVERIFY(stage.hears({QStringLiteral("key play-pause"), fileLine("morning-corridor.mp3"),
                             QStringLiteral("time 0:00:00")}));
        QTest::mouseClick(stage.child<KeyButton>("next"), Qt::LeftButton);
        stage.timer("tick")->stop();
        QVERIFY(stage.hears(
            {QStringLiteral("key next"), fileLine("sunset-walk.flac"), QStringLiteral("time 0:00:00")}));
        QCOMPARE(stage.child<QListWidget>("tracks")->currentRow(), 1);
        QTest::mouseClick(stage.child<KeyButton>("stop"), Qt::LeftButton);
        QVERIFY(stage.hears({QStringLiteral("key stop"), QStringLiteral("time 0:00:00")}));
        QTest::mouseClick(stage.child<QPushButton>("eject"), Qt::LeftButton);
        QVERIFY(stage.hears({QStringLiteral("key stop"), QStringLiteral("disk-state removed")}));
        QCOMPARE(stage.child<QListWidget>("tracks")->count(), 0);
    }

    void timeAndLevelRunWhilePlaying()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        const auto count = [&](const char* command) {
            int found = 0;
            for (const QByteArray& packet : stage.panel.packets)
                found += packet.startsWith(QByteArray::fromHex(command)) ? 1 : 0;
            return found;
        };
        QTRY_VERIFY(count("0400") >= 3); // levels
        QTRY_VERIFY(count("0200") >= 2); // times
        QVERIFY(!stage.child<QPlainTextEdit>("log")->toPlainText().contains(QLatin1String("level")));
    }

    void playModes()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QCheckBox>("repeat")->click();
        stage.child<QCheckBox>("shuffle")->click();
        stage.child<QComboBox>("scope")->setCurrentIndex(2);
        QVERIFY(stage.hears({QStringLiteral("mode repeat all"), QStringLiteral("mode repeat shuffle all"),
                             QStringLiteral("mode repeat shuffle folder")}));
    }

    void keysLeaveThePlayerAloneWithoutItsSource()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(diskLines()));
        stage.child<QCheckBox>("usb")->click();
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        QVERIFY(stage.hears({QStringLiteral("device none"), QStringLiteral("key play-pause")}));
        QCOMPARE(stage.text("state"), QStringLiteral("Stopped"));
    }

    void sourceSwitchedOffStopsThePlayer()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        QCOMPARE(stage.text("state"), QStringLiteral("Playing"));
        stage.child<QCheckBox>("usb")->click();
        QCOMPARE(stage.text("state"), QStringLiteral("Stopped"));
        QVERIFY(!stage.timer("tick")->isActive());
    }

    void activatedTrackPlays()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(diskLines()));
        auto* tracks = stage.child<QListWidget>("tracks");
        tracks->setCurrentRow(2);
        QTest::keyClick(tracks, Qt::Key_Return);
        stage.timer("tick")->stop();
        QVERIFY(stage.hears({fileLine("winter-river.mp3"), QStringLiteral("time 0:00:00")}));
    }

    void diskFromTheStart()
    {
        Stage stage;
        stage.window.openMusic(QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/music"));
        QVERIFY(stage.isUp());
        QVERIFY(stage.hears(diskLines()));
        QCOMPARE(stage.child<QPlainTextEdit>("log")->toPlainText(), diskLines().join(QLatin1Char('\n')));
        QCOMPARE(stage.child<QListWidget>("tracks")->count(), 4);
    }

    void folderWithoutMusicIsNoDisk()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        auto* folder = stage.child<QLineEdit>("folder");
        folder->setText(QStringLiteral("/no/such/folder"));
        QTest::keyClick(folder, Qt::Key_Return);
        QVERIFY(stage.hears(QStringList()));
        QVERIFY(stage.child<QPlainTextEdit>("log")->toPlainText().contains(
            QLatin1String("no music below \"/no/such/folder\"")));
    }

    void notices_data()
    {
        QTest::addColumn<QString>("button");
        for (const char* words :
             {"aoe ok", "aoe stop", "aoe fail", "aoe over", "upgrade start", "upgrade fail", "dhcp done"})
            QTest::newRow(words) << QString::fromLatin1(words);
    }
    void notices()
    {
        QFETCH(QString, button);
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QPushButton>(qPrintable(button))->click();
        QVERIFY(stage.hears({button}));
    }

    void stationAndMessageAreSentAsTyped()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QLineEdit>("title")->setText(QString::fromUtf8("별밤 이야기"));
        stage.child<QLineEdit>("url")->setText(QStringLiteral("http://a.example/#1"));
        stage.child<QPushButton>("announce")->click();
        QVERIFY(stage.hears({QString::fromUtf8("station \"별밤 이야기\" http://a.example/#1")}));
        QVERIFY(stage.child<QPlainTextEdit>("log")->toPlainText().contains(
            QString::fromUtf8("station \"별밤 이야기\" \"http://a.example/#1\"")));
        stage.child<QLineEdit>("message")->setText(QStringLiteral("two words"));
        stage.child<QPushButton>("upgrade-message")->click();
        QVERIFY(stage.hears("upgrade-message \"two words\""));
        stage.child<QLineEdit>("message")->clear();
        stage.child<QPushButton>("upgrade-message")->click();
        QVERIFY(stage.hears(QStringList()));
        QVERIFY(stage.child<QPlainTextEdit>("log")->toPlainText().endsWith(
            QLatin1String("# upgrade-message: the text is empty")));
    }

    void streamsHaveALevelWhileTheirSourceIsOn()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QPushButton>("aoe ok")->click();
        QVERIFY(!stage.timer("tick")->isActive()); // its source is off
        stage.child<QCheckBox>("aoe")->click();
        stage.child<QPushButton>("aoe ok")->click();
        QVERIFY(stage.timer("tick")->isActive());
        stage.child<QPushButton>("aoe fail")->click();
        QVERIFY(!stage.timer("tick")->isActive());
        stage.child<QCheckBox>("ir")->click();
        stage.child<QPushButton>("announce")->click();
        QVERIFY(stage.timer("tick")->isActive());
        stage.child<QCheckBox>("aoe")->click();
        stage.child<QCheckBox>("ir")->click();
        QVERIFY(!stage.timer("tick")->isActive());
    }

    void linkComesBackByItselfAndTellsAgain()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(diskLines()));
        stage.panel.hangUp();
        QTRY_VERIFY(stage.text("link").startsWith(QLatin1String("No link to 127.0.0.1:")));
        QVERIFY(stage.text("link").endsWith(QLatin1String("next attempt in 0.5 s")));
        QCOMPARE(stage.text("mode"), QString());
        QTest::mouseClick(stage.child<KeyButton>("esc"), Qt::LeftButton);
        QVERIFY(stage.child<QPlainTextEdit>("log")->toPlainText().endsWith(
            QLatin1String("# no link, not sent: key esc")));
        fire(stage.timer("retry"));
        QVERIFY(stage.isUp());
        QCOMPARE(stage.panel.connections, 2);
        QVERIFY(stage.hears(diskLines()));
    }

    void connectNowDoesNotWait()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QPushButton>("connect")->click();
        QTRY_COMPARE(stage.panel.connections, 2);
        QVERIFY(stage.isUp());
        QVERIFY(!stage.timer("retry")->isActive());
    }

    void pausesGrowToEightSeconds()
    {
        quint16 freePort = 0;
        {
            FakePanel panel;
            freePort = panel.port();
        }
        PanelLink link(QStringLiteral("127.0.0.1"), freePort);
        QList<int> pauses;
        QStringList reasons;
        connect(&link, &PanelLink::disconnected, this, [&](const QString& reason, int pauseMs) {
            pauses << pauseMs;
            reasons << reason;
        });
        link.connectNow();
        for (int attempt = 1; attempt <= 7; ++attempt) {
            QTRY_COMPARE(pauses.size(), attempt);
            fire(link.findChild<QTimer*>(QStringLiteral("retry")));
        }
        QTRY_COMPARE(pauses.size(), 8);
        QCOMPARE(pauses, (QList<int>{500, 1000, 2000, 4000, 8000, 8000, 8000, 8000}));
        QCOMPARE(reasons[0], QStringLiteral("Connection refused"));
        FakePanel panel(freePort);
        fire(link.findChild<QTimer*>(QStringLiteral("retry")));
        QTRY_VERIFY(link.isUp());
        panel.hangUp();
        QTRY_COMPARE(pauses.size(), 9);
        QCOMPARE(pauses.last(), 500); // a link that was up starts anew
    }

    void questionsWaitForTheirAnswer()
    {
        FakePanel panel;
        panel.answering = false;
        PanelLink link(QStringLiteral("127.0.0.1"), panel.port());
        QList<int> codes;
        connect(&link, &PanelLink::modeReported, this, [&](quint8 code) { codes << code; });
        link.connectNow();
        QTRY_VERIFY(link.isUp());
        for (int i = 0; i < 5; ++i)
            link.askMode();
        link.send(QByteArray::fromHex("0400010001"));
        QTRY_COMPARE(panel.packets.size(), 2);
        QCOMPARE(panel.requests, 1);
        panel.answer(4);
        QTRY_COMPARE(panel.requests, 2); // one more for the four that came meanwhile
        panel.answer(1);
        QTRY_COMPARE(codes, (QList<int>{4, 1}));
        QVERIFY(!link.findChild<QTimer*>(QStringLiteral("answer"))->isActive());
    }

    void silentPanelIsFirstLateThenGivenUp()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.panel.answering = false;
        QTest::mouseClick(stage.child<KeyButton>("esc"), Qt::LeftButton);
        QCOMPARE(stage.timer("answer")->interval(), 2000);
        fire(stage.timer("answer"));
        QVERIFY(stage.text("link").startsWith(QLatin1String("Waiting for the panel at ")));
        QCOMPARE(stage.timer("answer")->interval(), 33000);
        fire(stage.timer("answer"));
        QVERIFY(stage.text("link").contains(QLatin1String("(the panel does not answer)")));
        stage.panel.answering = true;
        fire(stage.timer("retry"));
        QVERIFY(stage.isUp());
        QCOMPARE(stage.panel.connections, 2);
    }

    void panelThatDoesNotReadIsGivenUp()
    {
        QTcpServer deaf;
        QVERIFY(deaf.listen(QHostAddress::LocalHost));
        PanelLink link(QStringLiteral("127.0.0.1"), deaf.serverPort());
        QString reason;
        connect(&link, &PanelLink::disconnected, this, [&](const QString& why) { reason = why; });
        link.connectNow();
        QTRY_VERIFY(link.isUp());
        const QByteArray large(64 * 1024, 'x');
        constexpr int farMoreThanTheSystemBuffers = 1000;
        for (int i = 0; i < farMoreThanTheSystemBuffers && reason.isEmpty(); ++i)
            link.send(large);
        QCOMPARE(reason, QStringLiteral("the panel does not read"));
        QVERIFY(!link.isUp());
    }

    void acceleratorsAreUniqueOnEachTab()
    {
        Stage stage;
        auto* tabs = stage.window.findChild<QTabWidget*>();
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            QStringList keys;
            for (int i = 0; i < tabs->count(); ++i)
                keys << QKeySequence::mnemonic(tabs->tabText(i)).toString();
            for (const QAbstractButton* button : stage.window.findChildren<QAbstractButton*>())
                if (button->isVisible() && !button->text().isEmpty())
                    keys << QKeySequence::mnemonic(button->text()).toString();
            for (const QLabel* label : stage.window.findChildren<QLabel*>())
                if (label->isVisible() && label->buddy())
                    keys << QKeySequence::mnemonic(label->text()).toString();
            keys.removeAll(QString());
            QVERIFY(keys.size() > 15);
            const auto all = keys.size();
            QVERIFY2(keys.removeDuplicates() == 0 && all > 0, qPrintable(tabs->tabText(tab)));
        }
    }

    void everyControlIsReachedByTab()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        QSet<QWidget*> reached;
        QWidget* at = stage.knob();
        do {
            reached << at;
            at = at->nextInFocusChain();
        } while (at != stage.knob());
        for (QWidget* control : stage.window.findChildren<QWidget*>())
            if (qobject_cast<QAbstractButton*>(control) && (control->focusPolicy() & Qt::TabFocus))
                QVERIFY2(reached.contains(control), qPrintable(control->objectName()));
        QVERIFY(stage.knob()->focusPolicy() & Qt::TabFocus);
    }

    void commandLineGivesThePlace()
    {
        const CommandLine line = CommandLine::parse({QStringLiteral("--at"), QStringLiteral("340,-20")});
        QCOMPARE(line.error, QString());
        QCOMPARE(line.place.value_or(QPoint()), QPoint(340, -20));
        QVERIFY(!CommandLine::parse({}).place);
    }

    void withoutADisplayItSaysSo_data()
    {
        QTest::addColumn<QString>("platform");
        QTest::addColumn<QString>("missing");
        QTest::newRow("nothing set") << QString() << "DISPLAY and WAYLAND_DISPLAY are";
        QTest::newRow("X11 wished for") << QStringLiteral("xcb") << "DISPLAY is";
        QTest::newRow("Wayland wished for") << QStringLiteral("wayland") << "WAYLAND_DISPLAY is";
    }
    void withoutADisplayItSaysSo()
    {
        QFETCH(QString, platform);
        QFETCH(QString, missing);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(name));
        if (!platform.isEmpty())
            environment.insert(QStringLiteral("QT_QPA_PLATFORM"), platform);
        const SupervisorRun run = runSupervisor({}, {}, environment);
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.out, QString());
        QCOMPARE(run.err,
                 QStringLiteral("vireo-supervisor: no display for the window (%1 not set); send and "
                                "script work without one\n")
                     .arg(missing));
    }
};

VIREO_TEST_MAIN(WindowTest)
#include "tst_window.moc"
