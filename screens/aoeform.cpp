#include "screens/aoeform.h"

#include "app/dprintf.h"
#include "app/limits.h"
#include "app/openfile.h"
#include "app/utf8.h"
#include "config/configfile.h"
#include "config/unitpaths.h"
#include "screens/levelmeter.h"
#include "screens/panelfont.h"
#include "screens/playicon.h"
#include "ui_aoeform.h"

#include <QFile>

namespace {

constexpr int textPoints = 12;

} // namespace

AOEForm::AOEForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::AOEForm>())
{
    ui->setupUi(this);
    LevelMeter(*ui).clear();
    ui->lb_POPUP->hide();
    ui->lbl_background_alpha->hide();
    InitFont();
}

AOEForm::~AOEForm() = default;

void AOEForm::InitFont()
{
    const QFont font = panelFont(textPoints);
    ui->lb_aoe_ip->setFont(font);
    ui->lb_aoe_sample_rate->setFont(font);
    ui->lb_POPUP->setFont(font);
}

void AOEForm::showAoeInfo(QString sampleRate, QString ipAddress)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_POPUP->hide();
    ui->lb_aoe_ip->setText(ipAddress);
    ui->lb_aoe_sample_rate->setText(sampleRate);
}

void AOEForm::showPlay()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbl_background_alpha->hide();
    ui->lb_POPUP->hide();
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Play));
    AoeInfoFromXML();
}

void AOEForm::showStop()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Stop));
}

void AOEForm::showFailMSG()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    popUp(QStringLiteral("Try to connect AOE server."));
}

void AOEForm::showOVERMSG()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    popUp(QStringLiteral("Output only less than 16000Hz"));
}

void AOEForm::popUp(const QString& text)
{
    ui->lb_POPUP->show();
    ui->lbl_background_alpha->show();
    ui->lb_POPUP->setText(text);
}

void AOEForm::showLevel(unsigned char level)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (level == 0)
        initLevel();
    else
        LevelMeter(*ui).light(level);
}

void AOEForm::initLevel()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    LevelMeter(*ui).clear();
}

void AOEForm::AoeInfoFromXML()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!readSampleRate() || !readAddress())
        return;
    ui->lb_aoe_ip->setText(m_ipAddress);
    ui->lb_aoe_sample_rate->setText(m_sampleRate);
}

bool AOEForm::readSampleRate()
{
    QFile file(unitPath(UnitPath::SampleRate));
    const QString error = openToRead(file, QIODevice::ReadOnly | QIODevice::Text);
    if (!error.isEmpty()) {
        DPRINTF(4, "SampleRate [%s]", error.toUtf8().constData());
        ui->lb_aoe_sample_rate->setText(tr("Read SR to failed"));
        return false;
    }
    m_sampleRate = utf8UntilZero(file.readLine(limits::sampleRateBytes));
    return true;
}

bool AOEForm::readAddress()
{
    ConfigReader reader(unitPath(UnitPath::AoeConnection));
    if (!reader.isOpen()) {
        DPRINTF(4, "XML [%s]", reader.errorString().toUtf8().constData());
        ui->lb_aoe_ip->setText(tr("Read XML to failed"));
        return false;
    }
    reader.readFlat({{QStringLiteral("ip_addr")}, QStringLiteral("config")},
                    [this](const QString&, const QString& text) {
                        if (!text.isEmpty())
                            m_ipAddress = text;
                        return Flat::More;
                    });
    return true;
}
