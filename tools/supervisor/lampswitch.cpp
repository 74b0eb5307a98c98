#include "tools/supervisor/lampswitch.h"

#include "tools/supervisor/look.h"

#include <QPainter>

namespace {

constexpr int margin = 4;

} // namespace

LampSwitch::LampSwitch(const QString& caption, QWidget* parent)
    : QCheckBox(caption, parent)
{
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

int LampSwitch::lampSide() const
{
    return fontMetrics().height() + margin;
}

QSize LampSwitch::sizeHint() const
{
    const QSize text = fontMetrics().size(Qt::TextShowMnemonic, this->text());
    return {lampSide() + text.width() + 4 * margin, lampSide() + margin};
}

void LampSwitch::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (hasFocus())
        Look::paintFocus(painter, rect(), 5);
    const int side = lampSide();
    Look::paintLamp(painter, QRectF(margin, (height() - side) / 2.0, side, side), Look::lit, isChecked());
    painter.setPen(QColor(isChecked() || underMouse() ? Look::caption : Look::quiet));
    painter.drawText(rect().adjusted(side + 2 * margin, 0, 0, 0),
                     Qt::AlignVCenter | Qt::AlignLeft | Qt::TextShowMnemonic, text());
}
