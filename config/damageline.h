#pragma once

#include <QString>

/**
 * The line at level 4 about one damage of a file, for one reading of it. Files are read again and again: the
 * line is logged once, and again only after a reading that did not meet the damage.
 */
class DamageLine {
public:
    DamageLine() = default;
    ~DamageLine();
    DamageLine(const DamageLine&) = delete;
    DamageLine& operator=(const DamageLine&) = delete;

    /** Names the file, and what is read of it where that decides; without a name nothing is remembered. */
    void watch(const QString& what) { m_what = what; }

    void log(const QString& line);

private:
    QString m_what;
    bool m_met = false;
};
