#include "screens/panelfont.h"
#include "tests/support/panelmain.h"
#include "tests/widgets/randomtexts.h"
#include "widgets/ticker.h"

#include <QAbstractEventDispatcher>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QTimerEvent>

namespace {

constexpr int labelWidth = 168;

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
        RandomTexts texts(7);
        for (int run = 0; run < 200; ++run) {
            ticker.resize(texts.below(200), 16);
            ticker.setText(texts.ofAnyUnits(texts.below(100)), true);
            turn(ticker);
            QVERIFY(!picture(ticker).isNull() || ticker.width() == 0);
        }
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
};

VIREO_TEST_MAIN(TickerTest)
#include "tst_ticker.moc"
