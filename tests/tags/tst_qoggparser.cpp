#include "tags/qoggparser.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/tags/mediabuilder.h"
#include "tests/tags/mediafolder.h"
#include "tests/tags/naivereader.h"
#include "tests/tags/peakmemory.h"
#include "tests/tags/tagreading.h"

using namespace MediaBuilder;

namespace {

const QString failed = QStringLiteral("W [OGG] FILE-Tag is failed to initialize");
const QString tooSmall = QStringLiteral("W [OGG] parser error");
const QString noPage = QStringLiteral("W [OGG] Not found OggS");
const QString noPacket = QStringLiteral("W [OGG] PacketSize error");
const QString vendorLine = QStringLiteral("I [OGG] maker 1.0");

QString titleLine(const QString& title)
{
    return QStringLiteral("I [OGG] TITLE - ") + title;
}

using Reading = TagReading<QOggParser>;

QByteArray audio(int bytes)
{
    return QByteArray(bytes, '.');
}

QByteArray commentPacket(const QList<QByteArray>& comments)
{
    return oggComment(vorbisComments(comments));
}

/** The first page of a stream; longer than the smallest file that is read. */
QByteArray firstPage()
{
    return oggPage({oggIdentification() + audio(50)});
}

/** Pages one inside the other: each is followed by the next one right behind its first packet of one byte. */
QByteArray nestedPages(int pages, const QList<int>& sizes)
{
    return (oggHeader(lacing(sizes)) + '.').repeated(pages);
}

} // namespace

class QOggParserTest : public QObject {
    Q_OBJECT

private slots:
    void standardFile()
    {
        const Reading reading(firstPage()
                              + oggPage({commentPacket({"TITLE=x", "artist=y"}), "\5vorbis setup"})
                              + oggPage({audio(200)}) + oggPage({audio(200)}));
        QCOMPARE(reading.title, QStringLiteral("x"));
        QCOMPARE(reading.artist, QStringLiteral("y"));
        QCOMPARE(reading.album, QString());
        QVERIFY(reading.picture.isNull());
        QCOMPARE(reading.log,
                 QStringList({vendorLine, titleLine(QStringLiteral("x")),
                              QStringLiteral("I [OGG] ARTIST - y"), noPage}));
    }

    void packetsBehindTheCommentsAreStillLookedAt()
    {
        // The setup header leads into a page of two packets: its first one makes the parser look for a page
        // within its second one, of which 13 bytes are then left to be read.
        const Reading reading(firstPage() + oggPage({commentPacket({"TITLE=x"}), "setup"})
                              + oggPage({audio(40), audio(40)}));
        QCOMPARE(reading.log, QStringList({vendorLine, titleLine(QStringLiteral("x")), noPage, noPage}));
    }

    void outerPagesFindTheFileExhausted()
    {
        // Packets of one byte: the second one of each page is gone when the pages nested in it have ended.
        const Reading reading(nestedPages(4, {1, 1}));
        QCOMPARE(reading.log, QStringList({noPage, noPacket, noPacket, noPacket, noPacket, failed}));
    }

    void exhaustedInnerPagesDoNotFailAFirstPageOfOnePacket()
    {
        const Reading reading(firstPage() + nestedPages(3, {1, 1}));
        QCOMPARE(reading.log, QStringList({noPage, noPacket, noPacket, noPacket}));
    }

    void smallFiles_data()
    {
        QTest::addColumn<int>("bytes");
        QTest::addColumn<bool>("isTooSmall");
        QTest::newRow("99 bytes") << 99 << true;
        QTest::newRow("100 bytes") << 100 << false;
    }
    void smallFiles()
    {
        QFETCH(int, bytes);
        QFETCH(bool, isTooSmall);
        const QByteArray page = oggPage({commentPacket({"TITLE=x"}).leftJustified(bytes - 28, '.')});
        QCOMPARE(page.size(), bytes);
        const Reading reading(page);
        QCOMPARE(reading.title, isTooSmall ? QString() : QStringLiteral("x"));
        QCOMPARE(reading.log,
                 isTooSmall ? QStringList({tooSmall, failed})
                            : QStringList({vendorLine, titleLine(QStringLiteral("x"))}));
    }

    void fileWithoutAPage()
    {
        QCOMPARE(Reading(QByteArray(200, '.')).log, QStringList({noPage, failed}));
        QCOMPARE(Reading("Ogg" + QByteArray(200, '.')).log, QStringList({noPage, failed}));
    }

    void captureMayStandAnywhereInTheHeader()
    {
        // One stray byte in front: the number of segments is still taken from byte 26, which is 0 here.
        QCOMPARE(Reading("." + firstPage()).log, QStringList());
        QByteArray header = QByteArray(22, '\0') + "OggS" + '\1'; // in bytes 22 to 25
        const Reading reading(header + lacing({80}) + commentPacket({"TITLE=x"}).leftJustified(80, '.'));
        QCOMPARE(reading.title, QStringLiteral("x"));
    }

