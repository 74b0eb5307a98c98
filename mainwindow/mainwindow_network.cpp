#include "app/dprintf.h"
#include "app/limits.h"
#include "app/waitalive.h"
#include "config/unitpaths.h"
#include "mainwindow/mainwindow.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QEvent>
#include <QProcess>
#include <QStandardPaths>

/** What the setup screen asks of the window: the network's restart, and a code of its own for the DHCP
 * choice. */

namespace {

/**
 * Runs the command and waits for it, 30 s at most; one that is not there is not started. One that does not
 * even end when it is killed is left behind: to wait for it would hold the panel up for good.
 */
void restartNetwork()
{
    const QString command = unitPath(UnitPath::NetworkRestart);
    if (QStandardPaths::findExecutable(command).isEmpty())
        return;
    auto* const restart = new QProcess;
    QObject::connect(restart, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), restart,
                     &QObject::deleteLater);
    QObject::connect(restart, &QProcess::errorOccurred, restart, &QObject::deleteLater);
    // Nobody reads the command's output; collected it could grow without end.
    restart->setStandardOutputFile(QProcess::nullDevice());
    restart->setStandardErrorFile(QProcess::nullDevice());
    restart->start(command, {QStringLiteral("restart")}, QIODevice::ReadWrite);
    if (!waitAlive(*restart, limits::networkRestartMs))
        restart->kill();
}

} // namespace

void MainWindow::LoadingModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Setting->StopTimer();
    dropInput();
    // Slow displays have not shown the notice to wait by now: a frame buffer takes it in a turn of its own.
    ui->wg_Setting->repaint();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
    restartNetwork();
    LoadingModeExited();
}

void MainWindow::LoadingModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Setting->ReloadPage();
    connectInput(ModeState::SetMode);
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
