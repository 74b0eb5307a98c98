#include "tools/supervisor/script.h"

#include "tools/supervisor/bytetext.h"
#include "tools/supervisor/commandline.h"
#include "tools/supervisor/panelsession.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>

namespace {

/** Cuts one line into words, character by character. */
class LineSplitter {
public:
    explicit LineSplitter(const QString& line)
        : m_line(line)
    {
    }

    SplitLine split()
    {
        while (m_at < m_line.size() && !(m_line[m_at] == QLatin1Char('#') && !m_inWord))
            takeOne(m_line[m_at++]);
        endWord();
        return m_result;
    }

private:
    void takeOne(QChar c)
    {
        if (c.isSpace())
            endWord();
        else if (c == QLatin1Char('"') || c == QLatin1Char('\''))
            takeQuoted(c);
        else
            append(c);
    }
    void takeQuoted(QChar quote)
    {
        m_inWord = true;
        for (; m_at < m_line.size(); ++m_at) {
            if (m_line[m_at] == quote) {
                ++m_at;
                return;
            }
            if (quote == QLatin1Char('"') && m_line[m_at] == QLatin1Char('\\') && m_at + 1 < m_line.size())
                ++m_at;
            append(m_line[m_at]);
        }
        m_result.error = QStringLiteral("a quote is not closed");
    }
    void append(QChar c)
    {
        m_inWord = true;
        m_word += c;
    }
    void endWord()
    {
        if (m_inWord)
            m_result.words << m_word;
        m_word.clear();
        m_inWord = false;
    }

    const QString& m_line;
    int m_at = 0;
    bool m_inWord = false;
    QString m_word;
    SplitLine m_result;
};

/** The word in double quotes, where it needs them. */
QString quoted(const QString& word)
{
    const auto isSpecial = [](QChar c) { return c.isSpace() || QStringLiteral("\"'#").contains(c); };
    if (!word.isEmpty() && std::none_of(word.begin(), word.end(), isSpecial))
        return word;
    QString inside = word;
    inside.replace(QLatin1Char('\\'), QLatin1String("\\\\")).replace(QLatin1Char('"'), QLatin1String("\\\""));
    return QLatin1Char('"') + inside + QLatin1Char('"');
}

QString placed(const QString& name, int number, const QString& text)
{
    return QStringLiteral("%1:%2: %3").arg(name, QString::number(number), text);
}

/** Runs the lines of one script over one connection. */
class Runner {
public:
    Runner(const Script& script, int answerTimeoutMs)
        : m_script(script)
        , m_panel(answerTimeoutMs)
    {
    }

    /** Returns the exit status: an unmet mode is reported and the script goes on, a broken link ends it. */
    int run(const QString& host, quint16 port)
    {
        if (!m_panel.open(host, port))
            return failure(m_panel.errorString(), ExitStatus::NoPanel);
        for (const ScriptLine& line : m_script.lines)
            if (!perform(line))
                return failure(placed(m_script.name, line.number, m_panel.errorString()),
                               ExitStatus::NoAnswer);
        if (!arrived())
            return failure(m_script.name + QStringLiteral(": at the end ") + m_panel.errorString(),
                           ExitStatus::NoAnswer);
        m_panel.close();
        return int(m_status);
    }

private:
    bool perform(const ScriptLine& line)
    {
        switch (line.action.kind) {
        case Action::Kind::Send:
            return m_panel.send(line.action.packet);
        case Action::Kind::Wait:
            return m_panel.wait(line.action.value);
        case Action::Kind::Request:
        case Action::Kind::Expect:
            return ask(line);
        }
        return true;
    }
    bool ask(const ScriptLine& line)
    {
        const auto code = m_panel.askMode();
        if (!code)
            return false;
        if (line.action.kind == Action::Kind::Request)
            printLine(modeName(*code));
        else if (*code != line.action.value)
            unmet(line, *code);
        return true;
    }
    void unmet(const ScriptLine& line, quint8 code)
    {
        m_status = ExitStatus::Unmet;
        remark(placed(m_script.name, line.number,
                      QStringLiteral("expected %1, the panel is in %2")
                          .arg(modeName(quint8(line.action.value)), modeName(code))));
    }
    /** Packets go unanswered, so only a question behind the last one shows that somebody read them all. */
    bool arrived() { return m_script.lines.isEmpty() || m_panel.askMode(); }

    const Script& m_script;
    PanelSession m_panel;
    ExitStatus m_status = ExitStatus::Done;
};

} // namespace

SplitLine splitLine(const QString& line)
{
    return LineSplitter(line).split();
}

QString joinLine(const QStringList& words)
{
    QStringList parts;
    for (const QString& word : words)
        parts << quoted(word);
    return parts.join(QLatin1Char(' '));
}

Script Script::load(const QString& path)
{
    if (path == QLatin1String("-")) {
        QFile input;
        input.open(stdin, QIODevice::ReadOnly);
        return parse(QStringLiteral("standard input"), input.readAll(), QDir());
    }
    if (QFileInfo(path).isDir())
        return {path, {}, QStringLiteral("cannot read \"%1\": it is a folder").arg(path)};
    QFile file;
    std::FILE* stream = std::fopen(bytesOf(path).constData(), "rb"); // the name may be no UTF-8
    if (!stream)
        return {path, {}, QStringLiteral("cannot read \"%1\": %2").arg(path, qt_error_string())};
    file.open(stream, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    return parse(path, file.readAll(), QFileInfo(path).absoluteDir());
}

Script Script::parse(const QString& name, const QByteArray& text, const QDir& folder)
{
    Script script;
    script.name = name;
    int number = 0;
    const QByteArray mark("\xEF\xBB\xBF"); // some editors put this in front of UTF-8
    for (const QString& line : textOf(text.startsWith(mark) ? text.mid(3) : text).split(QLatin1Char('\n'))) {
        ++number;
        const SplitLine split = splitLine(line);
        if (split.words.isEmpty() && split.error.isEmpty())
            continue;
        const ParsedWords parsed = parseWords(split.words, Vocabulary::Script, folder);
        script.error = split.error.isEmpty() ? parsed.error : split.error;
        if (!script.ok()) {
            script.error = placed(name, number, script.error);
            break;
        }
        script.lines.append({number, parsed.action});
        if (!parsed.remark.isEmpty())
            script.remarks << placed(name, number, parsed.remark);
    }
    return script;
}

int runScript(const CommandLine& commandLine)
{
    const Script script = Script::load(commandLine.words[0]);
    if (!script.ok())
        return failure(script.error);
    for (const QString& line : script.remarks)
        remark(line);
    return Runner(script, commandLine.answerTimeoutMs).run(commandLine.host, commandLine.port);
}
