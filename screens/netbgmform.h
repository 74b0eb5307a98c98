#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class NetbgmForm;
}

/** The screen of network background music: a fixed notice over whatever lies below it. */
class NetbgmForm : public QWidget {
    Q_OBJECT

public:
    explicit NetbgmForm(QWidget* parent = nullptr);
    ~NetbgmForm() override;

private:
    std::unique_ptr<Ui::NetbgmForm> ui;
};
