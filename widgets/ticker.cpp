#include "widgets/ticker.h"

#include "widgets/drawabletext.h"
#include "widgets/textpieces.h"

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
        const auto measure = [&metrics](const QString& part) { return metrics.horizontalAdvance(part); };
        m_pieces = cutToWidth(text, width() - 1, {measure, metrics.height()});
        m_shown = m_pieces.value(0);
    }
    if (m_pieces.size() >= 2)
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
    const int pixels = fontMetrics().horizontalAdvance(m_shown);
    if (pixels > 0)
        QPainter(this).drawText(QRect(0, 0, pixels, height()), Qt::AlignLeft | Qt::AlignVCenter,
                                drawableLine(m_shown));
}

void Ticker::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_timerId) {
        QWidget::timerEvent(event);
        return;
    }
    if (!m_severalPieces)
        return;
    if (++m_index >= m_pieces.size())
        m_index = 0;
    m_shown = m_pieces.value(m_index);
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
