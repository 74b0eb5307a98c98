#pragma once

#include "app/dprintf.h"
#include "screens/setupform.h"
#include "tests/support/configbytes.h"
#include "tests/support/strings.h"
#include "tests/support/unitroot.h"

#include <QLabel>
#include <QTimer>

#include <optional>

/** What the tests of the setup screen share: the unit's network settings and the screen. */
namespace Setup {

/** network.xml as the screen writes it, with the given texts in the order of its elements. */
inline QByteArray network(const QStringList& texts)
{
    static const char* const names[] = {"hwaddr",  "hostname", "dhcp", "ip",
                                        "netmask", "gateway",  "dns1", "dns2"};
    QList<QByteArray> elements;
    for (int i = 0; i < 8; ++i)
        elements << ConfigBytes::element(names[i], texts.value(i));
    return ConfigBytes::config(elements);
}

/** The texts of most tests' unit; the one that differs is DHCP. */
inline QStringList unitTexts(const char* dhcp)
{
    return strings({"00:11:22:33:44:55", "panel", dhcp, "192.168.1.20", "255.255.255.0", "192.168.1.1",
                    "10.0.0.1", "10.0.0.2"});
}

/** The same texts as the page shows them: without the host name, the net mask before the gateway. */
inline QStringList pageTexts(const char* dhcp)
{
    return strings(
        {"00:11:22:33:44:55", dhcp, "192.168.1.20", "255.255.255.0", "192.168.1.1", "10.0.0.1", "10.0.0.2"});
}

/** The log is silent but for what a test catches of it. */
class Unit : public UnitRoot {
public:
    Unit() { debugLevel = 5; }

    void writeNetwork(const QByteArray& bytes) const { writeConf(QStringLiteral("network.xml"), bytes); }
    void writeTexts(const char* dhcp) const { writeNetwork(network(unitTexts(dhcp))); }
    QByteArray readNetwork() const { return readConf(QStringLiteral("network.xml")); }
    void writeResolv(const QByteArray& bytes) const
    {
        write(path(QStringLiteral("/etc/resolv.conf")), bytes);
    }
};

constexpr const char* valueLabels[] = {"lb_MacAddr", "lb_dhcp", "lb_IPAddr", "lb_netmask",
                                       "lb_gateway", "lb_dns1", "lb_dns2"};

/** The screen with what can be seen of it and the signals that it has emitted. */
class SetupScreen : public SetupForm {
public:
    SetupScreen()
    {
        connect(this, &SetupForm::sgLoadingMode, this, [this] { m_events << QStringLiteral("loading"); });
        connect(this, &SetupForm::sgDhcpOpen, this, [this] { m_events << QStringLiteral("open"); });
        connect(this, &SetupForm::sgDhcpClose, this, [this] { m_events << QStringLiteral("close"); });
    }
    QLabel* label(const char* name) const { return findChild<QLabel*>(QString::fromLatin1(name)); }
    QString text(const char* name) const { return label(name)->text(); }
    QStringList page() const
    {
        QStringList texts;
        for (const char* name : valueLabels)
            texts << text(name);
        return texts;
    }
    /** The images that lie over the page. */
    QStringList shown() const
    {
        QStringList names;
        for (const char* name : {"lb_dhcp_yes", "lb_dhcp_no", "lbl_background_alpha", "lbLoading"})
            if (!label(name)->isHidden())
                names << QString::fromLatin1(name);
        return names;
    }
    QTimer* timer() const { return findChild<QTimer*>(); }
    QStringList events() const { return m_events; }
    /** The signals since the last call. */
    QStringList takeEvents() { return std::exchange(m_events, {}); }

private:
    QStringList m_events;
};

const QStringList yesImage = strings({"lb_dhcp_yes"});
const QStringList noImage = strings({"lb_dhcp_no"});

} // namespace Setup
