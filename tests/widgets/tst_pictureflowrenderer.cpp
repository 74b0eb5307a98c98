#include "tests/support/panelmain.h"
#include "tests/widgets/flowreference.h"
#include "tests/widgets/flowscene.h"

#include <climits>

using namespace FlowReference;
using namespace FlowScene;

class PictureFlowRendererTest : public QObject {
    Q_OBJECT

private slots:
    void differsLittleFromThePlainWay_data()
    {
        QTest::addColumn<int>("effect");
        QTest::addColumn<double>("moved"); // part of a move to the right
        QTest::addColumn<QSize>("slide");
        QTest::addColumn<double>("worst"); // at hard edges, where the renderer's filter is a little wider
        for (int effect = 0; effect < 4; ++effect)
            QTest::addRow("at rest, effect %d", effect) << effect << 0.0 << QSize(100, 100) << 40.0;
        for (double moved : {0.07, 0.25, 0.5, 0.8, 0.97})
            QTest::addRow("%g of a move", moved) << 3 << moved << QSize(100, 100) << 40.0;
        QTest::newRow("odd slides") << 2 << 0.3 << QSize(91, 77) << 40.0;
        QTest::newRow("tall slides") << 1 << 0.3 << QSize(60, 130) << 60.0;
        QTest::newRow("small slides") << 3 << 0.6 << QSize(20, 20) << 80.0;
    }
    void differsLittleFromThePlainWay()
    {
        QFETCH(int, effect);
        QFETCH(double, moved);
        QFETCH(QSize, slide);
        QFETCH(double, worst);
        Scene scene(QSize(320, 240), slide, PictureFlow::ReflectionEffect(effect));
        for (int i = 0; i < 9; ++i)
            scene.add(drawn(slide, i));
        scene.center(4);
        PictureFlowState& state = scene.state;
        state.centerSlide.angle = int(199 * moved);
        state.centerSlide.cx = -int(state.offsetX * moved);
        state.centerSlide.cy = int(state.offsetY * moved);
        state.rightSlides[0].angle = -int(199 * (1 - moved));
        state.rightSlides[0].cx = int(state.offsetX * (1 - moved));
        state.rightSlides[0].cy = int(state.offsetY * (1 - moved));
        state.leftSlides[1].blend = 100;
        const Difference d = difference(scene.frame(), Reference(state, QSize(320, 240)));
        QVERIFY2(d.mean < 0.5, qPrintable(QString::number(d.mean)));
        QVERIFY2(d.worst < worst, qPrintable(QString::number(d.worst)));
    }

    void clearSlidesDifferLittleToo()
    {
        Scene scene;
        for (int i = 0; i < 7; ++i) {
            QImage image(100, 100, QImage::Format_ARGB32);
            for (int y = 0; y < 100; ++y)
                for (int x = 0; x < 100; ++x)
                    image.setPixel(x, y, qRgba(200, 50 + 20 * i, x, qBound(0, 2 * y, 255)));
            scene.add(image);
        }
        scene.state.backgroundColor = qRgb(20, 60, 30);
        scene.center(3);
        const Difference d = difference(scene.frame(), Reference(scene.state, QSize(320, 240)));
        QVERIFY2(d.mean < 0.5, qPrintable(QString::number(d.mean)));
        QVERIFY2(d.worst < 20, qPrintable(QString::number(d.worst)));
    }

    void centredSlideIsExact_data()
    {
        QTest::addColumn<QSize>("widget");
        QTest::addColumn<QSize>("slide");
        QTest::addColumn<int>("effect");
        for (int effect = 0; effect < 4; ++effect)
            QTest::addRow("the menu's, effect %d", effect) << QSize(320, 240) << QSize(100, 100) << effect;
        QTest::newRow("odd slide") << QSize(320, 240) << QSize(99, 101) << 3;
        QTest::newRow("odd widget") << QSize(319, 241) << QSize(100, 100) << 3;
        QTest::newRow("all odd") << QSize(321, 243) << QSize(33, 35) << 2;
        QTest::newRow("larger than the widget") << QSize(50, 40) << QSize(100, 100) << 3;
        QTest::newRow("one pixel") << QSize(320, 240) << QSize(1, 1) << 0;
    }
    void centredSlideIsExact()
    {
        QFETCH(QSize, widget);
        QFETCH(QSize, slide);
        QFETCH(int, effect);
        Scene scene(widget, slide, PictureFlow::ReflectionEffect(effect));
        const QImage image = noise(slide, 3);
        scene.add(image);
        const QImage frame = scene.frame();
        const QPoint corner = scene.centerCorner();
        for (int y = 0; y < slide.height(); ++y)
            for (int x = 0; x < slide.width(); ++x)
                if (frame.rect().contains(corner + QPoint(x, y)))
                    QCOMPARE(frame.pixel(corner + QPoint(x, y)), image.pixel(x, y));
        for (int y = 0; y < frame.height(); ++y) // and nothing beside it
            for (int x : {corner.x() - 1, corner.x() + slide.width()})
                if (frame.rect().contains(x, y))
                    QCOMPARE(frame.pixel(x, y), qRgb(0, 0, 0));
    }

