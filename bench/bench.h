#pragma once

#include "bench/table.h"

#include <QString>

/** How long to measure. Quick is only to see that everything builds and runs. */
struct Effort {
    int repetitions = 11;
    double secondsPerTask = 0.05; ///< of each repetition
    int starts = 31;
    int requests = 20000;
    int burstPackets = 100000;
    int peerRequests = 200; ///< of a server that answers by a clock of its own
    int peerPackets = 100000;
    int idleMilliseconds = 10000;
    qint64 oggBytes = 200 * 1024 * 1024;
    int mostStations = 10000;
    int mostTextBytes = 1000000;
    int mostJunkBytes = 1000000;
    int networkRestarts = 4; ///< half a minute each
    bool isQuick = false;

    static Effort quick()
    {
        return {1, 0.001, 3, 50, 1000, 3, 1000, 300, 4 * 1024 * 1024, 1000, 10000, 100000, 0, true};
    }
};

/** What every group of rows works with. */
struct Bench {
    Effort effort;
    Table table;
    QString programs; ///< the folder of the programs under test
    QString scratch; ///< an empty folder of this run, removed at its end
    QString unit; ///< a unit's files, as VIREO_ROOT names them
};

/** Copies a folder with all that is in it to a path where there is nothing yet. */
void copyFolder(const QString& from, const QString& to);

// Groups of rows, in the order of the table.
void addStartRows(Bench& bench);
void addLinkRows(Bench& bench);
void addPanelServerRows(Bench& bench);
void addJunkRows(Bench& bench);
void addMeterRows(Bench& bench);
void addTagRows(Bench& bench);
void addOggRows(Bench& bench);
void addListRows(Bench& bench);
void addFlowRows(Bench& bench);
void addIdleRows(Bench& bench);
void addBoundsRows(Bench& bench);
void addWaitRow(Bench& bench); ///< of the group above
