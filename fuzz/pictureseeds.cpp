#include "fuzz/pictureseeds.h"

#include "tests/tags/jpegbuilder.h"
#include "tests/tags/packedpictures.h"
#include "tests/tags/pictureencoders.h"

using namespace PictureEncoders;

namespace {

constexpr QSize size(33, 21);

QImage stripes(QImage::Format format)
{
    QImage image(size, format);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width() * image.depth() / 8; ++x)
            image.scanLine(y)[x] = uchar(x * 13 + y * y);
    return image;
}

QList<QByteArray> jpegs()
{
    QList<QByteArray> files;
    for (const bool isProgressive : {false, true}) {
        JpegKind kind;
        kind.isProgressive = isProgressive;
        files += jpegOf(stripes(QImage::Format_Grayscale8), kind);
        files += jpegOf(stripes(QImage::Format_RGB888), kind);
        kind.across = kind.down = 2;
        files += jpegOf(stripes(QImage::Format_RGB888), kind);
        kind.restartRows = 1;
        kind.space = JCS_YCCK;
        files += jpegOf(stripes(QImage::Format_RGB32), kind);
    }
    JpegKind oneByOne;
    oneByOne.isOneByOne = true;
    JpegKind arithmetic;
    arithmetic.isArithmetic = arithmetic.isProgressive = true;
    return files << jpegOf(stripes(QImage::Format_RGB888), oneByOne)
                 << jpegOf(stripes(QImage::Format_RGB888), arithmetic)
                 << JpegBuilder::jpeg(JpegBuilder::Baseline, size, "\x11\x11");
}

QList<QByteArray> pngs()
{
    QByteArray rows;
    for (int i = 0; i < size.width() * size.height() * 8; ++i)
        rows += char(i * i / 64);
    QList<QByteArray> files;
    for (const bool isInterlaced : {false, true}) {
        for (const int type : {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_PALETTE, PNG_COLOR_TYPE_RGB_ALPHA})
            files += pngOf(size, rows, {type, 8, isInterlaced});
        files += pngOf(size, rows, {PNG_COLOR_TYPE_PALETTE, 2, isInterlaced, true});
        files += pngOf(size, rows, {PNG_COLOR_TYPE_RGB, 16, isInterlaced});
    }
    return files << PackedPictures::png(10, 2);
}

QList<QByteArray> gifs()
{
    QByteArray rows;
    for (int i = 0; i < size.width() * size.height(); ++i)
        rows += char(i * i / 64 % 128);
    const QRect all({}, size);
    const QRect part(3, 4, 20, 15);
    return {gifOf(rows, {size, all}), gifOf(rows, {size, part, true, 7}),
            gifOf(rows, {size, part, false, NO_TRANSPARENT_COLOR, 9, false, true}),
            PackedPictures::gif({10, 10}, {60, 60}, 40)};
}

} // namespace

QList<QByteArray> pictureSeeds()
{
    return jpegs() + pngs() + gifs();
}
