#include "tests/support/panelmain.h"
#include "tests/tools/stage.h"

using WindowHand::fire;
using WindowHand::wheel;

class KnobAndKeysTest : public QObject {
    Q_OBJECT

private slots:
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
        QStringList pressed{QStringLiteral("key ") + key};
        if (QStringList{QStringLiteral("play-pause"), QStringLiteral("prev"), QStringLiteral("next")}
                .contains(key))
            pressed << QStringLiteral("key stop"); // there is nothing to play
        QVERIFY(stage.hears(pressed));
        QTest::mousePress(button, Qt::LeftButton);
        fire(hold);
        QVERIFY(stage.hears({QStringLiteral("key long-") + key}));
        QTest::mouseRelease(button, Qt::LeftButton);
        QVERIFY(stage.hears(QStringList()));
        QTest::keyClick(button, Qt::Key_Space);
        QVERIFY(stage.hears(pressed));
    }

    void heldKeyIsOneLongPress_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifier");
        QTest::newRow("space bar") << int(Qt::Key_Space) << int(Qt::NoModifier);
        QTest::newRow("Alt and its letter") << int(Qt::Key_M) << int(Qt::AltModifier);
    }
    void heldKeyIsOneLongPress()
    {
        QFETCH(int, key);
        QFETCH(int, modifier);
        Stage stage;
        QVERIFY(stage.isUp());
        QVERIFY(QTest::qWaitForWindowActive(&stage.window));
        auto* button = stage.child<KeyButton>("mode");
        if (modifier == int(Qt::NoModifier))
            button->setFocus();
        const auto repeat = [&](QTest::KeyAction action) {
            QTest::simulateEvent(stage.window.focusWidget(), action == QTest::Press, key,
                                 Qt::KeyboardModifiers(modifier), QString(), true);
        };
        QTest::keyPress(stage.window.focusWidget(), Qt::Key(key), Qt::KeyboardModifiers(modifier));
        QVERIFY(button->hasFocus());
        for (int i = 0; i < 30; ++i) {
            repeat(QTest::Release);
            repeat(QTest::Press);
        }
        QVERIFY(stage.hears(QStringList()));
        fire(button->findChild<QTimer*>(QStringLiteral("hold")));
        for (int i = 0; i < 30; ++i) {
            repeat(QTest::Release);
            repeat(QTest::Press);
        }
        QTest::keyRelease(button, Qt::Key(key)); // Alt may be up before the letter
        QVERIFY(stage.hears("key long-mode"));
        QVERIFY(!button->isDown());
    }

    void altAndItsLetterIsAShortPress()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        QVERIFY(QTest::qWaitForWindowActive(&stage.window));
        QTest::keyPress(stage.knob(), Qt::Key_T, Qt::AltModifier);
        QVERIFY(stage.hears(QStringList())); // nothing before the release
        QTest::keyRelease(stage.window.focusWidget(), Qt::Key_T, Qt::AltModifier);
        QVERIFY(stage.hears("key stop"));
        QTest::keyPress(stage.knob(), Qt::Key_T, Qt::AltModifier);
        stage.knob()->setFocus(); // given up in between
        QTest::keyRelease(stage.window.focusWidget(), Qt::Key_T, Qt::AltModifier);
        QVERIFY(stage.hears(QStringList()));
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
};

VIREO_TEST_MAIN(KnobAndKeysTest)
#include "tst_knobandkeys.moc"
