#include "mainwindow/mainwindow.h"
#include "protocol/paparser.h"
#include "ui_mainwindow.h"

#include <QHistoryState>
#include <QSignalTransition>
#include <QState>
#include <QStateMachine>

#include <iterator>
#include <variant>

/** The mode machine: its states and which mode follows which event. */

namespace {

using Signal = std::variant<void (PAparser::*)(), void (MenuForm::*)(), void (RadioListForm::*)()>;

struct TransitionRow {
    ModeState from;
    Signal signal;
    ModeState to;
};

/**
 * Two of these signals, sgDEVICE_Set_Enter and sgDEVICE_NetBGM_Enter, are carried by no packet: setup and
 * NetBGM are reached through the menu alone. While the menu shows, the NetBGM source changes nothing; from
 * the station list the menu cannot be opened; no state minds that a source goes away.
 */
constexpr TransitionRow transitions[] = {
    {ModeState::MenuMode, &PAparser::sgKEY_ESC, ModeState::ModeHistory},
    {ModeState::StartState, &PAparser::sgDEVICE_Set_Enter, ModeState::SetMode},
    {ModeState::StartState, &PAparser::sgDEVICE_USB_FRONT_Enter, ModeState::USBMode},
    {ModeState::StartState, &PAparser::sgDEVICE_AOE_Enter, ModeState::AOEMode},
    {ModeState::StartState, &PAparser::sgDEVICE_IR_Enter, ModeState::IRMain},
    {ModeState::StartState, &PAparser::sgDEVICE_NetBGM_Enter, ModeState::NetBGMMode},
    {ModeState::StartState, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode},
    {ModeState::IRMode, &PAparser::sgDEVICE_USB_FRONT_Enter, ModeState::USBMode},
    {ModeState::IRMode, &PAparser::sgDEVICE_AOE_Enter, ModeState::AOEMode},
    {ModeState::IRMode, &PAparser::sgDEVICE_Set_Enter, ModeState::SetMode},
    {ModeState::IRMode, &PAparser::sgDEVICE_NetBGM_Enter, ModeState::NetBGMMode},
    {ModeState::IRList, &PAparser::sgDEVICE_IR_Enter, ModeState::IRMain},
    {ModeState::IRList, &PAparser::sgKEY_ESC, ModeState::IRMain},
    {ModeState::IRList, &RadioListForm::sgSetMain, ModeState::IRMain},
    {ModeState::IRMain, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode},
    {ModeState::IRMain, &PAparser::sgKEY_SELECT, ModeState::IRList},
    {ModeState::USBMode, &PAparser::sgDEVICE_AOE_Enter, ModeState::AOEMode},
    {ModeState::USBMode, &PAparser::sgDEVICE_IR_Enter, ModeState::IRMain},
    {ModeState::USBMode, &PAparser::sgDEVICE_Set_Enter, ModeState::SetMode},
    {ModeState::USBMode, &PAparser::sgDEVICE_NetBGM_Enter, ModeState::NetBGMMode},
    {ModeState::USBMode, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode},
    {ModeState::AOEMode, &PAparser::sgDEVICE_USB_FRONT_Enter, ModeState::USBMode},
    {ModeState::AOEMode, &PAparser::sgDEVICE_IR_Enter, ModeState::IRMain},
    {ModeState::AOEMode, &PAparser::sgDEVICE_Set_Enter, ModeState::SetMode},
    {ModeState::AOEMode, &PAparser::sgDEVICE_NetBGM_Enter, ModeState::NetBGMMode},
    {ModeState::AOEMode, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode},
    {ModeState::SetMode, &PAparser::sgDEVICE_USB_FRONT_Enter, ModeState::USBMode},
    {ModeState::SetMode, &PAparser::sgDEVICE_AOE_Enter, ModeState::AOEMode},
    {ModeState::SetMode, &PAparser::sgDEVICE_IR_Enter, ModeState::IRMain},
    {ModeState::SetMode, &PAparser::sgDEVICE_NetBGM_Enter, ModeState::NetBGMMode},
    {ModeState::SetMode, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode},
    {ModeState::NetBGMMode, &PAparser::sgDEVICE_Set_Enter, ModeState::SetMode},
    {ModeState::NetBGMMode, &PAparser::sgDEVICE_USB_FRONT_Enter, ModeState::USBMode},
    {ModeState::NetBGMMode, &PAparser::sgDEVICE_AOE_Enter, ModeState::AOEMode},
    {ModeState::NetBGMMode, &PAparser::sgDEVICE_IR_Enter, ModeState::IRMain},
    {ModeState::NetBGMMode, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode},
    {ModeState::MenuMode, &PAparser::sgDEVICE_USB_FRONT_Enter, ModeState::USBMode},
    {ModeState::MenuMode, &PAparser::sgDEVICE_AOE_Enter, ModeState::AOEMode},
    {ModeState::MenuMode, &PAparser::sgDEVICE_IR_Enter, ModeState::IRMain},
    {ModeState::MenuMode, &PAparser::sgDEVICE_Set_Enter, ModeState::SetMode},
    {ModeState::MenuMode, &MenuForm::sgUSBMode, ModeState::USBMode},
    {ModeState::MenuMode, &MenuForm::sgAOEMode, ModeState::AOEMode},
    {ModeState::MenuMode, &MenuForm::sgIRMode, ModeState::IRMode},
    {ModeState::MenuMode, &MenuForm::sgSetupMode, ModeState::SetMode},
    {ModeState::MenuMode, &MenuForm::sgNetBGMMode, ModeState::NetBGMMode},
};
static_assert(std::size(transitions) == 45, "every transition of the mode machine");

using Slot = void (MainWindow::*)();

struct StateSlotsRow {
    ModeState state;
    Slot entered;
    Slot exited;
};

constexpr StateSlotsRow stateSlots[] = {
    {ModeState::IRMode, &MainWindow::IRModeEntered, &MainWindow::IRModeExited},
    {ModeState::IRList, &MainWindow::IRListEntered, &MainWindow::IRListExited},
    {ModeState::IRMain, &MainWindow::IRMainEntered, &MainWindow::IRMainExited},
    {ModeState::USBMode, &MainWindow::USBModeEntered, &MainWindow::USBModeExited},
    {ModeState::AOEMode, &MainWindow::AOEModeEntered, &MainWindow::AOEModeExited},
    {ModeState::MenuMode, &MainWindow::MenuModeEntered, &MainWindow::MenuModeExited},
    {ModeState::SetMode, &MainWindow::SetModeEntered, &MainWindow::SetModeExited},
    {ModeState::NetBGMMode, &MainWindow::NetBGMModeEntered, &MainWindow::NetBGMModeExited},
};

/** The states by name, as an object inspector shows them, with the state that each lies in; the machine holds
 * itself. */
struct StateRow {
    const char* name;
    ModeState parent;
};

constexpr StateRow states[] = {
    {"NormalModes", ModeState::NormalModes}, // in the machine
    {"StartState", ModeState::NormalModes},
    {"AOEMode", ModeState::NormalModes},
    {"SetMode", ModeState::NormalModes},
    {"USBMode", ModeState::NormalModes},
    {"NetBGMMode", ModeState::NormalModes},
    {"IRMode", ModeState::NormalModes},
    {"IRList", ModeState::IRMode},
    {"IRMain", ModeState::IRMode},
    {"ModeHistory", ModeState::NormalModes},
    {"MenuMode", ModeState::MenuMode}, // in the machine: leaving it is what the history is for
};
static_assert(std::size(states) == modeStates, "one row a state");

QAbstractTransition* transitionTo(const QAbstractState* target, const QState& from)
{
    for (QAbstractTransition* transition : from.transitions())
        if (transition->targetState() == target)
            return transition;
    qFatal("no transition leads from %s there", qPrintable(from.objectName()));
}

} // namespace

