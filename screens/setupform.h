#pragma once

#include <QString>
#include <QWidget>

#include <memory>

class QLabel;
class QTimer;

namespace Ui {
class SetupForm;
}

/** The network settings that network.xml holds and that are written back to it. */
struct NETWORKXML {
    QString hwaddr;
    QString dhcp; ///< "yes" or "no"
    QString ip;
    QString netmask;
    QString gateway;
    QString dns1;
    QString dns2;
};

/**
 * The network settings and the firmware version, read again every three seconds while shown. With DHCP on the
 * page shows what the system reports instead of the file's addresses; with DHCP it is also the one thing that
 * can be changed here: select opens the choice, the encoder turns it, select applies it and escape leaves it.
 * What cannot be found is shown as a "not found" text.
 */
class SetupForm : public QWidget {
    Q_OBJECT

public:
    explicit SetupForm(QWidget* parent = nullptr);
    ~SetupForm() override;

    /** Takes the veil and the wait image away. */
    void InitWidget();
    void InitFont();
    /** Fills the page from the file alone, whatever it says of DHCP. */
    void InitXML(QString path);
    /** Fills the page from the file or, with DHCP on, from the system. */
    void NetInfoFromXML(QString path);
    /** The version text; empty when the file holds none, a "not found" text without the file. */
    QString GetVersion();
    void XMLwriteInfo();

    /** Bounds the wait for the routing table, which holds the panel up; in milliseconds, 30000 at first. */
    void setRouteWait(int milliseconds) { m_routeWaitMs = milliseconds; }

signals:
    void sgLoadingMode();
    void sgDhcpOpen();
    void sgDhcpClose();

public slots:
    void prev_action();
    void next_action();
    void select_action();
    void esc_action();
    void ChangeDHCP();
    void XMLParse();
    void ReloadPage();
    void StopTimer();
    void TimerStart();

private:
    void takeElement(const QString& name, const QString& text);
    void showLiveValues();
    void showLiveAddress();
    void showLiveNameServers();
    void showLiveGateway();
    void showChoice(bool yes);
    void openChoice();
    void closeChoice();
    QLabel* choiceImage() const;

    std::unique_ptr<Ui::SetupForm> ui;
    bool m_editing = false;
    bool m_choice = false;
    bool m_savedChoice = false;
    QString m_hostname;
    QTimer* m_timer = nullptr;
    NETWORKXML m_network;
    int m_routeWaitMs;
};
