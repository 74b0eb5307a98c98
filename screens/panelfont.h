#pragma once

#include <QFont>

/**
 * The face of all text on the panel, upright and of normal weight, `pointSize` points high. At 12 points its
 * squares are the panel's pixels: smoothing would only blur them.
 */
inline QFont panelFont(int pointSize)
{
    constexpr int nativePoints = 12;
    QFont font(QStringLiteral("Unifont"), pointSize, QFont::Normal, false);
    if (pointSize == nativePoints)
        font.setStyleStrategy(QFont::NoAntialias);
    return font;
}
