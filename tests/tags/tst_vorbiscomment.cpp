#include "tags/qflacparser.h"
#include "tags/qoggparser.h"
#include "tests/support/panelmain.h"
#include "tests/tags/mediabuilder.h"
#include "tests/tags/tagreading.h"

#include <memory>

using namespace MediaBuilder;

namespace {

/** The readers share no class. */
struct AnyReader {
    AnyReader() = default;
    virtual ~AnyReader() = default;
    AnyReader(const AnyReader&) = delete;
    AnyReader& operator=(const AnyReader&) = delete;
    virtual void setFilePath(const QString& path) = 0;
    virtual void readFile() = 0;
    virtual QString title() const = 0;
    virtual QString album() const = 0;
    virtual const QMetaObject& about() const = 0;
};

template <typename Reader> struct ReaderOf : AnyReader {
    void setFilePath(const QString& path) override { reader.setFilePath(path); }
    void readFile() override { reader.ReadFile(); }
    QString title() const override { return reader.GetTitle(); }
    QString album() const override { return reader.GetAlbum(); }
    const QMetaObject& about() const override { return Reader::staticMetaObject; }
    Reader reader{nullptr};
};

template <typename Reader> std::unique_ptr<AnyReader> make()
{
    return std::make_unique<ReaderOf<Reader>>();
}

template <typename Reader> ReadTags read(const QByteArray& file)
{
    return TagReading<Reader>(file);
}

/** The comment block fills a block of this size, or one that is just large enough for it. */
QByteArray flacFile(const QByteArray& block, int bytes)
{
    return flacStart() + flacBlock(Comment, block.leftJustified(bytes, '\0'), true);
}

/** The comment block fills a packet of this size; its framing bit, which nobody looks at, is left out. */
QByteArray oggFile(const QByteArray& block, int bytes)
{
    return oggPage({oggIdentification() + QByteArray(50, '.')})
        + oggPage({(bytesOf("\3vorbis") + block).leftJustified(bytes, '\0')});
}

struct Format {
    const char* name;
    const char* vendorPrefix;
    const char* end; ///< the last line about a file that has comments and no picture; null for none
    QByteArray (*file)(const QByteArray& block, int bytes);
    ReadTags (*read)(const QByteArray& file);
    std::unique_ptr<AnyReader> (*reader)();

    ReadTags readBlock(const QByteArray& block, int bytes = 0) const { return read(file(block, bytes)); }
    ReadTags readComments(const QList<QByteArray>& comments) const
    {
        return readBlock(vorbisComments(comments));
    }
    QByteArray titled(const char* comment) const { return file(vorbisComments({comment}), 0); }

    /** A line of a level such as "I", with the format's name in front. */
    QString line(const char* level, const QString& text) const
    {
        return QString("%1 [%2] %3").arg(level, name, text);
    }
    QString vendorLine(const QString& vendor) const { return "I " + (vendorPrefix + vendor); }
    QStringList ended(const QStringList& lines) const
    {
        return end == nullptr ? lines : lines + QStringList(end);
    }
    /** What is printed about a file of these comments, such as "TITLE - x". */
    QStringList log(const QStringList& comments) const
    {
        QStringList lines(vendorLine("maker 1.0"));
        for (const QString& comment : comments)
            lines << line("I", comment);
        return ended(lines);
    }
};

constexpr Format formats[] = {
    {"FLAC", "", "W [FLAC] FILE-Tag is failed to initialize", flacFile, read<QFLACparser>, make<QFLACparser>},
    {"OGG", "[OGG] ", nullptr, oggFile, read<QOggParser>, make<QOggParser>},
};

} // namespace
Q_DECLARE_METATYPE(const Format*)

