#pragma once

#include <QFile>

/** A media file named by the supervisor, which may be anything or nothing: opening and reading never block.
 */
class MediaFile : public QFile {
public:
    /**
     * Opens `path` read-only, closing what was open before. False with errorString() where there is no such
     * file, or where it is a directory, a pipe, a device or a socket.
     */
    bool openForReading(const QString& path, OpenMode extra = NotOpen);

    /** Up to `bytes` bytes from the current position; a length beyond the end of the file costs no memory. */
    QByteArray readAtMost(qint64 bytes);
};
