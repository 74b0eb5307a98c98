#pragma once

#include <QColor>

class QApplication;
class QPainter;
class QRectF;

/** How the window looks: dark like the panel, in the panel's colours. */
namespace Look {

constexpr QRgb ground = 0xFF0E0E0E;
constexpr QRgb plate = 0xFF16191B;
constexpr QRgb raised = 0xFF2B3135; ///< keys, seen from above
constexpr QRgb sunk = 0xFF1A1E21;
constexpr QRgb edge = 0xFF3B4449;
constexpr QRgb unlit = 0xFF24292C;
constexpr QRgb lit = 0xFF92E2FF;
constexpr QRgb warning = 0xFFFFC857;
constexpr QRgb failure = 0xFFFF5D5D;
constexpr QRgb caption = 0xFFD3D8DB;
constexpr QRgb quiet = 0xFFAEAEAE;

/** Gives every widget of the program the dark colours, whatever the desktop's theme is. */
void dress(QApplication& application);

/** The ring round what has the keyboard's focus. */
void paintFocus(QPainter& painter, const QRectF& around, double radius);

/** A round lamp in its bezel, with a halo when it is lit. */
void paintLamp(QPainter& painter, const QRectF& square, QRgb colour, bool isLit);

} // namespace Look
