#pragma once

#include <QtGlobal>

#include <cstddef>
#include <iterator>

/**
 * What is said on the link: every number with its name, and with the word by which people say it. The panel's
 * parser, the stand-in supervisor, the tests and the page about the protocol all take them from here.
 */

/** What a packet says. Unless noted, commands go from the supervisor to the display. */
enum class Command : quint16 {
    Filename = 1, ///< UTF-8 text up to the first zero byte: the file that plays now
    Time = 2, ///< 2 or 3 bytes of binary-coded decimal: [hours,] minutes, seconds
    Mode = 3, ///< 1 byte: bits 0-1 one, all, folder; bit 2 repeat; bit 3 shuffle
    Level = 4, ///< 1 byte: master level, linear, 0 to 255
    Key = 5, ///< 1 byte: key code; bit 7 marks a long press
    DiskStat = 6, ///< 1 byte: a wire::DiskState
    Device = 7, ///< 1 byte: bit mask of the sources that are active now
    IRStation = 8, ///< 256 bytes zero-padded UTF-8 title, then the UTF-8 stream address
    Reserved9 = 9, ///< accepted and ignored
    DiskInfo = 10, ///< number of files, number of folders, 2 bytes each
    Encoder = 11, ///< 1 byte, signed: steps to the right
    UrlText = 12, ///< display to supervisor: UTF-8 text and a zero byte; the length counts characters
    Request = 13, ///< 1 byte: a wire::Request; display to supervisor: 1 byte, the ModeCode
    MenuDhcp = 14, ///< 1 byte: a wire::DhcpState
    UpgradeInfo = 15, ///< 1 byte: a wire::UpgradeState
    UpgradeMsg = 16, ///< UTF-8 text up to the first zero byte
    AoeStat = 17, ///< 1 byte: a wire::AoeState
};

/** What the display answers when the supervisor asks for its mode. */
enum class ModeCode : quint8 {
    Menu = 0,
    Usb = 1,
    Aoe = 2,
    IRList = 3,
    IRMain = 4,
    NetBgm = 5,
    Setup = 6,
    DhcpOpened = 7, ///< the DHCP choice of the setup screen is open
    None = 255, ///< no mode was entered yet
};