    void otherImageSizesAreScaledToTheSlide()
    {
        Scene scene;
        scene.add(plain(QSize(7, 300), QColor(1, 200, 3)));
        const QImage frame = scene.frame();
        const QRect slide(scene.centerCorner(), QSize(100, 100));
        QCOMPARE(frame.pixelColor(slide.topLeft()), QColor(1, 200, 3));
        QCOMPARE(frame.pixelColor(slide.bottomRight()), QColor(1, 200, 3));
        QCOMPARE(frame.pixelColor(slide.topLeft() - QPoint(1, 0)), QColor(Qt::black));
    }

    void outermostFirst()
    {
        Scene scene(QSize(320, 240), QSize(100, 100), PictureFlow::NoReflection);
        for (int i = 0; i < 13; ++i)
            scene.add(plain(QSize(100, 100), QColor(20 * i, 0, 0)));
        scene.center(6);
        PictureFlowState& state = scene.state;
        // All at one place, flat: what is drawn later is what one sees.
        std::vector<SlideInfo*> painted;
        for (int i = 5; i >= 0; --i)
            painted.push_back(&state.leftSlides[size_t(i)]);
        for (int i = 5; i >= 0; --i)
            painted.push_back(&state.rightSlides[size_t(i)]);
        painted.push_back(&state.centerSlide);
        for (SlideInfo* slide : painted)
            *slide = {slide->slideIndex, 0, 0, 0, 256};
        while (!painted.empty()) {
            const int index = painted.back()->slideIndex;
            QCOMPARE(scene.frame().pixelColor(160, 120), QColor(20 * index, 0, 0));
            painted.back()->slideIndex = -1;
            painted.pop_back();
        }
        QCOMPARE(scene.frame().pixelColor(160, 120), QColor(Qt::black));
    }

    void whatShowsThroughIsNotLeftOut()
    {
        Scene scene(QSize(320, 240), QSize(100, 100), PictureFlow::NoReflection);
        scene.add(plain(QSize(100, 100), QColor(200, 0, 0)));
        scene.add(plain(QSize(100, 100), QColor(0, 200, 0)));
        scene.empty();
        scene.state.leftSlides[0] = {0, 0, 0, 0, 256};
        scene.state.centerSlide = {1, 0, 0, 0, 128};
        QCOMPARE(scene.frame().pixelColor(160, 120), QColor(100, 100, 0));
        scene.state.centerSlide.blend = 256;
        QCOMPARE(scene.frame().pixelColor(160, 120), QColor(0, 200, 0));
        scene.state.slideImages[1] = std::make_unique<QImage>(plain(QSize(100, 100), Qt::transparent));
        QCOMPARE(scene.frame().pixelColor(160, 120), QColor(200, 0, 0));
    }

    void blends_data()
    {
        QTest::addColumn<int>("blend");
        QTest::addColumn<int>("value");
        QTest::newRow("opaque") << 256 << 250;
        QTest::newRow("half") << 128 << 130;
        QTest::newRow("a quarter") << 64 << 70;
        QTest::newRow("invisible") << 0 << 10;
        QTest::newRow("below") << -40 << 10;
        QTest::newRow("above") << 999 << 250;
    }
    void blends()
    {
        QFETCH(int, blend);
        QFETCH(int, value);
        Scene scene;
        scene.add(plain(QSize(100, 100), QColor(250, 250, 250)));
        scene.state.backgroundColor = qRgb(10, 10, 10);
        scene.state.centerSlide.blend = blend;
        QVERIFY(std::abs(scene.frame().pixelColor(160, 80).red() - value) <= 1);
    }

