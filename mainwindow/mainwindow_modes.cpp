#include "app/dprintf.h"
#include "config/unitpaths.h"
#include "mainwindow/moderows.h"

#include <algorithm>
#include <iterator>

/** The modes: one row each, and what entering and leaving them does. */

namespace {

using S = ModeState;

template <auto widget> QWidget* screenOf(const Ui::MainWindow& ui)
{
    return ui.*widget;
}

Connections playerInput(const Wiring& w)
{
    mp3_lcd* const player = w.ui.wg_USB;
    return {
        QObject::connect(w.parser, &PAparser::sgPlayTime, player, &mp3_lcd::showTime),
        QObject::connect(w.parser, &PAparser::sgMasterLevel, player, &mp3_lcd::showLevel),
        QObject::connect(w.parser, &PAparser::sgKEY_NEXT, player, &mp3_lcd::next_action),
        QObject::connect(w.parser, &PAparser::sgKEY_PREV, player, &mp3_lcd::prev_action),
    };
}

Connections aoeInput(const Wiring& w)
{
    AOEForm* const aoe = w.ui.wg_AOE;
    return {
        QObject::connect(w.parser, &PAparser::sgAoeInfo, aoe, &AOEForm::showAoeInfo),
        QObject::connect(w.parser, &PAparser::sgMasterLevel, aoe, &AOEForm::showLevel),
        QObject::connect(w.parser, &PAparser::sgAoeInfo, aoe, &AOEForm::showPlay),
        QObject::connect(w.parser, &PAparser::sgAOE_STAT_FAIL, aoe, &AOEForm::showFailMSG),
        QObject::connect(w.parser, &PAparser::sgAOE_STAT_OVER, aoe, &AOEForm::showOVERMSG),
        QObject::connect(w.parser, &PAparser::sgAOE_STAT_OK, aoe, &AOEForm::showPlay),
    };
}

Connections radioInput(const Wiring& w)
{
    IRForm* const radio = w.ui.wg_IR;
    return {
        QObject::connect(w.parser, &PAparser::sgIRInfo, radio, &IRForm::showIRInfo),
        QObject::connect(w.parser, &PAparser::sgMasterLevel, radio, &IRForm::showLevel),
        QObject::connect(w.parser, &PAparser::sgIRInfo, radio, &IRForm::showPlay),
    };
}

Connections stationListInput(const Wiring& w)
{
    RadioListForm* const list = w.ui.wg_IRList;
    return {
        QObject::connect(w.parser, &PAparser::sgEncLeft, list, &RadioListForm::up_action),
        QObject::connect(w.parser, &PAparser::sgEncRight, list, &RadioListForm::down_action),
        QObject::connect(w.parser, &PAparser::sgKEY_SELECT, list, &RadioListForm::select_action),
    };
}

Connections menuInput(const Wiring& w)
{
    MenuForm* const menu = w.ui.wg_Menu;
    return {
        QObject::connect(w.parser, &PAparser::sgEncLeft, menu, &MenuForm::prev_action),
        QObject::connect(w.parser, &PAparser::sgEncRight, menu, &MenuForm::next_action),
        QObject::connect(w.parser, &PAparser::sgKEY_SELECT, menu, &MenuForm::select_action),
    };
}

Connections setupInput(const Wiring& w)
{
    SetupForm* const setup = w.ui.wg_Setting;
    return {
        QObject::connect(w.parser, &PAparser::sgEncLeft, setup, &SetupForm::prev_action),
        QObject::connect(w.parser, &PAparser::sgEncRight, setup, &SetupForm::next_action),
        QObject::connect(w.parser, &PAparser::sgKEY_SELECT, setup, &SetupForm::select_action),
        QObject::connect(w.parser, &PAparser::sgKEY_ESC, setup, &SetupForm::esc_action),
        QObject::connect(setup, &SetupForm::sgDhcpClose, w.window, &MainWindow::DhcpClosed),
        QObject::connect(setup, &SetupForm::sgDhcpOpen, w.window, &MainWindow::DhcpOpened),
        QObject::connect(setup, &SetupForm::sgLoadingMode, w.window, &MainWindow::LoadingModeEntered),
    };
}

// clang-format off
constexpr ModeRow rows[] = {
    {S::IRMode, "IRMode", S::NormalModes, ModeCode::None, nullptr, MENUIDX_IR, nullptr, nullptr,
     &PAparser::sgDEVICE_IR_Enter, &MenuForm::sgIRMode,
     &MainWindow::IRModeEntered, &MainWindow::IRModeExited},
    {S::IRList, "IRList", S::IRMode, ModeCode::IRList, screenOf<&Ui::MainWindow::wg_IRList>, noMenuEntry, nullptr, stationListInput,
     nullptr, nullptr,
     &MainWindow::IRListEntered, &MainWindow::IRListExited},
    {S::IRMain, "IRMain", S::IRMode, ModeCode::IRMain, screenOf<&Ui::MainWindow::wg_IR>, noMenuEntry, "radio", radioInput,
     nullptr, nullptr,
     &MainWindow::IRMainEntered, &MainWindow::IRMainExited},
    {S::USBMode, "USBMode", S::NormalModes, ModeCode::Usb, screenOf<&Ui::MainWindow::wg_USB>, MENUIDX_USB, "usb", playerInput,
     &PAparser::sgDEVICE_USB_FRONT_Enter, &MenuForm::sgUSBMode,
     &MainWindow::USBModeEntered, &MainWindow::USBModeExited},
    {S::AOEMode, "AOEMode", S::NormalModes, ModeCode::Aoe, screenOf<&Ui::MainWindow::wg_AOE>, MENUIDX_AOE, "aoe", aoeInput,
     &PAparser::sgDEVICE_AOE_Enter, &MenuForm::sgAOEMode,
     &MainWindow::AOEModeEntered, &MainWindow::AOEModeExited},
    // In the machine itself: leaving it is what the history is for.
    {S::MenuMode, "MenuMode", S::MenuMode, ModeCode::Menu, screenOf<&Ui::MainWindow::wg_Menu>, noMenuEntry, nullptr, menuInput,
     nullptr, nullptr,
     &MainWindow::MenuModeEntered, &MainWindow::MenuModeExited},
    // No packet carries the source signals of these two: they are reached through the menu alone.
    {S::SetMode, "SetMode", S::NormalModes, ModeCode::Setup, screenOf<&Ui::MainWindow::wg_Setting>, MENUIDX_Setup, nullptr, setupInput,
     &PAparser::sgDEVICE_Set_Enter, &MenuForm::sgSetupMode,
     &MainWindow::SetModeEntered, &MainWindow::SetModeExited},
    {S::NetBGMMode, "NetBGMMode", S::NormalModes, ModeCode::NetBgm, screenOf<&Ui::MainWindow::wg_NetBGM>, MENUIDX_NetBGM, nullptr, nullptr,
     &PAparser::sgDEVICE_NetBGM_Enter, &MenuForm::sgNetBGMMode,
     &MainWindow::NetBGMModeEntered, &MainWindow::NetBGMModeExited},
};
// clang-format on

constexpr ModeState sources[] = {S::USBMode, S::AOEMode, S::IRMode, S::SetMode, S::NetBGMMode};

constexpr std::size_t chosenModes()
{
    std::size_t count = 0;
    for (const ModeRow& row : rows)
        count += row.menuEntry == noMenuEntry ? 0 : 1;
    return count;
}
static_assert(chosenModes() == std::size(sources), "every entry of the menu has its transitions");

constexpr ModeState withScreens[] = {S::AOEMode,  S::NetBGMMode, S::IRMain, S::IRList,
                                     S::MenuMode, S::SetMode,    S::USBMode};

/** A mode has a screen where it has a code. */
constexpr std::size_t screens()
{
    std::size_t count = 0;
    for (const ModeRow& row : rows)
        count += row.code == ModeCode::None ? 0 : 1;
    return count;
}
static_assert(screens() == std::size(withScreens), "every screen is hidden at start");

} // namespace

