#pragma once

#include <QString>

/**
 * The length of a media file in milliseconds, as ffprobe tells it; unknownTrackMs where that program is not
 * installed or does not know.
 */
int trackLengthMs(const QString& path);

constexpr int unknownTrackMs = 3 * 60 * 1000;
