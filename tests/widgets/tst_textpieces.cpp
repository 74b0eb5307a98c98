#include "app/limits.h"
#include "screens/panelfont.h"
#include "tests/support/panelmain.h"
#include "tests/widgets/plainloop.h"
#include "tests/widgets/randomtexts.h"
#include "widgets/textpieces.h"

#include <QFontMetrics>

namespace {

constexpr int labelWidth = 168;

TextRuler rulerOf(const QFontMetrics& metrics)
{
    return {[&metrics](const QString& text) { return metrics.horizontalAdvance(text); }, metrics.height()};
}

QStringList piecesOf(const QString& text, int limit, const TextRuler& ruler)
{
    TextPieces cutter(text, limit, ruler);
    QStringList pieces;
    for (QString piece = cutter.piece(0); !piece.isNull(); piece = cutter.piece(int(pieces.size())))
        pieces << piece;
    return pieces;
}

struct Alphabet {
    const char* name;
    const char16_t* characters;
};

/** Each holds the characters that a random text of its kind is made of; a blank always is one of them. */
constexpr Alphabet alphabets[] = {
    {"Latin", u"abcdefghijklmnopqrstuvwxyz ABCDEFG.,;!"},
    {"kerned and ligated Latin", u"AVTWoyafil.,- "},
    {"Korean", u"노래를듣는다가나다 라마바사아자차카타파하"},
    {"Korean letters that compose", u"\u1100\u1102\u1112\u1161\u1165\u1175\u11A8\u11AB\u11C2 \uD7B0\uA960"},
    {"combining marks", u"aeo i\u0300\u0301\u0308\u0323\u034F\u20DD\u20E3\u0489"},
    {"Arabic", u"السلام عليكم\u0640\u200C"},
    {"Arabic with vowel marks and joiners", u"لاب ت\u064B\u0651\u0670\u200D\u200C\u200D\u0644\u0622"},
    {"Hebrew", u"שלום עולם\u05B0\u05BC()[]"},
    {"both directions", u"abc (اب ت)123 שלו\u202B\u202C\u200F\u200E"},
    {"Devanagari", u"कखगतरि \u094D\u093F\u0902\u200D"},
    {"Thai", u"ภาษาไทย\u0E33\u0E48 \u0E34"},
    {"emoji sequences",
     u"\U0001F468\u200D\U0001F469\u200D\u2764\uFE0F\U0001F3FD\U0001F1F0\U0001F1F7 \U0001F48B1\u20E3"},
    {"surrogate halves", u"\xD83D\xDE00\xD800\xDC00 a\xDBFF\xDFFF"},
    {"control characters", u"a\n\t\r\x01\x1B\x7F\u0085\u009Cb \u2028\u2029"},
    {"zero width", u"a \u200B\u200C\u200D\u2060\uFEFF\u00AD\u180E"},
    {"everything",
     u"aV노\u1100\u1161e\u0301لا\u064B שלו\u0915\u094D\n\t\u200B\u200D\xD83D\xDE00\u009C\u3000"},
};

} // namespace

/** How a text is cut into the pieces that the ticker shows. */
class TextPiecesTest : public QObject {
    Q_OBJECT

private slots:
    void samePiecesAsThePlainLoop_data()
    {
        QTest::addColumn<QString>("family");
        QTest::addColumn<QString>("characters");
        for (const char* family : {"Unifont", "DejaVu Sans"}) {
            for (const Alphabet& alphabet : alphabets) {
                QTest::addRow("%s in %s", alphabet.name, family)
                    << QString::fromLatin1(family) << QString::fromUtf16(alphabet.characters);
            }
            QTest::addRow("any units in %s", family) << QString::fromLatin1(family) << QString();
        }
    }
    void samePiecesAsThePlainLoop()
    {
        QFETCH(QString, family);
        QFETCH(QString, characters);
        const QFontMetrics metrics(QFont(family, 12));
        RandomTexts texts(20140527);
        for (int run = 0; run < 60; ++run) {
            const int length = texts.below(80);
            const QString text =
                characters.isEmpty() ? texts.ofAnyUnits(length) : texts.of(characters, length);
            const int limit = texts.below(200) - 1;
            QCOMPARE(piecesOf(text, limit, rulerOf(metrics)), plainLoop(text, limit, metrics));
        }
    }

    /** A mark at the start of a line gets its place, and so its width, only from the letter behind it. */
    void aLetterBehindAMarkCanNarrowTheText()
    {
        const QFontMetrics metrics(panelFont(12));
        const QString text = QStringLiteral("\u05DCe\n\u0301xyz");
        QVERIFY(metrics.horizontalAdvance(text.left(5)) < metrics.horizontalAdvance(text.left(4)));
        for (int limit = 0; limit < 50; ++limit)
            QCOMPARE(piecesOf(text, limit, rulerOf(metrics)), plainLoop(text, limit, metrics));
    }

