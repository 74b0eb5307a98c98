#pragma once

#include "tests/support/logcatcher.h"
#include "tests/tags/mediafolder.h"

#include <QImage>
#include <QPixmap>

/** What one reading of a file gave. */
struct ReadTags {
    QString title, artist, album;
    QImage picture;
    QStringList log;
};

/** One reading of a file by a format's reader. */
template <typename Reader> struct TagReading : ReadTags {
    explicit TagReading(const QByteArray& file)
    {
        MediaFolder folder;
        const QString path = folder.write(QStringLiteral("file"), file);
        LogCatcher catcher;
        const Reader reader(path, nullptr);
        title = reader.GetTitle();
        artist = reader.GetArtist();
        album = reader.GetAlbum();
        picture = reader.GetPicture().toImage();
        log = LogCatcher::plain();
    }
};
