#include "bench/bench.h"
#include "bench/link.h"
#include "bench/program.h"
#include "link/tcp_server.h"
#include "tests/support/notifysocket.h"
#include "tests/support/unitroot.h"

#include <QDir>
#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpSocket>
#include <QThread>

#include <algorithm>

/** The one wait that is meant: for the network, while the service manager goes on hearing. */

namespace {

constexpr double watchdogMilliseconds = 90000; // as the service sets it
constexpr int pollMilliseconds = 10;
constexpr int restartDelayMilliseconds = 100;
constexpr int menuTurnMilliseconds = 2000;

void writeHanging(const QString& path)
{
    UnitRoot::write(path, "#!/bin/sh\nexec sleep 1000\n");
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

/** Switches DHCP so many times, all in one write. */
QByteArray toggles(int count)
{
    const QByteArray select = packetOf(Command::Key, wire::Key::Select);
    QByteArray all;
    for (int i = 0; i < count; ++i)
        all += select + packetOf(Command::Encoder, i % 2 == 0 ? -1 : 1) + select;
    return all;
}

/** By the menu, which takes a key for the entry in front: the one that it has turned to. */
void goToSetup(QTcpSocket& panel)
{
    panel.write(packetOf(Command::Device, wire::Source::Radio)
                + packetOf(Command::Key, wire::held(wire::Key::Select)) + packetOf(Command::Encoder, 2));
    panel.waitForBytesWritten();
    QThread::msleep(menuTurnMilliseconds);
    panel.write(packetOf(Command::Key, wire::Key::Select) + modeRequest());
    QByteArray answer;
    while (answer.size() < modeAnswerBytes && panel.waitForReadyRead())
        answer += panel.readAll();
    if (!answer.endsWith(char(ModeCode::Setup)))
        qFatal("the setup screen does not show");
}

/** The longest time without a word to the service manager, in milliseconds, until the next answer. */
double silenceUntilAnswer(const NotifySocket& manager, QTcpSocket& panel)
{
    qint64 longest = 0;
    QElapsedTimer silence;
    silence.start();
    panel.write(modeRequest());
    do {
        longest = std::max(longest, silence.elapsed());
        if (!manager.received().isEmpty())
            silence.start();
    } while (!panel.waitForReadyRead(pollMilliseconds));
    panel.readAll();
    return double(longest);
}

double silenceDuring(const QByteArray& bytes, const NotifySocket& manager)
{
    QTcpSocket panel;
    do
        panel.connectToHost(QHostAddress::LocalHost, tcp_server::port);
    while (!panel.waitForConnected());
    goToSetup(panel);
    manager.received();
    panel.write(bytes);
    const double inBurst = silenceUntilAnswer(manager, panel);
    QThread::msleep(2 * restartDelayMilliseconds);
    return std::max(inBurst, silenceUntilAnswer(manager, panel));
}

} // namespace

void addWaitRow(Bench& bench)
{
    const QDir folder(bench.scratch + QStringLiteral("/hanging"));
    copyFolder(bench.unit, folder.path());
    writeHanging(folder.filePath(QStringLiteral("etc/rc.d/init.d/network")));
    writeHanging(folder.filePath(QStringLiteral("route")));
    const QByteArray path = qgetenv("PATH");
    const QByteArray manager = folder.filePath(QStringLiteral("notify")).toUtf8();
    const NotifySocket socket(manager);
    qputenv("PATH", folder.path().toUtf8() + ':' + path);
    qputenv("VIREO_ROOT", folder.path().toUtf8());
    qputenv("NOTIFY_SOCKET", manager);
    qputenv("WATCHDOG_USEC", QByteArray::number(watchdogMilliseconds * 1000, 'f', 0));
    {
        const Program panel(bench.programs + QStringLiteral("/vireo"));
        const int count = bench.effort.networkRestarts;
        bench.table.add("DHCP switched " + std::to_string(count)
                            + " times, route and restart hang: silence / watchdog",
                        "ms", silenceDuring(toggles(count), socket), watchdogMilliseconds, atMostTimes(1));
    }
    qputenv("PATH", path);
    qunsetenv("NOTIFY_SOCKET");
    qunsetenv("WATCHDOG_USEC");
}
