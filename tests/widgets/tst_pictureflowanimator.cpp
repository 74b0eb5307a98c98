#include "tests/support/panelmain.h"
#include "tests/widgets/flowbench.h"

#include <climits>
#include <random>

using FlowModel::Strip;

class PictureFlowAnimatorTest : public QObject {
    Q_OBJECT

private slots:
    void sineFollowsItsTable()
    {
        for (int angle = -3000; angle < 3000; ++angle) {
            QCOMPARE(qint64(FlowMath::sine(angle)), FlowModel::sine(angle));
            QCOMPARE(qint64(FlowMath::cosine(angle)), FlowModel::sine(angle + 256));
        }
        QCOMPARE(FlowMath::sine(0), 3); // the table is not quite even
        QCOMPARE(FlowMath::sine(256), 1023);
        QCOMPARE(FlowMath::sine(768), -1024);
        QCOMPARE(FlowMath::sine(1023), -4); // -98 and 15 16ths of 101, rounded towards zero
        QCOMPARE(FlowMath::sine(INT_MAX), FlowMath::sine(1023));
        QCOMPARE(FlowMath::sine(INT_MIN), 3);
        QCOMPARE(FlowMath::cosine(INT_MAX), FlowMath::sine(255));
    }

    void productsAreRoundedDown()
    {
        QCOMPARE(FlowMath::multiply(1024, 1024), 1024);
        QCOMPARE(FlowMath::multiply(1, 1023), 0);
        QCOMPARE(FlowMath::multiply(-1, 1), -1);
        QCOMPARE(FlowMath::multiply(INT_MAX, 1024), INT_MAX);
    }

    void newState()
    {
        const PictureFlowState state;
        QCOMPARE(state.backgroundColor, QRgb(0));
        QCOMPARE(state.slideWidth, 150);
        QCOMPARE(state.slideHeight, 200);
        QCOMPARE(int(state.reflectionEffect), 2);
        QVERIFY(state.slideImages.empty());
        QCOMPARE(state.angle, 199);
        QCOMPARE(state.spacing, 40);
        QCOMPARE(state.offsetX, 204375);
        QCOMPARE(state.offsetY, 110475);
        QCOMPARE(state.centerIndex, 0);
        QCOMPARE(int(state.leftSlides.size()), 6);
        QCOMPARE(int(state.rightSlides.size()), 6);
    }

    void offsetsOfSlideWidths_data()
    {
        QTest::addColumn<int>("width");
        for (int width : {0, 1, 2, 3, 99, 100, 101, 150, 4096, PictureFlowState::maximumWidth, -1, -99})
            QTest::addRow("%d", width) << width;
    }
    void offsetsOfSlideWidths()
    {
        QFETCH(int, width);
        const Bench bench(width);
        QCOMPARE(qint64(bench.state.offsetX), bench.model.offsetX());
        QCOMPARE(qint64(bench.state.offsetY), bench.model.offsetY());
        QCOMPARE(bench.difference(), QString());
    }

    void hugeWidthsOverflowNothing()
    {
        PictureFlowState state;
        for (int width : {INT_MAX, INT_MIN}) {
            state.slideWidth = width;
            state.reposition();
            state.reset();
            QCOMPARE(state.offsetX > 0, width > 0);
            QCOMPARE(state.rightSlides[5].cx, state.offsetX + 5 * 40 * 1024);
        }
    }

    void restAroundTheCentre()
    {
        PictureFlowState state;
        state.slideWidth = 100;
        state.reposition();
        state.centerIndex = 7;
        state.reset();
        const int blends[] = {256, 256, 256, 256, 128, 0};
        QCOMPARE(state.centerSlide.slideIndex, 7);
        QCOMPARE(state.centerSlide.blend, 256);
        for (int i = 0; i < 6; ++i) {
            const SlideInfo& left = state.leftSlides[size_t(i)];
            const SlideInfo& right = state.rightSlides[size_t(i)];
            QCOMPARE(left.slideIndex, 6 - i);
            QCOMPARE(right.slideIndex, 8 + i);
            QCOMPARE(left.angle, 199);
            QCOMPARE(right.angle, -199);
            QCOMPARE(left.cx, -136250 - i * 40960);
            QCOMPARE(right.cx, 136250 + i * 40960);
            QCOMPARE(left.cy, 73650);
            QCOMPARE(right.cy, 73650);
            QCOMPARE(left.blend, blends[i]);
            QCOMPARE(right.blend, blends[i]);
        }
    }

