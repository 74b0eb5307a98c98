#include "tags/qflacparser.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/tags/covers.h"
#include "tests/tags/mediabuilder.h"
#include "tests/tags/tagreading.h"

using namespace MediaBuilder;

namespace {

const QString failed = QStringLiteral("W [FLAC] FILE-Tag is failed to initialize");
const QString noMarker = QStringLiteral("W [FLAC] Not found fLaC");
const QString emptyBlock = QStringLiteral("E Not found tag information [1]");
const QString longBlock = QStringLiteral("E [FLAC] Not found tag information [2]");
const QString vendorLine = QStringLiteral("I maker 1.0");

using Reading = TagReading<QFLACparser>;

QByteArray commentBlock(const QList<QByteArray>& comments, bool isLast = true)
{
    return flacBlock(Comment, vorbisComments(comments), isLast);
}

QByteArray pictureBlock(const QByteArray& image, bool isLast = true)
{
    return flacBlock(Picture, flacPicture("image/jpeg", image), isLast);
}

} // namespace

class QFLACparserTest : public QObject {
    Q_OBJECT

private slots:
    void commentsAndPicture()
    {
        const QByteArray jpeg = imageFile("JPEG");
        const Reading reading(flacStart() + commentBlock({"title=A", "Artist=B", "ALBUM=C"}, false)
                              + pictureBlock(jpeg));
        QCOMPARE(reading.title, QStringLiteral("A"));
        QCOMPARE(reading.artist, QStringLiteral("B"));
        QCOMPARE(reading.album, QStringLiteral("C"));
        QCOMPARE(reading.picture, coverOf(jpeg));
        QCOMPARE(reading.log,
                 QStringList({vendorLine, QStringLiteral("I [FLAC] TITLE - A"),
                              QStringLiteral("I [FLAC] ARTIST - B"), QStringLiteral("I [FLAC] ALBUM - C")}));
    }

    void withoutAPictureTheFailureIsLogged()
    {
        const Reading reading(flacStart() + commentBlock({"title=A", "Artist=B", "ALBUM=C"}));
        QCOMPARE(reading.title, QStringLiteral("A"));
        QCOMPARE(reading.artist, QStringLiteral("B"));
        QCOMPARE(reading.album, QStringLiteral("C"));
        QVERIFY(reading.picture.isNull());
        QCOMPARE(reading.log.count(failed), 1);
        QCOMPARE(reading.log.last(), failed);
    }

    void pictureInFrontOfCommentsIsDecodedBehindThem()
    {
        const Reading reading(flacStart() + flacBlock(Picture, "short", false) + commentBlock({"TITLE=t"}));
        QCOMPARE(reading.log,
                 QStringList({vendorLine, QStringLiteral("I [FLAC] TITLE - t"),
                              QStringLiteral("W [FLAC] Inappropriate MIME-length information"), failed}));
    }

    void countOfCutOffBytes()
    {
        // Two bytes are left for the count: 0x0201 comments do not fit.
        const QByteArray block = littleEndian(4) + "abcd" + bytesOf("\1\2");
        QCOMPARE(Reading(flacStart() + flacBlock(Comment, block, true)).log,
                 QStringList({QStringLiteral("I abcd"), QStringLiteral("W [FLAC] Vorbis size error 513 > 0"),
                              failed}));
    }

    void commentsThatCannotFitEndTheWalkOverTheBlocks()
    {
        const Reading reading(flacStart() + flacBlock(Comment, vorbisClaiming("maker 1.0", 24, {}), false)
                              + pictureBlock(imageFile("JPEG")));
        QVERIFY(reading.picture.isNull());
        QCOMPARE(reading.log, QStringList({vendorLine, "W [FLAC] Vorbis size error 24 > 2", failed}));
    }

    void millionsOfSeparatorsInOneComment()
    {
        const Reading reading(flacStart() + commentBlock({"TITLE=a" + QByteArray(4000000, '=')}));
        QCOMPARE(reading.title, QStringLiteral("a"));
    }

    void lastPictureWins()
    {
        const QByteArray first = imageFile("JPEG", 160, 120, 0);
        const QByteArray second = imageFile("PNG", 160, 120, 200);
        const Reading reading(flacStart() + pictureBlock(first, false) + pictureBlock(second));
        QCOMPARE(reading.picture, coverOf(second));
        QVERIFY(coverOf(first) != coverOf(second));
        const Reading damaged(flacStart() + pictureBlock(first, false) + pictureBlock("no picture"));
        QVERIFY(damaged.picture.isNull());
        QCOMPARE(damaged.log, QStringList());
    }

    void lastCommentBlockWins()
    {
        const Reading reading(flacStart() + commentBlock({"TITLE=x", "ALBUM=b"}, false)
                              + commentBlock({"TITLE=y"}));
        QCOMPARE(reading.title, QStringLiteral("y"));
        QCOMPARE(reading.album, QString());
    }

    void otherBlocksArePassedOver()
    {
        QByteArray file = flacStart();
        for (int type : {1, 2, 3, 5, 7, 126, 127})
            file += flacBlock(type, QByteArray(100 + type, '\4'));
        QCOMPARE(Reading(file + commentBlock({"TITLE=t"})).title, QStringLiteral("t"));
    }

