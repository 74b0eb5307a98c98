#pragma once

#include "fuzz/harness.h"
#include "tags/qtagparser.h"
#include "tests/support/logcatcher.h"
#include "tests/tags/frontreading.h"
#include "tests/tags/naivereader.h"

/** Of some damaged pictures the toolkit shows the memory as it was: that must be the same in both readings.
 */
extern "C" const char* __asan_default_options()
{
    return "malloc_fill_byte=0:max_malloc_fill_size=1048576";
}

/**
 * Reads one input as a media file of one format and holds the result against the naive reader: the same texts
 * and the same log lines in the same order. Where the front would choose that format it reads, else the
 * format's own reader does, so that what only that one can reach is reached too.
 */
template <typename Reader> class TagReading {
public:
    TagReading(int format, void (NaiveReader::*naive)())
        : m_format(format)
        , m_naive(naive)
    {
    }

    void check(const QByteArray& file) const
    {
        const QString path = Harness::path(QStringLiteral("media.file"));
        Harness::write(path, file);
        if (QTagParser(nullptr).GetFileFormat(file.left(headBytes)) == m_format)
            checkFront(path, file);
        else
            checkReader(path, file);
    }

private:
    static constexpr int headBytes = 10;

    void checkFront(const QString& path, const QByteArray& file) const
    {
        const FrontReading reading(path);
        const PanelLinesOnly filter;
        compare(reading.record, reading.log, NaiveReader::readAll(file, path));
    }

    void checkReader(const QString& path, const QByteArray& file) const
    {
        const LogCatcher catcher;
        const PanelLinesOnly filter;
        const Reader reader(path, nullptr);
        NaiveReader naive(file, path);
        (naive.*m_naive)();
        compare({reader.GetTitle(), reader.GetArtist(), reader.GetAlbum(), reader.GetPicture()},
                LogCatcher::plain(), naive);
    }

    static void compare(const TagInfomation& record, const QStringList& log, const NaiveReader& naive)
    {
        compare("title", record.strTitle, naive.title);
        compare("artist", record.strArtist, naive.artist);
        compare("album", record.strAlbum, naive.album);
        compare("log", log.join(QLatin1Char('\n')), naive.log.join(QLatin1Char('\n')));
        if (record.pixPicture.toImage() != naive.picture.toImage())
            Harness::report(QStringLiteral("another picture"));
    }

    static void compare(const char* what, const QString& read, const QString& expected)
    {
        if (read != expected)
            Harness::report(
                QStringLiteral("%1: %2\ninstead of: %3").arg(QLatin1String(what), read, expected));
    }

    int m_format;
    void (NaiveReader::*m_naive)();
};
