#include "app/dprintf.h"
#include "protocol/paparser.h"

#include <QtDebug>

#include <iterator>

/** The handlers of the one-byte packets: keys, encoder, level, sources, states and requests. */

namespace {

using Signal = void (PAparser::*)();

struct ValueRow {
    quint8 value;
    Signal signal;
};

constexpr ValueRow keys[] = {
    {0x01, &PAparser::sgKEY_STOP},
    {0x02, &PAparser::sgKEY_PLAY_PAUSE},
    {0x03, &PAparser::sgKEY_PREV},
    {0x04, &PAparser::sgKEY_NEXT},
    {0x05, &PAparser::sgKEY_MODE},
    {0x06, &PAparser::sgKEY_SELECT},
    {0x07, &PAparser::sgKEY_ESC},
    {0x81, &PAparser::sgKEY_LONG_STOP},
    {0x82, &PAparser::sgKEY_LONG_PLAY_PAUSE},
    {0x83, &PAparser::sgKEY_LONG_PREV},
    {0x84, &PAparser::sgKEY_LONG_NEXT},
    {0x85, &PAparser::sgKEY_LONG_MODE},
    {0x86, &PAparser::sgKEY_LONG_SELECT},
    {0x87, &PAparser::sgKEY_LONG_ESC},
};

constexpr ValueRow diskStates[] = {
    {1, &PAparser::sgDiskStatNormal},
    {3, &PAparser::sgDiskRemoved},
};

constexpr ValueRow requests[] = {
    {8, &PAparser::sgMenuRequest},
};

constexpr ValueRow dhcpStates[] = {
    {2, &PAparser::sgDHCP_CMP},
};

constexpr ValueRow upgradeStates[] = {
    {1, &PAparser::sgUpgradeStart},
    {2, &PAparser::sgUpgradeFail},
};

constexpr ValueRow aoeStates[] = {
    {0, &PAparser::sgAOE_STAT_STOP},
    {1, &PAparser::sgAOE_STAT_OK},
    {2, &PAparser::sgAOE_STAT_FAIL},
    {3, &PAparser::sgAOE_STAT_OVER},
};

struct SourceRow {
    quint8 mask;
    Signal enter;
    Signal exit;
};

constexpr SourceRow sources[] = {
    {0x01, &PAparser::sgDEVICE_USB_FRONT_Enter, &PAparser::sgDEVICE_USB_FRONT_Exit},
    {0x02, &PAparser::sgDEVICE_USB_STREAM_Enter, &PAparser::sgDEVICE_USB_STREAM_Exit},
    {0x04, &PAparser::sgDEVICE_AUX_Enter, &PAparser::sgDEVICE_AUX_Exit},
    {0x08, &PAparser::sgDEVICE_IR_Enter, &PAparser::sgDEVICE_IR_Exit},
    {0x10, &PAparser::sgDEVICE_AOE_Enter, &PAparser::sgDEVICE_AOE_Exit},
};

/** Play modes by the two type bits; the fourth type has no meaning. */
constexpr Signal playOnce[] = {&PAparser::sgMode_One, &PAparser::sgMode_All, &PAparser::sgMode_Folder};
constexpr Signal playRepeat[] = {&PAparser::sgMode_rpt_One, &PAparser::sgMode_rpt_All,
                                 &PAparser::sgMode_rpt_Folder};
static_assert(std::size(playOnce) == std::size(playRepeat), "the same types with and without repeat");

constexpr quint8 playTypeBits = 0x03;
constexpr quint8 repeatBit = 0x04;
constexpr quint8 shuffleBit = 0x08;

/** Emits the signal of the row that holds `value`; a value without a row means nothing. */
template <std::size_t rows> void emitFor(PAparser& parser, const ValueRow (&table)[rows], quint8 value)
{
    for (const ValueRow& row : table) {
        if (row.value == value)
            (parser.*row.signal)();
    }
}

/** Whether there is exactly one data byte; if not, logs `message`. */
bool isOneByte(const QByteArray& data, const char* message)
{
    if (data.size() == 1)
        return true;
    DPRINTF(4, "%s", message);
    return false;
}

quint8 significantBits(quint8 value)
{
    quint8 bits = 0;
    for (; value; value = quint8(value >> 1))
        ++bits;
    return bits;
}

} // namespace

void PAparser::parseMode(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!isOneByte(data, "Mode data length shortage or over"))
        return;
    const auto mode = quint8(data.at(0));
    const bool repeat = mode & repeatBit;
    const std::size_t type = mode & playTypeBits;
    if (type < std::size(playOnce))
        (this->*(repeat ? playRepeat : playOnce)[type])();
    else
        qDebug() << (repeat ? "Undefined TYPE-Info (repeat on)" : "Undefined TYPE-Info");
    (mode & shuffleBit) ? emit sgMode_shuffle() : emit sgMode_off_Shuffle();
}

void PAparser::parseLevel(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!isOneByte(data, "level data length shortage"))
        return;
    const quint8 level = significantBits(quint8(data.at(0)));
    const bool falls = level < m_lastLevel && level != 0;
    const int shown = falls ? (m_lastLevel + m_levelBefore + level) / 3 : level;
    m_levelBefore = m_lastLevel;
    m_lastLevel = level;
    emit sgMasterLevel(static_cast<unsigned char>(shown));
}

void PAparser::parseKey(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (isOneByte(data, "Key data length shortage or over"))
        emitFor(*this, keys, quint8(data.at(0)));
}

void PAparser::parseDiskStat(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (isOneByte(data, "Stat data length shortage or over"))
        emitFor(*this, diskStates, quint8(data.at(0)));
}

void PAparser::parseDevice(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!isOneByte(data, "Device-Info data length shortage or over"))
        return;
    const auto active = quint8(data.at(0));
    for (const SourceRow& source : sources)
        (this->*(active & source.mask ? source.enter : source.exit))();
}

void PAparser::parseEnc(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!isOneByte(data, "ENC data length shortage or over"))
        return;
    const auto steps = qint8(data.at(0));
    DPRINTF(1, "Encoder value [ %d ]", steps);
    // The magnitude of -128 does not fit a signed byte: such a turn has always been none.
    if (steps == -128)
        return;
    const Signal turn = steps > 0 ? &PAparser::sgEncRight : &PAparser::sgEncLeft;
    for (int i = qAbs(int(steps)); i > 0; --i)
        (this->*turn)();
}

void PAparser::parseRequest(QByteArray data)
{
    if (!isOneByte(data, "Menu_Request data length shortage or over"))
        return;
    DPRINTF(1, "Request value [ %d ]", qint8(data.at(0)));
    emitFor(*this, requests, quint8(data.at(0)));
}

void PAparser::parseMenuDhcp(QByteArray data)
{
    if (isOneByte(data, "Menu_DHCP data length shortage or over"))
        emitFor(*this, dhcpStates, quint8(data.at(0)));
}

void PAparser::parseUpgradeInfo(QByteArray data)
{
    // The DHCP packet's words serve both packets.
    if (isOneByte(data, "Menu_DHCP data length shortage or over"))
        emitFor(*this, upgradeStates, quint8(data.at(0)));
}

void PAparser::parseAOE_STAT(QByteArray data)
{
    if (isOneByte(data, "AOE_STAT data length shortage or over"))
        emitFor(*this, aoeStates, quint8(data.at(0)));
}
