#include "tags/jpegframe.h"
#include "tests/support/panelmain.h"
#include "tests/tags/jpegbuilder.h"

using namespace JpegBuilder;

namespace {

const QSize small(40, 24);

JpegFrame read(const QByteArray& file)
{
    const auto frame = jpegFrame(file);
    if (!frame)
        qFatal("the markers are not understood");
    return *frame;
}

} // namespace

class JpegFrameTest : public QObject {
    Q_OBJECT

private slots:
    void sizeAndBlocks_data()
    {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<QByteArray>("samplings");
        QTest::addColumn<qint64>("blocks");
        QTest::newRow("grey") << QSize(16, 24) << QByteArray("\x11") << qint64(2 * 3);
        QTest::newRow("begun blocks count") << QSize(17, 25) << QByteArray("\x11") << qint64(3 * 4);
        QTest::newRow("colour") << QSize(16, 24) << QByteArray("\x11\x11\x11") << qint64(3 * 2 * 3);
        QTest::newRow("colour at half the width and height")
            << QSize(32, 48) << QByteArray("\x22\x11\x11") << qint64(6 * 2 * 3);
        QTest::newRow("begun units count whole")
            << QSize(33, 49) << QByteArray("\x22\x11\x11") << qint64(6 * 3 * 4);
        QTest::newRow("four across, one down")
            << QSize(64, 8) << QByteArray("\x41\x11\x11") << qint64(6 * 2 * 1);
        QTest::newRow("four inks") << QSize(5790, 5790) << QByteArray("\x11\x11\x11\x11")
                                   << qint64(4) * 724 * 724;
        QTest::newRow("largest") << QSize(65535, 65535) << QByteArray("\x44\x44\x44\x44")
                                 << qint64(64) * 2048 * 2048;
    }
    void sizeAndBlocks()
    {
        QFETCH(QSize, size);
        QFETCH(QByteArray, samplings);
        const JpegFrame frame = read(jpeg(Baseline, size, samplings));
        QCOMPARE(frame.pixels, size);
        QTEST(frame.blocks, "blocks");
    }

    void pictureOfTheToolkit()
    {
        const JpegFrame frame = read(imageFile("JPEG", 160, 120));
        QCOMPARE(frame.pixels, QSize(160, 120));
        QCOMPARE(frame.scans, 1);
        QVERIFY(!frame.holdsCoefficients);
        QVERIFY(!frame.isArithmetic);
    }

    void kinds_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("holdsCoefficients");
        QTest::addColumn<bool>("isArithmetic");
        QTest::newRow("baseline") << 0xC0 << false << false;
        QTest::newRow("extended") << 0xC1 << false << false;
        QTest::newRow("progressive") << 0xC2 << true << false;
        QTest::newRow("arithmetic") << 0xC9 << false << true;
        QTest::newRow("progressive, arithmetic") << 0xCA << true << true;
    }
    void kinds()
    {
        QFETCH(int, kind);
        const JpegFrame frame = read(jpeg(Kind(kind), small, "\x11"));
        QTEST(frame.holdsCoefficients, "holdsCoefficients");
        QTEST(frame.isArithmetic, "isArithmetic");
    }

    void scanOfOneComponentOfMoreMakesAllWait()
    {
        const QByteArray whole = jpeg(Baseline, small, "\x11\x11\x11");
        QVERIFY(!read(whole).holdsCoefficients);
        QByteArray oneByOne = whole;
        oneByOne.replace(scan(3, true, false), scan(1, true, false).repeated(3));
        QVERIFY(read(oneByOne).holdsCoefficients);
        QCOMPARE(read(oneByOne).scans, 3);
    }

    void scansAreCounted()
    {
        for (const int scans : {1, 2, 10, 1000})
            QCOMPARE(read(jpeg(Progressive, small, "\x11\x11\x11", scans)).scans, scans);
    }

    void visitsAreThoseOfEachScansComponents()
    {
        const QByteArray file = jpeg(Progressive, {32, 48}, "\x22\x11\x11", 4);
        QCOMPARE(read(file).visits, qint64(6 + 3 * 4) * 2 * 3);
        QByteArray strange = file;
        strange.replace(scan(1, false, true), scan(1, false, true).replace(5, 1, "\x9"));
        QCOMPARE(read(strange).visits, qint64(6) * 2 * 3);
    }

    void whatStandsInASegmentIsNoMarker()
    {
        const QByteArray thumbnail = jpeg(Progressive, QSize(16000, 16000), "\x11\x11\x11", 5);
        const JpegFrame frame = read(jpeg(Baseline, small, "\x11", 1, segment(Exif, thumbnail)));
        QCOMPARE(frame.pixels, small);
        QCOMPARE(frame.scans, 1);
        QVERIFY(!frame.holdsCoefficients);
    }

    void whatLiesBetweenSegmentsIsPassedOver_data()
    {
        QTest::addColumn<QByteArray>("junk");
        QTest::newRow("bytes") << QByteArray("junk");
        QTest::newRow("a byte that is stored escaped") << bytesOf("\xFF\0");
        QTest::newRow("fill bytes") << QByteArray("\xFF\xFF\xFF");
        QTest::newRow("restart") << marker(Restart);
        QTest::newRow("unknown marker") << marker(0x02);
    }
    void whatLiesBetweenSegmentsIsPassedOver()
    {
        QFETCH(QByteArray, junk);
        QCOMPARE(read(jpeg(Baseline, small, "\x11", 1, junk)).pixels, small);
        QByteArray progressive = jpeg(Progressive, small, "\x11", 3);
        progressive.replace(scan(1, false, true), junk + scan(1, false, true));
        QCOMPARE(read(progressive).scans, 3);
    }

    void nothingBehindTheEndCounts()
    {
        const QByteArray file = jpeg(Progressive, small, "\x11", 3);
        QCOMPARE(read(file + file).scans, 3);
        QCOMPARE(read(file.chopped(2)).scans, 3);
    }

    void whatDoesNotLoadHasNoFrame_data()
    {
        const QByteArray file = jpeg(Baseline, small, "\x11");
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("a byte") << QByteArray("\xFF");
        QTest::newRow("text") << QByteArray("no picture");
        QTest::newRow("PNG") << imageFile("PNG");
        QTest::newRow("no scan") << file.left(file.indexOf(marker(Scan)));
        QTest::newRow("no frame") << marker(0xD8) + tables() + scan(1, true, false);
        QTest::newRow("of a kind that the decoder does not know") << jpeg(Lossless, small, "\x11");
    }
    void whatDoesNotLoadHasNoFrame()
    {
        QFETCH(QByteArray, file);
        QVERIFY(!jpegFrame(file));
    }

    void everyTruncationIsRead()
    {
        const QByteArray file = jpeg(Progressive, small, "\x22\x11\x11", 4, segment(Exif, "note"));
        const int firstScan = int(file.indexOf(marker(Scan)));
        for (int size = 0; size < file.size(); ++size)
            QCOMPARE(jpegFrame(file.left(size)).has_value(), size >= firstScan + 2);
    }
};

VIREO_TEST_MAIN(JpegFrameTest)
#include "tst_jpegframe.moc"
