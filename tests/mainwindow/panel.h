#pragma once

#include "mainwindow/mainwindow.h"
#include "protocol/paparser.h"
#include "tests/support/logcatcher.h"
#include "tests/support/unitroot.h"

#include <QCoreApplication>
#include <QMap>
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

    /** How each mode is reached from the start state. */
    static const QMap<QString, QList<const char*>>& waysTo()
    {
        static const QMap<QString, QList<const char*>> ways = {
            {QStringLiteral("StartState"), {}},
            {QStringLiteral("USBMode"), {"sgDEVICE_USB_FRONT_Enter()"}},
            {QStringLiteral("AOEMode"), {"sgDEVICE_AOE_Enter()"}},
            {QStringLiteral("IRMain"), {"sgDEVICE_IR_Enter()"}},
            {QStringLiteral("IRList"), {"sgDEVICE_IR_Enter()", "sgKEY_SELECT()"}},
            {QStringLiteral("SetMode"), {"sgDEVICE_Set_Enter()"}},
            {QStringLiteral("NetBGMMode"), {"sgDEVICE_NetBGM_Enter()"}},
            {QStringLiteral("MenuMode"), {"sgDEVICE_AOE_Enter()", "sgKEY_LONG_SELECT()"}},
        };
        return ways;
    }
    void bringTo(const QString& mode)
    {
        for (const char* signal : waysTo().value(mode))
            emitParser(signal);
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
        for (const char* name :
             {"wg_USB", "wg_IR", "wg_AOE", "wg_Setting", "wg_Menu", "wg_NetBGM", "wg_IRList"}) {
            if (!widget(name)->isHidden())
                visible << QString::fromLatin1(name);
        }
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
