#include "tools/tour/contactsheet.h"

#include <QPainter>

namespace {

constexpr int columns = 4;
constexpr int gap = 12;
constexpr int captionHeight = 22;
constexpr QSize pictureSize(320, 240);

QRect cell(int index)
{
    const int x = gap + (index % columns) * (pictureSize.width() + gap);
    const int y = gap + (index / columns) * (pictureSize.height() + captionHeight + gap);
    return {QPoint(x, y), pictureSize};
}

} // namespace

QPixmap contactSheet(const QList<Picture>& pictures)
{
    const int rows = (int(pictures.size()) + columns - 1) / columns;
    QPixmap sheet(gap + columns * (pictureSize.width() + gap),
                  gap + rows * (pictureSize.height() + captionHeight + gap));
    sheet.fill(QColor(60, 64, 68));
    QPainter painter(&sheet);
    painter.setPen(Qt::white);
    for (int i = 0; i < pictures.size(); ++i) {
        const QRect box = cell(i);
        painter.drawPixmap(box.topLeft(), pictures.at(i).pixmap);
        painter.drawText(QRect(box.bottomLeft(), QSize(box.width(), captionHeight)), Qt::AlignCenter,
                         pictures.at(i).name);
    }
    return sheet;
}
