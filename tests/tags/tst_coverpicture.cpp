#include "tags/coverpicture.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/tags/covers.h"
#include "tests/tags/jpegbuilder.h"
#include "tests/tags/peakmemory.h"

using namespace MediaBuilder;

namespace {

QByteArray saved(const QImage& image, const char* format, int quality = -1)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format, quality))
        qFatal("no image plugin writes %s", format);
    return buffer.data();
}

QImage drawn(int width, int height, QImage::Format format)
{
    QImage image(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgba(x * 7 % 256, y * 5 % 256, (x + y) % 256, (x * y) % 256));
    }
    return image.convertToFormat(format);
}

/** A PNG file of one colour, little compressed. */
QByteArray blankPng(int width, int height, QImage::Format format)
{
    QImage image(width, height, format);
    image.fill(0);
    return saved(image, "PNG", 80);
}

/** A GIF of one red pixel on a screen of the given size. */
QByteArray gifOnScreen(const QByteArray& screenSize)
{
    return "GIF89a" + screenSize + bytesOf("\x80\0\0\xFF\0\0\0\0\xFF") + bytesOf(",\0\0\0\0\1\0\1\0\0")
        + bytesOf("\2\2\x44\1\0;");
}

/** A PNG file of few bytes whose texts are millions of characters long. */
QByteArray pngWithLongTexts()
{
    QImage image = drawn(30, 20, QImage::Format_RGB32);
    for (int i = 0; i < 4; ++i)
        image.setText(QStringLiteral("text %1").arg(i), QString(7900000, QLatin1Char('x')));
    return saved(image, "PNG");
}

QImage withText(QImage image, const QString& text)
{
    image.setText(QStringLiteral("Title"), text);
    return image;
}

/** A PNG file with the head of a chunk of 1 GiB at byte `at`; counted from the end where negative. */
QByteArray pngClaimingMuch(const char* name, int at)
{
    QByteArray file = imageFile("PNG");
    file.insert(at < 0 ? file.size() + at : at, bigEndian(1U << 30) + name + "data");
    return file;
}

/** An icon file of one picture that is claimed to be 16 by 16. */
QByteArray iconHolding(const QByteArray& png)
{
    const auto word = [](quint16 number) { return littleEndian(number).left(2); };
    return word(0) + word(1) + word(1) + bytesOf("\x10\x10\0\0") + word(1) + word(32)
        + littleEndian(quint32(png.size())) + littleEndian(22) + png;
}

} // namespace

class CoverPictureTest : public QObject {
    Q_OBJECT

private slots:
    void asTheToolkitLoadsAndScales_data()
    {
        QTest::addColumn<QByteArray>("file");
        const QImage::Format argb = QImage::Format_ARGB32;
        const QImage::Format rgb = QImage::Format_RGB32;
        QTest::newRow("JPEG") << saved(drawn(300, 200, rgb), "JPEG");
        QTest::newRow("JPEG, grey") << saved(drawn(300, 200, QImage::Format_Grayscale8), "JPEG");
        QTest::newRow("PNG") << saved(drawn(300, 200, rgb), "PNG");
        QTest::newRow("PNG with transparency") << saved(drawn(300, 200, argb), "PNG");
        QTest::newRow("PNG with a palette") << saved(drawn(300, 200, QImage::Format_Indexed8), "PNG");
        QTest::newRow("PNG of two colours") << saved(drawn(300, 200, QImage::Format_Mono), "PNG");
        QTest::newRow("PNG, grey") << saved(drawn(300, 200, QImage::Format_Grayscale8), "PNG");
        QTest::newRow("PNG of 16 bits a channel") << saved(drawn(300, 200, QImage::Format_RGBA64), "PNG");
        QTest::newRow("PNG with a text")
            << saved(withText(drawn(300, 200, argb), QStringLiteral("short")), "PNG");
        QTest::newRow("PNG with a packed text")
            << saved(withText(drawn(300, 200, argb), QString(500, QLatin1Char('x'))), "PNG");
        QTest::newRow("PNG with a text beyond Latin-1")
            << saved(withText(drawn(300, 200, argb), QStringLiteral("노래")), "PNG");
        QTest::newRow("PNG without the last checksum") << saved(drawn(300, 200, rgb), "PNG").chopped(4);
        QTest::newRow("PNG cut in the last checksum") << saved(drawn(300, 200, rgb), "PNG").chopped(3);
        QTest::newRow("bytes behind a PNG") << saved(drawn(300, 200, rgb), "PNG") + "more bytes";
        QTest::newRow("BMP") << saved(drawn(300, 200, rgb), "BMP");
        QTest::newRow("PPM") << saved(drawn(300, 200, rgb), "PPM");
        QTest::newRow("PGM") << saved(drawn(300, 200, QImage::Format_Grayscale8), "PGM");
        QTest::newRow("PBM") << saved(drawn(300, 200, QImage::Format_Mono), "PBM");
        QTest::newRow("XPM") << saved(drawn(20, 20, rgb), "XPM");
        QTest::newRow("XBM") << saved(drawn(20, 20, QImage::Format_Mono), "XBM");
        QTest::newRow("GIF") << gifOnScreen(bytesOf("\1\0\1\0"));
        QTest::newRow("one pixel") << saved(drawn(1, 1, rgb), "PNG");
        QTest::newRow("a line") << saved(drawn(1, 3000, argb), "PNG");
        QTest::newRow("a wide strip") << saved(drawn(3001, 3, rgb), "JPEG");
        QTest::newRow("already the right size") << saved(drawn(100, 100, argb), "PNG");
        QTest::newRow("one off the right size") << saved(drawn(99, 101, rgb), "JPEG");
        QTest::newRow("bytes behind the picture") << saved(drawn(300, 200, rgb), "JPEG") + "more bytes";
        QTest::newRow("second half missing") << saved(drawn(300, 200, rgb), "JPEG").left(20000);
    }
    void asTheToolkitLoadsAndScales()
    {
        QFETCH(QByteArray, file);
        const QPixmap cover = coverPicture(file);
        QCOMPARE(cover.size(), QSize(100, 100));
        QCOMPARE(cover.toImage(), coverOf(file));
    }

