#include "tags/qtagparser.h"

#include "app/dprintf.h"
#include "tags/qflacparser.h"
#include "tags/qmp3parser.h"
#include "tags/qoggparser.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr int headBytes = 10;

using ReadTags = void (QTagParser::*)();

struct Format {
    const char* marker;
    QTagParser::FileFormat code;
    ReadTags read; ///< null for a format that is known and not read
};

/** In the order of the search: the first marker found decides. */
constexpr Format formats[] = {
    {"ID3", QTagParser::Mp3, &QTagParser::ID3parser},
    {"Ogg", QTagParser::Ogg, &QTagParser::OGGparser},
    {"fLaC", QTagParser::Flac, &QTagParser::FLACparser},
    {"RIFF", QTagParser::Riff, nullptr},
};
static_assert(std::size(formats) == QTagParser::Unknown, "one row a known format");

template <typename Reader> TagInfomation readTags(const QString& path)
{
    const Reader reader(path, nullptr);
    return {reader.GetTitle(), reader.GetArtist(), reader.GetAlbum(), reader.GetPicture()};
}

} // namespace

QTagParser::QTagParser(QObject* parent)
    : QObject(parent)
{
    InitConnection();
}

QTagParser::QTagParser(QString, QObject* parent)
    : QTagParser(parent)
{
}

void QTagParser::InitConnection()
{
    connect(this, &QTagParser::sgFileRead, this, &QTagParser::TagParsing);
}

bool QTagParser::setFile(QString path)
{
    strPath = path;
    if (!m_file.openForReading(strPath)) {
        DPRINTF(4, "%s", m_file.errorString().toLatin1().constData());
        return false;
    }
    emit sgFileRead();
    return true;
}

void QTagParser::TagParsing()
{
    m_info = TagInfomation();
    const int format = GetFileFormat(m_file.readAtMost(headBytes));
    m_file.close();
    parse(format);
    if (m_info.strTitle.isEmpty())
        useFileNameAsTitle();
    emit sgTagInfoUpdated(m_info);
}

void QTagParser::parse(int format)
{
    const auto* known = std::find_if(std::begin(formats), std::end(formats),
                                     [format](const Format& row) { return row.code == format; });
    const ReadTags read = known == std::end(formats) ? nullptr : known->read;
    read ? (this->*read)() : useFileNameAsTitle();
}

void QTagParser::useFileNameAsTitle()
{
    DPRINTF(3, "FILE-Tag is failed to initialize");
    m_info.strTitle = GetMP3FileName();
}

int QTagParser::GetFileFormat(QByteArray head)
{
    for (const Format& format : formats) {
        if (head.contains(format.marker))
            return format.code;
    }
    return Unknown;
}

QString QTagParser::GetMP3FileName()
{
    const auto dot = strPath.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        DPRINTF(3, "This File is not mp3 ");
    strPath.remove(dot, strPath.size() - dot); // without a dot: from -1, which is the last character
    return strPath.mid(strPath.lastIndexOf(QLatin1Char('/')) + 1);
}

void QTagParser::ID3parser()
{
    m_info = readTags<QMP3Parser>(strPath);
}

void QTagParser::FLACparser()
{
    m_info = readTags<QFLACparser>(strPath);
}

void QTagParser::OGGparser()
{
    m_info = readTags<QOggParser>(strPath);
}
