#include "app/waitalive.h"

#include "app/limits.h"
#include "app/servicemanager.h"

#include <QDeadlineTimer>
#include <QProcess>

bool waitAlive(QProcess& program, int ms)
{
    const QDeadlineTimer deadline(ms);
    while (program.state() != QProcess::NotRunning && !deadline.hasExpired()) {
        ServiceManager::sayAlive();
        program.waitForFinished(int(qMin<qint64>(deadline.remainingTime(), limits::aliveMs)));
    }
    return program.state() == QProcess::NotRunning;
}
