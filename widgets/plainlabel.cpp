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
    const QFontMetrics metrics = fontMetrics();
    QRect box = contentsRect();
    Qt::Alignment alignment = this->alignment();
    if ((alignment & Qt::AlignVCenter) && metrics.size(0, text).height() > box.height()) {
        box.setTop(box.top() + (box.height() - metrics.height()) / 2);
        alignment ^= Qt::AlignVCenter | Qt::AlignTop;
    }
    QPainter painter(this);
    drawFrame(&painter);
    style()->drawItemText(&painter, box, int(alignment), palette(), isEnabled(), text, foregroundRole());
}
