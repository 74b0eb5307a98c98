#pragma once

#include "tools/supervisor/longpress.h"

#include <QPushButton>

/** A key of the front panel: a push button that knows a long press, by mouse or by space bar. */
class KeyButton : public QPushButton {
    Q_OBJECT

public:
    /** `key` is the key's word, such as "play-pause". */
    KeyButton(const QString& key, const QString& caption, QWidget* parent = nullptr);

signals:
    void keyPressed(const QString& key, bool isLong);

private:
    QString m_key;
    LongPress m_press;
};
