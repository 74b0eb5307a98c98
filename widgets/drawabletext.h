#pragma once

#include <QString>

/**
 * What is drawn of a text from outside: the text without its control characters, for which the panel's face
 * has boxes with their names. Tags often end in a zero character. Line breaks and tabs stay.
 */
QString drawableText(const QString& text);

/** The same for a label of one line: without line breaks too. */
QString drawableLine(const QString& text);
