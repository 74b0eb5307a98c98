#include "link/tcp_server.h"

#include "app/dprintf.h"
#include "app/journal.h"
#include "app/limits.h"
#include "app/servicemanager.h"

#include <QTcpServer>
#include <QTcpSocket>

namespace {

/** The smallest buffer there is: with it a socket takes one byte from the kernel and no more. */
constexpr qint64 heldBufferBytes = 1;
constexpr qint64 anyNumberOfBytes = 0;

bool isConnected(const QTcpSocket& socket)
{
    return socket.state() == QAbstractSocket::ConnectedState;
}

/** The address and port of the other end; one of the fourth version as such. */
QByteArray nameOf(const QTcpSocket& socket)
{
    bool isVersion4 = false;
    const QHostAddress address(socket.peerAddress().toIPv4Address(&isVersion4));
    const QString text = isVersion4 ? address.toString()
                                    : QLatin1Char('[') + socket.peerAddress().toString() + QLatin1Char(']');
    return text.toLatin1() + ':' + QByteArray::number(socket.peerPort());
}

QByteArray changeOfPeers(const QTcpSocket& before, const QTcpSocket& after)
{
    const QByteArray came = "Supervisor " + nameOf(after) + " connected";
    return isConnected(before) ? came + "; " + nameOf(before) + " is no longer served" : came;
}

/** Appends a socket to a list that holds so many at most; the oldest goes. */
void appendBounded(QList<QTcpSocket*>& sockets, QTcpSocket* socket)
{
    sockets.append(socket);
    if (sockets.size() > limits::connections)
        sockets.takeFirst()->deleteLater();
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
    newest->setReadBufferSize(heldBufferBytes);
    appendBounded(m_arrived, newest);
    serveArrived();
}

void tcp_server::serveArrived()
{
    while (!m_held && !m_arrived.isEmpty()) {
        receiveWaiting();
        if (m_held)
            return;
        noteInJournal(changeOfPeers(*m_client, *m_arrived.first()), isConnected(*m_client));
        retire(m_client);
        m_client = m_arrived.takeFirst();
        m_client->setReadBufferSize(anyNumberOfBytes);
        connect(m_client, &QTcpSocket::readyRead, this, &tcp_server::recv_message);
        connect(m_client, &QTcpSocket::disconnected, this, &tcp_server::tellServiceManager);
        tellServiceManager();
        if (m_client->bytesAvailable() > 0)
            receiveWaiting();
    }
}

/** Names the peer that is served, while it is there. */
void tcp_server::tellServiceManager()
{
    ServiceManager::sayPeer(isConnected(*m_client) ? "supervisor " + nameOf(*m_client) : "no supervisor");
}

/** Reads what the kernel holds for the current peer now, as a burst of its own. */
void tcp_server::receiveWaiting()
{
    const bool arrived = isConnected(*m_client) && m_client->waitForReadyRead(0);
    if (!arrived && m_client->bytesAvailable() > 0)
        recv_message();
}

void tcp_server::holdReceiving()
{
    m_held = true;
    m_client->setReadBufferSize(heldBufferBytes);
}

void tcp_server::resumeReceiving()
{
    m_held = false;
    m_client->setReadBufferSize(anyNumberOfBytes);
    receiveWaiting();
    serveArrived();
}

void tcp_server::recv_message()
{
    if (m_held)
        return;
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
    const QByteArray text = recvdata.section(QChar::Null, 0, 0).toUtf8() + '\0';
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

void tcp_server::retire(QTcpSocket* socket)
{
    if (!isConnected(*socket) || socket->bytesToWrite() > limits::replacedBufferBytes) {
        socket->deleteLater();
        return;
    }
    socket->setReadBufferSize(limits::replacedBufferBytes);
    appendBounded(m_replaced, socket);
    connect(socket, &QTcpSocket::disconnected, this, &tcp_server::releaseGoneReplaced);
}

void tcp_server::releaseGoneReplaced()
{
    for (auto i = m_replaced.size(); i-- > 0;) {
        if (!isConnected(*m_replaced.at(i)))
            m_replaced.takeAt(i)->deleteLater();
    }
}
