#pragma once

#include "app/limits.h"

#include <QByteArray>
#include <QString>

/** Where the texts of comment headers go, how their log lines begin, and how many comments, of how
 * many bytes, are still read. */
struct VorbisCommentSink {
    QString* title;
    QString* artist;
    QString* album;
    const char* prefix;
    const char* vendorPrefix;
    int commentsLeft = limits::vorbisComments;
    qint64 bytesLeft = limits::vorbisBytes;
};

/**
 * Reads the vendor text and the "KEY=value" comments that start at byte `start` of a block or packet, into
 * the sink. A comment that ends beyond the block ends the walk; of equal keys the last one holds. False, and
 * no comment read, where the comment count cannot fit a block of this size.
 */
bool readVorbisComments(const QByteArray& block, qint64 start, VorbisCommentSink& sink);
