#include "screens/panelfont.h"
#include "tests/support/panelmain.h"
#include "widgets/drawabletext.h"
#include "widgets/plainlabel.h"

namespace {

QImage picture(const QString& text, Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter)
{
    PlainLabel label;
    label.setFont(panelFont(12));
    label.setStyleSheet(QStringLiteral("color: rgb(174, 174, 174);\nbackground-color: rgb(0, 0, 0);"));
    label.setAlignment(alignment);
    label.resize(168, 40);
    label.setText(text);
    return label.grab().toImage();
}

} // namespace

class PlainLabelTest : public QObject {
    Q_OBJECT

private slots:
    void drawable_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("drawn");
        const QChar zero(0);
        QTest::newRow("zeros at the end") << QStringLiteral("노래") + zero + zero << QStringLiteral("노래");
        QTest::newRow("zero in between")
            << QStringLiteral("a") + zero + QStringLiteral("b") << QStringLiteral("ab");
        QTest::newRow("other controls")
            << QStringLiteral("a\x01\x1B\x7F\u0085\u009C\rb") << QStringLiteral("ab");
        QTest::newRow("breaks and tabs stay") << QStringLiteral("a\n\tb") << QStringLiteral("a\n\tb");
        QTest::newRow("joiners stay") << QStringLiteral("a\u200Db\u00AD") << QStringLiteral("a\u200Db\u00AD");
        QTest::newRow("surrogate halves stay") << QString(QChar(0xD800)) << QString(QChar(0xD800));
        QTest::newRow("nothing left") << QString(zero) << QString();
    }
    void drawable()
    {
        QFETCH(QString, text);
        QFETCH(QString, drawn);
        QCOMPARE(drawableText(text), drawn);
    }

    void aLineHasNoBreaks()
    {
        const QString text = QStringLiteral("a\nb\u2028c\u2029d\te") + QChar(0);
        QCOMPARE(drawableLine(text), QStringLiteral("abcd\te"));
    }

    /** Working a style sheet out again for every label that is hidden at first is a good part of a start. */
    void aStyleSheetHoldsBeforeTheLabelIsSeen()
    {
        PlainLabel label;
        label.setStyleSheet(QStringLiteral("color: rgb(1, 2, 3);"));
        QCOMPARE(label.palette().color(QPalette::WindowText), QColor(1, 2, 3));
    }

    /** Forty pixels hold two lines of sixteen and no third. */
    void ofTooManyLinesTheFirstAreShown()
    {
        const QImage one = picture(QStringLiteral("one"));
        const QImage four = picture(QStringLiteral("one\ntwo\nthree\nfour"));
        const QRect firstLine(0, 12, 168, 16);
        QCOMPARE(four.copy(firstLine), one.copy(firstLine));
        QVERIFY(four != one);
        QVERIFY2(picture(QStringLiteral("one\ntwo")).copy(firstLine) != one.copy(firstLine),
                 "two are centred");
    }

    void controlCharactersDrawNothing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<Qt::Alignment>("alignment");
        const Qt::Alignment left = Qt::AlignLeft | Qt::AlignVCenter;
        QTest::newRow("left") << QStringLiteral("Title") << left;
        QTest::newRow("centred") << QStringLiteral("Title") << Qt::Alignment(Qt::AlignCenter);
        QTest::newRow("written from the right") << QStringLiteral("שלום (a)") << left;
        QTest::newRow("two lines") << QStringLiteral("one\ntwo") << left;
        QTest::newRow("five lines") << QStringLiteral("1\n2\n3\n4\n5") << left;
    }
    void controlCharactersDrawNothing()
    {
        QFETCH(QString, text);
        QFETCH(Qt::Alignment, alignment);
        QCOMPARE(picture(text + QChar(0), alignment), picture(text, alignment));
        QVERIFY(picture(text) != picture(QString()));
    }

    /** The label has room for twenty-one letters of eight pixels; the ellipsis is as wide as two. */
    void aLineThatIsTooWideEndsInAnEllipsis_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        const QString fits = QStringLiteral("abcdefghijklmnopqrstu");
        QTest::newRow("fits") << fits << fits;
        QTest::newRow("too wide") << fits + QLatin1Char('v') << QStringLiteral("abcdefghijklmnopqrs…");
        QTest::newRow("controls need no room") << fits + QChar(0) << fits;
        QTest::newRow("Korean") << QStringLiteral("종이등불과바닷가의노래모음")
                                << QStringLiteral("종이등불과바닷가의…");
    }
    void aLineThatIsTooWideEndsInAnEllipsis()
    {
        QFETCH(QString, text);
        QFETCH(QString, shown);
        QCOMPARE(picture(text), picture(shown));
    }

    void aLineThatMissesItsPlaceByLittleTakesItFromItsBlanks()
    {
        const QImage fitted = picture(QStringLiteral("FILES:abcdefghi 123456"));
        QVERIFY(fitted != picture(QStringLiteral("FILES:abcdefghi 1234…")));
        QVERIFY(fitted.copy(0, 0, 120, 40) == picture(QStringLiteral("FILES:abcdefghi")).copy(0, 0, 120, 40));
        QCOMPARE(picture(QStringLiteral("FILES:abcd efgh 12345678")),
                 picture(QStringLiteral("FILES:abcd efgh 123…")));
    }

    void theTextItselfStays()
    {
        PlainLabel label;
        label.setText(QStringLiteral("Title") + QChar(0));
        QCOMPARE(label.text(), QStringLiteral("Title") + QChar(0));
    }

    void markupIsShownAsItIs()
    {
        QVERIFY(picture(QStringLiteral("<b>x</b>")) != picture(QStringLiteral("x")));
        QLabel expected;
        expected.setTextFormat(Qt::PlainText);
        PlainLabel label;
        expected.setText(QStringLiteral("<b>x</b>"));
        label.setText(expected.text());
        expected.resize(100, 20);
        label.resize(100, 20);
        QCOMPARE(label.grab().toImage(), expected.grab().toImage());
    }
};

VIREO_TEST_MAIN(PlainLabelTest)
#include "tst_plainlabel.moc"