ModeRows modeRows()
{
    return {std::begin(rows), std::end(rows)};
}

const ModeRow& modeRow(ModeState state)
{
    return *std::find_if(std::begin(rows), std::end(rows),
                         [state](const ModeRow& row) { return row.state == state; });
}

QList<ModeState> modesWithScreens()
{
    return QList<ModeState>(std::begin(withScreens), std::end(withScreens));
}

QList<ModeState> sourceModes()
{
    return QList<ModeState>(std::begin(sources), std::end(sources));
}

/** What every mode with a screen begins with: its code, its word, its screen. Audio over Ethernet shows its
 * screen before its word is written. */
void MainWindow::enter(ModeState mode)
{
    const ModeRow& row = modeRow(mode);
    m_mode = row.code;
    if (mode == ModeState::AOEMode)
        row.screen(*ui)->show();
    if (row.word)
        XmlWriteOpermode(QString::fromLatin1(row.word));
    row.screen(*ui)->show();
}

void MainWindow::leave(ModeState mode)
{
    modeRow(mode).screen(*ui)->hide();
    dropInput();
}

void MainWindow::connectInput(ModeState mode)
{
    m_input = modeRow(mode).connected({m_parser, *ui, this});
}

void MainWindow::dropInput()
{
    for (const QMetaObject::Connection& connection : std::exchange(m_input, {}))
        disconnect(connection);
}

