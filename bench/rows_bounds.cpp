#include "bench/bench.h"
#include "bench/boundscases.h"
#include "bench/program.h"

/** The worst that the panel may be told, each case in a process of its own, beside what it may take. */

namespace {

constexpr double mostMilliseconds = 1000;
constexpr double mostMiB = 128;

void addRow(Bench& bench, const BoundsCase& one, const char* what, const char* unit, double figure,
            double limit)
{
    bench.table.add(std::string(one.name) + ": " + what + " / limit", unit, figure, limit, atMostTimes(1));
}

/** The figures as the case prints them. */
QList<QByteArray> figuresOf(const Bench& bench, int number)
{
    const QString unit = bench.scratch + QStringLiteral("/bounds-%1").arg(number);
    copyFolder(bench.unit, unit);
    Program program(bench.programs + QStringLiteral("/vireo-bounds-case"), {QString::number(number), unit},
                    Program::Read);
    const QList<QByteArray> figures = program.readAll().trimmed().split(' ');
    QDir(unit).removeRecursively();
    return figures;
}

void addCase(Bench& bench, int number, const BoundsCase& one)
{
    const QList<QByteArray> figures = figuresOf(bench, number);
    if (figures.size() != 3)
        return bench.table.leaveOut(one.name, "the panel died");
    addRow(bench, one, "held", "ms", figures.at(0).toDouble(), mostMilliseconds);
    if (one.answeredWithin > 0)
        addRow(bench, one, "next answer", "ms", figures.at(1).toDouble(), one.answeredWithin);
    addRow(bench, one, "memory at its peak", "MiB", figures.at(2).toDouble(), mostMiB);
}

} // namespace

void addBoundsRows(Bench& bench)
{
    int number = -1;
    for (const BoundsCase& one : boundsCases()) {
        ++number;
        if (one.isLong && bench.effort.isQuick)
            bench.table.leaveOut(one.name, "takes too long for a quick run");
        else
            addCase(bench, number, one);
    }
    addWaitRow(bench);
}
