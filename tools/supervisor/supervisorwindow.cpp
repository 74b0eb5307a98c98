#include "tools/supervisor/supervisorwindow.h"

#include "tools/supervisor/frontpanel.h"
#include "tools/supervisor/musicpanel.h"
#include "tools/supervisor/noticepanels.h"
#include "tools/supervisor/script.h"
#include "tools/supervisor/tracklength.h"
#include "tools/supervisor/words.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRandomGenerator>
#include <QScopedValueRollback>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>

namespace {

constexpr int logLines = 500;

/** What keys do to the player, beside being told to the panel. */
struct PlayerKey {
    const char* word;
    void (PlayerModel::*act)();
};

constexpr PlayerKey playerKeys[] = {
    {"stop", &PlayerModel::stop},
    {"play-pause", &PlayerModel::playPause},
    {"prev", &PlayerModel::previous},
    {"next", &PlayerModel::next},
};

/** Words that come many times while something plays: not logged, and not followed by a question. */
bool isRunningValue(const QStringList& words)
{
    return words[0] == QLatin1String("level") || words[0] == QLatin1String("time");
}

} // namespace

SupervisorWindow::SupervisorWindow(const QString& host, quint16 port, QWidget* parent)
    : QMainWindow(parent)
    , m_link(host, port, this)
    , m_player(trackLengthMs, QRandomGenerator::global()->generate(), this)
    , m_tick(this)
{
    setWindowTitle(tr("Vireo supervisor"));
    m_front = new FrontPanel;
    auto* sides = new QSplitter(Qt::Vertical);
    sides->setChildrenCollapsible(false);
    sides->addWidget(createTabs());
    sides->addWidget(createLog());
    sides->setStretchFactor(0, 2);
    sides->setStretchFactor(1, 1);
    auto* central = new QWidget;
    auto* columns = new QHBoxLayout(central);
    columns->addWidget(m_front, 2);
    columns->addWidget(sides, 3);
    setCentralWidget(central);
    createStatusBar();
    connectPlayer();
    connectLink();
    resize(900, 560);
    m_front->setFocus();
}

void SupervisorWindow::openMusic(const QString& folder)
{
    const QSignalBlocker quietFront(m_front);
    const QSignalBlocker quietMusic(m_music);
    m_front->switchSource(QStringLiteral("usb"), true);
    m_music->open(folder);
}

QWidget* SupervisorWindow::createTabs()
{
    m_music = new MusicPanel(m_player);
    auto* radio = new RadioPanel;
    auto* aoe = new AoePanel;
    auto* system = new SystemPanel;
    auto* tabs = new QTabWidget;
    tabs->addTab(m_music, tr("Musi&c"));
    tabs->addTab(radio, tr("Ra&dio station"));
    tabs->addTab(aoe, tr("Et&hernet audio"));
    tabs->addTab(system, tr("S&ystem"));
    connect(m_front, &FrontPanel::said, this, &SupervisorWindow::say);
    connect(m_front, &FrontPanel::keyPressed, this, &SupervisorWindow::act);
    connect(m_front, &FrontPanel::sourcesChanged, this, &SupervisorWindow::followSources);
    connect(m_music, &MusicPanel::inserted, this, &SupervisorWindow::insertDisk);
    connect(m_music, &MusicPanel::removed, this, &SupervisorWindow::removeDisk);
    connect(m_music, &MusicPanel::failed, this, &SupervisorWindow::note);
    connect(radio, &RadioPanel::said, this, &SupervisorWindow::followStation);
    connect(aoe, &AoePanel::said, this, &SupervisorWindow::followAoe);
    connect(system, &SystemPanel::said, this, &SupervisorWindow::say);
    return tabs;
}

QWidget* SupervisorWindow::createLog()
{
    m_log = new QPlainTextEdit;
    m_log->setObjectName(QStringLiteral("log"));
    m_log->setReadOnly(true);
    m_log->setMaximumBlockCount(logLines);
    m_log->setTabChangesFocus(true);
    auto* caption = new QLabel(tr("Sent, in the words of a script:"));
    caption->setBuddy(m_log);
    auto* box = new QWidget;
    auto* layout = new QVBoxLayout(box);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(caption);
    layout->addWidget(m_log);
    return box;
}

void SupervisorWindow::createStatusBar()
{
    m_linkState = new QLabel;
    m_linkState->setObjectName(QStringLiteral("link"));
    m_mode = new QLabel;
    m_mode->setObjectName(QStringLiteral("mode"));
    QFont bold = m_mode->font();
    bold.setBold(true);
    m_mode->setFont(bold);
    auto* connectButton = new QPushButton(tr("Connect no&w"));
    connectButton->setObjectName(QStringLiteral("connect"));
    connect(connectButton, &QPushButton::clicked, &m_link, &PanelLink::connectNow);
    statusBar()->setContentsMargins(8, 0, 0, 0);
    statusBar()->addWidget(m_linkState, 1);
    statusBar()->addPermanentWidget(m_mode);
    statusBar()->addPermanentWidget(connectButton);
}

