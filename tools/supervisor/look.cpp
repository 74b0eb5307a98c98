#include "tools/supervisor/look.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>
#include <QStyleFactory>

namespace {

struct Role {
    QPalette::ColorRole role;
    QRgb colour;
};

constexpr QRgb faint = 0xFF7A8388;

constexpr Role roles[] = {
    {QPalette::Window, Look::ground},
    {QPalette::WindowText, Look::quiet},
    {QPalette::Base, Look::unlit},
    {QPalette::AlternateBase, Look::sunk},
    {QPalette::Text, Look::caption},
    {QPalette::PlaceholderText, faint},
    {QPalette::Button, Look::raised},
    {QPalette::ButtonText, Look::caption},
    {QPalette::BrightText, Look::failure},
    {QPalette::Highlight, Look::lit},
    {QPalette::HighlightedText, Look::ground},
    {QPalette::Link, Look::lit},
    {QPalette::ToolTipBase, Look::raised},
    {QPalette::ToolTipText, Look::caption},
    {QPalette::Light, Look::edge},
    {QPalette::Midlight, Look::raised},
    {QPalette::Mid, Look::unlit},
    {QPalette::Dark, Look::ground},
    {QPalette::Shadow, Look::ground},
};

constexpr QPalette::ColorRole texts[] = {QPalette::WindowText, QPalette::Text, QPalette::ButtonText};

} // namespace

void Look::dress(QApplication& application)
{
    QPalette palette;
    for (const Role& role : roles)
        palette.setColor(role.role, QColor(role.colour));
    for (const QPalette::ColorRole text : texts)
        palette.setColor(QPalette::Disabled, text, QColor(faint));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    Q_UNUSED(application) // there must be one
    QApplication::setPalette(palette);
}

void Look::paintFocus(QPainter& painter, const QRectF& around, double radius)
{
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(lit), 2));
    painter.drawRoundedRect(around.adjusted(1, 1, -1, -1), radius, radius);
}

void Look::paintLamp(QPainter& painter, const QRectF& square, QRgb colour, bool isLit)
{
    const QPointF middle = square.center();
    const double radius = square.width() / 2;
    painter.setPen(Qt::NoPen);
    if (isLit) {
        QRadialGradient halo(middle, radius);
        QColor glow(colour);
        glow.setAlpha(130);
        halo.setColorAt(0.3, glow);
        halo.setColorAt(1, Qt::transparent);
        painter.setBrush(halo);
        painter.drawEllipse(middle, radius, radius);
    }
    painter.setBrush(QColor(ground));
    painter.drawEllipse(middle, radius * 0.62, radius * 0.62);
    QRadialGradient glass(middle - QPointF(0, radius * 0.15), radius * 0.6);
    glass.setColorAt(0, isLit ? QColor(colour).lighter(125) : QColor(edge));
    glass.setColorAt(1, isLit ? QColor(colour) : QColor(unlit));
    painter.setBrush(glass);
    painter.drawEllipse(middle, radius * 0.48, radius * 0.48);
}
