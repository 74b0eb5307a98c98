#include "app/dprintf.h"
#include "config/unitpaths.h"
#include "mainwindow/mainwindow.h"
#include "protocol/paparser.h"
#include "ui_mainwindow.h"

/** What entering and leaving each mode does. */

void MainWindow::dropInput()
{
    for (const QMetaObject::Connection& connection : std::exchange(m_input, {}))
        disconnect(connection);
}

void MainWindow::USBModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_mode = ModeCode::Usb;
    XmlWriteOpermode(QStringLiteral("usb"));
    ui->wg_USB->show();
    ui->wg_USB->initLevel();
    ui->wg_Menu->setCurrentIdx(MENUIDX_USB);
    ui->wg_AOE->showStop();
    m_input = {
        connect(m_parser, &PAparser::sgPlayTime, ui->wg_USB, &mp3_lcd::showTime),
        connect(m_parser, &PAparser::sgMasterLevel, ui->wg_USB, &mp3_lcd::showLevel),
        connect(m_parser, &PAparser::sgKEY_NEXT, ui->wg_USB, &mp3_lcd::next_action),
        connect(m_parser, &PAparser::sgKEY_PREV, ui->wg_USB, &mp3_lcd::prev_action),
    };
}

void MainWindow::USBModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_USB->hide();
    ui->wg_Menu->setPrevMode(MENUIDX_USB);
    dropInput();
    ui->wg_USB->showTime(QStringLiteral("00:00:00"));
}

void MainWindow::AOEModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_mode = ModeCode::Aoe;
    ui->wg_AOE->show();
    XmlWriteOpermode(QStringLiteral("aoe"));
    ui->wg_AOE->initLevel();
    ui->wg_Menu->setCurrentIdx(MENUIDX_AOE);
    m_input = {
        connect(m_parser, &PAparser::sgAoeInfo, ui->wg_AOE, &AOEForm::showAoeInfo),
        connect(m_parser, &PAparser::sgMasterLevel, ui->wg_AOE, &AOEForm::showLevel),
        connect(m_parser, &PAparser::sgAoeInfo, ui->wg_AOE, &AOEForm::showPlay),
        connect(m_parser, &PAparser::sgAOE_STAT_FAIL, ui->wg_AOE, &AOEForm::showFailMSG),
        connect(m_parser, &PAparser::sgAOE_STAT_OVER, ui->wg_AOE, &AOEForm::showOVERMSG),
        connect(m_parser, &PAparser::sgAOE_STAT_OK, ui->wg_AOE, &AOEForm::showPlay),
    };
}

void MainWindow::AOEModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_AOE->hide();
    ui->wg_Menu->setPrevMode(MENUIDX_AOE);
    dropInput();
}

void MainWindow::IRModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Menu->setCurrentIdx(MENUIDX_IR);
}

void MainWindow::IRModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Menu->setPrevMode(MENUIDX_IR);
}

void MainWindow::IRMainEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_mode = ModeCode::IRMain;
    XmlWriteOpermode(QStringLiteral("radio"));
    ui->wg_IR->show();
    ui->wg_IR->initLevel();
    ui->wg_IR->showStop();
    ui->wg_AOE->showStop();
    ui->wg_IR->RadioInfoFromXML(unitPath(UnitPath::Radio));
    m_input = {
        connect(m_parser, &PAparser::sgIRInfo, ui->wg_IR, &IRForm::showIRInfo),
        connect(m_parser, &PAparser::sgMasterLevel, ui->wg_IR, &IRForm::showLevel),
        connect(m_parser, &PAparser::sgIRInfo, ui->wg_IR, &IRForm::showPlay),
    };
}

void MainWindow::IRMainExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_IR->hide();
    dropInput();
}

void MainWindow::IRListEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_mode = ModeCode::IRList;
    ui->wg_IRList->XMLParse();
    ui->wg_IRList->InitList();
    ui->wg_IRList->show();
    ui->wg_IRList->SetCurrentIndexFromXML();
    m_input = {
        connect(m_parser, &PAparser::sgEncLeft, ui->wg_IRList, &RadioListForm::up_action),
        connect(m_parser, &PAparser::sgEncRight, ui->wg_IRList, &RadioListForm::down_action),
        connect(m_parser, &PAparser::sgKEY_SELECT, ui->wg_IRList, &RadioListForm::select_action),
    };
}

void MainWindow::IRListExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_IRList->hide();
    dropInput();
}

void MainWindow::SetModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_mode = ModeCode::Setup;
    ui->wg_Setting->show();
    ui->wg_Setting->TimerStart();
    ui->wg_Menu->setCurrentIdx(MENUIDX_Setup);
    ui->wg_Setting->InitWidget();
    connectSetupInput();
}

void MainWindow::SetModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Setting->hide();
    ui->wg_Menu->setPrevMode(MENUIDX_Setup);
    ui->wg_Setting->StopTimer();
    dropInput();
}

void MainWindow::connectSetupInput()
{
    m_input = {
        connect(m_parser, &PAparser::sgEncLeft, ui->wg_Setting, &SetupForm::prev_action),
        connect(m_parser, &PAparser::sgEncRight, ui->wg_Setting, &SetupForm::next_action),
        connect(m_parser, &PAparser::sgKEY_SELECT, ui->wg_Setting, &SetupForm::select_action),
        connect(m_parser, &PAparser::sgKEY_ESC, ui->wg_Setting, &SetupForm::esc_action),
        connect(ui->wg_Setting, &SetupForm::sgDhcpClose, this, &MainWindow::DhcpClosed),
        connect(ui->wg_Setting, &SetupForm::sgDhcpOpen, this, &MainWindow::DhcpOpened),
        connect(ui->wg_Setting, &SetupForm::sgLoadingMode, this, &MainWindow::LoadingModeEntered),
    };
}

void MainWindow::NetBGMModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_mode = ModeCode::NetBgm;
    ui->wg_NetBGM->show();
    ui->wg_Menu->setCurrentIdx(MENUIDX_NetBGM);
    ui->wg_AOE->showStop();
}

/** Unlike every other mode this one is not remembered as the one before the menu. */
void MainWindow::NetBGMModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_NetBGM->hide();
    ui->wg_Menu->setCurrentIdx(MENUIDX_NetBGM);
}

void MainWindow::MenuModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_mode = ModeCode::Menu;
    ui->wg_Menu->show();
    m_input = {
        connect(m_parser, &PAparser::sgEncLeft, ui->wg_Menu, &MenuForm::prev_action),
        connect(m_parser, &PAparser::sgEncRight, ui->wg_Menu, &MenuForm::next_action),
        connect(m_parser, &PAparser::sgKEY_SELECT, ui->wg_Menu, &MenuForm::select_action),
    };
}

void MainWindow::MenuModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_Menu->hide();
    dropInput();
}
