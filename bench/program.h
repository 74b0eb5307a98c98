#pragma once

#include <QString>
#include <QStringList>

#include <sys/types.h>

/** What /proc says of a process. */
struct MemoryFigures {
    double residentMiB = 0;
    double privateMiB = 0;

    /** Reads the text of a smaps_rollup file. */
    static MemoryFigures from(const QByteArray& smapsRollup);
};

struct ActivityFigures {
    double wakeups = 0; ///< times that it went to sleep by itself
    double processorMicroseconds = 0;
};

/** A program in a process of its own, on the bench's environment; ended with this object. */
class Program {
public:
    enum Output { Dropped, Read };

    /** Fatal where the program does not start. Its diagnostics are dropped. */
    explicit Program(const QString& path, const QStringList& arguments = {}, Output output = Dropped);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    /** The next output, empty at its end; waits for it. */
    QByteArray readSome();
    QByteArray readAll();

    MemoryFigures memory() const;
    /** Of all threads since they started. */
    ActivityFigures activity() const;

private:
    pid_t m_pid = 0;
    int m_output = -1;
};
