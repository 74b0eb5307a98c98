#include "bench/flowpainting.h"

#include "widgets/pictureflowprojection.h"
#include "widgets/pictureflowsurface.h"

#include <QPainter>
#include <QTransform>

#include <algorithm>

namespace {

QImage imageOf(const PictureFlowSurface& surface)
{
    QImage image(surface.width(), surface.height(), QImage::Format_ARGB32_Premultiplied);
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y)
            image.setPixel(x, y, narrowPixel(surface.column(x)[y]));
    }
    return image;
}

} // namespace

FlowPainting::FlowPainting(const PictureFlowState& state)
    : m_state(state)
{
    const QSize size(state.slideWidth, state.slideHeight);
    for (const auto& image : state.slideImages)
        m_slides.push_back(
            imageOf(PictureFlowSurface(*image, size, state.reflectionEffect, state.backgroundColor)));
}

void FlowPainting::paint(QImage& frame, Edges edges) const
{
    frame.fill(m_state.backgroundColor);
    QPainter painter(&frame);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::Antialiasing, edges == SmoothEdges);
    const auto paint = [&](const SlideInfo& slide) { paintSlide(painter, slide, frame.size()); };
    std::for_each(m_state.leftSlides.rbegin(), m_state.leftSlides.rend(), paint);
    std::for_each(m_state.rightSlides.rbegin(), m_state.rightSlides.rend(), paint);
    paint(m_state.centerSlide);
}

void FlowPainting::paintSlide(QPainter& painter, const SlideInfo& slide, QSize frame) const
{
    const PictureFlowProjection projection(slide, m_state, frame);
    if (!m_state.imageAt(slide.slideIndex) || slide.blend <= 0 || !projection.isVisible())
        return;
    const QImage& image = m_slides[std::size_t(slide.slideIndex)];
    const auto edge = [&](double x) {
        const double scale = projection.scaleAt(x);
        const double top = projection.topAt(scale);
        return QLineF(x, top, x, top + image.height() * scale);
    };
    const QLineF left = edge(projection.left());
    const QLineF right = edge(projection.right());
    QTransform transform;
    QTransform::quadToQuad(QPolygonF(QRectF(image.rect())).mid(0, 4),
                           QPolygonF({left.p1(), right.p1(), right.p2(), left.p2()}), transform);
    painter.setTransform(transform);
    painter.setOpacity(slide.blend / 256.0);
    painter.drawImage(0, 0, image);
}
