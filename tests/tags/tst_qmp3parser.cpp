#include "tags/qmp3parser.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/signalrecorder.h"
#include "tests/tags/covers.h"
#include "tests/tags/mediabuilder.h"
#include "tests/tags/mediafolder.h"
#include "tests/tags/peakmemory.h"
#include "tests/tags/tagreading.h"

#include <QTextCodec>

using namespace MediaBuilder;

namespace {

const QString noAlbum = QStringLiteral("W [ID3] not found TALB(album)");
const QString noArtist = QStringLiteral("W [ID3] not found TPE1(artist)");
const QString noTitle = QStringLiteral("W [ID3] not found TIT2(title)");
const QString noPicture = QStringLiteral("W [ID3] The MP3-FILE is not include a APIC-DATA");
const QString noId3v2 = QStringLiteral("W [ID3] not found ID3v2");
const QString noTag = QStringLiteral("W [ID3] ID3 find error");
const QString failed = QStringLiteral("W [ID3] FILE-Tag is failed to initialize");
const QString isId3v1 = QStringLiteral("I [ID3] ID3v1");

QString sizeLine(qint64 size)
{
    return QStringLiteral("[ID3] MP3 Tag, Frame Size [ %1 ]").arg(size);
}

using Reading = TagReading<QMP3Parser>;

} // namespace

class QMP3ParserTest : public QObject {
    Q_OBJECT

private slots:
    void codecsAreAvailable()
    {
        for (const char* name : {"euc-kr", "UTF-16", "UTF-8"})
            QVERIFY2(QTextCodec::codecForName(name), name);
    }

    void allFourFieldsInTheOrderOfReading()
    {
        const QByteArray jpeg = imageFile("JPEG");
        const QByteArray picture = pictureContent("image/jpeg", jpeg);
        const Reading reading(id3v2(textFrame("TIT2", 3, "Title") + textFrame("TPE1", 3, "Artist")
                                    + textFrame("TALB", 3, "Album") + frame("APIC", picture)));
        QCOMPARE(reading.title, QStringLiteral("Title"));
        QCOMPARE(reading.artist, QStringLiteral("Artist"));
        QCOMPARE(reading.album, QStringLiteral("Album"));
        QCOMPARE(reading.picture, coverOf(jpeg));
        QCOMPARE(reading.log,
                 QStringList({sizeLine(6), QStringLiteral("I [ID3] MP3 Tag (utf-8)[ Album ] "), sizeLine(7),
                              QStringLiteral("I [ID3] MP3 Tag (utf-8)[ Artist ] "), sizeLine(6),
                              QStringLiteral("I [ID3] MP3 Tag (utf-8)[ Title ] "),
                              sizeLine(quint32(picture.size()))}));
    }

    void absentFramesAreLoggedInOrder()
    {
        const Reading reading(id3v2(textFrame("TYER", 0, "1999")));
        QCOMPARE(reading.log, QStringList({noAlbum, noArtist, noTitle, noPicture}));
        QCOMPARE(reading.title, QString());
        QVERIFY(reading.picture.isNull());
    }

    void absentAlbumAlone()
    {
        const Reading reading(id3v2(textFrame("TIT2", 3, "t") + textFrame("TPE1", 3, "a")));
        QCOMPARE(reading.log.first(), noAlbum);
        QCOMPARE(reading.log.count(noAlbum), 1);
        QCOMPARE(reading.album, QString());
        QCOMPARE(reading.title, QStringLiteral("t"));
        QCOMPARE(reading.artist, QStringLiteral("a"));
    }

    void emptyTagIsNoFailure() { QVERIFY(!Reading(id3v2(QByteArray())).log.contains(failed)); }

