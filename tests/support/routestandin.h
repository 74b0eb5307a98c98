#pragma once

#include "tests/support/unitroot.h"

/** A "route" of the test's own, which comes first in PATH while this object lives, or none at all. */
class RouteStandIn {
public:
    /** No "route" can be found. */
    RouteStandIn() { qputenv("PATH", m_dir.path().toUtf8()); }

    explicit RouteStandIn(const QByteArray& script, const QByteArray& firstLine = "#!/bin/sh\n")
    {
        const QString program = m_dir.filePath(QStringLiteral("route"));
        UnitRoot::write(program, firstLine + script + '\n');
        QFile::setPermissions(program, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        qputenv("PATH", m_dir.path().toUtf8() + ':' + m_oldPath);
        qputenv("ROUTE_PID", pidFile().toUtf8());
    }
    ~RouteStandIn()
    {
        qputenv("PATH", m_oldPath);
        qunsetenv("ROUTE_PID");
    }
    RouteStandIn(const RouteStandIn&) = delete;
    RouteStandIn& operator=(const RouteStandIn&) = delete;

    /** The process number that the script has written to the file that ROUTE_PID names; 0 without one. */
    int pid() const { return UnitRoot::read(pidFile()).trimmed().toInt(); }

private:
    QString pidFile() const { return m_dir.filePath(QStringLiteral("pid")); }

    QTemporaryDir m_dir;
    const QByteArray m_oldPath = qgetenv("PATH");
};
