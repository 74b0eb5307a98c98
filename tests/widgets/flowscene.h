#pragma once

#include "widgets/pictureflowsoftwarerenderer.h"
#include "widgets/pictureflowstate.h"

#include <QWidget>

#include <cmath>
#include <random>

/** Pictures for the tests of the cover flow, and a flow without its widget's behaviour. */
namespace FlowScene {

inline QImage plain(QSize size, QColor color)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(color);
    return image;
}

/** A slide with thin and thick shapes, a colour ramp and a letter-like comb, different for each number. */
inline QImage drawn(QSize size, int number)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x) {
            const bool ring = std::abs(std::hypot(x - size.width() / 2, y - size.height() / 3) - 18) < 2;
            const bool comb =
                y > size.height() * 3 / 4 && y < size.height() * 9 / 10 && x / 3 % (3 + number) == 0;
            image.setPixel(x, y,
                           ring       ? qRgb(146, 226, 255)
                               : comb ? qRgb(255, 255 - 30 * number, 90)
                                      : qRgb(40 + 2 * y % 60, 20 * number, 60 + x / 2));
        }
    return image;
}

inline QImage noise(QSize size, unsigned seed)
{
    std::mt19937 random(seed);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, 0xFF000000 | (random() & 0xFFFFFF));
    return image;
}

/** A state, a widget of a size and the renderer of both. */
struct Scene {
    explicit Scene(QSize widgetSize = QSize(320, 240), QSize slideSize = QSize(100, 100),
                   PictureFlow::ReflectionEffect effect = PictureFlow::SoftReflection)
        : renderer(&state, &widget)
    {
        widget.resize(widgetSize);
        state.slideWidth = slideSize.width();
        state.slideHeight = slideSize.height();
        state.reflectionEffect = effect;
        state.reposition();
        state.reset();
    }
    void add(const QImage& image) { state.slideImages.push_back(std::make_unique<QImage>(image)); }
    void center(int index)
    {
        state.centerIndex = index;
        state.reset();
    }
    /** Hides all slides but those set afterwards. */
    void empty()
    {
        for (auto* side : {&state.leftSlides, &state.rightSlides})
            for (SlideInfo& slide : *side)
                slide.slideIndex = -1;
        state.centerSlide.slideIndex = -1;
    }
    QImage frame()
    {
        renderer.dirty = true;
        renderer.render();
        return renderer.frame();
    }
    QPoint centerCorner() const
    {
        const int lift = state.reflectionEffect == PictureFlow::NoReflection ? 0 : state.slideHeight / 4;
        return QPoint((widget.width() - state.slideWidth) / 2,
                      (widget.height() - state.slideHeight) / 2 - lift);
    }

    PictureFlowState state;
    QWidget widget;
    PictureFlowSoftwareRenderer renderer;
};

} // namespace FlowScene
