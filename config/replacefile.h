#pragma once

#include <QByteArray>
#include <QString>

enum class ConfigWrite {
    Written,
    NotOpened, ///< the file could not be opened: nothing was changed
    Failed, ///< the content could not be stored: the old file stays
};

/**
 * Replaces the content of a file.
 *
 * The new content is written aside, flushed to the disk and renamed over the old file, so that a power cut
 * leaves one of the two whole; a link stays and its target is replaced. What a power cut leaves aside has a
 * fixed name, and the next write takes it over. Only where the rights to put a file beside the old one or to
 * rename it are missing is the old one overwritten in place, and not before there is room for all of it: on a
 * full disk the old file stays.
 *
 * `reason` takes the system's words where nothing was written.
 */
ConfigWrite replaceFile(const QString& path, const QByteArray& bytes, QString& reason);
