#include "widgets/pictureflowanimator.h"

#include "widgets/pictureflowstate.h"

#include <cstdlib>

namespace {

constexpr int updateMilliseconds = 150;
constexpr int oneSlide = 0x10000; // in frames
constexpr int nearDistance = 2 * oneSlide;
constexpr int quarterTurn = 256;

} // namespace

PictureFlowAnimator::PictureFlowAnimator(PictureFlowState* flowState)
    : state(flowState)
{
}

void PictureFlowAnimator::start(int slide)
{
    target = slide;
    if (animateTimer.isActive() || !state)
        return;
    step = slide < state->centerSlide.slideIndex ? -1 : 1;
    animateTimer.start(updateMilliseconds);
}

void PictureFlowAnimator::stop(int slide)
{
    target = slide;
    step = 0;
    frame = std::int64_t(slide) * oneSlide;
    animateTimer.stop();
}

void PictureFlowAnimator::update()
{
    if (!animateTimer.isActive() || step == 0 || !state)
        return;
    advanceFrame();
    const int index = int(frame >> 16) + (step < 0 ? 1 : 0);
    const int pos = int(frame & 0xFFFF);
    const int tick = step < 0 ? oneSlide - pos : pos;
    if (index != state->centerIndex) {
        state->centerIndex = index;
        frame = std::int64_t(index) * oneSlide;
        state->setSlideIndices(index);
    }
    moveCenterSlide(tick);
    if (state->centerIndex == target) {
        stop(state->centerIndex);
        state->reset();
        return;
    }
    moveSideSlides(tick);
    moveNeighbour(pos);
    turnAround(index);
    fadeEnds(pos);
}

void PictureFlowAnimator::advanceFrame()
{
    const std::int64_t distance = std::abs(frame - std::int64_t(target) * oneSlide);
    const int phase = distance < nearDistance ? (int(distance) - oneSlide) / 256 : quarterTurn;
    frame += step * 16 * (1056 + FlowMath::sine(phase));
}

void PictureFlowAnimator::moveCenterSlide(int tick)
{
    const int fraction = tick >> 6;
    SlideInfo& slide = state->centerSlide;
    slide.angle = (step * tick * state->angle) >> 16;
    slide.cx = -step * FlowMath::multiply(state->offsetX, fraction);
    slide.cy = FlowMath::multiply(state->offsetY, fraction);
}

void PictureFlowAnimator::moveSideSlides(int tick)
{
    const int shift = step * state->spacing * (tick >> 6);
    for (int i = 0; i < PictureFlowState::slidesPerSide; ++i) {
        const int outwards = state->offsetX + i * state->spacing * 1024;
        SlideInfo& left = state->leftSlides[std::size_t(i)];
        left.angle = state->angle;
        left.cx = -outwards - shift;
        left.cy = state->offsetY;
        SlideInfo& right = state->rightSlides[std::size_t(i)];
        right.angle = -state->angle;
        right.cx = outwards - shift;
        right.cy = state->offsetY;
    }
}

/** The first slide of the side that the strip moves away from turns towards the centre. */
void PictureFlowAnimator::moveNeighbour(int pos)
{
    const int rest = step < 0 ? pos : oneSlide - pos; // of the way to the centre
    const int sign = step < 0 ? 1 : -1;
    SlideInfo& slide = step < 0 ? state->leftSlides.front() : state->rightSlides.front();
    slide.angle = sign * ((state->angle * rest) >> 16);
    slide.cx = -sign * FlowMath::multiply(state->offsetX, rest >> 6);
    slide.cy = FlowMath::multiply(state->offsetY, rest >> 6);
}

void PictureFlowAnimator::turnAround(int index)
{
    if (index > target && step > 0)
        step = -1;
    if (index < target && step < 0)
        step = 1;
}

/** Slides enter and leave at the two ends of the strip: the last three of each side change their blend. */
void PictureFlowAnimator::fadeEnds(int pos)
{
    constexpr int last = PictureFlowState::slidesPerSide - 1;
    const int p = pos >> 9;
    const bool right = step > 0;
    const int leftBlend[] = {right ? 256 - p : 256, right ? 128 - p : 256 - p, right ? 0 : 128 - p};
    const int rightBlend[] = {right ? 256 : 128 + p, right ? 128 + p : p, right ? p : 0};
    for (int i = 0; i <= last; ++i) {
        const int fading = i - (last - 2);
        state->leftSlides[std::size_t(i)].blend = fading < 0 ? 256 : leftBlend[fading];
        state->rightSlides[std::size_t(i)].blend = fading < 0 ? 256 : rightBlend[fading];
    }
}
