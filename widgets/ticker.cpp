#include "widgets/ticker.h"

#include "widgets/drawabletext.h"

#include <QPainter>
#include <QTimerEvent>

namespace {

constexpr int pieceMilliseconds = 3000;

}

Ticker::Ticker(QWidget* parent)
    : QWidget(parent)
{
}

void Ticker::setText(const QString& text, bool run)
{
    m_run = run;
    m_text = text;
    m_index = 0;
    update();
    updateGeometry();
    if (!text.isEmpty()) {
        const QFontMetrics metrics = fontMetrics();
        const auto measure = [metrics](const QString& part) { return metrics.horizontalAdvance(part); };
        m_pieces = TextPieces(text, width() - 1, {measure, metrics.height()});
        m_shown = m_pieces.piece(0);
    }
    if (!m_pieces.piece(1).isNull())
        m_severalPieces = true;
}

void Ticker::setRun(bool run)
{
    m_run = run;
}

QSize Ticker::sizeHint() const
{
    return fontMetrics().size(0, m_text);
}

void Ticker::paintEvent(QPaintEvent*)
{
    const QString drawn = drawableText(m_shown, width());
    const Qt::Alignment place = placeOf(drawn, Qt::AlignLeft | Qt::AlignVCenter);
    const int pixels = fontMetrics().horizontalAdvance(drawn);
    if (pixels > 0)
        QPainter(this).drawText(QRect(0, 0, pixels, height()), int(place), drawn);
}

void Ticker::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timerId) {
        QWidget::timerEvent(event);
        return;
    }
    if (!m_severalPieces)
        return;
    if (m_pieces.piece(++m_index).isNull())
        m_index = 0;
    m_shown = m_pieces.piece(m_index);
    update();
}

void Ticker::showEvent(QShowEvent*)
{
    m_timerId = startTimer(pieceMilliseconds);
}

void Ticker::hideEvent(QHideEvent*)
{
    killTimer(m_timerId);
    m_timerId = 0;
}
