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

/** A menu whose strip stands at one moment, and both ways of drawing it. */
struct Strip {
    explicit Strip(int updates)
    {
        flow.setCenterIndex(1);
        if (updates > 0)
            flow.showNext();
        for (int i = 0; i < updates; ++i)
            flow.updateAnimation();
    }

    MenuForm menu;
    PictureFlow& flow = *menu.findChild<PictureFlow*>();
    PictureFlowSoftwareRenderer renderer{&flow.state(), &flow};
    FlowPainting painting{flow.state()};
};

/** How many updates of a turn to the next slide leave the strip in motion. */
int updatesInMotion()
{
    Strip strip(1);
    int updates = 1;
    for (strip.flow.updateAnimation(); strip.flow.animator().step != 0; strip.flow.updateAnimation())
        ++updates;
    return updates;
}

void addRows(Bench& bench, const std::string& when, const std::vector<std::unique_ptr<Strip>>& strips)
{
    for (const auto& each : strips)
        each->renderer.render(); // prepares the slides
    std::size_t next = 0;
    const auto strip = [&]() -> Strip& { return *strips[next++ % strips.size()]; };
    QImage target(frameSize, QImage::Format_RGB32);
    const auto draw = [&] {
        PictureFlowSoftwareRenderer& renderer = strip().renderer;
        renderer.dirty = true;
        renderer.render();
    };
    const auto paint = [&] { strip().painting.paint(target, FlowPainting::JaggedEdges); };
    const auto paintAlike = [&] { strip().painting.paint(target, FlowPainting::SmoothEdges); };
    const auto copy = [&] {
        const QImage& frame = strip().renderer.frame();
        std::copy_n(frame.constBits(), frame.sizeInBytes(), target.bits());
    };
    const auto times = medianMicroseconds(
        bench.effort, {{"panel", draw}, {"toolkit", paint}, {"alike", paintAlike}, {"copy", copy}});
    const std::string row = "cover-flow frame " + when;
    bench.table.add(row + " / the toolkit's perspective, smooth edges", "us", times[0], times[2],
                    timesFaster(3));
    bench.table.add(row + " / the toolkit's perspective, jagged edges", "us", times[0], times[1],
                    timesFaster(3));
    bench.table.add(row + " / a copy of the frame", "us", times[0], times[3]);
}

} // namespace

void addFlowRows(Bench& bench)
{
    std::vector<std::unique_ptr<Strip>> strips;
    strips.push_back(std::make_unique<Strip>(0));
    addRows(bench, "at rest", strips);
    strips.clear();
    const int moving = updatesInMotion();
    for (int updates = 1; updates <= moving; ++updates)
        strips.push_back(std::make_unique<Strip>(updates));
    addRows(bench, "in motion", strips);
}
