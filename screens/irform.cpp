#include "screens/irform.h"

#include "app/dprintf.h"
#include "config/configfile.h"
#include "screens/levelmeter.h"
#include "screens/panelfont.h"
#include "screens/playicon.h"
#include "ui_irform.h"

namespace {

constexpr int textPoints = 12;

}

IRForm::IRForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::IRForm>())
{
    ui->setupUi(this);
    InitFont();
    initLevel();
}

IRForm::~IRForm() = default;

void IRForm::InitFont()
{
    const QFont font = panelFont(textPoints);
    ui->lb_IR_Title->setFont(font);
    ui->lb_IR_Url->setFont(font);
}

void IRForm::RadioInfoFromXML(QString path)
{
    ConfigReader reader(path);
    if (!reader.isOpen()) {
        DPRINTF(4, "XML [%s]", reader.errorString().toUtf8().constData());
        return;
    }
    const QString name = QStringLiteral("name");
    reader.readFlat({{QStringLiteral("url"), name}, QStringLiteral("entry")},
                    [this, &name](const QString& element, const QString& text) {
                        if (text.isEmpty())
                            return Flat::More;
                        const bool isName = element == name;
                        (isName ? ui->lb_IR_Title : ui->lb_IR_Url)->setText(text, true);
                        return isName ? Flat::Done : Flat::More;
                    });
}

void IRForm::showIRInfo(QString title, QString url)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lb_IR_Title->setText(title, true);
    ui->lb_IR_Url->setText(url, true);
}

void IRForm::showPlay()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Play));
}

void IRForm::showStop()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    ui->lbI_PlayState->setPixmap(playIcon(PlayIcon::Stop));
}

void IRForm::showLevel(unsigned char level)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (level == 0)
        initLevel();
    else
        LevelMeter(*ui).light(level);
}

void IRForm::initLevel()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    LevelMeter(*ui).clear();
}
