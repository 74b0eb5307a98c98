#pragma once

#include <QString>
#include <QStringList>

#include <functional>

/** What the cutting of a text asks of a font, in pixels. */
struct TextRuler {
    /** The width of a text set on one line of its own. */
    std::function<int(const QString& text)> width;
    /** The height of a line, from which is taken how much a ligature can save. */
    int lineHeight = 0;
};

/**
 * Cuts a text into pieces that are each at most `limit` pixels wide, the longest that fits first.
 *
 * Each piece after the first is at most one character shorter than what is left of the text, so a text of
 * several pieces loses its last character. From a character that is too wide even alone, nothing more is
 * taken. The cost grows with the length of the text and not with its square, whatever characters it holds.
 */
QStringList cutToWidth(const QString& text, int limit, const TextRuler& ruler);
