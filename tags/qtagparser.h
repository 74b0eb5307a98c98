#pragma once

#include "tags/mediafile.h"
#include "tags/taginfomation.h"

#include <QObject>

/**
 * Turns the path of a media file into what the player screen shows of it: detects the format from the first
 * ten bytes, lets that format's reader read the tags, and takes the file's name where they hold no title. All
 * of it happens inside setFile().
 */
class QTagParser : public QObject {
    Q_OBJECT

public:
    enum FileFormat { Mp3, Flac, Ogg, Riff, Unknown };

    explicit QTagParser(QObject* parent);
    /** The path is ignored: nothing is read before setFile(). */
    QTagParser(QString path, QObject* parent);

    void InitConnection();
    /** The FileFormat whose marker stands anywhere in the first bytes of a file. */
    int GetFileFormat(QByteArray head);
    /** The bare name of the file as a title. Takes the extension off the stored path. */
    QString GetMP3FileName();
    void ID3parser();
    void FLACparser();
    void OGGparser();

signals:
    void sgTagInfoUpdated(TagInfomation stTagInfo);
    void sgFileRead();

public slots:
    /** Reads the tags and emits them. False, logged and nothing emitted, where the file cannot be opened. */
    bool setFile(QString strPath);
    void TagParsing();

private:
    void parse(int format);
    void useFileNameAsTitle();

    MediaFile m_file;
    QString strPath;
    TagInfomation m_info;
};
