#include "widgets/textpieces.h"

#include "app/limits.h"

namespace {

/** About as many characters as fit the panel's labels. */
constexpr int firstStep = 16;

/** The longest emoji sequence of the standard has 15 units; a longer one is not looked for. */
constexpr int longestSequence = 24;

/** A sequence of four emoji, each about as wide as a line is high, becomes one. */
constexpr int mostLinesSaved = 4;

} // namespace

TextPieces::TextPieces(const QString& text, int limit, const TextRuler& ruler)
    : m_text(text)
    , m_limit(limit)
    , m_ruler(ruler)
{
}

QString TextPieces::piece(int index)
{
    while (m_pieces.size() <= index) {
        const int length = nextLength();
        if (length == 0)
            return QString();
        m_pieces << m_text.mid(m_from, length);
        m_from += length;
    }
    return m_pieces.at(index);
}

/**
 * Appending a character nearly always widens a text; where it can narrow it, the lengths behind the first
 * that is too long are tried as well.
 */
int TextPieces::nextLength() const
{
    const int left = int(m_text.size()) - m_from - (m_pieces.isEmpty() ? 0 : 1);
    const int most = qMin(left, limits::pieceCharacters);
    int length = lengthBeforeTooLong(0, most);
    while (const int longer = fittingBehind(length, most))
        length = lengthBeforeTooLong(longer, most);
    return length;
}

/** A length from `fits` to `most` that fits while the next one does not: by steps that double, then halve. */
int TextPieces::lengthBeforeTooLong(int fits, int most) const
{
    int tooLong = most + 1;
    int step = firstStep;
    while (tooLong - fits > 1) {
        const int length = fits + qMin(step, (tooLong - fits) / 2);
        (width(length) <= m_limit ? fits : tooLong) = length;
        step *= 2;
    }
    return fits;
}

/** The next length that fits although `length` + 1 does not, or 0. */
int TextPieces::fittingBehind(int length, int most) const
{
    const int last = qMin(most, length + 1 + longestSequence);
    for (int longer = length + 2; longer <= last; ++longer) {
        const int pixels = width(longer);
        if (pixels <= m_limit)
            return longer;
        if (pixels > m_limit + mostLinesSaved * m_ruler.lineHeight)
            return 0;
    }
    return 0;
}

int TextPieces::width(int length) const
{
    return m_ruler.width(QString::fromRawData(m_text.constData() + m_from, length));
}
