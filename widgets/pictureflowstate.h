#pragma once

#include "widgets/pictureflow.h"

#include <QImage>

#include <memory>
#include <vector>

/**
 * Integer trigonometry of the cover flow. Angles are 1024ths of a full turn, any sign, any number of turns;
 * results have 1024 as one.
 */
namespace FlowMath {

int sine(int angle);
int cosine(int angle);

/** The product of a number of any scale and one that has 1024 as one, rounded down, in the first one's scale.
 */
int multiply(int a, int b);

} // namespace FlowMath

/** One slide of the strip as it stands at this moment. */
struct SlideInfo {
    int slideIndex = 0; ///< position in the slide list; outside the list nothing is drawn
    int angle = 0; ///< turn about the slide's vertical axis, 1024ths of a full turn
    int cx = 0; ///< place along the strip from its middle, 1024 to a pixel
    int cy = 0; ///< how far it stands back, 1024 to a pixel
    int blend = 0; ///< 256 opaque to 0 invisible
};

/**
 * What the cover flow shows: its slides, their geometry and where the strip stands.
 *
 * Positions are fixed-point numbers with 1024 to a pixel. reposition() works out the geometry from the slide
 * size; reset() lays the strip out at rest around the centre index. Any slide size is accepted: beyond
 * `maximumWidth` pixels the distances grow no further, so that no arithmetic overflows.
 */
class PictureFlowState {
public:
    static constexpr int slidesPerSide = 6;
    static constexpr int maximumWidth = 1 << 20;

    PictureFlowState();

    void reposition();
    void reset();

    /** Points every place of the strip at its slide, with `index` in the middle. */
    void setSlideIndices(int index);

    /** The image of a slide; null where the index lies outside the list. */
    const QImage* imageAt(int index) const;

    QRgb backgroundColor = 0;
    int slideWidth = 150; ///< pixels
    int slideHeight = 200; ///< pixels
    PictureFlow::ReflectionEffect reflectionEffect = PictureFlow::FadingReflection;
    std::vector<std::unique_ptr<QImage>> slideImages;

    int angle = 0; ///< turn of the side slides
    int spacing = 0; ///< pixels between neighbouring side slides
    int offsetX = 0; ///< cx of the first side slide
    int offsetY = 0; ///< cy of the side slides

    SlideInfo centerSlide;
    std::vector<SlideInfo> leftSlides; ///< from the centre outwards
    std::vector<SlideInfo> rightSlides; ///< from the centre outwards
    int centerIndex = 0;
};
