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

namespace {

constexpr int nameServerLines = 2;

/** Keeps the last line of an output of any length, and of that line no more than the bound. */
class LastLine {
public:
    void feed(const QByteArray& output)
    {
        if (output.isEmpty())
            return;
        const auto start = output.chopped(1).lastIndexOf('\n') + 1;
        if (start > 0 || m_complete)
            m_text.clear();
        m_text += output.mid(start).left(limits::systemTextBytes - m_text.size());
        m_complete = output.endsWith('\n');
    }
    QByteArray text() const { return m_text; }

private:
    QByteArray m_text;
    bool m_complete = true;
};

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
    LastLine last;
    // For every program that cannot be started the toolkit keeps a descriptor open.
    const QString program = QStandardPaths::findExecutable(QStringLiteral("route"));
    if (program.isEmpty())
        return {};
    QProcess route;
    route.setStandardErrorFile(QProcess::nullDevice());
    const QDeadlineTimer deadline(waitMs);
    route.start(program, {QStringLiteral("-n")});
    while (route.state() != QProcess::NotRunning && !deadline.hasExpired()) {
        route.waitForReadyRead(int(deadline.remainingTime()));
        last.feed(route.readAllStandardOutput());
    }
    last.feed(route.readAllStandardOutput());
    route.close();
    return last.text();
}
