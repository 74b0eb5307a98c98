#include "widgets/pictureflowpainter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace {

constexpr int one = PixelSpan::one;
constexpr int opaque = 256;
constexpr WidePixel channelMask = 0x00FF00FF00FF00FF;
constexpr WidePixel halfOfEach = 0x0080008000800080;

// Two pixels at once.
using TwoPixels [[gnu::vector_size(16)]] = std::uint16_t;
constexpr int pixelsAtOnce = PictureFlowSurface::rowAlignment;
static_assert(sizeof(TwoPixels) == pixelsAtOnce * sizeof(WidePixel), "a whole number of vectors a column");

TwoPixels load(const WidePixel* pixels)
{
    TwoPixels result;
    std::memcpy(&result, pixels, sizeof result);
    return result;
}

void store(TwoPixels value, WidePixel* pixels)
{
    std::memcpy(pixels, &value, sizeof value);
}

/** The weights of the pixels that a span covers, from `first` on; they add up to 256. */
struct Taps {
    explicit Taps(PixelSpan span);

    int first;
    std::vector<TwoPixels> weights;
};

Taps::Taps(PixelSpan span)
    : first(span.begin / one)
{
    const double factor = double(opaque) / span.length();
    weights.reserve(std::size_t(span.length() / one) + 2);
    for (int pixel = first, sum = 0; sum < opaque; ++pixel) {
        const int covered = std::min(opaque, int(((pixel + 1) * double(one) - span.begin) * factor + 0.5));
        weights.push_back(TwoPixels{} + std::uint16_t(covered - sum));
        sum = covered;
    }
}

/** Mixes rows of pixels: the sum of `count` of them, `stride` pixels apart, by their weights. */
void mixMany(const WidePixel* source, std::ptrdiff_t stride, const std::vector<TwoPixels>& weights, int rows,
             WidePixel* target)
{
    for (int row = 0; row < rows; row += pixelsAtOnce) {
        TwoPixels sum = TwoPixels{} + std::uint16_t(opaque / 2);
        const WidePixel* pixels = source + row;
        for (auto it = weights.begin(); it != weights.end(); ++it, pixels += stride)
            sum += load(pixels) * *it;
        store(sum >> 8, target + row);
    }
}

/** The same for a few, with the loop over them unrolled. */
template <int count>
void mixFew(const WidePixel* source, std::ptrdiff_t stride, const std::vector<TwoPixels>& weights, int rows,
            WidePixel* target)
{
    TwoPixels w[count];
    std::copy_n(weights.begin(), count, w);
    for (int row = 0; row < rows; row += pixelsAtOnce) {
        TwoPixels sum = TwoPixels{} + std::uint16_t(opaque / 2);
#pragma GCC unroll 4
        for (int k = 0; k < count; ++k)
            sum += load(source + row + k * stride) * w[k];
        store(sum >> 8, target + row);
    }
}

using Mixer = void (*)(const WidePixel*, std::ptrdiff_t, const std::vector<TwoPixels>&, int, WidePixel*);
constexpr Mixer mixers[] = {mixMany, mixFew<1>, mixFew<2>, mixFew<3>, mixFew<4>};

void mix(const WidePixel* source, std::ptrdiff_t stride, const Taps& taps, int rows, WidePixel* target)
{
    const std::size_t count = taps.weights.size();
    mixers[count < std::size(mixers) ? count : 0](source, stride, taps.weights, rows, target);
}

/** The pixel between the rows that `begin` lies on, each channel rounded. */
inline WidePixel pixelAt(const WidePixel* rows, unsigned begin)
{
    const WidePixel* row = rows + begin / one;
    const WidePixel fraction = begin / (one / opaque) % opaque;
    return ((row[0] << 8) + (row[1] - row[0]) * fraction + halfOfEach) >> 8 & channelMask;
}

