#include "tags/coverpicture.h"

#include "tags/nearestpixels.h"
#include "tags/picturecost.h"
#include "tags/picturerows.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

namespace {

constexpr QSize coverSize(coverPixels, coverPixels);

/** A format that is decoded row by row, and how its files begin. */
struct RowFormat {
    const char* start;
    QImage (*decoded)(const QByteArray& file, QSize size);
};

constexpr RowFormat rowFormats[] = {
    {"\x89PNG\r\n\x1A\n", PictureRows::png},
    {"\xFF\xD8", PictureRows::jpeg},
    {"GIF87a", PictureRows::gif},
    {"GIF89a", PictureRows::gif},
};

/** Of a BMP that breaks off the toolkit leaves the missing rows as the memory was, so it gets a blank one. */
QImage decodedByToolkit(QImageReader& reader)
{
    QImage image;
    if (reader.format() == "bmp") {
        image = QImage(decodedSize(reader), reader.imageFormat());
        image.fill(0);
    }
    return reader.read(&image) ? image : QImage();
}

QImage decoded(const QByteArray& imageFile)
{
    for (const RowFormat& format : rowFormats) {
        if (imageFile.startsWith(format.start))
            return format.decoded(imageFile, coverSize);
    }
    QBuffer buffer;
    buffer.setData(imageFile);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    return isAffordable(reader, imageFile.size()) ? nearestPixels(decodedByToolkit(reader), coverSize)
                                                  : QImage();
}

} // namespace

QPixmap coverPicture(const QByteArray& imageFile)
{
    // A whole picture as a pixmap would be copied, in threads that may not be there.
    return QPixmap::fromImage(decoded(imageFile));
}
