#include "protocol/paparser.h"

#include "app/dprintf.h"
#include "link/packet.h"

#include <iterator>

namespace {

using Handler = void (PAparser::*)(QByteArray);

struct HandlerRow {
    Command command;
    Handler handler;
};

/** One row a command, in the order of their codes; a command without handler is accepted and ignored. */
constexpr HandlerRow handlers[] = {
    {Command::Filename, &PAparser::parseFilename},
    {Command::Time, &PAparser::parseTime},
    {Command::Mode, &PAparser::parseMode},
    {Command::Level, &PAparser::parseLevel},
    {Command::Key, &PAparser::parseKey},
    {Command::DiskStat, &PAparser::parseDiskStat},
    {Command::Device, &PAparser::parseDevice},
    {Command::IRStation, &PAparser::parseIRStationInfo},
    {Command::Reserved9, nullptr},
    {Command::DiskInfo, &PAparser::parseDiskInfo},
    {Command::Encoder, &PAparser::parseEnc},
    {Command::UrlText, nullptr},
    {Command::Request, &PAparser::parseRequest},
    {Command::MenuDhcp, &PAparser::parseMenuDhcp},
    {Command::UpgradeInfo, &PAparser::parseUpgradeInfo},
    {Command::UpgradeMsg, &PAparser::parseUpgradeMSG},
    {Command::AoeStat, &PAparser::parseAOE_STAT},
};
static_assert(std::size(handlers) == lastCommand, "one row a command");

constexpr bool rowsStandInOrder()
{
    for (std::size_t i = 0; i < std::size(handlers); ++i) {
        if (std::size_t(handlers[i].command) != i + firstCommand)
            return false;
    }
    return true;
}
static_assert(rowsStandInOrder(), "a row is found by its command's code");

} // namespace

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
    if (header.command < firstCommand || header.command > lastCommand)
        return;
    if (const Handler handler = handlers[header.command - firstCommand].handler)
        (this->*handler)(data);
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
