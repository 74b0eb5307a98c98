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
 * A text cut into pieces that are each at most `limit` pixels wide, the longest that fits first. A piece is
 * cut when it is first asked for.
 *
 * Each piece after the first is at most one character shorter than what is left of the text, so a text of
 * several pieces loses its last character. From a character that is too wide even alone, nothing more is
 * taken. No piece is longer than limits::pieceCharacters.
 */
class TextPieces {
public:
    TextPieces() = default;
    TextPieces(const QString& text, int limit, const TextRuler& ruler);

    /** The piece at `index`, null where there are not that many. */
    QString piece(int index);

private:
    int nextLength() const;
    int lengthBeforeTooLong(int fits, int most) const;
    int fittingBehind(int length, int most) const;
    int width(int length) const;

    QString m_text;
    int m_limit = 0;
    TextRuler m_ruler;
    QStringList m_pieces;
    int m_from = 0; // where the next piece begins
};
