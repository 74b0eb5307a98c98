#pragma once

#include <QByteArray>
#include <QPixmap>

/** Covers are shown, and handed on, at this width and height in pixels. */
constexpr int coverPixels = 100;

/**
 * Decodes an image file held in memory, its format detected from the data, and scales it to a cover, ignoring
 * the aspect ratio and without smoothing. Null where the data is no picture or one too large to decode.
 */
QPixmap coverPicture(const QByteArray& imageFile);
