#include "tools/supervisor/place.h"

#include <QScreen>

namespace {

constexpr int gap = 4;
constexpr QSize panelSize(320, 240);

/** The panel keeps its pixels on every desktop; it scales by this variable alone. */
double panelScale()
{
    bool isNumber = false;
    const double factor = qEnvironmentVariable("QT_SCALE_FACTOR").toDouble(&isNumber);
    return isNumber && factor > 0 ? factor : 1;
}

} // namespace

QSize panelSizeOn(const QScreen& screen)
{
    return (QSizeF(panelSize) * panelScale() / screen.devicePixelRatio()).toSize();
}

QPoint panelCornerOn(const QScreen& screen)
{
    const QPointF corner = screen.availableGeometry().topLeft();
    return (corner * screen.devicePixelRatio() / panelScale()).toPoint();
}

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
