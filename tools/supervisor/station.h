#pragma once

#include <QString>

/** An internet-radio station, as the panel writes the chosen one. */
struct Station {
    QString name;
    QString url;

    bool isEmpty() const { return name.isEmpty() && url.isEmpty(); }
};

/** Reads the station that was chosen on the panel; empty where the file cannot be read or names none. */
Station readStation(const QString& path);
