#include "app/limits.h"
#include "screens/panelfont.h"
#include "tests/support/panelmain.h"
#include "widgets/drawabletext.h"
#include "widgets/plainlabel.h"

#include <QProxyStyle>
#include <QRegularExpression>

namespace {

const Qt::Alignment atLeft = Qt::AlignLeft | Qt::AlignVCenter;
const Qt::Alignment atTopLeft = Qt::AlignLeft | Qt::AlignTop;
constexpr QSize box(168, 20); // of the player's album

QImage pictureIn(QLabel& label, const QString& text, Qt::Alignment alignment)
{
    label.setTextFormat(Qt::PlainText);
    label.setFont(panelFont(12));
    label.setStyleSheet(QStringLiteral("color: rgb(174, 174, 174);\nbackground-color: rgb(0, 0, 0);"));
    label.setAlignment(alignment);
    label.resize(box);
    label.setText(text);
    return label.grab().toImage();
}

QImage picture(const QString& text, Qt::Alignment alignment = atLeft)
{
    PlainLabel label;
    return pictureIn(label, text, alignment);
}

/** What a label of the toolkit itself shows. */
QImage toolkits(const QString& text, Qt::Alignment alignment = atLeft)
{
    QLabel label;
    return pictureIn(label, text, alignment);
}

/** Keeps the texts that are drawn with it. */
class RecordingStyle : public QProxyStyle {
public:
    void drawItemText(QPainter* painter, const QRect& rect, int flags, const QPalette& palette, bool enabled,
                      const QString& text, QPalette::ColorRole role) const override
    {
        drawn << text;
        QProxyStyle::drawItemText(painter, rect, flags, palette, enabled, text, role);
    }
    mutable QStringList drawn;
};

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
        QTest::newRow("no more than asked for")
            << QString(12, QLatin1Char('i')) << QString(10, QLatin1Char('i'));
    }
    void drawable()
    {
        QFETCH(QString, text);
        QFETCH(QString, drawn);
        QCOMPARE(drawableText(text, 10), drawn);
    }

    void showsWhatALabelOfTheToolkitShows_data()
    {
        QTest::addColumn<QString>("text");
        const QString letters = QStringLiteral("abcdefghijklmnopqrstu"); // fills the box
        QTest::newRow("nothing") << QString();
        QTest::newRow("a word") << QStringLiteral("Album");
        QTest::newRow("a blank") << QStringLiteral(" ");
        QTest::newRow("as wide as the box") << letters;
        QTest::newRow("a letter too wide") << letters + QLatin1Char('v');
        QTest::newRow("a blank too wide") << QStringLiteral("FILES:abcdefghi 123456");
        QTest::newRow("much too wide") << letters.repeated(5);
        QTest::newRow("far too wide")
            << letters.repeated(20) + QStringLiteral("VWXYZ") + letters.repeated(23);
        QTest::newRow("Korean") << QStringLiteral("종이등불과 바닷가의 노래 모음");
        QTest::newRow("composed Korean") << QStringLiteral("\u1100\u1161\u11A8\u1102\u1161").repeated(8);
        QTest::newRow("written from the right") << QStringLiteral("שלום (a)");
        QTest::newRow("from the right, too wide") << QStringLiteral("שלום עולם ").repeated(4);
        QTest::newRow("both directions") << QStringLiteral("abc שלום 123 עולם def").repeated(2);
        QTest::newRow("Arabic") << QStringLiteral("السلام عليكم ورحمة الله");
        QTest::newRow("marks") << QStringLiteral("e\u0301\u0323o\u0308").repeated(20);
        QTest::newRow("emoji") << QStringLiteral("👨‍👩‍👧‍👦 🇰🇷").repeated(3);
        QTest::newRow("tabs") << QStringLiteral("a\tb\tc\td");
        QTest::newRow("markup") << QStringLiteral("<b>x</b> &amp; &y");
    }
    void showsWhatALabelOfTheToolkitShows()
    {
        QFETCH(QString, text);
        for (const Qt::Alignment alignment : {atLeft, Qt::Alignment(Qt::AlignCenter)})
            QCOMPARE(picture(text, alignment), toolkits(text, alignment));
    }

    void whatIsCutAtTheEdgeIsNotTouchedBeforeIt()
    {
        const QString fits = QStringLiteral("abcdefghijklmnopqrstu");
        QCOMPARE(picture(fits + QStringLiteral("vwxyz")), picture(fits));
        QVERIFY(picture(fits) != picture(fits.chopped(1)));
    }

    void ofSeveralLinesTheFirstStaysWhole_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("a break at the end") << QStringLiteral("44.1KHz\n");
        QTest::newRow("two lines") << QStringLiteral("one\ntwo");
        QTest::newRow("five lines") << QStringLiteral("1\n2\n3\n4\n5");
        QTest::newRow("line separator") << QStringLiteral("one\u2028two");
    }
    void ofSeveralLinesTheFirstStaysWhole()
    {
        QFETCH(QString, text);
        const QImage shown = picture(text);
        QCOMPARE(shown, toolkits(text, atTopLeft));
        const QString first = text.left(text.indexOf(QRegularExpression(QStringLiteral("[\n\u2028]"))));
        const QRect firstLine(0, 0, box.width(), 16);
        QCOMPARE(shown.copy(firstLine), toolkits(first, atTopLeft).copy(firstLine));
        const Qt::Alignment centred = Qt::AlignCenter;
        QCOMPARE(picture(text, centred), toolkits(text, Qt::AlignHCenter | Qt::AlignTop));
    }

    void controlCharactersDrawNothing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<Qt::Alignment>("alignment");
        QTest::newRow("left") << QStringLiteral("Title") << atLeft;
        QTest::newRow("centred") << QStringLiteral("Title") << Qt::Alignment(Qt::AlignCenter);
        QTest::newRow("written from the right") << QStringLiteral("שלום (a)") << atLeft;
        QTest::newRow("two lines") << QStringLiteral("one\ntwo") << atLeft;
    }
    void controlCharactersDrawNothing()
    {
        QFETCH(QString, text);
        QFETCH(Qt::Alignment, alignment);
        QCOMPARE(picture(text + QChar(0), alignment), picture(text, alignment));
        QVERIFY(picture(text) != picture(QString()));
    }

    void aTextOfAnyLengthIsLaidOutInBounds_data()
    {
        QTest::addColumn<Qt::Alignment>("alignment");
        QTest::addColumn<int>("characters");
        QTest::newRow("left") << atLeft << box.width();
        QTest::newRow("centred") << Qt::Alignment(Qt::AlignCenter) << limits::centredCharacters;
    }
    void aTextOfAnyLengthIsLaidOutInBounds()
    {
        QFETCH(Qt::Alignment, alignment);
        QFETCH(int, characters);
        const QString text(0xFFFF, QLatin1Char('x'));
        RecordingStyle style;
        PlainLabel label;
        label.setStyle(&style);
        label.setAlignment(alignment);
        label.resize(box);
        label.setText(text);
        label.grab();
        QCOMPARE(style.drawn, QStringList(text.left(characters)));
        QCOMPARE(label.text(), text);
    }

    /** Working a style sheet out again for every label that is hidden at first is a good part of a start. */
    void aStyleSheetHoldsBeforeTheLabelIsSeen()
    {
        PlainLabel label;
        label.setStyleSheet(QStringLiteral("color: rgb(1, 2, 3);"));
        QCOMPARE(label.palette().color(QPalette::WindowText), QColor(1, 2, 3));
    }

    void theTextItselfStays()
    {
        PlainLabel label;
        label.setText(QStringLiteral("Title") + QChar(0));
        QCOMPARE(label.text(), QStringLiteral("Title") + QChar(0));
    }
};

VIREO_TEST_MAIN(PlainLabelTest)
#include "tst_plainlabel.moc"
