#include "link/tcp_server.h"

#include "app/dprintf.h"
#include "app/limits.h"

#include <QTcpServer>
#include <QTcpSocket>

#include <algorithm>

#include <poll.h>
#include <sys/resource.h>

namespace {

/** Whether the other end has closed or reset the connection, also while bytes of it wait unread. */
bool peerIsGone(const QTcpSocket& socket)
{
    if (socket.state() != QAbstractSocket::ConnectedState)
        return true;
    pollfd ask = {int(socket.socketDescriptor()), POLLRDHUP, 0};
    return poll(&ask, 1, 0) > 0;
}

} // namespace

tcp_server::tcp_server(QWidget* parent)
    : QWidget(parent)
{
    hide();
    createsocket();
}

tcp_server::~tcp_server()
{
    // The sockets outlive this part of the object; what they still say must not reach it.
    for (QTcpSocket* socket : m_replaced)
        socket->disconnect(this);
    m_client->disconnect(this);
    m_client->close();
}

void tcp_server::createsocket()
{
    m_server = new QTcpServer(this);
    m_client = new QTcpSocket(this);
    connect(m_server, &QTcpServer::newConnection, this, &tcp_server::acceptConnection);
}

void tcp_server::operateServer()
{
    if (m_server->listen(QHostAddress::Any, port))
        DPRINTF(2, "Tcp server On");
    else
        DPRINTF(4, "tcp server error\n");
}

void tcp_server::acceptConnection()
{
    QTcpSocket* newest = m_server->nextPendingConnection();
    if (!newest)
        return;
    retire(m_client);
    m_client = newest;
    connect(m_client, &QTcpSocket::readyRead, this, &tcp_server::recv_message);
}

void tcp_server::recv_message()
{
    while (m_client->bytesAvailable() > 0)
        m_received += m_client->read(m_client->bytesAvailable());
    DPRINTF(0, "received Packet : %s\n", m_received.toHex().constData());
    emit sgRxOK(m_received);
    m_received.clear();
}

QByteArray tcp_server::makePktData(unsigned short cmd, unsigned short data_length, QByteArray baData)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    return packetOf(cmd, data_length, baData);
}

void tcp_server::WritePkt(QByteArray baPkt)
{
    DPRINTF(1, "WritePkt [ %s ]", baPkt.toHex().constData());
    write(baPkt);
}

void tcp_server::send_message(QString recvdata)
{
    const QByteArray text = recvdata.toUtf8() + '\0';
    const QByteArray packet = packetOf(quint16(Command::UrlText), quint16(recvdata.size()), text);
    write(packet);
    DPRINTF(2, "Send Url Packet [ %s ] ", packet.toHex().constData());
}

void tcp_server::write(const QByteArray& packet)
{
    const bool drop = m_client->bytesToWrite() > limits::unsentBytes;
    if (drop && !m_dropping)
        DPRINTF(4, "The peer does not read: packets to it are dropped");
    m_dropping = drop;
    if (drop)
        return;
    m_client->write(packet);
    // A peer that has already shut down its own side still gets its answer.
    m_client->flush();
}

int tcp_server::maxReplaced()
{
    rlimit descriptors = {};
    getrlimit(RLIMIT_NOFILE, &descriptors);
    return int(std::min(rlim_t(limits::replacedConnections), descriptors.rlim_cur / 4));
}

void tcp_server::retire(QTcpSocket* socket)
{
    releaseGoneReplaced();
    if (peerIsGone(*socket) || socket->bytesToWrite() > limits::replacedBufferBytes) {
        socket->deleteLater();
        return;
    }
    socket->setReadBufferSize(limits::replacedBufferBytes);
    m_replaced.append(socket);
    connect(socket, &QTcpSocket::disconnected, this, &tcp_server::releaseGoneReplaced);
    if (m_replaced.size() > maxReplaced())
        m_replaced.takeFirst()->deleteLater();
}

void tcp_server::releaseGoneReplaced()
{
    for (auto i = m_replaced.size(); i-- > 0;) {
        if (peerIsGone(*m_replaced.at(i)))
            m_replaced.takeAt(i)->deleteLater();
    }
}
