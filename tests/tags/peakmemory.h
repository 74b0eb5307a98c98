#pragma once

#include "tests/support/unitroot.h"

#include <malloc.h>

/** Memory of this process, in bytes, as the system counts it. */
namespace PeakMemory {

/** Whether used() tells what the program needs: the address sanitizer keeps for a while what was freed. */
#if defined(__SANITIZE_ADDRESS__)
constexpr bool isMeaningful = false;
#else
constexpr bool isMeaningful = true;
#endif

inline qint64 statusBytes(const char* field)
{
    for (const QByteArray& line : UnitRoot::read(QStringLiteral("/proc/self/status")).split('\n')) {
        if (line.startsWith(field))
            return line.split(':').last().simplified().split(' ').first().toLongLong() * 1024;
    }
    qFatal("the system does not tell %s", field);
}

/** The most address space that has ever been taken at once, used or not. */
inline qint64 reserved()
{
    return statusBytes("VmPeak");
}

/** The most memory in use since reset(). */
inline qint64 used()
{
    return statusBytes("VmHWM");
}

/** Starts used() over, with what has been freed before given back. */
inline void reset()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/clear_refs"));
    if (!file.open(QIODevice::WriteOnly) || file.write("5") != 1)
        qFatal("the peak of the memory in use cannot be reset");
}

} // namespace PeakMemory
