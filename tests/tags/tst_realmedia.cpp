#include "tags/qmp3parser.h"
#include "tests/support/panelmain.h"
#include "tests/tags/covers.h"
#include "tests/tags/frontreading.h"
#include "tests/tags/mediabuilder.h"
#include "tests/tags/mediafolder.h"

#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <memory>
#include <random>

using namespace MediaBuilder;

namespace {

constexpr int sampleRate = 44100;
constexpr int toolTimeoutMs = 120000;
/** Enough for the naive reader to nest a few thousand pages, also with sanitizers. */
constexpr uint deepStackBytes = 512 * 1024 * 1024;

/** A WAV file of stereo noise, which no encoder can squeeze into few pages. */
QByteArray wavOfNoise(int seconds)
{
    const int bytes = seconds * sampleRate * 4;
    QByteArray file = "RIFF" + littleEndian(quint32(36 + bytes)) + "WAVEfmt " + littleEndian(16)
        + bytesOf("\1\0\2\0") + littleEndian(sampleRate) + littleEndian(sampleRate * 4) + bytesOf("\4\0\20\0")
        + "data" + littleEndian(quint32(bytes));
    std::mt19937 random(1);
    file.reserve(file.size() + bytes);
    for (int i = 0; i < bytes / 4; ++i)
        file += littleEndian(random() & 0x3FFF3FFF);
    return file;
}

/** Empty where the program ran well, else what it said. */
QString toolError(const QString& folder, const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    if (!process.waitForStarted())
        return QStringLiteral("%1 does not start: %2").arg(program, process.errorString());
    if (!process.waitForFinished(toolTimeoutMs))
        return QStringLiteral("%1 does not end").arg(program);
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return QStringLiteral("%1 failed: %2").arg(program, QString::fromUtf8(process.readAll()));
    return {};
}

/** Texts as the panel shows them: without the zero characters that some taggers end them with. */
QString shown(QString text)
{
    while (text.endsWith(QChar(0)))
        text.chop(1);
    return text;
}

QStringList words(const char* line)
{
    return QString::fromUtf8(line).split(QLatin1Char(' '));
}

/** The naive reader's view of an Ogg file of thousands of pages, which needs a deep stack. */
QStringList naiveOggLog(const QByteArray& file)
{
    NaiveReader naive(file, QString());
    const std::unique_ptr<QThread> thread(QThread::create([&naive] { naive.readOgg(); }));
    thread->setStackSize(deepStackBytes);
    thread->start();
    thread->wait();
    return naive.log;
}

} // namespace

/** Files made by the usual encoders and taggers, which must be installed. */
class RealMediaTest : public QObject {
    Q_OBJECT

private:
    MediaFolder m_folder;

    QString path(const char* name) const { return m_folder.path(QString::fromLatin1(name)); }
    QString error(const QStringList& command) const
    {
        return toolError(m_folder.path(QString()), command.first(), command.mid(1));
    }

#define RUN(...)                                                                                             \
    do {                                                                                                     \
        const QString said = error(__VA_ARGS__);                                                             \
        QVERIFY2(said.isEmpty(), qPrintable(said));                                                          \
    } while (false)

#define COMPARE_WITH_NAIVE(name)                                                                             \
    do {                                                                                                     \
        const QString found = differenceFromNaive(path(name), UnitRoot::read(path(name)));                   \
        QVERIFY2(found.isEmpty(), qPrintable(found));                                                        \
    } while (false)

private slots:
    void initTestCase()
    {
        for (const char* tool : {"lame", "eyeD3", "ffmpeg", "flac", "metaflac", "oggenc", "vorbiscomment"}) {
            const QString found = QStandardPaths::findExecutable(QString::fromLatin1(tool));
            QVERIFY2(!found.isEmpty(), QByteArray("this test needs the program ") + tool);
        }
        m_folder.write(QStringLiteral("in.wav"), wavOfNoise(2));
        m_folder.write(QStringLiteral("cover.jpg"), imageFile("JPEG", 300, 200));
        m_folder.write(QStringLiteral("cover.png"), imageFile("PNG", 300, 200, 99));
        RUN(words("lame --quiet -b 128 in.wav bare.mp3"));
        RUN(words("oggenc -Q in.wav -o bare.ogg"));
    }

