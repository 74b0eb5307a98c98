#pragma once

#include "tools/supervisor/panellink.h"
#include "tools/supervisor/playermodel.h"
#include "tools/supervisor/unitmodel.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include <optional>

class FrontPanel;
class LinkBar;
class MusicPanel;
class QPlainTextEdit;
class QTabWidget;
class RadioPanel;

/**
 * The unit around the panel: its front to click and turn, a disk of music to play, and the notices of the
 * unit's other processes. Everything that happens is said in words over the link, and the panel is asked for
 * its mode after each action and once a second.
 */
class SupervisorWindow : public QWidget {
    Q_OBJECT

public:
    SupervisorWindow(const QString& host, quint16 port, QWidget* parent = nullptr);

    /** Begins with a disk in the unit, of which the panel hears when the link is made. */
    void openMusic(const QString& folder);

    /** Goes where it fits on the screen that it opens on, beside the panel; to `corner` where one is given.
     */
    void fitToScreen(const std::optional<QPoint>& corner = std::nullopt);

    QSize sizeHint() const override;

private:
    QWidget* createUnit();
    QTabWidget* createTabs();
    QWidget* createLog();
    LinkBar* createLinkBar();
    void connectLink();
    void connectUnit();

    void say(const QStringList& words);
    void announceUnit();
    void runPlayer();
    void tick();

    void showUp();
    void showDown(const QString& reason, int pauseMs);
    void showMode(quint8 code);
    void showLateAnswer();
    void showReplaced(bool surely);
    void showTakenBack();
    void note(const QString& text);
    void warn(const QString& text);

    PanelLink m_link;
    PanelLink::By m_by = PanelLink::By::User; // whose words are said now
    PlayerModel m_player;
    UnitModel m_unit;
    QTimer m_tick;
    QElapsedTimer m_clock; // since the last tick
    FrontPanel* m_front = nullptr;
    MusicPanel* m_music = nullptr;
    RadioPanel* m_radio = nullptr;
    QPlainTextEdit* m_log = nullptr;
    LinkBar* m_bar = nullptr;
};
