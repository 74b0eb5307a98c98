#include "tools/supervisor/longpress.h"

LongPress::LongPress(QObject* parent)
    : QObject(parent)
    , m_hold(this)
{
    m_hold.setObjectName(QStringLiteral("hold"));
    m_hold.setSingleShot(true);
    m_hold.setInterval(holdMs);
    connect(&m_hold, &QTimer::timeout, this, &LongPress::onHeld);
}

void LongPress::press()
{
    m_pending = true;
    m_hold.start();
}

void LongPress::letGo()
{
    m_hold.stop();
}

void LongPress::finish()
{
    m_hold.stop();
    if (m_pending)
        emit pressedShort();
    m_pending = false;
}

void LongPress::onHeld()
{
    m_pending = false;
    emit pressedLong();
}
