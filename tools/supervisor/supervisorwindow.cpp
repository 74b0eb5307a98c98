#include "tools/supervisor/supervisorwindow.h"

#include "config/unitpaths.h"
#include "tools/supervisor/frontpanel.h"
#include "tools/supervisor/linkbar.h"
#include "tools/supervisor/musicpanel.h"
#include "tools/supervisor/noticepanels.h"
#include "tools/supervisor/place.h"
#include "tools/supervisor/script.h"
#include "tools/supervisor/tracklength.h"
#include "tools/supervisor/words.h"

#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QRandomGenerator>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

constexpr int logLines = 500;

/** Words that come many times while something plays: not logged, and not followed by a question. */
bool isRunningValue(const QStringList& words)
{
    return words[0] == QLatin1String("level") || words[0] == QLatin1String("time");
}

/** What is larger than its place is scrolled, and whatever gets the focus comes into sight. */
QScrollArea* scrolled(QWidget* content)
{
    auto* area = new QScrollArea;
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(content);
    return area;
}

/** Tabs that take what the front leaves; the pages scroll. */
class Drawer : public QTabWidget {
public:
    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override
    {
        constexpr int leastLines = 6; // with the foot at its highest, a display of 640x480 has room for that
        return {0, leastLines * fontMetrics().height()};
    }
};

} // namespace

