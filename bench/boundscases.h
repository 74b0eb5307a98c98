#pragma once

#include <QByteArray>
#include <QDir>

#include <vector>

/** Something that the panel may be told and that used to hold it up or fill its memory. */
struct BoundsCase {
    const char* name;
    /** Makes the files it takes in the root of a unit and gives what then comes over the link. */
    QByteArray (*prepare)(const QDir& unit);
    /** Milliseconds within which what stands behind it is to be answered; 0 where that is not asked. */
    double answeredWithin = 0;
    /** Takes many turns of the event loop; a quick run leaves it out. */
    bool isLong = false;
};

std::vector<BoundsCase> mediaBoundsCases();
std::vector<BoundsCase> configBoundsCases();
std::vector<BoundsCase> linkBoundsCases();

/** All of them, in the order of the table. */
std::vector<BoundsCase> boundsCases();