void MainWindow::CreateStatemachine()
{
    createStates();
    addTransitions();
    connect(m_parser, &PAparser::sgAOE_STAT_STOP, ui->wg_AOE, &AOEForm::showStop);
    connectStateSlots();
    m_machine->start();
}

QState* MainWindow::state(ModeState id) const
{
    return static_cast<QState*>(m_states[std::size_t(id)]);
}

void MainWindow::createStates()
{
    m_machine = new QStateMachine(this);
    m_machine->setObjectName(QStringLiteral("ModeMachine"));
    for (std::size_t i = 0; i < modeStates; ++i) {
        const auto id = ModeState(i);
        QState* const parent = states[i].parent == id ? m_machine : state(states[i].parent);
        if (id == ModeState::ModeHistory)
            m_states[i] = new QHistoryState(QHistoryState::ShallowHistory, parent);
        else
            m_states[i] = new QState(parent);
        m_states[i]->setObjectName(QString::fromLatin1(states[i].name));
    }
    m_machine->setInitialState(state(ModeState::NormalModes));
    state(ModeState::NormalModes)->setInitialState(state(ModeState::StartState));
    state(ModeState::IRMode)->setInitialState(state(ModeState::IRMain));
    auto* const history = static_cast<QHistoryState*>(m_states[std::size_t(ModeState::ModeHistory)]);
    history->setDefaultState(state(ModeState::SetMode));
}

void MainWindow::addTransitions()
{
    struct Add {
        QState* from;
        QAbstractState* to;
        MainWindow* window;

        void operator()(void (PAparser::*signal)()) const
        {
            from->addTransition(window->m_parser, signal, to);
        }
        void operator()(void (MenuForm::*signal)()) const
        {
            from->addTransition(window->ui->wg_Menu, signal, to);
        }
        void operator()(void (RadioListForm::*signal)()) const
        {
            from->addTransition(window->ui->wg_IRList, signal, to);
        }
    };
    for (const TransitionRow& row : transitions)
        std::visit(Add{state(row.from), m_states[std::size_t(row.to)], this}, row.signal);
    forgetStartState();
}

/**
 * A history remembers the start state like any other, but nothing was shown there to return to: escape from a
 * menu opened in the start state goes to the history's default instead.
 */
void MainWindow::forgetStartState()
{
    QState* const menu = state(ModeState::MenuMode);
    QAbstractState* const history = m_states[std::size_t(ModeState::ModeHistory)];
    QAbstractTransition* const escape = transitionTo(history, *menu);
    QAbstractTransition* const openMenu = transitionTo(menu, *state(ModeState::StartState));
    QState* const setup = state(ModeState::SetMode);
    connect(openMenu, &QAbstractTransition::triggered, escape, [=] { escape->setTargetState(setup); });
    connect(menu, &QState::exited, escape, [=] { escape->setTargetState(history); });
}

void MainWindow::connectStateSlots()
{
    for (const StateSlotsRow& row : stateSlots) {
        connect(state(row.state), &QState::entered, this, row.entered);
        connect(state(row.state), &QState::exited, this, row.exited);
    }
}
