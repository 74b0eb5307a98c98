#include "app/displayguard.h"

#include "app/journalstream.h"

#include <QGuiApplication>
#include <QList>
#include <QScreen>
#include <QString>
#include <QtDebug>

#include <cstdio>
#include <cstdlib>

namespace {

struct Warning {
    QByteArray category;
    QString text;
};

// A message handler has no place for a state of its own.
const char* program;
const char* remark;
QList<Warning> held;
QtMessageHandler before;

/** The toolkit's first warning of its display part says what is missing; what follows says it in general. */
QString reason(const QString& last)
{
    for (const Warning& warning : held)
        if (!warning.text.startsWith(QLatin1String("QStandardPaths")))
            return warning.text;
    return last;
}

[[noreturn]] void endWithout(const QString& why)
{
    const char* const priority = standardErrorIsJournal() ? "<3>" : "";
    std::fprintf(stderr, "%s%s: no display: %s%s\n", priority, program, why.simplified().toUtf8().constData(),
                 remark);
    std::fflush(stderr);
    std::_Exit(EXIT_FAILURE); // the application object is half made
}

void hold(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtFatalMsg)
        endWithout(reason(text));
    held.append({context.category, text});
}

} // namespace

DisplayGuard::DisplayGuard(const char* name, const char* advice)
{
    program = name;
    remark = advice;
    held.clear();
    before = qInstallMessageHandler(hold);
}

DisplayGuard::~DisplayGuard()
{
    qInstallMessageHandler(before);
}

void DisplayGuard::release()
{
    if (QGuiApplication::screens().isEmpty())
        endWithout(reason(QStringLiteral("no screen")));
    qInstallMessageHandler(before);
    for (const Warning& warning : held)
        QMessageLogger(nullptr, 0, nullptr, warning.category.constData()).warning().noquote() << warning.text;
    held.clear();
}
