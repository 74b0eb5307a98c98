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

/** Runs a program to its end while the test's own event loop goes on, so that a FakePanel can serve it. */
inline SupervisorRun
runProgram(const QString& program, const QStringList& arguments, const QByteArray& input = {},
           const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    QSignalSpy finished(&process, SIGNAL(finished(int, QProcess::ExitStatus)));
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!finished.wait(60000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, QStringLiteral("did not end")};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

/** Runs the real program in the same way. */
inline SupervisorRun
runSupervisor(const QStringList& arguments, const QByteArray& input = {},
              const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment())
{
    return runProgram(QStringLiteral(SUPERVISOR_PROGRAM), arguments, input, environment);
}

/** Runs it from the shell in a folder, for arguments that are no UTF-8: "$0" is the program, $1 the port. */
inline SupervisorRun runSupervisorInShell(const QString& folder, const QString& line, const QString& port)
{
    return runProgram(QStringLiteral("sh"),
                      {QStringLiteral("-c"), QStringLiteral("cd '%1' && ").arg(folder) + line,
                       QStringLiteral(SUPERVISOR_PROGRAM), port});
}
