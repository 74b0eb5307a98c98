#pragma once

#include "tests/support/unitroot.h"

#include <QTemporaryDir>

/** A folder for the media files of one test. */
class MediaFolder {
public:
    QString path(const QString& name) const { return m_dir.filePath(name); }

    /** Writes a file and gives its path. */
    QString write(const QString& name, const QByteArray& bytes) const
    {
        UnitRoot::write(path(name), bytes);
        return path(name);
    }

private:
    QTemporaryDir m_dir;
};
