#include "app/dprintf.h"
#include "protocol/paparser.h"

#include <QtDebug>

#include <iterator>

/** The handlers of the one-byte packets: keys, encoder, level, sources, states and requests. */

namespace {

using Signal = void (PAparser::*)();

struct KeyRow {
    wire::Key key;
    Signal pressed;
    Signal held;
};

constexpr KeyRow keys[] = {
    {wire::Key::Stop, &PAparser::sgKEY_STOP, &PAparser::sgKEY_LONG_STOP},
    {wire::Key::PlayPause, &PAparser::sgKEY_PLAY_PAUSE, &PAparser::sgKEY_LONG_PLAY_PAUSE},
    {wire::Key::Prev, &PAparser::sgKEY_PREV, &PAparser::sgKEY_LONG_PREV},
    {wire::Key::Next, &PAparser::sgKEY_NEXT, &PAparser::sgKEY_LONG_NEXT},
    {wire::Key::Mode, &PAparser::sgKEY_MODE, &PAparser::sgKEY_LONG_MODE},
    {wire::Key::Select, &PAparser::sgKEY_SELECT, &PAparser::sgKEY_LONG_SELECT},
    {wire::Key::Esc, &PAparser::sgKEY_ESC, &PAparser::sgKEY_LONG_ESC},
};
static_assert(std::size(keys) == std::size(wire::keys), "one row a key");

template <typename Code> struct ValueRow {
    Code value;
    Signal signal;
};

constexpr ValueRow<wire::DiskState> diskStates[] = {
    {wire::DiskState::Normal, &PAparser::sgDiskStatNormal},
    {wire::DiskState::Removed, &PAparser::sgDiskRemoved},
};

constexpr ValueRow<wire::Request> requests[] = {
    {wire::Request::Mode, &PAparser::sgMenuRequest},
};

constexpr ValueRow<wire::DhcpState> dhcpStates[] = {
    {wire::DhcpState::Completed, &PAparser::sgDHCP_CMP},
};

constexpr ValueRow<wire::UpgradeState> upgradeStates[] = {
    {wire::UpgradeState::Started, &PAparser::sgUpgradeStart},
    {wire::UpgradeState::Failed, &PAparser::sgUpgradeFail},
};

constexpr ValueRow<wire::AoeState> aoeStates[] = {
    {wire::AoeState::Stopped, &PAparser::sgAOE_STAT_STOP},
    {wire::AoeState::Playing, &PAparser::sgAOE_STAT_OK},
    {wire::AoeState::Failed, &PAparser::sgAOE_STAT_FAIL},
    {wire::AoeState::RateTooHigh, &PAparser::sgAOE_STAT_OVER},
};

struct SourceRow {
    wire::Source source;
    Signal enter;
    Signal exit;
};

constexpr SourceRow sources[] = {
    {wire::Source::FrontUsb, &PAparser::sgDEVICE_USB_FRONT_Enter, &PAparser::sgDEVICE_USB_FRONT_Exit},
    {wire::Source::StreamUsb, &PAparser::sgDEVICE_USB_STREAM_Enter, &PAparser::sgDEVICE_USB_STREAM_Exit},
    {wire::Source::Aux, &PAparser::sgDEVICE_AUX_Enter, &PAparser::sgDEVICE_AUX_Exit},
    {wire::Source::Radio, &PAparser::sgDEVICE_IR_Enter, &PAparser::sgDEVICE_IR_Exit},
    {wire::Source::Aoe, &PAparser::sgDEVICE_AOE_Enter, &PAparser::sgDEVICE_AOE_Exit},
};

/** Play modes by their type; the fourth value of the type bits has no meaning. */
constexpr Signal playOnce[] = {&PAparser::sgMode_One, &PAparser::sgMode_All, &PAparser::sgMode_Folder};
constexpr Signal playRepeat[] = {&PAparser::sgMode_rpt_One, &PAparser::sgMode_rpt_All,
                                 &PAparser::sgMode_rpt_Folder};
static_assert(std::size(playOnce) == std::size(wire::playTypes), "one signal a type");
static_assert(std::size(playRepeat) == std::size(wire::playTypes), "one signal a type");

/** Emits the signal of the row that holds `value`; a value without a row means nothing. */
template <typename Code, std::size_t rows>
void emitFor(PAparser& parser, const ValueRow<Code> (&table)[rows], char value)
{
    for (const ValueRow<Code>& row : table) {
        if (quint8(row.value) == quint8(value))
            (parser.*row.signal)();
    }
}

/** One message of one item, followed by one blank, as the banner at start. */
void reportUndefined(bool repeat)
{
    qDebug().nospace() << (repeat ? "Undefined TYPE-Info (repeat on)" : "Undefined TYPE-Info") << " ";
}

quint8 significantBits(quint8 value)
{
    quint8 bits = 0;
    for (; value; value = quint8(value >> 1))
        ++bits;
    return bits;
}

} // namespace

bool PAparser::isOneByte(const QByteArray& data, const char* message)
{
    if (data.size() == 1)
        return true;
    DPRINTF(4, "%s", message);
    return false;
}

void PAparser::parseMode(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!isOneByte(data, "Mode data length shortage or over"))
        return;
    const auto mode = quint8(data.at(0));
    const bool repeat = mode & wire::repeatBit;
    const std::size_t type = mode & wire::playTypeBits;
    if (type < std::size(playOnce))
        (this->*(repeat ? playRepeat : playOnce)[type])();
    else
        reportUndefined(repeat);
    (mode & wire::shuffleBit) ? emit sgMode_shuffle() : emit sgMode_off_Shuffle();
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
    if (!isOneByte(data, "Key data length shortage or over"))
        return;
    const auto code = quint8(data.at(0));
    for (const KeyRow& row : keys) {
        if (code == quint8(row.key))
            (this->*row.pressed)();
        if (code == wire::held(row.key))
            (this->*row.held)();
    }
}

void PAparser::parseDiskStat(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (isOneByte(data, "Stat data length shortage or over"))
        emitFor(*this, diskStates, data.at(0));
}

void PAparser::parseDevice(QByteArray data)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!isOneByte(data, "Device-Info data length shortage or over"))
        return;
    const auto active = quint8(data.at(0));
    for (const SourceRow& source : sources)
        (this->*(active & quint8(source.source) ? source.enter : source.exit))();
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
    emitFor(*this, requests, data.at(0));
}

void PAparser::parseMenuDhcp(QByteArray data)
{
    if (isOneByte(data, "Menu_DHCP data length shortage or over"))
        emitFor(*this, dhcpStates, data.at(0));
}

void PAparser::parseUpgradeInfo(QByteArray data)
{
    // The DHCP packet's words serve both packets.
    if (isOneByte(data, "Menu_DHCP data length shortage or over"))
        emitFor(*this, upgradeStates, data.at(0));
}

void PAparser::parseAOE_STAT(QByteArray data)
{
    if (isOneByte(data, "AOE_STAT data length shortage or over"))
        emitFor(*this, aoeStates, data.at(0));
}
