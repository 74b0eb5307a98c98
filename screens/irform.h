#pragma once

#include <QWidget>

#include <memory>

namespace Ui {
class IRForm;
}

/**
 * The playing screen of the internet radio: title and address of the current station, each in a ticker, play
 * state and level meter.
 */
class IRForm : public QWidget {
    Q_OBJECT

public:
    explicit IRForm(QWidget* parent = nullptr);
    ~IRForm() override;

    /** Shows the station that the file at `path` names; what the file does not say stays as it was. */
    void RadioInfoFromXML(QString path);

public slots:
    void showIRInfo(QString title, QString url);
    void showPlay();
    void showStop();
    /** Lights that many segments of the meter; above 8 it keeps its look. */
    void showLevel(unsigned char level);
    void initLevel();

private:
    void InitFont();

    std::unique_ptr<Ui::IRForm> ui;
};
