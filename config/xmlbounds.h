#pragma once

#include <QByteArray>
#include <QString>

/**
 * How much of a document the XML reader may see. The reader itself has no bounds: it resolves entities, and
 * collects a tag with its attributes, a text or a comment whole, at many times its size.
 */
struct XmlPart {
    /** The part's length in the document's units. */
    qsizetype length;
    /** Why the document ends there; null where the part is all of it. */
    const char* reason;
};

/** The part before a document type declaration and before any tag, text or comment beyond its bound. */
XmlPart boundedPart(const QByteArray& document);
XmlPart boundedPart(const QString& document);
