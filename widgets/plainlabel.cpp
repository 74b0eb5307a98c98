#include "widgets/plainlabel.h"

#include "widgets/drawabletext.h"

#include <QPainter>
#include <QStyle>

PlainLabel::PlainLabel(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

void PlainLabel::paintEvent(QPaintEvent* event)
{
    if (drawableLine(text()) == text())
        QLabel::paintEvent(event);
    else
        drawAs(drawableText(text()));
}

void PlainLabel::drawAs(const QString& text)
{
    const bool leftToRight = !text.isRightToLeft();
    const QFontMetrics metrics = fontMetrics();
    QRect box = contentsRect();
    Qt::Alignment place =
        QStyle::visualAlignment(leftToRight ? Qt::LeftToRight : Qt::RightToLeft, alignment());
    if (place.testFlag(Qt::AlignVCenter) && metrics.size(0, text).height() > box.height()) {
        box.setTop(box.top() + (box.height() - metrics.height()) / 2);
        place.setFlag(Qt::AlignVCenter, false).setFlag(Qt::AlignTop);
    }
    const int flags = int(place) | (leftToRight ? Qt::TextForceLeftToRight : Qt::TextForceRightToLeft);
    QPainter painter(this);
    drawFrame(&painter);
    style()->drawItemText(&painter, box, flags, palette(), isEnabled(), text, foregroundRole());
}
