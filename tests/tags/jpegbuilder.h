#pragma once

#include "tests/tags/mediabuilder.h"

#include <QSize>

/**
 * JPEG files of one grey, built from the markers that a decoder asks for and next to no data: what is missing
 * it takes as zero. They are as large, and take as many scans, as their markers say.
 */
namespace JpegBuilder {

using namespace MediaBuilder;

enum Kind : quint8 { Baseline = 0xC0, Progressive = 0xC2, Lossless = 0xC3, Arithmetic = 0xC9 };
enum Segment : quint8 {
    Restart = 0xD0,
    Tables = 0xC4,
    Quantizers = 0xDB,
    Scan = 0xDA,
    Exif = 0xE1,
    Remark = 0xFE
};

inline Bytes marker(int code)
{
    return Bytes(1, '\xFF') + Bytes(1, char(code));
}

inline Bytes segment(int code, const Bytes& data)
{
    return marker(code) + bigEndian(quint32(data.size()) + 2, 2) + data;
}

/** `samplings` holds of each component its factors, across and down, in one byte. */
inline Bytes frameSegment(Kind kind, QSize size, const Bytes& samplings)
{
    Bytes data = Bytes(1, '\x8') + bigEndian(quint32(size.height()), 2) + bigEndian(quint32(size.width()), 2)
        + Bytes(1, char(samplings.size()));
    for (int i = 0; i < samplings.size(); ++i)
        data += Bytes(1, char(i + 1)) + samplings.at(i) + '\0';
    return segment(kind, data);
}

/** A scan over the first so many components, of their first coefficients or all the others. */
inline Bytes scan(int components, bool isFirst, bool isProgressive)
{
    Bytes data(1, char(components));
    for (int i = 0; i < components; ++i)
        data += Bytes(1, char(i + 1)) + '\0';
    const int from = isFirst ? 0 : 1;
    const int to = isFirst && isProgressive ? 0 : 63;
    return segment(Scan, data + Bytes(1, char(from)) + Bytes(1, char(to)) + '\0') + '\0';
}

/** Every table of codes has one code, which means nothing more. */
inline Bytes tables()
{
    const Bytes oneCode = '\1' + Bytes(16, '\0');
    return segment(Quantizers, '\0' + Bytes(64, '\1')) + segment(Tables, '\0' + oneCode)
        + segment(Tables, '\x10' + oneCode);
}

/** `between` stands before the frame. */
inline Bytes jpeg(Kind kind, QSize size, const Bytes& samplings, int scans = 1,
                  const Bytes& between = Bytes())
{
    const bool isProgressive = kind == Progressive;
    const int components = int(samplings.size());
    return marker(0xD8) + between + tables() + frameSegment(kind, size, samplings)
        + scan(components, true, isProgressive) + scan(1, false, isProgressive).repeated(scans - 1)
        + marker(0xD9);
}

} // namespace JpegBuilder
