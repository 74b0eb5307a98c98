#include "tools/supervisor/commandline.h"
#include "tools/supervisor/script.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const CommandLine commandLine = CommandLine::parse(QCoreApplication::arguments().mid(1));
    if (!commandLine.error.isEmpty())
        return failure(commandLine.error);
    if (commandLine.run == CommandLine::Run::Send)
        return runSend(commandLine);
    if (commandLine.run == CommandLine::Run::Script)
        return runScript(commandLine);
    std::fputs(helpText().toUtf8().constData(), stdout);
    return 0;
}
