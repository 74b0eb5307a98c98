#pragma once

#include <QImage>
#include <QPixmap>
#include <QString>

/**
 * Images of the program's own, from the files compiled in. All of them are PNG, which the toolkit reads by
 * itself. Not told so, it loads the plugins of all other formats with their libraries first, to ask whether
 * the image is one of theirs.
 */

/** The image, null where there is none. */
QImage resourceImage(const QString& path);

/** The same to be shown. Those who show it share one copy. */
QPixmap resourcePixmap(const QString& path);