    void captureAcrossTheEndOfTheHeaderIsNotFound()
    {
        QCOMPARE(Reading(QByteArray(24, '\0') + "OggS" + QByteArray(100, '\1')).log,
                 QStringList({noPage, failed}));
    }

    void headerCutOffByTheEndOfTheFileIsAPageWithoutPackets()
    {
        QCOMPARE(Reading(firstPage() + "OggS and no more").log, QStringList());
        QCOMPARE(Reading(firstPage() + "Ogg").log, QStringList(noPage));
    }

    void pageWithoutPacketsEndsTheWalk()
    {
        QCOMPARE(Reading(firstPage() + oggPage({}) + oggPage({commentPacket({"TITLE=x"})})).log,
                 QStringList());
    }

    void lacingCutOffByTheEndOfTheFile()
    {
        // Three packets are announced and one lacing value is there.
        QCOMPARE(Reading(firstPage() + oggHeader("\7\7\7").chopped(2)).log, QStringList(noPacket));
    }

    void packetCutOffByTheEndOfTheFileIsReadAsFarAsItGoes()
    {
        const QByteArray page = oggPage({commentPacket({"TITLE=x"}) + audio(20)});
        const Reading reading(firstPage() + page.chopped(20));
        QCOMPARE(reading.title, QStringLiteral("x"));
        QCOMPARE(reading.log, QStringList({vendorLine, titleLine(QStringLiteral("x"))}));
    }

    void emptyPacketEndsItsPage()
    {
        // The page ends at once, the page around it goes on right behind: with the title.
        const QByteArray comment = commentPacket({"TITLE=x"});
        const QByteArray outer = oggHeader(lacing({60, int(comment.size())})) + audio(60);
        const Reading reading(outer + oggHeader(lacing({0, 40})) + comment);
        QCOMPARE(reading.log, QStringList({noPacket, vendorLine, titleLine(QStringLiteral("x"))}));
        QCOMPARE(Reading(oggHeader(lacing({0})) + audio(100)).log, QStringList({noPacket, failed}));
    }

    void everyCommentHeaderIsDecoded()
    {
        const Reading reading(firstPage() + oggPage({commentPacket({"TITLE=x", "ALBUM=b"}), audio(20)})
                              + oggPage({commentPacket({"TITLE=y"})})
                              + oggPage({commentPacket({"TITLE=z"})}));
        QCOMPARE(reading.title, QStringLiteral("y")); // the page with z follows no packet without comments
        QCOMPARE(reading.album, QStringLiteral("b"));
        QCOMPARE(reading.log,
                 QStringList({vendorLine, titleLine(QStringLiteral("x")), QStringLiteral("I [OGG] ALBUM - b"),
                              vendorLine, titleLine(QStringLiteral("y"))}));
    }

    void markerMayStandAnywhereInThePacket()
    {
        const Reading reading(firstPage() + oggPage({"in front" + commentPacket({"TITLE=x"})}));
        QCOMPARE(reading.title, QStringLiteral("x"));
    }

    void markerOfAnotherHeaderIsNone()
    {
        QByteArray packet = commentPacket({"TITLE=x"});
        packet[0] = '\5';
        QCOMPARE(Reading(firstPage() + oggPage({packet})).log, QStringList(noPage));
    }

    void markerCutOffAtTheEndOfThePacket()
    {
        QCOMPARE(Reading(firstPage() + oggPage({"\3vorbi"})).log, QStringList(noPage));
        QCOMPARE(Reading(firstPage() + oggPage({"\3vorbis"})).log, QStringList(QStringLiteral("I [OGG] ")));
    }

    void commentHeaderAcrossTwoPagesIsNotDecoded()
    {
        const QByteArray packet = commentPacket({"TITLE=x"}).leftJustified(510, '.');
        const QByteArray file =
            firstPage() + oggPage({packet}, true) + oggPage({audio(30)}) + oggPage({audio(30)});
        const Reading reading(file);
        QCOMPARE(reading.title, QString());
        QCOMPARE(reading.log, QStringList()); // the page has no packet that ends on it: the walk ends there
    }

    void packetsInFrontOfOneThatContinuesAreRead()
    {
        const QByteArray packet = commentPacket({"TITLE=x"});
        const Reading reading(firstPage() + oggPage({packet, audio(510)}, true));
        QCOMPARE(reading.title, QStringLiteral("x"));
    }

    void packetsOfManySegments_data()
    {
        QTest::addColumn<int>("bytes");
        for (int bytes : {254, 255, 256, 509, 510, 511, 65024})
            QTest::addRow("%d", bytes) << bytes;
    }
    void packetsOfManySegments()
    {
        QFETCH(int, bytes);
        const QByteArray comment = commentPacket({"TITLE=x"});
        const QByteArray packet = audio(bytes - int(comment.size())) + comment;
        const Reading reading(oggPage({packet}));
        QCOMPARE(packet.size(), bytes);
        QCOMPARE(reading.log, QStringList({vendorLine, titleLine(QStringLiteral("x"))}));
    }

