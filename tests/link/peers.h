#pragma once

#include "link/tcp_server.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <memory>

struct ListeningServer : tcp_server {
    ListeningServer()
        : tcp_server(nullptr)
    {
        operateServer();
    }
};

/** A new connection, which the server may not have accepted yet. */
inline std::unique_ptr<QTcpSocket> connected()
{
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(QHostAddress::LocalHost, tcp_server::port);
    return socket->waitForConnected(5000) ? std::move(socket) : nullptr;
}

inline QByteArray received(QTcpSocket& socket, int bytes)
{
    [[maybe_unused]] const bool arrived =
        QTest::qWaitFor([&] { return socket.bytesAvailable() >= bytes; }, 5000);
    return socket.readAll();
}

/** The connections that the server holds, the newest included. */
inline int openSockets(const tcp_server& server)
{
    int count = 0;
    for (const QTcpSocket* socket : server.findChildren<QTcpSocket*>())
        count += socket->state() == QAbstractSocket::ConnectedState;
    return count;
}

/** Connects a new peer and returns once the server has accepted it. */
inline std::unique_ptr<QTcpSocket> newPeer(const tcp_server& server)
{
    QSignalSpy accepted(server.findChild<QTcpServer*>(), &QTcpServer::newConnection);
    auto peer = connected();
    return peer && QTest::qWaitFor([&] { return accepted.count() > 0; }) ? std::move(peer) : nullptr;
}
