#include "tools/supervisor/commandline.h"

#include "tools/supervisor/musicfolder.h"
#include "tools/supervisor/panelsession.h"
#include "tools/supervisor/words.h"

#include <QFileInfo>

#include <cstdio>

namespace {

struct Option {
    const char* name;
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

QString takeMusic(const QString& value, CommandLine& into)
{
    into.music = value;
    const bool found = QFileInfo(value).isDir() && !musicBelow(value).isEmpty();
    return found ? QString() : QStringLiteral("--music: no music below \"%1\"").arg(value);
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

QString takeHelp(const QString&, CommandLine& into)
{
    into.run = CommandLine::Run::Help;
    return {};
}

constexpr Option options[] = {
    {"--host", "HOST", "where the panel runs (127.0.0.1)", takeHost},
    {"--port", "PORT", "the panel's TCP port (5000)", takePort},
    {"--music", "FOLDER", "music for the window's disk", takeMusic},
    {"--at", "X,Y", "where on the screen the window opens, in pixels", takePlace},
    {"--help", "", "prints this text", takeHelp},
    {"-h", "", "prints this text", takeHelp},
};

const Option* findOption(const QString& name)
{
    for (const Option& option : options)
        if (name == QLatin1String(option.name))
            return &option;
    return nullptr;
}

/** Takes the option at the front of `arguments`, written `--port 5001` or `--port=5001`. */
QString takeOption(QStringList& arguments, CommandLine& into)
{
    const QString first = arguments.takeFirst();
    const auto equals = first.indexOf(QLatin1Char('='));
    const Option* option = findOption(first.left(equals));
    if (!option)
        return QStringLiteral("unknown option \"%1\"; --help lists them").arg(first);
    if (option->argument[0] == '\0')
        return option->take({}, into);
    if (equals >= 0)
        return option->take(first.mid(equals + 1), into);
    return option->take(arguments.isEmpty() ? QString() : arguments.takeFirst(), into);
}

/** "-" alone is standard input. */
bool isOption(const QString& argument)
{
    return argument.startsWith(QLatin1Char('-')) && argument.size() > 1;
}

void takeOptions(QStringList& arguments, CommandLine& into)
{
    while (into.error.isEmpty() && !arguments.isEmpty() && isOption(arguments[0]))
        into.error = takeOption(arguments, into);
}

struct Verb {
    const char* name;
    CommandLine::Run run;
};

constexpr Verb verbs[] = {
    {"send", CommandLine::Run::Send},
    {"script", CommandLine::Run::Script},
};

QString takeVerb(QStringList& arguments, CommandLine& into)
{
    const QString name = arguments.takeFirst();
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
    return text.toUtf8() + '\n';
}

} // namespace

CommandLine CommandLine::parse(const QStringList& arguments)
{
    CommandLine result;
    QStringList rest = arguments;
    takeOptions(rest, result);
    if (!result.error.isEmpty() || result.run == Run::Help || rest.isEmpty())
        return result;
    result.error = takeVerb(rest, result);
    takeOptions(rest, result);
    if (result.run == Run::Script && result.error.isEmpty() && rest.size() != 1)
        result.error = QStringLiteral("script needs one file name, or - for standard input");
    result.words = rest;
    return result;
}

QString helpText()
{
    QString text = QStringLiteral(
        "Usage: vireo-supervisor [OPTIONS]                 the unit's front panel in a window\n"
        "       vireo-supervisor [OPTIONS] send WORDS...   sends one packet\n"
        "       vireo-supervisor [OPTIONS] script FILE     runs the lines of a file, or of standard input "
        "(-)\n"
        "\n"
        "Plays the other end of the panel's link, for people without the unit's hardware.\n"
        "\n"
        "Options:\n");
    for (const Option& option : options)
        text += QStringLiteral("  %1 %2\n        %3\n")
                    .arg(QLatin1String(option.name), QLatin1String(option.argument),
                         QLatin1String(option.meaning));
    return text + QStringLiteral("\nWords:\n") + wordsHelp()
        + QStringLiteral(
               "\n"
               "A script holds one packet's words a line. Texts with blanks stand in \"double\" or\n"
               "'single' quotes, # begins a comment, and file paths are relative to the script.\n"
               "The exit status is 0 when everything was sent and every expected mode was met.\n");
}

int failure(const QString& reason)
{
    std::fputs(oneLine(QStringLiteral("vireo-supervisor: ") + reason).constData(), stderr);
    return 1;
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
    PanelSession panel;
    if (!panel.open(commandLine.host, commandLine.port))
        return failure(panel.errorString());
    if (parsed.action.kind == Action::Kind::Request) {
        const auto code = panel.askMode();
        if (!code)
            return failure(panel.errorString());
        printLine(modeName(*code));
    } else if (!panel.send(parsed.action.packet)) {
        return failure(panel.errorString());
    }
    panel.close();
    return 0;
}
