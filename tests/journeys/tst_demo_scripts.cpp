#include "tests/journeys/panelprocess.h"
#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"
#include "tests/tools/supervisorrun.h"

/** The scripts that come with the demo unit, each played by the real program to a fresh panel on that unit.
 */
class DemoScriptsTest : public QObject {
    Q_OBJECT

private:
    const QString m_demo = QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/");

private slots:
    void everyScriptHolds_data()
    {
        QTest::addColumn<QString>("script");
        const QDir scripts(m_demo + QStringLiteral("scripts"));
        for (const QString& name : scripts.entryList({QStringLiteral("*.txt")}))
            QTest::newRow(qPrintable(name)) << scripts.filePath(name);
    }
    void everyScriptHolds()
    {
        QFETCH(QString, script);
        UnitRoot unit;
        QCOMPARE(QProcess::execute(QStringLiteral("cp"),
                                   {QStringLiteral("-r"), m_demo + QStringLiteral("root/."), unit.path({})}),
                 0);
        PanelProcess panel({QStringLiteral("2")});
        QVERIFY(panel.connectSupervisor());
        panel.link().disconnectFromHost();

        const SupervisorRun run = runSupervisor({QStringLiteral("script"), script});
        QCOMPARE(run.err, QString());
        QCOMPARE(run.exitCode, 0);
        QVERIFY(panel.isRunning());
        for (const QString& line : panel.lines())
            QVERIFY2(!line.contains(QLatin1String("shortage")),
                     qPrintable(line)); // no packet was cut wrongly
    }
};

VIREO_TEST_MAIN(DemoScriptsTest)
#include "tst_demo_scripts.moc"