void SupervisorWindow::connectLink()
{
    connect(&m_link, &PanelLink::connected, this, &SupervisorWindow::showUp);
    connect(&m_link, &PanelLink::connected, this, &SupervisorWindow::announceUnit);
    connect(&m_link, &PanelLink::disconnected, this, &SupervisorWindow::showDown);
    connect(&m_link, &PanelLink::modeReported, this, &SupervisorWindow::showMode);
    connect(&m_link, &PanelLink::answerLate, this, &SupervisorWindow::showLateAnswer);
    connect(&m_link, &PanelLink::replaced, this, &SupervisorWindow::showReplaced);
    connect(&m_link, &PanelLink::takenBack, this, &SupervisorWindow::showTakenBack);
    m_linkState->setText(tr("Connecting to %1").arg(m_link.address()));
    m_link.connectNow();
}

void SupervisorWindow::connectPlayer()
{
    m_tick.setObjectName(QStringLiteral("tick"));
    m_tick.setInterval(PlayerModel::levelEveryMs);
    connect(&m_tick, &QTimer::timeout, this, &SupervisorWindow::tick);
    connect(&m_player, &PlayerModel::say, this, &SupervisorWindow::say);
    connect(&m_player, &PlayerModel::changed, this, &SupervisorWindow::runPlayer);
}

void SupervisorWindow::say(const QStringList& words)
{
    const ParsedWords parsed = parseWords(words);
    const bool sent = parsed.ok() && m_link.send(parsed.action.packet, m_by);
    if (isRunningValue(words))
        return;
    if (sent) {
        note(joinLine(words));
        m_link.askMode();
    } else {
        note(QStringLiteral("# ")
             + (parsed.ok() ? tr("no link, not sent: %1").arg(joinLine(words)) : parsed.error));
    }
}

/** Transport keys are the player's only while its source is on. */
void SupervisorWindow::act(const QString& key, bool isLong)
{
    if (isLong || !m_front->hasSource(QStringLiteral("usb")))
        return;
    for (const PlayerKey& playerKey : playerKeys)
        if (key == QLatin1String(playerKey.word))
            (m_player.*playerKey.act)();
}

/** A panel that has just been started, or restarted, knows nothing of the unit yet. */
void SupervisorWindow::announceUnit()
{
    const QStringList device = m_front->deviceWords();
    if (device.last() != QLatin1String("none"))
        say(device);
    m_player.announce();
    m_link.askMode();
}

void SupervisorWindow::insertDisk()
{
    m_front->switchSource(QStringLiteral("usb"), true);
    m_player.announce();
}

void SupervisorWindow::removeDisk()
{
    say({QStringLiteral("key"), QStringLiteral("stop")});
    say({QStringLiteral("disk-state"), QStringLiteral("removed")});
}

/** What plays from a source ends when the source is switched off. */
void SupervisorWindow::followSources()
{
    if (!m_front->hasSource(QStringLiteral("usb")))
        m_player.stop();
    if (!m_front->hasSource(QStringLiteral("ir")) && !m_front->hasSource(QStringLiteral("aoe")))
        m_player.setStreaming(false);
}

void SupervisorWindow::followStation(const QStringList& words)
{
    say(words);
    m_player.setStreaming(m_front->hasSource(QStringLiteral("ir")));
}

void SupervisorWindow::followAoe(const QStringList& words)
{
    say(words);
    const bool plays = words.last() == QLatin1String("ok");
    m_player.setStreaming(plays && m_front->hasSource(QStringLiteral("aoe")));
}

/** The clock runs only while something plays. */
void SupervisorWindow::runPlayer()
{
    if (m_player.isRunning() == m_tick.isActive())
        return;
    if (m_tick.isActive()) {
        m_tick.stop();
    } else {
        m_clock.start();
        m_tick.start();
    }
}

/** What comes of time passing is nobody's act. */
void SupervisorWindow::tick()
{
    const QScopedValueRollback<PanelLink::By> itself(m_by, PanelLink::By::Itself);
    m_player.advance(int(m_clock.restart()));
}

void SupervisorWindow::showUp()
{
    m_linkState->setText(tr("Connected to %1").arg(m_link.address()));
}

void SupervisorWindow::showDown(const QString& reason, int pauseMs)
{
    m_mode->clear();
    m_linkState->setText(tr("No link to %1 (%2); next attempt in %3 s")
                             .arg(m_link.address(), reason, QLocale().toString(pauseMs / 1000.0, 'g', 2)));
}

void SupervisorWindow::showMode(quint8 code)
{
    showUp();
    m_mode->setText(tr("Mode: %1").arg(modeName(code)));
}

void SupervisorWindow::showLateAnswer()
{
    m_linkState->setText(tr("Waiting for the panel at %1").arg(m_link.address()));
}

void SupervisorWindow::showReplaced(bool surely)
{
    m_mode->clear();
    const QString text = surely
        ? tr("Another program has the link to %1; the next key takes it back")
        : tr("No answer from %1, another program may have the link; the next key takes it back");
    m_linkState->setText(text.arg(m_link.address()));
    note(QStringLiteral("# ") + tr("replaced by another program"));
}

void SupervisorWindow::showTakenBack()
{
    showUp();
    note(QStringLiteral("# ") + tr("the link is back"));
    m_link.askMode();
}

void SupervisorWindow::note(const QString& text)
{
    m_log->appendPlainText(text);
}
