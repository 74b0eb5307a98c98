#pragma once

#include "tools/supervisor/heldkey.h"
#include "tools/supervisor/longpress.h"

#include <QWidget>

/**
 * The front panel's rotary encoder. It is turned by the wheel, by dragging round its middle and by the arrow
 * keys; it is pressed by a click, by Enter or by the space bar, held for a long press.
 */
class EncoderKnob : public QWidget {
    Q_OBJECT

public:
    static constexpr int stepsPerTurn = 24;

    explicit EncoderKnob(QWidget* parent = nullptr);

    QSize sizeHint() const override { return {160, 160}; }
    QSize minimumSizeHint() const override { return {96, 96}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return width; }

signals:
    /** Steps to the right; negative ones to the left. */
    void turned(int steps);
    void pressedShort();
    void pressedLong();

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void turn(int steps);
    void pressDown();
    void pressByKey(int key);
    void pressEnd(bool counts);
    double angleOf(const QPoint& position) const;
    QRectF face() const;
    void paintNotches(QPainter& painter, double radius) const;
    void paintSkirt(QPainter& painter, double radius) const;
    void paintCap(QPainter& painter, double radius) const;

    LongPress m_press;
    HeldKey m_held;
    int m_step = 0; // the detent that the mark stands on
    int m_wheel = 0; // eighths of a degree not yet turned
    double m_dragAngle = 0; // degrees, where the last step of a drag was made
    QPoint m_pressedAt;
    bool m_down = false;
    bool m_dragging = false;
};
