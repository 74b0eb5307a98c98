#include "bench/panel.h"

#include "protocol/paparser.h"

#include <QCoreApplication>
#include <QPaintEvent>

Panel::Panel(const Bench& bench)
{
    qputenv("VIREO_ROOT", bench.unit.toUtf8());
    m_window.show();
    settle();
}

void Panel::settle()
{
    QCoreApplication::processEvents();
}

PAparser& Panel::parser() const
{
    return *m_window.findChild<PAparser*>();
}

PaintCounter::PaintCounter(QWidget& widget)
{
    widget.installEventFilter(this);
}

bool PaintCounter::eventFilter(QObject*, QEvent* event)
{
    if (event->type() == QEvent::Paint) {
        for (const QRect& part : static_cast<QPaintEvent*>(event)->region())
            pixels += double(part.width()) * part.height();
    }
    return false;
}
