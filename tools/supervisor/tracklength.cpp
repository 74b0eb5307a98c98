#include "tools/supervisor/tracklength.h"

#include <QByteArray>
#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <optional>

namespace {

/** The start or the end of a file, as far as headers reach. */
constexpr qint64 headBytes = 64 * 1024;

struct Bytes {
    QByteArray all;

    quint32 at(int offset) const { return offset >= 0 && offset < all.size() ? quint8(all[offset]) : 0; }
    quint32 big32(int offset) const
    {
        return at(offset) << 24 | at(offset + 1) << 16 | at(offset + 2) << 8 | at(offset + 3);
    }
    quint32 little32(int offset) const
    {
        return at(offset + 3) << 24 | at(offset + 2) << 16 | at(offset + 1) << 8 | at(offset);
    }
};

Bytes readAt(QFile& file, qint64 offset)
{
    file.seek(std::clamp(offset, qint64(0), file.size()));
    return {file.read(headBytes)};
}

std::optional<qint64> samplesToMs(quint64 samples, quint32 rate)
{
    constexpr quint64 mostSamples = quint64(1) << 40;
    if (rate == 0 || samples == 0 || samples > mostSamples)
        return std::nullopt;
    return qint64(samples * 1000 / rate);
}

/** STREAMINFO is the first block: 20 bits of sample rate at byte 18, 36 bits of sample count at byte 21.5. */
std::optional<qint64> flacMs(QFile& file)
{
    const Bytes head = readAt(file, 0);
    const quint32 rate = head.big32(18) >> 12;
    const quint64 samples = quint64(head.at(21) & 0x0F) << 32 | head.big32(22);
    return samplesToMs(samples, rate);
}

/** The last page's granule position counts the samples up to its end. */
std::optional<qint64> oggMs(QFile& file)
{
    const Bytes head = readAt(file, 0);
    const auto identification = head.all.indexOf("\x01vorbis");
    if (identification < 0)
        return std::nullopt;
    const quint32 rate = head.little32(int(identification) + 12);
    const Bytes tail = readAt(file, file.size() - headBytes);
    const int page = int(tail.all.lastIndexOf("OggS"));
    const quint64 samples = quint64(tail.little32(page + 10)) << 32 | tail.little32(page + 6);
    return page < 0 ? std::nullopt : samplesToMs(samples, rate);
}

/** A layer-III frame header. */
struct FrameHeader {
    bool version1 = false;
    quint32 bitsPerSecond = 0;
    quint32 samplesPerSecond = 0;

    quint32 samplesPerFrame() const { return version1 ? 1152 : 576; }
};

/** Empty unless the four bytes are a layer-III header with a known bit rate and sample rate. */
std::optional<FrameHeader> frameHeader(quint32 bits)
{
    static constexpr quint16 kilobits[2][16] = {
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0},
        {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0},
    };
    static constexpr quint32 rates[] = {44100, 48000, 32000, 0};
    static constexpr quint32 rateDivisors[] = {4, 0, 2, 1}; // version 2.5, none, 2, 1
    const quint32 version = bits >> 19 & 3;
    const bool isLayer3 = bits >> 21 == 0x7FF && (bits >> 17 & 3) == 1 && rateDivisors[version] != 0;
    if (!isLayer3)
        return std::nullopt;
    FrameHeader header;
    header.version1 = version == 3;
    header.bitsPerSecond = kilobits[header.version1][bits >> 12 & 15] * 1000U;
    header.samplesPerSecond = rates[bits >> 10 & 3] / rateDivisors[version];
    if (header.bitsPerSecond == 0 || header.samplesPerSecond == 0)
        return std::nullopt;
    return header;
}

/** Where the audio begins: behind an ID3v2 tag, if there is one. */
qint64 behindTag(const Bytes& head)
{
    if (!head.all.startsWith("ID3"))
        return 0;
    const quint32 size = (head.at(6) & 0x7F) << 21 | (head.at(7) & 0x7F) << 14 | (head.at(8) & 0x7F) << 7
        | (head.at(9) & 0x7F);
    return 10 + qint64(size);
}

/** The first frame may count all frames, behind the mark "Xing" or "Info". */
quint32 frameCount(const Bytes& frame)
{
    constexpr int furthestMark = 64;
    for (const char* mark : {"Xing", "Info"}) {
        const int at = int(frame.all.left(furthestMark).indexOf(mark));
        if (at >= 0 && (frame.at(at + 7) & 1))
            return frame.big32(at + 8);
    }
    return 0;
}

std::optional<qint64> mp3Ms(QFile& file)
{
    const qint64 start = behindTag(readAt(file, 0));
    const Bytes head = readAt(file, start);
    for (int at = 0; at + 4 <= head.all.size(); ++at) {
        const auto header = frameHeader(head.big32(at));
        if (!header)
            continue;
        const quint32 frames = frameCount({head.all.mid(at)});
        if (frames > 0)
            return samplesToMs(quint64(frames) * header->samplesPerFrame(), header->samplesPerSecond);
        return (file.size() - start - at) * 8000 / header->bitsPerSecond;
    }
    return std::nullopt;
}

constexpr qint64 longestMs = 24 * 3600 * 1000;

struct Format {
    const char* suffix;
    std::optional<qint64> (*length)(QFile&);
};

constexpr Format formats[] = {
    {".flac", flacMs},
    {".ogg", oggMs},
    {".mp3", mp3Ms},
};

} // namespace

int trackLengthMs(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return unknownTrackMs;
    for (const Format& format : formats)
        if (path.endsWith(QLatin1String(format.suffix), Qt::CaseInsensitive))
            return int(std::clamp(format.length(file).value_or(unknownTrackMs), qint64(1), longestMs));
    return unknownTrackMs;
}
