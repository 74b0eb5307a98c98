#include "widgets/plainlabel.h"

#include "app/limits.h"
#include "widgets/drawabletext.h"

#include <QPainter>
#include <QStyle>

PlainLabel::PlainLabel(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    // A style sheet set before is worked out twice, on being set and again on being polished.
    ensurePolished();
}

/** As the toolkit draws a label, which would lay out the whole text, however long. */
void PlainLabel::paintEvent(QPaintEvent*)
{
    const QRect box = contentsRect();
    const bool isCentred = alignment() & Qt::AlignHCenter;
    const QString drawn = drawableText(text(), isCentred ? limits::centredCharacters : box.width());
    const bool rightToLeft = drawn.isRightToLeft();
    const Qt::Alignment place =
        QStyle::visualAlignment(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight, placeOf(drawn, alignment()));
    const int direction = rightToLeft ? Qt::TextForceRightToLeft : Qt::TextForceLeftToRight;
    QPainter painter(this);
    drawFrame(&painter);
    style()->drawItemText(&painter, box, int(place) | direction | Qt::TextExpandTabs, palette(), isEnabled(),
                          drawn, foregroundRole());
}
