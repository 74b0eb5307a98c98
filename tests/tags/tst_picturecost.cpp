#include "app/limits.h"
#include "app/pixels.h"
#include "tags/coverpicture.h"
#include "tests/support/panelmain.h"
#include "tests/tags/jpegbuilder.h"
#include "tests/tags/packedpictures.h"
#include "tests/tags/peakmemory.h"

#include <QDir>

using namespace JpegBuilder;

namespace {

constexpr qint64 MiB = 1024 * 1024;

/** Writes large pictures quickly. */
constexpr int littlePacked = 80;

QByteArray saved(const QImage& image, const char* format)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format, littlePacked))
        qFatal("no image plugin writes %s", format);
    return buffer.data();
}

/** Four areas: red and green above, blue and white below. */
QImage quarters(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        QRgb* line = pixelsOf(image.scanLine(y));
        const bool isAbove = y < height / 2;
        std::fill(line, line + width / 2, isAbove ? qRgb(255, 0, 0) : qRgb(0, 0, 255));
        std::fill(line + width / 2, line + width, isAbove ? qRgb(0, 255, 0) : qRgb(255, 255, 255));
    }
    return image;
}

bool isNear(QRgb colour, QRgb expected)
{
    const auto differs = [](int a, int b) { return qAbs(a - b) > 8; };
    return !differs(qRed(colour), qRed(expected)) && !differs(qGreen(colour), qGreen(expected))
        && !differs(qBlue(colour), qBlue(expected));
}

