#pragma once

#include "link/packet.h"

#include <QByteArray>
#include <QHostAddress>
#include <QList>
#include <QTcpServer>
#include <QTcpSocket>

/** A panel of the test's own on a free port: keeps what it receives and answers mode requests. */
class FakePanel : public QObject {
    Q_OBJECT

public:
    explicit FakePanel(quint16 port = 0)
    {
        connect(&m_server, &QTcpServer::newConnection, this, &FakePanel::accept);
        if (!m_server.listen(QHostAddress::LocalHost, port))
            qFatal("the test's panel cannot listen");
    }

    quint16 port() const { return m_server.serverPort(); }
    QString portText() const { return QString::number(port()); }

    /** Each whole packet received, header included, over all connections. */
    QList<QByteArray> packets;
    /** The same without the requests for the mode. */
    QList<QByteArray> packetsButRequests() const
    {
        QList<QByteArray> result;
        for (const QByteArray& packet : packets)
            if (packet != packetOf(Command::Request, wire::Request::Mode))
                result << packet;
        return result;
    }
    QByteArray bytes; ///< every byte received
    int requests = 0;
    int connections = 0;
    int closed = 0; ///< connections that the other end has closed in good order

    bool answering = true;
    quint8 mode = 255; ///< answered when `modes` is empty
    QList<quint8> modes; ///< answered one by one

    void answer(quint8 code) { m_client->write(packetOf(Command::Request, code)); }
    void hangUp() { m_client->disconnectFromHost(); }
    void stopListening() { m_server.close(); }
    QTcpSocket* client() const { return m_client; }

signals:
    void received();

private slots:
    void accept()
    {
        ++connections;
        m_client = m_server.nextPendingConnection();
        m_pending.clear();
        connect(m_client, &QTcpSocket::readyRead, this, &FakePanel::read);
        connect(m_client, &QTcpSocket::disconnected, this, &FakePanel::countClosed);
    }
    void countClosed()
    {
        const auto* socket = qobject_cast<QTcpSocket*>(sender());
        closed += socket && socket->error() == QAbstractSocket::RemoteHostClosedError ? 1 : 0;
    }
    void read()
    {
        const QByteArray chunk = m_client->readAll();
        bytes += chunk;
        m_pending += chunk;
        while (m_pending.size() >= 4 && m_pending.size() >= 4 + PacketHeader::from(m_pending).length) {
            const int size = 4 + PacketHeader::from(m_pending).length;
            take(m_pending.left(size));
            m_pending.remove(0, size);
        }
        emit received();
    }

private:
    void take(const QByteArray& packet)
    {
        packets << packet;
        if (packet != packetOf(Command::Request, wire::Request::Mode))
            return;
        ++requests;
        if (answering)
            answer(modes.isEmpty() ? mode : modes.takeFirst());
    }

    QTcpServer m_server;
    QTcpSocket* m_client = nullptr;
    QByteArray m_pending;
};
