#include "app/limits.h"
#include "tags/qflacparser.h"
#include "tags/qmp3parser.h"
#include "tags/qoggparser.h"
#include "tags/readwindow.h"
#include "tests/support/panelmain.h"
#include "tests/tags/mediabuilder.h"
#include "tests/tags/mediafolder.h"
#include "tests/tags/peakmemory.h"
#include "tests/tags/tagreading.h"

#include <QTextCodec>

#include <random>

using namespace MediaBuilder;

namespace {

using Mp3Reading = TagReading<QMP3Parser>;
using FlacReading = TagReading<QFLACparser>;
using OggReading = TagReading<QOggParser>;

constexpr int MiB = 1024 * 1024;
constexpr int shown = limits::textCharacters;

QByteArray randomBytes(int count)
{
    std::mt19937 random(11);
    QByteArray bytes(count, '\0');
    for (char& byte : bytes)
        byte = char(random());
    return bytes;
}

/** The text of all the bytes, by the encoding of an ID3 frame. */
QString decoded(int encoding, const QByteArray& bytes)
{
    static constexpr const char* codecs[] = {"euc-kr", "UTF-16", "UTF-8", "UTF-8"};
    const std::unique_ptr<QTextDecoder> decoder(QTextCodec::codecForName(codecs[encoding])->makeDecoder());
    return decoder->toUnicode(bytes);
}

QByteArray utf8(int characters, const char* character)
{
    return QByteArray(character).repeated(characters);
}

QByteArray flacWith(const QList<QByteArray>& comments)
{
    return flacStart() + flacBlock(Comment, vorbisComments(comments), true);
}

/** Memory at its peak that reading takes, in bytes. */
template <typename Reader> qint64 memoryOf(const QString& path)
{
    PeakMemory::reset();
    const qint64 before = PeakMemory::used();
    const Reader reader(path, nullptr);
    return PeakMemory::used() - before;
}

/** An ID3 tag of that size with a title at byte `at` of its body; the rest is a hole in the file. */
QString sparseMp3(const MediaFolder& folder, quint32 tagBytes, qint64 at)
{
    const QString path = folder.write(QStringLiteral("sparse.mp3"), id3v2Claiming(tagBytes, ""));
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite) || !file.resize(tagBytes + 10) || !file.seek(10 + at))
        qFatal("no sparse file");
    file.write(textFrame("TIT2", 3, "deep"));
    return path;
}

} // namespace

class TagBoundsTest : public QObject {
    Q_OBJECT

private slots:
    void id3TagIsReadUpToItsBound()
    {
        const MediaFolder folder;
        const int frameBytes = int(textFrame("TIT2", 3, "deep").size());
        const auto titleAt = [&folder](qint64 at) {
            return QMP3Parser(sparseMp3(folder, 200 * MiB, at), nullptr).GetTitle();
        };
        QCOMPARE(titleAt(limits::tagBytes - frameBytes), QStringLiteral("deep"));
        QCOMPARE(titleAt(limits::tagBytes - frameBytes + 1), QStringLiteral("dee"));
        QCOMPARE(titleAt(limits::tagBytes), QString());
    }

    void largestId3TagTakesNoMoreMemoryThanItsBound()
    {
        if (!PeakMemory::isMeaningful)
            QSKIP("the sanitizer keeps what was freed");
        const MediaFolder folder;
        QVERIFY(memoryOf<QMP3Parser>(sparseMp3(folder, 255 * MiB, 0)) < limits::tagBytes + MiB);
    }

