#include "tags/qoggparser.h"

#include "app/dprintf.h"
#include "tags/oggpagewalk.h"

QOggParser::QOggParser(QObject* parent)
    : QObject(parent)
{
}

QOggParser::QOggParser(QString path, QObject* parent)
    : QObject(parent)
    , m_path(path)
{
    ReadFile();
}

void QOggParser::setFilePath(QString path)
{
    m_path = path;
}

void QOggParser::ReadFile()
{
    strTitle = strArtist = strAlbum = QString();
    pixPicture = QPixmap();
    if (!m_file.openForReading(m_path, QIODevice::Unbuffered)) {
        DPRINTF(4, "[OGG] %s", m_file.errorString().toLatin1().constData());
        return;
    }
    if (OggTagParser() == 0)
        DPRINTF(3, "[OGG] FILE-Tag is failed to initialize");
}

int QOggParser::OggTagParser()
{
    OggPageWalk walk(m_file, m_file.size(), {&strTitle, &strArtist, &strAlbum, "[OGG] ", "[OGG] "});
    return walk.run() ? 1 : 0;
}
