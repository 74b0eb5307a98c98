#include "widgets/pictureflowsurface.h"

#include "app/pixels.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

/** How a reflection looks. */
struct ReflectionStyle {
    double reach; ///< where it ends, as a part of the slide's height
    double strength; ///< share of the image at the slide's foot; the rest is ground
    bool fading; ///< towards the ground at its end
    int softness; ///< times that the far end is smoothed
};

constexpr ReflectionStyle reflectionStyles[] = {
    {0.0, 0.0, false, 0}, // none
    {1.0, 0.5, false, 0}, // mirror
    {0.7, 0.5, true, 0}, // fading mirror
    {0.7, 0.5, true, 12}, // fading and softened mirror
};

const ReflectionStyle& styleOf(PictureFlow::ReflectionEffect effect)
{
    const int number = int(effect);
    const bool known = number >= 0 && number < int(std::size(reflectionStyles));
    return reflectionStyles[known ? number : 0];
}

QRgb* rowOf(QImage& image, int y)
{
    return pixelsOf(image.scanLine(y));
}

const QRgb* rowOf(const QImage& image, int y)
{
    return pixelsOf(image.constScanLine(y));
}

/** The mean of three pixels of which the middle one counts twice. */
QRgb smoothed(QRgb before, QRgb middle, QRgb after)
{
    constexpr QRgb twoChannels = 0x00FF00FF;
    constexpr QRgb half = 0x00020002;
    const auto mean = [](QRgb a, QRgb b, QRgb c) {
        return ((a & twoChannels) + 2 * (b & twoChannels) + (c & twoChannels) + half) >> 2 & twoChannels;
    };
    return mean(before, middle, after) | mean(before >> 8, middle >> 8, after >> 8) << 8;
}

/** Smooths the rows from `first` down in both directions; the pixels at the edges count beyond them too. */
void smoothRows(QImage& image, int first)
{
    const QImage before = image.copy();
    const int last = image.height() - 1;
    const int right = image.width() - 1;
    std::vector<QRgb> down(std::size_t(image.width()));
    for (int y = first; y <= last; ++y) {
        const QRgb* const above = rowOf(before, std::max(y - 1, 0));
        const QRgb* const middle = rowOf(before, y);
        const QRgb* const below = rowOf(before, std::min(y + 1, last));
        for (int x = 0; x <= right; ++x)
            down[std::size_t(x)] = smoothed(above[x], middle[x], below[x]);
        QRgb* row = rowOf(image, y);
        for (int x = 0; x <= right; ++x)
            row[x] = smoothed(down[std::size_t(std::max(x - 1, 0))], down[std::size_t(x)],
                              down[std::size_t(std::min(x + 1, right))]);
    }
}

/** Softens the image more the farther down: every pass begins a little lower than the one before. */
void softenDownwards(QImage& image, int passes)
{
    for (int pass = 0; pass < passes; ++pass)
        smoothRows(image, 1 + pass * image.height() / passes);
}

/** `share` 256ths of a premultiplied pixel over an opaque ground that is seen through where the pixel is
 * clear. */
QRgb mixedWithGround(QRgb pixel, QRgb ground, int share)
{
    const int alpha = qAlpha(pixel);
    const auto mix = [&](int colour, int groundColour) {
        return (colour * share * 255 + groundColour * alpha * (256 - share) + 32640) / (256 * 255);
    };
    return qRgba(mix(qRed(pixel), qRed(ground)), mix(qGreen(pixel), qGreen(ground)),
                 mix(qBlue(pixel), qBlue(ground)), alpha);
}

void fadeIntoGround(QImage& image, const ReflectionStyle& style, QRgb ground)
{
    for (int y = 0; y < image.height(); ++y) {
        const double rest = style.fading ? 1.0 - (y + 0.5) / image.height() : 1.0;
        const int share = int(std::lround(256 * style.strength * rest * rest));
        QRgb* row = rowOf(image, y);
        std::transform(row, row + image.width(), row,
                       [&](QRgb pixel) { return mixedWithGround(pixel, ground, share); });
    }
}

QImage reflectionOf(const QImage& slide, const ReflectionStyle& style, QRgb ground)
{
    const int rows = int(std::lround(slide.height() * style.reach));
    if (rows == 0)
        return QImage();
    QImage reflection = slide.mirrored(false, true).copy(0, 0, slide.width(), rows);
    softenDownwards(reflection, style.softness);
    fadeIntoGround(reflection, style, ground);
    return reflection;
}

} // namespace

PictureFlowSurface::PictureFlowSurface(const QImage& image, QSize slideSize,
                                       PictureFlow::ReflectionEffect effect, QRgb ground)
{
    if (image.isNull() || slideSize.isEmpty())
        return;
    const QSize size = slideSize.boundedTo(QSize(maximumSide, maximumSide));
    const QImage slide = image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                             .scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QImage reflection = reflectionOf(slide, styleOf(effect), ground);
    m_width = slide.width();
    m_slideHeight = slide.height();
    m_height = slide.height() + reflection.height();
    m_pixels.resize(std::size_t(m_width) * std::size_t(columnStride()));
    store(slide, 0);
    store(reflection, m_slideHeight);
    countTranslucentColumns();
}

bool PictureFlowSurface::isOpaque(PixelSpan columns) const
{
    const int first = columns.begin / PixelSpan::one;
    const int last = (columns.end - 1) / PixelSpan::one;
    return m_translucentBefore[std::size_t(last) + 1] == m_translucentBefore[std::size_t(first)];
}

void PictureFlowSurface::store(const QImage& rows, int firstRow)
{
    const auto stride = std::size_t(columnStride());
    for (int y = 0; y < rows.height(); ++y) {
        const QRgb* row = rowOf(rows, y);
        for (int x = 0; x < m_width; ++x)
            m_pixels[std::size_t(x) * stride + std::size_t(firstRow + y)] = widePixel(row[x]);
    }
}

void PictureFlowSurface::countTranslucentColumns()
{
    const auto translucent = [](WidePixel pixel) { return qAlpha(narrowPixel(pixel)) != 255; };
    m_translucentBefore.assign(1, 0);
    for (int x = 0; x < m_width; ++x) {
        const WidePixel* pixels = column(x);
        const bool any = std::any_of(pixels, pixels + m_height, translucent);
        m_translucentBefore.push_back(m_translucentBefore.back() + (any ? 1 : 0));
    }
}
