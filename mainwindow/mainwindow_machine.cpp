#include "mainwindow/moderows.h"

#include <QHistoryState>
#include <QSignalTransition>
#include <QState>
#include <QStateMachine>

/**
 * The mode machine. What is regular in it follows from the rows of the modes: each leads to every other on
 * the signal of that one's source, and to the menu on the long select key. What is not regular is written out
 * here.
 */

namespace {

/** The states that are no modes. */
const char* nameOf(ModeState id)
{
    switch (id) {
    case ModeState::NormalModes:
        return "NormalModes";
    case ModeState::StartState:
        return "StartState";
    case ModeState::ModeHistory:
        return "ModeHistory";
    default:
        return modeRow(id).name;
    }
}

/** The state that one lies in; those of the machine itself lie in themselves. */
ModeState parentOf(ModeState id)
{
    const bool isMode = id != ModeState::StartState && id != ModeState::ModeHistory;
    return isMode && id != ModeState::NormalModes ? modeRow(id).parent : ModeState::NormalModes;
}

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
        QState* const parent = parentOf(id) == id ? m_machine : state(parentOf(id));
        if (id == ModeState::ModeHistory)
            m_states[i] = new QHistoryState(QHistoryState::ShallowHistory, parent);
        else
            m_states[i] = new QState(parent);
        m_states[i]->setObjectName(QString::fromLatin1(nameOf(id)));
    }
    m_machine->setInitialState(state(ModeState::NormalModes));
    state(ModeState::NormalModes)->setInitialState(state(ModeState::StartState));
    state(ModeState::IRMode)->setInitialState(state(ModeState::IRMain));
    auto* const history = static_cast<QHistoryState*>(m_states[std::size_t(ModeState::ModeHistory)]);
    history->setDefaultState(state(ModeState::SetMode));
}

void MainWindow::addTransition(ModeState from, void (PAparser::*signal)(), ModeState to)
{
    state(from)->addTransition(m_parser, signal, m_states[std::size_t(to)]);
}

/** No state minds that a source goes away. */
void MainWindow::addTransitions()
{
    addTransition(ModeState::MenuMode, &PAparser::sgKEY_ESC, ModeState::ModeHistory);
    addDepartures(ModeState::StartState);
    addTransition(ModeState::StartState, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode);
    addDepartures(ModeState::IRMode);
    addRadioTransitions();
    for (const ModeRow& row : modeRows()) {
        if (!row.chosen || row.state == ModeState::IRMode)
            continue;
        addDepartures(row.state);
        addTransition(row.state, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode);
    }
    addDepartures(ModeState::MenuMode);
    for (const ModeState to : sourceModes())
        state(ModeState::MenuMode)->addTransition(ui->wg_Menu, modeRow(to).chosen, state(to));
    forgetStartState();
}

/** The menu cannot be opened from the station list. */
void MainWindow::addRadioTransitions()
{
    addTransition(ModeState::IRList, &PAparser::sgDEVICE_IR_Enter, ModeState::IRMain);
    addTransition(ModeState::IRList, &PAparser::sgKEY_ESC, ModeState::IRMain);
    state(ModeState::IRList)
        ->addTransition(ui->wg_IRList, &RadioListForm::sgSetMain, state(ModeState::IRMain));
    addTransition(ModeState::IRMain, &PAparser::sgKEY_LONG_SELECT, ModeState::MenuMode);
    addTransition(ModeState::IRMain, &PAparser::sgKEY_SELECT, ModeState::IRList);
}

/**
 * To every other mode on the signal of its source. The start state and NetBGM have setup first; while the
 * menu shows, the NetBGM source changes nothing; the radio is entered at its playing screen.
 */
void MainWindow::addDepartures(ModeState from)
{
    QList<ModeState> targets = sourceModes();
    targets.removeOne(from);
    if (from == ModeState::StartState || from == ModeState::NetBGMMode)
        targets.move(targets.indexOf(ModeState::SetMode), 0);
    if (from == ModeState::MenuMode)
        targets.removeOne(ModeState::NetBGMMode);
    for (const ModeState to : targets)
        addTransition(from, modeRow(to).announced, to == ModeState::IRMode ? ModeState::IRMain : to);
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
    for (const ModeRow& row : modeRows()) {
        connect(state(row.state), &QState::entered, this, row.entered);
        connect(state(row.state), &QState::exited, this, row.exited);
    }
}
