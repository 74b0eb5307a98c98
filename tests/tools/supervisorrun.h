#pragma once

#include <QProcess>
#include <QProcessEnvironment>
#include <QSignalSpy>
#include <QStringList>

/** What a run of the real program left behind. */
struct SupervisorRun {
    int exitCode = -1;
    QString out;
    QString err;
};

/** Runs the real program to its end while the test's own event loop goes on, so that a FakePanel can serve
 * it.
 */
inline SupervisorRun
runSupervisor(const QStringList& arguments, const QByteArray& input = {},
              const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    QSignalSpy finished(&process, SIGNAL(finished(int, QProcess::ExitStatus)));
    process.start(QStringLiteral(SUPERVISOR_PROGRAM), arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!finished.wait(60000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, QStringLiteral("did not end")};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}
