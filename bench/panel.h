#pragma once

#include "bench/bench.h"
#include "link/packet.h"
#include "mainwindow/mainwindow.h"

#include <QRegion>
#include <QWidget>

class PAparser;

/** The whole panel inside this process, on the bench's unit, with its window shown. */
class Panel {
public:
    explicit Panel(const Bench& bench);

    /** Takes bytes as if they came over the link. */
    void receive(const QByteArray& bytes) { m_window.stackBuff(bytes); }
    template <typename Data> void receive(Command command, const Data& data)
    {
        receive(packetOf(command, data));
    }
    /** Lets everything happen that is due, painting above all. */
    static void settle();

    PAparser& parser() const;

    template <typename Type> Type& find(const char* name) const
    {
        return *m_window.findChild<Type*>(QString::fromLatin1(name));
    }

private:
    MainWindow m_window;
};

/** Counts what is painted of one widget while this object lives. */
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget& widget);

    bool eventFilter(QObject* object, QEvent* event) override;
    double pixels = 0;
};
