#include "bench/bench.h"
#include "bench/medians.h"
#include "tags/qoggparser.h"
#include "tests/tags/mediabuilder.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

#include <vector>

/** The walk over the pages of a whole Ogg file, beside one plain read of it. */

namespace {

constexpr int readBytes = 64 * 1024;
constexpr int packetOfAPage = 4050; // with its header and lacing a page of 4 kB
constexpr double bytesPerMiB = 1024 * 1024;
constexpr char demoSong[] = VIREO_SOURCE_DIR "/tools/demo-unit/music/evening/quiet-hall.ogg";
constexpr int headerPages = 2; // of the demo song

/** The pages of a real song behind its headers. */
QByteArray soundOfDemoSong()
{
    QFile file(QString::fromUtf8(demoSong));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no demo song");
    const QByteArray song = file.readAll();
    qsizetype at = 0;
    for (int i = 0; i < headerPages; ++i)
        at = song.indexOf("OggS", at + 1);
    return song.mid(at);
}

/** A file of `start` and then `page` again and again. */
QString written(const Bench& bench, const QByteArray& start, const QByteArray& page, qint64 bytes)
{
    const QString path = QDir(bench.scratch).filePath(QStringLiteral("long.ogg"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write the long song");
    file.write(start);
    const QByteArray pages = page.repeated(int(qMax<qint64>(1, bytesPerMiB / page.size())));
    while (file.pos() < bytes)
        file.write(pages);
    return path;
}

void readOnce(const QString& path)
{
    static std::vector<char> buffer(readBytes);
    const int file = open(path.toUtf8().constData(), O_RDONLY | O_CLOEXEC);
    while (read(file, buffer.data(), buffer.size()) > 0) { }
    close(file);
}

void addRow(Bench& bench, const char* name, const QString& path)
{
    const auto walk = [&path] { const QOggParser parser(path, nullptr); };
    const auto times =
        medianMicroseconds(bench.effort, {{"walk", walk}, {"read", [&path] { readOnce(path); }}});
    bench.table.add(name, "ms", times[0] / 1000, times[1] / 1000, atMostTimes(2.0));
    QFile::remove(path);
}

} // namespace

void addOggRows(Bench& bench)
{
    using namespace MediaBuilder;
    const QByteArray comments = oggComment(vorbisComments({"TITLE=Long"}));
    // The walk goes on only behind a page that holds more than the comments.
    const QByteArray setup(packetOfAPage, '\5');
    const QByteArray start = oggPage({oggIdentification()}) + oggPage({comments, setup});
    const QByteArray page = oggPage({QByteArray(packetOfAPage, '\x55')});
    addRow(bench, "Ogg walk, a packet a page / one read of the file",
           written(bench, start, page, bench.effort.oggBytes));
    addRow(bench, "Ogg walk, an ordinary song / one read of the file",
           written(bench, start, soundOfDemoSong(), bench.effort.oggBytes / 2));
}
