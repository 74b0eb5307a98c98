#pragma once

#include "tags/qtagparser.h"
#include "tests/support/logcatcher.h"
#include "tests/tags/naivereader.h"

/** Leaves what the toolkit itself says about damaged pictures out of the collected lines. */
class PanelLinesOnly {
public:
    PanelLinesOnly() { collector() = qInstallMessageHandler(&PanelLinesOnly::take); }
    ~PanelLinesOnly() { qInstallMessageHandler(collector()); }
    PanelLinesOnly(const PanelLinesOnly&) = delete;
    PanelLinesOnly& operator=(const PanelLinesOnly&) = delete;

private:
    static QtMessageHandler& collector()
    {
        static QtMessageHandler installed;
        return installed;
    }
    static void take(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        if (type == QtDebugMsg)
            collector()(type, context, text);
    }
};

/** What the panel makes of one media file: the record, how often it was emitted, and every log line. */
struct FrontReading {
    explicit FrontReading(const QString& path)
    {
        QTagParser parser(nullptr);
        QObject::connect(&parser, &QTagParser::sgTagInfoUpdated, [this](TagInfomation emitted) {
            record = emitted;
            ++records;
        });
        const LogCatcher catcher;
        const PanelLinesOnly filter;
        opened = parser.setFile(path);
        log = LogCatcher::plain();
    }

    bool opened;
    TagInfomation record;
    int records = 0;
    QStringList log;
};

/** Empty where the panel reads the file at `path` exactly as the naive reader does, else what differs. */
inline QString differenceFromNaive(const QString& path, const QByteArray& file)
{
    const FrontReading reading(path);
    const PanelLinesOnly filter;
    const NaiveReader naive = NaiveReader::readAll(file, path);
    if (reading.records != 1)
        return QStringLiteral("records emitted: %1").arg(reading.records);
    if (reading.record.strTitle != naive.title)
        return QStringLiteral("title: ") + reading.record.strTitle + QStringLiteral(" / ") + naive.title;
    if (reading.record.strArtist != naive.artist)
        return QStringLiteral("artist: ") + reading.record.strArtist + QStringLiteral(" / ") + naive.artist;
    if (reading.record.strAlbum != naive.album)
        return QStringLiteral("album: ") + reading.record.strAlbum + QStringLiteral(" / ") + naive.album;
    if (reading.record.pixPicture.toImage() != naive.picture.toImage())
        return QStringLiteral("picture");
    if (reading.log != naive.log)
        return QStringLiteral("log:\n%1\n/\n%2")
            .arg(reading.log.join(QLatin1Char('\n')), naive.log.join(QLatin1Char('\n')));
    return {};
}
