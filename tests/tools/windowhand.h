#pragma once

#include "tools/supervisor/supervisorwindow.h"

#include <QLineEdit>
#include <QWheelEvent>
#include <QtTest>

/** What a hand does on the window of the stand-in supervisor. */
namespace WindowHand {

template <typename Widget> Widget* child(const SupervisorWindow& window, const char* name)
{
    auto* found = window.findChild<Widget*>(QString::fromLatin1(name));
    if (!found)
        qFatal("the window has no %s", name);
    return found;
}

/** Lets a running timer come to its end now. */
inline void fire(QTimer* timer)
{
    QVERIFY(timer && timer->isActive());
    QTimerEvent event(timer->timerId());
    QCoreApplication::sendEvent(timer, &event);
}

/** Turns the mouse wheel over a widget, by 120 a notch. */
inline void wheel(QWidget* widget, int delta)
{
    const QPointF middle = widget->rect().center();
    QWheelEvent event(middle, widget->mapToGlobal(middle.toPoint()), QPoint(), QPoint(0, delta), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget, &event);
}

inline void openDemoMusic(const SupervisorWindow& window)
{
    auto* folder = child<QLineEdit>(window, "folder");
    folder->setText(QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/music"));
    QTest::keyClick(folder, Qt::Key_Return);
}

} // namespace WindowHand
