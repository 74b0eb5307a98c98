#pragma once

#include <QWidget>

class QLabel;

/** The foot of the window: whether the panel listens, in which mode it is, and a button to connect. */
class LinkBar : public QWidget {
    Q_OBJECT

public:
    enum class State { Up, Waiting, Replaced, Down };

    explicit LinkBar(QWidget* parent = nullptr);

    void showLink(State state, const QString& text);
    /** Empty: the mode is not known. */
    void showMode(const QString& mode);

signals:
    void connectWanted();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int lampSide() const;

    State m_state = State::Waiting;
    QLabel* m_link = nullptr;
    QLabel* m_mode = nullptr;
};
