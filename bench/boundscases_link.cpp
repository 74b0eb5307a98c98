#include "bench/boundscases.h"
#include "link/packet.h"

#include <QFile>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <random>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

/** Packets that nobody means to send, and what stands behind the names in them. */

namespace {

constexpr int titleBytes = 256;

/** Characters of every script, in UTF-8. */
QByteArray randomText(int bytes)
{
    std::minstd_rand random(1);
    QString text;
    for (int i = 0; i < bytes; ++i)
        text += QChar(ushort(random() >> 8));
    return text.toUtf8().left(bytes);
}

/** So many packets in one write, each of which passes through three modes and records them. */
QByteArray modeChanges(int count)
{
    constexpr auto sources = int(wire::Source::FrontUsb) | int(wire::Source::Radio) | int(wire::Source::Aoe);
    return packetOf(Command::Device, sources).repeated(count);
}

/** Lets a process of its own exchange two files for each other, again and again as long as this one lives. */
void exchangeForEver(const QByteArray& one, const QByteArray& other)
{
    if (fork() != 0)
        return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (;;)
        renameat2(AT_FDCWD, one.constData(), AT_FDCWD, other.constData(), RENAME_EXCHANGE);
}

QByteArray pipeOrFile(const QDir& unit)
{
    const QByteArray name = QFile::encodeName(unit.filePath(QStringLiteral("song.mp3")));
    const QByteArray pipe = name + ".pipe";
    QFile(QFile::decodeName(name)).open(QIODevice::WriteOnly);
    if (mkfifo(pipe.constData(), 0600) != 0)
        qFatal("cannot make a FIFO: %s", std::strerror(errno));
    exchangeForEver(name, pipe);
    return packetOf(Command::Device, wire::Source::FrontUsb)
        + packetOf(Command::Filename, name).repeated(500);
}

constexpr BoundsCase cases[] = {
    {"station with 64 KB of random characters",
     [](const QDir&) {
         return packetOf(Command::Device, wire::Source::Radio)
             + packetOf(Command::IRStation,
                        QByteArray("title").leftJustified(titleBytes, '\0')
                            + randomText(mostDataBytes - titleBytes));
     }},
    {"upgrade text of 64 KB of random characters",
     [](const QDir&) {
         return packetOf(Command::UpgradeInfo, wire::UpgradeState::Started)
             + packetOf(Command::UpgradeMsg, randomText(mostDataBytes));
     }},
    {"2,000 device packets 0x19 in one write", [](const QDir&) { return modeChanges(2000); }, 5000},
    {"60,000 device packets 0x19 in one write", [](const QDir&) { return modeChanges(60000); }, 0, true},
    {"a FIFO and a file exchanged while the name arrives", pipeOrFile},
};

} // namespace

std::vector<BoundsCase> linkBoundsCases()
{
    return {std::begin(cases), std::end(cases)};
}
