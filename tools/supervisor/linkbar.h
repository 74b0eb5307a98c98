#pragma once

#include <QWidget>

class QLabel;
class ShortText;

/**
 * The foot of the window: whether the panel listens, in which mode it is, a button to connect, and above them
 * what could not be done as it was wanted.
 */
class LinkBar : public QWidget {
    Q_OBJECT

public:
    enum class State { Up, Waiting, Replaced, Down };

    explicit LinkBar(QWidget* parent = nullptr);

    void showLink(State state, const QString& text);
    /** Empty: the mode is not known. */
    void showMode(const QString& mode);
    /** Empty: all was done. */
    void showRemark(const QString& text);

signals:
    void connectWanted();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int lampSide() const;

    State m_state = State::Waiting;
    ShortText* m_link;
    QLabel* m_mode;
    ShortText* m_remark;
};
