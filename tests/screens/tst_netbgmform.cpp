#include "screens/netbgmform.h"
#include "tests/screens/screenrows.h"
#include "tests/support/panelmain.h"

namespace {

/** The pixels that a widget paints in another colour than its own ground. */
int ink(QWidget& widget)
{
    const QImage image = Screen::drawn(widget);
    int pixels = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            pixels += qAlpha(image.pixel(x, y)) > 0 ? 1 : 0;
    }
    return pixels;
}

} // namespace

class NetbgmFormTest : public QObject {
    Q_OBJECT

private slots:
    void oneNoticeAndNothingElse()
    {
        NetbgmForm screen;
        QCOMPARE(screen.objectName(), QStringLiteral("NetbgmForm"));
        QCOMPARE(screen.size(), QSize(320, 240));
        QCOMPARE(screen.findChildren<QWidget*>().size(), 1);
        QCOMPARE(ownMethods(NetbgmForm::staticMetaObject), QStringList());
    }

    void notice()
    {
        NetbgmForm screen;
        const QLabel* const label = Screen::label(screen, "label");
        QCOMPARE(label->geometry(), QRect(70, 100, 181, 21));
        QCOMPARE(label->text(), QStringLiteral("Not ready yet"));
        QCOMPARE(label->styleSheet(),
                 QStringLiteral("font: 16pt \"-윤고딕150\";\ncolor: rgb(153, 247, 255);"));
    }

    /** The face that it asks for is on no unit; whatever comes instead fits into the label. */
    void nothingOfTheNoticeIsCut()
    {
        NetbgmForm screen;
        QLabel* const label = Screen::label(screen, "label");
        const int seen = ink(*label);
        QVERIFY(seen > 0);
        label->resize(181 + 200, 21 + 40); // the text moves by whole pixels
        QCOMPARE(ink(*label), seen);
    }

    void theLogoBelowShowsThrough()
    {
        NetbgmForm screen;
        const QImage image = Screen::drawn(screen);
        for (int y = 0; y < 240; ++y) {
            for (int x = 0; x < 320; ++x)
                QVERIFY(qAlpha(image.pixel(x, y)) == 0 || QRect(70, 100, 181, 21).contains(x, y));
        }
    }
};

VIREO_TEST_MAIN(NetbgmFormTest)
#include "tst_netbgmform.moc"
