#pragma once

#include <QFont>

/** The face of all text on the panel, upright and of normal weight, `pointSize` points high. */
inline QFont panelFont(int pointSize)
{
    return QFont(QStringLiteral("Unifont"), pointSize, QFont::Normal, false);
}
