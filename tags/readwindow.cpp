#include "tags/readwindow.h"

#include <algorithm>
#include <cstring>

ReadWindow::ReadWindow(QIODevice& device, qint64 bytes)
    : m_device(device)
    , m_buffer(new char[bufferBytes])
    , m_base(device.pos())
    , m_unread(bytes)
    , m_ended(!device.isOpen())
{
}

std::string_view ReadWindow::take(std::size_t bytes)
{
    bytes = std::min(bytes, maxBytes);
    if (m_end - m_begin < bytes)
        fill();
    const std::string_view taken(m_buffer.get() + m_begin, std::min(bytes, m_end - m_begin));
    m_begin += taken.size();
    return taken;
}

/** Moves what is left to the front and reads until the buffer is full or the file ends. */
void ReadWindow::fill()
{
    std::memmove(m_buffer.get(), m_buffer.get() + m_begin, m_end - m_begin);
    m_base += qint64(m_begin);
    m_end -= m_begin;
    m_begin = 0;
    while (!m_ended && m_end < bufferBytes) {
        const qint64 room = std::min(qint64(bufferBytes - m_end), m_unread);
        const qint64 got = m_device.read(m_buffer.get() + m_end, room);
        m_ended = got <= 0;
        m_end += std::size_t(std::max<qint64>(got, 0));
        m_unread -= std::max<qint64>(got, 0);
    }
}

std::string_view ReadWindow::reread(qint64 position, std::size_t bytes)
{
    if (position >= m_base)
        return {m_buffer.get() + (position - m_base), bytes};
    m_aside.resize(bytes);
    const bool moved = m_device.seek(position);
    const qint64 got = moved ? m_device.read(m_aside.data(), qint64(bytes)) : -1;
    m_device.seek(m_base + qint64(m_end));
    return {m_aside.data(), std::size_t(std::max<qint64>(got, 0))};
}

void ReadWindow::end()
{
    m_end = m_begin;
    m_ended = true;
}

void ReadWindow::detach()
{
    if (m_device.isOpen())
        m_device.seek(position());
}
