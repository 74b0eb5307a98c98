#pragma once

#include <QString>

/**
 * What a label `width` pixels wide draws of a text from outside: no more characters than it has pixels
 * across, and none of the control characters, for which the panel's face has boxes with their names. Tags
 * often end in a zero character. Line breaks and tabs stay.
 */
QString drawableText(const QString& text, int width);

/** Where a label draws a text: lines that follow the first one do not push it out of the label. */
Qt::Alignment placeOf(const QString& text, Qt::Alignment alignment);
