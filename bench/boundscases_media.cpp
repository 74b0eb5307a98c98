#include "bench/boundscases.h"
#include "link/packet.h"
#include "tests/tags/jpegbuilder.h"
#include "tests/tags/packedpictures.h"

#include <QFile>
#include <QImageWriter>

#include <random>

/** Media files as nobody makes them by accident. */

using namespace JpegBuilder;

namespace {

constexpr int MB = 1000 * 1000;
constexpr quint32 largestTag = (1U << 28) - 1;

/** Shows the player's screen, then names the file. */
QByteArray named(const QDir& folder, const char* name)
{
    return packetOf(Command::Device, wire::Source::FrontUsb)
        + packetOf(Command::Filename, QFile::encodeName(folder.filePath(QLatin1String(name))));
}

QByteArray written(const QDir& folder, const char* name, const QByteArray& bytes)
{
    QFile file(folder.filePath(QLatin1String(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", name);
    return named(folder, name);
}

QByteArray mp3(const QDir& folder, const QByteArray& frames)
{
    return written(folder, "case.mp3", id3v2(frames));
}

QByteArray cover(const QDir& folder, const QByteArray& image)
{
    return written(folder, "case.flac",
                   flacStart() + flacBlock(Picture, flacPicture("image/any", image), true));
}

QByteArray mp3Cover(const QDir& folder, const QByteArray& image)
{
    return mp3(folder, pictureFrame("image/png", image));
}

QByteArray randomBytes(int count)
{
    std::minstd_rand random(1);
    QByteArray bytes(count, '\0');
    for (char& byte : bytes)
        byte = char(random() >> 8);
    return bytes;
}

QByteArray png(int side, QImage::Format format)
{
    QImage image(side, side, format);
    image.fill(0);
    QByteArray file;
    QBuffer buffer(&file);
    QImageWriter writer(&buffer, "PNG");
    writer.write(image);
    return file;
}

/** Of noise of so many bits. */
QImage grain(int side, int bits)
{
    QByteArray bytes = randomBytes(side * side * 4);
    for (char& byte : bytes)
        byte = char(quint8(byte) >> (8 - bits));
    const QImage image(reinterpret_cast<const uchar*>(bytes.constData()), side, side, QImage::Format_RGB32);
    return image.copy();
}

/** Grain, of which a decoder has to read every coefficient in many scans. */
QByteArray progressiveJpeg(const QImage& image)
{
    QByteArray file;
    QBuffer buffer(&file);
    QImageWriter writer(&buffer, "JPEG");
    writer.setQuality(95);
    writer.setProgressiveScanWrite(true);
    writer.write(image);
    return file;
}

/** Grey, of nothing but restarts. */
QByteArray jpegOfRestarts(int side)
{
    const QByteArray interval = segment(0xDD, bytesOf("\0\1"));
    QByteArray restarts;
    for (int i = 0; i < 8; ++i)
        restarts += marker(Restart + i);
    return jpeg(Baseline, {side, side}, "\x11", 1, interval).chopped(2)
        + restarts.repeated(side / 8 * (side / 64));
}

/** A small picture with more runs than it has pixels. */
QByteArray bmpOfRuns(int runs)
{
    constexpr int colours = 256;
    constexpr int headBytes = 54 + colours * 4;
    const auto word = [](int number) { return littleEndian(quint32(number)); };
    return "BM" + word(headBytes + runs * 2) + word(0) + word(headBytes) + word(40) + word(10) + word(10)
        + bytesOf("\1\0\x8\0") + word(1) + word(runs * 2) + word(0) + word(0) + word(colours) + word(0)
        + QByteArray(colours * 4, '\0') + QByteArray("\xFF\1").repeated(runs);
}

/** Of 16 bits a channel; the grain keeps the decoder busy. */
QByteArray deepPng(int side)
{
    QByteArray bytes = randomBytes(side * side * 8);
    for (int i = 0; i < bytes.size(); ++i)
        bytes[i] = char(i % 2 == 0 ? quint8(bytes.at(i)) & 3 : i / 8 % side * 255 / side);
    const QImage image(reinterpret_cast<const uchar*>(bytes.constData()), side, side, QImage::Format_RGBA64);
    QByteArray file;
    QBuffer buffer(&file);
    QImageWriter writer(&buffer, "PNG");
    writer.write(image);
    return file;
}

QByteArray flacWithComments(const QDir& folder, const QByteArray& comment)
{
    const int count = 0xFF0000 / int(comment.size());
    const QByteArray block = vorbisClaiming("v", quint32(count), {}) + comment.repeated(count);
    return written(folder, "case.flac", flacStart() + flacBlock(Comment, block, true));
}

QByteArray titleComment()
{
    return littleEndian(7) + "TITLE=x";
}

/** Pages as long as they can be; what is between their headers is a hole in the file. */
QByteArray longOgg(const QDir& folder)
{
    constexpr qint64 fileBytes = 1000LL * MB;
    const QByteArray header = oggHeader(QByteArray(254, '\xFF') + '\xFE');
    QFile file(folder.filePath(QStringLiteral("case.ogg")));
    file.open(QIODevice::WriteOnly);
    for (qint64 at = 0; at < fileBytes; at += header.size() + 254 * 255 + 254) {
        file.seek(at);
        file.write(header);
    }
    return named(folder, "case.ogg");
}

QByteArray largestTagOf(const QDir& folder)
{
    written(folder, "case.mp3", id3v2Claiming(largestTag, textFrame("TIT2", 3, "x")));
    QFile file(folder.filePath(QStringLiteral("case.mp3")));
    file.resize(qint64(largestTag));
    return named(folder, "case.mp3");
}

constexpr BoundsCase cases[] = {
    {"progressive JPEG, 5790x5790, 3 components",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {5790, 5790}, "\x11\x11\x11"));
     }},
    {"progressive JPEG, 5790x5790, 4 components",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {5790, 5790}, "\x11\x11\x11\x11"));
     }},
    {"JPEG with 1,000 scans",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {5790, 5790}, "\x11", 1000));
     }},
    {"JPEG with 20,000 scans",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {3000, 3000}, "\x11", 20000));
     }},
    {"JPEG with 130 scans",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {2000, 2000}, "\x11", 130));
     }},
    {"JPEG, 32000x32000",
     [](const QDir& f) {
         return cover(f, jpeg(Baseline, {32000, 32000}, "\x11"));
     }},
    {"JPEG of 16 megapixels",
     [](const QDir& f) {
         return cover(f, jpeg(Baseline, {4096, 4096}, "\x11\x11\x11"));
     }},
    {"progressive JPEG of 26 megapixels",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {5100, 5100}, "\x22\x11\x11", 10));
     }},
    {"progressive JPEG of 16 megapixels",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {4096, 4096}, "\x11\x11\x11", 21));
     }},
    {"progressive JPEG of 16 megapixels, four inks",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {4096, 4096}, "\x11\x11\x11\x11", 16));
     }},
    {"progressive JPEG of grain", [](const QDir& f) { return cover(f, progressiveJpeg(grain(3950, 8))); }},
    {"progressive JPEG of 16 megapixels of grain",
     [](const QDir& f) { return cover(f, progressiveJpeg(grain(4096, 7))); }},
    {"progressive JPEG, 31 scans of a grey of 16 megapixels",
     [](const QDir& f) {
         return cover(f, jpeg(Progressive, {4096, 4096}, "\x11", 31));
     }},
    {"progressive JPEG of 16 megapixels of grey grain, 25 scans more",
     [](const QDir& f) {
         const QByteArray file = progressiveJpeg(grain(4096, 5).convertToFormat(QImage::Format_Grayscale8));
         return cover(f, file.chopped(2) + scan(1, true, true).repeated(25));
     }},
    {"JPEG of 520 megapixels, a restart behind each block",
     [](const QDir& f) { return mp3Cover(f, jpegOfRestarts(22800)); }},
    {"JPEG with 16 MB of remarks",
     [](const QDir& f) {
         return cover(f, jpeg(Baseline, {64, 64}, "\x11", 1, segment(Remark, "").repeated(4 * MB)));
     }},
    {"PNG, 5790x5790", [](const QDir& f) { return cover(f, png(5790, QImage::Format_RGB32)); }},
    {"PNG of 16 megapixels", [](const QDir& f) { return cover(f, png(4096, QImage::Format_ARGB32)); }},
    {"PNG of 16 megapixels, 16 bits a channel, with some grain",
     [](const QDir& f) { return mp3Cover(f, deepPng(4096)); }},
    {"PNG with 20 GB packed behind its pixels",
     [](const QDir& f) { return mp3Cover(f, PackedPictures::png(10, 20000)); }},
    {"GIF of 32 megapixels",
     [](const QDir& f) {
         return cover(f, PackedPictures::gif({5790, 5790}, {5790, 5790}, 10000));
     }},
    {"GIF with 40 gigapixels packed behind its own",
     [](const QDir& f) {
         return cover(f, PackedPictures::gif({10, 10}, {10, 10}, 10 * MB));
     }},
    {"GIF that empties its table 80,000,000 times",
     [](const QDir& f) { return mp3Cover(f, PackedPictures::gifOfClears(80 * MB)); }},
    {"BMP of 20 MB of runs", [](const QDir& f) { return mp3Cover(f, bmpOfRuns(10 * MB)); }},
    {"PNG with 2,000,000 texts",
     [](const QDir& f) {
         QByteArray file = png(64, QImage::Format_RGB32);
         return mp3Cover(f, file.insert(33, bytesOf("\0\0\0\0tEXt\x96\x42\xC5\x85").repeated(2 * MB)));
     }},
    {"PNG of 32 MB of a text that breaks off",
     [](const QDir& f) {
         const QByteArray file = png(64, QImage::Format_RGB32);
         const QByteArray text = bytesOf("\x40\0\0\0tEXt") + QByteArray(32 * MB, '\0');
         return mp3Cover(f, file.chopped(12) + text + file.right(12).chopped(4));
     }},
    {"XBM of 6 MB",
     [](const QDir& f) {
         return cover(f,
                      "#define a_width 4000\n#define a_height 3000\nstatic char a[] = {\n"
                          + QByteArray("0x12,").repeated(1250000) + "};");
     }},
    {"PPM of 20 MB in digits",
     [](const QDir& f) { return mp3Cover(f, "P3 1800 1800 9 " + QByteArray("1 ").repeated(10 * MB)); }},
    {"tag of 256 MB", largestTagOf},
    {"album and artist of 4 MB each",
     [](const QDir& f) {
         const QByteArray text = QByteArray("\xB0\xA1").repeated(2 * MB);
         return mp3(f, textFrame("TALB", 0, text) + textFrame("TPE1", 0, text));
     }},
    {"album of 16 MB",
     [](const QDir& f) { return mp3(f, textFrame("TALB", 0, QByteArray("\xB0\xA1").repeated(8 * MB))); }},
    {"album of 2 MB of random characters",
     [](const QDir& f) { return mp3(f, textFrame("TALB", 1, randomBytes(4 * MB))); }},
    {"cover that becomes the title",
     [](const QDir& f) {
         return mp3(f,
                    frameClaiming("TIT2", 500 * 1000,
                                  bytesOf("\0x") + pictureFrame("image/jpeg", randomBytes(504 * 1000))));
     }},
    {"tag of 32 MB of letters that begin a name",
     [](const QDir& f) { return mp3(f, QByteArray(32 * MB, 'T')); }},
    {"FLAC of 20 MB of blocks of 1 byte",
     [](const QDir& f) {
         return written(f, "case.flac", flacStart() + flacBlock(Padding, "1").repeated(4 * MB));
     }},
    {"FLAC with 4,000,000 comments", [](const QDir& f) { return flacWithComments(f, littleEndian(0)); }},
    {"FLAC with 1,500,000 titles", [](const QDir& f) { return flacWithComments(f, titleComment()); }},
    {"Ogg of 1 GB", longOgg},
    {"Ogg of 3,000,000 pages",
     [](const QDir& f) { return written(f, "case.ogg", oggPage({"."}).repeated(3 * MB)); }},
    {"Ogg of 3,000,000 pages one in the other",
     [](const QDir& f) {
         return written(f, "case.ogg", (oggHeader(lacing({1, 1})) + '.').repeated(3 * MB));
     }},
    {"Ogg of 240 MB of titles that are no text",
     [](const QDir& f) {
         const QByteArray title = "TITLE=" + QByteArray(49000, '\xFF');
         const QByteArray page = oggPage({oggComment(vorbisComments({title})), "."});
         return written(f, "case.ogg", page.repeated(240 * MB / int(page.size())));
     }},
    {"Ogg with 20,000,000 titles",
     [](const QDir& f) {
         const QByteArray header =
             oggComment(vorbisClaiming("v", 5000, {}) + titleComment().repeated(5000)) + QByteArray(9, '\0');
         return written(f, "case.ogg", oggPage({header, "."}).repeated(4000));
     }},
};

} // namespace

std::vector<BoundsCase> mediaBoundsCases()
{
    return {std::begin(cases), std::end(cases)};
}
