#include "app/limits.h"
#include "link/tcp_server.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/standarderror.h"
#include "tests/support/strings.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>

#include <memory>

#include <sys/socket.h>

namespace {

std::unique_ptr<QTcpSocket> connected()
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(QHostAddress::LocalHost, tcp_server::port);
    return socket->waitForConnected(5000) ? std::move(socket) : nullptr;
}

QByteArray received(QTcpSocket& socket, int bytes)
{
    [[maybe_unused]] const bool arrived =
        QTest::qWaitFor([&] { return socket.bytesAvailable() >= bytes; }, 5000);
    return socket.readAll();
}

/** The connections that the server holds, the newest included. */
int openSockets(const tcp_server& server)
{
    int count = 0;
    for (const QTcpSocket* socket : server.findChildren<QTcpSocket*>())
        count += socket->state() == QAbstractSocket::ConnectedState;
    return count;
}

/** Connects a new peer and returns once the server has accepted it. */
std::unique_ptr<QTcpSocket> newPeer(const tcp_server& server)
{
    QSignalSpy accepted(server.findChild<QTcpServer*>(), &QTcpServer::newConnection);
    auto peer = connected();
    return peer && QTest::qWaitFor([&] { return accepted.count() > 0; }) ? std::move(peer) : nullptr;
}

} // namespace

class TcpServerTest : public QObject {
    Q_OBJECT

private slots:
    void playerSignalsAreDeclaredButNeverEmitted()
    {
        const QStringList expected = strings({
            "sgplay()",
            "sgstop()",
            "sgnext()",
            "sgprev()",
            "sgMode()",
            "sgRxOK(QByteArray)",
            "makePktData(ushort,ushort,QByteArray)",
            "operateServer()",
            "acceptConnection()",
            "recv_message()",
            "createsocket()",
            "send_message(QString)",
            "WritePkt(QByteArray)",
        });
        QCOMPARE(ownMethods(tcp_server::staticMetaObject), expected);
    }

    void makesPackets()
    {
        LogCatcher log;
        tcp_server server(nullptr);
        QCOMPARE(server.makePktData(13, 1, QByteArray(1, '\7')), QByteArray::fromHex("0d00010007"));
        QCOMPARE(server.makePktData(13, 9, QByteArray()), QByteArray::fromHex("0d000900"));
        QCOMPARE(log.lines().size(), 2);
        QVERIFY(log.lines().at(0).contains(QStringLiteral("tcp_server::makePktData")));
    }

    void saysWhetherItListens()
    {
        LogCatcher log;
        {
            tcp_server server(nullptr);
            server.operateServer();
            tcp_server second(nullptr);
            second.operateServer();
        }
        QCOMPARE(log.plain(),
                 QStringList({QStringLiteral("I Tcp server On"), QStringLiteral("E tcp server error\n")}));
    }

    void handsOnWhatArrives()
    {
        LogCatcher log;
        tcp_server server(nullptr);
        server.operateServer();
        SignalRecorder recorder(&server);
        const auto peer = newPeer(server);
        QVERIFY(peer);
        log.clear();
        peer->write(QByteArray::fromHex("05000100020500"));
        QVERIFY(QTest::qWaitFor([&] { return !recorder.emitted().isEmpty(); }));
        QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgRxOK(05000100020500)")));
        QCOMPARE(log.lines(), QStringList(QStringLiteral("received Packet : 05000100020500\n")));
        peer->write(QByteArray::fromHex("010003"));
        QVERIFY(QTest::qWaitFor([&] { return !recorder.emitted().isEmpty(); }));
        QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgRxOK(010003)")));
    }

    void newestConnectionIsServed()
    {
        LogCatcher log;
        tcp_server server(nullptr);
        server.operateServer();
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

    void sendsTextWithItsLengthInCharacters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("packet");
        QTest::newRow("empty") << QString() << QByteArray::fromHex("0c00000000");
        QTest::newRow("eight letters") << "http://a" << QByteArray::fromHex("0c000800687474703a2f2f6100");
        QTest::newRow("two syllables, six bytes")
            << QString::fromUtf8("노래") << QByteArray::fromHex("0c000200eb85b8eb9e9800");
        QTest::newRow("ends at its first zero, which counts, as does what stands behind it")
            << QString(QStringLiteral("ab") + QChar(u'\0') + QStringLiteral("cd"))
            << QByteArray::fromHex("0c000500616200");
        QTest::newRow("beyond the basic plane: two code units")
            << QString::fromUtf8("\xF0\x9D\x84\x9E") << QByteArray::fromHex("0c000200f09d849e00");
    }
    void sendsTextWithItsLengthInCharacters()
    {
        QFETCH(QString, text);
        QFETCH(QByteArray, packet);
        LogCatcher log;
        tcp_server server(nullptr);
        server.operateServer();
        const auto peer = newPeer(server);
        QVERIFY(peer);
        log.clear();
        server.send_message(text);
        QCOMPARE(received(*peer, int(packet.size())), packet);
        QCOMPARE(log.plain(),
                 QStringList(
                     QStringLiteral("I Send Url Packet [ %1 ] ").arg(QString::fromLatin1(packet.toHex()))));
    }

    void writingWithoutAPeerIsHarmless()
    {
        LogCatcher log(5);
        tcp_server server(nullptr);
        server.WritePkt("x");
        server.send_message(QStringLiteral("x"));
    }

    void lostPeerStaysCurrentUntilTheNext()
    {
        LogCatcher log(5);
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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
        tcp_server server(nullptr);
        server.operateServer();
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

    void peerThatNeverReadsIsBounded()
    {
        LogCatcher log(4);
        tcp_server server(nullptr);
        server.operateServer();
        auto first = newPeer(server);
        QVERIFY(first);
        first->setReadBufferSize(1);
        for (int i = 0; i < 4000; ++i)
            server.WritePkt(QByteArray(4096, 'x'));
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E The peer does not read: packets to it are dropped")));
        for (const QTcpSocket* socket : server.findChildren<QTcpSocket*>())
            QVERIFY(socket->bytesToWrite() <= limits::unsentBytes + 4096);
        // Replaced, it is not kept with what it never took.
        const auto second = newPeer(server);
        QVERIFY(second);
        QVERIFY(QTest::qWaitFor([&] { return server.findChildren<QTcpSocket*>().size() == 1; }));
        server.WritePkt("x");
        QCOMPARE(received(*second, 1), QByteArray("x"));
    }

    void peerThatHasShutDownItsSideIsAnswered()
    {
        LogCatcher log(5);
        tcp_server server(nullptr);
        server.operateServer();
        connect(&server, &tcp_server::sgRxOK, &server, [&server](const QByteArray& bytes) {
            if (!bytes.isEmpty())
                server.WritePkt("answer");
        });
        for (int i = 0; i < 50; ++i) {
            const auto peer = newPeer(server);
            QVERIFY(peer);
            peer->write("request");
            peer->flush();
            ::shutdown(int(peer->socketDescriptor()), SHUT_WR);
            QCOMPARE(received(*peer, 6), QByteArray("answer"));
        }
    }

    void oldestOfTooManyConnectionsIsDropped()
    {
        LogCatcher log(5);
        tcp_server server(nullptr);
        server.operateServer();
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

VIREO_TEST_MAIN(TcpServerTest)
#include "tst_tcp_server.moc"