    /** Numbers worked out by hand calculation of single moves, 100 pixels wide. */
    void movesByNumber_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<int>("tick");
        QTest::addColumn<int>("frame");
        QTest::addColumn<QList<int>>("center"); // angle, cx, cy
        QTest::addColumn<QList<int>>("neighbour"); // angle, cx, cy of the one that comes to the centre
        QTest::addColumn<int>("leftX"); // of the second slide on that side
        QTest::addColumn<int>("rightX");
        QTest::addColumn<QList<int>>("fading"); // blends of the last three left, then right
        using L = QList<int>;
        QTest::newRow("right, first")
            << 0 << 1 << 1 << 16944 << L{51, -35126, 18987} << L{-147, 100989, 54590} << -187770 << 166650
            << L{223, 95, 0, 256, 161, 33};
        QTest::newRow("right, second")
            << 0 << 1 << 2 << 27424 << L{83, -56948, 30783} << L{-115, 79168, 42794} << -194330 << 160090
            << L{203, 75, 0, 256, 181, 53};
        QTest::newRow("right, tenth")
            << 0 << 1 << 10 << 53232 << L{161, -110570, 59768} << L{-37, 25546, 13809} << -210450 << 143970
            << L{153, 25, 0, 256, 231, 103};
        QTest::newRow("right, last") << 0 << 1 << 26 << 65088 << L{197, -135318, 73146} << L{-1, 931, 503}
                                     << -217890 << 136530 << L{129, 1, 0, 256, 255, 127};
        QTest::newRow("left, first") << 2 << 1 << 1 << 114128 << L{-52, 35126, 18987}
                                     << L{147, -100989, 54590} << -166650 << 187770
                                     << L{256, 162, 34, 222, 94, 0};
        QTest::newRow("left, tenth") << 2 << 1 << 10 << 77840 << L{-162, 110570, 59768}
                                     << L{37, -25546, 13809} << -143970 << 210450
                                     << L{256, 232, 104, 152, 24, 0};
        QTest::newRow("left, last") << 2 << 1 << 26 << 65984 << L{-198, 135318, 73146} << L{1, -931, 503}
                                    << -136530 << 217890 << L{256, 256, 128, 128, 0, 0};
    }
    void movesByNumber()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(int, tick);
        QFETCH(int, frame);
        QFETCH(QList<int>, center);
        QFETCH(QList<int>, neighbour);
        QFETCH(int, leftX);
        QFETCH(int, rightX);
        QFETCH(QList<int>, fading);
        Bench bench(100, from);
        bench.start(to);
        for (int i = 0; i < tick; ++i)
            bench.animator.update();
        const PictureFlowState& state = bench.state;
        const auto placeOf = [](const SlideInfo& slide) {
            return QList<int>{slide.angle, slide.cx, slide.cy};
        };
        QCOMPARE(bench.animator.frame, std::int64_t(frame));
        QCOMPARE(placeOf(state.centerSlide), center);
        QCOMPARE(placeOf(to > from ? state.rightSlides[0] : state.leftSlides[0]), neighbour);
        QCOMPARE(state.leftSlides[1].cx, leftX);
        QCOMPARE(state.rightSlides[1].cx, rightX);
        QList<int> blends;
        for (size_t i = 3; i < 6; ++i)
            blends << state.leftSlides[i].blend;
        for (size_t i = 3; i < 6; ++i)
            blends << state.rightSlides[i].blend;
        QCOMPARE(blends, fading);
    }

    void oneSlideTakes27Ticks()
    {
        Bench bench;
        bench.start(1);
        for (int i = 0; i < 26; ++i)
            bench.animator.update();
        QCOMPARE(bench.state.centerIndex, 0);
        QVERIFY(bench.animator.animateTimer.isActive());
        bench.animator.update();
        QCOMPARE(bench.state.centerIndex, 1);
        QCOMPARE(bench.animator.step, 0);
        QVERIFY(!bench.animator.animateTimer.isActive());
    }

    void everyFieldOfEveryStep_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        for (int width : {100, 150, 1, 0, 33})
            for (int to : {49, 51, 48, 52, 40, 60, 50})
                QTest::addRow("%d wide, to %d", width, to) << width << 50 << to;
    }
    void everyFieldOfEveryStep()
    {
        QFETCH(int, width);
        QFETCH(int, from);
        QFETCH(int, to);
        Bench bench(width, from);
        bench.start(to);
        for (int i = 0; i < 200; ++i) {
            QCOMPARE(bench.difference(), QString());
            bench.tick();
        }
        QCOMPARE(bench.difference(), QString());
        if (to != from)
            QCOMPARE(bench.state.centerIndex, to);
    }

    void farFromTheTargetItRunsAboutHalfASlide()
    {
        Bench bench(100, 0);
        bench.start(10);
        bench.animator.update();
        QCOMPARE(bench.animator.frame, std::int64_t(16 * (1056 + 1023)));
    }

    void anotherTargetWhileMoving()
    {
        Bench bench(100, 50);
        bench.start(51);
        for (int i = 0; i < 5; ++i)
            bench.tick();
        const auto frame = bench.animator.frame;
        bench.start(53);
        QCOMPARE(bench.animator.frame, frame); // only the target moves
        QCOMPARE(bench.animator.step, 1);
        for (int i = 0; i < 200; ++i) {
            bench.tick();
            QCOMPARE(bench.difference(), QString());
        }
        QCOMPARE(bench.state.centerIndex, 53);
    }

    void turningBackWhileMoving_data()
    {
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("then");
        QTest::newRow("right, then left of the start") << 53 << 47;
        QTest::newRow("left, then right of the start") << 47 << 53;
        QTest::newRow("right, then one left of the start") << 51 << 49;
        QTest::newRow("left, then one right of the start") << 49 << 51;
    }
    void turningBackWhileMoving()
    {
        QFETCH(int, first);
        QFETCH(int, then);
        for (int ticks = 1; ticks < 30; ++ticks) {
            Bench bench(100, 50);
            bench.start(first);
            for (int i = 0; i < ticks; ++i)
                bench.tick();
            bench.start(then);
            const int step = bench.animator.step;
            bench.tick();
            QCOMPARE(bench.difference(), QString());
            if (ticks < 3)
                QCOMPARE(bench.animator.step, -step);
            for (int i = 0; i < 300; ++i) {
                bench.tick();
                QCOMPARE(bench.difference(), QString());
            }
            QCOMPARE(bench.state.centerIndex, then);
        }
    }

    void targetBackAtTheCentreSnapsHome()
    {
        Bench bench(100, 3);
        bench.start(4);
        bench.tick();
        bench.start(3);
        bench.tick();
        QCOMPARE(bench.difference(), QString());
        QCOMPARE(bench.animator.step, 0);
        QCOMPARE(bench.state.centerSlide.cx, 0);
    }

    void idleItDoesNothing()
    {
        Bench bench(100, 3);
        bench.state.centerSlide.cx = 77;
        bench.animator.update();
        QCOMPARE(bench.state.centerSlide.cx, 77);
        bench.animator.step = 1; // the timer still stands
        bench.animator.update();
        QCOMPARE(bench.state.centerSlide.cx, 77);
        bench.animator.step = 0;
        bench.animator.animateTimer.start(1000);
        bench.animator.update();
        QCOMPARE(bench.state.centerSlide.cx, 77);
    }

    void withoutAStateNothingMoves()
    {
        PictureFlowAnimator animator(nullptr);
        animator.start(3);
        QCOMPARE(animator.target, 3);
        QCOMPARE(animator.step, 0);
        QVERIFY(!animator.animateTimer.isActive());
        animator.update();
        animator.stop(2);
        QCOMPARE(animator.frame, std::int64_t(2 * 65536));
    }

    void ticksEvery150Milliseconds()
    {
        Bench bench;
        bench.start(1);
        QCOMPARE(bench.animator.animateTimer.interval(), 150);
        QVERIFY(!bench.animator.animateTimer.isSingleShot());
    }

    void farSlidesOverflowNothing()
    {
        for (int slide : {40000, 1000000, INT_MAX - 100}) {
            Bench bench(100, 0);
            bench.model.count = INT_MAX;
            bench.moveTo(slide);
            bench.start(slide - 1);
            for (int i = 0; i < 40; ++i) {
                bench.tick();
                QCOMPARE(bench.difference(), QString());
            }
            QCOMPARE(bench.state.centerIndex, slide - 1);
        }
    }

    void randomWalks()
    {
        std::mt19937 random(20240611);
        Bench bench(100, 500);
        for (int i = 0; i < 60000; ++i) {
            const unsigned action = random() % 40;
            if (action == 0)
                bench.start(int(500 + random() % 21) - 10);
            else if (action == 1)
                bench.start(bench.state.centerIndex + int(random() % 5) - 2);
            else if (action == 2 && random() % 10 == 0)
                bench.moveTo(int(490 + random() % 20));
            else
                bench.tick();
            const QString text = bench.difference();
            QVERIFY2(text.isEmpty(), qPrintable(QStringLiteral("step %1: %2").arg(i).arg(text)));
        }
    }
};

VIREO_TEST_MAIN(PictureFlowAnimatorTest)
#include "tst_pictureflowanimator.moc"
