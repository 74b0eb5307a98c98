#include "tags/coverpicture.h"
#include "tests/support/panelmain.h"
#include "tests/tags/packedpictures.h"
#include "tests/tags/pictureencoders.h"

#include <random>

using namespace PictureEncoders;

namespace {

QImage pixels(const QPixmap& pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/** What the toolkit itself makes of an image file, scaled as covers are; null where it does not load. */
QImage asTheToolkit(const QByteArray& file)
{
    QPixmap pixmap;
    if (!pixmap.loadFromData(file))
        return {};
    return pixels(pixmap.scaled(100, 100, Qt::IgnoreAspectRatio, Qt::FastTransformation));
}

QImage ours(const QByteArray& file)
{
    return pixels(coverPicture(file));
}

/** The most by which a colour of a pixel differs. */
int farthest(const QImage& one, const QImage& other)
{
    int most = 0;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width() * 4; ++x)
            most = std::max(most, std::abs(one.constScanLine(y)[x] - other.constScanLine(y)[x]));
    return most;
}

/** Bytes below `end`, never two times the same. */
QByteArray noise(int count, int end = 256)
{
    static std::mt19937 random(1);
    QByteArray bytes(count, '\0');
    for (char& byte : bytes)
        byte = char(random() % quint32(end));
    return bytes;
}

/** Shapes with some grain, so that coefficients of all kinds are there and neighbours differ. */
QImage photo(QSize size, QImage::Format format)
{
    QImage image(size, format);
    const QByteArray grain = noise(1 << 16);
    const int bytes = image.depth() / 8;
    for (int y = 0; y < size.height(); ++y) {
        uchar* line = image.scanLine(y);
        for (int x = 0; x < size.width() * bytes; ++x)
            line[x] = uchar((x / bytes * 3 + y * (x % bytes + 1)) / 4 % 200
                            + (grain.at((x * 7 + y * 131) & 0xFFFF) & 31));
    }
    return image;
}

// So large that some blocks hold no pixel that is needed.
constexpr QSize wide(2900, 200);
constexpr QSize high(200, 2900);

} // namespace

Q_DECLARE_METATYPE(PictureEncoders::GifKind)

class PictureRowsTest : public QObject {
    Q_OBJECT

private slots:
    void jpegs_data()
    {
        QTest::addColumn<QByteArray>("file");
        addJpegs("grey", QImage::Format_Grayscale8, JCS_GRAYSCALE);
        addJpegs("colours", QImage::Format_RGB888, JCS_YCbCr);
        addJpegs("red, green, blue", QImage::Format_RGB888, JCS_RGB);
    }
    static void addJpegs(const char* colours, QImage::Format format, J_COLOR_SPACE space)
    {
        const QImage image = photo(wide, format);
        for (const bool isProgressive : {false, true}) {
            for (const auto& [across, down] : {std::pair(1, 1), {2, 1}, {1, 2}, {2, 2}, {4, 1}, {1, 4}}) {
                JpegKind kind;
                kind.isProgressive = isProgressive;
                kind.across = across;
                kind.down = down;
                kind.space = space;
                QTest::addRow("%s, %s, %d across, %d down", colours,
                              isProgressive ? "progressive" : "baseline", across, down)
                    << jpegOf(image, kind);
            }
        }
    }
    void jpegs()
    {
        QFETCH(QByteArray, file);
        const QImage expected = asTheToolkit(file);
        QVERIFY(!expected.isNull());
        QCOMPARE(ours(file), expected);
    }

    void jpegsOfFourInks_data()
    {
        QTest::addColumn<QByteArray>("file");
        addJpegs("inks", QImage::Format_RGB32, JCS_CMYK);
        addJpegs("brightness and colours", QImage::Format_RGB32, JCS_YCCK);
    }
    /** Versions of the toolkit round differently when they mix the inks. */
    void jpegsOfFourInks()
    {
        QFETCH(QByteArray, file);
        const QImage expected = asTheToolkit(file);
        QVERIFY(!expected.isNull());
        QVERIFY2(farthest(ours(file), expected) <= 1,
                 qPrintable(QString::number(farthest(ours(file), expected))));
    }