    void textEncodings_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("line");
        const QString korean = QStringLiteral("가각");
        const QString koreanWide = QStringLiteral("노래");
        const QString latin = QStringLiteral("I [ID3] MP3 Tag ( latin01 ) [ %1 ] ");
        const QString wide = QStringLiteral("I [ID3] MP3 Tag (utf-16)[ %1 ] ");
        const QString utf8 = QStringLiteral("I [ID3] MP3 Tag (utf-8)[ %1 ] ");
        QTest::newRow("0: Latin-1 is read as the Korean code page")
            << bytesOf("\0\xB0\xA1\xB0\xA2") << korean << latin.arg(korean);
        QTest::newRow("0: plain letters") << bytesOf("\0abc") << "abc" << latin.arg(QStringLiteral("abc"));
        QTest::newRow("1: little-endian by its mark")
            << bytesOf("\1\xFF\xFE\x78\xB1\x98\xB7") << koreanWide << wide.arg(koreanWide);
        QTest::newRow("1: big-endian by its mark")
            << bytesOf("\1\xFE\xFF\xB1\x78\xB7\x98") << koreanWide << wide.arg(koreanWide);
        QTest::newRow("1: little-endian without a mark")
            << bytesOf("\1\x78\xB1\x98\xB7") << koreanWide << wide.arg(koreanWide);
        QTest::newRow("1: plain letters without a mark")
            << bytesOf("\1x\0y\0") << "xy" << wide.arg(QStringLiteral("xy"));
        QTest::newRow("1: a mark alone is no text") << bytesOf("\1\xFF\xFE") << "" << wide.arg(QString());
        QTest::newRow("1: an odd byte at the end is left out")
            << bytesOf("\1x\0y") << "x" << wide.arg(QStringLiteral("x"));
        QTest::newRow("2: big-endian wide text is read as UTF-8")
            << bytesOf("\2\0x\0y") << QString::fromUtf8("\0x\0y", 4) << utf8.arg(QString());
        QTest::newRow("2: UTF-8") << bytesOf("\2\xEB\x85\xB8") << QStringLiteral("노")
                                  << utf8.arg(QStringLiteral("노"));
        QTest::newRow("3: UTF-8") << bytesOf("\3\xEB\x85\xB8\xEB\x9E\x98") << koreanWide
                                  << utf8.arg(koreanWide);
        QTest::newRow("4: any other value is UTF-8")
            << bytesOf("\4abc") << "abc" << utf8.arg(QStringLiteral("abc"));
        QTest::newRow("255: the byte is unsigned") << bytesOf("\xFF"
                                                              "abc")
                                                   << "abc" << utf8.arg(QStringLiteral("abc"));
        QTest::newRow("no bytes at all count as encoding 0") << QByteArray() << "" << latin.arg(QString());
        QTest::newRow("encoding without text") << bytesOf("\3") << "" << utf8.arg(QString());
        QTest::newRow("3: a zero at the end stays")
            << bytesOf("\3abc\0") << QString::fromUtf8("abc\0", 4) << utf8.arg(QStringLiteral("abc"));
        QTest::newRow("0: a zero at the end stays")
            << bytesOf("\0abc\0") << QString::fromUtf8("abc\0", 4) << latin.arg(QStringLiteral("abc"));
        QTest::newRow("1: a zero at the end stays")
            << bytesOf("\1\xFF\xFEx\0\0\0") << QString::fromUtf8("x\0", 2) << wide.arg(QStringLiteral("x"));
        QTest::newRow("several values are not split")
            << bytesOf("\3one\0two") << QString::fromUtf8("one\0two", 7) << utf8.arg(QStringLiteral("one"));
    }
    void textEncodings()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, line);
        const Reading reading(id3v2(frame("TIT2", content)));
        QTEST(reading.title, "title");
        QCOMPARE(reading.log,
                 QStringList({noAlbum, noArtist, sizeLine(quint32(content.size())), line, noPicture}));
    }

    void decodersShareNothingBetweenFrames()
    {
        const Reading reading(id3v2(frame("TALB", bytesOf("\1\xFE\xFF\0a")) + frame("TPE1", bytesOf("\1b\0c"))
                                    + frame("TIT2", bytesOf("\1d\0"))));
        QCOMPARE(reading.album, QStringLiteral("a"));
        QCOMPARE(reading.artist, QStringLiteral("b"));
        QCOMPARE(reading.title, QStringLiteral("d"));
    }

    void tagSizes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<quint32>("size");
        QTest::newRow("zero") << bytesOf("\0\0\0\0") << 0U;
        QTest::newRow("seven bits a byte") << bytesOf("\0\0\2\1") << 257U;
        QTest::newRow("largest") << bytesOf("\x7F\x7F\x7F\x7F") << 268435455U;
        QTest::newRow("high bits are dropped") << bytesOf("\xFF\xFF\xFF\xFF") << 268435455U;
        QTest::newRow("high bits alone") << bytesOf("\x80\x80\x80\x80") << 0U;
    }
    void tagSizes()
    {
        QFETCH(QByteArray, bytes);
        QTEST(QMP3Parser(nullptr).GetTagSize(bytes), "size");
    }

    void frameSizes_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<quint32>("size");
        QTest::addColumn<qint64>("shown");
        QTest::newRow("zero") << bytesOf("\0\0\0\0") << 0U << qint64(0);
        QTest::newRow("eight bits a byte, never seven") << bytesOf("\0\0\2\1") << 513U << qint64(513);
        QTest::newRow("just below half of the range")
            << bytesOf("\x7F\xFF\xFF\xFF") << 2147483647U << qint64(2147483647);
        QTest::newRow("half of the range shows negative")
            << bytesOf("\x80\0\0\0") << 2147483648U << qint64(-2147483648LL);
        QTest::newRow("largest shows as minus one")
            << bytesOf("\xFF\xFF\xFF\xFF") << 4294967295U << qint64(-1);
    }
    void frameSizes()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(quint32, size);
        QFETCH(qint64, shown);
        LogCatcher log;
        QCOMPARE(QMP3Parser(nullptr).GetFrameSize(bytes), size);
        QCOMPARE(log.plain(), QStringList(sizeLine(shown)));
    }

    void tagSizeBoundsTheSearch()
    {
        const QByteArray body = QByteArray(230, '.') + textFrame("TIT2", 3, "end of tag");
        QByteArray file = "ID3" + bytesOf("\3\0\0") + bytesOf("\0\0\2\1") + body;
        file += "...." + textFrame("TALB", 3, "behind the tag");
        const Reading reading(file); // the tag is 257 bytes, of which the title takes 21
        QCOMPARE(reading.title, QStringLiteral("end of tag"));
        QCOMPARE(reading.album, QString());
        QCOMPARE(body.size(), 251);
    }

    void longFrameOfVersionFourHasTheWrongSize()
    {
        const QByteArray text(200, 'x');
        const QByteArray v4 = "TIT2" + syncSafe(201) + bytesOf("\0\0\3") + text;
        const Reading reading(id3v2(v4 + QByteArray(300, '.'), 4));
        QCOMPARE(reading.title.size(), 0x0149 - 1); // 201 in seven-bit bytes is 01 49
        QVERIFY(reading.log.contains(sizeLine(0x0149)));
    }

    void headerFlagsAndVersionAreIgnored()
    {
        QByteArray file = id3v2(textFrame("TIT2", 3, "t"), 99);
        file[5] = char(0xFF);
        QCOMPARE(Reading(file).title, QStringLiteral("t"));
    }

    void markerAnywhereInTheHeaderCounts()
    {
        // The size is taken from bytes 6 to 9 all the same: "3" (0x33) and three zero bytes.
        const QByteArray file = "....ID" + bytesOf("3\0\0\0") + textFrame("TIT2", 3, "t");
        QCOMPARE(Reading(file).title, QStringLiteral("t"));
    }

    void firstPlaceOfANameIsTaken()
    {
        const QByteArray comment = frame("COMM", bytesOf("\0eng\0see TIT2 below, please"));
        const Reading reading(id3v2(comment + textFrame("TIT2", 3, "real")));
        // " below, please" follows: a size of 0x2062656C and flags "ow", then encoding "," and " please...".
        QVERIFY(reading.log.contains(sizeLine(0x2062656C)));
        QVERIFY(reading.title.startsWith(QStringLiteral(" pleaseTIT2")));
        QVERIFY(reading.title.endsWith(QStringLiteral("real")));
    }

    void frameSizesAreCutAtTheEndOfTheBody_data()
    {
        QTest::addColumn<quint32>("size");
        QTest::addColumn<qint64>("shown");
        for (quint32 size : {4U, 5U, 100U, 0x7FFFFFFFU})
            QTest::addRow("0x%X", size) << size << qint64(size);
        for (quint32 size : {0x80000000U, 0xFFFFFFF5U, 0xFFFFFFFFU})
            QTest::addRow("0x%X shows negative", size) << size << qint64(size) - 0x100000000LL;
    }
    void frameSizesAreCutAtTheEndOfTheBody()
    {
        QFETCH(quint32, size);
        QFETCH(qint64, shown);
        const Reading reading(id3v2(frameClaiming("TIT2", size, "\3abc")));
        QCOMPARE(reading.title, QStringLiteral("abc"));
        QVERIFY(reading.log.contains(sizeLine(shown)));
    }

    void frameCutOffByTheEndOfTheBody_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<quint32>("size");
        QTest::newRow("name alone") << bytesOf("TIT2") << 0U;
        QTest::newRow("two bytes of the size") << bytesOf("TIT2\1\2") << 0x01020000U;
        QTest::newRow("no flags") << bytesOf("TIT2\0\0\0\5") << 5U;
        QTest::newRow("no content") << bytesOf("TIT2\0\0\0\5\0\0") << 5U;
    }
    void frameCutOffByTheEndOfTheBody()
    {
        QFETCH(QByteArray, body);
        QFETCH(quint32, size);
        const Reading reading(id3v2(body));
        QCOMPARE(reading.title, QString());
        QCOMPARE(reading.log,
                 QStringList({noAlbum, noArtist, sizeLine(size),
                              QStringLiteral("I [ID3] MP3 Tag ( latin01 ) [  ] "), noPicture}));
    }

    void tagLargerThanTheFileReadsWhatIsThere()
    {
        const qint64 before = PeakMemory::reserved();
        const Reading reading(id3v2Claiming(268435455, textFrame("TIT2", 3, "t")));
        QCOMPARE(reading.title, QStringLiteral("t"));
        QVERIFY(PeakMemory::reserved() - before < 64 * 1024 * 1024);
    }

    void pictures_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArray>("image");
        const QByteArray jpeg = imageFile("JPEG");
        const QByteArray png = imageFile("PNG");
        const QByteArray none;
        const auto content = [](const char* mime, const QByteArray& image, const char* description = "") {
            return pictureContent(mime, image, description);
        };
        QTest::newRow("image/jpeg from byte 14") << content("image/jpeg", jpeg) << jpeg;
        QTest::newRow("image/jpg from byte 13") << content("image/jpg", jpeg) << jpeg;
        QTest::newRow("image/png from byte 13") << content("image/png", png) << png;
        QTest::newRow("the data decides the format, not the type") << content("image/png", jpeg) << jpeg;
        QTest::newRow("unknown type") << content("image/gif", "GIF89a no picture") << none;
        QTest::newRow("type in capitals") << content("IMAGE/JPEG", jpeg) << none;
        QTest::newRow("short type, jpeg") << content("jpeg", jpeg) << none;
        QTest::newRow("jpeg found in the picture's own bytes starts one byte late")
            << content("image/png", png + "jpeg") << none;
        QTest::newRow("jpg is searched before png") << content("image/jpg", png + "png") << png;
        QTest::newRow("type of nine letters with jpg behind it") << content("image/xxx", png + "jpg") << png;
        QTest::newRow("description in front of the data") << content("image/jpeg", jpeg, "cover") << none;
        QTest::newRow("wide description") << content("image/png", png, "\xFF\xFE") << none;
        QTest::newRow("damaged data") << content("image/jpeg", "no picture") << none;
        QTest::newRow("no data") << content("image/jpeg", "") << none;
        QTest::newRow("type alone, shorter than the start") << bytesOf("\0jpg") << none;
        QTest::newRow("nothing") << none << none;
    }
    void pictures()
    {
        QFETCH(QByteArray, content);
        QFETCH(QByteArray, image);
        const Reading reading(id3v2(frame("APIC", content)));
        QCOMPARE(reading.picture, image.isEmpty() ? QImage() : coverOf(image));
        QCOMPARE(reading.log, QStringList({noAlbum, noArtist, noTitle, sizeLine(quint32(content.size()))}));
    }

    void oldTagAtTheEndOfTheFile()
    {
        const Reading reading(QByteArray(500, '.') + id3v1("Title", "Artist", "노래"));
        QCOMPARE(reading.title, QStringLiteral("Title") + QString(25, QChar(0)));
        QCOMPARE(reading.artist, QStringLiteral("Artist") + QString(24, QChar(0)));
        QCOMPARE(reading.album, QStringLiteral("노래") + QString(24, QChar(0)));
        QVERIFY(reading.picture.isNull());
        QCOMPARE(reading.log, QStringList({noId3v2, isId3v1}));
    }

    void oldTagKeepsTrailingBlanks()
    {
        const Reading reading(QByteArray(10, '.') + id3v1(QByteArray("x").leftJustified(30, ' '), "", ""));
        QCOMPARE(reading.title, QStringLiteral("x") + QString(29, QLatin1Char(' ')));
    }

    void oldTagIsTheWholeFile() { QCOMPARE(Reading(id3v1("x", "", "")).title.left(1), QStringLiteral("x")); }

    void oldTagInAShortFileFollowsTheHeader()
    {
        const QByteArray title = QByteArray("t").leftJustified(30, '.');
        const Reading reading("0123456789..TAG" + title + "artist");
        QCOMPARE(reading.title, QString::fromLatin1(title));
        QCOMPARE(reading.artist, QStringLiteral("artist"));
        QCOMPARE(reading.album, QString());
        QCOMPARE(reading.log, QStringList({noId3v2, isId3v1}));
    }

    void oldTagWithinTheHeaderOfAShortFileIsMissed()
    {
        QCOMPARE(Reading("TAG: short").log, QStringList({noId3v2, noTag, failed}));
    }

    void oldTagAnywhereInTheLastBytesIsCutAtTheirEnd()
    {
        QByteArray file(200, '.');
        file.replace(72 + 100, 3, "TAG"); // 25 bytes of title follow
        const Reading reading(file);
        QCOMPARE(reading.title, QString(25, QLatin1Char('.')));
        QCOMPARE(reading.artist, QString());
        QCOMPARE(reading.album, QString());
    }

    void noTagAtAll()
    {
        const Reading reading(QByteArray(500, '.'));
        QCOMPARE(reading.log, QStringList({noId3v2, noTag, failed}));
        QCOMPARE(reading.title, QString());
    }

    void emptyFile() { QCOMPARE(Reading(QByteArray()).log, QStringList({noId3v2, noTag, failed})); }

    void headerCutOff()
    {
        QCOMPARE(Reading("ID3").log, QStringList({noAlbum, noArtist, noTitle, noPicture}));
    }

    void missingHeaderIsSignalledBeforeTheOldTagIsTried()
    {
        MediaFolder folder;
        QMP3Parser reader(nullptr);
        SignalRecorder recorder(&reader);
        LogCatcher log;
        QStringList loggedBefore(QStringLiteral("nothing was signalled"));
        QObject::connect(&reader, &QMP3Parser::sgNoAPIC, [&] { loggedBefore = log.plain(); });
        reader.ReadFilePath(folder.write(QStringLiteral("x.mp3"), id3v1("t", "a", "b")));
        QCOMPARE(recorder.emitted(), QStringList(QStringLiteral("sgNoAPIC()")));
        QCOMPARE(loggedBefore, QStringList());
        QCOMPARE(log.plain(), QStringList({noId3v2, isId3v1}));
    }

    void tagIsReadWithoutAnySignal()
    {
        MediaFolder folder;
        QMP3Parser reader(nullptr);
        SignalRecorder recorder(&reader);
        LogCatcher log(5);
        reader.ReadFilePath(folder.write(QStringLiteral("x.mp3"), id3v2(textFrame("TIT2", 3, "t"))));
        QCOMPARE(reader.GetTitle(), QStringLiteral("t"));
        QCOMPARE(recorder.emitted(), QStringList());
    }

    void readerWithoutAFileDoesNothing()
    {
        LogCatcher log;
        const QMP3Parser reader(nullptr);
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(reader.GetTitle(), QString());
        QVERIFY(reader.GetPicture().isNull());
    }

    void secondFileReplacesTheRecord()
    {
        MediaFolder folder;
        LogCatcher log(5);
        QMP3Parser reader(nullptr);
        reader.ReadFilePath(
            folder.write(QStringLiteral("1.mp3"),
                         id3v2(textFrame("TIT2", 3, "t") + pictureFrame("image/jpeg", imageFile("JPEG")))));
        QVERIFY(!reader.GetPicture().isNull());
        reader.ReadFilePath(folder.write(QStringLiteral("2.mp3"), id3v2(textFrame("TALB", 3, "b"))));
        QCOMPARE(reader.GetTitle(), QString());
        QCOMPARE(reader.GetAlbum(), QStringLiteral("b"));
        QVERIFY(reader.GetPicture().isNull());
    }

    void missingFileEmptiesTheRecord()
    {
        MediaFolder folder;
        LogCatcher log;
        QMP3Parser reader(folder.write(QStringLiteral("1.mp3"), id3v2(textFrame("TIT2", 3, "t"))), nullptr);
        log.clear();
        reader.ReadFilePath(folder.path(QStringLiteral("missing.mp3")));
        QCOMPARE(log.plain(), QStringList(QStringLiteral("E [ID3] No such file or directory")));
        QCOMPARE(reader.GetTitle(), QString());
    }

    void deviceIsNotOpened()
    {
        LogCatcher log;
        const QMP3Parser reader(QStringLiteral("/dev/zero"), nullptr);
        QCOMPARE(log.plain(), QStringList(QStringLiteral("E [ID3] Not a regular file")));
    }
};

VIREO_TEST_MAIN(QMP3ParserTest)
#include "tst_qmp3parser.moc"
