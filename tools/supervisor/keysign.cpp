#include "tools/supervisor/keysign.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace {

// All signs are drawn in a square from 0 to 1.

QPainterPath arrow(double from, double to)
{
    QPainterPath path;
    path.addPolygon(QPolygonF({{from, 0.1}, {to, 0.5}, {from, 0.9}}));
    path.closeSubpath();
    return path;
}

QPainterPath bar(double x, double y, double width, double height)
{
    QPainterPath path;
    path.addRect(x, y, width, height);
    return path;
}

QPainterPath selectSign()
{
    QPainterPath path;
    path.addEllipse(0.08, 0.08, 0.84, 0.84);
    path.addEllipse(0.2, 0.2, 0.6, 0.6);
    path.addEllipse(0.34, 0.34, 0.32, 0.32);
    return path;
}

QPainterPath escSign()
{
    QPainterPath path = arrow(0.42, 0.0);
    path.addPath(bar(0.4, 0.42, 0.6, 0.16));
    return path;
}

QPainterPath modeSign()
{
    QPainterPath path = bar(0.05, 0.14, 0.9, 0.14);
    path.addPath(bar(0.05, 0.43, 0.9, 0.14));
    path.addPath(bar(0.05, 0.72, 0.9, 0.14));
    return path;
}

QPainterPath stopSign()
{
    return bar(0.14, 0.14, 0.72, 0.72);
}

QPainterPath previousSign()
{
    QPainterPath path = bar(0.05, 0.1, 0.14, 0.8);
    path.addPath(arrow(0.9, 0.22));
    return path;
}

QPainterPath nextSign()
{
    QPainterPath path = arrow(0.1, 0.78);
    path.addPath(bar(0.81, 0.1, 0.14, 0.8));
    return path;
}

QPainterPath playPauseSign()
{
    QPainterPath path = arrow(-0.15, 0.5);
    path.addPath(bar(0.68, 0.1, 0.16, 0.8));
    path.addPath(bar(1.0, 0.1, 0.16, 0.8));
    return path;
}

struct Sign {
    const char* key;
    QPainterPath (*path)();
};

constexpr Sign signs[] = {
    {"select", selectSign},
    {"esc", escSign},
    {"mode", modeSign},
    {"stop", stopSign},
    {"prev", previousSign},
    {"next", nextSign},
    {"play-pause", playPauseSign},
};

} // namespace

void paintKeySign(QPainter& painter, const QString& key, const QRectF& square, const QColor& colour)
{
    for (const Sign& sign : signs) {
        if (key != QLatin1String(sign.key))
            continue;
        painter.save();
        painter.translate(square.topLeft());
        painter.scale(square.width(), square.height());
        painter.fillPath(sign.path(), colour);
        painter.restore();
    }
}
