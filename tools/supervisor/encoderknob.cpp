#include "tools/supervisor/encoderknob.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <QtMath>

namespace {

constexpr int wheelNotch = 120;
constexpr double stepDegrees = 360.0 / EncoderKnob::stepsPerTurn;

struct TurnKey {
    Qt::Key key;
    int steps;
};

constexpr TurnKey turnKeys[] = {
    {Qt::Key_Left, -1}, {Qt::Key_Right, 1},     {Qt::Key_Down, -1},
    {Qt::Key_Up, 1},    {Qt::Key_PageDown, -5}, {Qt::Key_PageUp, 5},
};

int stepsOf(int key)
{
    for (const TurnKey& turn : turnKeys)
        if (turn.key == key)
            return turn.steps;
    return 0;
}

bool isPressKey(int key)
{
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Select;
}

/** The shorter way between two angles, -180 to 180 degrees. */
double turnBetween(double from, double to)
{
    return std::remainder(to - from, 360.0);
}

} // namespace

EncoderKnob::EncoderKnob(QWidget* parent)
    : QWidget(parent)
    , m_press(this)
{
    setObjectName(QStringLiteral("encoder"));
    setAccessibleName(tr("Encoder"));
    setFocusPolicy(Qt::WheelFocus);
    setToolTip(tr("Turn: wheel, drag or arrow keys. Press: click or Enter, held for a long press"));
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(&m_press, &LongPress::pressedShort, this, &EncoderKnob::pressedShort);
    connect(&m_press, &LongPress::pressedLong, this, &EncoderKnob::pressedLong);
}

void EncoderKnob::turn(int steps)
{
    if (steps == 0)
        return;
    m_step = (m_step + steps) % stepsPerTurn;
    update();
    emit turned(steps);
}

void EncoderKnob::pressDown()
{
    m_down = true;
    m_press.press();
    update();
}

void EncoderKnob::pressEnd(bool counts)
{
    if (!m_down)
        return;
    m_down = false;
    update();
    if (counts)
        m_press.finish();
    else
        m_press.letGo();
}

void EncoderKnob::wheelEvent(QWheelEvent* event)
{
    const QPoint delta = event->angleDelta();
    m_wheel += delta.y() != 0 ? delta.y() : delta.x();
    const int steps = m_wheel / wheelNotch;
    m_wheel -= steps * wheelNotch;
    turn(steps);
    event->accept();
}

void EncoderKnob::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_pressedAt = event->pos();
    m_dragAngle = angleOf(event->pos());
    m_dragging = false;
    pressDown();
}

/** A drag that has begun to turn the knob is no press any more. */
void EncoderKnob::mouseMoveEvent(QMouseEvent* event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    const int moved = (event->pos() - m_pressedAt).manhattanLength();
    if (!m_dragging && moved < QApplication::startDragDistance())
        return;
    m_dragging = true;
    pressEnd(false);
    const int steps = int(turnBetween(m_dragAngle, angleOf(event->pos())) / stepDegrees);
    m_dragAngle += steps * stepDegrees;
    turn(steps);
}

void EncoderKnob::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton)
        pressEnd(!m_dragging);
}

void EncoderKnob::keyPressEvent(QKeyEvent* event)
{
    const int steps = stepsOf(event->key());
    if (steps != 0)
        turn(steps);
    else if (isPressKey(event->key()) && !event->isAutoRepeat())
        pressDown();
    else if (!isPressKey(event->key()))
        QWidget::keyPressEvent(event);
}

void EncoderKnob::keyReleaseEvent(QKeyEvent* event)
{
    if (isPressKey(event->key()) && !event->isAutoRepeat())
        pressEnd(true);
    else
        QWidget::keyReleaseEvent(event);
}

void EncoderKnob::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void EncoderKnob::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    pressEnd(false);
    update();
}

/** Degrees clockwise from the top. */
double EncoderKnob::angleOf(const QPoint& position) const
{
    const QPointF fromMiddle = QPointF(position) - QRectF(rect()).center();
    return qRadiansToDegrees(std::atan2(fromMiddle.x(), -fromMiddle.y()));
}

QRectF EncoderKnob::face() const
{
    constexpr int margin = 4;
    constexpr int largest = 220;
    const int side = qMin(qMin(width(), height()) - 2 * margin, largest);
    QRectF square(0, 0, side, side);
    square.moveCenter(QRectF(rect()).center());
    return square;
}

void EncoderKnob::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(face().center());
    paintNotches(painter);
    paintCap(painter);
}

void EncoderKnob::paintNotches(QPainter& painter) const
{
    const double radius = face().width() / 2;
    painter.save();
    painter.setPen(QPen(palette().color(QPalette::Mid), 2, Qt::SolidLine, Qt::RoundCap));
    for (int notch = 0; notch < stepsPerTurn; ++notch) {
        painter.drawLine(QPointF(0, -radius + 1), QPointF(0, -radius * 0.93));
        painter.rotate(stepDegrees);
    }
    painter.restore();
}

void EncoderKnob::paintCap(QPainter& painter) const
{
    const double radius = face().width() / 2 * 0.84;
    const QColor edge = palette().color(hasFocus() ? QPalette::Highlight : QPalette::Dark);
    const QColor base = palette().color(QPalette::Button);
    QLinearGradient shade(0, -radius, 0, radius);
    shade.setColorAt(0, m_down ? base.darker(115) : base.lighter(112));
    shade.setColorAt(1, m_down ? base.darker(105) : base.darker(112));
    painter.setBrush(shade);
    painter.setPen(QPen(edge, hasFocus() ? 3 : 2));
    painter.drawEllipse(QPointF(0, 0), radius, radius);
    painter.rotate(m_step * stepDegrees);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(isEnabled() ? QPalette::Highlight : QPalette::Mid));
    painter.drawEllipse(QPointF(0, -radius * 0.74), radius * 0.09, radius * 0.09);
}