    void id3TextIsCut_data()
    {
        QTest::addColumn<int>("encoding");
        QTest::addColumn<QByteArray>("bytes");
        for (const int encoding : {0, 1, 2, 3}) {
            QTest::addRow("ASCII, %d", encoding) << encoding << QByteArray(3 * shown, 'a');
            QTest::addRow("Hangul of two bytes, %d", encoding) << encoding << utf8(2 * shown, "\xB0\xA1");
            QTest::addRow("Hangul of three bytes, %d", encoding) << encoding << utf8(2 * shown, "가");
            QTest::addRow("pairs of surrogates, %d", encoding) << encoding << utf8(shown, "👍");
            QTest::addRow("odd pairs, %d", encoding) << encoding << "x" + utf8(shown, "👍");
            QTest::addRow("after a mark, %d", encoding) << encoding << "\xEF\xBB\xBF" + utf8(2 * shown, "가");
            QTest::addRow("after the other mark, %d", encoding)
                << encoding << "\xFE\xFF" + QByteArray(3 * shown, 'a');
            QTest::addRow("random, %d", encoding) << encoding << randomBytes(6 * shown);
            QTest::addRow("zeros, %d", encoding) << encoding << QByteArray(3 * shown, '\0');
        }
    }
    void id3TextIsCut()
    {
        QFETCH(int, encoding);
        QFETCH(QByteArray, bytes);
        const QString whole = decoded(encoding, bytes);
        QVERIFY(whole.size() > shown);
        const Mp3Reading reading(id3v2(textFrame("TALB", encoding, bytes)));
        QCOMPARE(reading.album, whole.left(shown));
    }

    void textOfTheGreatestLengthStaysWhole()
    {
        const QByteArray text = utf8(shown, "가");
        QCOMPARE(Mp3Reading(id3v2(textFrame("TIT2", 3, text))).title.size(), shown);
        QCOMPARE(FlacReading(flacWith({"TITLE=" + text})).title, QString::fromUtf8(text));
        QCOMPARE(FlacReading(flacWith({"TITLE=" + text + "x"})).title, QString::fromUtf8(text));
    }

    void vorbisTextIsCut_data()
    {
        QTest::addColumn<QByteArray>("value");
        QTest::newRow("ASCII") << QByteArray(3 * shown, 'a');
        QTest::newRow("three bytes") << utf8(2 * shown, "가");
        QTest::newRow("surrogates") << "x" + utf8(shown, "👍");
        QTest::newRow("a mark") << "\xEF\xBB\xBF" + utf8(2 * shown, "가");
        QTest::newRow("megabytes") << utf8(2 * MiB, "é");
        QTest::newRow("not UTF-8") << randomBytes(6 * shown).replace('\0', 'z').replace('=', 'z');
    }
    void vorbisTextIsCut()
    {
        QFETCH(QByteArray, value);
        const QString whole =
            QString::fromUtf8("x" + value).mid(1); // a mark counts where it is not the first
        QCOMPARE(FlacReading(flacWith({"ARTIST=" + value})).artist, whole.left(shown));
        QCOMPARE(FlacReading(flacWith({"ARTIST=" + value + "=b"})).artist, whole.left(shown));
        QCOMPARE(FlacReading(flacWith({"ARTIST=a=" + value})).artist, QStringLiteral("a"));
    }

    void longKeyIsNoField()
    {
        const QByteArray key(3 * shown, 'k');
        QCOMPARE(FlacReading(flacWith({key + "=v", "TITLE=x", "TITLE" + key + "=v"})).title,
                 QStringLiteral("x"));
    }

    void longVendorIsLoggedAsFarAsALineGoes()
    {
        const QByteArray vendor(9 * MiB, 'v');
        const QByteArray block = vorbisComments({"TITLE=x"}, vendor);
        const FlacReading reading(flacStart() + flacBlock(Comment, block, true));
        QCOMPARE(reading.title, QStringLiteral("x"));
        const QString line = reading.log.first();
        QVERIFY(line.size() > limits::logLineBytes - 100);
        QCOMPARE(line.count(QLatin1Char('v')), line.size() - 2);
    }

    void commentsAreReadUpToTheirBound()
    {
        const auto titleAt = [](int number) {
            QList<QByteArray> comments;
            for (int i = 1; i < number; ++i)
                comments << "A=";
            comments << "TITLE=x";
            return FlacReading(flacWith(comments)).title;
        };
        QCOMPARE(titleAt(limits::vorbisComments), QStringLiteral("x"));
        QCOMPARE(titleAt(limits::vorbisComments + 1), QString());
    }

