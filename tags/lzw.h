#pragma once

#include <QByteArray>

#include <array>

/**
 * Unpacks the indices of a GIF's pixels (LZW, codes of up to 12 bits, the lowest bit first; see the GIF89a
 * format, appendix F). The time it takes grows with the bytes and with what is asked for, nothing else.
 */
class Lzw {
public:
    /** `blocks` begin with their length, the last one has none; an index has `bits` bits, 1 to 8. */
    Lzw(const QByteArray& blocks, int bits);

    /** The next index, or -1 where the codes end, break off or mean nothing. */
    int next();

private:
    static constexpr int codes = 1 << 12;
    static constexpr int none = -1;

    int byte();
    int code();
    void clear();
    void push(int index);
    void unpack(int code);
    void learn();

    const QByteArray m_blocks;
    int m_at = 0;
    int m_blockEnd = 0;
    quint32 m_waiting = 0;
    int m_waitingBits = 0;

    const int m_bits;
    const int m_clear;
    const int m_end;
    int m_codeBits = 0;
    int m_nextCode = 0;
    int m_last = none;
    int m_first = 0; ///< of the indices that the last code stands for

    // A code beyond the end stands for what another one does, and an index behind that.
    std::array<quint16, codes> m_before = {};
    std::array<quint8, codes> m_index = {};
    std::array<quint8, codes> m_stack = {}; ///< what is left of the last code, its last index first
    int m_depth = 0;
};
