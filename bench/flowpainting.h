#pragma once

#include "widgets/pictureflowstate.h"

#include <QImage>

#include <vector>

/**
 * The menu's strip painted with the toolkit's own perspective transformations: the same slides at the same
 * places, reflections and scaling prepared beforehand.
 */
class FlowPainting {
public:
    enum Edges {
        JaggedEdges, ///< whole pixels, which flicker in motion
        SmoothEdges, ///< as the panel's own are
    };

    explicit FlowPainting(const PictureFlowState& state);

    void paint(QImage& frame, Edges edges) const;

private:
    void paintSlide(class QPainter& painter, const SlideInfo& slide, QSize frame) const;

    const PictureFlowState& m_state;
    std::vector<QImage> m_slides; ///< each with its reflection
};
