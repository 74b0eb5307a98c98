#include "link/packet.h"

#include <QtEndian>

quint16 littleEndian16(const QByteArray& bytes, int offset)
{
    if (bytes.size() < offset + 2)
        return 0;
    return qFromLittleEndian<quint16>(bytes.constData() + offset);
}

PacketHeader PacketHeader::from(const QByteArray& packet, int offset)
{
    return {littleEndian16(packet, offset), littleEndian16(packet, offset + 2)};
}

QByteArray packetOf(quint16 command, quint16 length, const QByteArray& data)
{
    QByteArray packet(PacketHeader::bytes, '\0');
    qToLittleEndian(command, packet.data());
    qToLittleEndian(length, packet.data() + 2);
    return packet + data;
}
