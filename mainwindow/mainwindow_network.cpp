#include "app/dprintf.h"
#include "app/limits.h"
#include "config/unitpaths.h"
#include "mainwindow/mainwindow.h"
#include "ui_mainwindow.h"

#include <QProcess>

/** What the setup screen asks of the window: the network's restart, and a code of its own for the DHCP
 * choice. */

void MainWindow::LoadingModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Setting->StopTimer();
    dropInput();
    auto* const restart = new QProcess;
    connect(restart, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), restart,
            &QObject::deleteLater);
    connect(restart, &QProcess::errorOccurred, restart, &QObject::deleteLater);
    // Nobody reads the command's output; collected it could grow without end.
    restart->setStandardOutputFile(QProcess::nullDevice());
    restart->setStandardErrorFile(QProcess::nullDevice());
    restart->start(unitPath(UnitPath::NetworkRestart), {QStringLiteral("restart")}, QIODevice::ReadWrite);
    if (!restart->waitForFinished(limits::networkRestartMs))
        restart->kill();
    LoadingModeExited();
}

void MainWindow::LoadingModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Setting->ReloadPage();
    connectSetupInput();
}

void MainWindow::DhcpOpened()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Setting->StopTimer();
    m_mode = ModeCode::DhcpOpened;
}

void MainWindow::DhcpClosed()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Setting->XMLParse();
    m_mode = ModeCode::Setup;
}
