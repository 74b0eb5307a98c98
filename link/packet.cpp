#include "link/packet.h"

#include <QtEndian>

namespace {

quint16 fieldAt(const QByteArray& bytes, int offset)
{
    if (bytes.size() < offset + 2)
        return 0;
    return qFromLittleEndian<quint16>(bytes.constData() + offset);
}

} // namespace

PacketHeader PacketHeader::from(const QByteArray& packet, int offset)
{
    return {fieldAt(packet, offset), fieldAt(packet, offset + 2)};
}

QByteArray packetOf(Command command, const QByteArray& data)
{
    return packetOf(quint16(command), quint16(data.size()), data);
}

QByteArray packetOf(Command command, int byte)
{
    return packetOf(command, QByteArray(1, char(byte)));
}

QByteArray packetOf(quint16 command, quint16 length, const QByteArray& data)
{
    QByteArray packet(PacketHeader::bytes, '\0');
    qToLittleEndian(command, packet.data());
    qToLittleEndian(length, packet.data() + 2);
    return packet + data;
}
