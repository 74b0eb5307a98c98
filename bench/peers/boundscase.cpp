#include "app/dprintf.h"
#include "bench/bench.h"
#include "bench/boundscases.h"
#include "bench/panel.h"
#include "protocol/paparser.h"
#include "tests/tags/peakmemory.h"

#include <QApplication>
#include <QFile>
#include <QTextCodec>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <pthread.h>
#include <unistd.h>

/** Where the unit has no room for a thread, who counts on one may wait for ever. */
extern "C" int pthread_create(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*) noexcept
{
    return EAGAIN;
}

namespace {

/** What waits for ever ends with this. */
constexpr unsigned mostSeconds = 120;

/** In milliseconds. */
struct Held {
    double longestTurn = 0; ///< of the event loop
    double untilAnswered = 0;
};

/** The time, but for that in which others had the processor: what else the machine does does not count. */
double milliseconds()
{
    QFile times(QStringLiteral("/proc/self/schedstat"));
    if (!times.open(QIODevice::ReadOnly))
        qFatal("the system does not tell how long a program waits for the processor");
    const double waited = times.readAll().split(' ').at(1).toDouble();
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return double(now.tv_sec) * 1e3 + (double(now.tv_nsec) - waited) / 1e6;
}

class TurnClock {
public:
    template <typename Work> void time(const Work& work)
    {
        const double start = milliseconds();
        work();
        const double taken = milliseconds() - start;
        m_held.longestTurn = std::max(m_held.longestTurn, taken);
        m_held.untilAnswered += taken;
    }
    Held held() const { return m_held; }

private:
    Held m_held;
};

/** Lets the panel take the bytes and a request behind them, and turns the event loop until that is answered.
 */
Held hold(Panel& panel, const QByteArray& bytes)
{
    bool answered = false;
    QObject::connect(&panel.parser(), &PAparser::sgMenuRequest, &panel.parser(), [&] { answered = true; });
    TurnClock turns;
    turns.time([&] {
        panel.receive(bytes + packetOf(Command::Request, wire::Request::Mode));
        Panel::settle();
    });
    while (!answered)
        turns.time(Panel::settle);
    return turns.held();
}

} // namespace

/**
 * Tells a panel of its own one of the cases and prints for how many milliseconds a turn of its event loop
 * took at most, after how many it answers what came behind, and the most MiB of memory that the whole process
 * then had.
 *
 *     vireo-bounds-case NUMBER UNIT
 */
int main(int argc, char** argv)
{
    alarm(mostSeconds);
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    const QApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    debugLevel = 4; // as the panel prints by default
    const QStringList arguments = QCoreApplication::arguments();
    Bench bench;
    bench.unit = arguments.at(2);
    const BoundsCase chosen = boundsCases().at(std::size_t(arguments.at(1).toInt()));
    const QByteArray bytes = chosen.prepare(QDir(bench.unit));

    Panel panel(bench);
    PeakMemory::reset();
    const Held held = hold(panel, bytes);
    constexpr double bytesPerMiB = 1024 * 1024;
    std::printf("%f %f %f\n", held.longestTurn, held.untilAnswered, double(PeakMemory::used()) / bytesPerMiB);
    return 0;
}
