#pragma once

#include "tags/mediafile.h"
#include "tags/taginfomation.h"

#include <QObject>

/**
 * Reads title, artist and album of an Ogg Vorbis file from the comment headers in its pages; there is never a
 * picture. What is missing or damaged stays empty and is logged.
 */
class QOggParser : public QObject {
    Q_OBJECT

public:
    explicit QOggParser(QObject* parent);
    QOggParser(QString path, QObject* parent);

    void setFilePath(QString path);
    void ReadFile();
    /** Reads the page at the current position of the open file and those that follow: 1 where all packets of
     * the first page were there, else 0. */
    int OggTagParser();

    QString GetTitle() const { return strTitle; }
    QString GetArtist() const { return strArtist; }
    QString GetAlbum() const { return strAlbum; }
    QPixmap GetPicture() const { return pixPicture; }

private:
    QString m_path;
    MediaFile m_file;
    QString strTitle;
    QString strArtist;
    QString strAlbum;
    QPixmap pixPicture;
};
