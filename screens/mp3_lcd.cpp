#include "screens/mp3_lcd.h"

#include "app/dprintf.h"
#include "app/pixels.h"
#include "screens/levelmeter.h"
#include "screens/panelfont.h"
#include "screens/playicon.h"
#include "ui_mp3_lcd.h"
#include "widgets/resourceimage.h"

#include <QImage>

#include <algorithm>
#include <initializer_list>
#include <iterator>

namespace {

constexpr int textPoints = 12;
constexpr QSize shadowSize(100, 32);

enum class PlayMode {
    All,
    Folder,
    One,
    RepeatAll,
    RepeatFolder,
    RepeatOne,
};

constexpr const char* modeImages[] = {
    ":/Tessaro/image/special_state/all.png",           ":/Tessaro/image/special_state/folder.png",
    ":/Tessaro/image/special_state/one.png",           ":/Tessaro/image/special_state/all_repeat.png",
    ":/Tessaro/image/special_state/folder_repeat.png", ":/Tessaro/image/special_state/one_repeat.png",
};
static_assert(std::size(modeImages) == std::size_t(PlayMode::RepeatOne) + 1, "one image a mode");

QPixmap modeIcon(PlayMode mode)
{
    return resourcePixmap(QLatin1String(modeImages[std::size_t(mode)]));
}

void showWidgets(std::initializer_list<QWidget*> widgets)
{
    for (QWidget* widget : widgets)
        widget->show();
}

void hideWidgets(std::initializer_list<QWidget*> widgets)
{
    for (QWidget* widget : widgets)
        widget->hide();
}

} // namespace

mp3_lcd::mp3_lcd(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::mp3_lcd>())
{
    ui->setupUi(this);
    LevelMeter(*ui).clear();
    InitFont();
    ui->lb_shuffle->hide();
    AlbumArtImgOn(false);
    ui->lb_FrontUSB->hide();
    ui->lb_StreamUSB->hide();
}

mp3_lcd::~mp3_lcd() = default;

void mp3_lcd::InitFont()
{
    const QFont font = panelFont(textPoints);
    const std::initializer_list<QWidget*> texts = {ui->lbl_album, ui->lbl_artist, ui->lbl_folder,
                                                   ui->lbl_files, ui->lbl_title,  ui->lbTime};
    for (QWidget* text : texts)
        text->setFont(font);
}

void mp3_lcd::AlbumArtImgOn(bool on)
{
    if (!on) {
        hideWidgets({ui->lbl_image, ui->lbShadow, ui->lb_AlbumArt_back});
        ui->lb_No_CDImg->show();
        return;
    }
    ui->lb_No_CDImg->hide();
    showWidgets({ui->lbl_image, ui->lb_AlbumArt_back, ui->lbShadow});
    ui->lbl_image->setPixmap(m_albumArt);
    ui->lbShadow->setPixmap(CreateShadowImg(m_albumArt));
}

/** The mirror is not exact: row 0, column 0 and the middle row stay, and row y changes places with h - y. */
QPixmap mp3_lcd::CreateShadowImg(QPixmap pixmap)
{
    QImage image = pixmap.scaled(shadowSize, Qt::IgnoreAspectRatio, Qt::FastTransformation)
                       .toImage()
                       .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const auto row = [&image](int y) { return pixelsOf(image.scanLine(y)); };
    const int height = image.height();
    for (int y = 1; y < height / 2; ++y)
        std::swap_ranges(row(y) + 1, row(y) + image.width(), row(height - y) + 1);
    return QPixmap::fromImage(image);
}

void mp3_lcd::play_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Play));
    m_playState = Playing;
}

void mp3_lcd::pause_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Pause));
    m_playState = Paused;
}

void mp3_lcd::stop_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Stop));
    m_playState = Stopped;
}

void mp3_lcd::next_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Next));
}

void mp3_lcd::prev_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Previous));
}

