#include "tests/support/panelmain.h"
#include "tests/support/strings.h"
#include "tests/widgets/flowmodel.h"
#include "widgets/pictureflow.h"
#include "widgets/pictureflowanimator.h"
#include "widgets/pictureflowstate.h"

#include <QMetaProperty>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

#include <array>
#include <climits>
#include <functional>
#include <random>

namespace {

QImage slideOf(QColor color)
{
    QImage image(100, 100, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

void addSlides(PictureFlow& flow, int count)
{
    for (int i = 0; i < count; ++i)
        flow.addSlide(slideOf(QColor(40 * i % 256, 255 - 20 * i % 256, 90)));
}

QTimer& timerOf(PictureFlow& flow, const char* name)
{
    return *flow.findChild<QTimer*>(QString::fromLatin1(name));
}

bool isRenderPending(PictureFlow& flow)
{
    return timerOf(flow, "triggerTimer").isActive();
}

/** Fires what is pending, so that the next change shows. */
void settle(PictureFlow& flow)
{
    timerOf(flow, "triggerTimer").stop();
    flow.render();
}

void run(PictureFlow& flow)
{
    for (int i = 0; i < 500 && flow.animator().step != 0; ++i)
        flow.updateAnimation();
}

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

class PictureFlowTest : public QObject {
    Q_OBJECT

private slots:
    void interface()
    {
        const QMetaObject& meta = PictureFlow::staticMetaObject;
        QCOMPARE(
            ownMethods(meta).join(QLatin1Char(' ')),
            QStringLiteral("centerIndexChanged(int) addSlide(QImage) addSlide(QPixmap) setSlide(int,QImage) "
                           "setSlide(int,QPixmap) setCenterIndex(int) clear() showPrevious() showNext() "
                           "showSlide(int) render() triggerRender() updateAnimation()"));
        QStringList properties;
        for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i)
            properties << QString::fromLatin1(meta.property(i).name())
                    + QLatin1String(meta.property(i).isWritable() ? "" : " read only");
        QCOMPARE(properties.join(QStringLiteral(", ")),
                 QStringLiteral("backgroundColor, slideSize, slideCount read only, centerIndex"));
    }

    void newWidget()
    {
        PictureFlow flow;
        QCOMPARE(flow.slideCount(), 0);
        QCOMPARE(flow.slideSize(), QSize(150, 200));
        QCOMPARE(flow.backgroundColor(), QColor(Qt::black));
        QCOMPARE(int(flow.reflectionEffect()), 2);
        QCOMPARE(flow.centerIndex(), 0);
        QVERIFY(flow.testAttribute(Qt::WA_StaticContents));
        QVERIFY(flow.testAttribute(Qt::WA_OpaquePaintEvent));
        QVERIFY(flow.testAttribute(Qt::WA_NoSystemBackground));
        QVERIFY(!timerOf(flow, "animateTimer").isActive());
    }

    void settersKeepTheirValue()
    {
        PictureFlow flow;
        flow.setBackgroundColor(QColor(10, 20, 30, 40));
        QCOMPARE(flow.backgroundColor(), QColor(10, 20, 30)); // the colour's opacity is not kept
        flow.setSlideSize(QSize(80, 60));
        QCOMPARE(flow.slideSize(), QSize(80, 60));
        QCOMPARE(qint64(flow.state().offsetX), (FlowModel::Strip{80}.offsetX()));
        flow.setReflectionEffect(PictureFlow::SoftReflection);
        QCOMPARE(int(flow.reflectionEffect()), 3);
    }

    void sizeAloneMovesNoSlide()
    {
        PictureFlow flow;
        const int cx = flow.state().rightSlides[0].cx;
        flow.setSlideSize(QSize(100, 100));
        QCOMPARE(flow.state().rightSlides[0].cx, cx);
        flow.setCenterIndex(0);
        QCOMPARE(flow.state().rightSlides[0].cx, 136250);
    }

    void slidesAreCopies()
    {
        PictureFlow flow;
        QImage image = slideOf(Qt::red);
        flow.addSlide(image);
        image.fill(Qt::blue);
        flow.addSlide(QPixmap::fromImage(slideOf(Qt::green)));
        QCOMPARE(flow.slideCount(), 2);
        QCOMPARE(flow.slide(0).pixelColor(5, 5), QColor(Qt::red));
        QCOMPARE(flow.slide(1).pixelColor(5, 5), QColor(0, 255, 0));
        flow.setSlide(0, image);
        flow.setSlide(1, QPixmap::fromImage(slideOf(Qt::white)));
        QCOMPARE(flow.slide(0).pixelColor(5, 5), QColor(Qt::blue));
        QCOMPARE(flow.slide(1).pixelColor(5, 5), QColor(Qt::white));
        QCOMPARE(flow.slideCount(), 2);
    }

    void slidesOutsideTheListAreIgnored()
    {
        PictureFlow flow;
        addSlides(flow, 3);
        for (int index : {-1, 3, INT_MAX, INT_MIN}) {
            flow.setSlide(index, slideOf(Qt::red));
            flow.setSlide(index, QPixmap(2, 2));
            QVERIFY(flow.slide(index).isNull());
        }
        QCOMPARE(flow.slideCount(), 3);
    }

    /** What the file holds by then shows that nobody read it before. */
    void ownImagesAreDecodedWhenTheyAreSeen()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("slide.png"));
        QVERIFY(slideOf(Qt::red).save(path));
        PictureFlow flow;
        flow.resize(320, 240);
        flow.setSlideSize(QSize(100, 100));
        flow.addOwnSlide(path);
        QCOMPARE(flow.slideCount(), 1);
        QVERIFY(isRenderPending(flow));
        QVERIFY(slideOf(Qt::green).save(path));
        QCOMPARE(flow.grab().toImage().pixelColor(160, 95), QColor(Qt::green));
        QVERIFY(slideOf(Qt::blue).save(path));
        QCOMPARE(flow.slide(0).pixelColor(5, 5), QColor(Qt::green));
    }

