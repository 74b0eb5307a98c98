#include "tags/coverpicture.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <iterator>

namespace {

/** More decoded pixels than this do not fit beside the rest of the unit's programs. */
constexpr qint64 maxDecodedBytes = 128 * 1024 * 1024;
/** Whatever a file stores, the toolkit shows it from pixels at least this wide. */
constexpr int minPixelBits = 32;

/**
 * Formats that hold one picture of the size that their header gives. Containers of further image files
 * (icons, vector graphics, tiles) may unpack to any size, whatever their header says.
 */
constexpr const char* plainFormats[] = {
    "bmp", "gif", "jpeg", "pbm", "pgm", "png", "ppm", "tga", "wbmp", "webp", "xbm", "xpm",
};

bool isPlain(const QByteArray& format)
{
    return std::any_of(std::begin(plainFormats), std::end(plainFormats),
                       [&format](const char* plain) { return format.startsWith(plain); });
}

/** Whether the picture may be decoded, as far as its header says. */
bool isBounded(const QImageReader& reader)
{
    const QSize size = reader.size();
    const int bits = std::max<int>(minPixelBits, QImage::toPixelFormat(reader.imageFormat()).bitsPerPixel());
    return size.isValid() && qint64(size.width()) * size.height() <= maxDecodedBytes * 8 / bits;
}

} // namespace

QPixmap coverPicture(const QByteArray& imageFile)
{
    QBuffer buffer;
    buffer.setData(imageFile);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!isPlain(reader.format()) || !isBounded(reader))
        return {};
    const QPixmap picture = QPixmap::fromImage(reader.read());
    if (picture.isNull())
        return {};
    return picture.scaled(coverPixels, coverPixels, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}
