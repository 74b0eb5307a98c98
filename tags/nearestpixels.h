#pragma once

#include <QImage>

/**
 * An image scaled to `size` without regard to its aspect ratio: every pixel is the one that the toolkit's
 * fast scaling of a pixmap takes, in the format of the image. Needs no more memory than its result. Null for
 * a null image.
 */
QImage nearestPixels(const QImage& image, QSize size);
