#include "tests/journeys/panelprocess.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"
#include "tests/tools/supervisorrun.h"

/**
 * The scripts that come with the demo unit, each played by the real program to a fresh panel on that unit.
 * Their pauses are for those who look on; under another program (VIREO_UNDER) the panel lives them through.
 */
class DemoScriptsTest : public QObject {
    Q_OBJECT

private:
    const QString m_demo = VIREO_SOURCE_DIR "/tools/demo-unit/";

    static QByteArray withoutPauses(const QByteArray& script)
    {
        static const QRegularExpression pause("^wait .*$", QRegularExpression::MultilineOption);
        return QString::fromUtf8(script).replace(pause, "wait 0").toUtf8();
    }

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
        QCOMPARE(QProcess::execute("cp", {"-r", m_demo + "root/.", unit.path({})}), 0);
        PanelProcess panel({QStringLiteral("2")});
        QVERIFY(panel.connectSupervisor());
        panel.link().disconnectFromHost();

        const QByteArray lines = UnitRoot::read(script);
        const QString copy = unit.path("/scripts/") + QFileInfo(script).fileName();
        UnitRoot::write(copy, qEnvironmentVariableIsSet("VIREO_UNDER") ? lines : withoutPauses(lines));
        QVERIFY(QFile::link(m_demo + "music", unit.path("/music")));
        const SupervisorRun run = runSupervisor({"script", copy});
        QCOMPARE(run.err, QString());
        QCOMPARE(run.exitCode, 0);
        QVERIFY(panel.isRunning());
        for (const QString& line : panel.lines())
            QVERIFY2(!line.contains(QLatin1String("shortage")),
                     qPrintable(line)); // no packet was cut wrongly
    }
};

VIREO_PORT_TEST_MAIN(DemoScriptsTest)
#include "tst_demo_scripts.moc"
