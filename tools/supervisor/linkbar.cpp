#include "tools/supervisor/linkbar.h"

#include "tools/supervisor/look.h"
#include "tools/supervisor/shorttext.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace {

constexpr int margin = 6;
constexpr int linkLines = 3;
constexpr int remarkLines = 2;

/** In the order of LinkBar::State. */
constexpr QRgb colours[] = {Look::lit, Look::warning, Look::warning, Look::failure};

void dress(QLabel* label, const char* name, const QString& accessibleName, QRgb colour)
{
    label->setObjectName(QString::fromLatin1(name));
    label->setAccessibleName(accessibleName);
    label->setTextFormat(Qt::PlainText);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, QColor(colour));
    label->setPalette(palette);
}

} // namespace

LinkBar::LinkBar(QWidget* parent)
    : QWidget(parent)
    , m_link(new ShortText(linkLines))
    , m_mode(new QLabel)
    , m_remark(new ShortText(remarkLines))
{
    dress(m_link, "link", tr("Link to the panel"), Look::quiet);
    dress(m_mode, "mode", tr("The panel's mode"), Look::lit);
    dress(m_remark, "remark", tr("What could not be done"), Look::warning);
    m_remark->hide();
    auto* connectButton = new QPushButton(tr("Connect no&w"));
    connectButton->setObjectName(QStringLiteral("connect"));
    connectButton->setMinimumWidth(connectButton->sizeHint().width() + 2 * margin);
    connect(connectButton, &QPushButton::clicked, this, &LinkBar::connectWanted);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(lampSide() + 2 * margin, margin / 2, margin, margin / 2);
    layout->setVerticalSpacing(margin / 2);
    layout->setColumnStretch(0, 1);
    layout->addWidget(m_remark, 0, 0, 1, -1);
    layout->addWidget(m_link, 1, 0);
    layout->addWidget(m_mode, 1, 1);
    layout->addWidget(connectButton, 1, 2);
}

void LinkBar::showLink(State state, const QString& text)
{
    m_state = state;
    m_link->say(text);
    update();
}

void LinkBar::showMode(const QString& mode)
{
    m_mode->setText(mode.isEmpty() ? QString() : tr("Mode: %1").arg(mode));
}

void LinkBar::showRemark(const QString& text)
{
    m_remark->say(text);
    m_remark->setVisible(!text.isEmpty());
}

int LinkBar::lampSide() const
{
    return fontMetrics().height();
}

void LinkBar::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int side = lampSide();
    const double middle = QRectF(m_link->geometry()).center().y();
    Look::paintLamp(painter, QRectF(margin, middle - side / 2.0, side, side), colours[int(m_state)], true);
}
