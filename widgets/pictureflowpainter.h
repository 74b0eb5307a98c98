#pragma once

#include "widgets/pictureflowsurface.h"

#include <QImage>

#include <cstddef>
#include <vector>

/** How much of a span lies on the first `pixels` pixels, in 256ths. */
int coverage(PixelSpan span, int pixels);

/** The part of a span that lies on the first `pixels` pixels, widened to a pixel where it is narrower. */
PixelSpan sampledPart(PixelSpan span, int pixels);

/** One screen column of a slide: which part of its surface is seen there, and at what size. */
struct ProjectedColumn {
    int x = 0; ///< in the frame
    PixelSpan columns; ///< of the surface, at least a pixel
    double top = 0; ///< where the surface's upper edge lies in the frame
    int rowsPerPixel = PixelSpan::one; ///< 65536 to a row
    int blend = 256; ///< 256 opaque to 0 invisible
    bool solid = true; ///< nothing is seen through it

    /** Where the lower edge of a surface of `height` rows lies in the frame. */
    double bottom(int height) const { return top + double(height) * PixelSpan::one / rowsPerPixel; }

    /** Whether it covers what is behind with the surface's own pixels. */
    bool isCopy() const;
};

/**
 * Paints a surface into a frame one screen column at a time. A screen column is the mean of the surface
 * columns that it covers, and of it each pixel is the mean of about the rows that it covers, so that edges
 * are smooth and nothing flickers while a slide moves. A surface that is seen pixel by pixel is copied
 * unchanged.
 *
 * The frame has 32 bits a pixel; frame and surface outlive the painter.
 */
class PictureFlowPainter {
public:
    PictureFlowPainter(QImage& frame, const PictureFlowSurface& surface);

    void paint(const std::vector<ProjectedColumn>& columns);

private:
    void paintMixed(const ProjectedColumn& column);
    void copy(const ProjectedColumn& first, int count);
    void mixColumns(PixelSpan columns);
    void mixRows(int box);
    void paintRows(const ProjectedColumn& column);
    void paintSolid(QRgb* pixel, int begin, int step, int count) const;

    QRgb* m_bits;
    std::ptrdiff_t m_stride;
    int m_frameHeight;
    const PictureFlowSurface& m_surface;
    std::vector<WidePixel> m_rows; ///< the mixed column
};