    void slidesOutsideTheListAreSkipped()
    {
        Scene scene;
        scene.state.backgroundColor = qRgb(5, 6, 7);
        for (int i = 0; i < 3; ++i)
            scene.add(plain(QSize(100, 100), Qt::white));
        for (int index : {-1, 3, INT_MAX, INT_MIN}) {
            for (auto* side : {&scene.state.leftSlides, &scene.state.rightSlides})
                for (SlideInfo& slide : *side)
                    slide.slideIndex = index;
            scene.state.centerSlide.slideIndex = index;
            const QImage frame = scene.frame();
            QCOMPARE(frame, plain(QSize(320, 240), QColor(5, 6, 7)).convertToFormat(frame.format()));
        }
    }

    void sidesMirrorEachOther()
    {
        Scene scene;
        QImage image = drawn(QSize(100, 100), 1);
        for (int i = 0; i < 5; ++i)
            scene.add(i < 2        ? image
                          : i == 2 ? plain(QSize(100, 100), Qt::gray)
                                   : image.mirrored(true, false));
        scene.center(2);
        const QImage frame = scene.frame();
        const QImage mirrored = frame.mirrored(true, false);
        for (int y = 0; y < 240; ++y)
            for (int x = 0; x < 320; ++x)
                for (int c = 0; c < 3; ++c)
                    QVERIFY(std::abs(Reference::channelOf(frame.pixel(x, y), c)
                                     - Reference::channelOf(mirrored.pixel(x, y), c))
                            <= 6);
    }

    /** A slide that moves by parts of a pixel keeps its light: its edges move evenly, and nothing blinks. */
    void movingSlideKeepsItsLight_data()
    {
        QTest::addColumn<int>("angle");
        QTest::addColumn<int>("depth");
        QTest::newRow("flat") << 0 << 0;
        QTest::newRow("turned") << 199 << 73650;
        QTest::newRow("turned the other way") << -199 << 73650;
        QTest::newRow("half way") << 100 << 36000;
    }
    void movingSlideKeepsItsLight()
    {
        QFETCH(int, angle);
        QFETCH(int, depth);
        Scene scene(QSize(320, 240), QSize(60, 60), PictureFlow::NoReflection);
        QImage checks(60, 60, QImage::Format_RGB32);
        for (int y = 0; y < 60; ++y)
            for (int x = 0; x < 60; ++x)
                checks.setPixel(x, y, (x + y) % 2 ? 0xFFFFFFFF : 0xFF000000);
        scene.add(checks);
        scene.empty();
        double before = 0;
        for (int cx = 0; cx < 2 * 1024; cx += 64) {
            scene.state.centerSlide = {0, angle, cx, depth, 256};
            const QImage frame = scene.frame();
            double light = 0;
            for (int y = 0; y < 240; ++y)
                for (int x = 0; x < 320; ++x)
                    light += qGreen(frame.pixel(x, y)) / 255.0;
            if (cx > 0)
                QVERIFY2(std::abs(light - before) < 0.01 * before,
                         qPrintable(QString::number(light / before)));
            before = light;
        }
    }

    void changedSettingsAndImagesAreSeen()
    {
        Scene scene;
        scene.add(plain(QSize(100, 100), Qt::red));
        QCOMPARE(scene.frame().pixelColor(160, 80), QColor(Qt::red));
        *scene.state.slideImages[0] = plain(QSize(100, 100), Qt::blue);
        QCOMPARE(scene.frame().pixelColor(160, 80), QColor(Qt::blue));
        scene.state.slideWidth = 4;
        QCOMPARE(scene.frame().pixelColor(150, 80), QColor(Qt::black));
        scene.state.slideWidth = 100;
        scene.state.reflectionEffect = PictureFlow::NoReflection;
        QCOMPARE(scene.frame().pixelColor(160, 200), QColor(Qt::black));
        scene.state.reflectionEffect = PictureFlow::MirrorReflection;
        QVERIFY(scene.frame().pixelColor(160, 200) != QColor(Qt::black));
        const QColor dark = scene.frame().pixelColor(160, 200);
        scene.state.backgroundColor = qRgb(255, 255, 255);
        QVERIFY(scene.frame().pixelColor(160, 200) != dark);
    }

