#pragma once

#include <QList>
#include <QObject>

#include <vector>

class QWidget;

/**
 * Takes over the timers of a panel, so that the time that passes for it does not depend on how busy the
 * machine is: its animations, tickers and delays stand still until advance() says that time has passed.
 */
class PanelClock : public QObject {
    Q_OBJECT

public:
    explicit PanelClock(QWidget& panel);
    ~PanelClock() override;

    /** Lets `milliseconds` pass and fires, in the order in which they are due, the timers that end by then.
     */
    void advance(int milliseconds);

    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Timer {
        QObject* owner;
        int number; ///< the owner's name for it
        int interval;
        qint64 due;
    };

    QList<QObject*> owners() const;
    void findTimers();
    Timer* nextDue();
    void fire(Timer& timer);

    QWidget& m_panel;
    qint64 m_now = 0;
    std::vector<Timer> m_timers;
    bool m_firing = false;
};
