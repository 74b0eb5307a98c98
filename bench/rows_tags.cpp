#include "bench/bench.h"
#include "bench/medians.h"
#include "bench/panel.h"
#include "tags/qtagparser.h"
#include "tests/tags/mediabuilder.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPixmap>

#include <attachedpictureframe.h>
#include <flacfile.h>
#include <id3v2tag.h>
#include <mpegfile.h>
#include <vorbisfile.h>

#include <random>

/** Reading tags, beside the well-known TagLib. */

namespace {

constexpr int coverSide = 100;
constexpr int coverFileBytes = 500000;
constexpr int audioBytes = 1000000;
/** Where both sides decode the same picture, that is nearly all that they do: closer they cannot be told
 * apart. */
constexpr Mark noSlower = atMostTimes(1.05);

/** A photograph, as far as a codec can tell: shapes and grain. Its file is about as long as asked. */
QByteArray photograph(int bytes)
{
    constexpr int side = 1000;
    std::minstd_rand random(1);
    QImage image(side, side, QImage::Format_RGB32);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int grain = int(random() % 32);
            image.setPixel(x, y,
                           qRgb(x * 200 / side + grain, y * 200 / side + grain, (x * y / 999) % 200 + grain));
        }
    }
    QByteArray file;
    for (int quality = 30; file.size() < bytes && quality <= 100; ++quality) {
        QBuffer buffer(&file);
        file.clear();
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "JPEG", quality);
    }
    return file;
}

QString written(const Bench& bench, const char* name, const QByteArray& bytes)
{
    const QString path = QDir(bench.scratch).filePath(QLatin1String(name));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", name);
    return path;
}

/** Something for a decoder to skip. */
QByteArray audio()
{
    return QByteArray(audioBytes, '\x55');
}

QString mp3WithCover(const Bench& bench, const QByteArray& cover)
{
    using namespace MediaBuilder;
    const QByteArray tag =
        id3v2(textFrame("TIT2", 3, "Morning Corridor") + textFrame("TPE1", 3, "The House Band")
              + textFrame("TALB", 3, "Building Music") + pictureFrame("image/jpeg", cover));
    return written(bench, "cover.mp3", tag + audio());
}

QString flacWithCover(const Bench& bench, const QByteArray& cover)
{
    using namespace MediaBuilder;
    const QByteArray comments =
        vorbisComments({"TITLE=Sunset Walk", "ARTIST=The House Band", "ALBUM=Building Music"});
    return written(bench, "cover.flac",
                   flacStart() + flacBlock(Comment, comments)
                       + flacBlock(Picture, flacPicture("image/jpeg", cover), true) + audio());
}

/** What the panel makes of an image, from the library's bytes. */
QPixmap decoded(const TagLib::ByteVector& bytes)
{
    QPixmap pixmap;
    pixmap.loadFromData(reinterpret_cast<const uchar*>(bytes.data()), bytes.size());
    return pixmap.scaled(coverSide, coverSide);
}

struct LibraryTags {
    QString title;
    QString artist;
    QString album;
    QPixmap cover;
};

QString qString(const TagLib::String& text)
{
    return QString::fromStdWString(text.toWString());
}

LibraryTags tagsOf(const TagLib::Tag& tag)
{
    return {qString(tag.title()), qString(tag.artist()), qString(tag.album()), QPixmap()};
}

// The library is spared what the panel does not ask for: the properties of the sound.
LibraryTags libraryMp3(const QString& path)
{
    TagLib::MPEG::File file(path.toUtf8().constData(), false);
    LibraryTags tags = tagsOf(*file.tag());
    const auto frames = file.hasID3v2Tag() ? file.ID3v2Tag()->frameList("APIC") : TagLib::ID3v2::FrameList();
    if (!frames.isEmpty())
        tags.cover = decoded(static_cast<TagLib::ID3v2::AttachedPictureFrame*>(frames.front())->picture());
    return tags;
}

LibraryTags libraryFlac(const QString& path)
{
    TagLib::FLAC::File file(path.toUtf8().constData(), false);
    LibraryTags tags = tagsOf(*file.tag());
    const auto pictures = file.pictureList();
    if (!pictures.isEmpty())
        tags.cover = decoded(pictures.front()->data());
    return tags;
}

LibraryTags libraryOgg(const QString& path)
{
    TagLib::Ogg::Vorbis::File file(path.toUtf8().constData(), false);
    return tagsOf(*file.tag());
}

using ReadWithLibrary = LibraryTags (*)(const QString&);

void addShownRow(Bench& bench, Panel& panel, const char* format, const QString& path, ReadWithLibrary library)
{
    const QByteArray name = path.toUtf8();
    const auto show = [&] {
        panel.receive(Command::Filename, name);
        Panel::settle();
    };
    const auto times =
        medianMicroseconds(bench.effort, {{"panel", show}, {"library", [&] { library(path); }}});
    bench.table.add(std::string(format) + " file name to shown tags and cover / TagLib, decode and scale",
                    "us", times[0], times[1], noSlower);
}

void addReadRow(Bench& bench, const char* format, const char* demoFile, ReadWithLibrary library)
{
    const QString path = QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/music/") + QLatin1String(demoFile);
    QTagParser parser(nullptr);
    const auto times = medianMicroseconds(
        bench.effort, {{"panel", [&] { parser.setFile(path); }}, {"library", [&] { library(path); }}});
    bench.table.add(std::string("tags of a small ") + format + " file / TagLib", "us", times[0], times[1],
                    noSlower);
}

} // namespace

void addTagRows(Bench& bench)
{
    const QByteArray cover = photograph(coverFileBytes);
    const QString mp3 = mp3WithCover(bench, cover);
    const QString flac = flacWithCover(bench, cover);
    {
        Panel panel(bench);
        panel.receive(Command::Device, wire::Source::FrontUsb);
        Panel::settle();
        addShownRow(bench, panel, "ID3", mp3, libraryMp3);
        addShownRow(bench, panel, "FLAC", flac, libraryFlac);
    }
    addReadRow(bench, "ID3", "winter-river.mp3", libraryMp3);
    addReadRow(bench, "FLAC", "sunset-walk.flac", libraryFlac);
    addReadRow(bench, "Ogg", "evening/quiet-hall.ogg", libraryOgg);
}