/** `weight` 256ths of a pixel over an opaque one. */
QRgb blended(WidePixel pixel, QRgb under, int blend)
{
    const auto weight = unsigned(blend);
    const auto alpha = unsigned(pixel >> 48);
    const unsigned covered = ((alpha + (alpha >> 7)) * weight + opaque - 1) / opaque;
    const WidePixel sum = pixel * weight + widePixel(under) * (opaque - covered) + halfOfEach;
    return narrowPixel(sum >> 8 & channelMask) | 0xFF000000;
}

} // namespace

int coverage(PixelSpan span, int pixels)
{
    const int inside = std::min(span.end, pixels * one) - std::max(span.begin, 0);
    if (inside >= span.length())
        return opaque;
    return inside <= 0 ? 0 : int(double(inside) * opaque / span.length());
}

PixelSpan sampledPart(PixelSpan span, int pixels)
{
    const int limit = pixels * one;
    const int begin = std::max(span.begin, 0);
    const int end = std::min(span.end, limit);
    if (end - begin >= one)
        return {begin, end};
    const int start = std::clamp((begin + end - one) / 2, 0, limit - one);
    return {start, start + one};
}

PictureFlowPainter::PictureFlowPainter(QImage& frame, const PictureFlowSurface& surface)
    : m_bits(reinterpret_cast<QRgb*>(frame.bits()))
    , m_stride(frame.bytesPerLine() / std::ptrdiff_t(sizeof(QRgb)))
    , m_frameHeight(frame.height())
    , m_surface(surface)
    , m_rows(2 * std::size_t(surface.columnStride()) + 2 * pixelsAtOnce)
{
}

void PictureFlowPainter::paint(const ProjectedColumn& column)
{
    mixColumns(column.columns);
    mixRows(std::min(column.rowsPerPixel, m_surface.height() * one));
    paintRows(column);
}

void PictureFlowPainter::mixColumns(PixelSpan columns)
{
    const Taps taps(columns);
    mix(m_surface.column(taps.first), m_surface.columnStride(), taps, m_surface.height(), m_rows.data());
}

/** Makes each row the mean of a box of rows from it down; the last row counts on below. */
void PictureFlowPainter::mixRows(int box)
{
    if (box <= one)
        return;
    const Taps taps({0, box});
    const auto height = std::size_t(m_surface.height());
    std::fill_n(m_rows.begin() + m_surface.height(), taps.weights.size() + pixelsAtOnce, m_rows[height - 1]);
    mix(m_rows.data(), 1, taps, m_surface.height(), m_rows.data());
}

void PictureFlowPainter::paintRows(const ProjectedColumn& column)
{
    const int limit = m_surface.height() * one;
    const int step = column.rowsPerPixel;
    const int box = std::clamp(step, one, limit);
    const double bottom = column.top + double(limit) / step;
    int y = int(std::max(0.0, std::floor(column.top)));
    const int end = int(std::min(double(m_frameHeight), std::ceil(bottom)));
    PixelSpan span;
    span.begin = int(std::lround((y - column.top) * step));
    QRgb* pixel = m_bits + y * m_stride + column.x;
    while (y < end) {
        int begin = span.begin - (box - step) / 2;
        int count = 1;
        if (column.solid && begin >= 0 && begin + box <= limit) {
            count = std::min(end - y, (limit - box - begin) / step + 1);
            paintInside(pixel, begin, step, count);
        } else {
            span.end = span.begin + step;
            const int visible = coverage(span, m_surface.height()) * column.blend / opaque;
            *pixel
                = blended(pixelAt(m_rows.data(), unsigned(std::clamp(begin, 0, limit - box))), *pixel, visible);
        }
        y += count;
        span.begin += count * step;
        pixel += count * m_stride;
    }
}

void PictureFlowPainter::paintInside(QRgb* pixel, int begin, int step, int count) const
{
    const WidePixel* const rows = m_rows.data();
    const std::ptrdiff_t stride = m_stride;
    auto at = unsigned(begin);
#pragma GCC unroll 4
    for (int i = 0; i < count; ++i) {
        *pixel = narrowPixel(pixelAt(rows, at));
        at += unsigned(step);
        pixel += stride;
    }
}
