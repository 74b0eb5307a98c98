#pragma once

#include <QByteArray>
#include <QImage>

/**
 * Pictures that are decoded a row at a time, for those that would take too much memory as a whole. Each
 * function gives the pixels that scaling to `size` without smoothing leaves, as the toolkit's own decoder and
 * scaling do, or a null image where that decoder does not load the file.
 */
namespace PictureRows {

QImage gif(const QByteArray& file, QSize size);

/** With one, three or four colours. The size of the file says how many coefficients are kept at once. */
QImage jpeg(const QByteArray& file, QSize size);

/** Of 8 or 16 bits a channel, interlaced or not. */
QImage png(const QByteArray& file, QSize size);

} // namespace PictureRows
