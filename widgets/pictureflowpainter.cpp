#include "widgets/pictureflowpainter.h"

#include "app/pixels.h"

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

    static constexpr int most = 2 * PictureFlowSurface::maximumSide + 1; // all rows, and a part of one more
    int first;
    int count = 0;
    TwoPixels weights[most];
};

Taps::Taps(PixelSpan span)
    : first(span.begin / one)
{
    const double factor = double(opaque) / span.length();
    for (int sum = 0; sum < opaque; ++count) {
        const double covered = (first + count + 1) * double(one) - span.begin;
        const int newSum = std::min(opaque, int(covered * factor + 0.5));
        weights[count] = TwoPixels{} + std::uint16_t(newSum - sum);
        sum = newSum;
    }
}

/** Mixes lines of pixels that begin `stride` pixels apart, by the weights of the taps. */
void mixMany(const WidePixel* source, std::ptrdiff_t stride, const Taps& taps, int length, WidePixel* target)
{
    for (int i = 0; i < length; i += pixelsAtOnce) {
        TwoPixels sum = TwoPixels{} + std::uint16_t(opaque / 2);
        for (int k = 0; k < taps.count; ++k)
            sum += load(source + i + k * stride) * taps.weights[k];
        store(sum >> 8, target + i);
    }
}

/** The same for a few lines, with the inner loop unrolled. */
template <int count>
void mixFew(const WidePixel* source, std::ptrdiff_t stride, const Taps& taps, int length, WidePixel* target)
{
    TwoPixels weights[count];
    std::copy_n(taps.weights, count, weights);
    for (int i = 0; i < length; i += pixelsAtOnce) {
        TwoPixels sum = TwoPixels{} + std::uint16_t(opaque / 2);
#pragma GCC unroll 4
        for (int k = 0; k < count; ++k)
            sum += load(source + i + k * stride) * weights[k];
        store(sum >> 8, target + i);
    }
}

void mix(const WidePixel* source, std::ptrdiff_t stride, const Taps& taps, int length, WidePixel* target)
{
    constexpr decltype(&mixMany) few[] = {mixMany, mixFew<1>, mixFew<2>, mixFew<3>, mixFew<4>};
    const auto mixer = taps.count < int(std::size(few)) ? few[taps.count] : mixMany;
    mixer(source, stride, taps, length, target);
}

/** The pixel between the rows that `begin` lies on, each channel rounded. */
inline WidePixel pixelAt(const WidePixel* rows, unsigned begin)
{
    const WidePixel* row = rows + begin / one;
    const WidePixel fraction = begin / (one / opaque) % opaque;
    return ((row[0] << 8) + (row[1] - row[0]) * fraction + halfOfEach) >> 8 & channelMask;
}

/** A premultiplied pixel with `blend` 256ths of its opacity over an opaque one. */
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

bool ProjectedColumn::isCopy() const
{
    const bool wholeColumn = columns.begin % one == 0 && columns.length() == one;
    return solid && wholeColumn && rowsPerPixel == one && top == std::floor(top);
}

PictureFlowPainter::PictureFlowPainter(QImage& frame, const PictureFlowSurface& surface)
    : m_bits(pixelsOf(frame.bits()))
    , m_stride(frame.bytesPerLine() / std::ptrdiff_t(sizeof(QRgb)))
    , m_frameHeight(frame.height())
    , m_surface(surface)
    , m_rows(2 * std::size_t(surface.columnStride()) + 2 * pixelsAtOnce) // what a box of all rows reaches
{
}

void PictureFlowPainter::paint(const std::vector<ProjectedColumn>& columns)
{
    for (auto column = columns.begin(); column != columns.end();) {
        const auto copiedWithIt = [&, first = column](const ProjectedColumn& other) {
            const int distance = int(&other - &*first);
            return other.isCopy() && other.top == first->top && other.x == first->x + distance
                && other.columns.begin == first->columns.begin + distance * one;
        };
        const auto copyEnd = std::find_if_not(column, columns.end(), copiedWithIt);
        if (copyEnd != column)
            copy(*column, int(copyEnd - column));
        else
            paintMixed(*column);
        column = std::max(copyEnd, column + 1);
    }
}

/** Copies `count` columns side by side, row by row, as the frame lies in memory. */
void PictureFlowPainter::copy(const ProjectedColumn& first, int count)
{
    const WidePixel* const source = m_surface.column(first.columns.begin / one);
    const std::ptrdiff_t sourceStride = m_surface.columnStride();
    const int top = int(first.top);
    const int end = std::min(m_frameHeight, top + m_surface.height());
    for (int y = std::max(0, top); y < end; ++y) {
        QRgb* const target = m_bits + y * m_stride + first.x;
        for (int i = 0; i < count; ++i)
            target[i] = narrowPixel(source[i * sourceStride + (y - top)]);
    }
}

void PictureFlowPainter::paintMixed(const ProjectedColumn& column)
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
    const int height = m_surface.height();
    std::fill_n(m_rows.begin() + height, taps.count + pixelsAtOnce, m_rows[std::size_t(height) - 1]);
    mix(m_rows.data(), 1, taps, height, m_rows.data());
}

void PictureFlowPainter::paintRows(const ProjectedColumn& column)
{
    const int limit = m_surface.height() * one;
    const int step = column.rowsPerPixel;
    const int box = std::clamp(step, one, limit);
    const double height = m_frameHeight;
    int y = int(std::clamp(std::floor(column.top), 0.0, height));
    const int end = int(std::clamp(std::ceil(column.bottom(m_surface.height())), 0.0, height));
    if (y >= end)
        return;
    PixelSpan seen;
    seen.begin = int(std::lround((y - column.top) * step));
    QRgb* pixel = m_bits + y * m_stride + column.x;
    while (y < end) {
        const int begin = seen.begin - (box - step) / 2;
        int count = 1;
        if (column.solid && begin >= 0 && begin + box <= limit) {
            count = std::min(end - y, (limit - box - begin) / step + 1);
            paintSolid(pixel, begin, step, count);
        } else {
            seen.end = seen.begin + step;
            const int visible = coverage(seen, m_surface.height()) * column.blend / opaque;
            *pixel =
                blended(pixelAt(m_rows.data(), unsigned(std::clamp(begin, 0, limit - box))), *pixel, visible);
        }
        y += count;
        seen.begin += count * step;
        pixel += count * m_stride;
    }
}

void PictureFlowPainter::paintSolid(QRgb* pixel, int begin, int step, int count) const
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
