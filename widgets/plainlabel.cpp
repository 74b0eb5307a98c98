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
    const QString drawn = drawableText(text());
    if (drawn == text()) {
        QLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    drawFrame(&painter);
    style()->drawItemText(&painter, contentsRect(), int(alignment()), palette(), isEnabled(), drawn,
                          foregroundRole());
}
