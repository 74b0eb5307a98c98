#pragma once

#include "link/vocabulary.h"

#include <QByteArray>

#include <type_traits>

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

/** The TCP port that the display listens on. */
constexpr quint16 linkPort = 5000;

/** The most data bytes that a length says. */
constexpr int mostDataBytes = 0xFFFF;

struct PacketHeader {
    static constexpr int bytes = 4;

    quint16 command = 0;
    quint16 length = 0;

    /** Reads the header at `offset`; a field whose bytes are missing reads as 0. */
    static PacketHeader from(const QByteArray& packet, int offset = 0);
};

/** A packet of the data, of which there are at most `mostDataBytes`. */
QByteArray packetOf(Command command, const QByteArray& data);

/** A packet of one byte. Negative numbers take their two's complement. */
QByteArray packetOf(Command command, int byte);

template <typename Code, typename = std::enable_if_t<std::is_enum_v<Code>>>
QByteArray packetOf(Command command, Code code)
{
    return packetOf(command, int(code));
}

/** The header's four bytes followed by the data as it is; the length is written as given. */
QByteArray packetOf(quint16 command, quint16 length, const QByteArray& data);
