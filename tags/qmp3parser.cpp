#include "tags/qmp3parser.h"

#include "app/dprintf.h"
#include "app/limits.h"
#include "tags/bytesat.h"
#include "tags/coverpicture.h"
#include "tags/findbytes.h"

#include <QTextCodec>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>

namespace {

constexpr int headerBytes = 10;
constexpr int frameHeaderBytes = 10;
constexpr int id3v1Bytes = 128;
constexpr int id3v1TextBytes = 30;

struct TextFrame {
    const char* id;
    const char* meaning;
    QString TagInfomation::*text;
};

/** The frames in the order in which they are read and logged. */
constexpr TextFrame textFrames[] = {
    {"TALB", "album", &TagInfomation::strAlbum},
    {"TPE1", "artist", &TagInfomation::strArtist},
    {"TIT2", "title", &TagInfomation::strTitle},
};

struct TextEncoding {
    const char* codec;
    const char* logName;
};

/**
 * By the encoding byte of a text frame; any further value is read as UTF-8 as well. Encoding 0 is Latin-1 by
 * name only: Korean taggers write the local code page there.
 */
constexpr TextEncoding textEncodings[] = {
    {"euc-kr", "( latin01 ) "},
    {"UTF-16", "(utf-16)"},
    {"UTF-8", "(utf-8)"},
};

struct ImageStart {
    const char* mimePart;
    int offset;
};

/** Where image data starts behind an image type of that spelling and an empty description. */
constexpr ImageStart imageStarts[] = {
    {"jpeg", 14},
    {"jpg", 13},
    {"png", 13},
};

struct Id3v1Text {
    QString TagInfomation::*text;
    int offset;
};

constexpr Id3v1Text id3v1Texts[] = {
    {&TagInfomation::strTitle, 3},
    {&TagInfomation::strArtist, 33},
    {&TagInfomation::strAlbum, 63},
};

/** No encoding needs more for the longest text that is shown, and for the mark in front of it. */
constexpr qint64 maxTextBytes = 3LL * limits::textCharacters + 3;

qint64 find(const QByteArray& bytes, std::string_view text)
{
    return findBytes({bytes.constData(), std::size_t(bytes.size())}, text);
}

/** Joins four bytes, the first one highest, each of which carries its low `bits` bits; missing bytes are 0.
 */
quint32 joined(const QByteArray& fourBytes, int bits)
{
    quint32 number = 0;
    for (int i = 0; i < 4; ++i) {
        const quint32 byte = i < fourBytes.size() ? quint8(fourBytes.at(i)) : 0;
        number = (number << bits) | (byte & ((1U << bits) - 1));
    }
    return number;
}

} // namespace

QMP3Parser::QMP3Parser(QObject* parent)
    : QObject(parent)
{
}

QMP3Parser::QMP3Parser(QString strName, QObject* parent)
    : QObject(parent)
{
    ReadFilePath(strName);
}

void QMP3Parser::ReadFilePath(QString strName)
{
    m_info = TagInfomation();
    m_path = strName;
    if (!m_file.openForReading(m_path)) {
        DPRINTF(4, "[ID3] %s", m_file.errorString().toLatin1().constData());
        return;
    }
    if (!Mp3TagParser(m_file.readAtMost(headerBytes)))
        DPRINTF(3, "[ID3] FILE-Tag is failed to initialize");
    m_file.close();
}

bool QMP3Parser::Mp3TagParser(QByteArray header)
{
    if (header.contains("ID3")) {
        readId3v2(header);
        return true;
    }
    emit sgNoAPIC();
    DPRINTF(3, "[ID3] not found ID3v2");
    return readId3v1();
}

void QMP3Parser::readId3v2(const QByteArray& header)
{
    const qint64 bodyBytes = GetTagSize(bytesAt(header, 6, 4));
    QByteArray body = m_file.readAtMost(std::min<qint64>(bodyBytes, limits::tagBytes));
    for (const TextFrame& frame : textFrames) {
        if (const auto content = frameContent(body, frame.id))
            m_info.*frame.text = GetText(*content);
        else
            DPRINTF(3, "[ID3] not found %s(%s)", frame.id, frame.meaning);
    }
    if (auto content = frameContent(body, "APIC")) {
        content->detach();
        body.clear(); // the picture needs the room
        m_info.pixPicture = GetImage(*content);
    } else {
        DPRINTF(3, "[ID3] The MP3-FILE is not include a APIC-DATA");
    }
}

/** The content of the frame whose name comes first in the body, be it inside another frame. */
std::optional<QByteArray> QMP3Parser::frameContent(const QByteArray& body, const char* id)
{
    const qint64 at = find(body, id);
    if (at < 0)
        return std::nullopt;
    const quint32 size = GetFrameSize(bytesAt(body, at + 4, 4));
    return bytesAt(body, at + frameHeaderBytes, size);
}

bool QMP3Parser::readId3v1()
{
    if (m_file.size() >= id3v1Bytes)
        m_file.seek(m_file.size() - id3v1Bytes);
    const QByteArray tag = m_file.readAtMost(id3v1Bytes);
    const qint64 at = find(tag, "TAG");
    if (at < 0) {
        DPRINTF(3, "[ID3] ID3 find error");
        return false;
    }
    DPRINTF(2, "[ID3] ID3v1");
    const QTextCodec* codec = QTextCodec::codecForName("UTF-8");
    for (const Id3v1Text& text : id3v1Texts)
        m_info.*text.text = codec->toUnicode(bytesAt(tag, at + text.offset, id3v1TextBytes));
    m_info.pixPicture = QPixmap();
    return true;
}

quint32 QMP3Parser::GetTagSize(QByteArray fourBytes)
{
    return joined(fourBytes, 7);
}

quint32 QMP3Parser::GetFrameSize(QByteArray fourBytes)
{
    const quint32 size = joined(fourBytes, 8);
    // a size from half of the range on shows negative
    DPRINTF(1, "[ID3] MP3 Tag, Frame Size [ %d ]", int(size));
    return size;
}

QString QMP3Parser::GetText(QByteArray content)
{
    const std::size_t number = content.isEmpty() ? 0 : quint8(content.at(0));
    const TextEncoding& encoding = textEncodings[std::min(number, std::size(textEncodings) - 1)];
    const QByteArray bytes = bytesAt(content, 1, maxTextBytes);
    const std::unique_ptr<QTextDecoder> decoder(QTextCodec::codecForName(encoding.codec)->makeDecoder());
    QString text = decoder->toUnicode(bytes).left(limits::textCharacters);
    DPRINTF(2, "[ID3] MP3 Tag %s[ %s ] ", encoding.logName, text.toUtf8().constData());
    return text;
}

QPixmap QMP3Parser::GetImage(QByteArray content)
{
    for (const ImageStart& start : imageStarts) {
        if (find(content, start.mimePart) >= 0)
            return coverPicture(bytesAt(content, start.offset, content.size()));
    }
    return {};
}
