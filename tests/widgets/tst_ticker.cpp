#include "app/limits.h"
#include "screens/panelfont.h"
#include "tests/support/panelmain.h"
#include "tests/widgets/plainloop.h"
#include "widgets/textpieces.h"
#include "widgets/ticker.h"

#include <QAbstractEventDispatcher>
#include <QFontMetrics>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QTimerEvent>

#include <random>

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

class Texts {
public:
    explicit Texts(unsigned seed)
        : m_random(seed)
    {
    }

    int below(int bound) { return int(m_random() % unsigned(bound)); }

    QString of(const QString& characters, int length)
    {
        QString text;
        for (int i = 0; i < length; ++i)
            text += characters.at(below(int(characters.size())));
        return text;
    }

    QString ofAnyUnits(int length)
    {
        QString text;
        for (int i = 0; i < length; ++i)
            text += QChar(ushort(below(0x10000)));
        return text;
    }

private:
    std::mt19937 m_random;
};

QImage picture(Ticker& ticker)
{
    return ticker.grab().toImage();
}

/** What a label of the same kind shows that holds just this piece. */
QImage pictureOf(const QString& piece)
{
    Ticker ticker;
    ticker.setFont(panelFont(12));
    ticker.resize(labelWidth, 16);
    ticker.setText(piece, true);
    return picture(ticker);
}

void prepare(Ticker& ticker)
{
    ticker.setFont(panelFont(12));
    ticker.resize(labelWidth, 16);
    ticker.show();
}

QList<QAbstractEventDispatcher::TimerInfo> timersOf(Ticker& ticker)
{
    return QAbstractEventDispatcher::instance()->registeredTimers(&ticker);
}

void turn(Ticker& ticker)
{
    QTimerEvent event(timersOf(ticker).value(0, {0, 0, Qt::CoarseTimer}).timerId);
    QCoreApplication::sendEvent(&ticker, &event);
}

} // namespace

class TickerTest : public QObject {
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
        Texts texts(20140527);
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

    void aTextThatFitsIsOnePieceAndNeverChanges()
    {
        Ticker ticker;
        prepare(ticker);
        ticker.setText(QStringLiteral("a short title"), true);
        const QImage first = picture(ticker);
        QCOMPARE(first, pictureOf(QStringLiteral("a short title")));
        turn(ticker);
        QCOMPARE(picture(ticker), first);
    }

    /** At eight pixels a letter twenty of them make 160 pixels; the limit is one less than the label's 168.
     */
    void aLongTextTurnsItsPiecesAndNeverShowsItsLastCharacter()
    {
        Ticker ticker;
        prepare(ticker);
        ticker.setText(QStringLiteral("abcdefghijklmnopqrstABCDEFGHIJKLMNOPQRST"), true);
        const QImage first = pictureOf(QStringLiteral("abcdefghijklmnopqrst"));
        const QImage second = pictureOf(QStringLiteral("ABCDEFGHIJKLMNOPQRS"));
        QCOMPARE(picture(ticker), first);
        turn(ticker);
        QCOMPARE(picture(ticker), second);
        turn(ticker);
        QCOMPARE(picture(ticker), first);
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

    void anEmptyTextKeepsTheOldPiecesTurning()
    {
        Ticker ticker;
        prepare(ticker);
        ticker.setText(QStringLiteral("abcdefghijklmnopqrstABCDEFGHIJ"), true);
        turn(ticker);
        ticker.setText(QString(), true);
        QCOMPARE(picture(ticker), pictureOf(QStringLiteral("ABCDEFGHI")));
        turn(ticker);
        QCOMPARE(picture(ticker), pictureOf(QStringLiteral("ABCDEFGHI"))); // counts on from the first
        turn(ticker);
        QCOMPARE(picture(ticker), pictureOf(QStringLiteral("abcdefghijklmnopqrst")));
    }

    void anEmptyTextHasNoSize()
    {
        Ticker ticker;
        ticker.setFont(panelFont(12));
        ticker.setText(QStringLiteral("abcd"), true);
        QCOMPARE(ticker.sizeHint(), QSize(32, QFontMetrics(ticker.font()).height()));
        ticker.setText(QString(), true);
        QCOMPARE(ticker.sizeHint().width(), 0);
    }

    /** Once turning, a label goes on turning: a single piece then turns to itself. */
    void aShortTextAfterALongOneStays()
    {
        Ticker ticker;
        prepare(ticker);
        ticker.setText(QStringLiteral("abcdefghijklmnopqrstABCDEFGHIJ"), true);
        ticker.setText(QStringLiteral("short"), true);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(picture(ticker), pictureOf(QStringLiteral("short")));
            turn(ticker);
        }
    }

    void theRunFlagDoesNotStopTheTurning()
    {
        Ticker ticker;
        prepare(ticker);
        ticker.setText(QStringLiteral("abcdefghijklmnopqrstABCDEFGHIJ"), false);
        turn(ticker);
        QCOMPARE(picture(ticker), pictureOf(QStringLiteral("ABCDEFGHI")));
        ticker.setRun(false);
        turn(ticker);
        QCOMPARE(picture(ticker), pictureOf(QStringLiteral("abcdefghijklmnopqrst")));
    }

