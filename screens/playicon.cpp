#include "screens/playicon.h"

#include "widgets/resourceimage.h"

#include <iterator>

namespace {

constexpr const char* images[] = {
    ":/Tessaro/image/play_state/play.png", ":/Tessaro/image/play_state/pause.png",
    ":/Tessaro/image/play_state/stop.png", ":/Tessaro/image/play_state/next.png",
    ":/Tessaro/image/play_state/prev.png",
};
static_assert(std::size(images) == std::size_t(PlayIcon::Previous) + 1, "one image an icon");

} // namespace

QPixmap playIcon(PlayIcon icon)
{
    return resourcePixmap(QLatin1String(images[std::size_t(icon)]));
}
