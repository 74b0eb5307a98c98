#include "bench/bench.h"
#include "bench/boundscases.h"
#include "bench/program.h"

/** The worst that the panel may be told, each case in a process of its own, beside what it may take. */

namespace {

constexpr double mostMilliseconds = 1000;
constexpr double mostMiB = 128;
constexpr Mark within = atMostTimes(1);

void addCase(Bench& bench, int number, const char* name)
{
    const QString folder = bench.scratch + QStringLiteral("/bounds-%1").arg(number);
    QDir().mkpath(folder);
    Program program(bench.programs + QStringLiteral("/vireo-bounds-case"),
                    {QString::number(number), bench.unit, folder}, Program::Read);
    const QList<QByteArray> figures = program.readAll().trimmed().split(' ');
    QDir(folder).removeRecursively();
    if (figures.size() != 2) {
        bench.table.leaveOut(name, "the panel died");
        return;
    }
    bench.table.add(std::string(name) + ": held / limit", "ms", figures.first().toDouble(), mostMilliseconds,
                    within);
    bench.table.add(std::string(name) + ": memory at its peak / limit", "MiB", figures.last().toDouble(),
                    mostMiB, within);
}

} // namespace

void addBoundsRows(Bench& bench)
{
    int number = 0;
    for (const BoundsCase& one : boundsCases())
        addCase(bench, number++, one.name);
}
