#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

/**
 * A second, independent calculation of the cover flow, to hold the real one against: every field as a closed
 * expression in 64-bit arithmetic with explicit floors, and the sine table from its formula.
 */
namespace FlowModel {

using Int = std::int64_t;

inline Int floorDiv(Int a, Int b)
{
    const Int quotient = a / b;
    return a % b != 0 && (a < 0) != (b < 0) ? quotient - 1 : quotient;
}

/** The sine table: 64 steps a turn, each sampled half a 1024th of a turn late and rounded down. */
inline Int tableEntry(Int i)
{
    return Int(std::floor(1024 * std::sin((16 * (double(i % 64)) + 0.5) * 3.14159265358979323846 / 512)));
}

inline Int sine(Int angle)
{
    const Int turn = angle - 1024 * floorDiv(angle, 1024);
    const Int from = tableEntry(turn / 16);
    const Int to = tableEntry(turn / 16 + 1);
    return from + (turn % 16) * (to - from) / 16;
}

inline Int fmul(Int a, Int b)
{
    return floorDiv(a * b, 1024);
}

struct Slide {
    Int index, angle, cx, cy, blend;
};

struct Strip {
    Int width = 150;
    Int count = 0; // slides in the list

    // The state and the animator.
    Int center = 0;
    Int target = 0;
    Int step = 0;
    Int frame = 0;
    bool running = false;
    Int focus = 0;
    Slide middle{};
    std::array<Slide, 6> left{}, right{};

    Int offsetX() const { return 1024 * width + (width / 2) * (1024 - sine(199 + 256)); }
    Int offsetY() const { return 256 * width + (width / 2) * sine(199); }

    void rest()
    {
        middle = {center, 0, 0, 0, 256};
        for (Int i = 0; i < 6; ++i) {
            const Int blend = i == 5 ? 0 : i == 4 ? 128 : 256;
            const Int out = offsetX() + 40960 * i;
            left[size_t(i)] = {center - 1 - i, 199, -out, offsetY(), blend};
            right[size_t(i)] = {center + 1 + i, -199, out, offsetY(), blend};
        }
    }
    void start(Int slide)
    {
        target = slide;
        if (running)
            return;
        step = slide < middle.index ? -1 : 1;
        running = true;
    }
    void stop(Int slide)
    {
        target = slide;
        step = 0;
        frame = 65536 * slide;
        running = false;
    }
    Int clamped(Int i) const { return std::max<Int>(0, std::min(i, count - 1)); }
    void setCenter(Int i)
    {
        center = clamped(i);
        rest();
        stop(center);
    }
    void show(Int i)
    {
        if (clamped(i) != middle.index)
            start(clamped(i));
    }
    void next()
    {
        if (step > 0) {
            target = std::min(center + 2, count - 1);
            focus = center + 2;
        } else if (step < 0) {
            start(center);
            focus = center;
        } else if (center != count - 1) {
            start(center + 1);
            focus = center + 1;
        }
    }
    void previous()
    {
        if (step < 0) {
            target = std::max<Int>(center - 2, 0);
            focus = center - 2;
        } else if (step > 0) {
            start(center);
            focus = center;
        } else if (center != 0) {
            start(center - 1);
            focus = center - 1;
        }
    }

    /** One tick of the animation. */
    void tick()
    {
        if (!running || step == 0)
            return;
        const Int away = std::abs(frame - 65536 * target);
        const Int s = away < 0x20000 ? sine((away - 0x10000) / 256) : 1023;
        frame += step * 16 * (1056 + s);
        const Int index = floorDiv(frame, 65536) + (step < 0 ? 1 : 0);
        const Int pos = frame - 65536 * floorDiv(frame, 65536);
        const Int neg = 65536 - pos;
        const Int tick = step < 0 ? neg : pos;
        const Int ftick = tick / 64;
        if (index != center) {
            center = index;
            frame = 65536 * index;
        }
        if (center == target) {
            stop(center);
            rest();
            return;
        }
        place(pos, neg, tick, ftick);
        if (step > 0 && index > target)
            step = -1;
        else if (step < 0 && index < target)
            step = 1;
        fade(pos / 512);
    }

private:
    void place(Int pos, Int neg, Int tick, Int ftick)
    {
        middle = {center, floorDiv(step * tick * 199, 65536), -step * fmul(offsetX(), ftick),
                  fmul(offsetY(), ftick), middle.blend};
        for (Int i = 0; i < 6; ++i) {
            const Int out = 40960 * i;
            const Int move = step * 40 * ftick;
            left[size_t(i)] = {center - 1 - i, 199, -out - move - offsetX(), offsetY(), 0};
            right[size_t(i)] = {center + 1 + i, -199, out - move + offsetX(), offsetY(), 0};
        }
        if (step < 0) {
            left[0].angle = floorDiv(199 * pos, 65536);
            left[0].cx = -fmul(offsetX(), pos / 64);
            left[0].cy = fmul(offsetY(), pos / 64);
        } else {
            right[0].angle = -floorDiv(199 * neg, 65536);
            right[0].cx = fmul(offsetX(), neg / 64);
            right[0].cy = fmul(offsetY(), neg / 64);
        }
    }
    void fade(Int p)
    {
        for (size_t i = 0; i < 3; ++i)
            left[i].blend = right[i].blend = 256;
        left[3].blend = step < 1 ? 256 : 256 - p;
        left[4].blend = step > 0 ? 128 - p : 256 - p;
        left[5].blend = step > 0 ? 0 : 128 - p;
        right[3].blend = step > 0 ? 256 : 128 + p;
        right[4].blend = step > 0 ? 128 + p : p;
        right[5].blend = step > 0 ? p : 0;
    }
};

} // namespace FlowModel