    void mp3_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<bool>("isTagger"); // works on a copy of an untagged file
        QTest::addColumn<QString>("image");
        const QString jpg = QStringLiteral("cover.jpg");
        const QString png = QStringLiteral("cover.png");
        const QString none;
        const char* texts = "--tt Title --ta Artist --tl Album";
        const auto lame = [texts](const char* more) {
            return words("lame --quiet -b 128") + words(texts) + words(more) + words("in.wav out.mp3");
        };
        QTest::newRow("lame") << lame("--add-id3v2") << false << none;
        QTest::newRow("lame, JPEG") << lame("--ti cover.jpg") << false << jpg;
        QTest::newRow("lame, PNG") << lame("--ti cover.png") << false << png;
        QTest::newRow("lame, UTF-16") << lame("--id3v2-utf16 --id3v2-only --ti cover.jpg") << false << jpg;
        QTest::newRow("lame, old tag as well") << lame("--add-id3v2 --pad-id3v2") << false << none;

        const auto eyeD3 = [](const char* more) {
            return words("eyeD3 --quiet -t Title -a Artist -A Album") + words(more) + words("out.mp3");
        };
        QTest::newRow("eyeD3, 2.3, Latin-1, JPEG")
            << eyeD3("--to-v2.3 --encoding latin1 --add-image cover.jpg:FRONT_COVER") << true << jpg;
        QTest::newRow("eyeD3, 2.3, UTF-16: the mark of an empty description hides the picture")
            << eyeD3("--to-v2.3 --encoding utf16 --add-image cover.png:FRONT_COVER") << true << none;
        QTest::newRow("eyeD3, 2.3, Latin-1, PNG")
            << eyeD3("--to-v2.3 --encoding latin1 --add-image cover.png:FRONT_COVER") << true << png;
        QTest::newRow("eyeD3, 2.4, UTF-8, JPEG")
            << eyeD3("--to-v2.4 --encoding utf8 --add-image cover.jpg:FRONT_COVER") << true << jpg;
        QTest::newRow("eyeD3, 2.4, no picture") << eyeD3("--to-v2.4 --encoding utf8") << true << none;
        QTest::newRow("eyeD3, description in front of the picture")
            << eyeD3("--to-v2.3 --encoding latin1 --add-image cover.jpg:FRONT_COVER:front") << true << none;

