#pragma once

#include "link/vocabulary.h"

#include <QByteArray>
#include <QList>
#include <QMainWindow>
#include <QQueue>
#include <QString>

#include <array>

class PAparser;
class QAbstractState;
class QMP3Parser;
class QState;
class QStateMachine;
class QTagParser;
class tcp_server;

namespace Ui {
class MainWindow;
}

/** The states of the mode machine, in the order in which they are made. */
enum class ModeState {
    NormalModes,
    StartState,
    AOEMode,
    SetMode,
    USBMode,
    NetBGMMode,
    IRMode,
    IRList,
    IRMain,
    ModeHistory,
    MenuMode,
};
constexpr std::size_t modeStates = std::size_t(ModeState::MenuMode) + 1;

/**
 * The one top-level window, 320x240 pixels: owns the link, the parsers, every screen and the mode machine,
 * and is the only place that wires them. Everything happens synchronously while the bytes of the supervisor
 * are read.
 *
 * Construction and permanent wiring are in mainwindow.cpp, the mode machine in mainwindow_machine.cpp, the
 * modes in mainwindow_modes.cpp; each other duty has a file of its own:
 * mainwindow_receive.cpp the receive queue, mainwindow_report.cpp the mode report and the operating-mode
 * file, mainwindow_network.cpp the network restart, mainwindow_upgrade.cpp the upgrade notice.
 */
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /**
     * Looks at the header at the front of the receive queue. Returns the bytes of the packet there, header
     * included, or 0 when there is none; then one byte is to be dropped. A packet that lacks up to its last
     * four bytes counts.
     */
    int checkupPacket();

signals:
    /** The receive queue has new or remaining bytes. */
    void sgBuffStacked();
    void sgRecvQueueEn(); ///< never

public slots:
    void USBModeEntered();
    void USBModeExited();
    void AOEModeEntered();
    void AOEModeExited();
    void IRModeEntered();
    void IRModeExited();
    void IRMainEntered();
    void IRMainExited();
    void IRListEntered();
    void IRListExited();
    void SetModeEntered();
    void SetModeExited();
    void NetBGMModeEntered();
    void NetBGMModeExited();
    void MenuModeEntered();
    void MenuModeExited();
    /** Restarts the unit's network and waits for it, 30 s at most; nothing is drawn or received meanwhile. */
    void LoadingModeEntered();
    void LoadingModeExited();
    void DhcpOpened();
    void DhcpClosed();
    void UpgradeStart();
    void UpgradeFail();
    void SetUpgradeMSG(QString text);
    /** Sends the current mode's code to the supervisor. */
    void ResponseCurrentMode();
    void setIRUrl(QString url);
    void setIRTitle(QString title);
    /** Appends received bytes to the queue and handles every packet that is complete; what takes longer than
     * limits::drainTurnMs goes on in the next turn of the event loop. */
    void stackBuff(QByteArray chunk);
    /** Takes one packet, or one byte of junk, off the front of the receive queue. */
    void parsingfromSupervisor();

private:
    void createLink();
    void createForm();
    void createParsers();
    void hideAllButLogo();
    void connectLink();
    void connectPlayer();
    void connectTagsAndUpgrade();
    void setOverlayVisible(bool visible);

    void CreateStatemachine();
    void createStates();
    void addTransitions();
    void addRadioTransitions();
    void addDepartures(ModeState from);
    void addTransition(ModeState from, void (PAparser::*signal)(), ModeState to);
    void forgetStartState();
    void connectStateSlots();
    QState* state(ModeState id) const;

    /** Records the last playback source; true when the file was written. In a long drain it is written at the
     * end of the turn, once, whatever the number of changes. */
    bool XmlWriteOpermode(QString type);
    void enter(ModeState mode);
    void leave(ModeState mode);
    void connectInput(ModeState mode);
    void dropInput();
    void standInMenu(ModeState mode);
    void rememberInMenu(ModeState mode);
    void drain();
    void goOnInTheNextTurn();
    void endLongDrain();
    void consumeFront();
    bool writeOpermode(const QString& type);
    void writeGatheredOpermode();
    void tellServiceManager() const;

    // Kind and order of the members are fixed; those that are reserved keep their place without a duty.
    Ui::MainWindow* ui;
    tcp_server* m_server = nullptr;
    PAparser* m_parser = nullptr;
    QQueue<QByteArray> m_sparePackets; // reserved
    QByteArray m_received;
    QByteArray m_spareBytes; // reserved
    QMP3Parser* m_mp3Parser = nullptr; // reserved
    QTagParser* m_tagParser = nullptr;
    QStateMachine* m_machine = nullptr;
    std::array<QAbstractState*, modeStates> m_states = {};
    QString m_irTitle; // reserved
    QString m_irUrl; // reserved
    ModeCode m_mode = ModeCode::None;

    /** The connections of the encoder and the keys to the screen that shows; they live as long as its mode.
     */
    QList<QMetaObject::Connection> m_input;
    /** Bytes at the front of the receive queue that are consumed already. */
    int m_consumed = 0;
    bool m_draining = false;
    bool m_moreToDrain = false;
    /** Whether the burst that is being handled has lasted longer than a turn of the event loop. */
    bool m_longDrain = false;
    /** The operating mode that the file is to tell at the end of this turn; empty for no change. */
    QString m_gatheredOpermode;
};
