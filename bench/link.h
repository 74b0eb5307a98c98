#pragma once

#include "link/packet.h"

#include <QByteArray>

#include <string_view>

/** One end of a TCP connection to this machine, with plain blocking calls. Any failure ends the benchmark. */
class Link {
public:
    /** Waits until somebody listens on the port. */
    explicit Link(quint16 port);
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    void write(const QByteArray& bytes);
    /** Exactly so many bytes. */
    QByteArray read(int bytes);
    /** Writes everything, and reads meanwhile and on until `count` of the texts have come. */
    void exchange(const QByteArray& bytes, std::string_view text, int count);

private:
    int m_socket = -1;
};

/** The packet that asks for the mode, and the length of its answer. */
QByteArray modeRequest();
constexpr int modeAnswerBytes = PacketHeader::bytes + 1;