int threads()
{
    return int(QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

/** The memory, in bytes, that decoding takes at its peak; none where that cannot be told. */
qint64 memoryOf(const QByteArray& file, QPixmap* cover)
{
    PeakMemory::reset();
    const qint64 before = PeakMemory::used();
    *cover = coverPicture(file);
    return PeakMemory::isMeaningful ? PeakMemory::used() - before : 0;
}

QByteArray gif(int width, int height)
{
    return "GIF89a" + littleEndian(quint32(width)).left(2) + littleEndian(quint32(height)).left(2)
        + bytesOf("\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;");
}

/** A PNG with a further part before its end, which has no checksum. */
QByteArray pngBreakingOff(const QByteArray& part)
{
    constexpr int endBytes = 12;
    constexpr int checksumBytes = 4;
    QByteArray file = saved(quarters(60, 60), "PNG").chopped(checksumBytes);
    return file.insert(file.size() - (endBytes - checksumBytes), part);
}

} // namespace

class PictureCostTest : public QObject {
    Q_OBJECT

private slots:
    /** Comes first: threads that another picture has started would go on. */
    void noThreadIsStarted()
    {
        const QByteArray file = saved(quarters(2000, 2000), "BMP");
        const int before = threads();
        QVERIFY(!coverPicture(file).isNull());
        QCOMPARE(threads(), before);
    }

    void withinTheBoundsPicturesLoad_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("mostMiB");
        QTest::newRow("baseline, 16 megapixels") << jpeg(Baseline, {4096, 4096}, "\x11\x11\x11") << 4;
        QTest::newRow("progressive, 16 megapixels")
            << jpeg(Progressive, {4096, 4096}, "\x11\x11\x11", 10) << 16;
        QTest::newRow("four inks, progressive, 16 megapixels")
            << jpeg(Progressive, {4096, 4096}, "\x11\x11\x11\x11", 10) << 24;
        QTest::newRow("coefficients of colours") << jpeg(Progressive, {5790, 5790}, "\x11\x11\x11") << 60;
        QTest::newRow("coefficients of four inks")
            << jpeg(Progressive, {5790, 5790}, "\x11\x11\x11\x11") << 80;
        QTest::newRow("colours one by one") << jpeg(Baseline, {5790, 5790}, "\x11\x11\x11")
                                                   .replace(scan(3, true, false), scan(1, true, false))
                                            << 60;
        QTest::newRow("as many scans as may be")
            << jpeg(Progressive, {600, 600}, "\x11", limits::jpegScans) << 4;
        QTest::newRow("arithmetic") << jpeg(Arithmetic, {1000, 1000}, "\x11") << 4;
        QTest::newRow("a million remarks")
            << jpeg(Baseline, {60, 60}, "\x11", 1, segment(Remark, "a: b").repeated(1000 * 1000)) << 4;
        QTest::newRow("PNG of 16 megapixels") << saved(quarters(4096, 4096), "PNG") << 4;
        QTest::newRow("PNG of 16 megapixels, 16 bits a channel")
            << saved(quarters(4096, 4096).convertToFormat(QImage::Format_RGBA64), "PNG") << 4;
        QTest::newRow("PNG of 32 megapixels") << saved(QImage(quarters(8192, 4096)), "PNG") << 4;
        QTest::newRow("PNG of 30 MB, without its last checksum")
            << pngBreakingOff(PackedPictures::pngPart("tEXt", "a" + QByteArray(30 * MiB, '\0'))) << 4;
        QTest::newRow("GIF of 32 megapixels") << gif(8192, 4096) << 4;
    }
    void withinTheBoundsPicturesLoad()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, mostMiB);
        QPixmap cover;
        const qint64 taken = memoryOf(file, &cover);
        QVERIFY2(taken <= mostMiB * MiB, qPrintable(QString::number(taken)));
        QCOMPARE(cover.size(), QSize(100, 100));
    }

    void outsideThemTheyAreNotDecoded_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("one scan too many") << jpeg(Progressive, {600, 600}, "\x11", limits::jpegScans + 1);
        QTest::newRow("too many scans for the size") << jpeg(Progressive, {4000, 4000}, "\x11", 100);
        QTest::newRow("20,000 scans") << jpeg(Progressive, {600, 600}, "\x11\x11\x11", 20000);
        QTest::newRow("larger than any picture") << jpeg(Baseline, {65535, 65535}, "\x11");
        QTest::newRow("arithmetic of 9 megapixels") << jpeg(Arithmetic, {3000, 3000}, "\x11");
        QTest::newRow("too long for many scans")
            << jpeg(Progressive, {600, 600}, "\x11", 2) + QByteArray(limits::jpegScansBytes, '\0');
        QTest::newRow("PNG of 33 megapixels") << saved(QImage(8192, 4097, QImage::Format_Mono), "PNG");
        QTest::newRow("PNG of 17 megapixels, 16 bits a channel")
            << saved(quarters(4096, 4097).convertToFormat(QImage::Format_RGBA64), "PNG");
        QTest::newRow("PNG of 30 MB whose text is longer still")
            << pngBreakingOff(bigEndian(1U << 30) + "tEXta" + QByteArray(30 * MiB, '\0'));
        QTest::newRow("GIF on 33 megapixels") << gif(8192, 4097);
        QTest::newRow("GIF of 33 megapixels on fewer") << PackedPictures::gif({10, 10}, {8192, 4097}, 1);
        QTest::newRow("XPM of many bytes")
            << saved(QImage(quarters(60, 60)), "XPM") + QByteArray(limits::textPictureBytes, ' ');
        QTest::newRow("BMP of many bytes")
            << saved(quarters(60, 60), "BMP") + QByteArray(limits::rarePictureBytes, '\0');
    }
    void outsideThemTheyAreNotDecoded()
    {
        QFETCH(QByteArray, file);
        QPixmap cover;
        QVERIFY(memoryOf(file, &cover) < 4 * MiB);
        QVERIFY(cover.isNull());
    }

    void largerJpegsAreDecodedReduced_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("20 megapixels") << saved(quarters(5000, 4000), "JPEG");
        QTest::newRow("24 megapixels upright") << saved(quarters(4000, 6000), "JPEG");
        QTest::newRow("a strip") << saved(quarters(50000, 420), "JPEG");
    }
    void largerJpegsAreDecodedReduced()
    {
        QFETCH(QByteArray, file);
        QPixmap cover;
        QVERIFY(memoryOf(file, &cover) < 16 * MiB);
        QCOMPARE(cover.size(), QSize(100, 100));
        const QImage image = cover.toImage();
        const auto sees = [&image](int x, int y, QRgb colour) { return isNear(image.pixel(x, y), colour); };
        for (const int low : {0, 20, 46}) {
            const int high = 99 - low;
            QVERIFY(sees(low, low, qRgb(255, 0, 0)) && sees(high, low, qRgb(0, 255, 0)));
            QVERIFY(sees(low, high, qRgb(0, 0, 255)) && sees(high, high, qRgb(255, 255, 255)));
        }
    }

    void largerProgressiveJpegIsDecodedReducedToo()
    {
        QPixmap cover;
        QVERIFY(memoryOf(jpeg(Progressive, {4600, 4600}, "\x22\x11\x11", 6), &cover) < 40 * MiB);
        QCOMPARE(cover.size(), QSize(100, 100));
    }

    void bmpStoredFromTopToBottomLoads_data()
    {
        QTest::addColumn<QImage::Format>("format");
        QTest::newRow("true colour") << QImage::Format_RGB32;
        QTest::newRow("palette") << QImage::Format_Indexed8;
        QTest::newRow("two colours") << QImage::Format_Mono;
    }
    void bmpStoredFromTopToBottomLoads()
    {
        QFETCH(QImage::Format, format);
        constexpr int heightAt = 22;
        constexpr int dataAt = 10;
        const QImage image = quarters(64, 50).convertToFormat(format);
        const QByteArray upward = saved(image, "BMP");
        QByteArray downward = upward;
        const int rows = int(qFromLittleEndian<quint32>(upward.constData() + dataAt));
        const int rowBytes = int(upward.size() - rows) / 50;
        for (int y = 0; y < 50; ++y)
            downward.replace(rows + y * rowBytes, rowBytes, upward.mid(rows + (49 - y) * rowBytes, rowBytes));
        downward.replace(heightAt, 4, littleEndian(quint32(-50)));
        QVERIFY(!coverPicture(downward).isNull());
        QCOMPARE(coverPicture(downward).toImage(), coverPicture(upward).toImage());
    }

    void bmpOfNoPossibleHeightDoesNot()
    {
        QByteArray file = saved(quarters(64, 50), "BMP");
        file.replace(22, 4, littleEndian(0x80000000U));
        QVERIFY(coverPicture(file).isNull());
    }
};

VIREO_TEST_MAIN(PictureCostTest)
#include "tst_picturecost.moc"
