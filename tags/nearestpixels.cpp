#include "tags/nearestpixels.h"

#include <algorithm>
#include <cstring>

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

NearestPixels::NearestPixels(QSize picture, QSize scaled, QImage::Format format)
    : m_columns(sources({picture.width(), 1}, {scaled.width(), 1}))
    , m_rows(sources({1, picture.height()}, {1, scaled.height()}))
    , m_image(scaled, format)
{
    m_image.fill(0);
}

void NearestPixels::take(int y, const QImage& from, int at)
{
    take(y, from, at, Columns());
}

void NearestPixels::take(int y, const QImage& from, int at, Columns columns)
{
    const auto targets = std::equal_range(m_rows.begin(), m_rows.end(), y);
    for (auto row = targets.first; row != targets.second; ++row) {
        for (std::size_t x = 0; x < m_columns.size(); ++x) {
            const int offset = m_columns[x] - columns.first;
            if (offset >= 0 && offset % columns.step == 0)
                copyPixel(from, {offset / columns.step, at}, m_image, {int(x), int(row - m_rows.begin())});
        }
    }
}

QImage nearestPixels(const QImage& image, QSize size)
{
    if (image.isNull())
        return {};
    NearestPixels pixels(image.size(), size, image.format());
    for (int y = 0; y < image.height(); ++y)
        pixels.take(y, image, y);
    QImage scaled = pixels.image();
    scaled.setColorTable(image.colorTable());
    return scaled;
}
