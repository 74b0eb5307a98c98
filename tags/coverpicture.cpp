#include "tags/coverpicture.h"

#include "tags/bytesat.h"
#include "tags/pngtexts.h"
#include "tags/touint.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

#include <algorithm>
#include <iterator>

namespace {

/** More decoded pixels than this do not fit beside the rest of the unit's programs. */
constexpr qint64 maxDecodedBytes = 128LL * 1024 * 1024;
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

/** The size that decoding takes. A GIF is drawn on a screen, whose size its bytes 6 to 9 give. */
QSize decodedSize(const QImageReader& reader, const QByteArray& imageFile)
{
    if (reader.format() != "gif")
        return reader.size();
    const QSize screen(int(toUInt(bytesAt(imageFile, 6, 2), false)),
                       int(toUInt(bytesAt(imageFile, 8, 2), false)));
    return reader.size().expandedTo(screen);
}

/** Whether the picture may be decoded, as far as its header says. */
bool isBounded(const QImageReader& reader, const QByteArray& imageFile)
{
    const QSize size = decodedSize(reader, imageFile);
    if (!size.isValid())
        return false; // the pixel format of a damaged header may be anything
    const int bits = std::max<int>(minPixelBits, QImage::toPixelFormat(reader.imageFormat()).bitsPerPixel());
    return qint64(size.width()) * size.height() <= maxDecodedBytes * 8 / bits;
}

/** Of a BMP that breaks off the toolkit leaves the missing rows as the memory was, so it gets a blank one. */
QImage decoded(QImageReader& reader)
{
    QImage image;
    if (reader.format() == "bmp") {
        image = QImage(reader.size(), reader.imageFormat());
        image.fill(0);
    }
    return reader.read(&image) ? image : QImage();
}

} // namespace

QPixmap coverPicture(const QByteArray& imageFile)
{
    QBuffer buffer;
    buffer.setData(withoutPngTexts(imageFile));
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    if (!isPlain(reader.format()) || !isBounded(reader, imageFile))
        return {};
    const QPixmap picture = QPixmap::fromImage(decoded(reader));
    if (picture.isNull())
        return {};
    return picture.scaled(coverPixels, coverPixels, Qt::IgnoreAspectRatio, Qt::FastTransformation);
}
