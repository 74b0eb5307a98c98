#pragma once

#include <QRect>

class QScreen;

/** The panel's size on a screen, in the pixels that a window of this program has there. */
QSize panelSizeOn(const QScreen& screen);

/** Where the panel goes on a screen, in the panel's own pixels. */
QPoint panelCornerOn(const QScreen& screen);

/**
 * Where a window opens on a screen, frame included, all in the same pixels.
 *
 * The panel has the upper left corner of what the desktop leaves free. The window stands right of it where
 * its least size fits there, else in the right of the whole; it is never larger than what is free.
 */
QRect placeBeside(const QSize& panel, const QRect& available, const QSize& wanted, const QSize& least);
