#include "tags/nearestpixels.h"

#include <cstring>
#include <vector>

namespace {

/** Of each place on a line that is scaled the place from where the toolkit takes its pixel. */
std::vector<int> sources(QSize line, QSize scaledLine)
{
    QImage ruler(line, QImage::Format_RGB32);
    for (int y = 0; y < line.height(); ++y)
        for (int x = 0; x < line.width(); ++x)
            ruler.setPixel(x, y, QRgb(x + y));
    const QImage scaled = ruler.scaled(scaledLine, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    std::vector<int> places;
    for (int y = 0; y < scaled.height(); ++y)
        for (int x = 0; x < scaled.width(); ++x)
            places.push_back(int(scaled.pixel(x, y) & ~qRgb(0, 0, 0)));
    return places;
}

void copyPixel(const QImage& from, QPoint source, QImage& to, QPoint target)
{
    const int bytes = from.depth() / 8;
    if (bytes == 0)
        to.setPixel(target, uint(from.pixelIndex(source)));
    else
        std::memcpy(to.scanLine(target.y()) + target.x() * bytes,
                    from.constScanLine(source.y()) + source.x() * bytes, std::size_t(bytes));
}

} // namespace

QImage nearestPixels(const QImage& image, QSize size)
{
    if (image.isNull())
        return {};
    const std::vector<int> columns = sources({image.width(), 1}, {size.width(), 1});
    const std::vector<int> rows = sources({1, image.height()}, {1, size.height()});
    QImage scaled(size, image.format());
    scaled.setColorTable(image.colorTable());
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            copyPixel(image, {columns[std::size_t(x)], rows[std::size_t(y)]}, scaled, {x, y});
    return scaled;
}