    void blocksBehindTheLastAreNotRead()
    {
        QCOMPARE(Reading(flacStart() + commentBlock({"TITLE=t"}) + commentBlock({"TITLE=audio"})).title,
                 QStringLiteral("t"));
    }

    void firstBlockThatIsTheLast()
    {
        QCOMPARE(Reading(flacStart(true) + commentBlock({"TITLE=t"})).log, QStringList(failed));
    }

    void emptyBlockMakesAllVoid_data()
    {
        QTest::addColumn<QByteArray>("blocks");
        QTest::newRow("before the comments") << flacBlock(Padding, "") + commentBlock({"TITLE=t"});
        QTest::newRow("behind the comments") << commentBlock({"TITLE=t"}, false)
                + pictureBlock(imageFile("JPEG"), false) + flacBlock(Padding, "", true);
        QTest::newRow("the comments themselves") << flacBlock(Comment, "", true);
        QTest::newRow("the end of the file instead of a header") << commentBlock({"TITLE=t"}, false);
        QTest::newRow("one byte of a header") << commentBlock({"TITLE=t"}, false) + bytesOf("\4");
        QTest::newRow("nothing behind the first block") << QByteArray();
    }
    void emptyBlockMakesAllVoid()
    {
        QFETCH(QByteArray, blocks);
        const Reading reading(flacStart() + blocks);
        QCOMPARE(reading.log, QStringList({emptyBlock, failed}));
        QCOMPARE(reading.title, QString());
        QVERIFY(reading.picture.isNull());
    }

    void cutOffHeaderGivesALengthOfItsOwnWidth()
    {
        // One byte of the length, 9, is read as 9; nothing is left to read, and the next header is empty.
        QCOMPARE(Reading(flacStart() + bytesOf("\1\11")).log, QStringList({emptyBlock, failed}));
        QCOMPARE(Reading(flacStart() + bytesOf("\x81\11")).log, QStringList(failed));
    }

    void blockLargerThanTheFileEndsTheWalk_data()
    {
        QTest::addColumn<int>("beyond");
        QTest::addColumn<bool>("isTooLong");
        QTest::newRow("one byte less than the file") << -1 << false;
        QTest::newRow("as long as the file") << 0 << true;
        QTest::newRow("longer") << 1 << true;
        QTest::newRow("much longer") << 1000000 << true;
    }
    void blockLargerThanTheFileEndsTheWalk()
    {
        QFETCH(int, beyond);
        QFETCH(bool, isTooLong);
        const QByteArray head = flacStart() + commentBlock({"TITLE=t"}, false);
        const Reading reading(head + flacHeader(Padding, quint32(head.size() + 4 + beyond), true));
        QCOMPARE(reading.title, QStringLiteral("t"));
        QCOMPARE(reading.log.contains(longBlock), isTooLong);
        QCOMPARE(reading.log.count(failed), 1);
    }

    void blockCutOffByTheEndOfTheFileIsReadAsFarAsItGoes()
    {
        const QByteArray block = vorbisComments({"TITLE=t"});
        const Reading reading(flacStart() + flacHeader(Comment, quint32(block.size()) + 1, true) + block);
        QCOMPARE(reading.title, QStringLiteral("t"));
    }

    void lengthsOfTheFirstBlock_data()
    {
        QTest::addColumn<int>("length");
        for (int length : {0, 1, 2, 3, 4, 34, 300, 70000})
            QTest::addRow("%d", length) << length;
    }
    void lengthsOfTheFirstBlock()
    {
        QFETCH(int, length);
        const QByteArray first = flacBlock(StreamInfo, QByteArray(length, '\x22'));
        const Reading reading("fLaC" + first + commentBlock({"TITLE=t"}));
        QCOMPARE(reading.title, QStringLiteral("t"));
    }

    void firstBlockBeyondTheFile()
    {
        QCOMPARE(Reading("fLaC" + flacHeader(StreamInfo, 0xFFFFFF) + QByteArray(50, '\1')).log,
                 QStringList({emptyBlock, failed}));
    }

    void lengthComesFromTheSameBytesWhereverTheMarkerStands()
    {
        // Bytes 4 to 7 are "aC", 0, 3: not the last block, 0x430003 bytes, more than there are.
        QCOMPARE(Reading("..fLaC" + bytesOf("\0\3") + QByteArray(100, '\1')).log,
                 QStringList({emptyBlock, failed}));
    }

