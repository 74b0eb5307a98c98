#pragma once

#include <QIODevice>

#include <memory>
#include <string_view>
#include <vector>

/**
 * Reads a file front to back in large pieces through one buffer of fixed size. Positions are bytes from the
 * start of the file. Where reading fails the file ends.
 */
class ReadWindow {
public:
    /** The most that take() gives at once. */
    static constexpr std::size_t maxBytes = std::size_t(64) * 1024;

    /** Starts where the device stands, and leaves it there when detach() is called. Reads so many bytes as if
     * the file ended behind them. */
    ReadWindow(QIODevice& device, qint64 bytes);

    /** The next bytes, fewer at the end of the file. They hold until the next call of any function. */
    std::string_view take(std::size_t bytes);
    /** Bytes that were taken before, read once more without moving on. */
    std::string_view reread(qint64 position, std::size_t bytes);
    qint64 position() const { return m_base + qint64(m_begin); }
    /** Whether nothing is left and the end of the file has been seen. */
    bool isAtEnd() const { return m_ended && m_begin == m_end; }
    /** Lets the file end where the window stands. */
    void end();
    /** Puts the device where the window stands. */
    void detach();

private:
    static constexpr std::size_t bufferBytes = 2 * maxBytes;

    void fill();

    QIODevice& m_device;
    const std::unique_ptr<char[]> m_buffer; ///< not cleared: of a short file most of it is never touched
    std::vector<char> m_aside;
    qint64 m_base; // position of the buffer's first byte
    qint64 m_unread; // bytes that may still be read
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
    bool m_ended;
};