void mp3_lcd::PlayPause_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    const bool pause = m_playState == Playing;
    ui->lbI_PlayState->setPixmap(playIcon(pause ? PlayIcon::Pause : PlayIcon::Play));
    m_playState = pause ? Paused : Playing;
}

void mp3_lcd::showAll()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_specialState->setPixmap(modeIcon(PlayMode::All));
}

void mp3_lcd::showFolder()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_specialState->setPixmap(modeIcon(PlayMode::Folder));
}

void mp3_lcd::showOne()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_specialState->setPixmap(modeIcon(PlayMode::One));
}

void mp3_lcd::showRptAll()
{
    ui->lb_specialState->setPixmap(modeIcon(PlayMode::RepeatAll));
}

void mp3_lcd::showRptFolder()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_specialState->setPixmap(modeIcon(PlayMode::RepeatFolder));
}

void mp3_lcd::showRptOne()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_specialState->setPixmap(modeIcon(PlayMode::RepeatOne));
}

void mp3_lcd::showShuffle()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_shuffle->show();
}

void mp3_lcd::showOffShuffle()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_shuffle->hide();
}

void mp3_lcd::showTime(QString time)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbTime->setText(time);
}

void mp3_lcd::showDiskInfo(QString folders, QString files)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbl_folder->setText(folders);
    ui->lbl_files->setText(files);
}

void mp3_lcd::showDiskNormal()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_FrontUSB->show();
}

void mp3_lcd::showDiskRemoved()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_FrontUSB->hide();
    ui->lbl_files->setText(QStringLiteral("FILES: "));
    ui->lbl_folder->setText(QStringLiteral(" "));
    ui->lbl_title->setText(QStringLiteral("Title"), true);
    ui->lbl_album->setText(QStringLiteral("Album"));
    ui->lbl_artist->setText(QStringLiteral("Artist"));
    ui->lbl_image->clear();
    ui->lb_AlbumArt_back->hide();
    ui->lb_No_CDImg->show();
    ui->lbShadow->clear();
}

void mp3_lcd::showUSBStreamEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_StreamUSB->show();
}

void mp3_lcd::showUSBStreamExited()
{
    ui->lb_StreamUSB->hide();
}

void mp3_lcd::showUSBFrontEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    initLevel();
    showWidgets({ui->lbl_album, ui->lbl_artist, ui->lbl_folder, ui->lbl_files, ui->lb_folderImg,
                 ui->lbl_image, ui->lbl_title, ui->lbShadow, ui->lbTime});
    ui->lb_AlbumArt_back->hide();
    showWidgets({ui->lb_specialState, ui->lbI_PlayState, ui->lb_No_CDImg});
}

void mp3_lcd::showUSBFrontExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    hideWidgets({ui->lbl_album, ui->lbl_artist, ui->lbl_folder, ui->lbl_files, ui->lb_folderImg,
                 ui->lbl_image, ui->lbl_title, ui->lbShadow, ui->lbTime, ui->lb_AlbumArt_back,
                 ui->lb_specialState, ui->lbI_PlayState, ui->lb_No_CDImg});
}

void mp3_lcd::showAUXEntered()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
}

void mp3_lcd::showAUXExited()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
}

void mp3_lcd::showLevel(unsigned char level)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (level == 0)
        initLevel();
    else
        LevelMeter(*ui).light(level);
}

void mp3_lcd::initLevel()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    LevelMeter(*ui).clear();
}

void mp3_lcd::ShowTagInfo(TagInfomation info)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_title = info.strTitle;
    m_artist = info.strArtist;
    m_album = info.strAlbum;
    m_albumArt = info.pixPicture;
    ui->lbl_album->setText(m_album);
    ui->lbl_title->setText(m_title, true);
    ui->lbl_artist->setText(m_artist);
    DPRINTF(1, "Width size of tag Image  %d", m_albumArt.width());
    const bool present = !m_albumArt.isNull();
    DPRINTF(2, "%s", present ? "Album Art Image OK" : "Album Art Image NULL ");
    AlbumArtImgOn(present);
}
