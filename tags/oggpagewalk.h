#pragma once

#include "tags/readwindow.h"
#include "tags/vorbiscomment.h"

#include <cstddef>
#include <optional>
#include <stack>
#include <string_view>

/**
 * The walk over the pages of an Ogg file. A packet that holds a comment header is decoded. After any other
 * packet the following page is walked first, from where the file stands, and then the page at hand goes on:
 * pages nest as deep as the file is long. Pages that wait for a nested one to end are kept on a stack of
 * their own, one word each and only while packets of them are left.
 */
class OggPageWalk {
public:
    /** Walks from the current position of an open file of `fileBytes` bytes. */
    OggPageWalk(QIODevice& file, qint64 fileBytes, const VorbisCommentSink& sink);

    /** True when every packet of the first page was there and its comment header, if any, was sound. */
    bool run();

private:
    static constexpr std::size_t maxSegments = 255;
    static_assert(maxSegments * 255 <= ReadWindow::maxBytes, "the largest packet of a page is taken at once");

    /** The packets of a page that are still to be read, as lacing values. */
    struct Page {
        qint64 lacingAt = 0; // file position of the first value
        std::size_t next = 0;
        std::size_t end = 0;
        unsigned char lacing[maxSegments];

        void setLacing(std::string_view values);
        bool hasPackets() const { return next < end; }
        std::optional<std::size_t> takePacketSize();
    };

    bool readPage(Page& page);
    bool readPackets();
    bool readComments(std::string_view packet, qint64 marker);
    void enterNextPage();
    void returnToParent();

    ReadWindow m_file;
    qint64 m_fileBytes;
    int m_pagesLeft = limits::oggPages;
    VorbisCommentSink m_sink;
    Page m_pages[2];
    Page* m_page = &m_pages[0]; // the current one
    Page* m_next = &m_pages[1];
    /** Of each waiting page: the file position of its lacing, and in the low byte the number of values. */
    std::stack<quint64> m_parents;
};
