#include "app/limits.h"
#include "app/servicemanager.h"
#include "app/waitalive.h"
#include "tests/support/notifysocket.h"
#include "tests/support/panelmain.h"

#include <QProcess>
#include <QTemporaryDir>

static_assert(limits::networkRestartMs == 30000, "the panel waits half a minute for the network");

class WaitAliveTest : public QObject {
    Q_OBJECT

private slots:
    void endedProgram()
    {
        QProcess program;
        program.start(QStringLiteral("true"), {});
        QVERIFY(waitAlive(program, 60000));
        QCOMPARE(program.exitCode(), 0);
    }

    void programThatNeverStarted()
    {
        QProcess program;
        QVERIFY(waitAlive(program, 60000));
    }

    void hangingProgramIsGivenUp()
    {
        QProcess program;
        program.start(QStringLiteral("sleep"), {QStringLiteral("300")});
        QVERIFY(!waitAlive(program, 50));
        program.kill();
        QVERIFY(waitAlive(program, 60000));
    }

    void theServiceManagerHearsMeanwhile()
    {
        QTemporaryDir folder;
        const QByteArray name = folder.path().toUtf8() + "/notify";
        NotifySocket manager(name);
        qputenv("NOTIFY_SOCKET", name);
        qputenv("WATCHDOG_USEC", "90000000");
        ServiceManager panel;
        QProcess program;
        program.start(QStringLiteral("sleep"), {QStringLiteral("300")});
        QVERIFY(!waitAlive(program, limits::aliveMs + 100));
        QVERIFY(manager.received().count("WATCHDOG=1") >= 2);
        program.kill();
        QVERIFY(waitAlive(program, 60000));
    }
};

VIREO_TEST_MAIN(WaitAliveTest)
#include "tst_waitalive.moc"
