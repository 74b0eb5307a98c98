#pragma once

#include <QIODevice>
#include <QString>

class QFile;

/**
 * Files whose names others choose, opened so that none can hold the panel up: without blocking, and asked
 * what they are once they are open, so that one put in another's place meanwhile is found out. A FIFO or a
 * device in a file's place is neither read nor written.
 *
 * An open file has forgotten its name. Each call returns why the file is not open, in the system's words, and
 * nothing when it is.
 */

/** Opens a file for reading. */
QString openToRead(QFile& file, QIODevice::OpenMode mode);

/** Opens a file with the system's own flags, whose way of access is that of `mode`; leaves errno as the
 * system set it, 0 where it refuses what is no file. */
QString openRegular(QFile& file, int flags, QIODevice::OpenMode mode);
