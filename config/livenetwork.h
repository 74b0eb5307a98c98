#pragma once

#include <QByteArray>
#include <QNetworkAddressEntry>
#include <QString>
#include <QStringList>

#include <optional>

/**
 * The network settings that the unit runs with, asked of the system: the ones that count when the addresses
 * come by DHCP. Each question takes bounded memory, whatever answers it.
 */

/** The first address of the unit's network interface and its mask; nothing while it has none. */
std::optional<QNetworkAddressEntry> liveAddress();

/**
 * The name servers in the first two lines of resolv.conf, in their order. When the file cannot be opened
 * there are none and `error` takes the reason.
 */
QStringList liveNameServers(QString& error);

/**
 * The last line that "route -n" prints, its line break included; empty when it prints nothing or cannot be
 * started. Waits for the command to finish, and ends it when `waitMs` milliseconds have passed: what it has
 * printed until then counts.
 */
QByteArray lastRoute(int waitMs);
