#include "app/limits.h"
#include "app/pixels.h"
#include "tags/bytesat.h"
#include "tags/lzw.h"
#include "tags/nearestpixels.h"
#include "tags/picturerows.h"
#include "tags/touint.h"

#include <QRect>

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr int noIndex = -1;
constexpr int screenAt = 6;
constexpr quint8 extension = '!';
constexpr quint8 pictureStart = ',';
constexpr quint8 graphicControl = 0xF9;
constexpr int mostIndexBits = 8;

using Palette = std::array<QRgb, 256>;

/** Goes through the bytes of a file; behind its end they are zero. */
class Cursor {
public:
    Cursor(const QByteArray& file, qint64 at)
        : m_file(file)
        , m_at(at)
    {
    }

    int number(int bytes) { return int(toUInt(take(bytes), false)); }
    QByteArray take(qint64 bytes)
    {
        const QByteArray taken = bytesAt(m_file, m_at, bytes);
        m_at += bytes;
        return taken;
    }
    QByteArray rest() { return take(m_file.size()); }

private:
    const QByteArray& m_file;
    qint64 m_at;
};

/** The first picture of a file, and the screen on which it is drawn. */
struct Picture {
    QSize screen;
    QRect place;
    bool isInterlaced = false;
    int transparent = noIndex;
    Palette palette = {}; ///< an index without a colour is transparent
    QRgb background = 0;
    int indexBits = 0;
    QByteArray blocks;
};

/** The lowest bits of `flags` say how long the palette is that follows, the highest whether one does. */
std::optional<Palette> readPalette(Cursor& bytes, int flags)
{
    if ((flags & 0x80) == 0)
        return std::nullopt;
    Palette palette = {};
    const int colours = 2 << (flags & 7);
    for (int i = 0; i < colours; ++i) {
        const int red = bytes.number(1);
        const int green = bytes.number(1);
        palette[std::size_t(i)] = qRgb(red, green, bytes.number(1));
    }
    return palette;
}

void readExtension(Cursor& bytes, Picture& result)
{
    const bool isControl = bytes.number(1) == graphicControl;
    for (int length = bytes.number(1); length > 0; length = bytes.number(1)) {
        const QByteArray block = bytes.take(length);
        if (isControl && block.size() >= 4)
            result.transparent = (block.at(0) & 1) != 0 ? quint8(block.at(3)) : noIndex;
    }
}

void readPlace(Cursor& bytes, Picture& result)
{
    const int left = bytes.number(2);
    const int top = bytes.number(2);
    const int width = bytes.number(2);
    result.place = QRect(left, top, width, bytes.number(2));
    if (result.screen.width() == 0)
        result.screen.setWidth(left + width);
    if (result.screen.height() == 0)
        result.screen.setHeight(top + result.place.height());
}

/** The toolkit shows the background's colour only where the picture leaves a part of the screen free. */
QRgb background(const Picture& picture, const Palette& shared, int index)
{
    const bool isCovered = picture.place == QRect({}, picture.screen);
    return isCovered || picture.transparent != noIndex ? 0 : shared[std::size_t(index)];
}

std::optional<Picture> firstPicture(const QByteArray& file)
{
    Picture result;
    Cursor bytes(file, screenAt);
    const int width = bytes.number(2);
    result.screen = QSize(width, bytes.number(2));
    const int flags = bytes.number(1);
    const int backgroundIndex = bytes.number(1);
    bytes.take(1); // the shape of a pixel
    const Palette shared = readPalette(bytes, flags).value_or(Palette());
    int kind = bytes.number(1);
    for (; kind == extension; kind = bytes.number(1))
        readExtension(bytes, result);
    if (kind != pictureStart)
        return std::nullopt;
    readPlace(bytes, result);
    const int ownFlags = bytes.number(1);
    result.isInterlaced = (ownFlags & 0x40) != 0;
    result.palette = readPalette(bytes, ownFlags).value_or(shared);
    if (result.transparent != noIndex)
        result.palette[std::size_t(result.transparent)] &= qRgba(255, 255, 255, 0);
    result.background = background(result, shared, backgroundIndex);
    result.indexBits = bytes.number(1);
    result.blocks = bytes.rest();
    return result;
}

bool isAffordable(QSize size)
{
    return qint64(size.width()) * size.height() <= limits::picturePixels;
}

/** Goes through the rows of a picture in the order of its file until `read` says that there are no more. */
template <typename Read> void forRows(const Picture& picture, Read read)
{
    struct Pass {
        int first;
        int step;
    };
    constexpr Pass whole[] = {{0, 1}};
    constexpr Pass interlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    const Pass* pass = picture.isInterlaced ? interlaced : whole;
    const Pass* const end = picture.isInterlaced ? std::end(interlaced) : std::end(whole);
    for (; pass != end; ++pass) {
        for (int row = pass->first; row < picture.place.height(); row += pass->step) {
            if (!read(row))
                return;
        }
    }
}

/** Draws the pixels of a row on the screen's line, the background's where the codes break off: false then. */
bool drawRow(Lzw& codes, const Picture& picture, QImage& line)
{
    QRgb* const pixels = pixelsOf(line.bits());
    for (int x = 0; x < picture.place.width(); ++x) {
        const int at = picture.place.left() + x;
        const int index = codes.next();
        if (index < 0) {
            std::fill(pixels + std::min(at, line.width()), pixels + line.width(), picture.background);
            return false;
        }
        if (at < line.width())
            pixels[at] = picture.palette[std::size_t(index)];
    }
    return true;
}

/** As far as the codes go. */
QImage drawn(const Picture& picture, QSize size)
{
    const bool isOpaque = picture.transparent == noIndex;
    QImage line(picture.screen.width(), 1, isOpaque ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    line.fill(picture.background);
    NearestPixels pixels(picture.screen, size, line.format());
    for (const int y : pixels.rows())
        pixels.take(y, line);
    Lzw codes(picture.blocks, picture.indexBits);
    forRows(picture, [&](int row) {
        const bool isWhole = drawRow(codes, picture, line);
        pixels.take(picture.place.top() + row, line);
        return isWhole;
    });
    return pixels.image();
}

} // namespace

QImage PictureRows::gif(const QByteArray& file, QSize size)
{
    const auto picture = firstPicture(file);
    constexpr int oneByte = 2; // behind its length
    const bool isReadable = picture && picture->blocks.size() >= oneByte && picture->indexBits >= 1
        && picture->indexBits <= mostIndexBits && !picture->screen.isEmpty() && isAffordable(picture->screen)
        && isAffordable(picture->place.size());
    return isReadable ? drawn(*picture, size) : QImage();
}
