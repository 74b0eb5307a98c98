#include "screens/panelfont.h"
#include "tests/support/panelmain.h"

#include <QImage>
#include <QPainter>

namespace {

/** The places that some text lights on a display with pixels of this format, '#', and those that it leaves
 * dark. */
QStringList lit(QImage::Format format)
{
    QImage image(320, 24, format);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setFont(panelFont(12, image.depth()));
    painter.setPen(Qt::white);
    painter.drawText(8, 18, QStringLiteral("Morning Corridor 작은 시간 00:03:07"));
    painter.end();
    QStringList lines;
    for (int y = 0; y < image.height(); ++y) {
        QString line;
        for (int x = 0; x < image.width(); ++x)
            line += QLatin1Char(image.pixelColor(x, y).lightness() > 127 ? '#' : ' ');
        lines << line;
    }
    return lines;
}

} // namespace

class PanelFontTest : public QObject {
    Q_OBJECT

private slots:
    void textIsTheSameOnEveryDisplay_data()
    {
        QTest::addColumn<QImage::Format>("format");
        QTest::newRow("16 bits a pixel, as small displays have") << QImage::Format_RGB16;
        QTest::newRow("24 bits a pixel") << QImage::Format_RGB888;
        QTest::newRow("32 bits a pixel with opacity") << QImage::Format_ARGB32_Premultiplied;
    }
    void textIsTheSameOnEveryDisplay()
    {
        QFETCH(QImage::Format, format);
        const QStringList usual = lit(QImage::Format_RGB32);
        QVERIFY(usual.join(QString()).count(QLatin1Char('#')) > 500);
        QCOMPARE(lit(format), usual);
    }

    void onlyTextOfTheFacesOwnSizeIsUnsmoothed()
    {
        QCOMPARE(panelFont(12, 32).styleStrategy(), QFont::NoAntialias);
        QCOMPARE(panelFont(14, 32).styleStrategy(), QFont::PreferDefault);
    }
};

VIREO_TEST_MAIN(PanelFontTest)
#include "tst_panelfont.moc"
