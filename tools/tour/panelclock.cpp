#include "tools/tour/panelclock.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QTimerEvent>
#include <QWidget>

#include <algorithm>

PanelClock::PanelClock(QWidget& panel)
    : m_panel(panel)
{
    QCoreApplication::instance()->installEventFilter(this);
}

PanelClock::~PanelClock() = default;

void PanelClock::advance(int milliseconds)
{
    const qint64 end = m_now + milliseconds;
    findTimers();
    for (Timer* timer = nextDue(); timer && timer->due <= end; timer = nextDue()) {
        m_now = timer->due;
        fire(*timer);
        findTimers();
    }
    m_now = end;
}

bool PanelClock::eventFilter(QObject* object, QEvent* event)
{
    return event->type() == QEvent::Timer && !m_firing && owners().contains(object);
}

/** The panel's objects, and the nameless timers of delayed calls, which belong to the event loop. */
QList<QObject*> PanelClock::owners() const
{
    return QList<QObject*>{&m_panel} + m_panel.findChildren<QObject*>()
        + QAbstractEventDispatcher::instance()->findChildren<QObject*>();
}

/** Begins to count for timers that were started and forgets those that were stopped. */
void PanelClock::findTimers()
{
    std::vector<Timer> found;
    for (QObject* owner : owners()) {
        for (const auto& info : QAbstractEventDispatcher::instance()->registeredTimers(owner)) {
            const auto isKnown = [&](const Timer& timer) {
                return timer.owner == owner && timer.number == info.timerId;
            };
            const auto known = std::find_if(m_timers.begin(), m_timers.end(), isKnown);
            const int interval = int(info.interval);
            found.push_back(
                {owner, info.timerId, interval, known == m_timers.end() ? m_now + interval : known->due});
        }
    }
    m_timers = std::move(found);
}

PanelClock::Timer* PanelClock::nextDue()
{
    const auto earlier = [](const Timer& a, const Timer& b) { return a.due < b.due; };
    const auto next = std::min_element(m_timers.begin(), m_timers.end(), earlier);
    return next == m_timers.end() ? nullptr : &*next;
}

void PanelClock::fire(Timer& timer)
{
    timer.due += std::max(1, timer.interval); // one that runs without a pause must not hold the clock
    m_firing = true;
    QTimerEvent event(timer.number);
    QCoreApplication::sendEvent(timer.owner, &event);
    m_firing = false;
}