/** What FLAC and Ogg files have in common, the block of comments, and what their readers promise alike. */
class VorbisCommentTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase_data()
    {
        QTest::addColumn<const Format*>("format");
        for (const Format& format : formats)
            QTest::newRow(format.name) << &format;
    }

    void titleArtistAndAlbum()
    {
        QFETCH_GLOBAL(const Format*, format);
        const ReadTags tags = format->readComments({"title=A", "Artist=B", "ALBUM=C"});
        QCOMPARE(tags.title, "A");
        QCOMPARE(tags.artist, "B");
        QCOMPARE(tags.album, "C");
        QVERIFY(tags.picture.isNull());
        QCOMPARE(tags.log, format->log({"TITLE - A", "ARTIST - B", "ALBUM - C"}));
    }

    void titles_data()
    {
        QTest::addColumn<QList<QByteArray>>("comments");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("log");
        using List = QList<QByteArray>;
        using Log = QStringList;
        QTest::newRow("what follows a second = is lost") << List{"TITLE=a=b"} << "a" << Log{"TITLE - a"};
        QTest::newRow("two = in a row leave nothing") << List{"TITLE==b"} << "" << Log{"TITLE - "};
        QTest::newRow("empty value") << List{"TITLE="} << "" << Log{"TITLE - "};
        QTest::newRow("no = at all") << List{"TITLE"} << "" << Log{};
        QTest::newRow("empty key") << List{"=TITLE=x"} << "" << Log{};
        QTest::newRow("empty comment") << List{"", "TITLE=x"} << "x" << Log{"TITLE - x"};
        QTest::newRow("other keys") << List{"TITLES=x", "TITL=y", " TITLE=z"} << "" << Log{};
        QTest::newRow("small letters") << List{"tiTle=x"} << "x" << Log{"TITLE - x"};
        QTest::newRow("the last of equal keys")
            << List{"TITLE=x", "title=y"} << "y" << Log{"TITLE - x", "TITLE - y"};
        QTest::newRow("an empty one overwrites as well")
            << List{"TITLE=x", "TITLE="} << "" << Log{"TITLE - x", "TITLE - "};
        QTest::newRow("text ends at a zero") << List{bytesOf("TITLE=a\0b")} << "a" << Log{"TITLE - a"};
        QTest::newRow("a zero in front of the = hides it") << List{bytesOf("TITLE\0=b")} << "" << Log{};
        QTest::newRow("Korean, which the log cannot show")
            << List{"TITLE=노래"} << "노래" << Log{"TITLE - ??"};
        QTest::newRow("accents are logged as single bytes")
            << List{"TITLE=\xC3\xA9t"} << "ét" << Log{"TITLE - \uFFFDt"};
        QTest::newRow("malformed text") << List{"TITLE=\xFFx"} << "\uFFFDx" << Log{"TITLE - ?x"};
    }
    void titles()
    {
        QFETCH_GLOBAL(const Format*, format);
        QFETCH(QList<QByteArray>, comments);
        QFETCH(QStringList, log);
        const ReadTags tags = format->readComments(comments);
        QTEST(tags.title, "title");
        QCOMPARE(tags.log, format->log(log));
    }

    void vendors_data()
    {
        QTest::addColumn<QByteArray>("vendor");
        QTest::addColumn<QString>("shown");
        QTest::newRow("Korean, in the log as UTF-8") << QByteArray("노래") << "노래";
        QTest::newRow("ends at a zero") << bytesOf("ab\0cd") << "ab";
        QTest::newRow("empty") << QByteArray() << "";
    }
    void vendors()
    {
        QFETCH_GLOBAL(const Format*, format);
        QFETCH(QByteArray, vendor);
        QFETCH(QString, shown);
        const ReadTags tags = format->readBlock(vorbisComments({"TITLE=t"}, vendor));
        QCOMPARE(tags.log.first(), format->vendorLine(shown));
        QCOMPARE(tags.title, "t");
    }

    void hostileVendorLengthLeavesNoComments_data()
    {
        QTest::addColumn<quint32>("length");
        for (quint32 length :
             {24U, 25U, 100U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF0U, 0xFFFFFFFCU, 0xFFFFFFFFU})
            QTest::addRow("0x%X", length) << length;
    }
    void hostileVendorLengthLeavesNoComments()
    {
        QFETCH_GLOBAL(const Format*, format);
        QFETCH(quint32, length);
        // Behind the length stand 24 bytes: a claimed length of 24 or more leaves none for the count.
        const QByteArray block =
            littleEndian(length) + littleEndian(1) + littleEndian(7) + "TITLE=x123456789";
        const ReadTags tags = format->readBlock(block);
        QCOMPARE(block.size(), 28);
        QCOMPARE(tags.title, "");
        QCOMPARE(tags.log.mid(1), format->ended({})); // the first line is the vendor, whatever it is
    }

    void countsThatCannotFit_data()
    {
        QTest::addColumn<quint32>("count");
        QTest::addColumn<QString>("shown");
        QTest::newRow("1000 in 100 bytes") << 1000U << "1000";
        QTest::newRow("one more than the limit") << 24U << "24";
        QTest::newRow("just below half of the range") << 0x7FFFFFFFU << "2147483647";
        QTest::newRow("half of the range is too many and shows negative") << 0x80000000U << "-2147483648";
        QTest::newRow("all of the range is too many and shows as minus one") << 0xFFFFFFFFU << "-1";
    }
    void countsThatCannotFit()
    {
        QFETCH_GLOBAL(const Format*, format);
        QFETCH(quint32, count);
        QFETCH(QString, shown);
        const ReadTags tags = format->readBlock(vorbisClaiming("maker 1.0", count, {"TITLE=t"}), 100);
        const QString line = format->line("W", "Vorbis size error " + shown + " > 23");
        QCOMPARE(tags.title, "");
        QCOMPARE(tags.log, format->ended({format->vendorLine("maker 1.0"), line}));
    }

    void countAtTheLimitIsRead()
    {
        QFETCH_GLOBAL(const Format*, format);
        QCOMPARE(format->readBlock(vorbisClaiming("maker 1.0", 23, {"TITLE=t"}), 100).title, "t");
    }

    void fewerCommentsAreReadThanThereAre()
    {
        QFETCH_GLOBAL(const Format*, format);
        QCOMPARE(format->readBlock(vorbisClaiming("maker 1.0", 1, {"TITLE=x", "TITLE=y"})).title, "x");
    }

    void commentLengths_data()
    {
        QTest::addColumn<quint32>("length");
        QTest::addColumn<QString>("title");
        QTest::newRow("to the last byte") << 7U << "x";
        QTest::newRow("one byte beyond") << 8U << "";
        QTest::newRow("near half of the range") << 0x7FFFFFFFU << "";
        QTest::newRow("half of the range") << 0x80000000U << "";
        QTest::newRow("would wrap to in front of the comment") << 0xFFFFFFE0U << "";
        QTest::newRow("would wrap to within the block") << 0xFFFFFFF8U << "";
        QTest::newRow("would wrap to its own start") << 0xFFFFFFFCU << "";
        QTest::newRow("all of the range") << 0xFFFFFFFFU << "";
    }
    void commentLengths()
    {
        QFETCH_GLOBAL(const Format*, format);
        QFETCH(quint32, length);
        const QByteArray block =
            vorbisClaiming("maker 1.0", 3, {"ALBUM=b"}) + littleEndian(length) + "TITLE=x";
        const ReadTags tags = format->readBlock(block);
        QTEST(tags.title, "title");
        QCOMPARE(tags.album, "b");
    }

    void pathAloneReadsNothing()
    {
        QFETCH_GLOBAL(const Format*, format);
        MediaFolder folder;
        LogCatcher log;
        const auto reader = format->reader();
        reader->setFilePath(folder.write("x", format->titled("TITLE=t")));
        QCOMPARE(reader->title(), "");
        QCOMPARE(log.lines(), QStringList());
        reader->readFile();
        QCOMPARE(reader->title(), "t");
    }

    void nextFileLeavesNothingOfTheOneBefore()
    {
        QFETCH_GLOBAL(const Format*, format);
        MediaFolder folder;
        const auto reader = format->reader();
        reader->setFilePath(folder.write("x", format->titled("TITLE=t")));
        reader->readFile();
        reader->setFilePath(folder.write("y", format->titled("ALBUM=b")));
        LogCatcher log;
        reader->readFile();
        QCOMPARE(reader->title(), "");
        QCOMPARE(reader->album(), "b");
        QCOMPARE(log.plain(), format->log({"ALBUM - b"}));
    }

    void missingFileEmptiesTheRecord()
    {
        QFETCH_GLOBAL(const Format*, format);
        MediaFolder folder;
        const auto reader = format->reader();
        reader->setFilePath(folder.write("x", format->titled("TITLE=t")));
        reader->readFile();
        QCOMPARE(reader->title(), "t");
        reader->setFilePath(folder.path("missing"));
        LogCatcher log;
        reader->readFile();
        QCOMPARE(log.plain(), QStringList(format->line("E", "No such file or directory")));
        QCOMPARE(reader->title(), "");
    }

    void deviceIsNotOpened()
    {
        QFETCH_GLOBAL(const Format*, format);
        const auto reader = format->reader();
        reader->setFilePath("/dev/zero");
        LogCatcher log;
        reader->readFile();
        QCOMPARE(log.plain(), QStringList(format->line("E", "Not a regular file")));
    }

    void readerHasNoSignalsOrSlots()
    {
        QFETCH_GLOBAL(const Format*, format);
        QCOMPARE(format->reader()->about().methodCount(), QObject::staticMetaObject.methodCount());
    }
};

VIREO_TEST_MAIN(VorbisCommentTest)
#include "tst_vorbiscomment.moc"
