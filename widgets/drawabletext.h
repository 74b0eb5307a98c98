#pragma once

#include <QString>

/**
 * What is drawn of a text from outside: of its first `most` characters all but the control characters, for
 * which the panel's face has boxes with their names. Tags often end in a zero character. Line breaks and tabs
 * stay.
 */
QString drawableText(const QString& text, int most);

/** Where a label draws a text: lines that follow the first one do not push it out of the label. */
Qt::Alignment placeOf(const QString& text, Qt::Alignment alignment);
