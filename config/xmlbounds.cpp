#include "config/xmlbounds.h"

#include "app/limits.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char typeDeclaration[] = "document type declaration";
constexpr char longTag[] = "tag too long";
constexpr char longText[] = "text too long";
constexpr char manyAttributes[] = "too many attributes";
constexpr char manyNameSpaces[] = "too many name spaces";

/** Markup in which nothing counts but its end; texts are longer than their first characters. */
struct Section {
    const char* start;
    const char* end;
    const char* tooLong;
};
constexpr Section sections[] = {
    {"<!--", "-->", longTag},
    {"<![CDATA[", "]]>", longText},
    {"<?", "?>", longTag},
};

/** Walks over a document piece by piece: tags, texts, comments. `Unit` is a byte or a 16-bit code unit. */
template <typename Unit> class PieceWalk {
public:
    PieceWalk(const Unit* document, qsizetype length)
        : m_document(document)
        , m_length(length)
    {
    }

    XmlPart boundedPart()
    {
        while (m_at < m_length) {
            const qsizetype start = m_at;
            const char* reason = passPiece();
            if (reason)
                return {start, reason};
        }
        return {m_length, nullptr};
    }

private:
    const char* passPiece()
    {
        if (m_document[m_at] != '<')
            return passUntil("<") ? nullptr : longText;
        if (startsWith("<!DOCTYPE"))
            return typeDeclaration;
        for (const Section& section : sections)
            if (startsWith(section.start))
                return passSection(section);
        return passTag();
    }

    const char* passSection(const Section& section)
    {
        m_at += qsizetype(std::strlen(section.start));
        if (!passUntil(section.end))
            return section.tooLong;
        m_at = std::min(m_length, m_at + qsizetype(std::strlen(section.end)));
        return nullptr;
    }

    /** Stands behind this at the text or at the document's end; false where that is beyond the bound. */
    bool passUntil(const char* text)
    {
        const qsizetype last = m_at + limits::xmlTextUnits;
        while (m_at < m_length && m_at <= last && !startsWith(text))
            ++m_at;
        return m_at <= last;
    }

    const char* passTag()
    {
        const qsizetype end = std::min(m_length, m_at + limits::xmlTagUnits);
        int attributes = 0;
        Unit quote = 0;
        for (; m_at < end; ++m_at) {
            const Unit unit = m_document[m_at];
            if (quote == 0 && unit == '>') {
                ++m_at;
                return nullptr;
            }
            if (quote == 0 && unit == '=' && ++attributes > limits::xmlTagAttributes)
                return manyAttributes;
            if (quote == 0 && startsWith("xmlns") && ++m_nameSpaces > limits::xmlNameSpaces)
                return manyNameSpaces;
            if (quote == 0 ? unit == '"' || unit == '\'' : unit == quote)
                quote = quote == 0 ? unit : Unit(0);
        }
        return end == m_length ? nullptr : longTag;
    }

    bool startsWith(const char* text) const
    {
        qsizetype i = 0;
        while (text[i] != '\0' && m_at + i < m_length && m_document[m_at + i] == Unit(text[i]))
            ++i;
        return text[i] == '\0';
    }

    const Unit* m_document;
    qsizetype m_length;
    qsizetype m_at = 0;
    int m_nameSpaces = 0;
};

} // namespace

XmlPart boundedPart(const QByteArray& document)
{
    return PieceWalk<char>(document.constData(), document.size()).boundedPart();
}

XmlPart boundedPart(const QString& document)
{
    return PieceWalk<char16_t>(reinterpret_cast<const char16_t*>(document.utf16()), document.size())
        .boundedPart();
}
