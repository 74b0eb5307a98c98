#include "screens/menuform.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/strings.h"
#include "widgets/pictureflow.h"

namespace {

const char* const signalNames[] = {"sgUSBMode()", "sgAOEMode()", "sgIRMode()", "sgNetBGMMode()",
                                   "sgSetupMode()"};

QString signalOf(int entry)
{
    return QString::fromLatin1(signalNames[entry]);
}

PictureFlow& flowOf(MenuForm& menu)
{
    return *menu.findChild<PictureFlow*>(QStringLiteral("wgFlow"));
}

/** What the menu emits on select. */
QStringList chosen(MenuForm& menu)
{
    SignalRecorder recorder(&menu);
    menu.select_action();
    return recorder.take();
}

} // namespace

class MenuFormTest : public QObject {
    Q_OBJECT

private slots:
    void signalsAndSlotsInTheirOrder()
    {
        const QStringList names = ownMethods(MenuForm::staticMetaObject);
        QCOMPARE(names.mid(0, 5),
                 QStringList({signalOf(4), signalOf(3), signalOf(2), signalOf(1), signalOf(0)}));
        QCOMPARE(names.size(), 11);
    }

    void standsAtUsbAfterConstruction()
    {
        LogCatcher log(5);
        MenuForm menu;
        PictureFlow& flow = flowOf(menu);
        QCOMPARE(menu.objectName(), QStringLiteral("MenuForm"));
        QCOMPARE(menu.windowTitle(), QStringLiteral("Form"));
        QCOMPARE(menu.size(), QSize(320, 240));
        QCOMPARE(flow.geometry(), QRect(0, 0, 320, 240));
        QCOMPARE(flow.slideSize(), QSize(100, 100));
        QCOMPARE(flow.slideCount(), 5);
        QCOMPARE(int(flow.reflectionEffect()), 3);
        QCOMPARE(flow.backgroundColor(), QColor(Qt::black));
        QCOMPARE(flow.centerIndex(), 0);
        QCOMPARE(flow.GetFocusIndex(), 0);
        QCOMPARE(chosen(menu), QStringList(signalOf(0)));
    }

    void slidesAreTheIconsInTheirOrder()
    {
        MenuForm menu;
        const char* const icons[] = {"usb_icon", "aoe_icon", "IR_icon", "Net_BGM", "setup_icon"};
        for (int i = 0; i < 5; ++i) {
            const QImage icon(QStringLiteral(":/menuicon/image/%1.png").arg(QLatin1String(icons[i])));
            QVERIFY(!icon.isNull());
            QCOMPARE(flowOf(menu).slide(i), icon);
        }
    }

    void modeOpensAtItsEntry()
    {
        LogCatcher log(5);
        MenuForm menu;
        for (int entry : {1, 4, 2, 0, 3}) {
            menu.setCurrentIdx(MENUIDX(entry));
            QCOMPARE(flowOf(menu).centerIndex(), entry);
            QCOMPARE(chosen(menu), QStringList(signalOf(entry)));
        }
    }

    void choiceCountsBeforeTheStripArrives()
    {
        LogCatcher log(5);
        MenuForm menu;
        menu.next_action();
        QCOMPARE(chosen(menu), QStringList(signalOf(1)));
        menu.next_action();
        QCOMPARE(chosen(menu), QStringList(signalOf(2)));
        menu.prev_action();
        QCOMPARE(chosen(menu), QStringList(signalOf(0)));
    }

    void indexBeyondTheEndsIsTheFirstOrTheLast_data()
    {
        QTest::addColumn<int>("focus");
        QTest::addColumn<int>("entry");
        QTest::newRow("far below") << -1000 << 0;
        QTest::newRow("below") << -1 << 0;
        QTest::newRow("first") << 0 << 0;
        QTest::newRow("last") << 4 << 4;
        QTest::newRow("above") << 5 << 4;
        QTest::newRow("far above") << 1000 << 4;
    }
    void indexBeyondTheEndsIsTheFirstOrTheLast()
    {
        QFETCH(int, focus);
        QFETCH(int, entry);
        LogCatcher log(5);
        MenuForm menu;
        flowOf(menu).focusIndex = focus;
        QCOMPARE(chosen(menu), QStringList(signalOf(entry)));
    }

    void turningOnPastTheEndStillChoosesTheLast()
    {
        LogCatcher log(5);
        MenuForm menu;
        menu.setCurrentIdx(MENUIDX_NetBGM);
        menu.next_action();
        menu.next_action();
        QCOMPARE(flowOf(menu).GetFocusIndex(), 5);
        QCOMPARE(chosen(menu), QStringList(signalOf(4)));
    }

    void escapeEmitsTheModeBefore()
    {
        LogCatcher log(5);
        MenuForm menu;
        SignalRecorder recorder(&menu);
        menu.esc_action();
        QCOMPARE(recorder.take(), QStringList());
        for (int entry = 0; entry < 5; ++entry) {
            menu.setPrevMode(MENUIDX(entry));
            menu.esc_action();
            QCOMPARE(recorder.take(), QStringList(signalOf(entry)));
        }
        menu.setPrevMode(MENUIDX(7));
        menu.esc_action();
        QCOMPARE(recorder.take(), QStringList());
    }

    void everySlotLogsItsSignature()
    {
        MenuForm menu;
        LogCatcher log(0);
        menu.setCurrentIdx(MENUIDX_IR);
        menu.setPrevMode(MENUIDX_USB);
        menu.prev_action();
        menu.next_action();
        menu.select_action();
        menu.esc_action();
        QCOMPARE(log.lines(),
                 QStringList({QStringLiteral("void MenuForm::setCurrentIdx(MENUIDX)"),
                              QStringLiteral("void MenuForm::setPrevMode(MENUIDX)"),
                              QStringLiteral("void MenuForm::prev_action()"),
                              QStringLiteral("void MenuForm::next_action()"),
                              QStringLiteral("void MenuForm::select_action()"),
                              QStringLiteral("void MenuForm::esc_action()")}));
    }
};

VIREO_TEST_MAIN(MenuFormTest)
#include "tst_menuform.moc"
