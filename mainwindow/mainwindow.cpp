#include "mainwindow/mainwindow.h"

#include "app/dprintf.h"
#include "link/tcp_server.h"
#include "mainwindow/moderows.h"
#include "screens/panelfont.h"
#include "tags/qmp3parser.h"
#include "tags/qtagparser.h"
#include "ui_mainwindow.h"

namespace {

constexpr int upgradeTextPoints = 14;

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , ui(new Ui::MainWindow)
{
    createLink();
    createForm();
    createParsers();
    ui->lb_sysup_msg->setFont(panelFont(upgradeTextPoints));
    hideAllButLogo();
    CreateStatemachine();
    connectLink();
    connectPlayer();
    connectTagsAndUpgrade();
}

MainWindow::~MainWindow()
{
    delete m_parser;
    delete m_server;
    delete ui;
}

void MainWindow::createLink()
{
    m_server = new tcp_server(this);
    m_server->operateServer();
}

void MainWindow::createForm()
{
    ui->setupUi(this);
    setWindowFlags(Qt::FramelessWindowHint);
}

void MainWindow::createParsers()
{
    m_parser = new PAparser(this);
    m_mp3Parser = new QMP3Parser(this);
    m_tagParser = new QTagParser(this);
}

void MainWindow::hideAllButLogo()
{
    setOverlayVisible(false);
    for (const ModeState mode : modesWithScreens())
        modeRow(mode).screen(*ui)->hide();
}

void MainWindow::connectLink()
{
    connect(m_server, &tcp_server::sgRxOK, this, &MainWindow::stackBuff);
    connect(this, &MainWindow::sgBuffStacked, this, &MainWindow::parsingfromSupervisor);
    connect(m_parser, &PAparser::sgMenuRequest, this, &MainWindow::ResponseCurrentMode);
}

/** The player follows keys, disk and play mode also while another screen shows. */
void MainWindow::connectPlayer()
{
    mp3_lcd* player = ui->wg_USB;
    connect(m_parser, &PAparser::sgKEY_PLAY, player, &mp3_lcd::play_action);
    connect(m_parser, &PAparser::sgKEY_PAUSE, player, &mp3_lcd::pause_action);
    connect(m_parser, &PAparser::sgKEY_PLAY_PAUSE, player, &mp3_lcd::PlayPause_action);
    connect(m_parser, &PAparser::sgKEY_STOP, player, &mp3_lcd::stop_action);
    connect(m_parser, &PAparser::sgDiskStatNormal, player, &mp3_lcd::showDiskNormal);
    connect(m_parser, &PAparser::sgDiskRemoved, player, &mp3_lcd::showDiskRemoved);
    connect(m_parser, &PAparser::sgDiskInfo, player, &mp3_lcd::showDiskInfo);
    connect(m_parser, &PAparser::sgDEVICE_USB_STREAM_Enter, player, &mp3_lcd::showUSBStreamEntered);
    connect(m_parser, &PAparser::sgDEVICE_USB_STREAM_Exit, player, &mp3_lcd::showUSBStreamExited);
    connect(m_parser, &PAparser::sgMode_All, player, &mp3_lcd::showAll);
    connect(m_parser, &PAparser::sgMode_Folder, player, &mp3_lcd::showFolder);
    connect(m_parser, &PAparser::sgMode_One, player, &mp3_lcd::showOne);
    connect(m_parser, &PAparser::sgMode_rpt_All, player, &mp3_lcd::showRptAll);
    connect(m_parser, &PAparser::sgMode_rpt_Folder, player, &mp3_lcd::showRptFolder);
    connect(m_parser, &PAparser::sgMode_rpt_One, player, &mp3_lcd::showRptOne);
    connect(m_parser, &PAparser::sgMode_shuffle, player, &mp3_lcd::showShuffle);
    connect(m_parser, &PAparser::sgMode_off_Shuffle, player, &mp3_lcd::showOffShuffle);
}

void MainWindow::connectTagsAndUpgrade()
{
    connect(m_parser, &PAparser::sgFileName, m_tagParser, &QTagParser::setFile);
    connect(m_tagParser, &QTagParser::sgTagInfoUpdated, ui->wg_USB, &mp3_lcd::ShowTagInfo);
    connect(m_parser, &PAparser::sgUpgradeStart, this, &MainWindow::UpgradeStart);
    connect(m_parser, &PAparser::sgUpgradeFail, this, &MainWindow::UpgradeFail);
    connect(m_parser, &PAparser::sgUpgradeMSG, this, &MainWindow::SetUpgradeMSG);
}

void MainWindow::setIRUrl(QString url)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_irUrl = url;
}

void MainWindow::setIRTitle(QString title)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_irTitle = title;
}
