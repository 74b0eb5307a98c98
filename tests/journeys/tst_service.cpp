#include "tests/journeys/panelprocess.h"
#include "tests/support/notifysocket.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"

#include <QTcpServer>
#include <QTemporaryDir>

/** The real program as a service manager starts it. */
class ServiceTest : public QObject {
    Q_OBJECT

private slots:
    void init()
    {
        qputenv("NOTIFY_SOCKET", socketPath());
        qputenv("WATCHDOG_USEC", "200000");
    }
    void cleanup()
    {
        qunsetenv("NOTIFY_SOCKET");
        qunsetenv("WATCHDOG_USEC");
    }

    void readyOnceWhenItListensThenAlive()
    {
        NotifySocket manager(socketPath());
        UnitRoot unit;
        PanelProcess panel({QStringLiteral("5")});
        QList<QByteArray> said;
        QVERIFY(QTest::qWaitFor([&] { return !(said += manager.received()).isEmpty(); }, 20000));
        QCOMPARE(said.first(), QByteArray("READY=1"));
        QTcpSocket supervisor;
        supervisor.connectToHost(QHostAddress::LocalHost, tcp_server::port);
        QVERIFY2(supervisor.waitForConnected(5000), "ready means that a supervisor can connect");
        QVERIFY(
            QTest::qWaitFor([&] { return (said += manager.received()).count("WATCHDOG=1") >= 3; }, 20000));
        QCOMPARE(said.count("READY=1"), 1);
        QVERIFY(panel.isRunning());
    }

    void statusNamesTheModeAndWhoIsServed()
    {
        NotifySocket manager(socketPath());
        UnitRoot unit;
        PanelProcess panel({QStringLiteral("5")});
        QList<QByteArray> said;
        const auto isSaid = [&](const QByteArray& status) {
            return QTest::qWaitFor([&] { return (said += manager.received()).contains("STATUS=" + status); },
                                   20000);
        };
        QVERIFY(isSaid("Mode none; no supervisor"));
        QVERIFY(panel.connectSupervisor());
        const QByteArray peer = "supervisor 127.0.0.1:" + QByteArray::number(panel.link().localPort());
        QVERIFY(isSaid("Mode none; " + peer));
        panel.send(Command::Device, QByteArray(1, '\x01'));
        QVERIFY(isSaid("Mode usb; " + peer));
        QTcpSocket newer;
        newer.connectToHost(QHostAddress::LocalHost, tcp_server::port);
        QVERIFY(newer.waitForConnected());
        QVERIFY(isSaid("Mode usb; supervisor 127.0.0.1:" + QByteArray::number(newer.localPort())));
        newer.disconnectFromHost();
        QVERIFY(isSaid("Mode usb; no supervisor"));
    }

    void notReadyWhileThePortIsTaken()
    {
        NotifySocket manager(socketPath());
        UnitRoot unit;
        QTcpServer other;
        QVERIFY(other.listen(QHostAddress::Any, tcp_server::port));
        PanelProcess panel({QStringLiteral("4")});
        QVERIFY(panel.waitForLine(QStringLiteral("[ \x1B[35mERROR@vireo\x1B[0m ] tcp server error")));
        QTest::qWait(1000);
        QVERIFY(panel.isRunning());
        QCOMPARE(manager.received(), QList<QByteArray>());
    }

private:
    QByteArray socketPath() const { return m_folder.path().toUtf8() + "/notify"; }

    QTemporaryDir m_folder;
};

VIREO_PORT_TEST_MAIN(ServiceTest)
#include "tst_service.moc"
