#include "tools/supervisor/musicpanel.h"

#include "tools/supervisor/lampswitch.h"
#include "tools/supervisor/musicfolder.h"
#include "tools/supervisor/playermodel.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>

namespace {

constexpr int margin = 6;
constexpr int leastLevelWidth = 40;

/** In the order of PlayerModel::Scope. */
constexpr const char* scopeCaptions[] = {
    QT_TRANSLATE_NOOP("MusicPanel", "One track"),
    QT_TRANSLATE_NOOP("MusicPanel", "All tracks"),
    QT_TRANSLATE_NOOP("MusicPanel", "One folder"),
};

/** In the order of PlayerModel::State. */
constexpr const char* stateCaptions[] = {
    QT_TRANSLATE_NOOP("MusicPanel", "Stopped"),
    QT_TRANSLATE_NOOP("MusicPanel", "Playing"),
    QT_TRANSLATE_NOOP("MusicPanel", "Paused"),
};

QWidget* row(std::initializer_list<QWidget*> widgets)
{
    auto* result = new QWidget;
    auto* layout = new QHBoxLayout(result);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget* widget : widgets)
        layout->addWidget(widget);
    return result;
}

} // namespace

MusicPanel::MusicPanel(PlayerModel& player, QWidget* parent)
    : QWidget(parent)
    , m_player(player)
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(createFolderRow());
    layout->addWidget(createTrackList(), 1);
    layout->addWidget(createStateRow());
    layout->addWidget(createModeRow());
    connect(&player, &PlayerModel::changed, this, &MusicPanel::showPlayer);
    showDisk();
    showPlayer();
}

QWidget* MusicPanel::createFolderRow()
{
    m_folder = new QLineEdit;
    m_folder->setObjectName(QStringLiteral("folder"));
    m_folder->setAccessibleName(tr("Folder of music"));
    m_folder->setPlaceholderText(tr("A folder of MP3, FLAC or Ogg files"));
    auto* chooseButton = new QPushButton(tr("Ch&oose…"));
    chooseButton->setToolTip(tr("Looks for a folder of music"));
    connect(m_folder, &QLineEdit::returnPressed, this, [this] { open(m_folder->text()); });
    connect(chooseButton, &QPushButton::clicked, this, &MusicPanel::choose);
    return row({m_folder, chooseButton});
}

QWidget* MusicPanel::createTrackList()
{
    constexpr int leastRows = 3;
    m_tracks = new QListWidget;
    m_tracks->setObjectName(QStringLiteral("tracks"));
    m_tracks->setAccessibleName(tr("Tracks"));
    m_tracks->setUniformItemSizes(true);
    m_tracks->setMinimumHeight(leastRows * (fontMetrics().height() + 4));
    m_tracks->setToolTip(tr("Enter or a double click plays a track"));
    connect(m_tracks, &QListWidget::itemActivated, this, &MusicPanel::playRow);
    return m_tracks;
}

QWidget* MusicPanel::createModeRow()
{
    auto* scope = new QComboBox;
    scope->setObjectName(QStringLiteral("scope"));
    for (const char* caption : scopeCaptions)
        scope->addItem(tr(caption));
    scope->setCurrentIndex(int(PlayerModel::Scope::All));
    scope->setAccessibleName(tr("What is played"));
    auto* repeat = new LampSwitch(tr("&Repeat"));
    repeat->setObjectName(QStringLiteral("repeat"));
    auto* shuffle = new LampSwitch(tr("Shuff&le"));
    shuffle->setObjectName(QStringLiteral("shuffle"));
    connect(scope, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &MusicPanel::setScope);
    connect(repeat, &QCheckBox::toggled, &m_player, &PlayerModel::setRepeat);
    connect(shuffle, &QCheckBox::toggled, &m_player, &PlayerModel::setShuffle);
    QWidget* result = row({scope, repeat, shuffle});
    static_cast<QHBoxLayout*>(result->layout())->addStretch();
    return result;
}

QWidget* MusicPanel::createStateRow()
{
    m_disk = new QPushButton;
    m_disk->setObjectName(QStringLiteral("eject"));
    connect(m_disk, &QPushButton::clicked, this, &MusicPanel::ejectOrInsert);
    m_state = new QLabel;
    m_state->setObjectName(QStringLiteral("state"));
    m_time = new QLabel;
    m_time->setObjectName(QStringLiteral("time"));
    m_level = new QProgressBar;
    m_level->setRange(0, 255);
    m_level->setTextVisible(false);
    m_level->setMinimumWidth(leastLevelWidth);
    m_level->setAccessibleName(tr("Level"));
    return row({m_disk, m_state, m_time, m_level});
}

void MusicPanel::choose()
{
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Folder of music"), m_folder->text());
    if (!folder.isEmpty())
        open(folder);
}

void MusicPanel::open(const QString& folder)
{
    m_folder->setText(folder);
    const QStringList tracks = musicBelow(folder);
    if (tracks.isEmpty()) {
        emit failed(tr("no music below \"%1\"").arg(folder));
        return;
    }
    m_player.setTracks(tracks);
    showTracks();
    emit inserted();
}

/** The folder that was ejected stays named, so that the same button brings it back. */
void MusicPanel::ejectOrInsert()
{
    if (m_player.tracks().isEmpty()) {
        open(m_folder->text());
        return;
    }
    m_player.setTracks({});
    showTracks();
    emit removed();
}

void MusicPanel::showDisk()
{
    m_disk->setText(m_player.tracks().isEmpty() ? tr("Insert") : tr("Eject"));
    m_disk->setShortcut(QKeySequence(Qt::ALT | Qt::Key_J));
    m_disk->setToolTip(tr("The disk in the unit's USB port (Alt+J)"));
}

void MusicPanel::setScope(int index)
{
    m_player.setScope(PlayerModel::Scope(index));
}

void MusicPanel::playRow()
{
    m_player.play(m_tracks->currentRow());
}

void MusicPanel::showTracks()
{
    const QDir folder(m_folder->text());
    const QDir absolute(folder.absolutePath());
    m_tracks->clear();
    for (const QString& path : m_player.tracks())
        m_tracks->addItem(absolute.relativeFilePath(path));
    showDisk();
    showPlayer();
}

void MusicPanel::showPlayer()
{
    m_state->setText(tr(stateCaptions[int(m_player.state())]));
    m_time->setText(playTimeText(m_player.positionMs()));
    m_level->setValue(m_player.level());
    if (m_player.state() != PlayerModel::State::Stopped && m_tracks->count() > 0)
        m_tracks->setCurrentRow(m_player.currentTrack());
}
