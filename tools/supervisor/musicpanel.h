#pragma once

#include <QWidget>

class PlayerModel;
class QLabel;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QPushButton;

/** The disk in the unit's USB port: a folder of music, how it is played, and what plays. */
class MusicPanel : public QWidget {
    Q_OBJECT

public:
    explicit MusicPanel(PlayerModel& player, QWidget* parent = nullptr);

    /** Takes the music below a folder as the disk. */
    void open(const QString& folder);

signals:
    /** There is a disk now; the player has its tracks. */
    void inserted();
    void removed();
    /** Something went otherwise than wished; one line. */
    void failed(const QString& reason);

private:
    QWidget* createFolderRow();
    QWidget* createModeRow();
    QWidget* createTrackList();
    QWidget* createStateRow();
    void choose();
    void ejectOrInsert();
    void showDisk();
    void setScope(int index);
    void playRow();
    void showPlayer();
    void showTracks();

    PlayerModel& m_player;
    QLineEdit* m_folder = nullptr;
    QPushButton* m_disk = nullptr;
    QListWidget* m_tracks = nullptr;
    QLabel* m_state = nullptr;
    QLabel* m_time = nullptr;
    QProgressBar* m_level = nullptr;
};
