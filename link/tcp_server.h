#pragma once

#include "link/packet.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QWidget>

class QTcpServer;
class QTcpSocket;

/**
 * The display's end of the supervisor link: listens on TCP port 5000 of all local addresses and serves the
 * newest connection. Received bytes are handed on as they come, without regard to packets; wire format:
 * link/packet.h.
 *
 * What a peer has sent before a newer one replaces it is handed on first. From then on its connection stays
 * open, unread, until the peer goes away. Its buffer is bounded, and so is the number of such connections.
 */
class tcp_server : public QWidget {
    Q_OBJECT

public:
    static constexpr quint16 port = linkPort;

    explicit tcp_server(QWidget* parent);
    ~tcp_server() override;

    /**
     * Leaves what arrives to the kernel, and with it to the peer, and serves no new connection, until
     * resumeReceiving(): for a receiver that cannot keep up.
     */
    void holdReceiving();
    /** Goes on: first with what has arrived meanwhile, in one burst, then with the connections that wait. */
    void resumeReceiving();

signals:
    void sgplay();
    void sgstop();
    void sgnext();
    void sgprev();
    void sgMode();
    /** The bytes of one read burst: part of a packet, one or several. */
    void sgRxOK(QByteArray baRx);

public slots:
    /** Builds a packet; `data_length` is written as given and must agree with `baData`. */
    QByteArray makePktData(unsigned short cmd, unsigned short data_length, QByteArray baData);
    void operateServer();
    void acceptConnection();
    void recv_message();
    void createsocket();
    /** Sends a command-12 packet: its length field counts all characters, its text ends at the first zero. */
    void send_message(QString recvdata);
    void WritePkt(QByteArray baPkt);

private:
    void serveArrived();
    void receiveWaiting();
    void tellServiceManager();
    void retire(QTcpSocket* socket);
    void releaseGoneReplaced();
    void write(const QByteArray& packet);

    QTcpServer* m_server = nullptr;
    QTcpSocket* m_client = nullptr;
    QByteArray m_received;
    QList<QTcpSocket*> m_arrived; // newer than the current one, not served yet
    QList<QTcpSocket*> m_replaced;
    bool m_held = false;
    /** Set while packets are dropped, so that one line tells of any number of them. */
    bool m_dropping = false;
};
