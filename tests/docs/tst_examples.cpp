#include "tests/journeys/panelprocess.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"
#include "tests/tools/supervisorrun.h"

namespace {

const QString examples = QStringLiteral(VIREO_SOURCE_DIR "/docs/examples");
const QString music = QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/music/morning-corridor.mp3");

/** How often a line stands in what the panel printed. */
auto count(PanelProcess& panel, const char* line)
{
    return panel.lines().filter(QLatin1String(line)).size();
}

} // namespace

/** The supervisors of docs/examples, each against the real panel. */
class ExamplesTest : public QObject {
    Q_OBJECT

private:
    static void addExamples()
    {
        QTest::addColumn<QStringList>("command");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::newRow("Python") << QStringList{QStringLiteral("python3"),
                                               examples + QStringLiteral("/supervisor.py")}
                                << "before: none\n"
                                << "after: usb\n";
        QTest::newRow("C") << QStringList{QStringLiteral(EXAMPLE_PROGRAM)} << "before: 255\n"
                           << "after: 1\n";
    }
    /** Plays a file for no time at all. */
    static SupervisorRun play(QStringList command, const QString& file = music)
    {
        command << QStringLiteral("127.0.0.1") << file << QStringLiteral("0");
        const QString program = command.takeFirst();
        return runProgram(program, command);
    }

private slots:
    void onePlaysAFile_data() { addExamples(); }
    void onePlaysAFile()
    {
        QFETCH(QStringList, command);
        QFETCH(QString, before);
        QFETCH(QString, after);
        UnitRoot unit;
        PanelProcess panel({QStringLiteral("1")});
        QVERIFY(panel.connectSupervisor());
        panel.link().disconnectFromHost();
        panel.forgetLines();
        const SupervisorRun run = play(command);
        QCOMPARE(run.err, QString());
        QCOMPARE(run.exitCode, 0);
        QCOMPARE(run.out, before + after);
        QCOMPARE(count(panel, qPrintable(QStringLiteral("FileName [ %1 ]").arg(music))), 1);
        QCOMPARE(count(panel, "Album Art Image OK"), 1);
        for (const char* trouble : {"size error", "shortage"})
            QCOMPARE(count(panel, trouble), 0);
    }

    /** A header of a key waits in the panel: the first request's first byte becomes that key. */
    void oneBeginsBehindADeadPeersBytes_data() { addExamples(); }
    void oneBeginsBehindADeadPeersBytes()
    {
        QFETCH(QStringList, command);
        QFETCH(QString, after);
        UnitRoot unit;
        PanelProcess panel({QStringLiteral("0")});
        QVERIFY(panel.connectSupervisor());
        panel.write(QByteArray::fromHex("05000100"));
        QVERIFY(panel.waitForLine(QStringLiteral("received Packet : 05000100")));
        panel.link().disconnectFromHost();
        const SupervisorRun run = play(command);
        QCOMPARE(run.err, QString());
        QVERIFY2(run.out.endsWith(after), qPrintable(run.out));
        QVERIFY(count(panel, "receive cmd[0005] length[0001]") == 2); // that key and the one at the end
    }

    /** Without a panel, too: the file is looked for first. */
    void oneSaysThatAFileIsMissing_data() { addExamples(); }
    void oneSaysThatAFileIsMissing()
    {
        QFETCH(QStringList, command);
        const SupervisorRun run = play(command, QStringLiteral("/no/such/file"));
        QVERIFY2(run.err.startsWith(QLatin1String("supervisor")), qPrintable(run.err));
        QVERIFY2(run.err.endsWith(QLatin1String(": no such file\n")), qPrintable(run.err));
        QCOMPARE(run.err.count(QLatin1Char('\n')), 1);
        QCOMPARE(run.exitCode, 1);
        QCOMPARE(run.out, QString());
    }

    /** Enough that dozens would be lost if a fast sender did not wait for answers. */
    void packetsInStepArriveAll()
    {
        UnitRoot unit;
        PanelProcess panel({QStringLiteral("1")});
        QVERIFY(panel.connectSupervisor());
        const QString burst = QStringLiteral("import supervisor\n"
                                             "panel = supervisor.Panel('127.0.0.1')\n"
                                             "for i in range(30000):\n"
                                             "    panel.send(supervisor.KEY, bytes([i % 5]))\n"
                                             "print(panel.mode())\n");
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PYTHONPATH"), examples);
        environment.insert(QStringLiteral("PYTHONDONTWRITEBYTECODE"), QStringLiteral("1"));
        const SupervisorRun run =
            runProgram(QStringLiteral("python3"), {QStringLiteral("-c"), burst}, {}, environment);
        QCOMPARE(run.err, QString());
        QCOMPARE(run.out, QStringLiteral("255\n"));
        QCOMPARE(count(panel, "receive cmd[0005] length[0001]"), 30000);
        QCOMPARE(count(panel, "size error"), 0);
    }
};

VIREO_PORT_TEST_MAIN(ExamplesTest)
#include "tst_examples.moc"
