#include "app/openfile.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <qplatformdefs.h>

namespace {

constexpr char notRegular[] = "Not a regular file";
constexpr char folder[] = "file to open is a directory"; // in the toolkit's words

/** Asked first, because a device may notice that it is opened. */
bool isSpecial(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

const char* refusal(int descriptor)
{
    QT_STATBUF status;
    if (QT_FSTAT(descriptor, &status) != 0 || S_ISREG(status.st_mode))
        return nullptr;
    return S_ISDIR(status.st_mode) ? folder : notRegular;
}

} // namespace

QString openRegular(QFile& file, int flags, QIODevice::OpenMode mode)
{
    if (isSpecial(file.fileName())) {
        errno = 0;
        return QLatin1String(notRegular);
    }
    const QByteArray name = QFile::encodeName(file.fileName());
    const int descriptor = QT_OPEN(name.constData(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666);
    if (descriptor < 0)
        return qt_error_string(errno);
    const char* const refused = refusal(descriptor);
    if (!refused && file.open(descriptor, mode, QFileDevice::AutoCloseHandle))
        return {};
    QT_CLOSE(descriptor);
    errno = 0;
    return QLatin1String(refused ? refused : notRegular);
}

QString openToRead(QFile& file, QIODevice::OpenMode mode)
{
    if (file.fileName().isEmpty())
        return file.open(mode) ? QString() : file.errorString(); // in the toolkit's words, too
    return openRegular(file, O_RDONLY, mode);
}
