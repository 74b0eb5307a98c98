#include "config/unitpaths.h"

#include <iterator>

namespace {

constexpr const char* paths[] = {
    "/opt/orvane/conf/oper_mode.xml",
    "/opt/orvane/conf/radio.xml",
    "/opt/orvane/conf/user_channels.xml",
    "/opt/orvane/conf/network.xml",
    "/opt/orvane/conf/version.xml",
    "/opt/orvane/conf/aoe_conn.xml",
    "/tmp/sampleRate",
    "/etc/resolv.conf",
    "/etc/rc.d/init.d/network",
};
static_assert(std::size(paths) == std::size_t(UnitPath::NetworkRestart) + 1, "one path a row of UnitPath");

QString underRoot(const QString& absolute)
{
    return qEnvironmentVariable("VIREO_ROOT") + absolute;
}

} // namespace

QString unitPath(UnitPath file)
{
    return underRoot(QString::fromLatin1(paths[std::size_t(file)]));
}

QString presetChannelsPath(const QString& prefix)
{
    return underRoot(QStringLiteral("/opt/orvane/conf/prefix_channels_") + prefix + QStringLiteral(".xml"));
}
