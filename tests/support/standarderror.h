#pragma once

#include "tests/support/unitroot.h"

#include <QTemporaryFile>

#include <sys/stat.h>
#include <unistd.h>

/** A file in the place of standard error while it lives, named as the journal's stream or not. */
class StandardError {
public:
    explicit StandardError(bool isJournal)
        : m_old(::dup(STDERR_FILENO))
    {
        m_file.open();
        ::dup2(m_file.handle(), STDERR_FILENO);
        struct stat status = {};
        ::fstat(m_file.handle(), &status);
        const QByteArray node = QByteArray::number(qulonglong(status.st_ino) + (isJournal ? 0 : 1));
        qputenv("JOURNAL_STREAM", QByteArray::number(qulonglong(status.st_dev)) + ':' + node);
    }
    ~StandardError()
    {
        ::dup2(m_old, STDERR_FILENO);
        ::close(m_old);
        qunsetenv("JOURNAL_STREAM");
    }
    StandardError(const StandardError&) = delete;
    StandardError& operator=(const StandardError&) = delete;

    QByteArray text() const { return UnitRoot::read(m_file.fileName()); }

private:
    int m_old;
    QTemporaryFile m_file;
};