namespace wire {

enum class Key : quint8 { Stop = 1, PlayPause, Prev, Next, Mode, Select, Esc };
constexpr quint8 longPress = 0x80;

/** The code of a key that is held. */
constexpr quint8 held(Key key)
{
    return quint8(key) | longPress;
}

/** The bits of the source mask, in the order of their signals. */
enum class Source : quint8 { FrontUsb = 0x01, StreamUsb = 0x02, Aux = 0x04, Radio = 0x08, Aoe = 0x10 };

/** The play mode: one of the types in the low bits, and two flags. */
enum class PlayType : quint8 { One, All, Folder };
constexpr quint8 playTypeBits = 0x03;
constexpr quint8 repeatBit = 0x04;
constexpr quint8 shuffleBit = 0x08;

enum class DiskState : quint8 { Normal = 1, Removed = 3 };
enum class Request : quint8 { Mode = 8 };
enum class DhcpState : quint8 { Completed = 2 };
enum class UpgradeState : quint8 { Started = 1, Failed = 2 };
enum class AoeState : quint8 { Stopped, Playing, Failed, RateTooHigh };

/** A value, the word by which people say it, and the name by which pages call it where that is another. */
struct Term {
    template <typename Code>
    constexpr Term(Code code, const char* said, const char* written = nullptr)
        : value(quint8(code))
        , word(said)
        , name(written ? written : said)
    {
    }
    quint8 value;
    const char* word;
    const char* name;
};

/** The terms of one kind. */
class Terms {
public:
    constexpr Terms() = default;
    template <std::size_t count>
    constexpr Terms(const Term (&all)[count])
        : m_begin(all)
        , m_end(all + count)
    {
    }
    constexpr const Term* begin() const { return m_begin; }
    constexpr const Term* end() const { return m_end; }
    constexpr bool isEmpty() const { return m_begin == m_end; }

private:
    const Term* m_begin = nullptr;
    const Term* m_end = nullptr;
};

constexpr Term keys[] = {
    {Key::Stop, "stop"}, {Key::PlayPause, "play-pause"}, {Key::Prev, "prev"}, {Key::Next, "next"},
    {Key::Mode, "mode"}, {Key::Select, "select"},        {Key::Esc, "esc"},
};
constexpr Term sources[] = {
    {Source::FrontUsb, "usb"}, {Source::StreamUsb, "stream"}, {Source::Aux, "aux"},
    {Source::Radio, "ir"},     {Source::Aoe, "aoe"},          {0, "none"},
};
constexpr Term playFlags[] = {{repeatBit, "repeat"}, {shuffleBit, "shuffle"}};
constexpr Term playTypes[] = {{PlayType::One, "one"}, {PlayType::All, "all"}, {PlayType::Folder, "folder"}};
constexpr Term diskStates[] = {{DiskState::Normal, "normal"}, {DiskState::Removed, "removed"}};
constexpr Term dhcpStates[] = {{DhcpState::Completed, "done"}};
constexpr Term upgradeStates[] = {{UpgradeState::Started, "start"}, {UpgradeState::Failed, "fail"}};
constexpr Term aoeStates[] = {
    {AoeState::Stopped, "stop"},
    {AoeState::Playing, "ok"},
    {AoeState::Failed, "fail"},
    {AoeState::RateTooHigh, "over"},
};

/** What the data byte of a command is: one of the terms, or made of them, or a number. Empty for other
 * layouts. */
struct ByteData {
    Terms terms = {};
    const char* number = nullptr; ///< what the number is called where words are explained
    int least = 0;
    int most = 0;
};

/** A command as pages and people call it. */
struct CommandRow {
    Command command;
    const char* name;
    const char* word; ///< null where nobody says it
    const char* meaning;
    ByteData data = {};
};

// clang-format off
constexpr CommandRow commands[] = {
    {Command::Filename, "Filename", "file", "the file that plays now; it must exist"},
    {Command::Time, "Time", "time", "the play time"},
    {Command::Mode, "Mode", "mode", "the play mode", {playTypes}},
    {Command::Level, "Level", "level", "the master level", {{}, "NUMBER", 0, 255}},
    {Command::Key, "Key", "key", "a key of the front panel, pressed or held", {keys}},
    {Command::DiskStat, "DiskStat", "disk-state", "whether the disk is there", {diskStates}},
    {Command::Device, "Device", "device", "the sources that are active now", {sources}},
    {Command::IRStation, "IRStation", "station", "the internet-radio station that plays"},
    {Command::Reserved9, "Reserved9", nullptr, nullptr},
    {Command::DiskInfo, "DiskInfo", "disk", "what the disk holds (0 to 65535 each)"},
    {Command::Encoder, "Encoder", "enc", "turns the encoder, to the right where positive", {{}, "STEPS", -128, 127}},
    {Command::UrlText, "UrlText", nullptr, nullptr},
    {Command::Request, "Request", "request", "asks for the panel's mode and prints its name"},
    {Command::MenuDhcp, "MenuDhcp", "dhcp", "an address has been obtained", {dhcpStates}},
    {Command::UpgradeInfo, "UpgradeInfo", "upgrade", "a firmware upgrade begins or has failed", {upgradeStates}},
    {Command::UpgradeMsg, "UpgradeMsg", "upgrade-message", "the text of the upgrade notice"},
    {Command::AoeStat, "AoeStat", "aoe", "the state of audio over Ethernet; over: the rate is too high", {aoeStates}},
};
// clang-format on

constexpr Term modes[] = {
    {ModeCode::Menu, "menu", "Menu"},      {ModeCode::Usb, "usb", "Usb"},
    {ModeCode::Aoe, "aoe", "Aoe"},         {ModeCode::IRList, "radio-list", "IRList"},
    {ModeCode::IRMain, "radio", "IRMain"}, {ModeCode::NetBgm, "netbgm", "NetBgm"},
    {ModeCode::Setup, "setup", "Setup"},   {ModeCode::DhcpOpened, "dhcp", "DhcpOpened"},
    {ModeCode::None, "none", "None"},
};

} // namespace wire

constexpr quint16 firstCommand = quint16(wire::commands[0].command);
constexpr quint16 lastCommand = quint16(firstCommand + std::size(wire::commands) - 1);

constexpr bool commandsStandInOrder()
{
    quint16 expected = firstCommand;
    for (const wire::CommandRow& row : wire::commands)
        if (quint16(row.command) != expected++)
            return false;
    return true;
}
static_assert(commandsStandInOrder(), "one row a command: it is found by its code");