    void unusualJpegs_data()
    {
        QTest::addColumn<QByteArray>("file");
        const QImage image = photo(high, QImage::Format_RGB888);
        JpegKind kind;
        kind.isOneByOne = true;
        QTest::newRow("colours one by one") << jpegOf(image, kind);
        kind.across = kind.down = 2;
        QTest::newRow("coarse colours one by one") << jpegOf(image, kind);
        kind.isOneByOne = false;
        kind.isArithmetic = true;
        QTest::newRow("arithmetic") << jpegOf(image, kind);
        kind.isProgressive = true;
        QTest::newRow("arithmetic and progressive") << jpegOf(image.copy(0, 0, 100, 1500), kind);
        kind.isArithmetic = false;
        kind.restartRows = 3;
        QTest::newRow("progressive with restarts") << jpegOf(image, kind);
        kind.quality = 100;
        QTest::newRow("finest") << jpegOf(image, kind);
        kind.quality = 5;
        QTest::newRow("coarsest") << jpegOf(image, kind);
        for (const QSize size :
             {QSize(1, 1), QSize(7, 9), QSize(16, 2000), QSize(2000, 17), QSize(101, 99)}) {
            kind.quality = 80;
            QTest::addRow("%d by %d", size.width(), size.height())
                << jpegOf(photo(size, QImage::Format_RGB888), kind);
        }
    }
    void unusualJpegs() { jpegs(); }

    /** Of one that breaks off in an early scan the blocks are smoothed with their neighbours. */
    void jpegsThatBreakOff_data()
    {
        QTest::addColumn<QByteArray>("file");
        for (const bool isProgressive : {false, true}) {
            for (const int down : {1, 2}) {
                JpegKind kind;
                kind.isProgressive = isProgressive;
                kind.across = kind.down = down;
                const QByteArray file = jpegOf(photo({800, 950}, QImage::Format_RGB888), kind);
                for (int part = 1; part < 16; part += 2)
                    QTest::addRow("%s, %d down, %d/16", isProgressive ? "progressive" : "baseline", down,
                                  part)
                        << file.left(file.size() * part / 16);
            }
        }
    }
    void jpegsThatBreakOff() { jpegs(); }

