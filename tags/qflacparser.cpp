#include "tags/qflacparser.h"

#include "app/dprintf.h"
#include "app/limits.h"
#include "tags/bytesat.h"
#include "tags/coverpicture.h"
#include "tags/touint.h"
#include "tags/vorbiscomment.h"

namespace {

constexpr int headBytes = 10;
constexpr int markerBytes = 4;
constexpr int blockHeaderBytes = 4;
constexpr int minBlockBytes = 5;

/** The header of a metadata block; what is missing of it at the end of the file reads as zero. */
struct BlockHeader {
    explicit BlockHeader(const QByteArray& bytes)
        : isLast((toUInt(bytesAt(bytes, 0, 1), true) & 0x80) != 0)
        , type(int(toUInt(bytesAt(bytes, 0, 1), true) & 0x7F))
        , length(toUInt(bytesAt(bytes, 1, 3), true))
    {
    }
    bool isLast;
    int type;
    qint64 length;
};

enum BlockType { CommentBlock = 4, PictureBlock = 6 };

/** What a picture block holds, up to byte `end`. */
struct PicturePart {
    qint64 end;
    const char* name;
};

} // namespace

QFLACparser::QFLACparser(QObject* parent)
    : QObject(parent)
{
}

QFLACparser::QFLACparser(QString path, QObject* parent)
    : QObject(parent)
    , m_path(path)
{
    ReadFile();
}

void QFLACparser::setFilePath(QString path)
{
    m_path = path;
}

void QFLACparser::ReadFile()
{
    strTitle = strArtist = strAlbum = QString();
    pixPicture = QPixmap();
    if (!m_file.openForReading(m_path)) {
        DPRINTF(4, "[FLAC] %s", m_file.errorString().toLatin1().constData());
        return;
    }
    if (FLACTagParser() == 0)
        DPRINTF(3, "[FLAC] FILE-Tag is failed to initialize");
}

int QFLACparser::FLACTagParser()
{
    const QByteArray head = m_file.readAtMost(headBytes);
    if (!head.contains("fLaC")) {
        DPRINTF(3, "[FLAC] Not found fLaC");
        return 0;
    }
    const QByteArray header = headerAfterFirstBlock(head);
    Blocks blocks;
    if (!BlockHeader(bytesAt(head, markerBytes, blockHeaderBytes)).isLast && !collectBlocks(header, blocks))
        return 0;
    return decode(blocks);
}

/** Skips the first block, which describes the stream, whose beginning is part of the file's head. */
QByteArray QFLACparser::headerAfterFirstBlock(const QByteArray& head)
{
    const qint64 length = BlockHeader(bytesAt(head, markerBytes, blockHeaderBytes)).length;
    const qint64 end = length + markerBytes + blockHeaderBytes;
    const QByteArray begun = head.mid(int(end));
    if (end > headBytes)
        m_file.seek(m_file.pos() + end - headBytes);
    return begun + m_file.readAtMost(blockHeaderBytes - begun.size());
}

/** Walks the blocks from the given header to the last one; false where an empty block makes all void. */
bool QFLACparser::collectBlocks(QByteArray header, Blocks& blocks)
{
    int blocksLeft = limits::flacBlocks;
    for (bool isLast = false; !isLast; header = m_file.readAtMost(blockHeaderBytes)) {
        if (--blocksLeft < 0) {
            DPRINTF(3, "[FLAC] more than %d blocks", limits::flacBlocks);
            return true;
        }
        const BlockHeader block(header);
        if (block.length == 0) {
            DPRINTF(4, "Not found tag information [1]");
            return false;
        }
        if (m_file.size() <= block.length) {
            DPRINTF(4, "[FLAC] Not found tag information [2]");
            return true;
        }
        takeBlock(block.type, block.length, blocks);
        isLast = block.isLast;
    }
    return true;
}

void QFLACparser::takeBlock(int type, qint64 length, Blocks& blocks)
{
    if (type == CommentBlock)
        blocks.comments = {m_file.pos(), length};
    else if (type == PictureBlock)
        blocks.picture = {m_file.pos(), length};
    m_file.seek(m_file.pos() + length);
}

QByteArray QFLACparser::contentOf(Place block)
{
    m_file.seek(block.position);
    return m_file.readAtMost(block.length);
}

int QFLACparser::decode(const Blocks& blocks)
{
    QByteArray content = contentOf(blocks.comments);
    if (content.size() >= minBlockBytes && !ReadVorbis(content))
        return 0;
    content.clear(); // the picture needs the room
    content = contentOf(blocks.picture);
    return content.size() >= minBlockBytes && ReadAttachedImage(content) ? 1 : 0;
}

bool QFLACparser::ReadVorbis(QByteArray block)
{
    VorbisCommentSink sink = {&strTitle, &strArtist, &strAlbum, "[FLAC] ", ""};
    return readVorbisComments(block, 0, sink);
}

bool QFLACparser::ReadAttachedImage(QByteArray block)
{
    const auto numberAt = [&block](qint64 at) -> qint64 { return toUInt(bytesAt(block, at, 4), true); };
    const qint64 mimeEnd = 8 + numberAt(4);
    const qint64 descriptionEnd = mimeEnd + 4 + numberAt(mimeEnd);
    const qint64 dataAt = descriptionEnd + 20;
    const qint64 dataBytes = numberAt(dataAt - 4);
    const PicturePart parts[] = {
        {4, "picturetype"},
        {8, "MIME-length"},
        {mimeEnd, "MIME-data"},
        {mimeEnd + 4, "description-length"},
        {descriptionEnd, "description-data"},
        {descriptionEnd + 4, "picture-width"},
        {descriptionEnd + 8, "picture-height"},
        {descriptionEnd + 12, "color-depth"},
        {descriptionEnd + 16, "indexed-color"},
        {dataAt, "picture-length"},
        {dataAt + dataBytes, "picture-data"},
    };
    for (const PicturePart& part : parts) {
        if (part.end > block.size()) {
            DPRINTF(3, "[FLAC] Inappropriate %s information", part.name);
            return false;
        }
    }
    pixPicture = coverPicture(bytesAt(block, dataAt, dataBytes));
    return true;
}
