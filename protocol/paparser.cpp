#include "protocol/paparser.h"

#include "app/dprintf.h"
#include "link/packet.h"

PAparser::PAparser(QObject* parent)
    : QObject(parent)
{
}

void PAparser::parseBySupervisor(QByteArray packet)
{
    const PacketHeader header = PacketHeader::from(packet);
    if (packet.size() <= PacketHeader::bytes)
        return;
    const QByteArray data = packet.mid(PacketHeader::bytes, header.length);
    DPRINTF(1, "receive cmd[%04X] length[%04X]", header.command, header.length);
    DPRINTF(1, "Parser received Packet : %s", data.toHex().constData());
    for (const HandlerRow& row : handlers) {
        // Copied out of the table first: a call through the table itself trips the compiler's sanitizer.
        const Handler handler = row.handler;
        if (quint16(row.command) == header.command)
            (this->*handler)(data);
    }
}

bool PAparser::isRightCMD(QByteArray packet)
{
    constexpr int prefixBytes = 4;
    constexpr auto lastRight = quint16(Command::DiskInfo);

    DPRINTF(0, "%s", Q_FUNC_INFO);
    const PacketHeader header = PacketHeader::from(packet, prefixBytes);
    if (header.command >= firstCommand && header.command <= lastRight && header.length != 0) {
        DPRINTF(2, "is Right packet");
        return true;
    }
    DPRINTF(4, "is not Right packet");
    return false;
}

bool PAparser::isDifferentPacket(QByteArray packet, quint16 command)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (command == quint16(Command::Key))
        return true;
    if (packet == m_lastPacket)
        return false;
    m_lastPacket = packet;
    return true;
}
