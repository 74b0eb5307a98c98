#include "tags/oggpagewalk.h"

#include "app/dprintf.h"

#include <algorithm>

namespace {

constexpr std::string_view capturePattern = "OggS";
constexpr std::string_view commentMarker = "\3vorbis";
constexpr qint64 minFileBytes = 100;
constexpr std::size_t headerBytes = 27;
constexpr std::size_t segmentCountAt = 26;
constexpr unsigned char continued = 255;

} // namespace

OggPageWalk::OggPageWalk(QIODevice& file, qint64 fileBytes, const VorbisCommentSink& sink)
    : m_file(file)
    , m_fileBytes(fileBytes)
    , m_sink(sink)
{
}

bool OggPageWalk::run()
{
    const auto first = readPage();
    if (first)
        m_page = *first;
    bool complete = first && readPackets();
    while (!m_parents.empty()) {
        returnToParent();
        complete = readPackets();
    }
    m_file.detach();
    return complete;
}

/** The page at the file's position; none, logged, where there is no page header. */
std::optional<OggPageWalk::Page> OggPageWalk::readPage()
{
    const std::string_view header = m_file.take(headerBytes);
    if (m_fileBytes < minFileBytes) {
        DPRINTF(3, "[OGG] parser error");
        return std::nullopt;
    }
    if (header.find(capturePattern) == std::string_view::npos) {
        DPRINTF(3, "[OGG] Not found OggS");
        return std::nullopt;
    }
    const std::size_t segments = header.size() < headerBytes ? 0 : (unsigned char)(header[segmentCountAt]);
    Page page;
    page.lacingAt = m_file.position();
    const std::string_view lacing = m_file.take(segments);
    std::copy(lacing.begin(), lacing.end(), page.lacing);
    page.end = lacing.size();
    while (page.end > 0 && page.lacing[page.end - 1] == continued) // the packet goes on in the next page
        --page.end;
    return page;
}

/** The size of the next packet: the sum of values up to the first one that is not 255. */
std::optional<std::size_t> OggPageWalk::Page::takePacketSize()
{
    if (!hasPackets())
        return std::nullopt;
    std::size_t size = 0;
    while (lacing[next] == continued)
        size += lacing[next++];
    return size + lacing[next++];
}

/** Reads on in the current page, which a nested page may replace; true when its last packet was there. */
bool OggPageWalk::readPackets()
{
    while (const auto size = m_page.takePacketSize()) {
        const std::string_view packet = m_file.take(*size);
        if (packet.empty()) {
            DPRINTF(3, "[OGG] PacketSize error");
            return false;
        }
        const std::size_t marker = packet.find(commentMarker);
        if (marker == std::string_view::npos)
            enterNextPage();
        else if (!readComments(packet, marker))
            return false;
    }
    return true;
}

bool OggPageWalk::readComments(std::string_view packet, std::size_t marker)
{
    const QByteArray block = QByteArray::fromRawData(packet.data(), int(packet.size()));
    return readVorbisComments(block, qint64(marker + commentMarker.size()), m_sink);
}

/** Makes the following page the current one; the present one waits if packets are left. The first page always
 * waits: its result counts. */
void OggPageWalk::enterNextPage()
{
    const auto nested = readPage();
    if (!nested)
        return;
    if (m_page.hasPackets() || m_parents.empty())
        m_parents.push(quint64(m_page.lacingAt + qint64(m_page.next)) << 8 | (m_page.end - m_page.next));
    m_page = *nested;
}

/** Takes the innermost waiting page up again. Its lacing is read once more, unless the file has come to its
 * end where every packet is found missing, whatever its size. */
void OggPageWalk::returnToParent()
{
    m_page = Page();
    m_page.lacingAt = qint64(m_parents.top() >> 8);
    m_page.end = std::size_t(m_parents.top() & 0xFF);
    m_parents.pop();
    if (m_file.isAtEnd())
        return;
    const std::string_view lacing = m_file.reread(m_page.lacingAt, m_page.end);
    std::copy(lacing.begin(), lacing.end(), m_page.lacing);
}
