#include "tools/supervisor/rivalwatch.h"

#include <QFile>
#include <QTcpSocket>

#include <optional>

namespace {

constexpr const char* tables[] = {"/proc/net/tcp", "/proc/net/tcp6"};

quint16 portOf(const QByteArray& address)
{
    return address.mid(address.lastIndexOf(':') + 1).toUShort(nullptr, 16);
}

/** A line of the kernel's list: number, local address, remote address, state, and more. */
std::optional<quint16> callerOf(const QByteArray& line, quint16 panelPort)
{
    const QList<QByteArray> columns = line.simplified().split(' ');
    const bool open = columns.size() > 3 && columns[3] == "01"; // closed by neither end
    if (!open || portOf(columns[1]) != panelPort)
        return std::nullopt;
    return portOf(columns[2]);
}

/** The ports of all callers, seen at the panel's ends, so that those on other machines count too. */
QSet<quint16> callersOf(quint16 panelPort)
{
    QSet<quint16> callers;
    for (const char* table : tables) {
        QFile file(QString::fromLatin1(table));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray& line : file.readAll().split('\n'))
            if (const auto caller = callerOf(line, panelPort))
                callers << *caller;
    }
    return callers;
}

} // namespace

void RivalWatch::begin(const QTcpSocket& own)
{
    m_earlier = callersOf(own.peerPort());
}

Rival RivalWatch::look(const QTcpSocket& own) const
{
    QSet<quint16> callers = callersOf(own.peerPort());
    if (!callers.remove(own.localPort()))
        return Rival::Unknown;
    return callers.subtract(m_earlier).isEmpty() ? Rival::None : Rival::Present;
}
