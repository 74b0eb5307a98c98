#include "tools/supervisor/tracklength.h"

#include <QProcess>

#include <algorithm>

namespace {

constexpr double longestMs = 24 * 3600 * 1000.0;
constexpr int patienceMs = 5000; // a damaged file must not hold the window for long

} // namespace

int trackLengthMs(const QString& path)
{
    QProcess probe;
    probe.start(QStringLiteral("ffprobe"),
                {QStringLiteral("-v"), QStringLiteral("quiet"), QStringLiteral("-show_entries"),
                 QStringLiteral("format=duration"), QStringLiteral("-of"), QStringLiteral("csv=p=0"),
                 QStringLiteral("file:") + path});
    if (!probe.waitForFinished(patienceMs)) {
        probe.kill();
        probe.waitForFinished(patienceMs);
        return unknownTrackMs;
    }
    bool isNumber = false;
    const double seconds = probe.readAllStandardOutput().trimmed().toDouble(&isNumber);
    if (!isNumber || !(seconds > 0))
        return unknownTrackMs;
    return int(std::clamp(seconds * 1000, 1.0, longestMs));
}
