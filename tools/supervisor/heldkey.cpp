#include "tools/supervisor/heldkey.h"

#include <QKeyEvent>

HeldKey::HeldKey(QObject* parent)
    : QObject(parent)
    , m_settle(this)
{
    m_settle.setObjectName(QStringLiteral("settle"));
    m_settle.setSingleShot(true);
    m_settle.setInterval(settleMs);
    connect(&m_settle, &QTimer::timeout, this, &HeldKey::onSettled);
}

void HeldKey::press(int key)
{
    m_settle.stop();
    m_key = key;
}

bool HeldKey::goesOn(int key)
{
    if (!isHeld() || key != m_key)
        return false;
    m_settle.stop();
    return true;
}

bool HeldKey::release(const QKeyEvent& event)
{
    if (!isHeld() || event.key() != m_key)
        return false;
    if (!event.isAutoRepeat())
        m_settle.start();
    return true;
}

void HeldKey::drop()
{
    m_settle.stop();
    m_key = 0;
}

void HeldKey::onSettled()
{
    m_key = 0;
    emit letGo();
}
