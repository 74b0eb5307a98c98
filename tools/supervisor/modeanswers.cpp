#include "tools/supervisor/modeanswers.h"

#include "link/packet.h"

namespace {

bool isModeReport(const PacketHeader& header)
{
    return header.command == quint16(Command::Request) && header.length == 1;
}

} // namespace

QList<quint8> ModeAnswers::take(const QByteArray& bytes)
{
    QList<quint8> codes;
    m_waiting += bytes;
    int at = 0;
    while (m_waiting.size() - at >= PacketHeader::bytes) {
        const PacketHeader header = PacketHeader::from(m_waiting, at);
        const int packetBytes = PacketHeader::bytes + header.length;
        if (m_waiting.size() - at < packetBytes)
            break;
        if (isModeReport(header))
            codes << quint8(m_waiting[at + PacketHeader::bytes]);
        at += packetBytes;
    }
    m_waiting.remove(0, at);
    return codes;
}
