#pragma once

#include "tags/mediafile.h"
#include "tags/taginfomation.h"

#include <QObject>

#include <optional>

/**
 * Reads title, artist, album and cover of an MP3 file from its ID3v2 tag, or the three texts from an ID3v1
 * tag where the file does not begin with an ID3v2 one. Frames are found by a byte search for their names, not
 * by a walk. What is missing or damaged stays empty and is logged.
 */
class QMP3Parser : public QObject {
    Q_OBJECT

public:
    explicit QMP3Parser(QObject* parent);
    QMP3Parser(QString strName, QObject* parent);

    QString GetTitle() const { return m_info.strTitle; }
    QString GetArtist() const { return m_info.strArtist; }
    QString GetAlbum() const { return m_info.strAlbum; }
    QPixmap GetPicture() const { return m_info.pixPicture; }

    /** Reads the tag that the ten header bytes announce from the open file; false where there is none. */
    bool Mp3TagParser(QByteArray header);
    /** Four bytes of seven bits each. */
    quint32 GetTagSize(QByteArray fourBytes);
    /** A plain big-endian number in every version of the tag. */
    quint32 GetFrameSize(QByteArray fourBytes);
    /** The first byte names the encoding. Zero characters at the end stay. */
    QString GetText(QByteArray content);
    QPixmap GetImage(QByteArray content);

signals:
    void sgTagInfoUpdated(TagInfomation stTagInfo);
    /** The file does not begin with an ID3v2 tag. */
    void sgNoAPIC();

public slots:
    void ReadFilePath(QString strName);

private:
    void readId3v2(const QByteArray& header);
    std::optional<QByteArray> frameContent(const QByteArray& body, const char* id);
    bool readId3v1();

    QString m_path;
    MediaFile m_file;
    // Nothing uses these four.
    QString m_spareTitle;
    QString m_spareArtist;
    QString m_spareAlbum;
    QPixmap m_sparePicture;

    TagInfomation m_info;
};
