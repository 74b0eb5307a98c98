#pragma once

#include "widgets/pictureflow.h"
#include "widgets/pictureflowanimator.h"

#include <QImage>
#include <QTimer>

/** A cover flow on the tests' stage: plain slides, and what its timers would do done by hand. */
namespace FlowStage {

inline QImage slideOf(QColor color)
{
    QImage image(100, 100, QImage::Format_RGB32);
    image.fill(color);
    return image;
}

inline void addSlides(PictureFlow& flow, int count)
{
    for (int i = 0; i < count; ++i)
        flow.addSlide(slideOf(QColor(40 * i % 256, 255 - 20 * i % 256, 90)));
}

inline QTimer& timerOf(PictureFlow& flow, const char* name)
{
    return *flow.findChild<QTimer*>(QString::fromLatin1(name));
}

inline bool isRenderPending(PictureFlow& flow)
{
    return timerOf(flow, "triggerTimer").isActive();
}

/** Fires what is pending, so that the next change shows. */
inline void settle(PictureFlow& flow)
{
    timerOf(flow, "triggerTimer").stop();
    flow.render();
}

inline void run(PictureFlow& flow)
{
    for (int i = 0; i < 500 && flow.animator().step != 0; ++i)
        flow.updateAnimation();
}

} // namespace FlowStage
