#pragma once

#include "config/damageline.h"
#include "config/replacefile.h"

#include <QPair>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QXmlStreamReader>

#include <functional>

/**
 * The unit's configuration files: XML with a root element "config" and flat text elements below it. All of
 * them are read and written here, so that every screen treats a damaged file alike.
 */

/** How the elements of one kind of file are found below "config". */
struct FlatPattern {
    /** Elements whose text is wanted. */
    QStringList names;
    /** The end tag that closes the list: "entry" in most files. */
    QString endName = QStringLiteral("entry");
    /** Whether any token of a wanted name counts, its end tag above all, and not the start tag alone. */
    bool byNameAlone = false;
};

/** What a consumer says of a text that it was given. */
enum class Flat {
    More, ///< go on with the next element
    Done, ///< nothing else of this "config" is of interest
};

/** Receives the name of an element and its text, white space simplified. The text may be empty. */
using FlatConsumer = std::function<Flat(const QString& name, const QString& text)>;

/**
 * One configuration file opened for reading.
 *
 * The whole file is read on construction, up to a bound (a line at level 4 says so when there is more), and
 * decoded by the encoding that it declares, UTF-8 without one. A document type declaration, and a tag or a
 * text beyond its bound, end the document as an error in it does. Whatever the file holds, reading ends.
 */
class ConfigReader {
public:
    explicit ConfigReader(const QString& path);

    /** If not, errorString() is the reason and the reader finds nothing. */
    bool isOpen() const { return m_error.isEmpty(); }
    QString errorString() const { return m_error; }

    /** The reader itself, for files with a structure of their own. */
    QXmlStreamReader& xml() { return m_xml; }

    /**
     * Gives each wanted text below each "config" to the consumer, in file order. Only text directly behind
     * the tag counts. A "config" that ends neither by its end tag nor by the consumer is read to the end of
     * the document or to the first error, and a line at level 4 says so.
     */
    void readFlat(const FlatPattern& pattern, const FlatConsumer& consumer);

    /** Whether a reader stands behind its last token or at an error. */
    static bool ended(const QXmlStreamReader& xml);

    /** The same of this file, and says so at level 4, once until a reading ends as it should. For loops that
     * expect an end tag first. */
    bool endedEarly();

private:
    template <typename Document> void feed(const Document& document);
    QString endReason() const;
    void readChildren(const FlatPattern& pattern, const FlatConsumer& consumer);

    QString m_path;
    QString m_error;
    /** Why the reader was given no more of the document; empty where it was given all. */
    QString m_bound;
    DamageLine m_sizeLine;
    DamageLine m_endLine;
    QXmlStreamReader m_xml;
};

/** The name and text of each element below "config", in the order of writing. */
using ConfigElements = QVector<QPair<QString, QString>>;

/**
 * Replaces a configuration file by a "config" with the given elements: UTF-8, one element a line, indented by
 * four blanks. `error` takes the system's reason when the file cannot be opened; a line at level 4 says why
 * its content cannot be stored.
 */
ConfigWrite writeConfig(const QString& path, const ConfigElements& elements, QString* error = nullptr);
