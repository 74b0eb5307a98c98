#pragma once

#include "tests/tools/fakepanel.h"
#include "tests/tools/windowhand.h"
#include "tools/supervisor/encoderknob.h"
#include "tools/supervisor/frontpanel.h"
#include "tools/supervisor/keybutton.h"
#include "tools/supervisor/noticepanels.h"
#include "tools/supervisor/script.h"

#include <QLabel>
#include <QPlainTextEdit>
#include <QtTest>

#include <limits>

/** The window on a panel of the test's own. */
struct Stage {
    Stage()
        : window(QStringLiteral("127.0.0.1"), panel.port())
    {
        window.show();
        window.activateWindow();
        for (const char* name :
             {"ask", "answer"}) // fired by hand: on a busy machine they would come before their time
            timer(name)->setInterval(std::numeric_limits<int>::max());
        panel.mode = 5; // of no source
    }

    bool isUp()
    {
        return QTest::qWaitFor([this] { return text("mode") == QLatin1String("Mode: netbgm"); });
    }

    /** Whether the panel has received these words and nothing else but questions for the mode. */
    bool hears(const QStringList& lines)
    {
        QByteArray expected;
        for (const QString& line : lines)
            expected += parseWords(splitLine(line).words).action.packet;
        const QByteArray mark = packetOf(Command::Level, 99); // behind all that was sent before
        emit window.findChild<SystemPanel*>()->said({QStringLiteral("level"), QStringLiteral("99")});
        const bool arrived = QTest::qWaitFor([&] { return panel.packets.contains(mark); });
        panel.packets.removeAll(mark);
        const QByteArray heard = panel.packetsButRequests().join();
        panel.packets.clear();
        if (heard != expected)
            qDebug() << "heard" << heard.toHex(' ') << "instead of" << expected.toHex(' ');
        return arrived && heard == expected;
    }
    bool hears(const char* line) { return hears(QStringList{QString::fromLatin1(line)}); }

    /** Asks for the mode and lets the time for the answer pass; false when one came. */
    bool asksInVain()
    {
        WindowHand::fire(timer("ask"));
        if (!timer("answer")->isActive())
            return false;
        WindowHand::fire(timer("answer"));
        return true;
    }
    QString log() { return child<QPlainTextEdit>("log")->toPlainText(); }

    template <typename Widget> Widget* child(const char* name)
    {
        return WindowHand::child<Widget>(window, name);
    }
    EncoderKnob* knob() { return child<EncoderKnob>("encoder"); }
    QString text(const char* label) { return child<QLabel>(label)->text(); }
    QTimer* timer(const char* name) { return child<QTimer>(name); }
    void openDemoMusic() { WindowHand::openDemoMusic(window); }
    /** What the window says of that music as a disk. */
    static QStringList diskLines()
    {
        return {QStringLiteral("device usb"), QStringLiteral("disk-state normal"), QStringLiteral("disk 4 2"),
                QStringLiteral("mode all")};
    }

    FakePanel panel;
    SupervisorWindow window;
};
