#pragma once

#include "mainwindow/mainwindow.h"
#include "protocol/paparser.h"
#include "tests/support/logcatcher.h"
#include "tests/support/unitroot.h"

#include <QCoreApplication>
#include <QMap>
#include <QSignalTransition>
#include <QState>
#include <QStateMachine>

/** A window on a unit of the test's own, with its mode machine running, and what a test asks of it. */
class Panel {
public:
    Panel()
    {
        window.show();
        QCoreApplication::processEvents();
    }

    PAparser& parser() { return *window.findChild<PAparser*>(); }

    /** Emits a signal of the parser, named with its arguments; texts are empty and numbers 0. */
    void emitParser(const char* signal) { emitOf(&parser(), signal); }

    /** Hands bytes to the window as the link does and lets it finish them, however slow the machine. */
    void receive(const QByteArray& bytes)
    {
        window.stackBuff(bytes);
        QCoreApplication::processEvents();
    }

    static void emitOf(QObject* sender, const char* signal)
    {
        const QMetaObject* meta = sender->metaObject();
        const int index = meta->indexOfSignal(signal);
        if (index < 0)
            qFatal("no signal %s", signal);
        QString text;
        QString other;
        unsigned char number = 0;
        const bool takesNumber = meta->method(index).parameterTypes().value(0) == "uchar";
        void* arguments[] = {nullptr, takesNumber ? static_cast<void*>(&number) : &text, &other};
        QMetaObject::activate(sender, meta, index - meta->methodOffset(), arguments);
    }

    /** How each mode is reached: from the start state at once, but for the station list and the menu. */
    QMap<QString, QList<QByteArray>> waysTo() const
    {
        QMap<QString, QList<QByteArray>> ways = {
            {QStringLiteral("StartState"), {}},
            {QStringLiteral("IRList"), {"sgDEVICE_IR_Enter()", "sgKEY_SELECT()"}},
            {QStringLiteral("MenuMode"), {"sgDEVICE_AOE_Enter()", "sgKEY_LONG_SELECT()"}},
        };
        const auto* start = window.findChild<QState*>(QStringLiteral("StartState"));
        for (const QSignalTransition* transition : start->findChildren<QSignalTransition*>()) {
            const QString mode = transition->targetState()->objectName();
            if (!ways.contains(mode))
                ways[mode] = {nameOf(*transition)};
        }
        return ways;
    }
    /** Goes to a mode, from wherever the panel is; there is no way back to the start state. */
    void bringTo(const QString& mode)
    {
        if (this->mode() != QLatin1String("StartState"))
            emitParser("sgDEVICE_AOE_Enter()");
        for (const QByteArray& signal : waysTo().value(mode))
            emitParser(signal.constData());
    }

    /** Whether the machine has a transition on that signal of the parser from where it is. */
    bool leadsAway(const QByteArray& event) const
    {
        const auto* machine = window.findChild<QStateMachine*>();
        for (const QAbstractState* state : machine->configuration())
            for (const auto* transition :
                 state->findChildren<QSignalTransition*>(QString(), Qt::FindDirectChildrenOnly))
                if (nameOf(*transition) == event)
                    return true;
        return false;
    }

    /** The signal that triggers a transition. */
    static QByteArray nameOf(const QSignalTransition& transition)
    {
        const QByteArray signal = transition.signal();
        return signal.startsWith('2') ? signal.mid(1) : signal; // as the toolkit marks a signal's name
    }

    /** What the log says while the parser emits these signals, but for errors. */
    QStringList linesOf(std::initializer_list<const char*> signals_)
    {
        LogCatcher log(0);
        for (const char* signal : signals_)
            emitParser(signal);
        QStringList lines = log.plain();
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const QString& line) { return line.startsWith(QStringLiteral("E ")); }),
                    lines.end());
        return lines;
    }

    /** The innermost active state. */
    QString mode() const
    {
        const auto* machine = window.findChild<QStateMachine*>();
        for (const QAbstractState* state : machine->configuration()) {
            if (state->findChildren<QAbstractState*>().isEmpty())
                return state->objectName();
        }
        return {};
    }

    /** The screens that show, by object name. */
    QStringList screens() const
    {
        QStringList visible;
        for (const QObject* child : window.centralWidget()->children())
            if (child->objectName().startsWith(QLatin1String("wg_"))
                && !static_cast<const QWidget*>(child)->isHidden())
                visible << child->objectName();
        return visible;
    }

    QWidget* widget(const char* name) const { return window.findChild<QWidget*>(QString::fromLatin1(name)); }

    /** The code that the window reports now. */
    int code()
    {
        LogCatcher log(1);
        emit parser().sgMenuRequest();
        return log.lines().value(0).mid(19, 2).toInt(nullptr, 16);
    }

    UnitRoot unit;
    MainWindow window;
};
