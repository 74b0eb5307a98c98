#include "tests/support/panelmain.h"
#include "tests/widgets/flowscene.h"
#include "widgets/pictureflowsurface.h"

using namespace FlowScene;

class PictureFlowSurfaceTest : public QObject {
    Q_OBJECT

private slots:
    void reflections_data()
    {
        QTest::addColumn<int>("effect");
        QTest::addColumn<int>("atFoot"); // 256ths of the slide
        QTest::addColumn<int>("last"); // of the rows that are not ground
        QTest::newRow("none") << 0 << 0 << -1;
        QTest::newRow("mirror") << 1 << 128 << 99;
        QTest::newRow("fading") << 2 << 126 << 69;
        QTest::newRow("fading and soft") << 3 << 126 << 69;
        QTest::newRow("unknown is none") << 77 << 0 << -1;
        QTest::newRow("negative is none") << -1 << 0 << -1;
    }
    void reflections()
    {
        QFETCH(int, effect);
        QFETCH(int, atFoot);
        QFETCH(int, last);
        const PictureFlowSurface surface(plain(QSize(100, 100), Qt::white), QSize(100, 100),
                                         PictureFlow::ReflectionEffect(effect), qRgb(0, 0, 0));
        QCOMPARE(surface.slideHeight(), 100);
        QCOMPARE(surface.height(), 100 + last + 1);
        int before = 256;
        for (int row = 0; row <= last; ++row) {
            const int value = qRed(narrowPixel(surface.column(50)[100 + row]));
            QVERIFY2(value <= before, "never brighter farther down");
            before = value;
        }
        if (last >= 0)
            QVERIFY(std::abs(qRed(narrowPixel(surface.column(50)[100])) - atFoot * 255 / 256) <= 1);
        if (last == 69)
            QVERIFY(before == 0);
    }

    void mirrorShowsTheSlideUpsideDown()
    {
        const QImage image = noise(QSize(40, 30), 5);
        const QRgb ground = qRgb(10, 60, 90);
        const PictureFlowSurface surface(image, image.size(), PictureFlow::MirrorReflection, ground);
        for (int x = 0; x < 40; ++x)
            for (int y = 0; y < 30; ++y) {
                const QRgb mirrored = narrowPixel(surface.column(x)[30 + y]);
                const QRgb source = image.pixel(x, 29 - y);
                QVERIFY(std::abs(2 * qRed(mirrored) - qRed(source) - qRed(ground)) <= 1);
                QVERIFY(std::abs(2 * qGreen(mirrored) - qGreen(source) - qGreen(ground)) <= 1);
                QVERIFY(std::abs(2 * qBlue(mirrored) - qBlue(source) - qBlue(ground)) <= 1);
            }
    }

    void softReflectionGrowsSofter()
    {
        QImage stripes(100, 100, QImage::Format_RGB32);
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x)
                stripes.setPixel(x, y, x / 2 % 2 ? 0xFFFFFFFF : 0xFF000000);
        const QSize size(100, 100);
        const PictureFlowSurface sharp(stripes, size, PictureFlow::FadingReflection, 0);
        const PictureFlowSurface soft(stripes, size, PictureFlow::SoftReflection, 0);
        const auto contrast = [](const PictureFlowSurface& surface, int row) {
            return qRed(narrowPixel(surface.column(50)[row])) - qRed(narrowPixel(surface.column(52)[row]));
        };
        QCOMPARE(std::abs(contrast(soft, 100)), std::abs(contrast(sharp, 100))); // sharp at the foot
        QVERIFY(std::abs(contrast(soft, 110)) < std::abs(contrast(sharp, 110)));
        QVERIFY(std::abs(contrast(soft, 130)) * 4 < std::abs(contrast(sharp, 130)));
    }

    void opaqueColumnsAreKnown()
    {
        QImage image = plain(QSize(10, 10), Qt::white);
        image.setPixel(4, 7, qRgba(0, 0, 0, 0));
        const PictureFlowSurface surface(image, image.size(), PictureFlow::NoReflection, 0);
        const auto opaque = [&](double from, double to) {
            return surface.isOpaque({int(from * PixelSpan::one), int(to * PixelSpan::one)});
        };
        QVERIFY(opaque(0, 4));
        QVERIFY(!opaque(0, 4.1));
        QVERIFY(!opaque(4, 5));
        QVERIFY(opaque(5, 10));
    }
};

VIREO_TEST_MAIN(PictureFlowSurfaceTest)
#include "tst_pictureflowsurface.moc"
