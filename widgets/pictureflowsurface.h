#pragma once

#include "widgets/pictureflow.h"

#include <QColor>
#include <QImage>
#include <QSize>

#include <cstddef>
#include <cstdint>
#include <vector>

/** A stretch of a row or column of pixels, 65536 to a pixel. */
struct PixelSpan {
    static constexpr int one = 65536;

    int begin = 0;
    int end = 0;
    int length() const { return end - begin; }
};

/**
 * A premultiplied pixel with each channel in 16 bits, from the lowest: blue, red, green, alpha. Pixels that
 * are weighted by parts of 256 can be added up in it without a carry between channels.
 */
using WidePixel = std::uint64_t;

constexpr WidePixel widePixel(QRgb pixel)
{
    return (pixel & 0x00FF00FF) | WidePixel(pixel >> 8 & 0x00FF00FF) << 32;
}

/** The opposite of widePixel(), for channels below 256. */
constexpr QRgb narrowPixel(WidePixel pixel)
{
    return QRgb(pixel | pixel >> 24);
}

/**
 * A slide made ready for drawing: its image scaled to the slide size, with the reflection that the effect
 * asks for below it. It is stored by columns, the way the painter reads it.
 *
 * A slide larger than `maximumSide` pixels is prepared at that size, to be enlarged while it is drawn. A null
 * image or an empty size gives an empty surface.
 */
class PictureFlowSurface {
public:
    static constexpr int maximumSide = 1024;
    static constexpr int rowAlignment = 2;

    PictureFlowSurface() = default;
    PictureFlowSurface(const QImage& image, QSize slideSize, PictureFlow::ReflectionEffect effect,
                       QRgb ground);

    bool isEmpty() const { return m_pixels.empty(); }
    int width() const { return m_width; }
    int height() const { return m_height; } ///< of the slide and its reflection
    int slideHeight() const { return m_slideHeight; }

    /** Whether the columns of a span have no pixel that one can see through. */
    bool isOpaque(PixelSpan columns) const;

    /** Pixels from one column to the next: a multiple of rowAlignment, so that as many can be read at once.
     */
    int columnStride() const { return (m_height + rowAlignment - 1) / rowAlignment * rowAlignment; }

    /** The `height()` pixels of one column, from the top down. */
    const WidePixel* column(int x) const { return m_pixels.data() + x * std::ptrdiff_t(columnStride()); }

private:
    void store(const QImage& rows, int firstRow);
    void countTranslucentColumns();

    int m_width = 0;
    int m_height = 0;
    int m_slideHeight = 0;
    std::vector<WidePixel> m_pixels;
    std::vector<int> m_translucentBefore; ///< how many columns before each one are not opaque
};
