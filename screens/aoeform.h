#pragma once

#include <QString>
#include <QWidget>

#include <memory>

namespace Ui {
class AOEForm;
}

/**
 * The audio-over-Ethernet screen: the server's address, the sample rate, play state, level meter, and a
 * pop-up for the troubles that the supervisor reports. Address and rate are read from the files that other
 * processes of the unit keep, each time the stream is said to play.
 */
class AOEForm : public QWidget {
    Q_OBJECT

public:
    explicit AOEForm(QWidget* parent = nullptr);
    ~AOEForm() override;

public slots:
    void showAoeInfo(QString sampleRate, QString ipAddress);
    void showPlay();
    void showStop();
    void showFailMSG();
    void showOVERMSG();
    /** Lights that many segments of the meter; above 8 it keeps its look. */
    void showLevel(unsigned char level);
    void initLevel();
    /** A file that cannot be opened is named in the place of its value, and what comes after it stays as it
     * was. */
    void AoeInfoFromXML();

private:
    void InitFont();
    void popUp(const QString& text);
    bool readSampleRate();
    bool readAddress();

    std::unique_ptr<Ui::AOEForm> ui;
    QString m_ipAddress;
    QString m_sampleRate;
    [[maybe_unused]] int m_spare = 0; // reserved: the kind of the members is fixed
};
