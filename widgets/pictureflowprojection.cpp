#include "widgets/pictureflowprojection.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double unit = 1024; // of positions, to a pixel
constexpr double fullTurn = 1024; // of angles
constexpr double radians = 6.283185307179586 / fullTurn;
constexpr double nearest = 0.125; // of the eye's distance; nothing is drawn closer

} // namespace

PictureFlowProjection::PictureFlowProjection(const SlideInfo& slide, const PictureFlowState& state,
                                             QSize widget)
    : m_halfWidth(state.slideWidth / 2.0)
    , m_distance(FlowEye::distance * state.slideWidth)
    , m_x(slide.cx / unit)
    , m_depth(slide.cy / unit)
    , m_sine(std::sin(slide.angle * radians))
    , m_cosine(std::cos(slide.angle * radians))
{
    const bool reflected = state.reflectionEffect != PictureFlow::NoReflection;
    const int lift = reflected ? state.slideHeight / FlowEye::liftDivisor : 0;
    // Whole pixels, so that the slide in the middle lies on the raster.
    m_eyeX = (widget.width() - state.slideWidth) / 2 + m_halfWidth;
    m_top = (widget.height() - state.slideHeight) / 2 - lift;
    m_eyeY = m_top + state.slideHeight * (0.5 - FlowEye::height);
}

bool PictureFlowProjection::isVisible() const
{
    const double nearEdge = m_distance + m_depth - std::abs(m_halfWidth * m_sine);
    return nearEdge > nearest * m_distance && m_cosine * (m_distance + m_depth) > m_x * m_sine
        && left() < right();
}

double PictureFlowProjection::scaleAt(double screenX) const
{
    return scale(std::clamp(acrossAt(screenX), -m_halfWidth, m_halfWidth));
}

/** Beyond the edges of a slide the view may run to the horizon of its plane; there is the far end of it. */
double PictureFlowProjection::acrossAt(double screenX) const
{
    const double x = screenX - m_eyeX;
    const double towardsHorizon = m_cosine * m_distance - x * m_sine;
    if (towardsHorizon <= 0)
        return std::copysign(HUGE_VAL, m_sine);
    return (x * (m_distance + m_depth) - m_x * m_distance) / towardsHorizon;
}
