#pragma once

#include "tests/support/panelmain.h"

#include <QByteArray>

#include <cstring>
#include <fcntl.h>
#include <linux/capability.h>
#include <net/if.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

/**
 * The panel's TCP port for this process and its children alone: tests that listen on it run side by side, and
 * beside a panel. They do so in networks of their own, which a plain user makes within a name space of users;
 * where the system allows neither, one test waits for the other.
 *
 * Made before the first thread is.
 */
class OwnPort {
public:
    OwnPort()
    {
        if (!canEnterNetwork())
            waitForOthers();
        else if (!enterNetwork())
            qFatal("the test has lost its way into a network of its own");
    }

private:
    /** Tried in a child, as there is no way back. */
    static bool canEnterNetwork()
    {
        const pid_t child = ::fork();
        if (child == 0)
            ::_exit(enterNetwork() ? 0 : 1);
        int status = -1;
        return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
    }

    static bool enterNetwork()
    {
        if (::geteuid() == 0)
            return ::unshare(CLONE_NEWNET) == 0 && switchLoopbackOn();
        const QByteArray user = QByteArray::number(::geteuid());
        const QByteArray group = QByteArray::number(::getegid());
        return ::unshare(CLONE_NEWUSER | CLONE_NEWNET) == 0 && write("/proc/self/setgroups", "deny")
            && write("/proc/self/uid_map", user + ' ' + user + " 1")
            && write("/proc/self/gid_map", group + ' ' + group + " 1") && switchLoopbackOn() && dropRights();
    }

    static bool write(const char* path, const QByteArray& text)
    {
        const int file = ::open(path, O_WRONLY | O_CLOEXEC);
        const bool done = ::write(file, text.constData(), size_t(text.size())) == text.size();
        ::close(file);
        return done;
    }

    static bool switchLoopbackOn()
    {
        const int socket = ::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        ifreq request{};
        std::strcpy(request.ifr_name, "lo");
        request.ifr_flags = IFF_UP;
        const bool done = ::ioctl(socket, SIOCSIFFLAGS, &request) == 0;
        ::close(socket);
        return done;
    }

    /** A plain user has all rights in a name space of his own, and would read what the file's mode forbids.
     */
    static bool dropRights()
    {
        __user_cap_header_struct self{_LINUX_CAPABILITY_VERSION_3, 0};
        const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
        return ::syscall(SYS_capset, &self, none) == 0;
    }

    /** The lock goes with the process. */
    static void waitForOthers()
    {
        const int folder = ::open(VIREO_SOURCE_DIR, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (::flock(folder, LOCK_EX) != 0)
            qFatal("the test cannot wait for others that use the port");
    }
};

/** VIREO_TEST_MAIN for a test that listens on the panel's port, by itself or through a program that it
 * starts. */
#define VIREO_PORT_TEST_MAIN(TestClass)                                                                      \
    int main(int argc, char** argv)                                                                          \
    {                                                                                                        \
        const OwnPort port;                                                                                  \
        return runTest<TestClass>(argc, argv);                                                               \
    }
