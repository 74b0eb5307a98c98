#include "app/openfile.h"

#include <QFile>
#include <QFileInfo>

QString specialFileReason(const QString& path)
{
    const QFileInfo info(path);
    const bool special = info.exists() && !info.isFile() && !info.isDir();
    return special ? QStringLiteral("Not a regular file") : QString();
}

QString openToRead(QFile& file, QIODevice::OpenMode mode)
{
    const QString reason = specialFileReason(file.fileName());
    if (!reason.isEmpty())
        return reason;
    return file.open(mode) ? QString() : file.errorString();
}
