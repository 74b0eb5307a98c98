#pragma once

#include "link/packet.h"
#include "tools/supervisor/panelsession.h"

#include <QPoint>
#include <QString>
#include <QStringList>

#include <optional>

/** How the program ended; --help and the manual page say what each status means. */
enum class ExitStatus { Done, Usage, NoPanel, NoAnswer, Unmet };

/** What the program was started for. */
struct CommandLine {
    enum class Run { Window, PanelPlace, Send, Script, Help, Version };

    Run run = Run::Window;
    QString host = QStringLiteral("127.0.0.1");
    quint16 port = linkPort;
    int answerTimeoutMs = PanelSession::answerTimeoutMs; ///< Send, Script: how long to wait for an answer
    QString music; ///< Window: a folder of music to begin with
    std::optional<QPoint> place; ///< Window: its corner on the screen
    QStringList words; ///< Send: the words of the packet; Script: the one file name
    QString error; ///< one line; empty when the arguments were understood

    /** Options stand before the words, so that `enc -3` is no option. */
    static CommandLine parse(const QStringList& arguments);
};

QString helpText();
QString versionText();

/** Prints one line on standard error. */
void remark(const QString& text);

/** Prints one line on standard error and returns the exit status. */
int failure(const QString& reason, ExitStatus status = ExitStatus::Usage);

/** Prints one line on standard output. */
void printLine(const QString& line);

/** `send`: one packet over a connection of its own. Returns the exit status. */
int runSend(const CommandLine& commandLine);
