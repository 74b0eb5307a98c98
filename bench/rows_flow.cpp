#include "bench/bench.h"
#include "bench/flowpainting.h"
#include "bench/medians.h"
#include "screens/menuform.h"
#include "widgets/pictureflow.h"
#include "widgets/pictureflowanimator.h"
#include "widgets/pictureflowsoftwarerenderer.h"

#include <algorithm>
#include <memory>

/** A frame of the menu's strip, beside the toolkit's own perspective painting and a mere copy of the frame.
 */

namespace {

constexpr QSize frameSize(320, 240);

/** Where the slides stand at one moment. */
struct Moment {
    explicit Moment(const PictureFlowState& state)
        : center(state.centerSlide)
        , left(state.leftSlides)
        , right(state.rightSlides)
    {
    }

    SlideInfo center;
    std::vector<SlideInfo> left;
    std::vector<SlideInfo> right;
};

/** The menu's strip turned by one: as it stands at rest, and at each update on the way. */
struct Turn {
    Turn()
    {
        flow.setCenterIndex(1);
        rest.emplace_back(flow.state());
        flow.showNext();
        for (flow.updateAnimation(); flow.animator().step != 0; flow.updateAnimation())
            motion.emplace_back(flow.state());
    }

    MenuForm menu;
    PictureFlow& flow = *menu.findChild<PictureFlow*>();
    std::vector<Moment> rest;
    std::vector<Moment> motion;
};

/** The slides of a strip, prepared once, and both ways of drawing them at any moment. */
struct Strip {
    explicit Strip(PictureFlow& flow)
        : renderer(&state, &flow)
        , painting(slidesOf(flow.state()))
    {
    }

    void stand(const Moment& moment)
    {
        state.centerSlide = moment.center;
        state.leftSlides = moment.left;
        state.rightSlides = moment.right;
    }
    const PictureFlowState& slidesOf(const PictureFlowState& other)
    {
        state.slideWidth = other.slideWidth;
        state.slideHeight = other.slideHeight;
        state.reflectionEffect = other.reflectionEffect;
        state.backgroundColor = other.backgroundColor;
        state.centerIndex = other.centerIndex;
        for (const auto& image : other.slideImages)
            state.slideImages.push_back(std::make_unique<QImage>(*image));
        return state;
    }

    PictureFlowState state;
    PictureFlowSoftwareRenderer renderer;
    FlowPainting painting;
};

void addRows(Bench& bench, const std::string& when, Strip& strip, const std::vector<Moment>& moments)
{
    std::size_t next = 0;
    const auto moveOn = [&] { strip.stand(moments[next++ % moments.size()]); };
    QImage target(frameSize, QImage::Format_RGB32);
    const auto draw = [&] {
        moveOn();
        strip.renderer.dirty = true;
        strip.renderer.render();
    };
    const auto paint = [&] {
        moveOn();
        strip.painting.paint(target, FlowPainting::JaggedEdges);
    };
    const auto paintAlike = [&] {
        moveOn();
        strip.painting.paint(target, FlowPainting::SmoothEdges);
    };
    const auto copy = [&] {
        const QImage& frame = strip.renderer.frame();
        std::copy_n(frame.constBits(), frame.sizeInBytes(), target.bits());
    };
    const auto times = medianMicroseconds(
        bench.effort, {{"panel", draw}, {"toolkit", paint}, {"alike", paintAlike}, {"copy", copy}});
    const std::string row = "cover-flow frame " + when;
    bench.table.add(row + " / Qt's perspective, smooth edges", "us", times[0], times[2], timesFaster(3));
    bench.table.add(row + " / Qt's perspective, jagged edges", "us", times[0], times[1], timesFaster(3));
    bench.table.add(row + " / a copy of the frame", "us", times[0], times[3]);
}

} // namespace

void addFlowRows(Bench& bench)
{
    Turn turn;
    Strip strip(turn.flow);
    addRows(bench, "at rest", strip, turn.rest);
    addRows(bench, "in motion", strip, turn.motion);
}
