#pragma once

#include "tools/supervisor/words.h"

#include <QList>

/** One line of a script that asks for something. */
struct ScriptLine {
    int number = 0; ///< counted from 1
    Action action;
};

/** A script read whole before anything of it is done: a mistake in its last line stops the first. */
struct Script {
    QString name; ///< as messages show it
    QList<ScriptLine> lines;
    QString error; ///< one line, with the place; empty when every line was understood
    QStringList remarks = {}; ///< one line each, with the place: what cannot be sent as it is said

    bool ok() const { return error.isEmpty(); }

    /** Reads a file, or standard input where `path` is "-". */
    static Script load(const QString& path);

    /** Understands the text; `file` paths are relative to `folder`. */
    static Script parse(const QString& name, const QByteArray& text, const QDir& folder);
};

struct SplitLine {
    QStringList words;
    QString error; ///< empty when every quote was closed
};

/**
 * Splits a line at blanks. Text in "double" or 'single' quotes keeps its blanks; a backslash in double quotes
 * takes the next character as it is. `#` at the start of a word begins a comment.
 */
SplitLine splitLine(const QString& line);

/** One line that splitLine() takes apart into these words again. */
QString joinLine(const QStringList& words);

struct CommandLine;

/** `script`: all lines over one connection. Returns the exit status. */
int runScript(const CommandLine& commandLine);
