#pragma once

#include <QCheckBox>

/** A lamp with a name, lit while what it stands for is on; switched by a click or the space bar. */
class LampSwitch : public QCheckBox {
    Q_OBJECT

public:
    explicit LampSwitch(const QString& caption, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }
    void paintEvent(QPaintEvent* event) override;

private:
    int lampSide() const;
};