        const auto ffmpeg = [](const char* inputs, const char* version) {
            return words("ffmpeg -v error -y") + words(inputs) + words("-id3v2_version") + words(version)
                + words("-metadata title=Title -metadata artist=Artist -metadata album=Album -c:a libmp3lame "
                        "out.mp3");
        };
        const char* withJpeg = "-i in.wav -i cover.jpg -map 0 -map 1 -c:v copy";
        const char* withPng = "-i in.wav -i cover.png -map 0 -map 1 -c:v copy";
        QTest::newRow("ffmpeg, 2.3, JPEG") << ffmpeg(withJpeg, "3") << false << jpg;
        QTest::newRow("ffmpeg, 2.3, PNG") << ffmpeg(withPng, "3") << false << png;
        QTest::newRow("ffmpeg, 2.4, JPEG") << ffmpeg(withJpeg, "4") << false << jpg;
        QTest::newRow("ffmpeg, 2.4, PNG") << ffmpeg(withPng, "4") << false << png;
        QTest::newRow("ffmpeg, no picture") << ffmpeg("-i in.wav", "3") << false << none;
    }
    void mp3()
    {
        QFETCH(QStringList, command);
        QFETCH(bool, isTagger);
        QFETCH(QString, image);
        QFile::remove(path("out.mp3"));
        if (isTagger)
            QVERIFY(QFile::copy(path("bare.mp3"), path("out.mp3")));
        RUN(command);
        const FrontReading reading(path("out.mp3"));
        QCOMPARE(shown(reading.record.strTitle), QStringLiteral("Title"));
        QCOMPARE(shown(reading.record.strArtist), QStringLiteral("Artist"));
        QCOMPARE(shown(reading.record.strAlbum), QStringLiteral("Album"));
        const QImage expected = image.isEmpty() ? QImage() : coverOf(UnitRoot::read(m_folder.path(image)));
        QCOMPARE(reading.record.pixPicture.toImage(), expected);
        COMPARE_WITH_NAIVE("out.mp3");
    }

    void koreanMp3_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::newRow("UTF-16, 2.3") << words("--to-v2.3 --encoding utf16");
        QTest::newRow("UTF-8, 2.4") << words("--to-v2.4 --encoding utf8");
    }
    void koreanMp3()
    {
        QFETCH(QStringList, options);
        QFile::remove(path("out.mp3"));
        QVERIFY(QFile::copy(path("bare.mp3"), path("out.mp3")));
        RUN(words("eyeD3 --quiet -t 노래 -a 가수 -A 음반") + options + words("out.mp3"));
        const FrontReading reading(path("out.mp3"));
        QCOMPARE(shown(reading.record.strTitle), QStringLiteral("노래"));
        QCOMPARE(shown(reading.record.strArtist), QStringLiteral("가수"));
        QCOMPARE(shown(reading.record.strAlbum), QStringLiteral("음반"));
        COMPARE_WITH_NAIVE("out.mp3");
    }

    void koreanCodePageInALatin1Frame()
    {
        // What Korean taggers write: the bytes of the code page, declared as Latin-1. To eyeD3 they are
        // the letters of those bytes.
        QFile::remove(path("out.mp3"));
        QVERIFY(QFile::copy(path("bare.mp3"), path("out.mp3")));
        RUN(words("eyeD3 --quiet --to-v2.3 --encoding latin1 -t °¡°¢ out.mp3"));
        QCOMPARE(shown(FrontReading(path("out.mp3")).record.strTitle), QStringLiteral("가각"));
    }

    void mp3WithTheOldTagOnly()
    {
        RUN(words("lame --quiet -b 128 --id3v1-only --tt Title --ta Artist --tl Album in.wav out.mp3"));
        QCOMPARE(FrontReading(path("out.mp3")).record.strTitle, QStringLiteral("out"));
        LogCatcher log;
        const QMP3Parser reader(path("out.mp3"), nullptr);
        QCOMPARE(shown(reader.GetTitle()), QStringLiteral("Title"));
        QCOMPARE(shown(reader.GetArtist()), QStringLiteral("Artist"));
        QCOMPARE(shown(reader.GetAlbum()), QStringLiteral("Album"));
        QCOMPARE(reader.GetTitle().size(), 30);
    }

    void flac_data()
    {
        QTest::addColumn<QList<QStringList>>("commands");
        QTest::addColumn<QString>("image");
        const QString jpg = QStringLiteral("cover.jpg");
        const QString png = QStringLiteral("cover.png");
        const auto flac = [](const char* more) {
            QStringList command =
                words("flac --silent --force -T TITLE=노래 -T artist=Artist -T Album=Album");
            if (*more)
                command += words(more);
            return command + words("-o out.flac in.wav");
        };
        using Commands = QList<QStringList>;
        QTest::newRow("no picture") << Commands{flac("")} << QString();
        QTest::newRow("JPEG") << Commands{flac("--picture=cover.jpg")} << jpg;
        QTest::newRow("PNG") << Commands{flac("--picture=cover.png")} << png;
        QTest::newRow("described picture") << Commands{flac("--picture=3||front||cover.png")} << png;
        QTest::newRow("two pictures")
            << Commands{flac("--picture=3||||cover.jpg --picture=4||||cover.png")} << png;
        QTest::newRow("no padding") << Commands{flac("--no-padding --picture=cover.jpg")} << jpg;
        QTest::newRow("much padding") << Commands{flac("--padding=200000 --picture=cover.jpg")} << jpg;
        QTest::newRow("seek table") << Commands{flac("--seekpoint=100x --picture=cover.jpg")} << jpg;
        QTest::newRow("cue sheet") << Commands{flac("--cuesheet=tracks.cue --picture=cover.jpg")} << jpg;
        QTest::newRow("picture added behind the padding")
            << Commands{flac(""),
                        words("metaflac --dont-use-padding --import-picture-from=cover.png out.flac")}
            << png;
        QTest::newRow("pictures added one by one")
            << Commands{flac("--picture=cover.jpg"),
                        words("metaflac --import-picture-from=4||||cover.png out.flac"),
                        words("metaflac --import-picture-from=6||||cover.jpg out.flac")}
            << jpg;
    }
    void flac()
    {
        QFETCH(QList<QStringList>, commands);
        QFETCH(QString, image);
        m_folder.write(QStringLiteral("tracks.cue"),
                       "FILE \"in.wav\" WAVE\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n");
        for (const QStringList& command : commands)
            RUN(command);
        const FrontReading reading(path("out.flac"));
        QCOMPARE(reading.record.strTitle, QStringLiteral("노래"));
        QCOMPARE(reading.record.strArtist, QStringLiteral("Artist"));
        QCOMPARE(reading.record.strAlbum, QStringLiteral("Album"));
        const QString failure = QStringLiteral("W [FLAC] FILE-Tag is failed to initialize");
        QCOMPARE(reading.log.contains(failure), image.isEmpty());
        const QImage expected = image.isEmpty() ? QImage() : coverOf(UnitRoot::read(m_folder.path(image)));
        QCOMPARE(reading.record.pixPicture.toImage(), expected);
        COMPARE_WITH_NAIVE("out.flac");
    }

    void flacWithEmptyPadding()
    {
        RUN(words("flac --silent --force -T TITLE=x --picture=cover.jpg --no-padding -o out.flac in.wav"));
        RUN(words("metaflac --add-padding=0 out.flac"));
        const FrontReading reading(path("out.flac"));
        QCOMPARE(reading.record.strTitle, QStringLiteral("out"));
        QVERIFY(reading.record.pixPicture.isNull());
        QVERIFY(reading.log.contains(QStringLiteral("E Not found tag information [1]")));
        COMPARE_WITH_NAIVE("out.flac");
    }

    void flacBehindAnId3Tag()
    {
        RUN(words("flac --silent --force -T TITLE=x -o out.flac in.wav"));
        const QByteArray tag = id3v2(textFrame("TIT2", 3, "from the tag"));
        m_folder.write(QStringLiteral("both.flac"), tag + UnitRoot::read(path("out.flac")));
        QCOMPARE(FrontReading(path("both.flac")).record.strTitle, QStringLiteral("from the tag"));
        COMPARE_WITH_NAIVE("both.flac");
    }

    void ogg()
    {
        RUN(words("oggenc -Q -t 노래 -a Artist -l Album in.wav -o out.ogg"));
        const FrontReading reading(path("out.ogg"));
        QCOMPARE(reading.record.strTitle, QStringLiteral("노래"));
        QCOMPARE(reading.record.strArtist, QStringLiteral("Artist"));
        QCOMPARE(reading.record.strAlbum, QStringLiteral("Album"));
        QVERIFY(reading.record.pixPicture.isNull());
        QVERIFY(reading.log.contains(QStringLiteral("I [OGG] ARTIST - Artist")));
        COMPARE_WITH_NAIVE("out.ogg");
    }

    void oggTaggedLater()
    {
        RUN(words("vorbiscomment -w -t TITLE=x -t ARTIST=y -t title=z bare.ogg out.ogg"));
        const FrontReading reading(path("out.ogg"));
        QCOMPARE(reading.record.strTitle, QStringLiteral("z"));
        QCOMPARE(reading.record.strArtist, QStringLiteral("y"));
        QCOMPARE(reading.record.strAlbum, QString());
        COMPARE_WITH_NAIVE("out.ogg");
    }

    void oggWithACommentHeaderAcrossPages()
    {
        m_folder.write(QStringLiteral("tags.txt"), "TITLE=x\nCOMMENT=" + QByteArray(70000, 'c') + "\n");
        RUN(words("vorbiscomment -w -c tags.txt bare.ogg out.ogg"));
        QCOMPARE(FrontReading(path("out.ogg")).record.strTitle, QStringLiteral("out"));
        COMPARE_WITH_NAIVE("out.ogg");
        m_folder.write(QStringLiteral("tags.txt"), "TITLE=x\nCOMMENT=" + QByteArray(60000, 'c') + "\n");
        RUN(words("vorbiscomment -w -c tags.txt bare.ogg out.ogg"));
        QCOMPARE(FrontReading(path("out.ogg")).record.strTitle, QStringLiteral("x"));
        COMPARE_WITH_NAIVE("out.ogg");
    }

    void oggOfThousandsOfPages_data()
    {
        QTest::addColumn<QStringList>("command");
        QTest::newRow("many packets a page") << words("oggenc -Q -q 10 -t x long.wav -o long.ogg");
        QTest::newRow("one packet a page") << words(
            "ffmpeg -v error -y -i long.wav -c:a libvorbis -page_duration 1 -metadata title=x long.ogg");
    }
    void oggOfThousandsOfPages()
    {
        QFETCH(QStringList, command);
        m_folder.write(QStringLiteral("long.wav"), wavOfNoise(20));
        RUN(command);
        const QByteArray once = UnitRoot::read(path("long.ogg"));
        QByteArray file; // streams may follow each other in one file
        while (file.count("OggS") < 3000)
            file += once;
        const FrontReading reading(m_folder.write(QStringLiteral("long.ogg"), file));
        QCOMPARE(reading.record.strTitle, QStringLiteral("x"));
        QVERIFY(reading.log.contains(QStringLiteral("I [OGG] TITLE - x")));
        QCOMPARE(reading.log, naiveOggLog(file));
    }

    void wav()
    {
        const FrontReading reading(path("in.wav"));
        QCOMPARE(reading.record.strTitle, QStringLiteral("in"));
        COMPARE_WITH_NAIVE("in.wav");
    }
};

VIREO_TEST_MAIN(RealMediaTest)
#include "tst_realmedia.moc"
