#include "tags/picturecost.h"

#include "app/limits.h"
#include "tags/bytesat.h"
#include "tags/coverpicture.h"
#include "tags/jpegframe.h"
#include "tags/touint.h"

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
    int bytesPerPixel = 0; ///< 0 for those of the decoded image
    int fileBytes = limits::pictureBytes;
};

/**
 * Formats that hold one picture of the size that their header gives. Containers of further image files
 * (icons, vector graphics, tiles) may unpack to any size, whatever their header says.
 */
constexpr Format formats[] = {
    {"bmp"},
    {"gif", 8, limits::rarePictureBytes},
    {"jpeg"},
    {"pbm", 0, limits::rarePictureBytes},
    {"pgm", 0, limits::rarePictureBytes},
    {"png"},
    {"ppm", 0, limits::rarePictureBytes},
    {"tga", 8, limits::rarePictureBytes},
    {"wbmp", 0, limits::rarePictureBytes},
    {"webp", 16, limits::rarePictureBytes},
    {"xbm", 0, limits::textPictureBytes},
    {"xpm", 4, limits::textPictureBytes},
};

/** Of a note the toolkit keeps copies, as bytes and as text. */
constexpr int noteCopies = 4;
/** A block coded arithmetically costs as much as so many others. */
constexpr int arithmeticWeight = 256;
/** The decoder makes so many parts of eight of each side, or all. */
constexpr int reductionSteps = 8;

const Format* formatOf(const QByteArray& name)
{
    const auto* format = std::find_if(std::begin(formats), std::end(formats),
                                      [&name](const Format& row) { return name.startsWith(row.name); });
    return format == std::end(formats) ? nullptr : format;
}

qint64 area(QSize size)
{
    return qint64(size.width()) * size.height();
}

/** Of a whole picture that is decoded pixel by pixel. */
bool fits(qint64 pixels, qint64 bytes)
{
    return pixels <= limits::picturePixels && bytes <= limits::pictureBytes;
}

qint64 pixelBytes(QImage::Format format, qint64 pixels)
{
    constexpr int unknownBits = 32;
    const bool isKnown = format > QImage::Format_Invalid && format < QImage::NImageFormats;
    return pixels * (isKnown ? QImage::toPixelFormat(format).bitsPerPixel() : unknownBits) / 8;
}

/** Whether the time for a JPEG's scans and the memory for what stands beside its pixels is bounded. */
bool isReadable(const JpegFrame& frame, qint64 fileBytes)
{
    const qint64 blocks = frame.blocks * (frame.isArithmetic ? arithmeticWeight : 1);
    return frame.scans <= limits::jpegScans && blocks * frame.scans <= limits::jpegBlocks
        && frame.notes <= limits::jpegNotes
        && (!frame.holdsCoefficients || fileBytes <= limits::jpegScansBytes);
}

/** The size to which the toolkit lets the decoder reduce a picture that is asked for as a cover. */
QSize reducedSize(QSize size)
{
    const double factor = std::min(size.width(), size.height()) / double(coverPixels);
    const int parts = std::clamp(int(std::ceil(reductionSteps / factor)), 1, reductionSteps);
    const auto reduced = [parts](int side) { return (side * parts + reductionSteps - 1) / reductionSteps; };
    return {reduced(size.width()), reduced(size.height())};
}

/** The markers are read before the toolkit reads them: it may take minutes over a million remarks. */
Decoding affordableJpeg(const QImageReader& reader, const QByteArray& file, qint64 heldBytes)
{
    constexpr qint64 coefficientBytes = 64 * sizeof(qint16);
    const auto frame = jpegFrame(file);
    if (!frame || frame->pixels.isEmpty() || !isReadable(*frame, file.size()))
        return Decoding::None;
    if (!reader.size().isValid())
        return Decoding::None; // the pixel format of a damaged header may be anything
    const QImage::Format format = reader.imageFormat();
    const qint64 beside = heldBytes + frame->noteBytes * noteCopies
        + (frame->holdsCoefficients ? frame->blocks * coefficientBytes : 0);
    const auto fitsAt = [&](QSize size) { return fits(area(size), beside + pixelBytes(format, area(size))); };
    if (area(frame->pixels) <= limits::jpegPixels && fitsAt(frame->pixels))
        return Decoding::Whole;
    return fitsAt(reducedSize(frame->pixels)) ? Decoding::Reduced : Decoding::None;
}

/** A GIF is drawn on a screen, whose size its bytes 6 to 9 give. */
QSize gifScreen(const QByteArray& imageFile)
{
    return {int(toUInt(bytesAt(imageFile, 6, 2), false)), int(toUInt(bytesAt(imageFile, 8, 2), false))};
}

} // namespace

QSize decodedSize(const QImageReader& reader, const QByteArray& imageFile)
{
    const QSize size = reader.size();
    if (reader.format() == "gif")
        return size.expandedTo(gifScreen(imageFile));
    if (reader.format() == "bmp" && size.height() > std::numeric_limits<int>::min()) // stored from the top
        return {size.width(), std::abs(size.height())};
    return size;
}

Decoding affordableDecoding(const QImageReader& reader, const QByteArray& imageFile, qint64 heldBytes)
{
    const Format* format = formatOf(reader.format());
    if (!format || imageFile.size() > format->fileBytes)
        return Decoding::None;
    if (reader.format() == "jpeg")
        return affordableJpeg(reader, imageFile, heldBytes);
    const QSize size = decodedSize(reader, imageFile);
    if (!size.isValid())
        return Decoding::None; // the pixel format of a damaged header may be anything
    const qint64 pixels = area(size);
    const qint64 bytes =
        format->bytesPerPixel ? pixels * format->bytesPerPixel : pixelBytes(reader.imageFormat(), pixels);
    return fits(pixels, heldBytes + bytes) ? Decoding::Whole : Decoding::None;
}
