#pragma once

#include <QStringList>

/**
 * The MP3, FLAC and Ogg files below a folder by absolute path, sorted by folder and name. A disk packet
 * counts up to 65535 files; what lies beyond that, or deep in a tree of a hundred thousand entries, is left
 * out.
 */
QStringList musicBelow(const QString& folder);