    /** Only the outermost page's failure is the file's. */
    void commentsThatCannotFitEndTheirPage()
    {
        const QByteArray packet = oggComment(vorbisClaiming("maker 1.0", 24, {})).leftJustified(100, '\0');
        const QString line = "W [OGG] Vorbis size error 24 > 23";
        const Reading nested(firstPage() + oggPage({packet, audio(30)}) + oggPage({audio(30)}));
        QCOMPARE(nested.log, QStringList({vendorLine, line}));
        const Reading outermost(oggPage({packet, audio(30)}));
        QCOMPARE(outermost.log, QStringList({vendorLine, line, failed}));
    }

    void limitIsThatOfTheBytesReallyRead()
    {
        const QByteArray block = vorbisClaiming("maker 1.0", 24, {"TITLE=x"});
        const QByteArray page = oggPage({oggComment(block).leftJustified(200, '\0')});
        const Reading reading(firstPage() + page.chopped(100));
        QCOMPARE(reading.log, QStringList({vendorLine, QStringLiteral("W [OGG] Vorbis size error 24 > 23")}));
    }

    void deepFileOfOnePacketAPage()
    {
        const int pages = 100000;
        const QByteArray comment = oggPage({commentPacket({"TITLE=x"})});
        const Reading reading(oggPage({"."}).repeated(pages) + comment);
        QCOMPARE(reading.log, QStringList({vendorLine, titleLine(QStringLiteral("x"))}));
        QCOMPARE(Reading(oggPage({"."}).repeated(pages)).log, QStringList(noPage));
    }

    void deepFileWhosePagesAllWait()
    {
        const int pages = 100000;
        const Reading reading(nestedPages(pages, {1, 1}));
        QCOMPARE(reading.log.size(), pages + 2);
        QCOMPARE(reading.log.first(), noPage);
        QCOMPARE(reading.log.count(noPacket), pages);
        QCOMPARE(reading.log.last(), failed);
    }

    void waitingPagesGoOnWhereTheNestedOnesEnded_data()
    {
        QTest::addColumn<QList<int>>("sizes");
        QTest::newRow("few packets") << QList<int>{1, 30, 7};
        QTest::newRow("packets of several segments") << QList<int>{1, 255, 300, 510};
        QList<int> many{1};
        for (int i = 1; i < 255; ++i)
            many << i % 5 + 1;
        QTest::newRow("a full page of packets") << many;
    }
    void waitingPagesGoOnWhereTheNestedOnesEnded()
    {
        QFETCH(QList<int>, sizes);
        // More than the buffer of the reader holds is nested before a page that ends at once; behind it
        // follows what all those pages still wait for.
        const int pages = 300000 / (28 + int(sizes.size()));
        QByteArray rest;
        for (int i = 0; rest.size() < 2000000; ++i)
            rest += commentPacket({"TITLE=" + QByteArray::number(i)}) + audio(i % 97);
        const QByteArray file =
            nestedPages(pages > 3000 ? 3000 : pages, sizes) + oggHeader(lacing({0})) + rest;
        NaiveReader naive(file, QString());
        naive.readOgg();
        const Reading reading(file);
        QVERIFY(reading.log.size() > pages / 4);
        QCOMPARE(reading.log, naive.log);
        QCOMPARE(reading.title, naive.title);
    }

    void memoryDoesNotGrowWithTheFile()
    {
        MediaFolder folder;
        QFile file(folder.path(QStringLiteral("long.ogg")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        const QByteArray pages = oggPage({"."}).repeated(20000);
        qint64 written = 0;
        while (written < 60000000)
            written += file.write(pages);
        file.close();
        LogCatcher log(5);
        PeakMemory::reset();
        const qint64 before = PeakMemory::used();
        const QOggParser reader(file.fileName(), nullptr);
        const qint64 grown = PeakMemory::used() - before;
        QVERIFY2(grown < 4000000, QByteArray::number(grown)); // a word for each page would be 16 million
    }

    void secondCallGoesOnWhereTheFirstEnded()
    {
        MediaFolder folder;
        LogCatcher log;
        QOggParser reader(
            folder.write(QStringLiteral("x.ogg"),
                         firstPage() + oggPage({}) + oggPage({commentPacket({"TITLE=x"})}) + oggPage({"."})),
            nullptr);
        QCOMPARE(reader.GetTitle(), QString());
        QCOMPARE(reader.OggTagParser(), 1);
        QCOMPARE(reader.GetTitle(), QStringLiteral("x"));
        QCOMPARE(reader.OggTagParser(), 1);
        QCOMPARE(reader.OggTagParser(), 0);
        QCOMPARE(log.plain(), QStringList({vendorLine, titleLine(QStringLiteral("x")), noPage, noPage}));
    }

    void walkWithoutAFileFails()
    {
        LogCatcher log;
        QCOMPARE(QOggParser(nullptr).OggTagParser(), 0);
        QCOMPARE(log.plain(), QStringList(tooSmall));
    }
};

VIREO_TEST_MAIN(QOggParserTest)
#include "tst_qoggparser.moc"
