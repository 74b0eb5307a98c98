#pragma once

#include <QByteArray>
#include <QPixmap>

/** What the toolkit itself makes of an image file, scaled as covers are. */
inline QImage coverOf(const QByteArray& imageFile)
{
    QPixmap pixmap;
    if (!pixmap.loadFromData(imageFile))
        qFatal("the image file does not load");
    return pixmap.scaled(100, 100, Qt::IgnoreAspectRatio, Qt::FastTransformation).toImage();
}
