#pragma once

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QList>

/**
 * Builds media files and their parts byte by byte: ID3v2 and ID3v1 tags, FLAC metadata, Ogg pages. Sizes are
 * right unless a function takes a claimed one. The audio behind the tags is left out; no reader looks at it.
 */
namespace MediaBuilder {

using Bytes = QByteArray;

inline Bytes bigEndian(quint32 number, int bytes = 4)
{
    Bytes result;
    for (int i = bytes - 1; i >= 0; --i)
        result.append(char(number >> (i * 8)));
    return result;
}

inline Bytes littleEndian(quint32 number)
{
    Bytes result;
    for (int i = 0; i < 4; ++i)
        result.append(char(number >> (i * 8)));
    return result;
}

/** Four bytes of seven bits each, as the size of an ID3v2 tag is written. */
inline Bytes syncSafe(quint32 number)
{
    Bytes result;
    for (int i = 3; i >= 0; --i)
        result.append(char((number >> (i * 7)) & 0x7F));
    return result;
}

/** A string literal with its embedded zero bytes, without the one at its end. */
template <int Size> Bytes bytesOf(const char (&text)[Size])
{
    return Bytes(text, Size - 1);
}

/** An image file such as "JPEG" or "PNG" with a gradient, so that every pixel of it is told apart. */
inline Bytes imageFile(const char* format, int width = 160, int height = 120, int hue = 0)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x * 255 / width, y * 255 / height, hue));
    }
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, format))
        qFatal("no image plugin writes %s", format);
    return buffer.data();
}

// ID3

/** A frame of ID3v2.3, whose size is a plain number, with a claimed size. */
inline Bytes frameClaiming(const char* id, quint32 size, const Bytes& content)
{
    return Bytes(id, 4) + bigEndian(size) + Bytes(2, '\0') + content;
}

inline Bytes frame(const char* id, const Bytes& content)
{
    return frameClaiming(id, quint32(content.size()), content);
}

inline Bytes textFrame(const char* id, int encoding, const Bytes& text)
{
    return frame(id, Bytes(1, char(encoding)) + text);
}

/** The content of an APIC frame: a front cover with a Latin-1 description. */
inline Bytes pictureContent(const Bytes& mime, const Bytes& image, const Bytes& description = Bytes())
{
    return Bytes(1, '\0') + mime + Bytes(1, '\0') + Bytes(1, '\3') + description + Bytes(1, '\0') + image;
}

inline Bytes pictureFrame(const Bytes& mime, const Bytes& image, const Bytes& description = Bytes())
{
    return frame("APIC", pictureContent(mime, image, description));
}

inline Bytes id3v2Claiming(quint32 size, const Bytes& body, int version = 3)
{
    return "ID3" + Bytes(1, char(version)) + Bytes(2, '\0') + syncSafe(size) + body;
}

inline Bytes id3v2(const Bytes& body, int version = 3)
{
    return id3v2Claiming(quint32(body.size()), body, version);
}

/** The 128 bytes of an ID3v1 tag, the texts padded with zero bytes. */
inline Bytes id3v1(const Bytes& title, const Bytes& artist, const Bytes& album)
{
    Bytes tag = "TAG" + title.leftJustified(30, '\0', true) + artist.leftJustified(30, '\0', true)
        + album.leftJustified(30, '\0', true);
    return tag.leftJustified(128, '\0');
}

// Vorbis comments

inline Bytes vorbisClaiming(const Bytes& vendor, quint32 count, const QList<Bytes>& comments)
{
    Bytes block = littleEndian(quint32(vendor.size())) + vendor + littleEndian(count);
    for (const Bytes& comment : comments)
        block += littleEndian(quint32(comment.size())) + comment;
    return block;
}

inline Bytes vorbisComments(const QList<Bytes>& comments, const Bytes& vendor = "maker 1.0")
{
    return vorbisClaiming(vendor, quint32(comments.size()), comments);
}

// FLAC

enum FlacBlock { StreamInfo = 0, Padding = 1, Comment = 4, Picture = 6 };

inline Bytes flacHeader(int type, quint32 length, bool isLast = false)
{
    return Bytes(1, char(type | (isLast ? 0x80 : 0))) + bigEndian(length, 3);
}

inline Bytes flacBlock(int type, const Bytes& body, bool isLast = false)
{
    return flacHeader(type, quint32(body.size()), isLast) + body;
}

/** The marker and a first block; a file that ends with it says so in `isLast`. */
inline Bytes flacStart(bool isLast = false)
{
    return "fLaC" + flacBlock(StreamInfo, Bytes(34, '\x22'), isLast);
}

/** A front cover of 160 by 120 pixels; what it says about itself is not read. */
inline Bytes flacPicture(const Bytes& mime, const Bytes& image, const Bytes& description = Bytes())
{
    return bigEndian(3) + bigEndian(quint32(mime.size())) + mime + bigEndian(quint32(description.size()))
        + description + bigEndian(160) + bigEndian(120) + bigEndian(24) + bigEndian(0)
        + bigEndian(quint32(image.size())) + image;
}

// Ogg

/** The lacing values of packets; a packet that continues on the next page ends in 255. */
inline Bytes lacing(const QList<int>& sizes, bool continues = false)
{
    Bytes values;
    for (int i = 0; i < sizes.size(); ++i) {
        values += Bytes(sizes.at(i) / 255, '\xFF');
        if (!continues || i + 1 < sizes.size())
            values.append(char(sizes.at(i) % 255));
    }
    return values;
}

inline Bytes oggHeader(const Bytes& lacingValues)
{
    return "OggS" + Bytes(22, '\0') + Bytes(1, char(lacingValues.size())) + lacingValues;
}

/** A page; with `continues` its last packet, a multiple of 255 bytes, goes on in the next page. */
inline Bytes oggPage(const QList<Bytes>& packets, bool continues = false)
{
    QList<int> sizes;
    Bytes body;
    for (const Bytes& packet : packets) {
        sizes << int(packet.size());
        body += packet;
    }
    return oggHeader(lacing(sizes, continues)) + body;
}

inline Bytes oggIdentification()
{
    return bytesOf("\1vorbis") + Bytes(23, '\x11');
}

/** A comment header packet with the framing bit behind it. */
inline Bytes oggComment(const Bytes& block)
{
    return bytesOf("\3vorbis") + block + Bytes(1, '\1');
}

} // namespace MediaBuilder
