#include "tags/qtagparser.h"
#include "tags/touint.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/tags/covers.h"
#include "tests/tags/mediabuilder.h"
#include "tests/tags/mediafolder.h"

#include <QLocalServer>

#include <memory>

#include <sys/stat.h>
#include <unistd.h>

using namespace MediaBuilder;

namespace {

const QString notATag = QStringLiteral("W FILE-Tag is failed to initialize");
const QString noDot = QStringLiteral("W This File is not mp3 ");

/** A parser and every record that it has emitted. */
struct Front {
    Front()
    {
        QObject::connect(&parser, &QTagParser::sgTagInfoUpdated,
                         [this](TagInfomation record) { records << record; });
        QObject::connect(&parser, &QTagParser::sgFileRead, [this] { ++filesRead; });
    }
    QTagParser parser{nullptr};
    QList<TagInfomation> records;
    int filesRead = 0;
};

/** Works in a folder of its own, so that paths without a folder part can be tried. */
class InFolder {
public:
    explicit InFolder(const QString& folder)
        : m_before(QDir::currentPath())
    {
        QDir::setCurrent(folder);
    }
    ~InFolder() { QDir::setCurrent(m_before); }

private:
    QString m_before;
};

} // namespace

class QTagParserTest : public QObject {
    Q_OBJECT

private slots:
    void bytesToNumber_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("bigEndian");
        QTest::addColumn<quint32>("number");
        QTest::newRow("four bytes, first is highest") << bytesOf("\1\2\3\4") << true << 0x01020304U;
        QTest::newRow("four bytes, first is lowest") << bytesOf("\1\2\3\4") << false << 0x04030201U;
        QTest::newRow("two bytes keep their own width") << bytesOf("\1\2") << true << 0x0102U;
        QTest::newRow("two bytes, first is lowest") << bytesOf("\1\2") << false << 0x0201U;
        QTest::newRow("three bytes give 24 bits") << bytesOf("\xFF\2\3") << true << 0xFF0203U;
        QTest::newRow("one byte") << bytesOf("\x80") << true << 0x80U;
        QTest::newRow("bytes past the fourth are ignored") << bytesOf("\1\2\3\4\5") << true << 0x01020304U;
        QTest::newRow("past the fourth, first is lowest") << bytesOf("\1\2\3\4\5") << false << 0x04030201U;
        QTest::newRow("bytes are unsigned") << bytesOf("\xFF\xFF\xFF\xFF") << true << 0xFFFFFFFFU;
        QTest::newRow("unsigned, first is lowest") << bytesOf("\xFE\xFF\xFF\xFF") << false << 0xFFFFFFFEU;
        QTest::newRow("nothing is 0") << QByteArray() << true << 0U;
        QTest::newRow("nothing is 0, first is lowest") << QByteArray() << false << 0U;
    }
    void bytesToNumber()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, bigEndian);
        QTEST(toUInt(bytes, bigEndian), "number");
    }

    void formatOfTheFirstBytes_data()
    {
        QTest::addColumn<QByteArray>("head");
        QTest::addColumn<int>("format");
        QTest::newRow("ID3") << bytesOf("ID3\3\0\0\0\0\0\0") << 0;
        QTest::newRow("FLAC") << bytesOf("fLaC\0\0\0\x22..") << 1;
        QTest::newRow("Ogg") << bytesOf("OggS\0\2\0\0\0\0") << 2;
        QTest::newRow("RIFF") << bytesOf("RIFF\x24\0\0\0WA") << 3;
        QTest::newRow("unknown") << bytesOf("\xFF\xFB\x90\0......") << 4;
        QTest::newRow("nothing") << QByteArray() << 4;
        QTest::newRow("ID3 is searched before fLaC") << bytesOf("fLaC..ID3.") << 0;
        QTest::newRow("ID3 is searched before Ogg") << bytesOf("Ogg....ID3") << 0;
        QTest::newRow("Ogg is searched before fLaC") << bytesOf("fLaC...Ogg") << 2;
        QTest::newRow("fLaC is searched before RIFF") << bytesOf("RIFF..fLaC") << 1;
        QTest::newRow("a marker counts at any position") << bytesOf(".OggS.....") << 2;
        QTest::newRow("a marker counts at the end") << bytesOf("\0\0\0\0\0\0RIFF") << 3;
        QTest::newRow("a marker cut off does not count") << bytesOf("\0\0\0\0\0\0\0RIF") << 4;
        QTest::newRow("case matters") << bytesOf("id3FLACogg") << 4;
    }
    void formatOfTheFirstBytes()
    {
        QFETCH(QByteArray, head);
        QTEST(QTagParser(nullptr).GetFileFormat(head), "format");
    }

    void onlyTheFirstTenBytesCount()
    {
        MediaFolder folder;
        Front front;
        LogCatcher log;
        front.parser.setFile(folder.write(QStringLiteral("eleven.bin"), bytesOf("........ID3")));
        QCOMPARE(log.plain(), QStringList(notATag));
        QCOMPARE(front.records.value(0).strTitle, QStringLiteral("eleven"));
    }

    void titleFromTheFileName_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("log");
        const QStringList plain = {notATag};
        const QStringList dotless = {notATag, noDot};
        QTest::newRow("plain") << "a/song.mp3"
                               << "song" << plain;
        QTest::newRow("without a folder") << "track.flac"
                                          << "track" << plain;
        QTest::newRow("only the last dot ends the name") << "a/01.intro.wav"
                                                         << "01.intro" << plain;
        QTest::newRow("no dot: the last character goes") << "a/README"
                                                         << "READM" << dotless;
        QTest::newRow("no dot and no folder") << "README"
                                              << "READM" << dotless;
        QTest::newRow("a dot of the folder is taken") << "a.b/README"
                                                      << "a" << plain;
        QTest::newRow("Korean name") << QStringLiteral("a/노래.mp3") << QStringLiteral("노래") << plain;
        QTest::newRow("name of a dot and an extension: the folder's, one character short")
            << "abc/.mp3"
            << "abc" << QStringList({notATag, notATag, noDot});
        QTest::newRow("one character without a dot: the folder's")
            << "abc/x"
            << "abc" << QStringList({notATag, noDot, notATag, noDot});
    }
    void titleFromTheFileName()
    {
        QFETCH(QString, path);
        MediaFolder folder;
        const InFolder inside(folder.path(QString()));
        folder.write(path, "no tags in here");
        Front front;
        LogCatcher log;
        QVERIFY(front.parser.setFile(path));
        QCOMPARE(front.records.size(), 1);
        QTEST(front.records.at(0).strTitle, "title");
        QTEST(log.plain(), "log");
    }

    void nameTakesTheExtensionOffTheStoredPath()
    {
        MediaFolder folder;
        const QString path = folder.write(QStringLiteral("one.two.mp3"), id3v2(textFrame("TIT2", 3, "x")));
        Front front;
        LogCatcher log(5);
        front.parser.setFile(path);
        QCOMPARE(front.parser.GetMP3FileName(), QStringLiteral("one.two"));
        QCOMPARE(front.parser.GetMP3FileName(), QStringLiteral("one"));
    }

    void nameOfNothingIsEmpty()
    {
        QTagParser parser(nullptr);
        LogCatcher log;
        QCOMPARE(parser.GetMP3FileName(), QString());
        QCOMPARE(log.plain(), QStringList(noDot));
    }

    void wavIsKnownByItsNameOnly()
    {
        MediaFolder folder;
        Front front;
        LogCatcher log;
        QVERIFY(front.parser.setFile(folder.write(QStringLiteral("gong.wav"), "RIFF....WAVEfmt ")));
        QCOMPARE(front.records.size(), 1);
        const TagInfomation record = front.records.at(0);
        QCOMPARE(record.strTitle, QStringLiteral("gong"));
        QCOMPARE(record.strArtist, QString());
        QCOMPARE(record.strAlbum, QString());
        QVERIFY(record.pixPicture.isNull());
        QCOMPARE(log.plain(), QStringList(notATag));
    }

    void emptyFileIsUnknown()
    {
        MediaFolder folder;
        Front front;
        LogCatcher log;
        QVERIFY(front.parser.setFile(folder.write(QStringLiteral("empty.mp3"), QByteArray())));
        QCOMPARE(front.records.size(), 1);
        QCOMPARE(front.records.at(0).strTitle, QStringLiteral("empty"));
        QCOMPARE(log.plain(), QStringList(notATag));
    }

    void emptyTitleOfAReaderIsLoggedOnce()
    {
        MediaFolder folder;
        Front front;
        LogCatcher log(3);
        front.parser.setFile(folder.write(QStringLiteral("untitled.mp3"), id3v2(textFrame("TALB", 3, "x"))));
        QCOMPARE(front.records.value(0).strTitle, QStringLiteral("untitled"));
        QCOMPARE(front.records.value(0).strAlbum, QStringLiteral("x"));
        QCOMPARE(log.plain().count(notATag), 1);
        QCOMPARE(log.plain().last(), notATag);
    }

    void everyFormatReachesItsReader_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("hasPicture");
        const QByteArray jpeg = imageFile("JPEG");
        QTest::newRow("MP3") << "x.mp3"
                             << id3v2(textFrame("TIT2", 3, "t") + textFrame("TPE1", 3, "a")
                                      + textFrame("TALB", 3, "b") + pictureFrame("image/jpeg", jpeg))
                             << true;
        const QByteArray comments = vorbisComments({"TITLE=t", "ARTIST=a", "ALBUM=b"});
        QTest::newRow("FLAC") << "x.flac"
                              << flacStart() + flacBlock(Comment, comments)
                + flacBlock(Picture, flacPicture("image/jpeg", jpeg), true)
                              << true;
        QTest::newRow("Ogg") << "x.ogg"
                             << oggPage({oggIdentification() + QByteArray(50, '.')})
                + oggPage({oggComment(comments)})
                             << false;
    }
    void everyFormatReachesItsReader()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(bool, hasPicture);
        MediaFolder folder;
        Front front;
        LogCatcher log(5);
        QVERIFY(front.parser.setFile(folder.write(name, bytes)));
        QCOMPARE(front.filesRead, 1);
        QCOMPARE(front.records.size(), 1);
        const TagInfomation record = front.records.at(0);
        QCOMPARE(record.strTitle, QStringLiteral("t"));
        QCOMPARE(record.strArtist, QStringLiteral("a"));
        QCOMPARE(record.strAlbum, QStringLiteral("b"));
        QCOMPARE(record.pixPicture.isNull(), !hasPicture);
        if (hasPicture)
            QCOMPARE(record.pixPicture.toImage(), coverOf(imageFile("JPEG")));
    }

    void eachFileReplacesTheRecord()
    {
        MediaFolder folder;
        const QString full =
            folder.write(QStringLiteral("full.mp3"),
                         id3v2(textFrame("TIT2", 3, "t") + textFrame("TPE1", 3, "a")
                               + textFrame("TALB", 3, "b") + pictureFrame("image/jpeg", imageFile("JPEG"))));
        const QString bare = folder.write(QStringLiteral("bare.wav"), "RIFF");
        Front front;
        LogCatcher log(5);
        front.parser.setFile(full);
        front.parser.setFile(bare);
        QCOMPARE(front.records.size(), 2);
        QCOMPARE(front.records.at(1).strTitle, QStringLiteral("bare"));
        QCOMPARE(front.records.at(1).strArtist, QString());
        QCOMPARE(front.records.at(1).strAlbum, QString());
        QVERIFY(front.records.at(1).pixPicture.isNull());
    }

    void nextFileMayBeSetFromWithinTheRecord()
    {
        MediaFolder folder;
        const QString second = folder.write(QStringLiteral("second.wav"), "RIFF");
        Front front;
        LogCatcher log;
        QObject::connect(&front.parser, &QTagParser::sgTagInfoUpdated, [&] {
            if (front.records.size() == 1)
                front.parser.setFile(second);
        });
        front.parser.setFile(folder.write(QStringLiteral("first.wav"), "RIFF"));
        QCOMPARE(front.records.size(), 2);
        QCOMPARE(front.records.at(1).strTitle, QStringLiteral("second"));
    }

    void pathOfTheConstructorIsIgnored()
    {
        MediaFolder folder;
        const QString path = folder.write(QStringLiteral("x.wav"), "RIFF");
        LogCatcher log;
        QTagParser parser(path, nullptr);
        QVERIFY(log.lines().isEmpty());
        int records = 0;
        QObject::connect(&parser, &QTagParser::sgTagInfoUpdated, [&] { ++records; });
        QVERIFY(parser.setFile(path));
        QCOMPARE(records, 1);
    }

    void parsingWithoutAFileStillEmits()
    {
        Front front;
        LogCatcher log;
        front.parser.TagParsing();
        QCOMPARE(front.records.size(), 1);
        QCOMPARE(front.records.at(0).strTitle, QString());
        QCOMPARE(log.plain(), QStringList({notATag, noDot, notATag, noDot}));
    }

    void whatCannotBeOpenedEmitsNothing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("line");
        QTest::newRow("missing") << "missing.mp3"
                                 << "E No such file or directory";
        QTest::newRow("below a missing folder") << "no/such.mp3"
                                                << "E No such file or directory";
        QTest::newRow("below a file") << "file/such.mp3"
                                      << "E Not a directory";
        QTest::newRow("folder") << "folder"
                                << "E file to open is a directory";
        QTest::newRow("pipe that nobody writes to") << "pipe"
                                                    << "E Not a regular file";
        QTest::newRow("link to a pipe") << "link"
                                        << "E Not a regular file";
        QTest::newRow("link to nothing") << "dangling"
                                         << "E No such file or directory";
        QTest::newRow("link to itself") << "loop"
                                        << "E Too many levels of symbolic links";
        QTest::newRow("socket") << "socket"
                                << "E Not a regular file";
        QTest::newRow("device") << "/dev/zero"
                                << "E Not a regular file";
        QTest::newRow("name too long") << QString(300, QLatin1Char('x')) << "E File name too long";
        QTest::newRow("no name") << ""
                                 << "E No file name specified";
    }
    void whatCannotBeOpenedEmitsNothing()
    {
        QFETCH(QString, name);
        MediaFolder folder;
        folder.write(QStringLiteral("file"), "x");
        const InFolder inside(folder.path(QString()));
        QDir().mkdir(QStringLiteral("folder"));
        QCOMPARE(mkfifo("pipe", 0600), 0);
        QVERIFY(QFile::link(QStringLiteral("pipe"), QStringLiteral("link")));
        QVERIFY(QFile::link(QStringLiteral("nowhere"), QStringLiteral("dangling")));
        QVERIFY(QFile::link(QStringLiteral("loop"), QStringLiteral("loop")));
        QLocalServer socket;
        QVERIFY(socket.listen(folder.path(QStringLiteral("socket"))));

        Front front;
        LogCatcher log;
        QVERIFY(!front.parser.setFile(name));
        QCOMPARE(front.filesRead, 0);
        QCOMPARE(front.records.size(), 0);
        QTEST(log.plain().last(), "line");
    }

    void unreadableFileEmitsNothing()
    {
        MediaFolder folder;
        const QString path = folder.write(QStringLiteral("x.mp3"), "ID3");
        QCOMPARE(chmod(QFile::encodeName(folder.path(QString())), 0755), 0);
        QCOMPARE(chmod(QFile::encodeName(path), 0), 0);
        Front front;
        LogCatcher log;
        const uid_t user = geteuid();
        const bool isPowerful = user == 0; // who may read everything looks as somebody else
        QVERIFY(!isPowerful || seteuid(65534) == 0);
        const bool opened = front.parser.setFile(path);
        QVERIFY(!isPowerful || seteuid(user) == 0);
        QVERIFY(!opened);
        QCOMPARE(front.records.size(), 0);
        QCOMPARE(log.plain(), QStringList(QStringLiteral("E Permission denied")));
    }

    void failureKeepsNothingOpen()
    {
        MediaFolder folder;
        Front front;
        LogCatcher log(5);
        QVERIFY(!front.parser.setFile(QStringLiteral("/dev/null")));
        QVERIFY(front.parser.setFile(folder.write(QStringLiteral("x.wav"), "RIFF")));
        QCOMPARE(front.records.size(), 1);
    }
};

VIREO_TEST_MAIN(QTagParserTest)
#include "tst_qtagparser.moc"
