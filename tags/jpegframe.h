#pragma once

#include <QByteArray>
#include <QSize>

#include <optional>

/** What decoding a JPEG file takes, as its markers say before any of it is decoded. */
struct JpegFrame {
    QSize pixels;
    /** Blocks of 8 by 8 samples of all components. */
    qint64 blocks = 0;
    /** Progressive pictures come in many scans. */
    int scans = 0;
    /** The blocks that the decoder goes through, all scans together. */
    qint64 visits = 0;
    /** Whether the decoder holds the coefficients of every block until the last scan. */
    bool holdsCoefficients = false;
    /** Whether coefficients are coded arithmetically, which takes far longer and any number a byte. */
    bool isArithmetic = false;
};

/** Nothing where the bytes are no JPEG file of a kind that loads. */
std::optional<JpegFrame> jpegFrame(const QByteArray& file);
