#include "tools/supervisor/noticepanels.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

/** A button that says two words. */
struct Notice {
    const char* caption;
    const char* word;
    const char* value;
};

constexpr Notice aoeNotices[] = {
    {QT_TRANSLATE_NOOP("AoePanel", "P&laying"), "aoe", "ok"},
    {QT_TRANSLATE_NOOP("AoePanel", "St&opped"), "aoe", "stop"},
    {QT_TRANSLATE_NOOP("AoePanel", "Connection &failed"), "aoe", "fail"},
    {QT_TRANSLATE_NOOP("AoePanel", "Rate too hi&gh"), "aoe", "over"},
};
constexpr Notice upgradeNotices[] = {
    {QT_TRANSLATE_NOOP("SystemPanel", "Up&grade starts"), "upgrade", "start"},
    {QT_TRANSLATE_NOOP("SystemPanel", "Upgrade &fails"), "upgrade", "fail"},
};
constexpr Notice networkNotices[] = {
    {QT_TRANSLATE_NOOP("SystemPanel", "Networ&k has its DHCP address"), "dhcp", "done"},
};

template <typename Panel, std::size_t N>
void addButtons(Panel* panel, QLayout* layout, const Notice (&notices)[N])
{
    for (const Notice& notice : notices) {
        const QStringList words{QString::fromLatin1(notice.word), QString::fromLatin1(notice.value)};
        auto* button = new QPushButton(Panel::tr(notice.caption));
        button->setObjectName(words.join(QLatin1Char(' ')));
        QObject::connect(button, &QPushButton::clicked, panel, [panel, words] { emit panel->said(words); });
        layout->addWidget(button);
    }
}

} // namespace

RadioPanel::RadioPanel(QWidget* parent)
    : QWidget(parent)
{
    m_title = new QLineEdit(tr("Lantern Street Jazz"));
    m_title->setObjectName(QStringLiteral("title"));
    m_url = new QLineEdit(QStringLiteral("http://radio.example/lantern"));
    m_url->setObjectName(QStringLiteral("url"));
    auto* announceButton = new QPushButton(tr("Ann&ounce"));
    announceButton->setObjectName(QStringLiteral("announce"));
    auto* layout = new QFormLayout(this);
    layout->addRow(tr("Tit&le:"), m_title);
    layout->addRow(tr("Add&ress (URL):"), m_url);
    layout->addRow(QString(), announceButton);
    connect(announceButton, &QPushButton::clicked, this, &RadioPanel::announce);
    connect(m_title, &QLineEdit::returnPressed, this, &RadioPanel::announce);
    connect(m_url, &QLineEdit::returnPressed, this, &RadioPanel::announce);
}

void RadioPanel::announce()
{
    emit announced({m_title->text(), m_url->text()});
}

void RadioPanel::showStation(const Station& station)
{
    m_title->setText(station.name);
    m_url->setText(station.url);
}

AoePanel::AoePanel(QWidget* parent)
    : QWidget(parent)
{
    auto* layout = new QVBoxLayout(this);
    addButtons(this, layout, aoeNotices);
    layout->addStretch();
}

SystemPanel::SystemPanel(QWidget* parent)
    : QWidget(parent)
{
    auto* upgrade = new QGroupBox(tr("Firmware upgrade"));
    auto* steps = new QHBoxLayout;
    addButtons(this, steps, upgradeNotices);
    m_message = new QLineEdit(tr("Writing image 1 of 2"));
    m_message->setObjectName(QStringLiteral("message"));
    auto* send = new QPushButton(tr("Sh&ow"));
    send->setObjectName(QStringLiteral("upgrade-message"));
    auto* messageRow = new QHBoxLayout;
    messageRow->addWidget(m_message);
    messageRow->addWidget(send);
    auto* form = new QFormLayout(upgrade);
    form->addRow(steps);
    auto* caption = new QLabel(tr("Message for the sc&reen:"));
    caption->setBuddy(m_message);
    form->addRow(caption, messageRow);
    auto* network = new QGroupBox(tr("Network"));
    addButtons(this, new QVBoxLayout(network), networkNotices);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(upgrade);
    layout->addWidget(network);
    layout->addStretch();
    connect(send, &QPushButton::clicked, this, &SystemPanel::sayMessage);
    connect(m_message, &QLineEdit::returnPressed, this, &SystemPanel::sayMessage);
}

void SystemPanel::sayMessage()
{
    emit said({QStringLiteral("upgrade-message"), m_message->text()});
}
