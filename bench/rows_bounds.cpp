#include "bench/bench.h"
#include "bench/boundscases.h"
#include "bench/program.h"

/** The worst that the panel may be told, each case in a process of its own, beside what it may take. */

namespace {

struct Limit {
    const char* what;
    const char* unit;
    double most;
    bool ofWaitsOnly = false;
};
/** In the order in which the case prints its figures. */
constexpr Limit limits[] = {
    {"held", "ms", 1000},
    {"what follows is answered", "ms", 5000, true},
    {"memory at its peak", "MiB", 128},
};

void addCase(Bench& bench, int number, const BoundsCase& one)
{
    const QString unit = bench.scratch + QStringLiteral("/bounds-%1").arg(number);
    copyFolder(bench.unit, unit);
    Program program(bench.programs + QStringLiteral("/vireo-bounds-case"), {QString::number(number), unit},
                    Program::Read);
    const QList<QByteArray> figures = program.readAll().trimmed().split(' ');
    QDir(unit).removeRecursively();
    if (figures.size() != int(std::size(limits))) {
        bench.table.leaveOut(one.name, "the panel died");
        return;
    }
    for (int i = 0; i < figures.size(); ++i) {
        const Limit& limit = limits[i];
        if (!limit.ofWaitsOnly || one.clock == CLOCK_MONOTONIC)
            bench.table.add(std::string(one.name) + ": " + limit.what + " / limit", limit.unit,
                            figures.at(i).toDouble(), limit.most, atMostTimes(1));
    }
}

} // namespace

void addBoundsRows(Bench& bench)
{
    int number = 0;
    for (const BoundsCase& one : boundsCases())
        addCase(bench, number++, one);
}
