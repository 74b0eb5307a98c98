#include "tools/supervisor/commandline.h"

#include "app/version.h"
#include "tools/supervisor/bytetext.h"
#include "tools/supervisor/musicfolder.h"
#include "tools/supervisor/words.h"

#include <QCommandLineParser>

#include <cstdio>

namespace {

struct Option {
    const char* name;
    const char* letter;
    const char* argument;
    const char* meaning;
    /** Takes the option's value; returns what is wrong with it, or nothing. */
    QString (*take)(const QString& value, CommandLine& into);
};

QString takeHost(const QString& value, CommandLine& into)
{
    into.host = value;
    return value.isEmpty() ? QStringLiteral("--host needs a name or an address") : QString();
}

QString takePort(const QString& value, CommandLine& into)
{
    into.port = value.toUShort();
    return into.port == 0 ? QStringLiteral("--port: \"%1\" is not a number from 1 to 65535").arg(value)
                          : QString();
}

QString takeTimeout(const QString& value, CommandLine& into)
{
    constexpr int longest = 10 * 60 * 1000;
    into.answerTimeoutMs = value.toInt();
    const bool good = into.answerTimeoutMs > 0 && into.answerTimeoutMs <= longest;
    return good ? QString()
                : QStringLiteral("--timeout: \"%1\" is not a number from 1 to %2").arg(value).arg(longest);
}

QString takeMusic(const QString& value, CommandLine& into)
{
    into.music = value;
    return musicBelow(value).isEmpty() ? QStringLiteral("--music: no music below \"%1\"").arg(value)
                                       : QString();
}

QString takePlace(const QString& value, CommandLine& into)
{
    const QStringList numbers = value.split(QLatin1Char(','));
    bool isX = false;
    bool isY = false;
    const QPoint place(numbers.value(0).toInt(&isX), numbers.value(1).toInt(&isY));
    if (!isX || !isY || numbers.size() != 2)
        return QStringLiteral("--at: \"%1\" is not two numbers as 340,0").arg(value);
    into.place = place;
    return {};
}

QString takePanelPlace(const QString&, CommandLine& into)
{
    into.run = CommandLine::Run::PanelPlace;
    return {};
}

QString takeHelp(const QString&, CommandLine& into)
{
    into.run = CommandLine::Run::Help;
    return {};
}

QString takeVersion(const QString&, CommandLine& into)
{
    into.run = CommandLine::Run::Version;
    return {};
}

constexpr Option options[] = {
    {"host", "", "HOST", "where the panel runs (127.0.0.1)", takeHost},
    {"port", "", "PORT", "the panel's TCP port (5000)", takePort},
    {"timeout", "", "MS", "how long to wait for an answer, in milliseconds (35000)", takeTimeout},
    {"music", "", "FOLDER", "music for the window's disk", takeMusic},
    {"at", "", "X,Y", "where on the screen the window opens, in pixels", takePlace},
    {"panel-place", "", "", "prints where the panel goes beside the window, for vireo -qwindowgeometry",
     takePanelPlace},
    {"help", "h", "", "prints this text", takeHelp},
    {"version", "", "", "prints the version", takeVersion},
};

struct Verb {
    const char* name;
    CommandLine::Run run;
};

constexpr Verb verbs[] = {
    {"send", CommandLine::Run::Send},
    {"script", CommandLine::Run::Script},
};

struct Ending {
    ExitStatus status;
    const char* meaning;
};

constexpr Ending endings[] = {
    {ExitStatus::Done, "all was sent, every answer came and every expected mode was met"},
    {ExitStatus::Usage, "an option, a word, a file or the display cannot be used"},
    {ExitStatus::NoPanel, "no panel could be reached"},
    {ExitStatus::NoAnswer, "the panel did not answer, or the link broke"},
    {ExitStatus::Unmet, "the panel was in another mode than expected"},
};

QStringList namesOf(const Option& option)
{
    QStringList names{QString::fromLatin1(option.name)};
    if (option.letter[0] != '\0')
        names << QString::fromLatin1(option.letter);
    return names;
}

/** Takes the options in front of the first word; returns the words. */
QStringList takeOptions(const QStringList& arguments, CommandLine& into)
{
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    for (const Option& option : options)
        parser.addOption({namesOf(option), {}, QString::fromLatin1(option.argument)});
    if (!parser.parse(QStringList{QString()} + arguments))
        into.error = parser.errorText() + QStringLiteral(" --help lists all options.");
    for (const Option& option : options) {
        const QString name = QString::fromLatin1(option.name);
        if (into.error.isEmpty() && parser.isSet(name))
            into.error = option.take(*option.argument ? parser.value(name) : QString(), into);
    }
    return parser.positionalArguments();
}

QString takeVerb(const QString& name, CommandLine& into)
{
    for (const Verb& verb : verbs)
        if (name == QLatin1String(verb.name)) {
            into.run = verb.run;
            return {};
        }
    return QStringLiteral("unknown argument \"%1\"; expected send or script").arg(name);
}

/** A line that nothing in it can break into two. */
QByteArray oneLine(QString text)
{
    for (QChar& c : text)
        if (c.unicode() < 0x20 || c.unicode() == 0x7F)
            c = QLatin1Char('?');
    return bytesOf(text) + '\n';
}

QString row(const QString& what, const char* meaning)
{
    return QStringLiteral("  %1\n        %2\n").arg(what, QLatin1String(meaning));
}

QString optionsHelp()
{
    QString text;
    for (const Option& option : options)
        text += row(QLatin1String("--")
                        + (namesOf(option).join(QLatin1String(", -")) + QLatin1Char(' ')
                           + QLatin1String(option.argument))
                              .trimmed(),
                    option.meaning);
    return text;
}

QString endingsHelp()
{
    QString text;
    for (const Ending& ending : endings)
        text += row(QString::number(int(ending.status)), ending.meaning);
    return text;
}

} // namespace

