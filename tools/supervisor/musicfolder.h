#pragma once

#include <QStringList>

/**
 * The MP3, FLAC and Ogg files below a folder by absolute path, sorted by folder and name; none where there is
 * no such folder. Names that are not UTF-8 stand as tools/supervisor/bytetext.h says. Hidden files and
 * folders are left out, and so is what lies beyond the 65535 files that a disk packet counts, or deep in a
 * tree of a hundred thousand entries.
 */
QStringList musicBelow(const QString& folder);
