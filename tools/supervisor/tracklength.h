#pragma once

#include <QString>

/**
 * The length of an MP3, FLAC or Ogg Vorbis file in milliseconds, from its headers; unknownTrackMs where they
 * do not tell it. An MP3 file without a frame count is taken to have the bit rate of its first frame all
 * through.
 */
int trackLengthMs(const QString& path);

constexpr int unknownTrackMs = 3 * 60 * 1000;
