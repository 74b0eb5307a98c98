#include "app/dprintf.h"
#include "mainwindow/mainwindow.h"
#include "ui_mainwindow.h"

#include <initializer_list>

/**
 * The notice of a firmware upgrade lies over whatever shows. It stays until the upgrade fails or the unit
 * restarts the program; there is no notice of success.
 */

void MainWindow::UpgradeStart()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    setOverlayVisible(true);
}

void MainWindow::UpgradeFail()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    setOverlayVisible(false);
}

void MainWindow::setOverlayVisible(bool visible)
{
    for (QWidget* part : std::initializer_list<QWidget*>{ui->lbl_background_alpha, ui->lb_sysup,
                                                         ui->lb_sysup_bot, ui->lb_sysup_msg})
        part->setVisible(visible);
}

void MainWindow::SetUpgradeMSG(QString text)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_sysup_msg->setText(text);
}
