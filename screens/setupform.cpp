#include "screens/setupform.h"

#include "app/dprintf.h"
#include "app/limits.h"
#include "config/configfile.h"
#include "config/livenetwork.h"
#include "config/unitpaths.h"
#include "screens/panelfont.h"
#include "ui_setupform.h"

#include <QRegularExpression>
#include <QTimer>

#include <iterator>

namespace {

constexpr int reloadMs = 3000;
constexpr int applyDelayMs = 100;
constexpr int textPointSize = 12;
constexpr int headingPointSize = 16;
constexpr int gatewayColumn = 1;

/** Where the text of each element goes. */
struct Value {
    QLatin1String element;
    QString NETWORKXML::*field;
    PlainLabel* Ui::SetupForm::*label;
};
constexpr Value values[] = {
    {QLatin1String("hwaddr"), &NETWORKXML::hwaddr, &Ui::SetupForm::lb_MacAddr},
    {QLatin1String("dhcp"), &NETWORKXML::dhcp, &Ui::SetupForm::lb_dhcp},
    {QLatin1String("ip"), &NETWORKXML::ip, &Ui::SetupForm::lb_IPAddr},
    {QLatin1String("netmask"), &NETWORKXML::netmask, &Ui::SetupForm::lb_netmask},
    {QLatin1String("gateway"), &NETWORKXML::gateway, &Ui::SetupForm::lb_gateway},
    {QLatin1String("dns1"), &NETWORKXML::dns1, &Ui::SetupForm::lb_dns1},
    {QLatin1String("dns2"), &NETWORKXML::dns2, &Ui::SetupForm::lb_dns2},
};
static_assert(std::size(values) == 7, "one row an element with a label");

/** Every label in the panel's text font: the captions, then the values. */
constexpr PlainLabel* Ui::SetupForm::*textLabels[] = {
    &Ui::SetupForm::lb_MacAddr_2, &Ui::SetupForm::lb_dhcp_2,    &Ui::SetupForm::lb_IPAddr_2,
    &Ui::SetupForm::lb_gateway_2, &Ui::SetupForm::lb_netmask_2, &Ui::SetupForm::lb_dns1_2,
    &Ui::SetupForm::lb_dns2_2,    &Ui::SetupForm::lb_version_2, &Ui::SetupForm::lb_MacAddr,
    &Ui::SetupForm::lb_dhcp,      &Ui::SetupForm::lb_IPAddr,    &Ui::SetupForm::lb_gateway,
    &Ui::SetupForm::lb_netmask,   &Ui::SetupForm::lb_dns1,      &Ui::SetupForm::lb_dns2,
    &Ui::SetupForm::lb_version,
};
static_assert(std::size(textLabels) == 16, "eight captions and eight values");

/** The values that are logged once at start, in this order. */
struct Announced {
    const char* name;
    PlainLabel* Ui::SetupForm::*label;
};
constexpr Announced announced[] = {
    {"IP ADDRESS", &Ui::SetupForm::lb_IPAddr}, {"NetMask", &Ui::SetupForm::lb_netmask},
    {"DNS1", &Ui::SetupForm::lb_dns1},         {"DNS2", &Ui::SetupForm::lb_dns2},
    {"GateWay", &Ui::SetupForm::lb_gateway},
};

FlatPattern networkPattern()
{
    FlatPattern pattern;
    pattern.names << QStringLiteral("hostname");
    for (const Value& row : values)
        pattern.names << row.element;
    return pattern;
}

void logUnopened(const ConfigReader& reader)
{
    if (!reader.isOpen())
        DPRINTF(4, "XML [%s]", reader.errorString().toUtf8().constData());
}

/** The columns of one line of the routing table. */
QStringList columns(const QByteArray& route)
{
    return QString::fromLatin1(route).split(QRegularExpression(QStringLiteral("\\s")), Qt::SkipEmptyParts);
}

} // namespace

SetupForm::SetupForm(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::SetupForm>())
    , m_routeWaitMs(limits::routeMs)
{
    ui->setupUi(this);
    ui->lb_dhcp_yes->hide();
    ui->lb_dhcp_no->hide();
    InitFont();
    InitXML(unitPath(UnitPath::Network));
    ui->lb_version->setText(GetVersion());
    m_timer = new QTimer(this);
    connect(m_timer, &QTimer::timeout, this, &SetupForm::XMLParse);
}

SetupForm::~SetupForm() = default;

void SetupForm::InitFont()
{
    for (const auto label : textLabels)
        (ui.get()->*label)->setFont(panelFont(textPointSize));
    QFont heading = panelFont(headingPointSize);
    heading.setWeight(QFont::Black);
    ui->lb_Info->setFont(heading);
}

void SetupForm::InitWidget()
{
    ui->lbl_background_alpha->hide();
    ui->lbLoading->hide();
}

void SetupForm::ReloadPage()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    InitWidget();
    XMLParse();
}

void SetupForm::TimerStart()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    XMLParse();
    m_timer->start(reloadMs);
}

void SetupForm::StopTimer()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    m_timer->stop();
}

void SetupForm::XMLParse()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    NetInfoFromXML(unitPath(UnitPath::Network));
}

