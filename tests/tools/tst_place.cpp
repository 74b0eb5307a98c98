#include "tests/support/panelmain.h"
#include "tools/supervisor/place.h"

class PlaceTest : public QObject {
    Q_OBJECT

private slots:
    void windowStandsBesideThePanel_data()
    {
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QSize>("panel");
        QTest::newRow("640x480") << QRect(0, 0, 640, 480) << QSize(320, 240);
        QTest::newRow("800x480") << QRect(0, 0, 800, 480) << QSize(320, 240);
        QTest::newRow("1280x800") << QRect(0, 0, 1280, 800) << QSize(320, 240);
        QTest::newRow("3840x2160") << QRect(0, 0, 3840, 2160) << QSize(320, 240);
        QTest::newRow("1280x800 at 200 %") << QRect(0, 0, 640, 400) << QSize(320, 240);
        QTest::newRow("at 200 %, the panel at 100 %") << QRect(0, 0, 640, 400) << QSize(160, 120);
        QTest::newRow("bars at the edges") << QRect(70, 27, 1210, 740) << QSize(320, 240);
        QTest::newRow("the second screen") << QRect(1920, 0, 1280, 1024) << QSize(320, 240);
    }
    void windowStandsBesideThePanel()
    {
        QFETCH(QRect, available);
        QFETCH(QSize, panel);
        const QSize least(310, 200);
        const QSize wanted(730, 560);
        const QRect window = placeBeside(panel, available, wanted, least);
        QVERIFY(available.contains(window));
        QVERIFY(!window.intersects(QRect(available.topLeft(), panel)));
        QVERIFY(window.width() >= least.width() && window.height() >= least.height());
        const QSize room(available.width() - panel.width() - 4, available.height());
        QCOMPARE(window.size(), wanted.boundedTo(room));
    }

    void screenTooSmallForBothIsFilledFromTheRight()
    {
        const QRect available(10, 20, 400, 240);
        const QRect window = placeBeside({320, 240}, available, {730, 560}, {310, 200});
        QCOMPARE(window, available);
        const QRect narrow = placeBeside({320, 240}, available, {350, 560}, {310, 200});
        QCOMPARE(narrow, QRect(60, 20, 350, 240));
    }
};

VIREO_TEST_MAIN(PlaceTest)
#include "tst_place.moc"
