#include "tests/support/panelmain.h"
#include "tests/widgets/flowmodel.h"
#include "tests/widgets/flowstage.h"
#include "widgets/pictureflow.h"
#include "widgets/pictureflowanimator.h"
#include "widgets/pictureflowstate.h"

#include <QMouseEvent>
#include <QSignalSpy>

#include <array>
#include <climits>
#include <random>

using namespace FlowStage;

namespace {

void press(PictureFlow& flow, int x)
{
    QMouseEvent event(QEvent::MouseButtonPress, QPointF(x, 10), QPointF(x, 10), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&flow, &event);
}

/** Whether the key was accepted. */
bool pressKey(PictureFlow& flow, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(&flow, &event);
    return event.isAccepted();
}

using Fields = std::array<FlowModel::Int, 8>;

Fields fieldsOf(const PictureFlow& flow)
{
    return {flow.centerIndex(),
            flow.GetFocusIndex(),
            flow.animator().target,
            flow.animator().step,
            flow.animator().frame,
            flow.state().centerSlide.cx,
            flow.state().rightSlides[0].cx,
            flow.state().leftSlides[5].blend};
}

Fields fieldsOf(const FlowModel::Strip& model)
{
    return {model.center, model.focus,     model.target,      model.step,
            model.frame,  model.middle.cx, model.right[0].cx, model.left[5].blend};
}

/** One operation on the flow and on its model, most often a tick. */
void doAny(std::mt19937& random, int index, PictureFlow& flow, FlowModel::Strip& model)
{
    switch (random() % 50) {
    case 0:
    case 1:
        flow.showNext();
        model.next();
        break;
    case 2:
    case 3:
        flow.showPrevious();
        model.previous();
        break;
    case 4:
        flow.showSlide(index);
        model.show(index);
        break;
    case 5:
        if (random() % 20 == 0) {
            flow.setCenterIndex(index);
            model.setCenter(index);
        }
        break;
    default:
        flow.updateAnimation();
        model.tick();
    }
}

} // namespace

