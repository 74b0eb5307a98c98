#include "tools/supervisor/linkbar.h"

#include "tools/supervisor/look.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace {

constexpr int margin = 6;

/** In the order of LinkBar::State. */
constexpr QRgb colours[] = {Look::lit, Look::warning, Look::warning, Look::failure};

} // namespace

LinkBar::LinkBar(QWidget* parent)
    : QWidget(parent)
{
    m_link = new QLabel;
    m_link->setObjectName(QStringLiteral("link"));
    m_link->setAccessibleName(tr("Link to the panel"));
    m_link->setWordWrap(true);
    m_link->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_mode = new QLabel;
    m_mode->setObjectName(QStringLiteral("mode"));
    m_mode->setAccessibleName(tr("The panel's mode"));
    QPalette bright = m_mode->palette();
    bright.setColor(QPalette::WindowText, QColor(Look::lit));
    m_mode->setPalette(bright);
    auto* connectButton = new QPushButton(tr("Connect no&w"));
    connectButton->setObjectName(QStringLiteral("connect"));
    connect(connectButton, &QPushButton::clicked, this, &LinkBar::connectWanted);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(lampSide() + 2 * margin, margin / 2, margin, margin / 2);
    layout->addWidget(m_link, 1);
    layout->addWidget(m_mode);
    layout->addWidget(connectButton);
}

void LinkBar::showLink(State state, const QString& text)
{
    m_state = state;
    m_link->setText(text);
    update();
}

void LinkBar::showMode(const QString& mode)
{
    m_mode->setText(mode.isEmpty() ? QString() : tr("Mode: %1").arg(mode));
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
    Look::paintLamp(painter, QRectF(margin, (height() - side) / 2.0, side, side), colours[int(m_state)],
                    true);
}
