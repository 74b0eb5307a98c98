#include "app/limits.h"
#include "fuzz/pictureseeds.h"
#include "link/packet.h"
#include "tests/tags/jpegbuilder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>

/** Writes first inputs for each fuzz target: sound ones, from which the fuzzer makes its own. */

using namespace MediaBuilder;

namespace {

QDir root;

void seed(const char* target, const QString& name, const QByteArray& bytes)
{
    root.mkpath(QString::fromLatin1(target));
    QFile file(root.filePath(QString::fromLatin1(target) + QLatin1Char('/') + name));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

/** Ends a chunk, with a pause behind it. */
QByteArray pause(int length)
{
    return "\xFF\xFE" + QByteArray(1, char(length));
}

using wire::Key;

template <typename Code> QByteArray key(Code code)
{
    return packetOf(Command::Key, code);
}

/** Opens the menu and chooses the entry so many steps on; the strip must stand still before each. */
QByteArray menuTo(int steps)
{
    const QByteArray turn = packetOf(Command::Encoder, steps < 0 ? -1 : 1) + pause(120);
    return key(wire::held(Key::Select)) + pause(50) + turn.repeated(qAbs(steps)) + key(Key::Select)
        + pause(60);
}

void streamSeed(const QString& name, const QByteArray& bytes)
{
    seed("receive", name, bytes);
}

/** Every term of every command, alone and with its flags. */
void packetSeeds()
{
    const auto one = [](const wire::CommandRow& row, int value) {
        streamSeed(QStringLiteral("%1-%2").arg(QLatin1String(row.word)).arg(quint8(value)),
                   packetOf(row.command, value));
    };
    for (const wire::CommandRow& row : wire::commands) {
        for (const wire::Term& term : row.data.terms) {
            one(row, term.value);
            if (row.command == Command::Key)
                one(row, wire::held(Key(term.value)));
            if (row.command == Command::Mode)
                for (const int flags : {wire::repeatBit | 0, wire::shuffleBit | 0, 0xF0})
                    one(row, term.value | flags);
        }
        if (row.data.number)
            for (const int value : {row.data.least, 0, 3, row.data.most})
                one(row, value);
    }
    for (const char* file : {"a.mp3", "b.flac", "c.ogg", "d", "e", "missing.mp3"})
        streamSeed(QStringLiteral("file-") + QLatin1String(file), packetOf(Command::Filename, file));
}

/** Of every script, and unassigned ones, as UTF-8. */
QByteArray anyCharacters(int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QChar(ushort(1 + i * 40503));
    return text.toUtf8();
}

/** More than a text of a tag is read to. */
constexpr int tooManyCharacters = limits::textCharacters + 1000;

void sessionSeeds()
{
    const QByteArray radio = packetOf(Command::Device, wire::Source::Radio) + pause(5);
    const QByteArray station = QByteArray("방송").leftJustified(256, '\0') + "http://a/b";
    const QByteArray toYes = packetOf(Command::Encoder, -1);
    const QList<QByteArray> sessions = {
        packetOf(Command::Time, bytesOf("\x01\x23\x45")) + packetOf(Command::Time, "\x03\x59"),
        packetOf(Command::DiskInfo, bytesOf("\2\1\3\0"))
            + packetOf(Command::DiskStat, wire::DiskState::Removed),
        packetOf(Command::UpgradeInfo, wire::UpgradeState::Started)
            + packetOf(Command::UpgradeMsg, "half\nway 반"),
        radio + packetOf(Command::IRStation, station),
        radio + key(Key::Select) + packetOf(Command::Encoder, 3) + packetOf(Command::Encoder, -5)
            + key(Key::Select),
        packetOf(Command::Device, wire::Source::Aoe) + packetOf(Command::AoeStat, wire::AoeState::Playing)
            + packetOf(Command::AoeStat, wire::AoeState::RateTooHigh),
        menuTo(4) + key(Key::Select) + toYes + key(Key::Select) + pause(40)
            + packetOf(Command::MenuDhcp, wire::DhcpState::Completed) + pause(255),
        menuTo(4)
            + (key(Key::Select) + packetOf(Command::Encoder, -1) + key(Key::Select) + key(Key::Select)
               + packetOf(Command::Encoder, 1) + key(Key::Select))
                  .repeated(2)
            + pause(255),
        packetOf(Command::Device, 0x19).repeated(100),
        radio + packetOf(Command::IRStation, anyCharacters(4000)),
        packetOf(Command::UpgradeInfo, wire::UpgradeState::Started)
            + packetOf(Command::UpgradeMsg, anyCharacters(4000)),
        packetOf(Command::Reserved9, "x") + packetOf(Command::UrlText, "url"),
        bytesOf("\5\0\1\0") + pause(0) + "\2" + bytesOf("\xFF\5\0\3\0\x88\1\0\x40\0abc"),
    };
    for (int i = 0; i < sessions.size(); ++i)
        streamSeed(QStringLiteral("session-%1").arg(i), sessions.at(i));
    for (int steps = -2; steps <= 4; ++steps)
        streamSeed(QStringLiteral("menu-%1").arg(steps),
                   menuTo(steps) + packetOf(Command::Request, wire::Request::Mode) + key(Key::Esc)
                       + packetOf(Command::Encoder, 3));
}

QByteArray smallImage(const char* format)
{
    return imageFile(format, 8, 8);
}

QByteArray pngWithTexts()
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    image.setText(QStringLiteral("Title"), QStringLiteral("cover"));
    image.setText(QStringLiteral("Long"), QString(200, QLatin1Char('x')));
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return buffer.data();
}

/** One red pixel. */
QByteArray gif()
{
    return "GIF89a" + bytesOf("\1\0\1\0\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;");
}

/** Of no more than this header: a canvas of four billion pixels. */
QByteArray endlessGif()
{
    return "GIF89a" + bytesOf("\xFF\xFF\xFF\xFF\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0\1\0\1\0\0\2\2\x44\1\0;");
}

/** A BMP whose first row is the upper one. */
QByteArray bmpFromTheTop()
{
    constexpr int heightAt = 22;
    return smallImage("BMP").replace(heightAt, 4, littleEndian(quint32(-8)));
}

/** Pictures that claim far more than they hold, which is to be found out before they are decoded. */
QList<QByteArray> costlyImages()
{
    using namespace JpegBuilder;
    const Bytes remarks = segment(Remark, "a: b").repeated(3) + segment(Exif, "camera");
    return {jpeg(Progressive, {64, 40}, "\x22\x11\x11", 5),
            jpeg(Progressive, {16000, 16000}, "\x11\x11\x11\x11", 3),
            jpeg(Progressive, {64, 40}, "\x11", 300),
            jpeg(Baseline, {64, 40}, "\x41\x12\x11", 1, remarks),
            jpeg(Arithmetic, {64, 40}, "\x11"),
            endlessGif()};
}

QList<QByteArray> images()
{
    return {smallImage("PNG"),
            smallImage("JPEG"),
            smallImage("BMP"),
            smallImage("XPM"),
            smallImage("PPM"),
            pngWithTexts(),
            gif(),
            bmpFromTheTop()};
}

void id3Seeds()
{
    const QByteArray texts = textFrame("TIT2", 1, bytesOf("\xFF\xFE\x78\xB1\x98\xB7"))
        + textFrame("TPE1", 0, "\xB0\xA1\xB0\xA2") + textFrame("TALB", 3, bytesOf("album\0"));
    int number = 0;
    const auto mp3 = [&number](const QByteArray& file) {
        seed("id3", QStringLiteral("file-%1").arg(++number), file);
    };
    mp3(id3v2(texts));
    mp3(id3v2(texts, 4) + id3v1("title", "artist", "album"));
    mp3(QByteArray(40, '.') + id3v1("title", "artist", "album"));
    mp3(id3v2(frameClaiming("TIT2", 0xFFFFFFFF, "\2x")));
    for (const QByteArray& image : images())
        mp3(id3v2(pictureFrame("image/png", image) + texts));
    for (const QByteArray& image : costlyImages())
        mp3(id3v2(pictureFrame("image/jpeg", image)));
    mp3(id3v2(frameClaiming("TIT2", 2000, bytesOf("\0x") + pictureFrame("image/jpeg", smallImage("JPEG")))));
    mp3(id3v2Claiming(0x0FFFFFFF, frameClaiming("TIT2", 0x7FFFFFFF, pictureFrame("image/png", "x"))));
    mp3(id3v2(pictureFrame("image/jpeg", smallImage("JPEG"))));
    mp3(id3v2(pictureFrame("image/jpg", smallImage("JPEG"), "front")));
    for (const char encoding : {0, 1, 3})
        mp3(id3v2(textFrame("TALB", encoding, anyCharacters(tooManyCharacters)) + texts));
}

void flacSeeds()
{
    const QByteArray comments = vorbisComments({"TITLE=노래", "artist=a=b", "Album=c", "DATE=2000"});
    int number = 0;
    const auto flac = [&number](const QByteArray& blocks) {
        seed("flac", QStringLiteral("file-%1").arg(++number), flacStart() + blocks);
    };
    flac(flacBlock(Comment, comments, true));
    flac(flacBlock(Padding, "....") + flacBlock(Comment, comments) + flacBlock(Padding, ""));
    flac(flacBlock(Comment, vorbisClaiming("v", 99, {"TITLE=y"}), true));
    flac(flacHeader(Comment, 900) + comments);
    for (const QByteArray& image : images())
        flac(flacBlock(Picture, flacPicture("image/png", image, "front"))
             + flacBlock(Comment, comments, true));
    for (const QByteArray& image : costlyImages())
        flac(flacBlock(Picture, flacPicture("image/jpeg", image), true));
    flac(flacBlock(Padding, "1").repeated(300) + flacBlock(Comment, comments, true));
    flac(flacBlock(Comment, vorbisClaiming("v", 100, {}) + QByteArray(400, '\0'), true));
    flac(flacBlock(Comment, vorbisComments({"TITLE=" + QByteArray("가").repeated(tooManyCharacters)}), true));
    for (const int blocks : {limits::flacBlocks, limits::flacBlocks + 1})
        flac(flacBlock(Comment, comments) + flacBlock(Padding, "1").repeated(blocks - 2)
             + flacBlock(Picture, flacPicture("image/png", smallImage("PNG"), "front"), true));
    seed("flac", QStringLiteral("stream-only"), flacStart(true));
    seed("flac", QStringLiteral("short-first-block"),
         "fLaC" + flacBlock(StreamInfo, "1") + flacBlock(Comment, comments, true));
}

void oggSeeds()
{
    const QByteArray comments = vorbisComments({"TITLE=노래", "artist=a=b", "Album=c"});
    const QByteArray start = oggPage({oggIdentification()});
    const QByteArray audio(300, '.');
    int number = 0;
    const auto ogg = [&number](const QByteArray& file) {
        seed("ogg", QStringLiteral("file-%1").arg(++number), file);
    };
    ogg(start + oggPage({oggComment(comments), "\5vorbis"}) + oggPage({audio}) + oggPage({audio.left(20)}));
    ogg(start + oggPage({audio.left(30), oggComment(comments), audio.left(255)}, true) + oggPage({audio}));
    ogg((oggHeader(lacing({1, 40, 300})) + '.').repeated(6) + oggHeader(lacing({0})) + oggComment(comments));
    ogg(start + oggPage({oggComment(vorbisClaiming("v", 99, {"TITLE=y"}))}) + oggPage({audio}));
    ogg(oggPage({"."}).repeated(60) + oggPage({oggComment(comments)}));
    ogg((oggHeader(lacing({1, 1})) + '.').repeated(60));
    ogg(start.left(60));
    ogg(start
        + oggPage({oggComment(vorbisComments({"ALBUM=" + QByteArray("가").repeated(tooManyCharacters)}))}));
}

void configSeeds()
{
    static constexpr const char* files[] = {
        "opt/orvane/conf/radio.xml",
        "opt/orvane/conf/prefix_channels_latin.xml",
        "opt/orvane/conf/user_channels.xml",
        "opt/orvane/conf/radio.xml",
        "opt/orvane/conf/network.xml",
        "opt/orvane/conf/version.xml",
        "etc/resolv.conf",
        "opt/orvane/conf/aoe_conn.xml",
        "tmp/sampleRate",
    };
    const QDir demo(QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/root"));
    for (std::size_t i = 0; i < std::size(files); ++i) {
        QFile file(demo.filePath(QString::fromLatin1(files[i])));
        file.open(QIODevice::ReadOnly);
        const QByteArray bytes = file.readAll();
        const QByteArray chosen(1, char(i));
        seed("config", QStringLiteral("demo-%1").arg(i), chosen + bytes);
        QByteArray dhcp = bytes;
        dhcp.replace("<dhcp>no", "<dhcp>yes").replace("UTF-8", "EUC-KR");
        seed("config", QStringLiteral("other-%1").arg(i), chosen + dhcp);
        seed("config", QStringLiteral("cut-%1").arg(i), chosen + bytes.left(bytes.size() / 2));
    }
}

/** Documents beyond the bounds, and just within them. */
void hostileConfigSeeds()
{
    QByteArray attributes;
    for (int i = 0; i < 1200; ++i)
        attributes += " a" + QByteArray::number(i) + "=''";
    const QByteArray bomb = "<!DOCTYPE c [<!ENTITY e \"" + QByteArray(4000, 'x') + "\">]>";
    const QByteArray documents[] = {
        bomb + "<config><name>" + QByteArray("&e;").repeated(300) + "</name></config>",
        "<config><name" + attributes + ">1</name></config>",
        "<config><name>1</name><url>" + QByteArray(70000, 'x') + "</url></config>",
        "<config><name>1</name><url>" + QByteArray(60000, 'x') + "</url></config>",
        "<config><name>1</name><!--" + QByteArray(70000, '-') + "--></config>",
        "<config>" + QByteArray("<entry><title>t</title><url>u</url></entry>").repeated(2000) + "</config>",
        "<config>" + QByteArray("<dns1>").repeated(10000) + "</config>",
    };
    int number = 0;
    for (const QByteArray& document : documents)
        for (const char file : {'\0', '\2', '\4', '\7'})
            seed("config", QStringLiteral("hostile-%1").arg(++number), file + document);
}

void tickerSeeds()
{
    const QStringList texts = {
        QStringLiteral("A Rather Long Title of a Piece, part two"),
        QStringLiteral("라디오 방송국의 아주 긴 이름"),
        QStringLiteral("السلام عليكم ورحمة الله"),
        QStringLiteral("e\u0301a\u0308\n\tx\u200B\u200D\u2028y"),
        QStringLiteral("👨‍👩‍👧🇰🇷👍🏽"),
        QStringLiteral("क्षत्रिय कर्म \u1112\u1161\u11AB"),
    };
    int number = 0;
    for (const QString& text : texts) {
        const QByteArray units(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        seed("ticker", QStringLiteral("utf8-%1").arg(++number), bytesOf("\x50\0") + text.toUtf8());
        seed("ticker", QStringLiteral("utf16-%1").arg(number), bytesOf("\x28\1") + units);
        seed("ticker", QStringLiteral("kerned-%1").arg(number), bytesOf("\x64\2") + text.toUtf8());
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("usage: fuzz-seeds FOLDER\n", stderr);
        return 2;
    }
    root = QDir(QString::fromLocal8Bit(argv[1]));
    packetSeeds();
    sessionSeeds();
    id3Seeds();
    flacSeeds();
    int number = 0;
    for (const QByteArray& picture : pictureSeeds())
        seed("picture", QStringLiteral("file-%1").arg(++number), picture);
    oggSeeds();
    configSeeds();
    hostileConfigSeeds();
    tickerSeeds();
    return 0;
}
