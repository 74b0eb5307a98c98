#pragma once

#include "tags/taginfomation.h"

#include <QPalette>
#include <QPixmap>
#include <QWidget>

#include <memory>

namespace Ui {
class mp3_lcd;
}

/**
 * The player screen: play state and mode, level meter, elapsed time, counters of the disk, and title, artist,
 * album and cover of the current file with a reflection below it. It plays nothing: all that it shows is
 * pushed to it, also while it is hidden.
 */
class mp3_lcd : public QWidget {
    Q_OBJECT

public:
    explicit mp3_lcd(QWidget* parent = nullptr);
    ~mp3_lcd() override;

public slots:
    void play_action();
    void pause_action();
    void stop_action();
    void next_action();
    void prev_action();
    void PlayPause_action();
    void showAll();
    void showFolder();
    void showOne();
    void showRptAll();
    void showRptFolder();
    void showRptOne();
    void showShuffle();
    void showOffShuffle();
    void showTime(QString time);
    void showDiskInfo(QString folders, QString files);
    void showDiskNormal();
    void showDiskRemoved();
    void showUSBStreamEntered();
    void showUSBStreamExited();
    void showUSBFrontEntered();
    void showUSBFrontExited();
    void showAUXEntered();
    void showAUXExited();
    /** Lights that many segments of the meter; above 8 it keeps its look. */
    void showLevel(unsigned char level);
    void initLevel();
    void ShowTagInfo(TagInfomation info);

private:
    enum PlayState {
        Playing = 0,
        Stopped = 1,
        Paused = 2,
    };

    void InitFont();
    void AlbumArtImgOn(bool on);
    QPixmap CreateShadowImg(QPixmap pixmap);

    // Kind and order of the members are fixed; those that are reserved keep their place without a duty.
    std::unique_ptr<Ui::mp3_lcd> ui;
    QPixmap m_sparePixmap; // reserved
    QPalette m_palette; // reserved
    QString m_title;
    QString m_artist;
    QString m_album;
    QPixmap m_albumArt;
    int m_playState = Stopped;
};
