#include "tests/support/desk.h"
#include "tests/support/panelmain.h"
#include "tests/tools/fakepanel.h"

namespace {

/** The window of the real program on a display of its own, with the keyboard. */
struct Keyboard {
    explicit Keyboard(bool managed)
        : display(QStringLiteral("1280x800"), managed)
        , window(QStringLiteral(SUPERVISOR_PROGRAM), {QStringLiteral("--port"), panel.portText()},
                 display.environment)
    {
    }

    /** Nobody gives it the keyboard: a window that is opened has it. */
    bool isReady()
    {
        return QTest::qWaitFor([&] { return panel.requests > 0 && hasFocus(); }, desk::patienceMs);
    }
    bool hasFocus() const
    {
        const QString id = display.idOf(QStringLiteral("Vireo supervisor"));
        return !id.isEmpty() && display.hand({QStringLiteral("getwindowfocus")}) == id;
    }

    void act(const char* words) const { display.hand(QString::fromLatin1(words).split(QLatin1Char(' '))); }
    bool hears(int count)
    {
        return QTest::qWaitFor([&] { return panel.packetsButRequests().size() >= count; }, desk::patienceMs);
    }

    FakePanel panel;
    desk::Display display;
    desk::Program window;
};

} // namespace

/**
 * The display's own repetition: a key that is held is let go and pressed again 25 times a second. Whether the
 * toolkit marks these as repetitions is a matter of when it reads them; tst_knobandkeys has them of both
 * kinds.
 */
class HeldKeysTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!desk::isPossible())
            QSKIP("Xvfb, openbox, xdotool or xwininfo is not installed (tools/setup.sh test)");
    }

    void heldKeyIsOneLongPress_data()
    {
        QTest::addColumn<bool>("managed");
        QTest::newRow("without a window manager") << false;
        QTest::newRow("with one") << true;
    }
    /** Repetition begins before a press is a long one: were each a press, none would ever be long. */
    void heldKeyIsOneLongPress()
    {
        QFETCH(bool, managed);
        Keyboard keyboard(managed);
        QVERIFY(keyboard.isReady());
        keyboard.act("keydown alt keydown m");
        QVERIFY(keyboard.hears(1));
        keyboard.act("keyup m keyup alt");
        keyboard.act("keydown Tab keyup Tab keydown space"); // the key behind it
        QVERIFY(keyboard.hears(2));
        const QList<QByteArray> expected{packetOf(Command::Key, wire::held(wire::Key::Mode)),
                                         packetOf(Command::Key, wire::held(wire::Key::Stop))};
        QCOMPARE(keyboard.panel.packetsButRequests(), expected);
    }
};

VIREO_TEST_MAIN(HeldKeysTest)
#include "tst_heldkeys.moc"
