#pragma once

#include <QByteArray>
#include <QSize>

class QImageReader;

enum class Decoding {
    None, ///< it would take more time or memory than a picture may
    Whole,
    Reduced, ///< by the decoder itself, which never makes most of the pixels
};

/**
 * How far the panel can afford to decode the picture that `reader` is about to read from the bytes of
 * `imageFile`, while `heldBytes` of memory hold those bytes. Nothing is decoded to find out.
 */
Decoding affordableDecoding(const QImageReader& reader, const QByteArray& imageFile, qint64 heldBytes);

/** The size that decoding takes; invalid where that cannot be told. */
QSize decodedSize(const QImageReader& reader, const QByteArray& imageFile);
