#include "tests/support/panelmain.h"
#include "tests/tags/frontreading.h"
#include "tests/tags/mediabuilder.h"
#include "tests/tags/mediafolder.h"

#include <random>

using namespace MediaBuilder;

namespace {

struct Sample {
    const char* name;
    QByteArray file;
};

QByteArray smallImage(const char* format)
{
    return imageFile(format, 8, 8);
}

QByteArray audio(int bytes)
{
    return QByteArray(bytes, '.');
}

QByteArray texts()
{
    return textFrame("TIT2", 1, bytesOf("\xFF\xFE\x78\xB1\x98\xB7"))
        + textFrame("TPE1", 0, "\xB0\xA1\xB0\xA2") + textFrame("TALB", 3, bytesOf("album\0"));
}

/** Small sound files of every kind, each with texts and, where the format has them, a picture. */
QList<Sample> samples()
{
    const QByteArray comments = vorbisComments({"TITLE=노래", "artist=a=b", "Album=c", "DATE=2000"});
    const QByteArray jpeg = flacPicture("image/jpeg", smallImage("JPEG"), "front");
    return {
        {"mp3-jpeg", id3v2(texts() + pictureFrame("image/jpeg", smallImage("JPEG"))) + audio(30)},
        {"mp3-png", id3v2(pictureFrame("image/png", smallImage("PNG")) + texts(), 4) + audio(30)},
        {"mp3-padded", id3v2(texts() + QByteArray(200, '\0')) + audio(30) + id3v1("t", "a", "b")},
        {"flac",
         flacStart() + flacBlock(Comment, comments) + flacBlock(Picture, jpeg)
             + flacBlock(Padding, audio(50), true) + audio(40)},
        {"flac-two-pictures",
         flacStart() + flacBlock(Picture, flacPicture("image/png", smallImage("PNG")))
             + flacBlock(Comment, comments) + flacBlock(Picture, jpeg, true)},
        {"ogg-one-packet-a-page",
         oggPage({oggIdentification()}) + oggPage({oggComment(comments), "\5vorbis"}) + oggPage({audio(300)})
             + oggPage({audio(80)}) + oggPage({audio(20)})},
        {"ogg-many-packets-a-page",
         oggPage({oggIdentification()}) + oggPage({oggComment(comments), "\5vorbis"})
             + oggPage({audio(30), audio(60), audio(90)}) + oggPage({audio(27), audio(28), audio(255)})
             + oggPage({audio(5), oggComment(comments), audio(510)}, true)},
        {"ogg-nested",
         (oggHeader(lacing({1, 40, 300})) + '.').repeated(6) + oggHeader(lacing({0})) + audio(100)
             + oggComment(comments) + audio(600)},
    };
}

/** Damages files, always in the same way for the same seed. */
class Damager {
public:
    explicit Damager(quint32 seed)
        : m_random(seed)
    {
    }

    QByteArray damaged(QByteArray file)
    {
        for (int times = below(4) + 1; times > 0 && !file.isEmpty(); --times)
            damageOnce(file);
        return file;
    }

    /** Pieces that the readers look for, in any order and with random bytes between them. */
    QByteArray soup(const QByteArray& start, const QList<QByteArray>& pieces)
    {
        QByteArray file = start;
        for (int count = below(40) + 3; count > 0; --count) {
            file += pieces.at(below(int(pieces.size())));
            if (below(3) == 0)
                file += QByteArray(below(30), char(below(256)));
        }
        return file;
    }

private:
    int below(int bound) { return int(m_random() % quint32(bound)); }

    void damageOnce(QByteArray& file)
    {
        const int size = int(file.size());
        const int at = below(size);
        switch (below(7)) {
        case 0:
            file[at] = char(below(256));
            break;
        case 1:
            file[at] = char(quint8(file.at(at)) ^ (1 << below(8)));
            break;
        case 2:
            file.truncate(at);
            break;
        case 3:
            file.remove(at, below(20) + 1);
            break;
        case 4:
            file.insert(at, file.mid(below(size), below(60)));
            break;
        case 5:
            file.replace(at, 4, number());
            break;
        default:
            file.insert(at, QByteArray(below(40), char(below(256))));
            break;
        }
    }
    QByteArray number()
    {
        static constexpr quint32 numbers[] = {0,          1,          0x7F,       0xFF,
                                              0x100,      0xFFFF,     0x7FFFFFFF, 0x80000000,
                                              0xFFFFFFF0, 0xFFFFFFFC, 0xFFFFFFFF, 0xFF000000};
        const quint32 chosen = numbers[below(int(std::size(numbers)))];
        return below(2) ? bigEndian(chosen) : littleEndian(chosen);
    }

    std::mt19937 m_random;
};

} // namespace

