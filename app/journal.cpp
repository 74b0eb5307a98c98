#include "app/journal.h"

#include "app/dprintf.h"
#include "app/journalstream.h"

#include <QByteArray>
#include <QString>
#include <QtDebug>

#include <cstdio>
#include <iterator>

namespace {

constexpr char errorPriority = '3';
constexpr char informationPriority = '6';

/** One priority a level of DPRINTF: debug, debug, info, warning, error. */
constexpr char levelPriorities[] = {'7', '7', informationPriority, '4', errorPriority};
static_assert(std::size(levelPriorities) == 5, "one row a level");

struct TypePriority {
    QtMsgType type;
    char priority;
};
constexpr TypePriority typePriorities[] = {
    {QtDebugMsg, '7'}, {QtInfoMsg, informationPriority}, {QtWarningMsg, '4'}, {QtCriticalMsg, errorPriority},
    {QtFatalMsg, '2'},
};
static_assert(std::size(typePriorities) == 5, "one row a type of the toolkit's messages");

bool informing = false;

char priorityOf(QtMsgType type)
{
    if (informing)
        return informationPriority;
    const int level = printedLevel();
    if (level >= 0 && level < int(std::size(levelPriorities)))
        return levelPriorities[level];
    for (const TypePriority& row : typePriorities)
        if (row.type == type)
            return row.priority;
    return errorPriority;
}

/** The journal takes every line for a message of its own and drops empty ones. */
void print(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    const char priority = priorityOf(type);
    QByteArray lines;
    for (const QByteArray& line : qFormatLogMessage(type, context, text).toUtf8().split('\n'))
        if (!line.isEmpty())
            lines += QByteArray("<") + priority + '>' + line + '\n';
    std::fwrite(lines.constData(), 1, std::size_t(lines.size()), stderr);
    std::fflush(stderr);
}

} // namespace

void speakToJournal()
{
    if (!standardErrorIsJournal())
        return;
    printWithoutColours();
    qInstallMessageHandler(print);
}

JournalInformation::JournalInformation()
{
    informing = true;
}

JournalInformation::~JournalInformation()
{
    informing = false;
}

void noteInJournal(const QByteArray& text, bool notable)
{
    if (!standardErrorIsJournal())
        return;
    if (notable)
        qWarning("%s", text.constData());
    else
        qInfo("%s", text.constData());
}