    void commentsOfAllHeadersOfAFileCountTogether()
    {
        const int each = 10000;
        const QByteArray header = vorbisClaiming("v", each, {}) + QByteArray(each * 4, '\0');
        const auto titleBehind = [&header](int headers) {
            return OggReading(oggPage({oggComment(header), "."}).repeated(headers)
                              + oggPage({oggComment(vorbisComments({"TITLE=x"}))}))
                .title;
        };
        QCOMPARE(titleBehind(limits::vorbisComments / each - 1), QStringLiteral("x"));
        QCOMPARE(titleBehind(limits::vorbisComments / each), QString());
    }

    void bytesOfAllCommentsOfAFileCountTogether()
    {
        const int each = 32 * 1024;
        const QByteArray header = oggComment(vorbisComments({"A=" + QByteArray(each - 2, 'x')}));
        const auto titleBehind = [&header](int headers) {
            return OggReading(oggPage({header, "."}).repeated(headers)
                              + oggPage({oggComment(vorbisComments({"TITLE=x"}))}))
                .title;
        };
        QCOMPARE(titleBehind(limits::vorbisBytes / each - 1), QStringLiteral("x"));
        QCOMPARE(titleBehind(limits::vorbisBytes / each), QString());
    }

    void flacBlocksAreReadUpToTheirBound()
    {
        const auto reading = [](int blocksBefore) {
            return FlacReading(flacStart() + flacBlock(Padding, "1").repeated(blocksBefore)
                               + flacBlock(Comment, vorbisComments({"TITLE=x"}), true));
        };
        QCOMPARE(reading(limits::flacBlocks - 1).title, QStringLiteral("x"));
        const FlacReading beyond = reading(limits::flacBlocks);
        QCOMPARE(beyond.title, QString());
        QCOMPARE(beyond.log.first(), QStringLiteral("W [FLAC] more than %1 blocks").arg(limits::flacBlocks));
    }

    void whatWasFoundBeforeTheBoundIsShown()
    {
        const FlacReading reading(flacStart() + flacBlock(Comment, vorbisComments({"TITLE=x"}))
                                  + flacBlock(Padding, "1").repeated(limits::flacBlocks));
        QCOMPARE(reading.title, QStringLiteral("x"));
    }

    /** Each would be as large as a block can be, and only the last one shows. */
    void manyPicturesTakeTheMemoryOfOne()
    {
        if (!PeakMemory::isMeaningful)
            QSKIP("the sanitizer keeps what was freed");
        const MediaFolder folder;
        constexpr int most = 0xFFFFFF;
        const QString path = folder.write(QStringLiteral("pictures.flac"), flacStart());
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        for (int i = 0; i < 12; ++i) {
            file.seek(file.size());
            file.write(flacHeader(i % 2 ? Picture : Comment, most, i == 11));
            file.resize(file.size() + most);
        }
        file.close();
        QVERIFY(memoryOf<QFLACparser>(path) < 17 * MiB);
    }

    void oggPagesAreWalkedUpToTheirBound()
    {
        const auto reading = [](int pagesBefore) {
            return OggReading(oggPage({"."}).repeated(pagesBefore)
                              + oggPage({oggComment(vorbisComments({"TITLE=x"}))}));
        };
        QCOMPARE(reading(limits::oggPages - 1).title, QStringLiteral("x"));
        const OggReading beyond = reading(limits::oggPages);
        QCOMPARE(beyond.title, QString());
        QCOMPARE(beyond.log, QStringList(QStringLiteral("W [OGG] Not found OggS")));
    }

    void oggFileIsReadUpToItsBound()
    {
        const QByteArray bytes = randomBytes(300000);
        for (const int bound : {0, 1, 1000, 65536, 131072, 131073, 299999, 300000, 400000}) {
            QBuffer buffer;
            buffer.setData(bytes);
            buffer.open(QIODevice::ReadOnly);
            ReadWindow window(buffer, bound);
            QByteArray read;
            for (std::string_view part = window.take(777); !part.empty(); part = window.take(777))
                read.append(part.data(), int(part.size()));
            QCOMPARE(read, bytes.left(bound));
            QVERIFY(window.isAtEnd());
        }
    }
};

VIREO_TEST_MAIN(TagBoundsTest)
#include "tst_tagbounds.moc"