SupervisorWindow::SupervisorWindow(const QString& host, quint16 port, QWidget* parent)
    : QWidget(parent)
    , m_link(host, port, this)
    , m_player(trackLengthMs, QRandomGenerator::global()->generate(), this)
    , m_unit(
          m_player, [] { return readStation(unitPath(UnitPath::Radio)); }, this)
    , m_tick(this)
{
    setWindowTitle(tr("Vireo supervisor"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(scrolled(createUnit()), 1);
    layout->addWidget(createLinkBar());
    connectUnit();
    connectLink();
    m_front->setFocus();
}

void SupervisorWindow::openMusic(const QString& folder)
{
    const QSignalBlocker quiet(&m_unit);
    m_music->open(folder);
    m_front->showSources(m_unit.sources());
}

QSize SupervisorWindow::sizeHint() const
{
    const int line = fontMetrics().height();
    return {line * 52, line * 40};
}

void SupervisorWindow::fitToScreen(const std::optional<QPoint>& corner)
{
    const QScreen* where = screen();
    const int border = 2 * style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
    const QSize frame(border, border + style()->pixelMetric(QStyle::PM_TitleBarHeight));
    const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    const QSize least(m_front->minimumSizeHint().width() + bar, m_front->minimumSizeHint().height());
    QRect place =
        placeBeside(panelSizeOn(*where), where->availableGeometry(), sizeHint() + frame, least + frame);
    if (corner)
        place.moveTopLeft(*corner);
    resize(place.size() - frame);
    move(place.topLeft());
}

QWidget* SupervisorWindow::createUnit()
{
    constexpr int margin = 6;
    m_front = new FrontPanel;
    auto* unit = new QWidget;
    auto* layout = new QVBoxLayout(unit);
    layout->setContentsMargins(margin, margin, margin, margin / 2);
    layout->addWidget(m_front);
    layout->addWidget(createTabs(), 1);
    return unit;
}

QTabWidget* SupervisorWindow::createTabs()
{
    m_music = new MusicPanel(m_player);
    m_radio = new RadioPanel;
    auto* aoe = new AoePanel;
    auto* system = new SystemPanel;
    auto* tabs = new Drawer;
    tabs->addTab(scrolled(m_music), tr("Musi&c"));
    tabs->addTab(scrolled(m_radio), tr("Ra&dio"));
    tabs->addTab(scrolled(aoe), tr("Et&h"));
    tabs->addTab(scrolled(system), tr("S&ystem"));
    tabs->addTab(createLog(), tr("Sent"));
    tabs->setDocumentMode(true); // no frame: it would have no bottom
    tabs->setUsesScrollButtons(false);
    tabs->setElideMode(Qt::ElideRight);
    connect(m_music, &MusicPanel::inserted, &m_unit, &UnitModel::insertDisk);
    connect(m_music, &MusicPanel::removed, &m_unit, &UnitModel::removeDisk);
    connect(m_music, &MusicPanel::failed, this, &SupervisorWindow::warn);
    connect(m_radio, &RadioPanel::announced, &m_unit, &UnitModel::playStation);
    connect(aoe, &AoePanel::said, &m_unit,
            [this](const QStringList& words) { m_unit.reportAoe(words.last()); });
    connect(system, &SystemPanel::said, this, &SupervisorWindow::say);
    return tabs;
}

QWidget* SupervisorWindow::createLog()
{
    m_log = new QPlainTextEdit;
    m_log->setObjectName(QStringLiteral("log"));
    m_log->setAccessibleName(tr("Sent, in the words of a script"));
    m_log->setToolTip(m_log->accessibleName());
    m_log->setReadOnly(true);
    m_log->setMaximumBlockCount(logLines);
    m_log->setTabChangesFocus(true);
    return m_log;
}

LinkBar* SupervisorWindow::createLinkBar()
{
    m_bar = new LinkBar;
    connect(m_bar, &LinkBar::connectWanted, &m_link, &PanelLink::connectNow);
    return m_bar;
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
    m_bar->showLink(LinkBar::State::Waiting, tr("Connecting to %1").arg(m_link.address()));
    m_link.connectNow();
}

void SupervisorWindow::connectUnit()
{
    m_tick.setObjectName(QStringLiteral("tick"));
    m_tick.setInterval(PlayerModel::levelEveryMs);
    connect(&m_tick, &QTimer::timeout, this, &SupervisorWindow::tick);
    connect(&m_player, &PlayerModel::changed, this, &SupervisorWindow::runPlayer);
    connect(m_front, &FrontPanel::turned, &m_unit, &UnitModel::turn);
    connect(m_front, &FrontPanel::keyPressed, &m_unit, &UnitModel::pressKey);
    connect(m_front, &FrontPanel::sourceSwitched, &m_unit, &UnitModel::switchSource);
    connect(&m_unit, &UnitModel::say, this, &SupervisorWindow::say);
    connect(&m_unit, &UnitModel::sourcesChanged, m_front, [this] { m_front->showSources(m_unit.sources()); });
    connect(&m_unit, &UnitModel::stationChanged, m_radio, &RadioPanel::showStation);
}

void SupervisorWindow::say(const QStringList& words)
{
    const ParsedWords parsed = parseWords(words);
    const bool sent = parsed.ok() && m_link.send(parsed.action.packet, m_by);
    if (isRunningValue(words))
        return;
    if (!sent) {
        warn(parsed.ok() ? tr("no link, not sent: %1").arg(joinLine(words)) : parsed.error);
        return;
    }
    note(joinLine(words));
    if (!parsed.remark.isEmpty())
        warn(parsed.remark);
    else if (m_by == PanelLink::By::User)
        m_bar->showRemark({});
    m_link.askMode();
}

/** A panel that has just been started, or restarted, knows nothing of the unit yet. */
void SupervisorWindow::announceUnit()
{
    m_bar->showRemark({});
    m_unit.announce();
    m_link.askMode();
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
    m_bar->showLink(LinkBar::State::Up, tr("Connected to %1").arg(m_link.address()));
}

void SupervisorWindow::showDown(const QString& reason, int pauseMs)
{
    m_bar->showMode({});
    m_bar->showLink(LinkBar::State::Down,
                    tr("No link to %1 (%2); next attempt in %3 s")
                        .arg(m_link.address(), reason, QLocale().toString(pauseMs / 1000.0, 'g', 2)));
}

void SupervisorWindow::showMode(quint8 code)
{
    showUp();
    m_bar->showMode(modeName(code));
    const QScopedValueRollback<PanelLink::By> itself(m_by, PanelLink::By::Itself);
    m_unit.followMode(modeName(code), !m_link.isAsking());
}

void SupervisorWindow::showLateAnswer()
{
    m_bar->showLink(LinkBar::State::Waiting, tr("Waiting for the panel at %1").arg(m_link.address()));
}

void SupervisorWindow::showReplaced(bool surely)
{
    const QString text = surely
        ? tr("Another program has the link to %1; the next key takes it back")
        : tr("No answer, maybe another program has the link to %1; the next key takes it back");
    m_bar->showMode({});
    m_bar->showLink(LinkBar::State::Replaced, text.arg(m_link.address()));
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

void SupervisorWindow::warn(const QString& text)
{
    note(QStringLiteral("# ") + text);
    m_bar->showRemark(text);
}
