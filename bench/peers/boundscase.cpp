#include "app/dprintf.h"
#include "bench/bench.h"
#include "bench/boundscases.h"
#include "bench/panel.h"
#include "tests/tags/peakmemory.h"

#include <QApplication>
#include <QTextCodec>

#include <cstdio>
#include <ctime>

namespace {

/** Of this process: what else the machine does meanwhile does not count. */
double processorMilliseconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

} // namespace

/**
 * Tells a panel of its own one of the cases and prints for how many milliseconds that held it, and the most
 * MiB of memory that the whole process then had.
 *
 *     vireo-bounds-case NUMBER UNIT FOLDER
 */
int main(int argc, char** argv)
{
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    const QApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    debugLevel = 4; // as the panel prints by default
    const QStringList arguments = QCoreApplication::arguments();
    Bench bench;
    bench.unit = arguments.at(2);
    const BoundsCase chosen = boundsCases().at(std::size_t(arguments.at(1).toInt()));
    const QByteArray bytes = chosen.prepare(QDir(arguments.at(3)));

    Panel panel(bench);
    PeakMemory::reset();
    const double start = processorMilliseconds();
    panel.receive(bytes);
    Panel::settle();
    constexpr double bytesPerMiB = 1024 * 1024;
    std::printf("%f %f\n", processorMilliseconds() - start, double(PeakMemory::used()) / bytesPerMiB);
    return 0;
}
