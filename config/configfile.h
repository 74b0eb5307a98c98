#pragma once

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
    /** Whether the text behind an end tag of a wanted name counts too, as it does for the chosen station. */
    bool endTagsToo = false;
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
 * The whole file, up to a bound, is decoded on construction by the encoding that it declares (UTF-8 without
 * one).
 */
class ConfigReader {
public:
    explicit ConfigReader(const QString& path);

    /** Whether the file could be opened; if not, errorString() is the system's reason and the reader finds
     * nothing. */
    bool isOpen() const { return m_open; }
    QString errorString() const { return m_error; }

    /** The reader itself, for files with a structure of their own. */
    QXmlStreamReader& xml() { return m_xml; }

    /**
     * Gives each wanted text below each "config" to the consumer, in file order. Only text directly behind
     * the tag counts. A "config" that ends neither by its end tag nor by the consumer is read to the end of
     * the document or to the first error, and a line at level 4 says so.
     */
    void readFlat(const FlatPattern& pattern, const FlatConsumer& consumer);

    /** Whether nothing is left to read; says so at level 4. For loops that expect an end tag first. */
    bool endedEarly();

private:
    void readChildren(const FlatPattern& pattern, const FlatConsumer& consumer);

    QString m_path;
    bool m_open = false;
    QString m_error;
    QXmlStreamReader m_xml;
};

/** The name and text of each element below "config", in the order of writing. */
using ConfigElements = QVector<QPair<QString, QString>>;

enum class ConfigWrite {
    Written,
    NotOpened, ///< the file could not be opened: nothing was changed
    Failed, ///< the content could not be stored: the old file stays, and a line at level 4 says so
};

/**
 * Replaces a configuration file by a "config" with the given elements: UTF-8, one element a line, indented by
 * four blanks. The new content is written aside and renamed over the old one, so that a power cut leaves one
 * of them whole; where the folder takes no new file the old one is overwritten in place. `error` takes the
 * system's reason when the file cannot be opened.
 */
ConfigWrite writeConfig(const QString& path, const ConfigElements& elements, QString* error = nullptr);
