#include "widgets/textpieces.h"

namespace {

constexpr char32_t zeroWidthJoiner = 0x200D;
constexpr int viramaClass = 9;

/** Stepping down from a longer guess would cost more than stepping up to it saves. */
constexpr int longestFirstGuess = 64;

/** Longer brackets are narrowed by measuring what lies inside them, not each time from the start. */
constexpr int longBracket = 64;

/** The longest emoji sequence of the standard has 15 units; a longer one is not looked for. */
constexpr int longestSequence = 24;

/** A sequence of four emoji, each about as wide as a line is high, becomes one. */
constexpr int mostLinesSaved = 4;

struct CharRange {
    char32_t first;
    char32_t last;
};

/** Characters that join what precedes them without being marks or having joining forms. */
constexpr CharRange joiners[] = {
    {0x1160, 0x11FF}, // Hangul vowels and final consonants
    {0xD7B0, 0xD7FB}, // the same, of old Hangul
    {0x1F1E6, 0x1F1FF}, // halves of flags
    {0x1F3FB, 0x1F3FF}, // skin tones
};

bool isJoiner(char32_t c)
{
    for (const CharRange& range : joiners) {
        if (c >= range.first && c <= range.last)
            return true;
    }
    return QChar::isMark(c) || QChar::category(c) == QChar::Other_Format
        || QChar::joiningType(c) != QChar::Joining_None;
}

bool joinsItsFollower(char32_t c)
{
    return c == zeroWidthJoiner || QChar::combiningClass(c) == viramaClass;
}

/** The cutting of one text. Positions and lengths are in UTF-16 units; lengths count from m_from. */
class PieceCutter {
public:
    PieceCutter(const QString& text, int limit, const TextRuler& ruler)
        : m_text(text)
        , m_limit(limit)
        , m_ruler(ruler)
    {
    }

    QStringList cut()
    {
        QStringList pieces;
        int most = int(m_text.size());
        while (const int length = longestFitting(most)) {
            pieces << m_text.mid(m_from, length);
            m_from += length;
            most = int(m_text.size()) - m_from - 1;
        }
        return pieces;
    }

private:
    /** The longest length found to fit and the shortest one above it found to be too long. */
    struct Bracket {
        int fits;
        int tooLong;
        int size() const { return tooLong - fits; }
    };

    /**
     * The longest length up to `most` that fits, or 0. Appending a character nearly always widens a text;
     * where it can narrow it, the lengths behind the first that is too long are tried as well.
     */
    int longestFitting(int most)
    {
        if (most < 1)
            return 0;
        int length = longestBelowTooLong(most, 0, qMin(m_guess, most));
        while (const int longer = fittingBehind(length, most))
            length = longestBelowTooLong(most, longer, longer);
        m_guess = qBound(1, length, longestFirstGuess);
        return length;
    }

    /** A length that fits while the next one does not, searched for between `fits` and `most`. */
    int longestBelowTooLong(int most, int fits, int guess) const
    {
        Bracket bracket = gallop({fits, most + 1}, guess);
        if (bracket.size() > longBracket)
            bracket = gallop(bracket, guessBySum(bracket));
        while (bracket.size() > 1)
            narrow(bracket, bracket.fits + bracket.size() / 2);
        return bracket.fits;
    }

    /** Narrows a bracket by steps of doubling size away from a guess inside it. */
    Bracket gallop(Bracket bracket, int guess) const
    {
        const bool upward = guess == bracket.fits || narrow(bracket, guess);
        for (int step = 1; bracket.size() > 1; step *= 2) {
            const int next = upward ? qMin(bracket.fits + step, bracket.tooLong - 1)
                                    : qMax(bracket.tooLong - step, bracket.fits + 1);
            if (narrow(bracket, next) != upward)
                break;
        }
        return bracket;
    }

    /** Moves one end of the bracket to `length`; tells whether that length fits. */
    bool narrow(Bracket& bracket, int length) const
    {
        const bool fits = width(0, length) <= m_limit;
        (fits ? bracket.fits : bracket.tooLong) = length;
        return fits;
    }

    /** Where the limit is reached when the widths of stretches inside the bracket are simply added up. */
    int guessBySum(const Bracket& bracket) const
    {
        Bracket inner = bracket;
        int room = m_limit - width(0, bracket.fits);
        while (inner.size() > 1) {
            const int half = inner.size() / 2;
            const int taken = width(inner.fits, half);
            if (taken > room) {
                inner.tooLong = inner.fits + half;
                continue;
            }
            inner.fits += half;
            room -= taken;
        }
        return qMax(inner.fits, bracket.fits + 1);
    }

    /**
     * The next longer length that fits although `length` + 1 does not, or 0. What precedes a character that
     * joins nothing keeps its width from there on, except that a mark just before it may yet find its place.
     */
    int fittingBehind(int length, int most) const
    {
        const int last = qMin(most, length + 1 + longestSequence);
        for (int longer = length + 2; longer <= last; ++longer) {
            const int at = m_from + longer - 1;
            const bool joins = joinsWhatPrecedes(at);
            if (!joins && !isJoiner(characterBefore(at)))
                return 0;
            const int pixels = width(0, longer);
            if (pixels <= m_limit)
                return longer;
            if (!joins || pixels > m_limit + mostLinesSaved * m_ruler.lineHeight)
                return 0;
        }
        return 0;
    }

    bool joinsWhatPrecedes(int at) const
    {
        const bool completesPair = m_text.at(at).isLowSurrogate() && m_text.at(at - 1).isHighSurrogate();
        return completesPair || isJoiner(characterFrom(at)) || joinsItsFollower(characterBefore(at));
    }
    char32_t characterFrom(int at) const
    {
        const QChar unit = m_text.at(at);
        if (unit.isHighSurrogate() && at + 1 < m_text.size() && m_text.at(at + 1).isLowSurrogate())
            return QChar::surrogateToUcs4(unit, m_text.at(at + 1));
        return unit.unicode();
    }
    char32_t characterBefore(int at) const
    {
        const bool pair = at > 1 && m_text.at(at - 1).isLowSurrogate() && m_text.at(at - 2).isHighSurrogate();
        return characterFrom(pair ? at - 2 : at - 1);
    }

    int width(int offset, int length) const
    {
        return m_ruler.width(QString::fromRawData(m_text.constData() + m_from + offset, length));
    }

    const QString& m_text;
    const int m_limit;
    const TextRuler& m_ruler;
    int m_from = 0;
    int m_guess = longestFirstGuess;
};

} // namespace

QStringList cutToWidth(const QString& text, int limit, const TextRuler& ruler)
{
    return PieceCutter(text, limit, ruler).cut();
}
