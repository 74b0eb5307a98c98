#include "widgets/pictureflowstate.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace {

constexpr int stepsPerTurn = 64;

// One turn in 64 steps, amplitude 1024, and the first step again to interpolate towards.
constexpr int sineTable[] = {
    3,    103,  202,  300,  394,  485,  571,  652,  726,  793,  853,  904,  947,   980,   1004,  1019,  1023,
    1018, 1003, 978,  944,  901,  849,  789,  721,  647,  566,  479,  388,  294,   196,   97,    -4,    -104,
    -203, -301, -395, -486, -572, -653, -727, -794, -854, -905, -948, -981, -1005, -1020, -1024, -1019, -1004,
    -979, -945, -902, -850, -790, -722, -648, -567, -480, -389, -295, -197, -98,   3,     0,
};
static_assert(std::size(sineTable) == stepsPerTurn + 2, "one turn and its overlap");

constexpr int sideAngle = 199; // 70 degrees
constexpr int sideSpacing = 40;
constexpr int quarterTurn = 256;

// The strip fades out at its ends.
constexpr int restingBlend[] = {256, 256, 256, 256, 128, 0};
static_assert(std::size(restingBlend) == PictureFlowState::slidesPerSide, "one blend a side slide");

} // namespace

int FlowMath::sine(int angle)
{
    const int position = angle & 1023;
    const int i = position >> 4;
    const int fraction = position & 15;
    return sineTable[i] + fraction * (sineTable[i + 1] - sineTable[i]) / 16;
}

int FlowMath::cosine(int angle)
{
    return sine((angle & 1023) + quarterTurn);
}

int FlowMath::multiply(int a, int b)
{
    return int((std::int64_t(a) * b) >> 10);
}

PictureFlowState::PictureFlowState()
{
    reposition();
    reset();
}

void PictureFlowState::reposition()
{
    angle = sideAngle;
    spacing = sideSpacing;
    const int width = std::clamp(slideWidth, -maximumWidth, maximumWidth);
    const int half = width / 2;
    offsetX = width * 1024 + half * (1024 - FlowMath::cosine(angle));
    offsetY = width * 256 + half * FlowMath::sine(angle);
}

void PictureFlowState::reset()
{
    leftSlides.resize(slidesPerSide);
    rightSlides.resize(slidesPerSide);
    centerSlide = {centerIndex, 0, 0, 0, 256};
    for (int i = 0; i < slidesPerSide; ++i) {
        const int cx = offsetX + i * spacing * 1024;
        leftSlides[std::size_t(i)] = {centerIndex - 1 - i, angle, -cx, offsetY, restingBlend[i]};
        rightSlides[std::size_t(i)] = {centerIndex + 1 + i, -angle, cx, offsetY, restingBlend[i]};
    }
}

void PictureFlowState::setSlideIndices(int index)
{
    centerSlide.slideIndex = index;
    for (int i = 0; i < slidesPerSide; ++i) {
        leftSlides[std::size_t(i)].slideIndex = index - 1 - i;
        rightSlides[std::size_t(i)].slideIndex = index + 1 + i;
    }
}

const QImage* PictureFlowState::imageAt(int index) const
{
    const bool listed = index >= 0 && std::size_t(index) < slideImages.size();
    return listed ? slideImages[std::size_t(index)].get() : nullptr;
}
