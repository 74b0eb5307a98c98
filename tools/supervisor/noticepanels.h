#pragma once

#include "tools/supervisor/station.h"

#include <QStringList>
#include <QWidget>

class QLineEdit;

/** The internet-radio station that the unit plays. */
class RadioPanel : public QWidget {
    Q_OBJECT

public:
    explicit RadioPanel(QWidget* parent = nullptr);

    void showStation(const Station& station);

signals:
    void announced(const Station& station);

private:
    void announce();

    QLineEdit* m_title = nullptr;
    QLineEdit* m_url = nullptr;
};

/** The states of audio over Ethernet. */
class AoePanel : public QWidget {
    Q_OBJECT

public:
    explicit AoePanel(QWidget* parent = nullptr);

signals:
    void said(const QStringList& words);
};

/** Firmware upgrade and network. */
class SystemPanel : public QWidget {
    Q_OBJECT

public:
    explicit SystemPanel(QWidget* parent = nullptr);

signals:
    void said(const QStringList& words);

private:
    void sayMessage();

    QLineEdit* m_message = nullptr;
};
