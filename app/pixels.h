#pragma once

#include <QColor>

/** The 32-bit pixels of an image's scan line; the toolkit aligns every line for them. */
inline QRgb* pixelsOf(uchar* line)
{
    return static_cast<QRgb*>(static_cast<void*>(line));
}

inline const QRgb* pixelsOf(const uchar* line)
{
    return static_cast<const QRgb*>(static_cast<const void*>(line));
}
