#include "tools/supervisor/display.h"

#include <QtGlobal>

QString displayProblem()
{
    const bool x11 = !qEnvironmentVariableIsEmpty("DISPLAY");
    const bool wayland = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    const QString platform = qEnvironmentVariable("QT_QPA_PLATFORM");
    const QString missing =
        QStringLiteral("no display for the window (%1 not set); send and script work without one");
    if (platform.isEmpty() && !x11 && !wayland)
        return missing.arg(QLatin1String("DISPLAY and WAYLAND_DISPLAY are"));
    if (platform.startsWith(QLatin1String("xcb")) && !x11)
        return missing.arg(QLatin1String("DISPLAY is"));
    if (platform.startsWith(QLatin1String("wayland")) && !wayland)
        return missing.arg(QLatin1String("WAYLAND_DISPLAY is"));
    return {};
}