    void headCutOff_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QStringList>("log");
        QTest::newRow("empty file") << QByteArray() << QStringList({noMarker, failed});
        QTest::newRow("part of the marker") << QByteArray("fLa") << QStringList({noMarker, failed});
        QTest::newRow("marker alone") << QByteArray("fLaC") << QStringList({emptyBlock, failed});
        QTest::newRow("flag of the last block") << bytesOf("fLaC\x80") << QStringList(failed);
        QTest::newRow("part of the length") << bytesOf("fLaC\0\0") << QStringList({emptyBlock, failed});
        QTest::newRow("another format") << QByteArray("RIFF....WAVE") << QStringList({noMarker, failed});
    }
    void headCutOff()
    {
        QFETCH(QByteArray, file);
        QTEST(Reading(file).log, "log");
    }

    void shortBlocksAreNotDecoded()
    {
        const QByteArray jpeg = imageFile("JPEG");
        const Reading comments(flacStart() + flacBlock(Comment, "\1\2\3\4", false) + pictureBlock(jpeg));
        QCOMPARE(comments.log, QStringList());
        QCOMPARE(comments.picture, coverOf(jpeg));
        const Reading picture(flacStart() + commentBlock({"TITLE=t"}, false)
                              + flacBlock(Picture, "1234", true));
        QCOMPARE(picture.title, QStringLiteral("t"));
        QCOMPARE(picture.log.last(), failed);
        QCOMPARE(picture.log.size(), 3);
    }

    void pictureChecks_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<QString>("part");
        // A type of 10 bytes and a description of 5: they end at 18 and 27, and the data begins at 47.
        QTest::newRow("nothing") << 0 << "picturetype";
        QTest::newRow("3") << 3 << "picturetype";
        QTest::newRow("4") << 4 << "MIME-length";
        QTest::newRow("7") << 7 << "MIME-length";
        QTest::newRow("8") << 8 << "MIME-data";
        QTest::newRow("17") << 17 << "MIME-data";
        QTest::newRow("18") << 18 << "description-length";
        QTest::newRow("21") << 21 << "description-length";
        QTest::newRow("22") << 22 << "description-data";
        QTest::newRow("26") << 26 << "description-data";
        QTest::newRow("27") << 27 << "picture-width";
        QTest::newRow("30") << 30 << "picture-width";
        QTest::newRow("31") << 31 << "picture-height";
        QTest::newRow("34") << 34 << "picture-height";
        QTest::newRow("35") << 35 << "color-depth";
        QTest::newRow("38") << 38 << "color-depth";
        QTest::newRow("39") << 39 << "indexed-color";
        QTest::newRow("42") << 42 << "indexed-color";
        QTest::newRow("43") << 43 << "picture-length";
        QTest::newRow("46") << 46 << "picture-length";
        QTest::newRow("47") << 47 << "picture-data";
        QTest::newRow("one byte short") << -2 << "picture-data";
        QTest::newRow("complete") << -1 << "";
    }
    void pictureChecks()
    {
        QFETCH(int, size);
        QFETCH(QString, part);
        const QByteArray whole = flacPicture("image/jpeg", imageFile("JPEG"), "front");
        const QByteArray block = size < 0 ? whole.chopped(-1 - size) : whole.left(size);
        QFLACparser reader(nullptr);
        LogCatcher log;
        QCOMPARE(reader.ReadAttachedImage(block), part.isEmpty());
        QCOMPARE(reader.GetPicture().isNull(), !part.isEmpty());
        const QStringList line(QStringLiteral("W [FLAC] Inappropriate %1 information").arg(part));
        QCOMPARE(log.plain(), part.isEmpty() ? QStringList() : line);
    }

    void hostilePictureLengths_data()
    {
        QTest::addColumn<int>("offset");
        QTest::addColumn<QString>("part");
        QTest::newRow("type") << 4 << "MIME-data";
        QTest::newRow("description") << 18 << "description-data";
        QTest::newRow("data") << 43 << "picture-data";
    }
    void hostilePictureLengths()
    {
        QFETCH(int, offset);
        QFETCH(QString, part);
        const QByteArray whole = flacPicture("image/jpeg", imageFile("JPEG"), "front");
        for (quint32 length :
             {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFECU, 0xFFFFFFF4U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
            QByteArray block = whole;
            block.replace(offset, 4, bigEndian(length));
            QFLACparser reader(nullptr);
            LogCatcher log;
            QVERIFY(!reader.ReadAttachedImage(block));
            QCOMPARE(log.plain(),
                     QStringList(QStringLiteral("W [FLAC] Inappropriate %1 information").arg(part)));
        }
    }

    void pictureMayBeFollowedByMore()
    {
        const QByteArray jpeg = imageFile("JPEG");
        QFLACparser reader(nullptr);
        LogCatcher log;
        QVERIFY(reader.ReadAttachedImage(flacPicture("", jpeg) + "more"));
        QCOMPARE(reader.GetPicture().toImage(), coverOf(jpeg));
    }

    void pictureThatDoesNotLoadIsNoFailure()
    {
        const Reading reading(flacStart() + commentBlock({"TITLE=t"}, false) + pictureBlock("no picture"));
        QCOMPARE(reading.title, QStringLiteral("t"));
        QVERIFY(reading.picture.isNull());
        QVERIFY(!reading.log.contains(failed));
    }

    void walkWithoutAFileFails()
    {
        LogCatcher log;
        QCOMPARE(QFLACparser(nullptr).FLACTagParser(), 0);
        QCOMPARE(log.plain(), QStringList(noMarker));
    }
};

VIREO_TEST_MAIN(QFLACparserTest)
#include "tst_qflacparser.moc"
