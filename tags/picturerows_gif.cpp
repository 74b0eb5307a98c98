#include "app/limits.h"
#include "app/pixels.h"
#include "tags/nearestpixels.h"
#include "tags/picturerows.h"

#include <QRect>

#include <algorithm>
#include <array>
#include <cstring>
#include <gif_lib.h>
#include <memory>
#include <utility>
#include <vector>

namespace {

using Palette = std::array<QRgb, 256>;

struct Bytes {
    const char* at;
    qint64 left;
};

int readBytes(GifFileType* file, GifByteType* to, int count)
{
    auto* bytes = static_cast<Bytes*>(file->UserData);
    const int read = int(std::min(qint64(count), bytes->left));
    std::memcpy(to, bytes->at, std::size_t(read));
    bytes->at += read;
    bytes->left -= read;
    return read;
}

struct Close {
    void operator()(GifFileType* file) const { DGifCloseFile(file, nullptr); }
};
using File = std::unique_ptr<GifFileType, Close>;

/** The index that is transparent goes to `transparent` where the extension names one. */
bool readExtension(GifFileType* file, int* transparent)
{
    int code = 0;
    GifByteType* block = nullptr;
    if (DGifGetExtension(file, &code, &block) == GIF_ERROR)
        return false;
    GraphicsControlBlock control;
    if (code == GRAPHICS_EXT_FUNC_CODE && block
        && DGifExtensionToGCB(block[0], block + 1, &control) == GIF_OK)
        *transparent = control.TransparentColor;
    while (block) {
        if (DGifGetExtensionNext(file, &block) == GIF_ERROR)
            return false;
    }
    return true;
}

/** Goes to the first picture; false where there is none. */
bool findPicture(GifFileType* file, int* transparent)
{
    GifRecordType type = UNDEFINED_RECORD_TYPE;
    while (DGifGetRecordType(file, &type) == GIF_OK) {
        if (type == IMAGE_DESC_RECORD_TYPE)
            return DGifGetImageDesc(file) == GIF_OK;
        if (type != EXTENSION_RECORD_TYPE || !readExtension(file, transparent))
            return false;
    }
    return false;
}

/** A file at its first picture; null where there is none. */
File opened(Bytes& bytes, int* transparent)
{
    int error = 0;
    File file(DGifOpen(&bytes, readBytes, &error));
    return file && findPicture(file.get(), transparent) ? std::move(file) : nullptr;
}

/**
 * Whether the decoder empties its table of codes a bounded number of times until it has all pixels. It takes
 * as long for that as for a hundred pixels, and two bits of the file are enough to ask for it.
 */
bool clearsRarely(Bytes bytes)
{
    int unused = NO_TRANSPARENT_COLOR;
    const File file = opened(bytes, &unused);
    const int clear = 1 << bytes.at[-1]; // of the picture's head the last byte is read last
    qint64 pixels = qint64(file->Image.Width) * file->Image.Height; // of which each other code gives some
    int clears = 0;
    for (int code = 0; pixels > 0 && clears <= limits::gifClears; code == clear ? ++clears : --pixels) {
        if (DGifGetLZCodes(file.get(), &code) == GIF_ERROR || code < 0)
            break;
    }
    return clears <= limits::gifClears;
}

/** An index without a colour is transparent. */
Palette paletteOf(const ColorMapObject* map, int transparent)
{
    Palette palette = {};
    for (int i = 0; map && i < map->ColorCount; ++i) {
        const GifColorType& colour = map->Colors[i];
        palette[std::size_t(i)] = qRgba(colour.Red, colour.Green, colour.Blue, i == transparent ? 0 : 255);
    }
    return palette;
}

/** Goes through the rows of a picture in the order of its file until `read` says that there are no more. */
template <typename Read> void forRows(const GifImageDesc& picture, Read read)
{
    struct Pass {
        int first;
        int step;
    };
    constexpr Pass whole[] = {{0, 1}};
    constexpr Pass interlaced[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    const Pass* pass = picture.Interlace ? interlaced : whole;
    const Pass* const end = picture.Interlace ? std::end(interlaced) : std::end(whole);
    for (; pass != end; ++pass) {
        for (int row = pass->first; row < picture.Height; row += pass->step) {
            if (!read(row))
                return;
        }
    }
}

/** What shows where no picture is; the toolkit asks for it only where a picture leaves a part of the screen
 * free. */
QRgb background(const GifFileType& file, QSize screen, int transparent)
{
    const GifImageDesc& picture = file.Image;
    const bool isFree = QRect(picture.Left, picture.Top, picture.Width, picture.Height) != QRect({}, screen);
    const bool isColour = isFree && transparent == NO_TRANSPARENT_COLOR;
    return isColour ? paletteOf(file.SColorMap, transparent)[std::size_t(file.SBackGroundColor)] : 0;
}

/** Up to where the rows break off; null where not even one is there. */
QImage drawn(GifFileType* file, QSize screen, int transparent, QSize size)
{
    const GifImageDesc& picture = file->Image;
    const Palette palette = paletteOf(picture.ColorMap ? picture.ColorMap : file->SColorMap, transparent);
    const bool isOpaque = transparent == NO_TRANSPARENT_COLOR;
    QImage line(screen.width(), 1, isOpaque ? QImage::Format_RGB32 : QImage::Format_ARGB32);
    line.fill(background(*file, screen, transparent));
    NearestPixels pixels(screen, size, line.format());
    for (const int y : pixels.rows())
        pixels.take(y, line);
    std::vector<GifByteType> indices(std::size_t(picture.Width));
    const int shown = std::min(picture.Width, screen.width() - picture.Left);
    bool isEmpty = true;
    forRows(picture, [&](int row) {
        if (DGifGetLine(file, indices.data(), picture.Width) == GIF_ERROR)
            return false;
        QRgb* const pixel = pixelsOf(line.bits());
        for (int x = 0; x < shown; ++x)
            pixel[picture.Left + x] = palette[indices[std::size_t(x)]];
        pixels.take(picture.Top + row, line);
        isEmpty = false;
        return true;
    });
    return isEmpty ? QImage() : pixels.image();
}

bool isAffordable(qint64 width, qint64 height)
{
    return width * height <= limits::picturePixels;
}

} // namespace

QImage PictureRows::gif(const QByteArray& file, QSize size)
{
    const Bytes start = {file.constData(), file.size()};
    Bytes bytes = start;
    int transparent = NO_TRANSPARENT_COLOR;
    const File gif = opened(bytes, &transparent);
    if (!gif)
        return {};
    const GifImageDesc& picture = gif->Image;
    const QSize screen(gif->SWidth > 0 ? gif->SWidth : picture.Left + picture.Width,
                       gif->SHeight > 0 ? gif->SHeight : picture.Top + picture.Height);
    if (screen.isEmpty() || !isAffordable(screen.width(), screen.height())
        || !isAffordable(picture.Width, picture.Height) || !clearsRarely(start))
        return {};
    return drawn(gif.get(), screen, transparent, size);
}
