#include "tags/picturecost.h"

#include "app/limits.h"

#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

/** What decoding takes of a format. */
struct Format {
    const char* name;
    int bytesPerPixel; ///< 0 for those of the decoded image
    int fileBytes;
};

/**
 * Formats that hold one picture of the size that their header gives. Containers of further image files
 * (icons, vector graphics, tiles) may unpack to any size, whatever their header says.
 */
constexpr Format formats[] = {
    {"bmp", 0, limits::rarePictureBytes}, {"pbm", 0, limits::rarePictureBytes},
    {"pgm", 0, limits::rarePictureBytes}, {"ppm", 0, limits::rarePictureBytes},
    {"tga", 8, limits::rarePictureBytes}, {"wbmp", 0, limits::rarePictureBytes},
    {"xbm", 0, limits::textPictureBytes}, {"xpm", 4, limits::textPictureBytes},
};

const Format* formatOf(const QByteArray& name)
{
    const auto* format = std::find_if(std::begin(formats), std::end(formats),
                                      [&name](const Format& row) { return name.startsWith(row.name); });
    return format == std::end(formats) ? nullptr : format;
}

qint64 pixelBytes(QImage::Format format, qint64 pixels)
{
    constexpr int unknownBits = 32;
    const bool isKnown = format > QImage::Format_Invalid && format < QImage::NImageFormats;
    return pixels * (isKnown ? QImage::toPixelFormat(format).bitsPerPixel() : unknownBits) / 8;
}

} // namespace

QSize decodedSize(const QImageReader& reader)
{
    const QSize size = reader.size();
    if (reader.format() == "bmp" && size.height() > std::numeric_limits<int>::min()) // stored from the top
        return {size.width(), std::abs(size.height())};
    return size;
}

bool isAffordable(const QImageReader& reader, qint64 fileBytes)
{
    const Format* format = formatOf(reader.format());
    if (!format || fileBytes > format->fileBytes)
        return false;
    const QSize size = decodedSize(reader);
    if (!size.isValid())
        return false; // where there is no size, the pixel format of a damaged header may be anything
    const qint64 pixels = qint64(size.width()) * size.height();
    const qint64 bytes =
        format->bytesPerPixel ? pixels * format->bytesPerPixel : pixelBytes(reader.imageFormat(), pixels);
    return pixels <= limits::picturePixels && fileBytes + bytes <= limits::pictureBytes;
}
