#include "tags/nearestpixels.h"
#include "tests/support/panelmain.h"

#include <QPixmap>

namespace {

QImage drawn(QSize size, QImage::Format format)
{
    QImage image(size, QImage::Format_ARGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgba(x % 256, y % 256, x / 256 * 16 + y / 256, 255 - (x + y) % 40));
    const bool hasAlpha = QImage::toPixelFormat(format).alphaUsage() == QPixelFormat::UsesAlpha;
    return image.convertToFormat(hasAlpha ? image.format() : QImage::Format_RGB32).convertToFormat(format);
}

/** A pixmap of the whole image, scaled: the same with more memory. */
QImage scaledAsPixmap(const QImage& image)
{
    return QPixmap::fromImage(image)
        .scaled(100, 100, Qt::IgnoreAspectRatio, Qt::FastTransformation)
        .toImage();
}

QImage nearest(const QImage& image)
{
    return QPixmap::fromImage(nearestPixels(image, {100, 100})).toImage();
}

} // namespace

class NearestPixelsTest : public QObject {
    Q_OBJECT

private slots:
    void asAPixmapIsScaled_data()
    {
        QTest::addColumn<QSize>("size");
        for (const int width : {1, 2, 3, 33, 50, 99, 100, 101, 150, 199, 200, 201, 333, 640, 999, 1417, 3000})
            for (const int height : {1, 7, 99, 100, 101, 500, 767, 1999})
                QTest::addRow("%d by %d", width, height) << QSize(width, height);
    }
    void asAPixmapIsScaled()
    {
        QFETCH(QSize, size);
        const QImage image = drawn(size, QImage::Format_RGB32);
        QCOMPARE(nearest(image), scaledAsPixmap(image));
    }

    void inEveryFormat_data()
    {
        QTest::addColumn<int>("format");
        for (int format = QImage::Format_Mono; format <= QImage::Format_Grayscale16; ++format)
            QTest::addRow("%d", format) << format;
    }
    void inEveryFormat()
    {
        QFETCH(int, format);
        const QImage image = drawn({333, 217}, QImage::Format(format));
        QCOMPARE(nearest(image), scaledAsPixmap(image));
        QCOMPARE(nearestPixels(image, {100, 100}).format(), image.format());
    }

    void longestSide()
    {
        const QImage image = drawn({65535, 2}, QImage::Format_RGB32);
        QCOMPARE(nearest(image), scaledAsPixmap(image));
    }

    void nothingOfNothing() { QVERIFY(nearestPixels(QImage(), {100, 100}).isNull()); }
};

VIREO_TEST_MAIN(NearestPixelsTest)
#include "tst_nearestpixels.moc"
