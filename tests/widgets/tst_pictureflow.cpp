#include "tests/support/panelmain.h"
#include "tests/support/strings.h"
#include "tests/widgets/flowmodel.h"
#include "tests/widgets/flowstage.h"
#include "widgets/pictureflow.h"
#include "widgets/pictureflowanimator.h"
#include "widgets/pictureflowstate.h"

#include <QMetaProperty>
#include <QTemporaryDir>

#include <climits>
#include <functional>

using namespace FlowStage;

/** The widget itself: its interface, its slides, and when it paints. */
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
    void resourceImagesAreDecodedWhenTheyAreSeen()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("slide.png"));
        QVERIFY(slideOf(Qt::red).save(path));
        PictureFlow flow;
        flow.resize(320, 240);
        flow.setSlideSize(QSize(100, 100));
        flow.addResourceSlide(path);
        QCOMPARE(flow.slideCount(), 1);
        QVERIFY(isRenderPending(flow));
        QVERIFY(slideOf(Qt::green).save(path));
        QCOMPARE(flow.grab().toImage().pixelColor(160, 95), QColor(Qt::green));
        QVERIFY(slideOf(Qt::blue).save(path));
        QCOMPARE(flow.slide(0).pixelColor(5, 5), QColor(Qt::green));
    }

    void resourceImagesAreThereForWhoeverAsks()
    {
        const QString path = QStringLiteral(":/menuicon/image/usb_icon.png");
        PictureFlow flow;
        flow.addResourceSlide(path);
        QCOMPARE(flow.slide(0), QImage(path));
        flow.addResourceSlide(path);
        QCOMPARE(*flow.state().imageAt(1), QImage(path));
    }

    void resourceImagesAreReplacedUnseen()
    {
        const QString path = QStringLiteral(":/menuicon/image/usb_icon.png");
        PictureFlow flow;
        flow.addResourceSlide(path);
        flow.setSlide(0, slideOf(Qt::red));
        QCOMPARE(flow.slide(0), slideOf(Qt::red));
        flow.addResourceSlide(path);
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
};

VIREO_TEST_MAIN(PictureFlowTest)
#include "tst_pictureflow.moc"