/**
 * Whatever is in a file, the panel reads it exactly as the naive reader does: the same fields, the same log
 * lines in the same order, one record.
 */
class DamagedMediaTest : public QObject {
    Q_OBJECT

private:
    void compare(const QByteArray& file, int number)
    {
        const QString path = m_folder.write(QStringLiteral("file"), file);
        const QString found = differenceFromNaive(path, file);
        QFile::remove(path); // a new file each time: many file systems flush one that is written over
        if (found.isEmpty())
            return;
        QFAIL(qPrintable(QStringLiteral("file %1: %2\n%3")
                             .arg(number)
                             .arg(found, QString::fromLatin1(file.left(2000).toHex()))));
    }

    MediaFolder m_folder;

private slots:
    void samplesAreSound_data() { sampleRows(); }
    void samplesAreSound()
    {
        QFETCH(QByteArray, file);
        const FrontReading reading(m_folder.write(QStringLiteral("file"), file));
        QCOMPARE(reading.record.strTitle, QStringLiteral("노래"));
        QVERIFY(reading.record.strArtist == QStringLiteral("a")
                || reading.record.strArtist == QStringLiteral("가각"));
        QCOMPARE(reading.record.pixPicture.isNull(),
                 file.startsWith("Ogg") || file.endsWith(id3v1("t", "a", "b")));
        compare(file, 0);
    }

    void everyTruncation_data() { sampleRows(); }
    void everyTruncation()
    {
        QFETCH(QByteArray, file);
        for (int size = 0; size < file.size(); ++size)
            compare(file.left(size), size);
    }

    void damagedFiles_data() { sampleRows(); }
    void damagedFiles()
    {
        QFETCH(QByteArray, file);
        Damager damager(20240229);
        for (int number = 0; number < 1000; ++number)
            compare(damager.damaged(file), number);
    }

    void oggSoup()
    {
        const QByteArray comment = oggComment(vorbisComments({"TITLE=x"}));
        const QList<QByteArray> pieces = {oggHeader(lacing({1})),
                                          oggHeader(lacing({1, 2, 3})),
                                          oggHeader(lacing({0, 5})),
                                          oggHeader(lacing({255, 30})),
                                          oggHeader("\xFF"),
                                          oggHeader("\xFF\1\xFF"),
                                          oggPage({comment}),
                                          comment,
                                          "OggS",
                                          "....................OggS.",
                                          audio(26),
                                          audio(27),
                                          audio(1),
                                          QByteArray(1, '\3'),
                                          oggPage({audio(40), comment, audio(7)})};
        Damager damager(7);
        for (int number = 0; number < 3000; ++number)
            compare(damager.soup(oggHeader(lacing({3, 40, 80})), pieces), number);
    }

    void flacSoup()
    {
        const QByteArray comments = vorbisComments({"TITLE=x", "ALBUM=b"});
        const QByteArray picture = flacPicture("image/png", smallImage("PNG"));
        const QList<QByteArray> pieces = {flacBlock(Comment, comments),
                                          flacBlock(Picture, picture),
                                          flacBlock(Padding, audio(9)),
                                          flacBlock(Padding, ""),
                                          flacBlock(Padding, "1", true),
                                          flacHeader(Comment, 200),
                                          flacHeader(Picture, 900),
                                          flacHeader(Padding, 100000),
                                          flacBlock(Comment, "1234"),
                                          flacBlock(Picture, "123456"),
                                          flacBlock(Comment, comments + comments),
                                          flacBlock(Comment, vorbisClaiming("v", 99, {"TITLE=y"}))};
        Damager damager(8);
        for (int number = 0; number < 2000; ++number)
            compare(damager.soup(flacStart(), pieces), number);
    }

    void id3Soup()
    {
        const QList<QByteArray> pieces = {"TIT2",
                                          "TPE1",
                                          "TALB",
                                          "APIC",
                                          textFrame("TIT2", 3, "t"),
                                          textFrame("TPE1", 1, "a\0b"),
                                          textFrame("TALB", 0, "\xB0\xA1"),
                                          pictureFrame("image/png", smallImage("PNG")),
                                          pictureFrame("image/jpeg", smallImage("JPEG")),
                                          "png",
                                          "jpg",
                                          "jpeg",
                                          frameClaiming("TIT2", 0xFFFFFFFF, "\2x"),
                                          QByteArray(5, '\0')};
        Damager damager(9);
        for (int number = 0; number < 2000; ++number)
            compare(damager.soup("ID3" + bytesOf("\3\0\0\0\0\x10\0"), pieces), number);
    }

private:
    void sampleRows()
    {
        QTest::addColumn<QByteArray>("file");
        for (const Sample& sample : samples())
            QTest::newRow(sample.name) << sample.file;
    }
};

VIREO_TEST_MAIN(DamagedMediaTest)
#include "tst_damagedmedia.moc"
