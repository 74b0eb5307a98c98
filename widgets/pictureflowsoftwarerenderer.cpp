#include "widgets/pictureflowsoftwarerenderer.h"

#include "app/pixels.h"
#include "widgets/pictureflowprojection.h"
#include "widgets/pictureflowstate.h"

#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int opaque = 256;
constexpr double mostRowsPerPixel = 16384; // a slide seen smaller is nothing but a dot

/** The rows of a screen column that are hidden from what is behind, none at first. */
struct HiddenRows {
    double begin = 0;
    double end = 0;
};

/** A place on the surface; far beyond its edges it goes no farther, nor where the view has no such place. */
int boundedPlace(double place)
{
    constexpr double farthest = 1 << 29;
    return int(std::lround(std::fmax(-farthest, std::fmin(place, farthest))));
}

int rowsPerPixel(double rows)
{
    return std::max(1, int(std::min(rows, mostRowsPerPixel) * PixelSpan::one + 0.5));
}

} // namespace

PictureFlowSoftwareRenderer::PictureFlowSoftwareRenderer(const PictureFlowState* state, QWidget* widget)
    : m_state(state)
    , m_widget(widget)
{
}

void PictureFlowSoftwareRenderer::init()
{
    m_prepared.clear();
    dirty = true;
}

void PictureFlowSoftwareRenderer::paint()
{
    render();
    QPainter painter(m_widget);
    painter.drawImage(0, 0, m_frame);
}

void PictureFlowSoftwareRenderer::render()
{
    if (m_frame.size() != m_widget->size()) {
        m_frame = QImage(m_widget->size(), QImage::Format_RGB32);
        dirty = true;
    }
    if (!dirty || m_frame.isNull())
        return;
    dirty = false;
    fillBackground();
    projectSlides();
    dropHiddenColumns();
    for (const Projected& slide : m_projected)
        PictureFlowPainter(m_frame, *slide.surface).paint(slide.columns);
    forgetFarSlides();
}

void PictureFlowSoftwareRenderer::fillBackground()
{
    const auto width = std::size_t(m_frame.width());
    QRgb* const firstRow = pixelsOf(m_frame.bits());
    std::fill_n(firstRow, width, m_state->backgroundColor | 0xFF000000);
    for (int y = 1; y < m_frame.height(); ++y)
        std::memcpy(m_frame.scanLine(y), firstRow, width * sizeof(QRgb));
}

void PictureFlowSoftwareRenderer::projectSlides()
{
    forgetOtherSettings();
    m_projected.clear();
    if (m_preparedSize.isEmpty())
        return;
    const auto& left = m_state->leftSlides;
    const auto& right = m_state->rightSlides;
    std::for_each(left.rbegin(), left.rend(), [this](const SlideInfo& slide) { projectSlide(slide); });
    std::for_each(right.rbegin(), right.rend(), [this](const SlideInfo& slide) { projectSlide(slide); });
    projectSlide(m_state->centerSlide);
}

void PictureFlowSoftwareRenderer::projectSlide(const SlideInfo& slide)
{
    const QImage* image = m_state->imageAt(slide.slideIndex);
    if (!image || slide.blend <= 0)
        return;
    const PictureFlowProjection projection(slide, *m_state, m_frame.size());
    if (!projection.isVisible() || projection.left() >= m_frame.width() || projection.right() <= 0)
        return;
    Projected projected{&surfaceOf(slide.slideIndex, *image), {}};
    if (projected.surface->isEmpty())
        return;
    projectColumns(projection, std::min(slide.blend, opaque), projected);
    m_projected.push_back(std::move(projected));
}

void PictureFlowSoftwareRenderer::projectColumns(const PictureFlowProjection& projection, int blend,
                                                 Projected& projected) const
{
    const PictureFlowSurface& surface = *projected.surface;
    const double columns = PixelSpan::one * double(surface.width()) / m_state->slideWidth;
    const double rows = double(surface.slideHeight()) / m_state->slideHeight;
    const int first = int(std::max(0.0, std::floor(projection.left())));
    const int end = int(std::min(double(m_frame.width()), std::ceil(projection.right())));
    PixelSpan seen;
    seen.end = boundedPlace(projection.slideAt(first) * columns);
    for (int x = first; x < end; ++x) {
        seen = {seen.end, boundedPlace(projection.slideAt(x + 1) * columns)};
        const double scale = projection.scaleAt(x + 0.5);
        ProjectedColumn column;
        column.x = x;
        column.columns = sampledPart(seen, surface.width());
        column.top = projection.topAt(scale);
        column.rowsPerPixel = rowsPerPixel(rows / scale);
        column.blend = coverage(seen, surface.width()) * blend / opaque;
        column.solid = column.blend == opaque && surface.isOpaque(column.columns);
        if (column.blend > 0)
            projected.columns.push_back(column);
    }
}

/** From the nearest slide backwards: a solid column of one hides what lies within it of those behind. */
void PictureFlowSoftwareRenderer::dropHiddenColumns()
{
    std::vector<HiddenRows> hidden(std::size_t(m_frame.width()));
    for (auto slide = m_projected.rbegin(); slide != m_projected.rend(); ++slide) {
        const int height = slide->surface->height();
        const auto isHidden = [&](const ProjectedColumn& column) {
            HiddenRows& rows = hidden[std::size_t(column.x)];
            const double bottom = column.bottom(height);
            if (column.top >= rows.begin && bottom <= rows.end)
                return true;
            if (column.solid && bottom - column.top > rows.end - rows.begin)
                rows = {std::ceil(column.top), std::floor(bottom)};
            return false;
        };
        auto& columns = slide->columns;
        columns.erase(std::remove_if(columns.begin(), columns.end(), isHidden), columns.end());
    }
}

const PictureFlowSurface& PictureFlowSoftwareRenderer::surfaceOf(int index, const QImage& image)
{
    Prepared& prepared = m_prepared[index];
    if (prepared.imageKey != image.cacheKey())
        prepared = {image.cacheKey(),
                    PictureFlowSurface(image, m_preparedSize, m_preparedEffect, m_preparedGround)};
    return prepared.surface;
}

void PictureFlowSoftwareRenderer::forgetOtherSettings()
{
    const QSize size(m_state->slideWidth, m_state->slideHeight);
    if (size == m_preparedSize && m_state->reflectionEffect == m_preparedEffect
        && m_state->backgroundColor == m_preparedGround)
        return;
    m_prepared.clear();
    m_preparedSize = size;
    m_preparedEffect = m_state->reflectionEffect;
    m_preparedGround = m_state->backgroundColor;
}

/** Keeps what is prepared for the strip as it stands and one slide more on either side. */
void PictureFlowSoftwareRenderer::forgetFarSlides()
{
    for (auto it = m_prepared.begin(); it != m_prepared.end();) {
        const bool near = std::abs(it->first - m_state->centerIndex) <= PictureFlowState::slidesPerSide + 1;
        it = near && m_state->imageAt(it->first) ? std::next(it) : m_prepared.erase(it);
    }
}
