#include "app/dprintf.h"
#include "bench/bench.h"
#include "link/tcp_server.h"

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTextCodec>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <iterator>

namespace {

struct Group {
    const char* name;
    void (*addRows)(Bench&);
};

constexpr Group groups[] = {
    {"start", addStartRows}, {"link", addLinkRows},     {"server", addPanelServerRows},
    {"junk", addJunkRows},   {"meter", addMeterRows},   {"tags", addTagRows},
    {"ogg", addOggRows},     {"lists", addListRows},    {"flow", addFlowRows},
    {"idle", addIdleRows},   {"bounds", addBoundsRows},
};

/** The panel's port is fixed, and half of the rows need it. */
bool portIsFree()
{
    QTcpServer server;
    return server.listen(QHostAddress::Any, tcp_server::port);
}

/** Tasks take turns, so that a busy moment of the machine falls on both sides of a row. */
void interleaveTasks(char* program)
{
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {program, interleaving, nullptr};
    int count = int(std::size(arguments)) - 1;
    benchmark::Initialize(&count, arguments);
}

void addRows(Bench& bench, const QStringList& wanted)
{
    for (const Group& group : groups) {
        if (!wanted.isEmpty() && !wanted.contains(QLatin1String(group.name)))
            continue;
        std::fprintf(stderr, "%s...\n", group.name);
        group.addRows(bench);
    }
}

} // namespace

void copyFolder(const QString& from, const QString& to)
{
    if (QProcess::execute(QStringLiteral("cp"), {QStringLiteral("-r"), from, to}) != 0)
        qFatal("cannot copy %s", qPrintable(from));
}

/** `vireo-bench [quick] [GROUP...]` */
int main(int argc, char** argv)
{
    qputenv("QT_FONT_DPI", "96");
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    QApplication application(argc, argv);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    debugLevel = 4; // as the panel prints by default
    if (!portIsFree()) {
        std::fprintf(stderr, "bench: TCP port %d is taken; the panel needs it.\n", tcp_server::port);
        return 1;
    }
    interleaveTasks(argv[0]);

    const QString programs = QCoreApplication::applicationDirPath();
    const QTemporaryDir scratch(programs + QStringLiteral("/../bench-XXXXXX"));
    QStringList wanted = QCoreApplication::arguments().mid(1);
    Bench bench;
    if (wanted.removeAll(QStringLiteral("quick")) > 0)
        bench.effort = Effort::quick();
    bench.programs = programs;
    bench.scratch = scratch.path();
    bench.unit = scratch.filePath(QStringLiteral("unit"));
    copyFolder(QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/root"), bench.unit);
    addRows(bench, wanted);
    bench.table.print();
}
