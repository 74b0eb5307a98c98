#include "fuzz/harness.h"

#include "app/dprintf.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QTextCodec>

#include <cstdio>
#include <cstdlib>

#include <sched.h>
#include <unistd.h>

namespace {

QTemporaryDir& folder()
{
    static QTemporaryDir directory(QDir::tempPath() + QStringLiteral("/vireo-fuzz-XXXXXX"));
    return directory;
}

struct UnitFile {
    QString path;
    QByteArray bytes;
};

QList<UnitFile> demoUnit()
{
    const QDir demo(QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/root"));
    QList<UnitFile> files;
    QDirIterator names(demo.path(), QDir::Files, QDirIterator::Subdirectories);
    while (names.hasNext()) {
        QFile file(names.next());
        if (QFileInfo(file).isExecutable())
            continue;
        if (file.open(QIODevice::ReadOnly))
            files.append({Harness::unitFile(QLatin1Char('/') + demo.relativeFilePath(file.fileName())),
                          file.readAll()});
    }
    return files;
}

/** Standard error as it was at the start: the fuzzer shuts it to what libraries print about bad input. */
int reportChannel = STDERR_FILENO;

void drop(QtMsgType, const QMessageLogContext&, const QString&) { }

} // namespace

QString Harness::path(const QString& name)
{
    return folder().path() + QLatin1Char('/') + name;
}

QString Harness::unitFile(const QString& absolute)
{
    return path(QStringLiteral("unit")) + absolute;
}

void Harness::write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        QDir().mkpath(QFileInfo(path).path());
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
    }
    if (file.write(bytes) != bytes.size())
        report(QStringLiteral("cannot write ") + path);
}

void Harness::resetUnit()
{
    static const QList<UnitFile> files = demoUnit();
    for (const UnitFile& file : files)
        write(file.path, file.bytes);
}

void Harness::report(const QString& what)
{
    dprintf(reportChannel, "FINDING: %s\n", what.toUtf8().constData());
    std::abort();
}

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    // Neither takes the panel's port nor learns of this machine's addresses; without the rights to it, it
    // does.
    if (unshare(CLONE_NEWNET) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        std::fputs("harness: on the machine's own network\n", stderr);
    reportChannel = dup(STDERR_FILENO);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_FONT_DPI", "96");
    // With this, and a unit without programs, none is started whatever the input brings about.
    qputenv("PATH", "/nonexistent");
    qputenv("VIREO_ROOT", Harness::path(QStringLiteral("unit")).toUtf8());
    QCoreApplication::setAttribute(Qt::AA_Use96Dpi);
    // Never deleted, like what the targets keep: at the end of the process it would outlive what it needs.
    static auto* const application = new QApplication(*argc, *argv);
    Q_UNUSED(application)
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    if (!qEnvironmentVariableIsSet("FUZZ_LOG")) // set it to read the log of a reproducer
        qInstallMessageHandler(drop);
    debugLevel = 0;
    Harness::resetUnit();
    return 0;
}
