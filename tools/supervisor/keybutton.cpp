#include "tools/supervisor/keybutton.h"

KeyButton::KeyButton(const QString& key, const QString& caption, QWidget* parent)
    : QPushButton(caption, parent)
    , m_key(key)
    , m_press(this)
{
    setObjectName(key);
    setToolTip(tr("Hold for a long press"));
    connect(this, &QPushButton::pressed, &m_press, &LongPress::press);
    connect(this, &QPushButton::released, &m_press, &LongPress::letGo);
    connect(this, &QPushButton::clicked, &m_press, &LongPress::finish);
    connect(&m_press, &LongPress::pressedShort, this, [this] { emit keyPressed(m_key, false); });
    connect(&m_press, &LongPress::pressedLong, this, [this] { emit keyPressed(m_key, true); });
}
