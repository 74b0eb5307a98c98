#pragma once

#include <QPixmap>
#include <QString>

/**
 * What the player screen shows of one media file. Empty strings where the file's tags say nothing, a null
 * picture where it has no cover; a picture is already scaled to 100 by 100 pixels.
 */
struct TagInfomation {
    QString strTitle;
    QString strArtist;
    QString strAlbum;
    QPixmap pixPicture;
};
