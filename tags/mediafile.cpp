#include "tags/mediafile.h"

#include <QFileInfo>

bool MediaFile::openForReading(const QString& path, OpenMode extra)
{
    close();
    setFileName(path);
    const QFileInfo info(path);
    if (info.exists() && !info.isFile() && !info.isDir()) { // opening a pipe waits for its other end
        setErrorString(QStringLiteral("Not a regular file"));
        return false;
    }
    return open(ReadOnly | extra);
}

QByteArray MediaFile::readAtMost(qint64 bytes)
{
    return isOpen() ? read(qBound<qint64>(0, size() - pos(), bytes)) : QByteArray();
}
