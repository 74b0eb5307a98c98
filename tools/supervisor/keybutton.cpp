#include "tools/supervisor/keybutton.h"

#include "tools/supervisor/keysign.h"
#include "tools/supervisor/look.h"

#include <QKeyEvent>
#include <QPainter>

namespace {

constexpr int margin = 6;
constexpr double corner = 5;

/** The letter that stands behind Alt, as a key's code. */
int letterOf(const QString& caption)
{
    const QString keys = QKeySequence::mnemonic(caption).toString();
    return keys.isEmpty() ? 0 : keys.back().toUpper().unicode();
}

} // namespace

KeyButton::KeyButton(const QString& key, const QString& caption, QWidget* parent)
    : QPushButton(caption, parent)
    , m_key(key)
    , m_press(this)
    , m_held(this)
{
    setObjectName(key);
    setToolTip(tr("Hold for a long press"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    connect(this, &QPushButton::pressed, &m_press, &LongPress::press);
    connect(this, &QPushButton::released, &m_press, &LongPress::letGo);
    connect(this, &QPushButton::clicked, &m_press, &LongPress::finish);
    connect(&m_held, &HeldKey::letGo, this, &KeyButton::endKey);
    connect(&m_press, &LongPress::pressedShort, this, [this] { say(false); });
    connect(&m_press, &LongPress::pressedLong, this, [this] { say(true); });
}

void KeyButton::say(bool isLong)
{
    m_wasLong = isLong;
    update();
    emit keyPressed(m_key, isLong);
}

/** The toolkit makes a click of every repetition; here the letter is held like the space bar. */
bool KeyButton::event(QEvent* event)
{
    if (event->type() != QEvent::Shortcut)
        return QPushButton::event(event);
    if (!m_held.goesOn(letterOf(text())) && !isDown())
        pressByLetter();
    return true;
}

void KeyButton::pressByLetter()
{
    setFocus(Qt::ShortcutFocusReason); // its release comes to whom has the focus
    m_held.press(letterOf(text()));
    setDown(true);
    m_press.press();
}

/** What is up already was given up, or ended by the mouse. */
void KeyButton::endKey()
{
    if (!isDown())
        return;
    setDown(false);
    m_press.finish();
}

void KeyButton::keyPressEvent(QKeyEvent* event)
{
    if (m_held.goesOn(event->key()))
        return;
    const bool wasDown = isDown();
    QPushButton::keyPressEvent(event);
    if (isDown() && !wasDown)
        m_held.press(event->key());
}

void KeyButton::keyReleaseEvent(QKeyEvent* event)
{
    if (!m_held.release(*event))
        QPushButton::keyReleaseEvent(event);
}

void KeyButton::focusOutEvent(QFocusEvent* event)
{
    if (m_held.isHeld()) {
        m_held.drop();
        m_press.letGo();
        setDown(false);
    }
    QPushButton::focusOutEvent(event);
}

QSize KeyButton::sizeHint() const
{
    const QSize text = fontMetrics().size(Qt::TextShowMnemonic, this->text());
    return {text.width() + 2 * margin, 2 * text.height() + 2 * margin};
}

void KeyButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintCap(painter);
    paintFace(painter);
    if (hasFocus())
        Look::paintFocus(painter, rect(), corner);
}

void KeyButton::paintCap(QPainter& painter) const
{
    const QRectF cap = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    QLinearGradient shade(cap.topLeft(), cap.bottomLeft());
    shade.setColorAt(0, QColor(isDown() ? Look::plate : Look::raised).lighter(underMouse() ? 118 : 100));
    shade.setColorAt(1, QColor(Look::sunk));
    painter.setBrush(shade);
    painter.setPen(QPen(QColor(Look::ground), 2));
    painter.drawRoundedRect(cap, corner, corner);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QColor(isDown() ? Look::ground : Look::edge));
    painter.drawRoundedRect(cap.adjusted(1, 1, -1, -1), corner - 1, corner - 1);
}

/** The sign above, the name below; cyan while pressed, amber once the press has been a long one. */
void KeyButton::paintFace(QPainter& painter) const
{
    const QColor pressed(m_wasLong ? Look::warning : Look::lit);
    const QColor colour = isDown() ? pressed : QColor(isEnabled() ? Look::caption : Look::edge);
    const double line = fontMetrics().height();
    const double side = qBound(line * 0.72, height() * 0.26, line * 2);
    const double gap = (line + side) * 0.12;
    const double top = (height() - side - gap - line) / 2 + (isDown() ? 1 : 0);
    paintKeySign(painter, m_key, QRectF((width() - side) / 2, top, side, side), colour);
    painter.setPen(colour);
    painter.drawText(QRectF(0, top + side + gap, width(), line), Qt::AlignCenter | Qt::TextShowMnemonic,
                     text());
}