/** Lets the menu open at the mode's entry. */
void MainWindow::standInMenu(ModeState mode)
{
    ui->wg_Menu->setCurrentIdx(MENUIDX(modeRow(mode).menuEntry));
}

/** Lets the menu know the mode as the one before it. */
void MainWindow::rememberInMenu(ModeState mode)
{
    ui->wg_Menu->setPrevMode(MENUIDX(modeRow(mode).menuEntry));
}

void MainWindow::USBModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    enter(ModeState::USBMode);
    ui->wg_USB->initLevel();
    standInMenu(ModeState::USBMode);
    ui->wg_AOE->showStop();
    connectInput(ModeState::USBMode);
}

void MainWindow::USBModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    leave(ModeState::USBMode);
    rememberInMenu(ModeState::USBMode);
    ui->wg_USB->showTime(QStringLiteral("00:00:00"));
}

void MainWindow::AOEModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    enter(ModeState::AOEMode);
    ui->wg_AOE->initLevel();
    standInMenu(ModeState::AOEMode);
    connectInput(ModeState::AOEMode);
}

void MainWindow::AOEModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    leave(ModeState::AOEMode);
    rememberInMenu(ModeState::AOEMode);
}

void MainWindow::IRModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    standInMenu(ModeState::IRMode);
}

void MainWindow::IRModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    rememberInMenu(ModeState::IRMode);
}

void MainWindow::IRMainEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    enter(ModeState::IRMain);
    ui->wg_IR->initLevel();
    ui->wg_IR->showStop();
    ui->wg_AOE->showStop();
    ui->wg_IR->RadioInfoFromXML(unitPath(UnitPath::Radio));
    connectInput(ModeState::IRMain);
}

void MainWindow::IRMainExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    leave(ModeState::IRMain);
}

void MainWindow::IRListEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->wg_IRList->XMLParse();
    ui->wg_IRList->InitList();
    enter(ModeState::IRList);
    ui->wg_IRList->SetCurrentIndexFromXML();
    connectInput(ModeState::IRList);
}

void MainWindow::IRListExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    leave(ModeState::IRList);
}

void MainWindow::SetModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    enter(ModeState::SetMode);
    ui->wg_Setting->TimerStart();
    standInMenu(ModeState::SetMode);
    ui->wg_Setting->InitWidget();
    connectInput(ModeState::SetMode);
}

void MainWindow::SetModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    leave(ModeState::SetMode);
    rememberInMenu(ModeState::SetMode);
    ui->wg_Setting->StopTimer();
}

void MainWindow::NetBGMModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    enter(ModeState::NetBGMMode);
    standInMenu(ModeState::NetBGMMode);
    ui->wg_AOE->showStop();
}

/** Unlike every other mode this one is not remembered as the one before the menu. */
void MainWindow::NetBGMModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    leave(ModeState::NetBGMMode);
    standInMenu(ModeState::NetBGMMode);
}

void MainWindow::MenuModeEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    enter(ModeState::MenuMode);
    connectInput(ModeState::MenuMode);
}

void MainWindow::MenuModeExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    leave(ModeState::MenuMode);
}