    void ownImagesAreThereForWhoeverAsks()
    {
        const QString path = QStringLiteral(":/menuicon/image/usb_icon.png");
        PictureFlow flow;
        flow.addOwnSlide(path);
        QCOMPARE(flow.slide(0), QImage(path));
        flow.addOwnSlide(path);
        QCOMPARE(*flow.state().imageAt(1), QImage(path));
    }

    void ownImagesAreReplacedUnseen()
    {
        const QString path = QStringLiteral(":/menuicon/image/usb_icon.png");
        PictureFlow flow;
        flow.addOwnSlide(path);
        flow.setSlide(0, slideOf(Qt::red));
        QCOMPARE(flow.slide(0), slideOf(Qt::red));
        flow.addOwnSlide(path);
        flow.clear();
        flow.addSlide(slideOf(Qt::red));
        flow.addSlide(slideOf(Qt::red));
        QCOMPARE(flow.slide(1), slideOf(Qt::red));
    }

    void everySetterAsksForOneRendering_data()
    {
        QTest::addColumn<int>("setter");
        const char* names[] = {"background", "size",   "effect", "add image", "add pixmap", "set image",
                               "set pixmap", "centre", "resize", "animation", "clear"};
        for (int i = 0; i < 11; ++i)
            QTest::newRow(names[i]) << i;
    }
    void everySetterAsksForOneRendering()
    {
        QFETCH(int, setter);
        PictureFlow flow;
        addSlides(flow, 2);
        const std::function<void()> setters[] = {
            [&] { flow.setBackgroundColor(Qt::red); },
            [&] { flow.setSlideSize(QSize(9, 9)); },
            [&] { flow.setReflectionEffect(PictureFlow::NoReflection); },
            [&] { flow.addSlide(slideOf(Qt::red)); },
            [&] { flow.addSlide(QPixmap(3, 3)); },
            [&] { flow.setSlide(0, slideOf(Qt::red)); },
            [&] { flow.setSlide(0, QPixmap(3, 3)); },
            [&] { flow.setCenterIndex(1); },
            [&] {
                QResizeEvent event(QSize(9, 9), QSize(8, 8));
                QCoreApplication::sendEvent(&flow, &event);
            },
            [&] { flow.updateAnimation(); },
            [&] { flow.clear(); },
        };
        settle(flow);
        QVERIFY(!isRenderPending(flow));
        setters[setter]();
        QVERIFY(isRenderPending(flow));
        QTimer& trigger = timerOf(flow, "triggerTimer");
        QCOMPARE(trigger.interval(), 0);
        QVERIFY(trigger.isSingleShot()); // nothing keeps waking
    }

    void manyChangesPaintOnce()
    {
        PictureFlow flow;
        flow.resize(320, 240);
        addSlides(flow, 5);
        flow.show();
        QCoreApplication::processEvents();
        struct PaintCounter : QObject {
            int count = 0;
            bool eventFilter(QObject*, QEvent* event) override
            {
                count += event->type() == QEvent::Paint ? 1 : 0;
                return false;
            }
        } counter;
        QCoreApplication::processEvents();
        flow.installEventFilter(&counter);
        for (int i = 0; i < 20; ++i)
            flow.setCenterIndex(i % 5);
        QCOMPARE(counter.count, 0);
        for (int i = 0; i < 5; ++i)
            QCoreApplication::processEvents();
        QCOMPARE(counter.count, 1);
        QVERIFY(!isRenderPending(flow));
    }

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

    void clearForgetsEverything()
    {
        PictureFlow flow;
        addSlides(flow, 5);
        flow.setCenterIndex(3);
        flow.showNext();
        flow.clear();
        QCOMPARE(flow.slideCount(), 0);
        QCOMPARE(flow.centerIndex(), 0);
        QCOMPARE(flow.animator().step, 0);
        QVERIFY(flow.slide(0).isNull());
        addSlides(flow, 2);
        flow.showNext();
        QCOMPARE(flow.animator().target, 1);
    }

    void paintsTheCentreSlide()
    {
        PictureFlow flow;
        flow.resize(320, 240);
        flow.setSlideSize(QSize(100, 100));
        flow.addSlide(slideOf(QColor(10, 200, 30)));
        flow.addSlide(QImage()); // takes its place in the list and shows nothing
        flow.setCenterIndex(0);
        QCOMPARE(flow.grab().toImage().pixelColor(160, 95), QColor(10, 200, 30));
        flow.setSlide(0, slideOf(QColor(1, 2, 3)));
        QCOMPARE(flow.grab().toImage().pixelColor(160, 95), QColor(1, 2, 3));
        flow.setCenterIndex(1);
        QCOMPARE(flow.grab().toImage().pixelColor(160, 95), QColor(Qt::black));
        flow.setBackgroundColor(QColor(7, 8, 9));
        QCOMPARE(flow.grab().toImage().pixelColor(160, 95), QColor(7, 8, 9));
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

VIREO_TEST_MAIN(PictureFlowTest)
#include "tst_pictureflow.moc"
