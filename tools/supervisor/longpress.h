#pragma once

#include <QTimer>

/**
 * Tells a short press of a key from a long one: short at the release, long as soon as the key has been held
 * for holdMs. A press that is given up in between is neither.
 */
class LongPress : public QObject {
    Q_OBJECT

public:
    static constexpr int holdMs = 800;

    explicit LongPress(QObject* parent = nullptr);

    void press();
    /** The key is up, or the pointer has left it. */
    void letGo();
    /** The key was let go where it was pressed: a short press, unless it was a long one. */
    void finish();

signals:
    void pressedShort();
    void pressedLong();

private:
    void onHeld();

    QTimer m_hold;
    bool m_pending = false;
};
