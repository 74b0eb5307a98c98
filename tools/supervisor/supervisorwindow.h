#pragma once

#include "tools/supervisor/panellink.h"
#include "tools/supervisor/playermodel.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>

class FrontPanel;
class MusicPanel;
class QLabel;
class QPlainTextEdit;

/**
 * The unit around the panel: its front panel to click and turn, a disk of music to play, and the notices of
 * the unit's other processes. Everything that happens is said in words over the link, and after each action
 * the panel is asked for its mode.
 */
class SupervisorWindow : public QMainWindow {
    Q_OBJECT

public:
    SupervisorWindow(const QString& host, quint16 port, QWidget* parent = nullptr);

    /** Begins with a disk in the unit, of which the panel hears when the link is made. */
    void openMusic(const QString& folder);

private:
    QWidget* createTabs();
    QWidget* createLog();
    void createStatusBar();
    void connectLink();
    void connectPlayer();

    void say(const QStringList& words);
    void act(const QString& key, bool isLong);
    void announceUnit();
    void insertDisk();
    void removeDisk();
    void followSources();
    void followStation(const QStringList& words);
    void followAoe(const QStringList& words);
    void runPlayer();
    void tick();

    void showUp();
    void showDown(const QString& reason, int pauseMs);
    void showMode(quint8 code);
    void showLateAnswer();
    void showReplaced(bool surely);
    void showTakenBack();
    void note(const QString& text);

    PanelLink m_link;
    PanelLink::By m_by = PanelLink::By::User; // whose words are said now
    PlayerModel m_player;
    QTimer m_tick;
    QElapsedTimer m_clock; // since the last tick
    FrontPanel* m_front = nullptr;
    MusicPanel* m_music = nullptr;
    QPlainTextEdit* m_log = nullptr;
    QLabel* m_linkState = nullptr;
    QLabel* m_mode = nullptr;
};
