#pragma once

#include "tests/tags/mediabuilder.h"

#include <QSize>

#include <zlib.h>

/** Picture files of which a decoder could unpack thousands of times their size, none of which shows. */
namespace PackedPictures {

using namespace MediaBuilder;

/** Packs bytes so that what follows them needs nothing of them. */
inline Bytes packed(z_stream& packer, const Bytes& bytes)
{
    Bytes result(int(deflateBound(&packer, uLong(bytes.size()))) + 16, '\0');
    Bytes source = bytes;
    packer.next_in = reinterpret_cast<Bytef*>(source.data());
    packer.avail_in = uInt(bytes.size());
    packer.next_out = reinterpret_cast<Bytef*>(result.data());
    packer.avail_out = uInt(result.size());
    deflate(&packer, Z_FULL_FLUSH);
    return result.left(result.size() - int(packer.avail_out));
}

inline Bytes pngPart(const Bytes& name, const Bytes& data)
{
    const Bytes both = name + data;
    const uLong checksum = crc32(0, reinterpret_cast<const Bytef*>(both.constData()), uInt(both.size()));
    return bigEndian(quint32(data.size())) + both + bigEndian(quint32(checksum));
}

constexpr int megabyte = 1024 * 1024;

/** Of so many zeros, as it stands behind what is packed: a sum of the bytes, which begins with one, and of
 * the sums. */
inline Bytes zerosChecksum(qint64 zeros)
{
    constexpr qint64 modulus = 65521;
    return bigEndian(quint32(zeros % modulus), 2) + bigEndian(1, 2);
}

/** A black PNG of `side` by `side` pixels, and behind them as many megabytes that are packed into a kilobyte
 * each. */
inline Bytes png(int side, int megabytes)
{
    z_stream packer = {};
    deflateInit(&packer, 9);
    const int rowBytes = side * (3 * side + 1);
    const Bytes rows = packed(packer, Bytes(rowBytes, '\0'));
    const Bytes more = packed(packer, Bytes(megabyte, '\0'));
    deflateEnd(&packer);
    const Bytes end = bytesOf("\1\0\0\xFF\xFF") + zerosChecksum(rowBytes + qint64(megabytes) * megabyte);
    const Bytes header = bigEndian(quint32(side)) + bigEndian(quint32(side)) + bytesOf("\x8\2\0\0\0");
    return "\x89PNG\r\n\x1A\n" + pngPart("IHDR", header)
        + pngPart("IDAT", rows + more.repeated(megabytes) + end) + pngPart("IEND", {});
}

/** Codes of a GIF, the first with three bits each. */
class GifCodes {
public:
    void add(quint32 code)
    {
        m_waiting |= quint64(code) << m_bits;
        for (m_bits += m_width; m_bits >= 8; m_bits -= 8, m_waiting >>= 8U)
            m_bytes.append(char(m_waiting));
    }
    void widen() { ++m_width; }

    /** In blocks of up to 255 bytes, as a file has them. */
    Bytes blocks() const
    {
        Bytes result;
        for (int at = 0; at < m_bytes.size(); at += 255) {
            const Bytes block = m_bytes.mid(at, 255);
            result += char(block.size()) + block;
        }
        return result + '\0';
    }

private:
    Bytes m_bytes;
    quint64 m_waiting = 0;
    int m_bits = 0;
    int m_width = 3;
};

constexpr quint32 gifClear = 4;

/** A GIF of one red on a screen, with these codes. */
inline Bytes gif(QSize screen, QSize picture, const GifCodes& codes)
{
    const auto size = [](QSize of) {
        return littleEndian(quint32(of.width())).left(2) + littleEndian(quint32(of.height())).left(2);
    };
    return "GIF89a" + size(screen) + bytesOf("\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0") + size(picture)
        + bytesOf("\0\2") + codes.blocks() + ';';
}

/** Of one pixel, before which the decoder's table is emptied so many times. */
inline Bytes gifOfClears(int clears)
{
    GifCodes codes;
    for (int i = 0; i < clears; ++i)
        codes.add(gifClear);
    codes.add(0);
    for (int bits = 0; bits < 8; bits += 3)
        codes.add(gifClear); // whole bytes alone are written
    return gif({1, 1}, {1, 1}, codes);
}

/** Each of its last codes stands for some 4,000 pixels. */
inline Bytes gif(QSize screen, QSize picture, int lastCodes)
{
    constexpr quint32 firstNew = 6;
    constexpr quint32 lastNew = 4095;
    GifCodes codes;
    codes.add(gifClear);
    codes.add(0);
    for (quint32 code = firstNew; code < lastNew;
         ++code) { // each stands for a pixel more than the one before
        codes.add(code);
        if (((code + 1) & code) == 0)
            codes.widen();
    }
    for (int i = 0; i < lastCodes; ++i)
        codes.add(lastNew - 1);
    return gif(screen, picture, codes);
}

} // namespace PackedPictures
