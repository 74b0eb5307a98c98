#pragma once

#include <QRect>

/**
 * Where a window opens on a screen, frame included, all in the same pixels.
 *
 * The panel has the upper left corner of what the desktop leaves free. The window stands right of it where
 * its least size fits there, else in the right of the whole; it is never larger than what is free.
 */
QRect placeBeside(const QSize& panel, const QRect& available, const QSize& wanted, const QSize& least);