    void anUnchangedFrameIsNotDrawnAgain()
    {
        Scene scene;
        scene.add(plain(QSize(100, 100), Qt::red));
        scene.frame();
        QVERIFY(!scene.renderer.dirty);
        *scene.state.slideImages[0] = plain(QSize(100, 100), Qt::blue);
        scene.renderer.render();
        QCOMPARE(scene.renderer.frame().pixelColor(160, 80), QColor(Qt::red));
        scene.renderer.init();
        scene.renderer.render();
        QCOMPARE(scene.renderer.frame().pixelColor(160, 80), QColor(Qt::blue));
    }

    void anySizesSurvive_data()
    {
        QTest::addColumn<QSize>("widget");
        for (QSize size : {QSize(0, 0), QSize(0, 5), QSize(5, 0), QSize(1, 1), QSize(2, 3), QSize(7, 1),
                           QSize(1, 7), QSize(319, 239), QSize(641, 11)})
            QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }
    void anySizesSurvive()
    {
        QFETCH(QSize, widget);
        const int sides[] = {INT_MIN, -1, 0, 1, 2, 3, 17, 100, 1023, 1025, 5000, 1 << 20, INT_MAX};
        for (int width : sides)
            for (int height : sides) {
                const bool large = width > 1000 && height > 1000;
                if (large && widget != QSize(2, 3))
                    continue; // once is enough
                Scene scene(widget, QSize(width, height), PictureFlow::SoftReflection);
                for (int i = 0; i < 4; ++i)
                    scene.add(i == 2 ? QImage() : plain(QSize(3, 2), QColor(90, 90, 90)));
                scene.center(1);
                QCOMPARE(scene.frame().size(), widget.isEmpty() ? QSize(0, 0) : widget);
            }
    }

    void resizedWidgetGetsANewFrame()
    {
        Scene scene;
        scene.add(plain(QSize(100, 100), Qt::red));
        scene.frame();
        for (QSize size : {QSize(200, 100), QSize(0, 0), QSize(1, 1), QSize(320, 240)}) {
            scene.widget.resize(size);
            scene.renderer.render();
            QCOMPARE(scene.renderer.frame().size(), size);
        }
        QCOMPARE(scene.renderer.frame().pixelColor(160, 80), QColor(Qt::red));
    }

    void anyPlacesSurvive()
    {
        std::mt19937 random(11);
        const auto any = [&](std::initializer_list<int> values) {
            return *(values.begin() + random() % values.size());
        };
        Scene scene(QSize(64, 48), QSize(30, 20), PictureFlow::SoftReflection);
        for (int i = 0; i < 3; ++i)
            scene.add(drawn(QSize(30, 20), i));
        for (int round = 0; round < 3000; ++round) {
            const auto place = [&](SlideInfo& slide) {
                slide = {int(random() % 3), any({0, 1, -1, 199, -199, 255, 256, 257, 512, INT_MAX, INT_MIN}),
                         any({0, 1, -30000, 30000, 70000, INT_MAX, INT_MIN, int(random())}),
                         any({0, 1, -30000, 30000, -58000, INT_MAX, INT_MIN, int(random())}),
                         int(random() % 257)};
            };
            for (auto* side : {&scene.state.leftSlides, &scene.state.rightSlides})
                for (SlideInfo& slide : *side)
                    place(slide);
            place(scene.state.centerSlide);
            QCOMPARE(scene.frame().size(), QSize(64, 48));
        }
    }

    void slidesSeenFromBehindOrEdgeOnAreNotDrawn()
    {
        Scene scene;
        scene.add(plain(QSize(100, 100), Qt::white));
        scene.empty();
        const QImage ground = scene.frame();
        for (int angle : {256, -256, 512, 300, -300}) {
            scene.state.centerSlide = {0, angle, 0, 0, 256};
            QCOMPARE(scene.frame(), ground);
        }
        scene.state.centerSlide = {0, 0, 0, -190 * 1024, 256}; // at the eye itself
        QCOMPARE(scene.frame(), ground);
    }
};

VIREO_TEST_MAIN(PictureFlowRendererTest)
#include "tst_pictureflowrenderer.moc"