    void theTimerLivesWhileTheLabelIsShown()
    {
        Ticker ticker;
        QVERIFY(timersOf(ticker).isEmpty());
        prepare(ticker);
        QCOMPARE(timersOf(ticker).size(), 1);
        QCOMPARE(timersOf(ticker).value(0, {0, 0, Qt::CoarseTimer}).interval, 3000);
        ticker.hide();
        QVERIFY(timersOf(ticker).isEmpty());
        ticker.show();
        QCOMPARE(timersOf(ticker).size(), 1);
        QCOMPARE(timersOf(ticker).value(0, {0, 0, Qt::CoarseTimer}).interval, 3000);
    }

    void anotherTimerTurnsNothing()
    {
        Ticker ticker;
        prepare(ticker);
        ticker.setText(QStringLiteral("abcdefghijklmnopqrstABCDEFGHIJ"), true);
        QTimerEvent foreign(ticker.startTimer(100000));
        QCoreApplication::sendEvent(&ticker, &foreign);
        QCOMPARE(picture(ticker), pictureOf(QStringLiteral("abcdefghijklmnopqrst")));
    }

    void aNewTextStartsWithItsFirstPiece()
    {
        Ticker ticker;
        prepare(ticker);
        ticker.setText(QStringLiteral("abcdefghijklmnopqrstABCDEFGHIJ"), true);
        turn(ticker);
        ticker.setText(QStringLiteral("ABCDEFGHIJKLMNOPQRSTabcdefghij"), true);
        QCOMPARE(picture(ticker), pictureOf(QStringLiteral("ABCDEFGHIJKLMNOPQRST")));
        turn(ticker);
        QCOMPARE(picture(ticker), pictureOf(QStringLiteral("abcdefghi")));
    }

    void nothingIsShownWhereNotOneCharacterFits_data()
    {
        QTest::addColumn<int>("width");
        QTest::newRow("narrower than a character") << 5;
        QTest::newRow("no width at all") << 0;
    }
    void nothingIsShownWhereNotOneCharacterFits()
    {
        QFETCH(int, width);
        Ticker ticker;
        prepare(ticker);
        ticker.setText(QStringLiteral("abcdefghijklmnopqrstABCDEFGHIJ"), true);
        ticker.resize(width, 16);
        ticker.setText(QStringLiteral("노래"), true);
        for (int i = 0; i < 3; ++i) {
            ticker.resize(labelWidth, 16);
            QCOMPARE(picture(ticker), pictureOf(QString()));
            turn(ticker);
        }
    }

    void drawsLeftAndVerticallyCentred()
    {
        Ticker ticker;
        ticker.setFont(panelFont(12));
        ticker.resize(labelWidth, 40);
        ticker.setText(QStringLiteral("title"), true);
        QPixmap expected(labelWidth, 40);
        expected.fill(ticker.palette().color(QPalette::Window));
        QPainter painter(&expected);
        painter.setFont(ticker.font());
        painter.setPen(ticker.palette().color(QPalette::WindowText));
        painter.drawText(QRect(0, 0, 5 * 8, 40), Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("title"));
        painter.end();
        QCOMPARE(picture(ticker), expected.toImage().convertToFormat(picture(ticker).format()));
    }

    void controlCharactersDrawNothing()
    {
        QCOMPARE(pictureOf(QStringLiteral("ti\x1Btle") + QChar(0)), pictureOf(QStringLiteral("title")));
    }

    void ofSeveralLinesTheFirstStaysWhole()
    {
        const QString text = QStringLiteral("one\ntwo");
        for (const int height : {16, 20}) {
            Ticker ticker;
            QLabel label;
            for (QWidget* widget : {static_cast<QWidget*>(&ticker), static_cast<QWidget*>(&label)}) {
                widget->setFont(panelFont(12));
                widget->resize(labelWidth, height);
            }
            ticker.setText(text, true);
            label.setAlignment(Qt::AlignLeft | Qt::AlignTop);
            label.setText(text);
            QCOMPARE(picture(ticker), label.grab().toImage());
        }
    }

    void anyUnitsAreShownWithoutHarm()
    {
        Ticker ticker;
        prepare(ticker);
        Texts texts(7);
        for (int run = 0; run < 200; ++run) {
            ticker.resize(texts.below(200), 16);
            ticker.setText(texts.ofAnyUnits(texts.below(100)), true);
            turn(ticker);
            QVERIFY(!picture(ticker).isNull() || ticker.width() == 0);
        }
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
        for (int length : {4000, 40000}) {
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
    void setTextMeasuresNoMoreThanItsFirstPieces()
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

    void aLongTextTurnsThroughAllItsPieces()
    {
        Ticker ticker;
        prepare(ticker);
        const QString text = QStringLiteral("abcdefghijklmnopqrst").repeated(400) + QLatin1Char('.');
        ticker.setText(text, true);
        const QImage piece = pictureOf(text.left(20));
        for (int i = 0; i < 400 * 2; ++i) {
            QCOMPARE(picture(ticker), piece);
            turn(ticker);
        }
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

VIREO_TEST_MAIN(TickerTest)
#include "tst_ticker.moc"
