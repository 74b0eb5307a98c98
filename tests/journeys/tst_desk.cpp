#include "tests/support/desk.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"

/** Real windows on real displays. */
class DeskTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        if (!desk::isPossible())
            QSKIP("Xvfb, openbox, xdotool or xwininfo is not installed (tools/setup.sh test)");
    }

    void panelAndWindowStandSideBySide_data()
    {
        QTest::addColumn<QString>("size");
        QTest::addColumn<QString>("scale");
        QTest::addColumn<QString>("fontDpi");
        QTest::addColumn<bool>("managed");
        for (const bool managed : {false, true})
            for (const char* size : {"640x480", "800x480", "1280x800", "3840x2160"})
                for (const char* scale : {"1", "2"}) {
                    const QByteArray name = QByteArray(size) + " at " + scale + (managed ? ", managed" : "");
                    QTest::newRow(name.constData()) << size << scale << "96" << managed;
                }
        QTest::newRow("large fonts") << "1280x800"
                                     << "1"
                                     << "192" << true;
    }
    void panelAndWindowStandSideBySide()
    {
        QFETCH(QString, size);
        QFETCH(QString, scale);
        QFETCH(QString, fontDpi);
        QFETCH(bool, managed);
        const UnitRoot unit;
        desk::Display display(size, managed);
        display.environment.insert(QStringLiteral("QT_SCALE_FACTOR"), scale);
        display.environment.insert(QStringLiteral("QT_FONT_DPI"), fontDpi);
        const QString place =
            display.run(QStringLiteral(SUPERVISOR_PROGRAM), {QStringLiteral("--panel-place")});
        const desk::Program panel(QStringLiteral(VIREO_PROGRAM),
                                  {QStringLiteral("5"), QStringLiteral("-qwindowgeometry"), place},
                                  display.environment);
        const desk::Program window(QStringLiteral(SUPERVISOR_PROGRAM), {}, display.environment);
        QRect shown[2];
        QTRY_VERIFY_WITH_TIMEOUT(
            !(shown[0] = display.window(QStringLiteral("MainWindow"))).isEmpty()
                && !(shown[1] = display.window(QStringLiteral("Vireo supervisor"))).isEmpty(),
            desk::patienceMs);
        const QRect screen(0, 0, size.section(QLatin1Char('x'), 0, 0).toInt(),
                           size.section(QLatin1Char('x'), 1).toInt());
        QCOMPARE(shown[0], QRect(0, 0, 320 * scale.toInt(), 240 * scale.toInt()));
        QVERIFY(screen.contains(shown[1]));
        const QSize least = QSize(280, 340) * scale.toInt();
        if (screen.width() < shown[0].width() + least.width() || screen.height() < least.height())
            return; // one at a time
        QVERIFY2(!shown[0].intersects(shown[1]), qPrintable(QString::number(shown[1].left())));
        QCOMPARE(shown[1].size().expandedTo(least), shown[1].size());
    }
};

VIREO_PORT_TEST_MAIN(DeskTest)
#include "tst_desk.moc"
