#pragma once

#include <QPixmap>

/** What the play-state icon of a screen can say. */
enum class PlayIcon {
    Play,
    Pause,
    Stop,
    Next,
    Previous,
};

QPixmap playIcon(PlayIcon icon);
