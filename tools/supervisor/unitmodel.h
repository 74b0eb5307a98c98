#pragma once

#include "tools/supervisor/playermodel.h"
#include "tools/supervisor/station.h"

#include <functional>

/**
 * The unit that the panel is the display of: which sources are active, what plays from them, and how both
 * keep step with the panel, whose menu and station list choose too.
 *
 * It says what the panel must hear as words (tools/supervisor/words.h) and hears of the panel's mode by its
 * name. Of the sources that have a screen of their own one at most is active.
 */
class UnitModel : public QObject {
    Q_OBJECT

public:
    /** Gives the station that was last chosen on the panel. */
    using StationOf = std::function<Station()>;

    UnitModel(PlayerModel& player, StationOf stationOf, QObject* parent = nullptr);

    const QStringList& sources() const { return m_sources; }
    /** The stream that plays: "ir", "aoe" or nothing. */
    QString stream() const { return m_stream; }

    /** Says all that a panel must know that has just been started. */
    void announce();

    /** What the panel said of its mode. `isLatest`: nothing was said to it since. */
    void followMode(const QString& mode, bool isLatest);

public slots:
    void switchSource(const QString& source, bool on);
    void turn(int steps);
    void pressKey(const QString& key, bool isLong);
    /** There is a disk; the player has its tracks. */
    void insertDisk();
    void removeDisk();
    void playStation(const Station& station);
    /** A state of audio over Ethernet, as the word `aoe` takes it. */
    void reportAoe(const QString& state);

signals:
    void say(const QStringList& words);
    void sourcesChanged();
    void stationChanged(const Station& station);

private:
    QString mainSource() const;
    void activate(const QString& source);
    void sayDevice();
    void playOrStop(const QString& key);
    void keyForStream(const QString& source, const QString& key);
    void keepPlayerInStep(const QString& key);
    void stopWhatLostItsSource();
    void playChosen();
    void startStream(const QString& source);
    void endStream();

    PlayerModel& m_player;
    StationOf m_stationOf;
    Station m_station;
    QStringList m_sources; // in the order of their bits
    QString m_stream;
    QString m_mode;
    bool m_stationChosen = false; // select was pressed in the list of stations
};
