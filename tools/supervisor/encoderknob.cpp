#include "tools/supervisor/encoderknob.h"

#include "tools/supervisor/look.h"

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

QRectF squareOf(double radius)
{
    return {-radius, -radius, 2 * radius, 2 * radius};
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
    , m_held(this)
{
    setObjectName(QStringLiteral("encoder"));
    setAccessibleName(tr("Encoder"));
    setFocusPolicy(Qt::WheelFocus);
    setToolTip(tr("Turn: wheel, drag or arrow keys. Press: click or Enter, held for a long press"));
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    connect(&m_held, &HeldKey::letGo, this, [this] { pressEnd(true); });
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

void EncoderKnob::pressByKey(int key)
{
    if (m_held.goesOn(key))
        return;
    m_held.press(key);
    pressDown();
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
    else if (!isPressKey(event->key()))
        QWidget::keyPressEvent(event);
    else if (!event->isAutoRepeat() || m_held.isHeld())
        pressByKey(event->key());
}

void EncoderKnob::keyReleaseEvent(QKeyEvent* event)
{
    if (!m_held.release(*event))
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
    m_held.drop();
    pressEnd(false);
    update();
}

/** Degrees clockwise from the top. */
double EncoderKnob::angleOf(const QPoint& position) const
{
    const QPointF fromMiddle = QPointF(position) - QRectF(rect()).center();
    return qRadiansToDegrees(std::atan2(fromMiddle.x(), -fromMiddle.y()));
}

/** Whole pixels, so that turning does not shake the edge. */
QRectF EncoderKnob::face() const
{
    constexpr int margin = 2;
    const int side = (qMin(width(), height()) - 2 * margin) / 2 * 2;
    QRectF square(0, 0, side, side);
    square.moveCenter(QRectF(rect()).center().toPoint());
    return square;
}

void EncoderKnob::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(face().center());
    const double radius = face().width() / 2;
    paintNotches(painter, radius);
    if (hasFocus())
        Look::paintFocus(painter, squareOf(radius * 0.885), radius * 0.885);
    paintSkirt(painter, radius * 0.84);
    paintCap(painter, radius * (m_down ? 0.68 : 0.7));
}

/** The detent that the mark stands on is lit, and its neighbours faintly. */
void EncoderKnob::paintNotches(QPainter& painter, double radius) const
{
    painter.save();
    for (int notch = 0; notch < stepsPerTurn; ++notch) {
        const int away = qAbs(int(std::remainder(notch - m_step, stepsPerTurn)));
        const QColor colour = away == 0 ? QColor(Look::lit)
            : away == 1                 ? QColor(Look::lit).darker(200)
                                        : QColor(Look::edge);
        painter.setPen(QPen(colour, qMax(1.5, radius / 50), Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(0, -radius * 0.98), QPointF(0, -radius * 0.92));
        painter.rotate(stepDegrees);
    }
    painter.restore();
}

/** The grip: ribs all round, which turn with the knob. */
void EncoderKnob::paintSkirt(QPainter& painter, double radius) const
{
    constexpr int ribs = 72;
    QRadialGradient shadow(QPointF(0, radius * 0.06), radius * 1.06);
    shadow.setColorAt(0.9, QColor(0, 0, 0, 200));
    shadow.setColorAt(1, Qt::transparent);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadow);
    painter.drawEllipse(QPointF(0, radius * 0.06), radius * 1.06, radius * 1.06);
    QLinearGradient metal(0, -radius, 0, radius);
    metal.setColorAt(0, QColor(0x4A, 0x52, 0x57));
    metal.setColorAt(1, QColor(0x14, 0x17, 0x19));
    painter.setBrush(metal);
    painter.drawEllipse(QPointF(0, 0), radius, radius);
    painter.save();
    painter.rotate(m_step * stepDegrees);
    painter.setPen(QPen(QColor(0, 0, 0, 150), radius / 40, Qt::SolidLine, Qt::FlatCap));
    for (int rib = 0; rib < ribs; ++rib) {
        painter.drawLine(QPointF(0, -radius), QPointF(0, -radius * 0.88));
        painter.rotate(360.0 / ribs);
    }
    painter.restore();
}

/** The turned face: light from above lies on it in two fans, and only its mark turns. */
void EncoderKnob::paintCap(QPainter& painter, double radius) const
{
    QConicalGradient spun(0, 0, 90);
    constexpr double fans[] = {0, 0.5, 1};
    constexpr double shadows[] = {0.22, 0.36, 0.64, 0.78};
    for (const double at : fans)
        spun.setColorAt(at, QColor(0x5A, 0x63, 0x69));
    for (const double at : shadows)
        spun.setColorAt(at, QColor(0x23, 0x28, 0x2B));
    painter.setBrush(spun);
    painter.setPen(QPen(QColor(Look::ground), qMax(1.5, radius / 40)));
    painter.drawEllipse(QPointF(0, 0), radius, radius);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 40), 1));
    painter.drawEllipse(QPointF(0, 0), radius * 0.96, radius * 0.96);
    painter.rotate(m_step * stepDegrees);
    painter.setPen(
        QPen(QColor(isEnabled() ? Look::lit : Look::edge), radius * 0.08, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(0, -radius * 0.84), QPointF(0, -radius * 0.52));
}
