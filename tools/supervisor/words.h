#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>
#include <QStringList>

/**
 * The words in which people say packets: `key long-select`, `enc -3`, `station "Title" http://a.example/`.
 *
 * One table drives parsing, help and packet building; the command line, scripts and the window all speak
 * through it.
 */

/** What one line of words asks for. */
struct Action {
    enum class Kind {
        Send, ///< send the packet
        Request, ///< send the packet, which asks for the mode, and print the answer
        Expect, ///< send the packet, which asks for the mode, and compare the answer with `value`
        Wait, ///< let `value` milliseconds pass; there is no packet
    };

    Kind kind = Kind::Send;
    QByteArray packet;
    int value = 0;
};

struct ParsedWords {
    Action action;
    QString error; ///< one line; empty when the words were understood
    QString remark = {}; ///< one line: what could not be sent as it was said; mostly empty

    bool ok() const { return error.isEmpty(); }
};

/** Scripts know words beyond those that stand for one packet. */
enum class Vocabulary { Packets, Script };

/** Understands one line of words; `file` paths are relative to `folder`. */
ParsedWords parseWords(const QStringList& line, Vocabulary vocabulary = Vocabulary::Packets,
                       const QDir& folder = QDir());

/** The packet that asks the panel for its mode. */
QByteArray modeRequest();

/** The name of a mode's code, as `expect` takes it; "unknown (N)" for a code that no mode has. */
QString modeName(quint8 code);

/** Every word with its arguments and meaning, two lines a word. */
QString wordsHelp();
