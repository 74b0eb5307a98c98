#include "screens/menuform.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/strings.h"
#include "widgets/pictureflow.h"

namespace {

/** The signal of each entry: the class declares them in reverse, its last entry first. */
QStringList signalNames()
{
    QStringList names;
    const QMetaObject& meta = MenuForm::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        if (meta.method(i).methodType() == QMetaMethod::Signal)
            names.prepend(QString::fromLatin1(meta.method(i).methodSignature()));
    return names;
}

const int entries = int(signalNames().size());

QString signalOf(int entry)
{
    return signalNames().at(entry);
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
    void slotsInTheirOrder()
    {
        QCOMPARE(ownMethods(MenuForm::staticMetaObject).mid(entries),
                 strings({"setCurrentIdx(MENUIDX)", "setPrevMode(MENUIDX)", "prev_action()", "next_action()",
                          "select_action()", "esc_action()"}));
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
        QCOMPARE(flow.slideCount(), entries);
        QCOMPARE(int(flow.reflectionEffect()), 3);
        QCOMPARE(flow.backgroundColor(), QColor(Qt::black));
        QCOMPARE(flow.centerIndex(), 0);
        QCOMPARE(flow.GetFocusIndex(), 0);
        QCOMPARE(chosen(menu), QStringList(signalOf(0)));
    }

    void modeOpensAtItsEntry()
    {
        LogCatcher log(5);
        MenuForm menu;
        for (int entry = entries - 1; entry >= 0; --entry) {
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
        QTest::newRow("last") << entries - 1 << entries - 1;
        QTest::newRow("above") << entries << entries - 1;
        QTest::newRow("far above") << 1000 << entries - 1;
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
        menu.setCurrentIdx(MENUIDX(entries - 2));
        menu.next_action();
        menu.next_action();
        QCOMPARE(flowOf(menu).GetFocusIndex(), entries);
        QCOMPARE(chosen(menu), QStringList(signalOf(entries - 1)));
    }

    void escapeEmitsTheModeBefore()
    {
        LogCatcher log(5);
        MenuForm menu;
        SignalRecorder recorder(&menu);
        menu.esc_action();
        QCOMPARE(recorder.take(), QStringList());
        for (int entry = 0; entry < entries; ++entry) {
            menu.setPrevMode(MENUIDX(entry));
            menu.esc_action();
            QCOMPARE(recorder.take(), QStringList(signalOf(entry)));
        }
        menu.setPrevMode(MENUIDX(entries + 2));
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
