#include "app/journalstream.h"

#include <QByteArray>

#include <sys/stat.h>
#include <unistd.h>

bool standardErrorIsJournal()
{
    struct stat stream = {};
    if (::fstat(STDERR_FILENO, &stream) != 0)
        return false;
    const QByteArray device = QByteArray::number(qulonglong(stream.st_dev));
    return qgetenv("JOURNAL_STREAM") == device + ':' + QByteArray::number(qulonglong(stream.st_ino));
}
