#pragma once

#include <QTimer>

class QKeyEvent;

/**
 * The key of the keyboard that holds a control down. Its release counts once no press of it has followed for
 * settleMs: a key that repeats is let go and pressed all the time, and not every such release is marked so.
 */
class HeldKey : public QObject {
    Q_OBJECT

public:
    static constexpr int settleMs = 40;

    explicit HeldKey(QObject* parent = nullptr);

    /** `key` is a Qt::Key. */
    void press(int key);
    /** Whether a press of `key` is no new one, but the key is held on. */
    bool goesOn(int key);
    /** Whether this is a release of the key held. */
    bool release(const QKeyEvent& event);
    /** Given up: its release is no longer waited for. */
    void drop();
    bool isHeld() const { return m_key != 0; }

signals:
    void letGo();

private:
    void onSettled();

    QTimer m_settle;
    int m_key = 0;
};
