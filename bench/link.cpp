#include "bench/link.h"

#include <QThread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int connectAttempts = 2000;
constexpr int pauseMs = 5;
constexpr int longestWaitMs = 60000;

int connected(quint16 port)
{
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(socket, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
        const int on = 1;
        setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        return socket;
    }
    close(socket);
    return -1;
}

int countOf(std::string_view text, const std::string& in)
{
    int count = 0;
    for (auto at = in.find(text); at != std::string::npos; at = in.find(text, at + text.size()))
        ++count;
    return count;
}

} // namespace

Link::Link(quint16 port)
{
    for (int i = 0; i < connectAttempts && m_socket < 0; ++i) {
        m_socket = connected(port);
        if (m_socket < 0)
            QThread::msleep(pauseMs);
    }
    if (m_socket < 0)
        qFatal("nobody listens on port %d", port);
}

Link::~Link()
{
    close(m_socket);
}

void Link::write(const QByteArray& bytes)
{
    qint64 sent = 0;
    while (sent < bytes.size()) {
        const ssize_t part =
            send(m_socket, bytes.constData() + sent, std::size_t(bytes.size() - sent), MSG_NOSIGNAL);
        if (part <= 0)
            qFatal("the link is gone");
        sent += part;
    }
}

QByteArray Link::read(int bytes)
{
    QByteArray result(bytes, '\0');
    if (recv(m_socket, result.data(), std::size_t(bytes), MSG_WAITALL) != bytes)
        qFatal("no answer");
    return result;
}

void Link::exchange(const QByteArray& bytes, std::string_view text, int count)
{
    qint64 sent = 0;
    std::string tail;
    while (count > 0) {
        const bool more = sent < bytes.size();
        pollfd ready = {m_socket, short(POLLIN | (more ? POLLOUT : 0)), 0};
        if (poll(&ready, 1, longestWaitMs) <= 0)
            qFatal("no answer");
        if (ready.revents & POLLOUT)
            sent += qMax<ssize_t>(0,
                                  send(m_socket, bytes.constData() + sent, std::size_t(bytes.size() - sent),
                                       MSG_DONTWAIT | MSG_NOSIGNAL));
        if (!(ready.revents & ~POLLOUT))
            continue;
        char buffer[65536];
        const ssize_t got = recv(m_socket, buffer, sizeof buffer, 0);
        if (got <= 0)
            qFatal("the link is gone");
        tail.append(buffer, std::size_t(got));
        count -= countOf(text, tail);
        tail.erase(0, tail.size() - qMin(tail.size(), text.size() - 1));
    }
}

QByteArray modeRequest()
{
    return packetOf(Command::Request, wire::Request::Mode);
}
