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
    , m_form(std::make_unique<Ui::IRForm>())
{
    m_form->setupUi(this);
    InitFont();
    initLevel();
}

IRForm::~IRForm() = default;

void IRForm::InitFont()
{
    const QFont font = panelFont(textPoints);
    m_form->lb_IR_Title->setFont(font);
    m_form->lb_IR_Url->setFont(font);
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
                        (isName ? m_form->lb_IR_Title : m_form->lb_IR_Url)->setText(text, true);
                        return isName ? Flat::Done : Flat::More;
                    });
}

void IRForm::showIRInfo(QString title, QString url)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_form->lb_IR_Title->setText(title, true);
    m_form->lb_IR_Url->setText(url, true);
}

void IRForm::showPlay()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_form->lbI_PlayState->setPixmap(playIcon(PlayIcon::Play));
}

void IRForm::showStop()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_form->lbI_PlayState->setPixmap(playIcon(PlayIcon::Stop));
}

void IRForm::showLevel(unsigned char level)
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (level == 0)
        initLevel();
    else
        LevelMeter(*m_form).light(level);
}

void IRForm::initLevel()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    LevelMeter(*m_form).clear();
}
