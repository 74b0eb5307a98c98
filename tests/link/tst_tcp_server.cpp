#include "app/limits.h"
#include "tests/link/peers.h"
#include "tests/support/logcatcher.h"
#include "tests/support/ownport.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/strings.h"

#include <sys/socket.h>

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
};

VIREO_PORT_TEST_MAIN(TcpServerTest)
#include "tst_tcp_server.moc"
