#include "app/displayguard.h"
#include "tools/supervisor/bytetext.h"
#include "tools/supervisor/commandline.h"
#include "tools/supervisor/look.h"
#include "tools/supervisor/place.h"
#include "tools/supervisor/script.h"
#include "tools/supervisor/supervisorwindow.h"

#include <QApplication>

#include <cstdio>

namespace {

QStringList textArguments(int argc, char** argv)
{
    QStringList result;
    for (int i = 1; i < argc; ++i)
        result << textOf(argv[i]);
    return result;
}

int showWindow(const CommandLine& commandLine)
{
    SupervisorWindow window(commandLine.host, commandLine.port);
    if (!commandLine.music.isEmpty())
        window.openMusic(commandLine.music);
    window.fitToScreen(commandLine.place);
    window.show();
    window.activateWindow(); // without a window manager nobody else gives it the keyboard
    return QApplication::exec();
}

int printPanelPlace()
{
    const QPoint corner = panelCornerOn(*QGuiApplication::primaryScreen());
    printLine(QStringLiteral("+%1+%2").arg(corner.x()).arg(corner.y()));
    return int(ExitStatus::Done);
}

/** What needs a display. */
int runOnDisplay(int& argc, char** argv, const CommandLine& commandLine)
{
    DisplayGuard display("vireo-supervisor", "; send and script work without one");
    QApplication application(argc, argv);
    display.release();
    Look::dress(application);
    QApplication::setApplicationDisplayName(QStringLiteral("Vireo supervisor"));
    return commandLine.run == CommandLine::Run::Window ? showWindow(commandLine) : printPanelPlace();
}

} // namespace

int main(int argc, char** argv)
{
    const CommandLine commandLine = CommandLine::parse(textArguments(argc, argv));
    if (!commandLine.error.isEmpty())
        return failure(commandLine.error);
    if (commandLine.run == CommandLine::Run::Window || commandLine.run == CommandLine::Run::PanelPlace)
        return runOnDisplay(argc, argv, commandLine);
    QCoreApplication application(argc, argv);
    if (commandLine.run == CommandLine::Run::Send)
        return runSend(commandLine);
    if (commandLine.run == CommandLine::Run::Script)
        return runScript(commandLine);
    const bool version = commandLine.run == CommandLine::Run::Version;
    std::fputs(qUtf8Printable(version ? versionText() + QLatin1Char('\n') : helpText()), stdout);
    return int(ExitStatus::Done);
}
