#include "app/servicemanager.h"
#include "tests/support/notifysocket.h"
#include "tests/support/panelmain.h"

#include <QTemporaryDir>
#include <QThread>
#include <QTimer>

#include <unistd.h>

namespace {

const char* const variables[] = {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"};

/** Ready, and what there is to tell of a panel that nobody has told anything. */
const QList<QByteArray> ready = {"READY=1", "STATUS=Mode none; no supervisor"};

int timers(const ServiceManager& panel)
{
    return int(panel.findChildren<QTimer*>().size());
}

} // namespace

/** The service manager is a real datagram socket; the timer is fired by hand. */
class ServiceManagerTest : public QObject {
    Q_OBJECT

private slots:
    void cleanup()
    {
        for (const char* variable : variables)
            qunsetenv(variable);
    }

    void readyOnceThenAlive_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("a path") << QByteArray(m_folder.path().toUtf8() + "/notify");
        QTest::newRow("an abstract name") << QByteArray("@vireo-test-" + QByteArray::number(getpid()));
        const QByteArray path = m_folder.path().toUtf8() + '/';
        QTest::newRow("the longest path there can be") << path + QByteArray(107 - path.size(), 'n');
    }
    void readyOnceThenAlive()
    {
        QFETCH(QByteArray, name);
        NotifySocket manager(name);
        QVERIFY(manager.isBound());
        qputenv("NOTIFY_SOCKET", name);
        qputenv("WATCHDOG_USEC", "90000000");
        qputenv("WATCHDOG_PID", QByteArray::number(getpid()));
        ServiceManager panel;
        QCOMPARE(manager.received(), QList<QByteArray>());
        panel.announceReady();
        QCOMPARE(manager.received(), ready);

        auto* const timer = panel.findChild<QTimer*>();
        QVERIFY(timer);
        QVERIFY(timer->isActive());
        QVERIFY(!timer->isSingleShot());
        QCOMPARE(timer->interval(), 45000);
        for (int i = 0; i < 3; ++i) {
            QTimerEvent fired(timer->timerId());
            QCoreApplication::sendEvent(timer, &fired);
        }
        QCOMPARE(manager.received(), QList<QByteArray>({"WATCHDOG=1", "WATCHDOG=1", "WATCHDOG=1"}));
    }

    void aWaitFeedsIt()
    {
        NotifySocket manager(m_folder.path().toUtf8() + "/wait");
        qputenv("NOTIFY_SOCKET", m_folder.path().toUtf8() + "/wait");
        qputenv("WATCHDOG_USEC", "90000000");
        ServiceManager panel;
        ServiceManager::sayAlive();
        QCOMPARE(manager.received(), QList<QByteArray>({"WATCHDOG=1"}));
    }

    void changesOfOneTurnAreOneLine()
    {
        NotifySocket manager(m_folder.path().toUtf8() + "/status");
        qputenv("NOTIFY_SOCKET", m_folder.path().toUtf8() + "/status");
        ServiceManager panel;
        for (int i = 0; i < 1000; ++i)
            ServiceManager::sayMode(QByteArray::number(i));
        ServiceManager::sayMode("usb");
        ServiceManager::sayPeer("supervisor 127.0.0.1:40000");
        QCOMPARE(manager.received(), QList<QByteArray>());
        QCoreApplication::processEvents();
        QCOMPARE(manager.received(), QList<QByteArray>({"STATUS=Mode usb; supervisor 127.0.0.1:40000"}));
        ServiceManager::sayMode("usb");
        QCoreApplication::processEvents();
        QCOMPARE(manager.received(), QList<QByteArray>());
    }

    void theEventLoopFeedsIt()
    {
        NotifySocket manager(m_folder.path().toUtf8() + "/loop");
        qputenv("NOTIFY_SOCKET", m_folder.path().toUtf8() + "/loop");
        qputenv("WATCHDOG_USEC", "2000");
        ServiceManager panel;
        panel.announceReady();
        QThread::msleep(50); // a loop that does not turn says nothing, however long
        QCOMPARE(manager.received(), ready);
        QVERIFY(QTest::qWaitFor([&] { return manager.received().contains("WATCHDOG=1"); }));
    }

    void notAskedFor_data()
    {
        QTest::addColumn<QByteArray>("microseconds");
        QTest::addColumn<QByteArray>("process");
        QTest::newRow("no interval") << QByteArray() << QByteArray();
        QTest::newRow("an interval of nothing") << QByteArray("0") << QByteArray();
        QTest::newRow("below a millisecond") << QByteArray("1999") << QByteArray();
        QTest::newRow("not a number") << QByteArray("soon") << QByteArray();
        QTest::newRow("negative") << QByteArray("-90000000") << QByteArray();
        QTest::newRow("another process is meant") << QByteArray("90000000") << QByteArray("1");
        QTest::newRow("no process at all") << QByteArray("90000000") << QByteArray("x");
    }
    void notAskedFor()
    {
        QFETCH(QByteArray, microseconds);
        QFETCH(QByteArray, process);
        NotifySocket manager(m_folder.path().toUtf8() + "/idle");
        qputenv("NOTIFY_SOCKET", m_folder.path().toUtf8() + "/idle");
        if (!microseconds.isEmpty())
            qputenv("WATCHDOG_USEC", microseconds);
        if (!process.isEmpty())
            qputenv("WATCHDOG_PID", process);
        ServiceManager panel;
        panel.announceReady();
        QCOMPARE(manager.received(), ready);
        QCOMPARE(timers(panel), 0);
    }

    void longestIntervalDoesNotWrap()
    {
        NotifySocket manager(m_folder.path().toUtf8() + "/long");
        qputenv("NOTIFY_SOCKET", m_folder.path().toUtf8() + "/long");
        qputenv("WATCHDOG_USEC", "18446744073709551615");
        ServiceManager panel;
        panel.announceReady();
        QCOMPARE(panel.findChild<QTimer*>()->interval(), INT_MAX);
    }

    void noManager_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("no socket named") << QByteArray();
        QTest::newRow("nothing behind the @") << QByteArray("@");
        QTest::newRow("only the root") << QByteArray("/");
        QTest::newRow("a relative path") << QByteArray("notify");
        QTest::newRow("another family") << QByteArray("vsock:2:1234");
        QTest::newRow("a byte longer than a path can be") << QByteArray("/" + QByteArray(107, 'n'));
    }
    void noManager()
    {
        QFETCH(QByteArray, name);
        if (!name.isEmpty())
            qputenv("NOTIFY_SOCKET", name);
        qputenv("WATCHDOG_USEC", "90000000");
        ServiceManager panel;
        panel.announceReady();
        QCOMPARE(timers(panel), 0);
    }

    void aManagerThatHasGoneDoesNoHarm()
    {
        qputenv("NOTIFY_SOCKET", m_folder.path().toUtf8() + "/gone");
        qputenv("WATCHDOG_USEC", "90000000");
        ServiceManager panel;
        panel.announceReady();
        QCOMPARE(timers(panel), 1);
    }

    void childrenAreNotAsked()
    {
        for (const char* variable : variables)
            qputenv(variable, "1");
        ServiceManager panel;
        for (const char* variable : variables)
            QVERIFY2(!qEnvironmentVariableIsSet(variable), variable);
    }

private:
    QTemporaryDir m_folder;
};

VIREO_TEST_MAIN(ServiceManagerTest)
#include "tst_servicemanager.moc"
