#pragma once

#include "tools/supervisor/heldkey.h"
#include "tools/supervisor/longpress.h"

#include <QPushButton>

/**
 * A key of the front panel: a push button that knows a long press, by mouse, by space bar and by Alt with its
 * letter. However long it is held, it is pressed once.
 */
class KeyButton : public QPushButton {
    Q_OBJECT

public:
    /** `key` is the key's word, such as "play-pause". */
    KeyButton(const QString& key, const QString& caption, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void keyPressed(const QString& key, bool isLong);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void pressByLetter();
    void endKey();
    void say(bool isLong);
    void paintCap(QPainter& painter) const;
    void paintFace(QPainter& painter) const;

    QString m_key;
    LongPress m_press;
    HeldKey m_held;
    bool m_wasLong = false; // the press that lasts has been a long one
};
