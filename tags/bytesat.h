#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <algorithm>

/**
 * The `length` bytes of `block` from `position` on, cut to what the block holds: empty beyond its end. No
 * copy is made, so the result lives no longer than the block. Positions and lengths are wide enough to hold
 * any sum of the 32-bit lengths that a file can claim.
 */
inline QByteArray bytesAt(const QByteArray& block, qint64 position, qint64 length)
{
    const qint64 begin = std::clamp<qint64>(position, 0, block.size());
    const qint64 count = std::clamp<qint64>(length, 0, block.size() - begin);
    return QByteArray::fromRawData(block.constData() + begin, int(count));
}