void SetupForm::InitXML(QString path)
{
    ConfigReader reader(path);
    logUnopened(reader);
    reader.readFlat(networkPattern(), [this](const QString& name, const QString& text) {
        takeElement(name, text);
        return name == QLatin1String("dns2") && !text.isEmpty() ? Flat::Done : Flat::More;
    });
    for (const Announced& row : announced)
        DPRINTF(2, "%s [ %s ]", row.name, (ui.get()->*row.label)->text().toUtf8().constData());
}

void SetupForm::NetInfoFromXML(QString path)
{
    ConfigReader reader(path);
    logUnopened(reader);
    reader.readFlat(networkPattern(), [this](const QString& name, const QString& text) {
        takeElement(name, text);
        if (name == QLatin1String("dhcp") && !text.isEmpty()) {
            m_choice = text == QLatin1String("yes");
            if (m_choice) {
                showLiveValues();
                return Flat::Done;
            }
        }
        return name == QLatin1String("dns2") && !text.isEmpty() ? Flat::Done : Flat::More;
    });
}

/** An empty text changes nothing. */
void SetupForm::takeElement(const QString& name, const QString& text)
{
    if (text.isEmpty())
        return;
    if (name == QLatin1String("hostname"))
        m_hostname = text;
    for (const Value& row : values) {
        if (name != row.element)
            continue;
        m_network.*row.field = text;
        (ui.get()->*row.label)->setText(text);
    }
}

void SetupForm::showLiveValues()
{
    showLiveAddress();
    showLiveNameServers();
    showLiveGateway();
}

void SetupForm::showLiveAddress()
{
    const auto address = liveAddress();
    ui->lb_IPAddr->setText(address ? address->ip().toString() : tr("not found IP"));
    ui->lb_netmask->setText(address ? address->netmask().toString() : tr("not found NetMask"));
}

void SetupForm::showLiveNameServers()
{
    QString error;
    const QStringList servers = liveNameServers(error);
    if (!error.isEmpty())
        DPRINTF(4, "resolv Error [ %s ] ", error.toUtf8().constData());
    ui->lb_dns1->setText(servers.value(0, tr("not found DNS1")));
    ui->lb_dns2->setText(servers.value(1, tr("not found DNS2")));
}

void SetupForm::showLiveGateway()
{
    const QByteArray route = lastRoute(m_routeWaitMs);
    const QStringList pieces = columns(route);
    if (route.isEmpty())
        DPRINTF(4, "not found gateway , route -n");
    else if (pieces.size() <= gatewayColumn)
        DPRINTF(4, "not found gateway , size error");
    ui->lb_gateway->setText(pieces.value(gatewayColumn, tr("not found gateway")));
}

QString SetupForm::GetVersion()
{
    ConfigReader reader(unitPath(UnitPath::Version));
    if (!reader.isOpen()) {
        DPRINTF(4, "Version XML [%s]", reader.errorString().toUtf8().constData());
        return tr("not found Version");
    }
    FlatPattern pattern;
    pattern.names << QStringLiteral("value");
    QString version;
    reader.readFlat(pattern, [&version](const QString&, const QString& text) {
        if (text.isEmpty())
            return Flat::More;
        version = text;
        return Flat::Done;
    });
    return version;
}

void SetupForm::showChoice(bool yes)
{
    ui->lb_dhcp_yes->setVisible(yes);
    ui->lb_dhcp_no->setVisible(!yes);
}

void SetupForm::prev_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (m_choice)
        return;
    showChoice(true);
    m_choice = true;
}

void SetupForm::next_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!m_choice)
        return;
    showChoice(false);
    m_choice = false;
}

void SetupForm::select_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (m_editing)
        closeChoice();
    else
        openChoice();
}

void SetupForm::openChoice()
{
    emit sgDhcpOpen();
    m_editing = true;
    m_savedChoice = m_choice;
    choiceImage()->show();
}

void SetupForm::closeChoice()
{
    m_editing = false;
    choiceImage()->hide();
    if (m_choice != m_savedChoice) {
        ui->lbl_background_alpha->show();
        ui->lbLoading->show();
        XMLwriteInfo();
        QTimer::singleShot(applyDelayMs, this, &SetupForm::ChangeDHCP);
    }
    emit sgDhcpClose();
}

QLabel* SetupForm::choiceImage() const
{
    return m_choice ? ui->lb_dhcp_yes : ui->lb_dhcp_no;
}

void SetupForm::ChangeDHCP()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    emit sgLoadingMode();
}

void SetupForm::esc_action()
{
    DPRINTF(0, "%s", Q_FUNC_INFO);
    if (!m_editing)
        return;
    m_choice = m_savedChoice;
    m_editing = false;
    ui->lb_dhcp_yes->hide();
    ui->lb_dhcp_no->hide();
    emit sgDhcpClose();
}

void SetupForm::XMLwriteInfo()
{
    m_network.dhcp = m_choice ? QStringLiteral("yes") : QStringLiteral("no");
    writeConfig(unitPath(UnitPath::Network),
                {
                    {QStringLiteral("hwaddr"), m_network.hwaddr},
                    {QStringLiteral("hostname"), m_hostname},
                    {QStringLiteral("dhcp"), m_network.dhcp},
                    {QStringLiteral("ip"), m_network.ip},
                    {QStringLiteral("netmask"), m_network.netmask},
                    {QStringLiteral("gateway"), m_network.gateway},
                    {QStringLiteral("dns1"), m_network.dns1},
                    {QStringLiteral("dns2"), m_network.dns2},
                });
}
