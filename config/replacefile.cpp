#include "config/replacefile.h"

#include "app/openfile.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>

#include <fcntl.h>
#include <unistd.h>

namespace {

/** No two panels share a unit's folder, so one name is enough and nothing piles up under others. */
constexpr char asideEnding[] = ".vireo-new";

/** Why a folder takes no other file, or not in this one's place; a want of room is not among it. */
constexpr int missingRights[] = {
    EACCES, // the folder may not be written to
    EPERM, // in a shared folder, the file is another user's
    EEXIST, // and so is what was left aside
    EROFS, // the disk is mounted for reading only, but for the file itself
    EBUSY, // the file is a mount of its own
};

bool rightsAreMissing(int error)
{
    return std::find(std::begin(missingRights), std::end(missingRights), error) != std::end(missingRights);
}

/** Where a chain of links ends; that file need not exist. */
QString targetOf(const QString& path)
{
    constexpr int longestChain = 40; // as the system allows
    QString target = path;
    for (int i = 0; i < longestChain && QFileInfo(target).isSymLink(); ++i)
        target = QFileInfo(target).symLinkTarget();
    return target;
}

// The functions below return 0, or the system's error number.

int store(int descriptor, const QByteArray& bytes)
{
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t written =
            ::write(descriptor, bytes.constData() + done, std::size_t(bytes.size() - done));
        if (written < 0 && errno != EINTR)
            return errno;
        done += std::max<ssize_t>(written, 0);
    }
    return ::fdatasync(descriptor) == 0 ? 0 : errno;
}

int writeAside(QFile& aside, const QByteArray& bytes, const QFile& old)
{
    aside.remove();
    if (!openRegular(aside, O_WRONLY | O_CREAT | O_EXCL, QIODevice::WriteOnly).isEmpty())
        return errno;
    if (old.isOpen())
        aside.setPermissions(old.permissions());
    return store(aside.handle(), bytes);
}

int renameFile(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0 ? 0
                                                                                                    : errno;
}

/** Makes a file longer by room of its own; a file system that cannot promise room is written to without. */
int reserve(const QFile& file, qint64 from, qint64 bytes)
{
    const int error = bytes > 0 ? ::posix_fallocate(file.handle(), from, bytes) : 0;
    return error == EOPNOTSUPP ? 0 : error;
}

/** Takes the room for all bytes before it touches one. */
int overwrite(QFile& old, const QByteArray& bytes)
{
    const qint64 oldBytes = old.size();
    if (const int error = reserve(old, oldBytes, bytes.size() - oldBytes)) {
        old.resize(oldBytes);
        return error;
    }
    const int error = store(old.handle(), bytes);
    return error == 0 && ::ftruncate(old.handle(), bytes.size()) != 0 ? errno : error;
}

} // namespace

ConfigWrite replaceFile(const QString& path, const QByteArray& bytes, QString& reason)
{
    const QString target = targetOf(path);
    const QString asideName = target + QLatin1String(asideEnding);
    QFile old(target);
    QFile aside(asideName);
    reason = openRegular(old, O_WRONLY, QIODevice::WriteOnly);
    if (!reason.isEmpty() && errno != ENOENT)
        return ConfigWrite::NotOpened;
    int error = writeAside(aside, bytes, old);
    if (error == 0)
        error = renameFile(asideName, target);
    if (error == 0)
        return ConfigWrite::Written;
    QFile::remove(asideName);
    if (old.isOpen() && rightsAreMissing(error))
        error = overwrite(old, bytes);
    reason = qt_error_string(error);
    if (error == 0)
        return ConfigWrite::Written;
    return old.isOpen() || aside.isOpen() ? ConfigWrite::Failed : ConfigWrite::NotOpened;
}