    void theLimitIsOnePixelLessThanTheLabel_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QStringList>("pieces");
        QTest::newRow("17 pixels hold two letters") << 17 << QStringList({QStringLiteral("ab")});
        QTest::newRow("16 pixels hold one, the last is lost") << 16 << QStringList({QStringLiteral("a")});
        QTest::newRow("9 pixels hold one") << 9 << QStringList({QStringLiteral("a")});
        QTest::newRow("8 pixels hold none") << 8 << QStringList();
    }
    void theLimitIsOnePixelLessThanTheLabel()
    {
        QFETCH(int, width);
        QFETCH(QStringList, pieces);
        const QFontMetrics metrics(panelFont(12));
        QCOMPARE(piecesOf(QStringLiteral("ab"), width - 1, rulerOf(metrics)), pieces);
    }

    void piecesAfterTheFirstAreTriedFromOneCharacterLess_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("pieces");
        const auto list = [](const char* pieces) {
            return QString::fromLatin1(pieces).split(QLatin1Char('|'));
        };
        QTest::newRow("one character over is never shown") << QStringLiteral("abcdE") << list("abcd");
        QTest::newRow("two over show the first of them") << QStringLiteral("abcdEF") << list("abcd|E");
        QTest::newRow("two full pieces lose the last") << QStringLiteral("abcdEFGH") << list("abcd|EFG");
        QTest::newRow("then nothing is left to take") << QStringLiteral("abcdEFGHI") << list("abcd|EFGH");
    }
    void piecesAfterTheFirstAreTriedFromOneCharacterLess()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, pieces);
        const QFontMetrics metrics(panelFont(12));
        QCOMPARE(piecesOf(text, 4 * 8, rulerOf(metrics)), pieces);
    }

    void aCharacterTooWideAloneEndsThePieces()
    {
        const QFontMetrics metrics(panelFont(12));
        const QStringList pieces = piecesOf(QStringLiteral("aa노bbbbb"), 15, rulerOf(metrics));
        QCOMPARE(pieces, QStringList({QStringLiteral("a"), QStringLiteral("a")}));
    }

    void theCostGrowsWithTheLengthOnly_data()
    {
        QTest::addColumn<QString>("unit");
        QTest::newRow("letters") << QStringLiteral("Hello world ");
        QTest::newRow("Korean") << QStringLiteral("노래를 듣는다 ");
        QTest::newRow("Arabic") << QStringLiteral("السلام عليكم ");
        QTest::newRow("Arabic without a blank") << QStringLiteral("السلامعليكم");
        QTest::newRow("only marks") << QStringLiteral("\u0301");
        QTest::newRow("only zero width") << QStringLiteral("\u200B");
        QTest::newRow("letters with many marks each") << QStringLiteral("e") + QString(500, QChar(0x301));
        QTest::newRow("label full, then marks") << QString(20, QLatin1Char('x')) + QString(700, QChar(0x301));
        QTest::newRow("too long, then marks") << QString(22, QLatin1Char('x')) + QString(700, QChar(0x301));
        QTest::newRow("emoji families") << QStringLiteral("👨‍👩‍👧‍👦");
        QTest::newRow("surrogate halves") << QString(1, QChar(0xD800));
        QTest::newRow("tabs") << QStringLiteral("\t");
        QTest::newRow("line breaks") << QStringLiteral("\n");
        QTest::newRow("zero characters") << QString(1, QChar(0));
    }
    void theCostGrowsWithTheLengthOnly()
    {
        QFETCH(QString, unit);
        for (int length : {1600, 16000}) {
            const qint64 measured = measuredCharacters(unit, length);
            QVERIFY2(measured <= 40LL * length, qPrintable(QString::number(measured / length)));
        }
    }

    /** Invisible characters are what a piece can hold any number of. */
    void aPieceEndsAtItsBound_data()
    {
        QTest::addColumn<QString>("text");
        constexpr int million = 1000000;
        QTest::newRow("marks") << QString(million, QChar(0x301));
        QTest::newRow("zero width") << QString(million, QChar(0x200B));
        QTest::newRow("a full label, then marks")
            << QString(20, QLatin1Char('x')) + QString(million, QChar(0x301));
    }
    void aPieceEndsAtItsBound()
    {
        QFETCH(QString, text);
        const QFontMetrics metrics(panelFont(12));
        TextPieces pieces(text, labelWidth - 1, rulerOf(metrics));
        constexpr int bound = limits::pieceCharacters;
        QCOMPARE(pieces.piece(0), text.left(bound));
        QCOMPARE(pieces.piece(1), text.mid(bound, bound));
    }

    /** What a packet holds can take a second to measure; the pieces to come are left until they are shown. */
    void noMoreIsMeasuredThanThePiecesAskedFor()
    {
        const QFontMetrics metrics(panelFont(12));
        qint64 measured = 0;
        TextPieces pieces(QString(0xFFFF, QLatin1Char('x')), labelWidth - 1, counting(measured, metrics));
        QCOMPARE(measured, 0);
        pieces.piece(0);
        const qint64 first = measured;
        QVERIFY(first > 0 && first < 500);
        pieces.piece(1);
        QVERIFY(measured < 1000);
        const qint64 both = measured;
        pieces.piece(0);
        QCOMPARE(measured, both);
    }

private:
    static TextRuler counting(qint64& measured, const QFontMetrics& metrics)
    {
        const auto measure = [&measured, metrics](const QString& text) {
            measured += text.size();
            return metrics.horizontalAdvance(text);
        };
        return {measure, metrics.height()};
    }

    static qint64 measuredCharacters(const QString& unit, int length)
    {
        const QFontMetrics metrics(panelFont(12));
        qint64 measured = 0;
        piecesOf(unit.repeated(length / int(unit.size()) + 1).left(length), labelWidth - 1,
                 counting(measured, metrics));
        return measured;
    }
};

VIREO_TEST_MAIN(TextPiecesTest)
#include "tst_textpieces.moc"
