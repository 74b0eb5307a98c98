#include "tags/oggpagewalk.h"

#include "app/dprintf.h"
#include "tags/findbytes.h"

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view capturePattern = "OggS";
constexpr std::string_view commentMarker = "\3vorbis";
constexpr qint64 minFileBytes = 100;
constexpr std::size_t headerBytes = 27;
constexpr std::size_t segmentCountAt = 26;
constexpr unsigned char continued = 255;

} // namespace

OggPageWalk::OggPageWalk(QIODevice& file, qint64 fileBytes, const VorbisCommentSink& sink)
    : m_file(file, limits::oggBytes)
    , m_fileBytes(fileBytes)
    , m_sink(sink)
{
}

bool OggPageWalk::run()
{
    bool complete = readPage(*m_page) && readPackets();
    while (!m_parents.empty()) {
        returnToParent();
        complete = readPackets();
    }
    m_file.detach();
    return complete;
}

/** Reads the page at the file's position; false, logged, where there is no page header. */
bool OggPageWalk::readPage(Page& page)
{
    if (--m_pagesLeft < 0)
        m_file.end();
    const std::string_view header = m_file.take(headerBytes);
    if (m_fileBytes < minFileBytes) {
        DPRINTF(3, "[OGG] parser error");
        return false;
    }
    if (header.find(capturePattern) == std::string_view::npos) {
        DPRINTF(3, "[OGG] Not found OggS");
        return false;
    }
    const std::size_t segments = header.size() < headerBytes ? 0 : quint8(header[segmentCountAt]);
    page.lacingAt = m_file.position();
    page.setLacing(m_file.take(segments));
    return true;
}

void OggPageWalk::Page::setLacing(std::string_view values)
{
    std::copy(values.begin(), values.end(), lacing);
    next = 0;
    end = values.size();
    while (end > 0 && lacing[end - 1] == continued) // the last packet goes on in the next page
        --end;
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
    while (const auto size = m_page->takePacketSize()) {
        const std::string_view packet = m_file.take(*size);
        if (packet.empty()) {
            DPRINTF(3, "[OGG] PacketSize error");
            return false;
        }
        const qint64 marker = findBytes(packet, commentMarker);
        if (marker < 0)
            enterNextPage();
        else if (!readComments(packet, marker))
            return false;
    }
    return true;
}

bool OggPageWalk::readComments(std::string_view packet, qint64 marker)
{
    const QByteArray block = QByteArray::fromRawData(packet.data(), int(packet.size()));
    return readVorbisComments(block, marker + qint64(commentMarker.size()), m_sink);
}

/** Makes the following page the current one; the present one waits if packets are left. The first page always
 * waits: its result counts. */
void OggPageWalk::enterNextPage()
{
    if (!readPage(*m_next))
        return;
    if (m_page->hasPackets() || m_parents.empty())
        m_parents.push(quint64(m_page->lacingAt + qint64(m_page->next)) << 8 | (m_page->end - m_page->next));
    std::swap(m_page, m_next);
}

/** Takes the innermost waiting page up again. Its lacing is read once more, unless the file has come to its
 * end where every packet is found missing, whatever its size. */
void OggPageWalk::returnToParent()
{
    m_page->lacingAt = qint64(m_parents.top() >> 8);
    m_page->next = 0;
    m_page->end = std::size_t(m_parents.top() & 0xFF);
    m_parents.pop();
    std::fill_n(m_page->lacing, m_page->end, 0);
    if (m_file.isAtEnd())
        return;
    const std::string_view lacing = m_file.reread(m_page->lacingAt, m_page->end);
    std::copy(lacing.begin(), lacing.end(), m_page->lacing);
}
