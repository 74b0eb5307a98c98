#include "config/livenetwork.h"

#include "app/limits.h"
#include "app/openfile.h"
#include "app/utf8.h"
#include "config/unitpaths.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QNetworkInterface>
#include <QProcess>
#include <QStandardPaths>

#include <memory>

namespace {

constexpr int nameServerLines = 2;

QByteArray lastLine(const QByteArray& output)
{
    return output.mid(output.lastIndexOf('\n', -2) + 1);
}

/** One that does not even end when it is killed is left behind: to wait for it would hold the panel up for
 * good. */
void end(std::unique_ptr<QProcess> program)
{
    program->kill();
    if (program->state() == QProcess::NotRunning || program->waitForFinished(limits::killedMs))
        return;
    QProcess* const left = program.release();
    QObject::connect(left, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), left,
                     &QObject::deleteLater);
}

} // namespace

std::optional<QNetworkAddressEntry> liveAddress()
{
    const auto entries = QNetworkInterface::interfaceFromName(QStringLiteral("eth0")).addressEntries();
    if (entries.isEmpty())
        return std::nullopt;
    return entries.first();
}

QStringList liveNameServers(QString& error)
{
    const QString keyword = QStringLiteral("nameserver");
    QFile file(unitPath(UnitPath::ResolvConf));
    error = openToRead(file, QIODevice::ReadOnly);
    QStringList servers;
    const QList<QByteArray> lines =
        file.isOpen() ? file.read(limits::systemTextBytes).split('\n') : QList<QByteArray>();
    for (const QByteArray& bytes : lines.mid(0, nameServerLines)) {
        QString line = utf8UntilZero(bytes).simplified();
        const auto found = line.indexOf(keyword);
        if (found >= 0)
            servers << line.remove(found, keyword.size()).simplified();
    }
    return servers;
}

QByteArray lastRoute(int waitMs)
{
    // For every program that cannot be started the toolkit keeps a descriptor open.
    const QString program = QStandardPaths::findExecutable(QStringLiteral("route"));
    if (program.isEmpty())
        return {};
    auto route = std::make_unique<QProcess>();
    QByteArray output;
    const auto read = [&] {
        output = (output + route->readAllStandardOutput()).right(limits::systemTextBytes);
    };
    route->setStandardErrorFile(QProcess::nullDevice());
    const QDeadlineTimer deadline(waitMs);
    route->start(program, {QStringLiteral("-n")});
    while (route->state() != QProcess::NotRunning && !deadline.hasExpired()) {
        route->waitForReadyRead(int(deadline.remainingTime()));
        read();
    }
    read();
    end(std::move(route));
    return lastLine(output);
}
