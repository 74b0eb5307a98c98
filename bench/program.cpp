#include "bench/program.h"

#include <QDir>
#include <QFile>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** The number behind the name in a line such as "Rss:   1234 kB". */
double numberBehind(const QByteArray& name, const QByteArray& text)
{
    for (const QByteArray& line : text.split('\n')) {
        if (line.startsWith(name))
            return line.mid(name.size()).simplified().split(' ').value(0).toDouble();
    }
    return 0;
}

/** Starts the program; its output goes to the descriptor. */
pid_t spawned(const QString& path, const QStringList& arguments, int output)
{
    std::vector<QByteArray> texts = {path.toUtf8()};
    for (const QString& argument : arguments)
        texts.push_back(argument.toUtf8());
    std::vector<char*> argv;
    for (QByteArray& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t pid = 0;
    const int error = posix_spawn(&pid, argv.front(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        qFatal("cannot start %s", qPrintable(path));
    return pid;
}

} // namespace

MemoryFigures MemoryFigures::from(const QByteArray& smapsRollup)
{
    constexpr double kibPerMib = 1024;
    const double privateKiB =
        numberBehind("Private_Clean:", smapsRollup) + numberBehind("Private_Dirty:", smapsRollup);
    return {numberBehind("Rss:", smapsRollup) / kibPerMib, privateKiB / kibPerMib};
}

Program::Program(const QString& path, const QStringList& arguments, Output output)
{
    int ends[2] = {};
    if (output == Dropped) {
        const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
        m_pid = spawned(path, arguments, nothing);
        close(nothing);
        return;
    }
    if (pipe2(ends, O_CLOEXEC) != 0)
        qFatal("no pipe");
    m_pid = spawned(path, arguments, ends[1]);
    m_output = ends[0];
    close(ends[1]);
}

Program::~Program()
{
    if (m_output >= 0)
        close(m_output);
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
}

QByteArray Program::readSome()
{
    char buffer[4096];
    const ssize_t got = read(m_output, buffer, sizeof buffer);
    return QByteArray(buffer, int(got > 0 ? got : 0));
}

QByteArray Program::readAll()
{
    QByteArray all;
    for (QByteArray part = readSome(); !part.isEmpty(); part = readSome())
        all += part;
    return all;
}

MemoryFigures Program::memory() const
{
    return MemoryFigures::from(contentOf(QStringLiteral("/proc/%1/smaps_rollup").arg(m_pid)));
}

ActivityFigures Program::activity() const
{
    constexpr double nanosecondsPerMicrosecond = 1000;
    ActivityFigures sum;
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(m_pid));
    for (const QString& task : tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QByteArray status = contentOf(tasks.filePath(task + QLatin1String("/status")));
        const QByteArray times = contentOf(tasks.filePath(task + QLatin1String("/schedstat")));
        sum.wakeups += numberBehind("voluntary_ctxt_switches:", status);
        sum.processorMicroseconds += times.split(' ').value(0).toDouble() / nanosecondsPerMicrosecond;
    }
    return sum;
}
