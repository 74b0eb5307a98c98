#pragma once

#include <QSize>

class QImageReader;

/**
 * Whether the panel can afford to let the toolkit decode the picture of `fileBytes` bytes that `reader` is
 * about to read. Nothing is decoded to find out.
 */
bool isAffordable(const QImageReader& reader, qint64 fileBytes);

/** The size that decoding takes; invalid where that cannot be told. */
QSize decodedSize(const QImageReader& reader);
