#include "tags/coverpicture.h"

#include "tags/nearestpixels.h"
#include "tags/picturecost.h"
#include "tags/pngtexts.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

namespace {

constexpr QSize coverSize(coverPixels, coverPixels);
/** Below 50 the toolkit takes the nearest pixels of what the decoder has reduced. */
constexpr int unsmoothedQuality = 49;

/** Of a BMP that breaks off the toolkit leaves the missing rows as the memory was, so it gets a blank one. */
QImage decoded(QImageReader& reader, const QByteArray& imageFile)
{
    QImage image;
    if (reader.format() == "bmp") {
        image = QImage(decodedSize(reader, imageFile), reader.imageFormat());
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
    const bool isCopied = buffer.data().constData() != imageFile.constData();
    const Decoding decoding =
        affordableDecoding(reader, buffer.data(), imageFile.size() * (isCopied ? 2 : 1));
    if (decoding == Decoding::None)
        return {};
    if (decoding == Decoding::Reduced) {
        reader.setScaledSize(coverSize);
        reader.setQuality(unsmoothedQuality);
    }
    // A whole picture as a pixmap would be copied, in threads that may not be there.
    return QPixmap::fromImage(nearestPixels(decoded(reader, buffer.data()), coverSize));
}
