#include "tests/support/panelmain.h"
#include "tests/tools/stage.h"

using WindowHand::fire;
using WindowHand::wheel;

namespace {

/** Lets the time pass in which a new press would take the key's release back. */
void settle(QWidget* control)
{
    fire(control->findChild<QTimer*>(QStringLiteral("settle")));
}

/** As the toolkit delivers a key that repeats, with its marks of repetition or without. */
void repeatKey(const QWidget& window, int key, int modifier, bool marked)
{
    for (int i = 0; i < 30; ++i)
        for (const QTest::KeyAction action : {QTest::Release, QTest::Press})
            QTest::simulateEvent(window.focusWidget(), action == QTest::Press, key,
                                 Qt::KeyboardModifiers(modifier), QString(), marked);
}

} // namespace

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
        settle(knob);
        QVERIFY(stage.hears("key select"));
        QTest::mousePress(knob, Qt::LeftButton);
        fire(knob->findChild<QTimer*>(QStringLiteral("hold")));
        QVERIFY(stage.hears("key long-select")); // while it is still held
        QTest::mouseRelease(knob, Qt::LeftButton);
        QVERIFY(stage.hears(QStringList()));
        QTest::keyPress(knob, Qt::Key_Space);
        fire(knob->findChild<QTimer*>(QStringLiteral("hold")));
        QTest::keyRelease(knob, Qt::Key_Space);
        settle(knob);
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
        settle(button);
        QVERIFY(stage.hears(pressed));
    }

    void heldKeyIsOnePress_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("word");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifier");
        QTest::addColumn<bool>("marked");
        for (const bool marked : {true, false}) {
            const QByteArray how = marked ? ", repetitions marked" : ", repetitions not marked";
            QTest::newRow("space bar" + how) << "mode"
                                             << "mode" << int(Qt::Key_Space) << int(Qt::NoModifier) << marked;
            QTest::newRow("Alt and its letter" + how)
                << "mode"
                << "mode" << int(Qt::Key_M) << int(Qt::AltModifier) << marked;
            QTest::newRow("encoder" + how)
                << "encoder"
                << "select" << int(Qt::Key_Return) << int(Qt::NoModifier) << marked;
        }
    }
    void heldKeyIsOnePress()
    {
        QFETCH(QString, control);
        QFETCH(QString, word);
        QFETCH(int, key);
        QFETCH(int, modifier);
        QFETCH(bool, marked);
        Stage stage;
        QVERIFY(stage.isUp());
        QVERIFY(QTest::qWaitForWindowActive(&stage.window));
        auto* held = stage.child<QWidget>(qPrintable(control));
        auto* hold = held->findChild<QTimer*>(QStringLiteral("hold"));
        auto* release = held->findChild<QTimer*>(QStringLiteral("settle"));
        if (modifier == int(Qt::NoModifier))
            held->setFocus();
        const auto press = [&] {
            QTest::keyPress(stage.window.focusWidget(), Qt::Key(key), Qt::KeyboardModifiers(modifier));
        };
        press();
        QVERIFY(held->hasFocus());
        repeatKey(stage.window, key, modifier, marked);
        QVERIFY(!release->isActive()); // the last press took its release back
        fire(hold);
        repeatKey(stage.window, key, modifier, marked);
        QVERIFY(!hold->isActive());
        QTest::keyRelease(held, Qt::Key(key)); // Alt may be up before the letter
        settle(held);
        QVERIFY(stage.hears({QStringLiteral("key long-") + word}));

        press();
        repeatKey(stage.window, key, modifier, marked);
        QTest::keyRelease(held, Qt::Key(key));
        settle(held);
        QVERIFY(!hold->isActive());
        QVERIFY(stage.hears({QStringLiteral("key ") + word}));
    }

    void escapeGivesThePressUp()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        auto* button = stage.child<KeyButton>("mode");
        button->setFocus();
        QTest::keyPress(button, Qt::Key_Space);
        QVERIFY(button->isDown());
        QTest::keyClick(button, Qt::Key_Escape);
        QVERIFY(!button->isDown());
        QTest::keyRelease(button, Qt::Key_Space);
        settle(button);
        QVERIFY(stage.hears(QStringList()));
    }

    void altAndItsLetterIsAShortPress()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        QVERIFY(QTest::qWaitForWindowActive(&stage.window));
        QTest::keyPress(stage.knob(), Qt::Key_T, Qt::AltModifier);
        QVERIFY(stage.hears(QStringList())); // nothing before the release
        QTest::keyRelease(stage.window.focusWidget(), Qt::Key_T, Qt::AltModifier);
        settle(stage.child<KeyButton>("stop"));
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
