#include "tags/lzw.h"

Lzw::Lzw(const QByteArray& blocks, int bits)
    : m_blocks(blocks)
    , m_bits(bits)
    , m_clear(1 << bits)
    , m_end(m_clear + 1)
{
    clear();
}

int Lzw::next()
{
    while (m_depth == 0) {
        const int read = code();
        if (read == none || read == m_end || read > m_nextCode || (read == m_nextCode && m_last == none))
            return none;
        if (read == m_clear)
            clear();
        else
            unpack(read);
    }
    return m_stack[std::size_t(--m_depth)];
}

int Lzw::byte()
{
    if (m_at == m_blockEnd && m_at < m_blocks.size()) {
        const int length = quint8(m_blocks.at(m_at++));
        m_blockEnd = length > 0 ? m_at + length : int(m_blocks.size());
        m_at = length > 0 ? m_at : int(m_blocks.size());
    }
    return m_at < m_blocks.size() ? quint8(m_blocks.at(m_at++)) : none;
}

int Lzw::code()
{
    while (m_waitingBits < m_codeBits) {
        const int more = byte();
        if (more == none)
            return none;
        m_waiting |= quint32(more) << m_waitingBits;
        m_waitingBits += 8;
    }
    const int read = int(m_waiting & ((1U << m_codeBits) - 1));
    m_waiting >>= m_codeBits;
    m_waitingBits -= m_codeBits;
    return read;
}

void Lzw::clear()
{
    m_nextCode = m_end + 1;
    m_codeBits = m_bits + 1;
    m_last = none;
}

void Lzw::push(int index)
{
    m_stack[std::size_t(m_depth++)] = quint8(index);
}

void Lzw::unpack(int code)
{
    int rest = code;
    if (code == m_nextCode) { // what the last one stands for, with its first index behind it
        push(m_first);
        rest = m_last;
    }
    for (; rest > m_clear; rest = m_before[std::size_t(rest)])
        push(m_index[std::size_t(rest)]);
    push(rest);
    m_first = rest;
    learn();
    m_last = code;
}

/** What the last code stands for, with the first index of this one behind it, gets a code of its own. */
void Lzw::learn()
{
    if (m_last == none || m_nextCode == codes)
        return;
    m_before[std::size_t(m_nextCode)] = quint16(m_last);
    m_index[std::size_t(m_nextCode)] = quint8(m_first);
    ++m_nextCode;
    if (m_nextCode == 1 << m_codeBits && m_nextCode < codes)
        ++m_codeBits;
}
