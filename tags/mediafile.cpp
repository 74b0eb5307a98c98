#include "tags/mediafile.h"

#include "app/openfile.h"

bool MediaFile::openForReading(const QString& path, OpenMode extra)
{
    close();
    setFileName(path);
    const QString error = openToRead(*this, ReadOnly | extra);
    if (!error.isEmpty())
        setErrorString(error);
    return error.isEmpty();
}

QByteArray MediaFile::readAtMost(qint64 bytes)
{
    return isOpen() ? read(qBound<qint64>(0, size() - pos(), bytes)) : QByteArray();
}