    void pngs_data()
    {
        QTest::addColumn<QByteArray>("file");
        struct Type {
            const char* name;
            int type;
            std::vector<int> bits;
        };
        const Type types[] = {
            {"grey", PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}},
            {"grey and transparency", PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}},
            {"palette", PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}},
            {"colours", PNG_COLOR_TYPE_RGB, {8, 16}},
            {"colours and transparency", PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}},
        };
        for (const Type& type : types)
            for (const int bits : type.bits)
                for (const bool isInterlaced : {false, true})
                    for (const bool hasTransparency : {false, true})
                        addPngs(type.name, {type.type, bits, isInterlaced, hasTransparency});
    }
    static void addPngs(const char* name, const PngKind& kind)
    {
        const bool isUnknown = kind.hasTransparency && (kind.colourType & PNG_COLOR_MASK_ALPHA) != 0;
        const bool isBroken =
            kind.hasTransparency && kind.colourType == PNG_COLOR_TYPE_RGB && kind.bits == 16;
        if (isUnknown || isBroken)
            return; // to the format; or in the toolkit, which takes three channels for four
        for (const QSize size : {QSize(333, 217), QSize(1, 1), QSize(3, 5), QSize(5, 2), QSize(100, 100)})
            QTest::addRow("%s, %d bits%s%s, %d by %d", name, kind.bits,
                          kind.isInterlaced ? ", interlaced" : "",
                          kind.hasTransparency ? ", transparent" : "", size.width(), size.height())
                << pngOf(size, noise(size.width() * size.height() * 8), kind);
    }
    void pngs() { jpegs(); }

    void transparentColourOf16Bits()
    {
        const QByteArray pixels = QByteArray::fromHex("000700070007 123456789abc");
        const QImage image = ours(pngOf({2, 1}, pixels, {PNG_COLOR_TYPE_RGB, 16, false, true}));
        QCOMPARE(image.pixel(0, 50), qRgba(0, 0, 0, 0));
        QCOMPARE(image.pixel(99, 50), qRgb(0x12, 0x56, 0x9A));
    }

    void thoseThatBreakOff_data()
    {
        QTest::addColumn<QByteArray>("whole");
        QTest::newRow("PNG") << pngOf({9, 7}, noise(9 * 7 * 3), {});
        QTest::newRow("PNG, interlaced") << pngOf({9, 7}, noise(9 * 7 * 3), {PNG_COLOR_TYPE_RGB, 8, true});
        QTest::newRow("GIF") << gifOf(noise(9 * 7, 128), {{9, 7}, {0, 0, 9, 7}});
        QTest::newRow("GIF, part of the screen") << gifOf(noise(6 * 5, 128), {{9, 7}, {1, 1, 6, 5}, true, 5});
    }
    void thoseThatBreakOff()
    {
        QFETCH(QByteArray, whole);
        for (int bytes = 0; bytes <= whole.size(); ++bytes) {
            const QByteArray file = whole.left(bytes);
            QVERIFY2(ours(file) == asTheToolkit(file), qPrintable(QString::number(bytes)));
        }
    }

    /** A GIF has no checksums, so that nobody knows what a damaged one is to show. */
    void damagedPngs_data()
    {
        QTest::addColumn<QByteArray>("whole");
        QTest::newRow("in one") << pngOf({9, 7}, noise(9 * 7 * 3), {});
        QTest::newRow("interlaced") << pngOf({9, 7}, noise(9 * 7 * 3), {PNG_COLOR_TYPE_RGB, 8, true});
    }
    void damagedPngs()
    {
        QFETCH(QByteArray, whole);
        for (int i = 0; i < whole.size(); ++i) {
            QByteArray damaged = whole;
            damaged[i] = char(damaged.at(i) ^ 0x10);
            QVERIFY2(ours(damaged) == asTheToolkit(damaged), qPrintable(QString::number(i)));
        }
    }

    /** However much that is: the toolkit unpacks it, for minutes. */
    void whatIsPackedBehindThePixelsIsLeftAlone_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("PNG") << PackedPictures::png(150, 100);
        QTest::newRow("GIF") << PackedPictures::gif({150, 150}, {150, 150}, 3000);
        QTest::newRow("GIF larger than its screen") << PackedPictures::gif({150, 150}, {3000, 3000}, 3000);
    }
    void whatIsPackedBehindThePixelsIsLeftAlone() { jpegs(); }

    void gifs_data()
    {
        QTest::addColumn<GifKind>("kind");
        const QRect all(0, 0, 333, 217);
        const QRect part(20, 30, 200, 150);
        QTest::newRow("whole screen") << GifKind{all.size(), all};
        QTest::newRow("interlaced") << GifKind{all.size(), all, true};
        QTest::newRow("own palette") << GifKind{all.size(), all, false, -1, 0, true, true};
        QTest::newRow("own palette alone") << GifKind{all.size(), all, false, -1, 0, false, true};
        QTest::newRow("transparent") << GifKind{all.size(), all, false, 7};
        QTest::newRow("part of the screen") << GifKind{all.size(), part, false, -1, 77};
        QTest::newRow("part of it, interlaced") << GifKind{all.size(), part, true, -1, 78};
        QTest::newRow("part of it, transparent") << GifKind{all.size(), part, false, 7, 77};
        QTest::newRow("part of it, background transparent") << GifKind{all.size(), part, false, 77, 77};
        QTest::newRow("part of it, own palette alone")
            << GifKind{all.size(), part, false, -1, 5, false, true};
        QTest::newRow("wider than the screen") << GifKind{{150, 300}, all};
        QTest::newRow("behind the screen") << GifKind{{15, 15}, part};
        QTest::newRow("no screen") << GifKind{{0, 0}, part};
        QTest::newRow("one pixel") << GifKind{{1, 1}, {0, 0, 1, 1}};
        QTest::newRow("one line, interlaced") << GifKind{{300, 1}, {0, 0, 300, 1}, true};
    }
    void gifs()
    {
        QFETCH(GifKind, kind);
        const QByteArray file = gifOf(noise(kind.picture.width() * kind.picture.height(), 128), kind);
        QVERIFY(!asTheToolkit(file).isNull());
        QCOMPARE(ours(file), asTheToolkit(file));
    }
};

VIREO_TEST_MAIN(PictureRowsTest)
#include "tst_picturerows.moc"