CommandLine CommandLine::parse(const QStringList& arguments)
{
    CommandLine result;
    QStringList words = takeOptions(arguments, result);
    if (!result.error.isEmpty() || result.run != Run::Window || words.isEmpty())
        return result;
    result.error = takeVerb(words.takeFirst(), result);
    if (result.error.isEmpty())
        result.words = takeOptions(words, result);
    if (result.run == Run::Script && result.error.isEmpty() && result.words.size() != 1)
        result.error = QStringLiteral("script needs one file name, or - for standard input");
    return result;
}

QString helpText()
{
    return QStringLiteral(
               "Usage: vireo-supervisor [OPTIONS]                 the unit's front panel in a window\n"
               "       vireo-supervisor [OPTIONS] send WORDS...   sends one packet\n"
               "       vireo-supervisor [OPTIONS] script FILE     runs the lines of a file, or of standard "
               "input (-)\n"
               "\n"
               "Plays the other end of the panel's link, for people without the unit's hardware. The panel\n"
               "serves the newest connection alone: each start takes the link from whoever has it.\n"
               "\n"
               "Options:\n")
        + optionsHelp() + QStringLiteral("\nWords:\n") + wordsHelp()
        + QStringLiteral(
               "\n"
               "A script holds one packet's words a line. Texts with blanks stand in \"double\" or\n"
               "'single' quotes, # begins a comment, and file paths are relative to the script. At its end\n"
               "the panel is asked once more, so that status 0 says that all of it arrived.\n"
               "\n"
               "Exit status:\n")
        + endingsHelp();
}

QString versionText()
{
    return QLatin1String("vireo-supervisor ") + QLatin1String(vireoVersion);
}

void remark(const QString& text)
{
    std::fputs(oneLine(QStringLiteral("vireo-supervisor: ") + text).constData(), stderr);
}

int failure(const QString& reason, ExitStatus status)
{
    remark(reason);
    return int(status);
}

void printLine(const QString& line)
{
    std::fputs(oneLine(line).constData(), stdout);
    std::fflush(stdout);
}

int runSend(const CommandLine& commandLine)
{
    const ParsedWords parsed = parseWords(commandLine.words);
    if (!parsed.ok())
        return failure(parsed.error);
    if (!parsed.remark.isEmpty())
        remark(parsed.remark);
    PanelSession panel(commandLine.answerTimeoutMs);
    if (!panel.open(commandLine.host, commandLine.port))
        return failure(panel.errorString(), ExitStatus::NoPanel);
    if (parsed.action.kind == Action::Kind::Request) {
        const auto code = panel.askMode();
        if (!code)
            return failure(panel.errorString(), ExitStatus::NoAnswer);
        printLine(modeName(*code));
    } else if (!panel.send(parsed.action.packet)) {
        return failure(panel.errorString(), ExitStatus::NoAnswer);
    }
    panel.close();
    return int(ExitStatus::Done);
}
