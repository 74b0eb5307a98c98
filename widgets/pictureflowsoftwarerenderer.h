#pragma once

#include "widgets/pictureflowpainter.h"
#include "widgets/pictureflowsurface.h"

#include <QImage>
#include <QRgb>
#include <QSize>

#include <unordered_map>
#include <vector>

class PictureFlowProjection;
class PictureFlowState;
class QWidget;
struct SlideInfo;

/**
 * Draws the strip of a PictureFlowState into a frame of the widget's size, and that onto the widget.
 *
 * Over the background come the left slides from the outermost inwards, the right slides likewise, then the
 * centre slide. Each slide is scaled and reflected once and kept while it is near the centre; a frame only
 * projects it. Columns of a slide that nearer ones hide are left out.
 */
class PictureFlowSoftwareRenderer {
public:
    PictureFlowSoftwareRenderer(const PictureFlowState* state, QWidget* widget);

    /** Forgets every prepared slide. */
    void init();

    /** Draws the frame anew if it is out of date. */
    void render();

    /** render(), then the frame onto the widget; from within its paint event. */
    void paint();

    const QImage& frame() const { return m_frame; }

    bool dirty = true;

private:
    struct Prepared {
        qint64 imageKey = 0;
        PictureFlowSurface surface;
    };
    struct Projected {
        const PictureFlowSurface* surface;
        std::vector<ProjectedColumn> columns;
    };

    void fillBackground();
    void forgetOtherSettings();
    void forgetFarSlides();
    const PictureFlowSurface& surfaceOf(int index, const QImage& image);
    void projectSlides();
    void projectSlide(const SlideInfo& slide);
    void projectColumns(const PictureFlowProjection& projection, int blend, Projected& projected) const;
    void dropHiddenColumns();

    const PictureFlowState* m_state;
    QWidget* m_widget;
    QImage m_frame;
    std::vector<Projected> m_projected; ///< in the order of painting

    std::unordered_map<int, Prepared> m_prepared; ///< by slide index
    QSize m_preparedSize;
    PictureFlow::ReflectionEffect m_preparedEffect = PictureFlow::NoReflection;
    QRgb m_preparedGround = 0;
};
