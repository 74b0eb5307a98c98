#pragma once

#include "widgets/pictureflowprojection.h"
#include "widgets/pictureflowstate.h"
#include "widgets/pictureflowsurface.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

/** A second, independent picture of the cover flow, to hold the real one against. */
namespace FlowReference {

constexpr double pi = 3.14159265358979323846;

struct Colour {
    double channel[3] = {};
};

/**
 * The same view drawn the plain and slow way: each pixel is the mean of many points, each traced back onto
 * the slides one by one, in floating point.
 */
class Reference {
public:
    Reference(const PictureFlowState& state, QSize size)
        : m_state(state)
        , m_size(size)
        , m_top((size.height() - state.slideHeight) / 2 - lift())
        , m_eye(m_top + state.slideHeight / 2.0 - FlowEye::height * state.slideHeight)
        , m_pixels(size_t(size.width() * size.height()))
    {
        for (Colour& pixel : m_pixels)
            for (int c = 0; c < 3; ++c)
                pixel.channel[c] = channelOf(state.backgroundColor, c);
        for (auto slide = state.leftSlides.rbegin(); slide != state.leftSlides.rend(); ++slide)
            draw(*slide);
        for (auto slide = state.rightSlides.rbegin(); slide != state.rightSlides.rend(); ++slide)
            draw(*slide);
        draw(state.centerSlide);
    }
    double at(int x, int y, int c) const { return m_pixels[size_t(y * m_size.width() + x)].channel[c]; }

    static double channelOf(QRgb pixel, int c) { return pixel >> (8 * c) & 0xFF; }

private:
    static constexpr int points = 6; // of a pixel, each way

    /** What all rays through one upright line of the screen have in common. */
    struct Crossing {
        const WidePixel* column = nullptr; // of the slide; none where they pass it
        double reach = 0; // from the eye to the slide, the screen being at 1
    };
    using Crossings = std::array<Crossing, points>;

    void draw(const SlideInfo& slide)
    {
        const QImage* image = m_state.imageAt(slide.slideIndex);
        if (!image || slide.blend == 0)
            return;
        const PictureFlowSurface surface(*image, QSize(m_state.slideWidth, m_state.slideHeight),
                                         m_state.reflectionEffect, m_state.backgroundColor);
        for (int x = 0; x < m_size.width(); ++x) {
            Crossings crossings;
            for (int i = 0; i < points; ++i)
                crossings[size_t(i)] = crossing(slide, surface, x + (i + 0.5) / points);
            if (std::any_of(crossings.begin(), crossings.end(), [](const Crossing& c) { return c.column; }))
                for (int y = 0; y < m_size.height(); ++y)
                    drawPixel(slide, surface, crossings, x, y);
        }
    }

    void drawPixel(const SlideInfo& slide, const PictureFlowSurface& surface, const Crossings& crossings,
                   int x, int y)
    {
        double sum[4] = {};
        for (const Crossing& crossing : crossings)
            for (int i = 0; i < points; ++i) {
                const QRgb colour = hit(crossing, surface, y + (i + 0.5) / points);
                for (int c = 0; c < 4; ++c)
                    sum[c] += channelOf(colour, c);
            }
        Colour& pixel = m_pixels[size_t(y * m_size.width() + x)];
        const double share = slide.blend / 256.0 / (points * points);
        for (int c = 0; c < 3; ++c)
            pixel.channel[c] = sum[c] * share + pixel.channel[c] * (1 - sum[3] * share / 255);
    }

    /** Seen from above: where the rays cross the plane of the slide. */
    Crossing crossing(const SlideInfo& slide, const PictureFlowSurface& surface, double x) const
    {
        const double w = m_state.slideWidth;
        const double eye = FlowEye::distance * w;
        const double angle = slide.angle * 2 * pi / 1024;
        const double sx = x - ((m_size.width() - m_state.slideWidth) / 2 + w / 2);
        // (sx, eye) * reach = (cx + t cos, eye + cy + t sin)
        const double cx = slide.cx / 1024.0;
        const double cz = eye + slide.cy / 1024.0;
        const double determinant = eye * std::cos(angle) - sx * std::sin(angle);
        const double t = (sx * cz - eye * cx) / determinant;
        if (determinant <= 0 || t < -w / 2 || t >= w / 2)
            return {};
        return {surface.column(int((t + w / 2) * surface.width() / w)), (cz + t * std::sin(angle)) / eye};
    }

    /** Seen from the side: what the ray at a height of the screen meets. */
    QRgb hit(const Crossing& crossing, const PictureFlowSurface& surface, double y) const
    {
        if (!crossing.column)
            return 0;
        const double row = (y - m_eye) * crossing.reach + m_eye - m_top;
        const double line = row * surface.slideHeight() / m_state.slideHeight;
        return row < 0 || line >= surface.height() ? 0 : narrowPixel(crossing.column[int(line)]);
    }

    int lift() const
    {
        return m_state.reflectionEffect == PictureFlow::NoReflection ? 0 : m_state.slideHeight / 4;
    }

    const PictureFlowState& m_state;
    QSize m_size;
    double m_top; // of the slides, on the screen
    double m_eye; // its height there
    std::vector<Colour> m_pixels;
};

struct Difference {
    double mean = 0;
    double worst = 0;
};

inline Difference difference(const QImage& frame, const Reference& reference)
{
    Difference result;
    for (int y = 0; y < frame.height(); ++y)
        for (int x = 0; x < frame.width(); ++x)
            for (int c = 0; c < 3; ++c) {
                const double d = std::abs(Reference::channelOf(frame.pixel(x, y), c) - reference.at(x, y, c));
                result.mean += d / (3.0 * frame.width() * frame.height());
                result.worst = std::max(result.worst, d);
            }
    return result;
}

} // namespace FlowReference
