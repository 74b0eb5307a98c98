#pragma once

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QString>

#include <climits>
#include <csignal>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/**
 * Gives up the superuser's rights while it lives, where the test has them, and makes `folder` and what lies
 * in it the property of the user it becomes.
 */
class AsNobody {
public:
    explicit AsNobody(const QString& folder)
    {
        if (::geteuid() != 0)
            return;
        const QFileInfoList entries = QDir(folder).entryInfoList(QDir::Files);
        for (const QFileInfo& entry : entries)
            giveAway(entry.filePath());
        giveAway(folder);
        m_active = ::setresuid(nobody, nobody, 0) == 0;
    }
    ~AsNobody()
    {
        if (m_active && ::setresuid(0, 0, 0) != 0)
            qFatal("cannot become the superuser again");
    }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    static constexpr uid_t nobody = 65534;

    static void giveAway(const QString& path)
    {
        if (::chown(path.toUtf8().constData(), nobody, nobody) != 0)
            qFatal("cannot give away %s", qPrintable(path));
    }

    bool m_active = false;
};

/** Mounts that only this process sees. Each call is false where the test has no right to it. */
class OwnMounts {
public:
    static constexpr const char* refused = "mounting needs the superuser's rights, all of them";

    OwnMounts()
        : m_own(::unshare(CLONE_NEWNS) == 0 && keepToThisProcess())
    {
    }
    bool bind(const QString& source, const QString& target) const
    {
        return m_own
            && ::mount(source.toUtf8().constData(), target.toUtf8().constData(), nullptr, MS_BIND, nullptr)
            == 0;
    }
    bool smallDisk(const QString& target, int bytes) const
    {
        return disk(target, "size=" + QByteArray::number(bytes));
    }
    /** Room for so many files and folders, the topmost folder among them. */
    bool diskOfFewFiles(const QString& target, int files) const
    {
        return disk(target, "nr_inodes=" + QByteArray::number(files));
    }

private:
    /** In a changed root "/" is no mount; what it belongs to lies above. A child goes there, as none comes
     * back. */
    static bool keepToThisProcess()
    {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(leaveRoot() && ::mount(nullptr, ".", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 ? 0 : 1);
        int status = -1;
        return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
    }

    /** A process above its own root is not held there on its way to the topmost folder. */
    static bool leaveRoot()
    {
        bool done = ::chdir("/") == 0 && ::chroot("dev") == 0;
        for (int depth = 0; depth < PATH_MAX / 2; ++depth)
            done = done && ::chdir("..") == 0;
        return done;
    }

    bool disk(const QString& target, const QByteArray& options) const
    {
        return m_own && ::mount("tmpfs", target.toUtf8().constData(), "tmpfs", 0, options.constData()) == 0;
    }

    bool m_own;
};

/** A network of this process's own while it lives, at first without "eth0". */
class OwnNetwork {
public:
    static constexpr const char* refused = "a network of its own needs the superuser's rights and \"ip\"";

    OwnNetwork()
        : m_old(::open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC))
        , m_own(::unshare(CLONE_NEWNET) == 0)
    {
    }
    ~OwnNetwork()
    {
        if (m_own && ::setns(m_old, CLONE_NEWNET) != 0)
            qFatal("cannot leave the test's network");
        ::close(m_old);
    }
    OwnNetwork(const OwnNetwork&) = delete;
    OwnNetwork& operator=(const OwnNetwork&) = delete;

    /** False where the test has no right to a network. */
    bool isOwn() const { return m_own; }

    /** Changes it by a command line of the system's "ip"; false when that fails or is not installed. */
    bool ip(const char* words) const
    {
        const QStringList arguments = QString::fromLatin1(words).split(QLatin1Char(' '));
        return m_own && QProcess::execute(QStringLiteral("ip"), arguments) == 0;
    }

private:
    int m_old;
    bool m_own;
};

/** Lets no file grow beyond `bytes` while it lives: a write beyond fails, as on a full disk. */
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes)
        : m_oldHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limit{bytes, m_old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_oldHandler);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_old{};
    void (*m_oldHandler)(int);
};
