#include "widgets/plainlabel.h"

#include "widgets/drawabletext.h"

#include <QPainter>
#include <QStyle>

namespace {

constexpr int mostOfABlank = 5; // pixels; less than three are hard to see as a blank

} // namespace

PlainLabel::PlainLabel(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    // A style sheet set before is worked out twice, on being set and again on being polished.
    ensurePolished();
}

void PlainLabel::paintEvent(QPaintEvent* event)
{
    const QString drawable = drawableText(text());
    const bool oneLine = drawableLine(drawable) == drawable;
    const bool tooWide = oneLine && fontMetrics().horizontalAdvance(drawable) > contentsRect().width();
    if (tooWide)
        drawFitted(drawable);
    else if (oneLine && drawable == text())
        QLabel::paintEvent(event);
    else
        drawAs(drawable, font());
}

/** A line that misses its place by little takes what it misses from its blanks; else its end is left out. */
void PlainLabel::drawFitted(const QString& line)
{
    const int room = contentsRect().width();
    const int missing = fontMetrics().horizontalAdvance(line) - room;
    const int blanks = int(line.count(QLatin1Char(' ')));
    QFont font = this->font();
    if (missing <= blanks * mostOfABlank)
        font.setWordSpacing(-(missing + blanks - 1) / blanks);
    drawAs(QFontMetrics(font, this).elidedText(line, Qt::ElideRight, room), font);
}

void PlainLabel::drawAs(const QString& text, const QFont& font)
{
    const bool leftToRight = !text.isRightToLeft();
    const QFontMetrics metrics(font, this);
    QRect box = contentsRect();
    Qt::Alignment place =
        QStyle::visualAlignment(leftToRight ? Qt::LeftToRight : Qt::RightToLeft, alignment());
    if (place.testFlag(Qt::AlignVCenter) && metrics.size(0, text).height() > box.height()) {
        box.setTop(box.top() + (box.height() - metrics.height()) / 2);
        place.setFlag(Qt::AlignVCenter, false).setFlag(Qt::AlignTop);
    }
    const int flags = int(place) | (leftToRight ? Qt::TextForceLeftToRight : Qt::TextForceRightToLeft);
    QPainter painter(this);
    painter.setFont(font);
    drawFrame(&painter);
    style()->drawItemText(&painter, box, flags, palette(), isEnabled(), text, foregroundRole());
}