    void whatIsNoPictureDoesNotLoad_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("text") << QByteArray("no picture");
        QTest::newRow("first bytes of a PNG") << imageFile("PNG").left(20);
        QTest::newRow("first bytes of a JPEG") << imageFile("JPEG").left(30);
        QTest::newRow("PNG without its first byte") << imageFile("PNG").mid(1);
        QTest::newRow("PNG without its end") << imageFile("PNG").chopped(12);
        QTest::newRow("PNG cut in the name of its end") << imageFile("PNG").chopped(5);
        for (const int components : {0, 2, 5, 10, 11, 255})
            QTest::addRow("JPEG of %d components", components)
                << JpegBuilder::jpeg(JpegBuilder::Baseline, {40, 30}, QByteArray(components, '\x11'));
        QTest::newRow("PNG that begins with a text")
            << imageFile("PNG").insert(8, bytesOf("\0\0\0\0tEXt\x96\x42\xC5\x85"));
    }
    void whatIsNoPictureDoesNotLoad()
    {
        QFETCH(QByteArray, file);
        QVERIFY(coverPicture(file).isNull());
    }

    void largestPictureLoads()
    {
        const QByteArray file = blankPng(8192, 4096, QImage::Format_Mono);
        QCOMPARE(coverPicture(file).size(), QSize(100, 100));
    }

    void largerPicturesAreNotDecoded_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("one line more than the largest") << blankPng(8192, 4097, QImage::Format_Mono);
        QTest::newRow("30,000 by 30,000 in few bytes") << blankPng(30000, 30000, QImage::Format_Mono);
    }
    void largerPicturesAreNotDecoded()
    {
        QFETCH(QByteArray, file);
        QVERIFY(file.startsWith("\x89PNG"));
        QVERIFY(coverPicture(file).isNull());
    }

    void textsOfAPngTakeNoMemory()
    {
        const QByteArray file = pngWithLongTexts();
        QVERIFY(file.size() < 200000);
        PeakMemory::reset();
        const qint64 before = PeakMemory::used();
        const QPixmap cover = coverPicture(file);
        QVERIFY(PeakMemory::used() - before < 16 * 1024 * 1024);
        QCOMPARE(cover.toImage(), coverOf(saved(drawn(30, 20, QImage::Format_RGB32), "PNG")));
    }

    void chunkLongerThanThePngTakesNoMemory_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("text before the pixels") << pngClaimingMuch("tEXt", 33);
        QTest::newRow("text behind the pixels") << pngClaimingMuch("zTXt", -12);
        QTest::newRow("palettes before the pixels") << pngClaimingMuch("sPLT", 33);
        QTest::newRow("unknown data behind the pixels") << pngClaimingMuch("abCd", -12);
    }
    void chunkLongerThanThePngTakesNoMemory()
    {
        QFETCH(QByteArray, file);
        PeakMemory::reset();
        const qint64 before = PeakMemory::used();
        QVERIFY(coverPicture(file).isNull());
        QVERIFY(PeakMemory::used() - before < 16 * 1024 * 1024);
    }

    void pictureInsideAnIconIsNotUnpacked()
    {
        const QByteArray icon = iconHolding(imageFile("PNG"));
        QPixmap pixmap;
        QVERIFY(pixmap.loadFromData(icon)); // the toolkit would unpack it, whatever its real size
        QVERIFY(coverPicture(icon).isNull());
    }

    void missingRowsOfABmpAreBlank_data()
    {
        QTest::addColumn<QImage>("image");
        QTest::addColumn<int>("rowBytes");
        QTest::newRow("true colour") << drawn(50, 50, QImage::Format_RGB32) << 152;
        QTest::newRow("palette") << drawn(50, 50, QImage::Format_Indexed8) << 52;
    }
    /** The file begins with the last row. Left alone the toolkit shows what was in memory before. */
    void missingRowsOfABmpAreBlank()
    {
        QFETCH(QImage, image);
        QFETCH(int, rowBytes);
        const int missing = 20;
        const QByteArray file = saved(image, "BMP").chopped(missing * rowBytes);
        std::fill_n(image.bits(), missing * image.bytesPerLine(), uchar(0));
        const QImage expected = coverOf(saved(image, "BMP"));
        for (int times = 0; times < 20; ++times) {
            QImage(image.size(), image.format()).fill(0xFF);
            QCOMPARE(coverPicture(file).toImage(), expected);
        }
    }

    void screenOfAGifCountsAsWell_data()
    {
        QTest::addColumn<int>("side");
        QTest::addColumn<bool>("loads");
        QTest::newRow("150") << 150 << true;
        QTest::newRow("15000") << 15000 << false;
        QTest::newRow("65535") << 65535 << false;
    }
    void screenOfAGifCountsAsWell()
    {
        QFETCH(int, side);
        QFETCH(bool, loads);
        const QByteArray word = littleEndian(quint32(side)).left(2);
        const QByteArray gif = gifOnScreen(word + word);
        QCOMPARE(coverPicture(gif).isNull(), !loads);
        if (loads)
            QCOMPARE(coverPicture(gif).toImage(), coverOf(gif));
    }
};

VIREO_TEST_MAIN(CoverPictureTest)
#include "tst_coverpicture.moc"
