#include "app/limits.h"
#include "tests/link/peers.h"
#include "tests/support/logcatcher.h"
#include "tests/support/ownport.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/standarderror.h"
#include "tests/support/strings.h"

/** Several peers of one server: who is served, who is replaced, who is held back. */
class TcpPeersTest : public QObject {
    Q_OBJECT

private slots:
    void newestConnectionIsServed()
    {
        LogCatcher log;
        ListeningServer server;
        const auto first = newPeer(server);
        QVERIFY(first);
        const auto second = newPeer(server);
        QVERIFY(second);
        SignalRecorder recorder(&server);
        log.clear();

        server.WritePkt("hello");
        QCOMPARE(received(*second, 5), QByteArray("hello"));
        QCOMPARE(first->bytesAvailable(), 0);
        QCOMPARE(log.lines(), QStringList(QStringLiteral("WritePkt [ 68656c6c6f ]")));

        // Bytes on the older connection are noticed, but it is the newest that is read.
        log.clear();
        first->write("old");
        QVERIFY(QTest::qWaitFor([&] { return !recorder.emitted().isEmpty(); }));
        QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgRxOK()")));
        QCOMPARE(log.lines(), QStringList(QStringLiteral("received Packet : \n")));
        second->write("new");
        QVERIFY(QTest::qWaitFor([&] { return !recorder.emitted().isEmpty(); }));
        QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgRxOK(6e6577)")));
        QCOMPARE(first->state(), QAbstractSocket::ConnectedState);
    }

    void lostPeerStaysCurrentUntilTheNext()
    {
        LogCatcher log(5);
        ListeningServer server;
        SignalRecorder recorder(&server);
        auto first = connected();
        first->write("last words");
        first->disconnectFromHost();
        QVERIFY(QTest::qWaitFor([&] { return !recorder.emitted().isEmpty(); }));
        QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgRxOK(6c61737420776f726473)")));
        server.WritePkt("nobody");
        const auto second = newPeer(server);
        QVERIFY(second);
        server.WritePkt("hello");
        QCOMPARE(received(*second, 5), QByteArray("hello"));
    }

    void replacedConnectionsAreReleasedWithTheirPeers()
    {
        LogCatcher log(5);
        ListeningServer server;
        for (int i = 0; i < 300; ++i) {
            const auto peer = newPeer(server);
            QVERIFY(peer);
        }
        const auto last = newPeer(server);
        QVERIFY(last);
        QVERIFY(QTest::qWaitFor([&] { return server.findChildren<QTcpSocket*>().size() == 1; }));
        server.WritePkt("x");
        QCOMPARE(received(*last, 1), QByteArray("x"));
    }

    void floodOnAReplacedConnectionIsHeldUp()
    {
        LogCatcher log(5);
        ListeningServer server;
        auto first = newPeer(server);
        QVERIFY(first);
        auto second = newPeer(server);
        QVERIFY(second);
        first->write(QByteArray(16 * 1024 * 1024, 'x'));
        for (int i = 0; i < 200; ++i)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        for (const QTcpSocket* socket : server.findChildren<QTcpSocket*>())
            QVERIFY(socket->bytesAvailable() <= 2 * limits::replacedBufferBytes);
        server.WritePkt("x");
        QCOMPARE(received(*second, 1), QByteArray("x"));
    }

    void whatAPeerHadSentComesBeforeItsSuccessor()
    {
        LogCatcher log;
        ListeningServer server;
        SignalRecorder recorder(&server);
        log.clear();
        // All three wait before the server looks at any of them.
        const auto first = connected();
        const auto second = connected();
        const auto third = connected();
        QVERIFY(first && second && third);
        for (QTcpSocket* peer : {third.get(), second.get(), first.get()}) {
            peer->write(peer == first.get() ? "one" : peer == second.get() ? "two" : "three");
            QVERIFY(peer->waitForBytesWritten());
            peer->disconnectFromHost();
        }
        QTRY_COMPARE(recorder.emitted().size(), 3);
        QCOMPARE(recorder.emitted(), strings({"sgRxOK(6f6e65)", "sgRxOK(74776f)", "sgRxOK(7468726565)"}));
        QCOMPARE(log.lines(),
                 strings({"received Packet : 6f6e65\n", "received Packet : 74776f\n",
                          "received Packet : 7468726565\n"}));
    }

    void silentPeerIsReplacedWithoutALine()
    {
        LogCatcher log;
        ListeningServer server;
        const auto first = newPeer(server);
        log.clear();
        const auto second = newPeer(server);
        QVERIFY(first && second);
        QCOMPARE(log.lines(), QStringList());
    }

    void journalHearsWhoCameAndWhoIsNoLongerServed()
    {
        const auto named = [](const QTcpSocket& peer) {
            return "127.0.0.1:" + QByteArray::number(peer.localPort());
        };
        tcp_server server(nullptr);
        LogCatcher log(5);
        server.operateServer();
        std::unique_ptr<QTcpSocket> first;
        std::unique_ptr<QTcpSocket> second;
        {
            const StandardError error(true);
            first = newPeer(server);
            second = newPeer(server);
        }
        QVERIFY(first && second);
        const QByteArray later =
            "Supervisor " + named(*second) + " connected; " + named(*first) + " is no longer served";
        QCOMPARE(
            log.lines(),
            QStringList({QLatin1String("Supervisor " + named(*first) + " connected"), QLatin1String(later)}));
    }

