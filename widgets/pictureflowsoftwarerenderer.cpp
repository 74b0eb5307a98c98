#include "widgets/pictureflowsoftwarerenderer.h"

#include "widgets/pictureflowpainter.h"
#include "widgets/pictureflowprojection.h"
#include "widgets/pictureflowstate.h"

#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace {

int boundedFloor(double value, int limit)
{
    return int(std::floor(std::clamp(value, 0.0, double(limit))));
}

int boundedCeil(double value, int limit)
{
    return int(std::ceil(std::clamp(value, 0.0, double(limit))));
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
    if (!dirty)
        return;
    dirty = false;
    m_frame.fill(m_state->backgroundColor);
    renderSlides();
    forgetOutdated();
}

void PictureFlowSoftwareRenderer::renderSlides()
{
    const auto& left = m_state->leftSlides;
    const auto& right = m_state->rightSlides;
    std::for_each(left.rbegin(), left.rend(), [this](const SlideInfo& slide) { renderSlide(slide); });
    std::for_each(right.rbegin(), right.rend(), [this](const SlideInfo& slide) { renderSlide(slide); });
    renderSlide(m_state->centerSlide);
}

void PictureFlowSoftwareRenderer::renderSlide(const SlideInfo& slide)
{
    const QImage* image = m_state->imageAt(slide.slideIndex);
    const PictureFlowProjection projection(slide, *m_state, m_frame.size());
    if (!image || slide.blend <= 0 || !projection.isVisible())
        return;
    const int first = boundedFloor(projection.left(), m_frame.width());
    const int end = boundedCeil(projection.right(), m_frame.width());
    if (first >= end)
        return;
    const PictureFlowSurface& surface = surfaceOf(slide.slideIndex, *image);
    if (surface.isEmpty())
        return;
    PictureFlowPainter painter(m_frame, surface);
    const double columns = PixelSpan::one * double(surface.width()) / m_state->slideWidth;
    const double rows = double(surface.slideHeight()) / m_state->slideHeight;
    PixelSpan span;
    span.end = int(std::lround(projection.slideAt(first) * columns));
    for (int x = first; x < end; ++x) {
        span = {span.end, int(std::lround(projection.slideAt(x + 1) * columns))};
        const double scale = projection.scaleAt(x + 0.5);
        const PixelSpan part=sampledPart(span,surface.width());
        const int blend = coverage(span,surface.width())*slide.blend/256;
        if(blend<=0)continue;
        painter.paint({x, part, projection.topAt(scale), int(rows / scale*65536), blend, blend==256&&surface.isOpaque(part.begin/65536,(part.end-1)/65536)});
    }
}

const PictureFlowSurface& PictureFlowSoftwareRenderer::surfaceOf(int index, const QImage& image)
{
    const QSize size(m_state->slideWidth, m_state->slideHeight);
    if (size != m_preparedSize || m_state->reflectionEffect != m_preparedEffect
        || m_state->backgroundColor != m_preparedGround) {
        m_prepared.clear();
        m_preparedSize = size;
        m_preparedEffect = m_state->reflectionEffect;
        m_preparedGround = m_state->backgroundColor;
    }
    Prepared& prepared = m_prepared[index];
    if (prepared.imageKey != image.cacheKey())
        prepared = {image.cacheKey(), PictureFlowSurface(image, size, m_preparedEffect, m_preparedGround)};
    return prepared.surface;
}

/** Keeps what is prepared for the strip as it stands, and a slide more on either side. */
void PictureFlowSoftwareRenderer::forgetOutdated()
{
    for (auto it = m_prepared.begin(); it != m_prepared.end();) {
        const bool near = std::abs(it->first - m_state->centerIndex) <= PictureFlowState::slidesPerSide + 1;
        it = near && m_state->imageAt(it->first) ? std::next(it) : m_prepared.erase(it);
    }
}
