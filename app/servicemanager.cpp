#include "app/servicemanager.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

ServiceManager* theOne = nullptr;

QByteArray take(const char* variable)
{
    QByteArray value = qgetenv(variable);
    qunsetenv(variable);
    return value;
}

/** Empty for a name that no socket can have. */
QByteArray socketName(QByteArray name)
{
    if (name.size() < 2 || name.size() >= int(sizeof(sockaddr_un::sun_path)))
        return QByteArray();
    if (name.startsWith('@'))
        return name.replace(0, 1, QByteArray(1, '\0'));
    return name.startsWith('/') ? name : QByteArray();
}

/** Half of the time that the manager waits, in milliseconds, so that one late message does no harm. */
int messageInterval(const QByteArray& microseconds, const QByteArray& process)
{
    if (!process.isEmpty() && process != QByteArray::number(getpid()))
        return 0;
    return int(std::min<qulonglong>(microseconds.toULongLong() / 2000, INT_MAX));
}

} // namespace

ServiceManager::ServiceManager(QObject* parent)
    : QObject(parent)
    , m_name(socketName(take("NOTIFY_SOCKET")))
{
    const QByteArray microseconds = take("WATCHDOG_USEC");
    m_interval = messageInterval(microseconds, take("WATCHDOG_PID"));
    m_statusDue.setSingleShot(true);
    connect(&m_statusDue, &QTimer::timeout, this, &ServiceManager::sayStatus);
    theOne = this;
}

ServiceManager::~ServiceManager()
{
    theOne = nullptr;
}

void ServiceManager::announceReady()
{
    if (m_name.isEmpty())
        return;
    send("READY=1");
    sayStatus();
    if (m_interval == 0)
        return;
    auto* const timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &ServiceManager::sayAlive);
    timer->start(m_interval);
}

void ServiceManager::sayAlive()
{
    if (theOne && theOne->m_interval > 0)
        theOne->send("WATCHDOG=1");
}

void ServiceManager::sayMode(const QByteArray& mode)
{
    if (theOne)
        theOne->change(theOne->m_mode, mode);
}

void ServiceManager::sayPeer(const QByteArray& peer)
{
    if (theOne)
        theOne->change(theOne->m_peer, peer);
}

void ServiceManager::change(QByteArray& part, const QByteArray& text)
{
    if (m_name.isEmpty() || part == text)
        return;
    part = text;
    m_statusDue.start(0);
}

void ServiceManager::sayStatus() const
{
    send("STATUS=Mode " + m_mode + "; " + m_peer);
}

void ServiceManager::send(const QByteArray& state) const
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, m_name.constData(), std::size_t(m_name.size()));
    const auto length = socklen_t(offsetof(sockaddr_un, sun_path)) + socklen_t(m_name.size());

    const int channel = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (channel < 0)
        return;
    // A manager that does not read must not hold up the panel for long.
    const timeval patience = {1, 0};
    setsockopt(channel, SOL_SOCKET, SO_SNDTIMEO, &patience, sizeof patience);
    sendto(channel, state.constData(), std::size_t(state.size()), MSG_NOSIGNAL,
           reinterpret_cast<const sockaddr*>(&address), length);
    close(channel);
}
