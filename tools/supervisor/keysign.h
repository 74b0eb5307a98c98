#pragma once

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;

/** Draws the sign that stands on a key of the front panel, by the key's word. */
void paintKeySign(QPainter& painter, const QString& key, const QRectF& square, const QColor& colour);
