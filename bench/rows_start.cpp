#include "bench/bench.h"
#include "bench/medians.h"
#include "bench/program.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

/** From the start of a program to its first frame, what it keeps of the memory then, and its size. */

namespace {

constexpr double bytesPerMiB = 1024 * 1024;
const QString panelProgram = QStringLiteral("vireo-first-frame");
const QString bareProgram = QStringLiteral("bare-window");

struct Starts {
    std::vector<double> milliseconds;
    std::vector<double> residentMiB;
    std::vector<double> privateMiB;
};

void startOnce(const QString& path, Starts& starts)
{
    QElapsedTimer clock;
    clock.start();
    Program program(path, {}, Program::Read);
    const QByteArray firstLine = program.readSome();
    starts.milliseconds.push_back(double(clock.nsecsElapsed()) / 1e6);
    const MemoryFigures memory = MemoryFigures::from(firstLine + program.readAll());
    starts.residentMiB.push_back(memory.residentMiB);
    starts.privateMiB.push_back(memory.privateMiB);
}

double strippedMiB(const Bench& bench, const char* name)
{
    const QString stripped = QDir(bench.scratch).filePath(QStringLiteral("stripped"));
    const QString program = QDir(bench.programs).filePath(QLatin1String(name));
    QProcess::execute(QStringLiteral("strip"), {QStringLiteral("-o"), stripped, program});
    return double(QFileInfo(stripped).size()) / bytesPerMiB;
}

/**
 * The programs once more, in a folder of their own, where the toolkit finds no image plugin, as on a unit
 * that needs none. A desktop has a dozen, which the first image looks through.
 */
QString folderAsOnUnit(const Bench& bench)
{
    const QDir scratch(bench.scratch);
    const QDir installed(QCoreApplication::libraryPaths().constFirst());
    scratch.mkpath(QStringLiteral("plugins"));
    QFile::link(installed.filePath(QStringLiteral("platforms")),
                scratch.filePath(QStringLiteral("plugins/platforms")));
    scratch.mkpath(QStringLiteral("bin"));
    for (const QString& name : {panelProgram, bareProgram})
        QFile::copy(QDir(bench.programs).filePath(name), scratch.filePath(QStringLiteral("bin/") + name));
    QFile settings(scratch.filePath(QStringLiteral("bin/qt.conf")));
    settings.open(QIODevice::WriteOnly);
    settings.write("[Paths]\nPlugins=" + scratch.filePath(QStringLiteral("plugins")).toUtf8() + '\n');
    return scratch.filePath(QStringLiteral("bin"));
}

void addRows(Bench& bench, const std::string& where, const QDir& programs)
{
    Starts panel;
    Starts bare;
    for (int i = 0; i < bench.effort.starts; ++i) {
        startOnce(programs.filePath(panelProgram), panel);
        startOnce(programs.filePath(bareProgram), bare);
    }
    const std::string against = where + " / a bare label window";
    bench.table.add("start to first frame" + against, "ms", median(panel.milliseconds),
                    median(bare.milliseconds), atMostTimes(1.5));
    bench.table.add("resident memory then" + against, "MiB", median(panel.residentMiB),
                    median(bare.residentMiB), atMostMore(6));
    bench.table.add("private memory then" + against, "MiB", median(panel.privateMiB), median(bare.privateMiB),
                    atMostMore(6));
}

} // namespace

void addStartRows(Bench& bench)
{
    qputenv("VIREO_ROOT", bench.unit.toUtf8());
    addRows(bench, "", QDir(bench.programs));
    addRows(bench, ", no image plugin", QDir(folderAsOnUnit(bench)));
    bench.table.add("program without symbols / a bare label window", "MiB", strippedMiB(bench, "vireo"),
                    strippedMiB(bench, "bare-window"));
}
