#pragma once

#include "tests/widgets/flowmodel.h"
#include "widgets/pictureflowanimator.h"
#include "widgets/pictureflowstate.h"

/** What differs between a slide and its model, or nothing. */
inline QString slideDifference(const char* name, int i, const SlideInfo& slide, const FlowModel::Slide& model)
{
    const qint64 is[] = {slide.slideIndex, slide.angle, slide.cx, slide.cy, slide.blend};
    const qint64 expected[] = {model.index, model.angle, model.cx, model.cy, model.blend};
    const char* fields[] = {"index", "angle", "cx", "cy", "blend"};
    for (int f = 0; f < 5; ++f)
        if (is[f] != expected[f])
            return QStringLiteral("%1 %2 %3: %4, expected %5")
                .arg(QLatin1String(name))
                .arg(i)
                .arg(QLatin1String(fields[f]))
                .arg(is[f])
                .arg(expected[f]);
    return QString();
}

inline QString difference(const PictureFlowState& state, const PictureFlowAnimator& animator,
                          const FlowModel::Strip& model)
{
    const qint64 is[] = {state.centerIndex, animator.target, animator.step, animator.frame};
    const qint64 expected[] = {model.center, model.target, model.step, model.frame};
    const char* fields[] = {"center", "target", "step", "frame"};
    for (int f = 0; f < 4; ++f)
        if (is[f] != expected[f])
            return QStringLiteral("%1: %2, expected %3")
                .arg(QLatin1String(fields[f]))
                .arg(is[f])
                .arg(expected[f]);
    if (animator.animateTimer.isActive() != model.running)
        return QStringLiteral("timer");
    QString text = slideDifference("center", 0, state.centerSlide, model.middle);
    for (int i = 0; i < 6 && text.isEmpty(); ++i)
        text = slideDifference("left", i, state.leftSlides[size_t(i)], model.left[size_t(i)]);
    for (int i = 0; i < 6 && text.isEmpty(); ++i)
        text = slideDifference("right", i, state.rightSlides[size_t(i)], model.right[size_t(i)]);
    return text;
}

/** A state with its animator, and the model of both. */
struct Bench {
    explicit Bench(int width = 100, int center = 0)
        : animator(&state)
    {
        state.slideWidth = width;
        state.reposition();
        model.width = width;
        model.count = 1000;
        moveTo(center);
    }
    void moveTo(int center)
    {
        state.centerIndex = center;
        state.reset();
        animator.stop(center);
        model.setCenter(center);
    }
    void start(int slide)
    {
        animator.start(slide);
        model.start(slide);
    }
    void tick()
    {
        animator.update();
        model.tick();
    }
    QString difference() const { return ::difference(state, animator, model); }

    PictureFlowState state;
    PictureFlowAnimator animator;
    FlowModel::Strip model;
};
