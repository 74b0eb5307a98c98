#include "tools/supervisor/linkbar.h"

#include "tools/supervisor/look.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace {

constexpr int margin = 6;

/** In the order of LinkBar::State. */
constexpr QRgb colours[] = {Look::lit, Look::warning, Look::warning, Look::failure};

QLabel* label(const char* name, const QString& accessibleName, QRgb colour)
{
    auto* result = new QLabel;
    result->setObjectName(QString::fromLatin1(name));
    result->setAccessibleName(accessibleName);
    result->setTextFormat(Qt::PlainText);
    QPalette palette = result->palette();
    palette.setColor(QPalette::WindowText, QColor(colour));
    result->setPalette(palette);
    return result;
}

/** Takes the width that is left, in as many lines as that needs. */
void wrap(QLabel* label)
{
    label->setWordWrap(true);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

} // namespace

LinkBar::LinkBar(QWidget* parent)
    : QWidget(parent)
{
    m_link = label("link", tr("Link to the panel"), Look::quiet);
    wrap(m_link);
    m_mode = label("mode", tr("The panel's mode"), Look::lit);
    m_remark = label("remark", tr("What could not be done"), Look::warning);
    wrap(m_remark);
    m_remark->hide();
    auto* connectButton = new QPushButton(tr("Connect no&w"));
    connectButton->setObjectName(QStringLiteral("connect"));
    connectButton->setMinimumWidth(connectButton->sizeHint().width() + 2 * margin);
    connect(connectButton, &QPushButton::clicked, this, &LinkBar::connectWanted);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(lampSide() + 2 * margin, margin / 2, margin, margin / 2);
    layout->setColumnStretch(0, 1);
    layout->addWidget(m_remark, 0, 0, 1, -1);
    layout->addWidget(m_link, 1, 0);
    layout->addWidget(m_mode, 1, 1);
    layout->addWidget(connectButton, 1, 2);
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

void LinkBar::showRemark(const QString& text)
{
    m_remark->setText(text);
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
