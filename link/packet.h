#pragma once

#include <QByteArray>
#include <QtGlobal>

/**
 * The wire format of the supervisor link, the same in both directions. All fields are little-endian.
 *
 *     offset  width   field
 *     0       2       command, unsigned
 *     2       2       length, unsigned: the number of data bytes; the 4 header bytes are not counted
 *     4       length  data, in the layout of the command
 *
 * There is no start marker, checksum, sequence number or terminator: only the length tells where a packet
 * ends.
 */

/** What a packet says. Unless noted, commands go from the supervisor to the display. */
enum class Command : quint16 {
    Filename = 1, ///< UTF-8 text up to the first zero byte: the file that plays now
    Time = 2, ///< 2 or 3 bytes of binary-coded decimal: [hours,] minutes, seconds
    Mode = 3, ///< 1 byte: bits 0-1 one, all, folder; bit 2 repeat; bit 3 shuffle
    Level = 4, ///< 1 byte: master level, linear, 0 to 255
    Key = 5, ///< 1 byte: key code; bit 7 marks a long press
    DiskStat = 6, ///< 1 byte: 1 normal, 3 removed
    Device = 7, ///< 1 byte: bit mask of the sources that are active now
    IRStation = 8, ///< 256 bytes zero-padded UTF-8 title, then the UTF-8 stream address
    Reserved9 = 9, ///< accepted and ignored
    DiskInfo = 10, ///< number of files, number of folders, 2 bytes each
    Encoder = 11, ///< 1 byte, signed: steps to the right
    UrlText = 12, ///< display to supervisor: UTF-8 text and a zero byte; the length counts characters
    Request = 13, ///< 1 byte: 8 asks for the current mode; display to supervisor: 1 byte, the mode's code
    MenuDhcp = 14, ///< 1 byte: 2 DHCP completed
    UpgradeInfo = 15, ///< 1 byte: 1 started, 2 failed
    UpgradeMsg = 16, ///< UTF-8 text up to the first zero byte
    AoeStat = 17, ///< 1 byte: audio over Ethernet 0 stopped, 1 playing, 2 failed, 3 rate too high
};

/** The TCP port that the display listens on. */
constexpr quint16 linkPort = 5000;

constexpr quint16 firstCommand = quint16(Command::Filename);
constexpr quint16 lastCommand = quint16(Command::AoeStat);

struct PacketHeader {
    static constexpr int bytes = 4;

    quint16 command = 0;
    quint16 length = 0;

    /** Reads the header at `offset`; a field whose bytes are missing reads as 0. */
    static PacketHeader from(const QByteArray& packet, int offset = 0);
};

/** The unsigned 16-bit little-endian number at `offset`, 0 where its two bytes are not both there. */
quint16 littleEndian16(const QByteArray& bytes, int offset);

/** The header's four bytes followed by the data as it is; the length is written as given. */
QByteArray packetOf(quint16 command, quint16 length, const QByteArray& data);
