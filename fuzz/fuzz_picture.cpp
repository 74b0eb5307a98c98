#include "fuzz/harness.h"
#include "tags/coverpicture.h"
#include "tags/jpegframe.h"

#include <QBuffer>
#include <QImageReader>

namespace {

/** So small that the toolkit, too, is done at once. */
constexpr int mostPixels = 256 * 256;
constexpr int mostScans = 64;
constexpr int coverSide = 100;

bool isSmall(const QByteArray& file)
{
    QBuffer buffer;
    buffer.setData(file);
    buffer.open(QIODevice::ReadOnly);
    const QSize size = QImageReader(&buffer).size();
    return size.isValid() && qint64(size.width()) * size.height() <= mostPixels;
}

bool isOrdinaryJpeg(const QByteArray& file)
{
    const auto frame = jpegFrame(file);
    return file.startsWith("\xFF\xD8") && frame && frame->scans <= mostScans && !frame->isArithmetic;
}

/** The toolkit takes three channels for four in a PNG of 16 bits that names a transparent colour. */
bool isPngThatTheToolkitReads(const QByteArray& file)
{
    constexpr int depthAt = 24;
    return file.startsWith("\x89PNG") && !(file.at(depthAt) == 16 && file.contains("tRNS"));
}

QImage pixels(const QPixmap& pixmap)
{
    return pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

} // namespace

/** The input is an image file: what the toolkit makes of a JPEG or a PNG is what shows. */
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray file = Harness::bytesOf(data, size);
    const QPixmap cover = coverPicture(file);
    if (!isSmall(file) || !(isOrdinaryJpeg(file) || isPngThatTheToolkitReads(file)))
        return 0;
    QPixmap expected;
    if (!expected.loadFromData(file))
        return 0; // it wants a PNG's pixels to be packed to the end, where the last row is enough here
    expected = expected.scaled(coverSide, coverSide, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    if (pixels(cover) != pixels(expected))
        Harness::report(QStringLiteral("the cover is not what the toolkit shows"));
    return 0;
}
