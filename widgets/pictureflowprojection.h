#pragma once

#include "widgets/pictureflowstate.h"

#include <QSize>

/**
 * The eye that looks at the strip, in measures of the slide: the picture is the same at any slide size.
 *
 * The slides stand upright on an even floor that mirrors them. A slide's cx is its place along the strip and
 * its cy how far it stands back on the floor; standing back it is smaller and, because the eye is above its
 * foot, its foot is higher. At cx 0, cy 0 and angle 0 a slide is seen pixel by pixel.
 */
namespace FlowEye {

constexpr double distance = 1.9; ///< from the slide in the middle, in slide widths
constexpr double height = 0.1; ///< above the middle of the slides, in slide heights
constexpr int liftDivisor = 4; ///< with reflections, the strip is raised by the slide height over this

} // namespace FlowEye

/** Where one slide appears on a widget. Screen places are pixels from the widget's corner. */
class PictureFlowProjection {
public:
    PictureFlowProjection(const SlideInfo& slide, const PictureFlowState& state, QSize widget);

    /** False for a slide that is seen edge-on or from behind, or that reaches behind the eye. */
    bool isVisible() const;

    double left() const { return screenAt(-m_halfWidth); }
    double right() const { return screenAt(m_halfWidth); }

    /** The place on the slide, in pixels from its left edge, that appears at `screenX`. */
    double slideAt(double screenX) const { return acrossAt(screenX) + m_halfWidth; }

    /** The size at which the slide is seen at `screenX`; 1 is pixel by pixel. */
    double scaleAt(double screenX) const;

    /** Where the upper edge of the slide appears where it is seen at `scale`. */
    double topAt(double scale) const { return m_eyeY + (m_top - m_eyeY) * scale; }

private:
    double acrossAt(double screenX) const;
    double scale(double across) const { return m_distance / (m_distance + m_depth + across * m_sine); }
    double screenAt(double across) const { return m_eyeX + (m_x + across * m_cosine) * scale(across); }

    double m_halfWidth;
    double m_distance;
    double m_x;
    double m_depth;
    double m_sine;
    double m_cosine;
    double m_eyeX;
    double m_eyeY;
    double m_top;
};
