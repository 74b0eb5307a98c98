#pragma once

#include <QByteArray>
#include <QDir>

#include <vector>

/** Something that the panel may be told and that used to hold it up or fill its memory. */
struct BoundsCase {
    const char* name;
    /** Makes the files it takes in an empty folder and gives what then comes over the link. */
    QByteArray (*prepare)(const QDir& folder);
};

std::vector<BoundsCase> mediaBoundsCases();

/** All of them, in the order of the table. */
std::vector<BoundsCase> boundsCases();