    void heldServerLeavesBytesToTheirPeer()
    {
        LogCatcher log;
        ListeningServer server;
        const auto peer = newPeer(server);
        QVERIFY(peer);
        SignalRecorder recorder(&server);
        log.clear();
        server.holdReceiving();
        const QByteArray flood(16 * 1024 * 1024, 'x');
        peer->write(flood);
        for (int i = 0; i < 200; ++i)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        QVERIFY2(peer->bytesToWrite() > 0, "the peer still has what the kernel does not take");
        QCOMPARE(log.lines(), QStringList());
        qint64 arrived = 0;
        connect(&server, &tcp_server::sgRxOK, this,
                [&](const QByteArray& bytes) { arrived += bytes.size(); });
        server.resumeReceiving();
        QTRY_COMPARE(arrived, flood.size());
    }

    void bytesOfAHeldPeerAreOneBurst()
    {
        LogCatcher log;
        ListeningServer server;
        const auto peer = newPeer(server);
        QVERIFY(peer);
        SignalRecorder recorder(&server);
        server.holdReceiving();
        for (const char* piece : {"one ", "two ", "three"}) {
            peer->write(piece);
            QVERIFY(peer->waitForBytesWritten());
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        }
        QCOMPARE(recorder.emitted(), QStringList());
        server.resumeReceiving();
        QCOMPARE(recorder.emitted(),
                 QStringList(
                     QStringLiteral("sgRxOK(%1)").arg(QLatin1String(QByteArray("one two three").toHex()))));
    }

    void newPeersWaitForAHeldServerInTheirOrder()
    {
        LogCatcher log;
        ListeningServer server;
        const auto first = newPeer(server);
        QVERIFY(first);
        SignalRecorder recorder(&server);
        server.holdReceiving();
        const auto second = newPeer(server);
        const auto third = newPeer(server);
        QVERIFY(second && third);
        // What the held server answers still goes to the peer that it serves.
        server.WritePkt("x");
        QCOMPARE(received(*first, 1), QByteArray("x"));
        for (QTcpSocket* peer : {third.get(), second.get(), first.get()}) {
            peer->write(peer == first.get() ? "one" : peer == second.get() ? "two" : "three");
            QVERIFY(peer->waitForBytesWritten());
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        server.resumeReceiving();
        QTRY_COMPARE(recorder.emitted().filter(QStringLiteral("sgRxOK(")),
                     strings({"sgRxOK(6f6e65)", "sgRxOK(74776f)", "sgRxOK(7468726565)"}));
        server.WritePkt("y");
        QCOMPARE(received(*third, 1), QByteArray("y"));
    }

    void receiverMayHoldTheServerAgain()
    {
        LogCatcher log(5);
        ListeningServer server;
        SignalRecorder recorder(&server);
        connect(&server, &tcp_server::sgRxOK, &server, [&server] { server.holdReceiving(); });
        const auto first = connected();
        const auto second = connected();
        QVERIFY(first && second);
        first->write("one");
        second->write("two");
        QVERIFY(first->waitForBytesWritten() && second->waitForBytesWritten());
        QTRY_COMPARE(recorder.emitted(), strings({"sgRxOK(6f6e65)"}));
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        QCOMPARE(recorder.emitted(), strings({"sgRxOK(6f6e65)"}));
        server.resumeReceiving();
        QTRY_COMPARE(recorder.emitted(), strings({"sgRxOK(6f6e65)", "sgRxOK(74776f)"}));
    }

    void peersThatDieWithBytesWaitingAreFew()
    {
        LogCatcher log(5);
        ListeningServer server;
        auto before = newPeer(server);
        for (int i = 0; i < 2 * limits::connections; ++i) {
            auto peer = newPeer(server);
            QVERIFY(peer);
            before->write(QByteArray(4 * limits::replacedBufferBytes, 'x'));
            QVERIFY(before->waitForBytesWritten());
            before = std::move(peer);
        }
        QTRY_VERIFY(server.findChildren<QTcpSocket*>().size() <= limits::connections + 1);
    }

    void oldestOfTooManyConnectionsIsDropped()
    {
        LogCatcher log(5);
        ListeningServer server;
        std::vector<std::unique_ptr<QTcpSocket>> peers;
        for (int i = 0; i < limits::connections + 20; ++i) {
            peers.push_back(newPeer(server));
            QVERIFY(peers.back());
        }
        QVERIFY(QTest::qWaitFor([&] { return openSockets(server) == limits::connections + 1; }));
        server.WritePkt("x");
        QCOMPARE(received(*peers.back(), 1), QByteArray("x"));
        QCOMPARE(peers.at(peers.size() / 2)->state(), QAbstractSocket::ConnectedState);
    }
};

VIREO_PORT_TEST_MAIN(TcpPeersTest)
#include "tst_tcp_peers.moc"
