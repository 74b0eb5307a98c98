#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>

#include <cstddef>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/** A service manager's end of the notification socket, at a path or, behind an @, at an abstract name. */
class NotifySocket {
public:
    explicit NotifySocket(const QByteArray& name)
        : m_name(name)
        , m_socket(socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, name.constData(), std::size_t(name.size()));
        if (name.startsWith('@'))
            address.sun_path[0] = '\0';
        const auto length = socklen_t(offsetof(sockaddr_un, sun_path)) + socklen_t(name.size());
        m_bound = bind(m_socket, reinterpret_cast<const sockaddr*>(&address), length) == 0;
    }
    ~NotifySocket()
    {
        close(m_socket);
        if (!m_name.startsWith('@'))
            QFile::remove(QFile::decodeName(m_name));
    }
    NotifySocket(const NotifySocket&) = delete;
    NotifySocket& operator=(const NotifySocket&) = delete;

    bool isBound() const { return m_bound; }

    /** What has come since the last call, a message each. */
    QList<QByteArray> received() const
    {
        QList<QByteArray> messages;
        char text[256];
        for (ssize_t bytes; (bytes = recv(m_socket, text, sizeof text, 0)) >= 0;)
            messages << QByteArray(text, int(bytes));
        return messages;
    }

private:
    QByteArray m_name;
    int m_socket;
    bool m_bound = false;
};
