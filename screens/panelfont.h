#pragma once

#include <QFont>
#include <QGuiApplication>
#include <QScreen>

/** Bits of a pixel of the panel's display. */
inline int displayDepth()
{
    return QGuiApplication::primaryScreen()->depth();
}

/**
 * The face of all text on the panel, upright and of normal weight, `pointSize` points high. At 12 points its
 * squares are the panel's pixels: smoothing would only blur them.
 *
 * On displays of 16 bits a pixel the toolkit paints unsmoothed text with lines of half their length, so that
 * nobody can read it. Smoothed but as it was designed, without hinting, it fills the same pixels.
 */
inline QFont panelFont(int pointSize, int depth = displayDepth())
{
    constexpr int nativePoints = 12;
    QFont font(QStringLiteral("Unifont"), pointSize, QFont::Normal, false);
    if (pointSize != nativePoints)
        return font;
    if (depth == 16)
        font.setHintingPreference(QFont::PreferNoHinting);
    else
        font.setStyleStrategy(QFont::NoAntialias);
    return font;
}
