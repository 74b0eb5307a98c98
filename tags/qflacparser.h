#pragma once

#include "tags/mediafile.h"
#include "tags/taginfomation.h"

#include <QObject>

/**
 * Reads title, artist, album and cover of a FLAC file from the last comment block and the last picture block
 * among its metadata blocks. What is missing or damaged stays empty and is logged.
 */
class QFLACparser : public QObject {
    Q_OBJECT

public:
    explicit QFLACparser(QObject* parent);
    QFLACparser(QString path, QObject* parent);

    void setFilePath(QString path);
    void ReadFile();
    /** Walks the metadata blocks of the open file: 1 where a sound picture block ended it well, else 0. */
    int FLACTagParser();
    /** False where the block cannot hold as many comments as it claims. */
    bool ReadVorbis(QByteArray block);
    /** False where the block is too short for the lengths in it; true for a picture that does not load. */
    bool ReadAttachedImage(QByteArray block);

    QString GetTitle() const { return strTitle; }
    QString GetArtist() const { return strArtist; }
    QString GetAlbum() const { return strAlbum; }
    QPixmap GetPicture() const { return pixPicture; }

private:
    /** Where a block's content lies in the file. */
    struct Place {
        qint64 position = 0;
        qint64 length = 0;
    };
    struct Blocks {
        Place comments;
        Place picture;
    };

    QByteArray headerAfterFirstBlock(const QByteArray& head);
    bool collectBlocks(QByteArray header, Blocks& blocks);
    void takeBlock(int type, qint64 length, Blocks& blocks);
    QByteArray contentOf(Place block);
    int decode(const Blocks& blocks);

    QString m_path;
    MediaFile m_file;
    QString strTitle;
    QString strArtist;
    QString strAlbum;
    QPixmap pixPicture;
};
