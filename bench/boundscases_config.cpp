#include "bench/boundscases.h"
#include "link/packet.h"

#include <QFile>

#include <iterator>

/** Configuration files that another program of the unit may leave, by mistake or not. */

namespace {

constexpr int MiB = 1024 * 1024;

/** Shows the radio's screen, then its list: both read the file anew. */
QByteArray shown(const QDir& unit, const char* name, const QByteArray& document)
{
    QFile file(unit.filePath(QLatin1String("opt/orvane/conf/") + QLatin1String(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(document) != document.size())
        qFatal("cannot write %s", name);
    return packetOf(Command::Device, wire::Source::Radio) + packetOf(Command::Key, wire::Key::Select);
}

QByteArray station(const QDir& unit, const QByteArray& name)
{
    return shown(unit, "radio.xml", "<config><name>" + name + "</name></config>");
}

QByteArray entities(const QDir& unit, int uses)
{
    const QByteArray type = "<!DOCTYPE config [<!ENTITY e \"" + QByteArray(4000, 'x') + "\">]>";
    return shown(unit, "radio.xml",
                 type + "<config><name>" + QByteArray("&e;").repeated(uses) + "</name></config>");
}

QByteArray attributes(const QDir& unit, int count)
{
    QByteArray all;
    for (int i = 0; i < count; ++i)
        all += " a" + QByteArray::number(i) + "=''";
    return shown(unit, "radio.xml", "<config><name" + all + ">x</name></config>");
}

QByteArray stations(const QDir& unit, const QByteArray& one)
{
    return shown(unit, "user_channels.xml", "<channels>" + one.repeated(MiB / int(one.size())));
}

constexpr BoundsCase cases[] = {
    {"radio.xml of 94 KB, an entity used 30,000 times",
     [](const QDir& unit) { return entities(unit, 30000); }},
    {"radio.xml of 2.7 MB, an entity used 900,000 times",
     [](const QDir& unit) { return entities(unit, 900000); }},
    {"radio.xml with 100,000 attributes on one element",
     [](const QDir& unit) { return attributes(unit, 100000); }},
    {"radio.xml with 4 MB of text in one element",
     [](const QDir& unit) { return station(unit, QByteArray(4000000, 'x')); }},
    {"radio.xml with a text of 64,000 characters",
     [](const QDir& unit) { return station(unit, QByteArray("\xEA\xB0\x80").repeated(64000 / 3)); }},
    {"radio.xml with 1 MiB of open tags",
     [](const QDir& unit) { return shown(unit, "radio.xml", QByteArray("<a>").repeated(MiB / 3)); }},
    {"user_channels.xml with 1 MiB of stations",
     [](const QDir& unit) { return stations(unit, "<entry><title>t</title><url>u</url></entry>"); }},
    {"user_channels.xml with 16 titles of 64,000 characters",
     [](const QDir& unit) {
         return stations(unit, "<entry><title>" + QByteArray(64000, 'x') + "</title><url>u</url></entry>");
     }},
};

} // namespace

std::vector<BoundsCase> configBoundsCases()
{
    return {std::begin(cases), std::end(cases)};
}
