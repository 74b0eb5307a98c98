#include "tools/supervisor/place.h"

namespace {

constexpr int gap = 4;

} // namespace

QRect placeBeside(const QSize& panel, const QRect& available, const QSize& wanted, const QSize& least)
{
    const QRect beside = available.adjusted(panel.width() + gap, 0, 0, 0);
    const bool fits = least.boundedTo(beside.size()) == least;
    const QRect room = fits ? beside : available;
    QRect place(room.topLeft(), wanted.boundedTo(room.size()));
    if (!fits)
        place.moveRight(room.right());
    return place;
}