/** Which slide is in the middle, and what turns the strip to another. */
class PictureFlowTurnsTest : public QObject {
    Q_OBJECT

private slots:
    void setCenterIndexClamps_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("center");
        QTest::newRow("beyond the last") << 5 << 9 << 4;
        QTest::newRow("last") << 5 << 4 << 4;
        QTest::newRow("negative") << 5 << -1 << 0;
        QTest::newRow("far beyond") << 5 << INT_MAX << 4;
        QTest::newRow("far below") << 5 << INT_MIN << 0;
        QTest::newRow("empty list") << 0 << 3 << 0;
    }
    void setCenterIndexClamps()
    {
        QFETCH(int, count);
        QFETCH(int, index);
        QFETCH(int, center);
        PictureFlow flow;
        addSlides(flow, count);
        QSignalSpy changes(&flow, &PictureFlow::centerIndexChanged);
        flow.setCenterIndex(index);
        QCOMPARE(flow.centerIndex(), center);
        QCOMPARE(flow.state().centerSlide.slideIndex, center);
        QCOMPARE(flow.animator().step, 0);
        QCOMPARE(int(changes.count()), 0); // only the animation tells
    }

    void setCenterIndexEndsAMove()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.showNext();
        flow.updateAnimation();
        flow.setCenterIndex(3);
        QCOMPARE(flow.animator().step, 0);
        QVERIFY(!timerOf(flow, "animateTimer").isActive());
        QCOMPARE(flow.state().centerSlide.cx, 0);
        QCOMPARE(flow.GetFocusIndex(), 1); // whoever centres a slide sets the focus too
        flow.updateAnimation();
        QCOMPARE(flow.centerIndex(), 3);
    }

    void nextAndNextAgain()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.showNext();
        QCOMPARE(flow.GetFocusIndex(), 1);
        QCOMPARE(flow.animator().target, 1);
        flow.updateAnimation();
        flow.showNext();
        QCOMPARE(flow.GetFocusIndex(), 2);
        QCOMPARE(flow.animator().target, 2);
        QSignalSpy changes(&flow, &PictureFlow::centerIndexChanged);
        run(flow);
        QCOMPARE(flow.centerIndex(), 2);
        QCOMPARE(int(changes.count()), 2);
        QCOMPARE(changes.at(0).at(0).toInt(), 1);
        QCOMPARE(changes.at(1).at(0).toInt(), 2);
    }

    void focusRunsPastTheLastSlide()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.setCenterIndex(3);
        flow.showNext();
        flow.updateAnimation();
        flow.showNext();
        QCOMPARE(flow.animator().target, 4);
        QCOMPARE(flow.GetFocusIndex(), 5);
        run(flow);
        QCOMPARE(flow.centerIndex(), 4);
        QCOMPARE(flow.GetFocusIndex(), 5);
    }

    void focusRunsBelowTheFirstSlide()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.setCenterIndex(1);
        flow.showPrevious();
        flow.updateAnimation();
        flow.showPrevious();
        QCOMPARE(flow.animator().target, 0);
        QCOMPARE(flow.GetFocusIndex(), -1);
        run(flow);
        QCOMPARE(flow.centerIndex(), 0);
    }

    void atTheEndsNothingChanges()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.focusIndex = 77;
        flow.showPrevious();
        QCOMPARE(flow.GetFocusIndex(), 77);
        QCOMPARE(flow.animator().step, 0);
        flow.setCenterIndex(4);
        flow.showNext();
        QCOMPARE(flow.GetFocusIndex(), 77);
        QCOMPARE(flow.animator().step, 0);
    }

    void emptyListHasNothingToTurnTo()
    {
        PictureFlow flow;
        flow.resize(320, 240);
        flow.showNext();
        flow.showPrevious();
        flow.showSlide(3);
        flow.clear();
        flow.updateAnimation();
        QCOMPARE(flow.animator().step, 0);
        QCOMPARE(flow.centerIndex(), 0);
        QCOMPARE(flow.grab().toImage().pixelColor(160, 100), QColor(Qt::black));
    }

    void turningBackGoesHome()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.setCenterIndex(2);
        flow.showNext();
        flow.updateAnimation();
        flow.showPrevious();
        QCOMPARE(flow.GetFocusIndex(), 2);
        QCOMPARE(flow.animator().target, 2);
        flow.updateAnimation();
        QCOMPARE(flow.animator().step, 0);
        flow.showPrevious();
        flow.updateAnimation();
        flow.showNext();
        QCOMPARE(flow.GetFocusIndex(), 2);
        flow.updateAnimation();
        QCOMPARE(flow.animator().step, 0);
        QCOMPARE(flow.centerIndex(), 2);
    }

    void showSlideLeavesTheFocus()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.focusIndex = 3;
        flow.showSlide(0); // stands there already
        QCOMPARE(flow.animator().step, 0);
        flow.showSlide(99);
        QCOMPARE(flow.animator().target, 4);
        QCOMPARE(flow.GetFocusIndex(), 3);
        run(flow);
        QCOMPARE(flow.centerIndex(), 4);
        flow.showSlide(-99);
        run(flow);
        QCOMPARE(flow.centerIndex(), 0);
        QCOMPARE(flow.GetFocusIndex(), 3);
    }

    void keysTurnTheStrip()
    {
        PictureFlow flow;
        addSlides(flow, 30);
        flow.setCenterIndex(15);
        QVERIFY(pressKey(flow, Qt::Key_Right));
        QCOMPARE(flow.animator().target, 16);
        QCOMPARE(flow.GetFocusIndex(), 16);
        flow.setCenterIndex(15);
        QVERIFY(pressKey(flow, Qt::Key_Left));
        QCOMPARE(flow.animator().target, 14);
        QVERIFY(!pressKey(flow, Qt::Key_Up));
        QVERIFY(!pressKey(flow, Qt::Key_Return, Qt::ControlModifier));
        QCOMPARE(flow.animator().target, 14);
    }

    void controlJumpsTen_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("target");
        QTest::newRow("right") << int(Qt::Key_Right) << 30 << 5 << 15;
        QTest::newRow("right, cut at the last") << int(Qt::Key_Right) << 5 << 1 << 4;
        QTest::newRow("left") << int(Qt::Key_Left) << 30 << 15 << 5;
        QTest::newRow("left, cut at the first") << int(Qt::Key_Left) << 5 << 3 << 0;
    }
    void controlJumpsTen()
    {
        QFETCH(int, key);
        QFETCH(int, count);
        QFETCH(int, from);
        QFETCH(int, target);
        PictureFlow flow;
        addSlides(flow, count);
        flow.setCenterIndex(from);
        flow.focusIndex = 42;
        QVERIFY(pressKey(flow, key, Qt::ControlModifier));
        QCOMPARE(flow.animator().target, target);
        QCOMPARE(flow.GetFocusIndex(), 42);
        flow.setCenterIndex(from);
        pressKey(flow, key, Qt::ControlModifier | Qt::ShiftModifier); // not exactly Control
        QCOMPARE(flow.animator().target, from + (key == int(Qt::Key_Right) ? 1 : -1));
    }

    void pressesTurnTheStrip()
    {
        PictureFlow flow;
        flow.resize(321, 240);
        addSlides(flow, 5);
        for (int x : {161, 320}) {
            flow.setCenterIndex(2);
            press(flow, x);
            QCOMPARE(flow.animator().target, 3);
        }
        for (int x : {160, 0}) { // the middle itself counts as left
            flow.setCenterIndex(2);
            press(flow, x);
            QCOMPARE(flow.animator().target, 1);
        }
    }

    void theAnimationIsDrivenByItsTimer()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.showNext();
        QTimer& timer = timerOf(flow, "animateTimer");
        QCOMPARE(timer.interval(), 150);
        QTimerEvent event(timer.timerId());
        QCoreApplication::sendEvent(&timer, &event);
        QCOMPARE(flow.animator().frame, std::int64_t(16944));
        QVERIFY(isRenderPending(flow));
    }

    void atRestNoTimerRuns()
    {
        PictureFlow flow;
        flow.resize(320, 240);
        addSlides(flow, 5);
        flow.show();
        flow.showNext();
        run(flow);
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
        for (const QTimer* timer : flow.findChildren<QTimer*>())
            QVERIFY(!timer->isActive());
    }

    /** Every operation in any order, against the second calculation. */
    void randomWalks()
    {
        std::mt19937 random(7);
        for (int count : {1, 2, 5, 13, 40}) {
            PictureFlow flow;
            addSlides(flow, count);
            flow.setSlideSize(QSize(100, 100));
            flow.setCenterIndex(0);
            FlowModel::Strip model;
            model.width = 100;
            model.count = count;
            model.setCenter(0);
            for (int i = 0; i < 12000; ++i) {
                const int index = int(random() % unsigned(count + 8)) - 4;
                doAny(random, index, flow, model);
                const Fields is = fieldsOf(flow);
                const Fields expected = fieldsOf(model);
                for (std::size_t field = 0; field < is.size(); ++field)
                    QVERIFY2(
                        is[field] == expected[field],
                        qPrintable(
                            QStringLiteral("%1 slides, step %2, field %3").arg(count).arg(i).arg(field)));
            }
        }
    }
};

VIREO_TEST_MAIN(PictureFlowTurnsTest)
#include "tst_pictureflowturns.moc"
