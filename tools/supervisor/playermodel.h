#pragma once

#include <QObject>
#include <QStringList>
#include <QVector>

#include <functional>
#include <random>

/**
 * The playback half of a supervisor, without sound: which track plays, for how long, and what follows it.
 *
 * It says what the panel must hear as words (tools/supervisor/words.h) and never looks at a clock: time comes
 * in through advance().
 */
class PlayerModel : public QObject {
    Q_OBJECT

public:
    enum class State { Stopped, Playing, Paused };
    enum class Scope { One, All, Folder };

    static constexpr int levelEveryMs = 100;

    /** Gives the length of a file in milliseconds. */
    using LengthOf = std::function<int(const QString& path)>;

    explicit PlayerModel(LengthOf lengthOf, quint32 seed = 1, QObject* parent = nullptr);

    /** The tracks of a disk by absolute path, a folder's tracks side by side. Stops what plays. */
    void setTracks(const QStringList& paths);
    const QStringList& tracks() const { return m_tracks; }
    int folderCount() const;

    State state() const { return m_state; }
    int currentTrack() const { return m_current; } ///< -1 without tracks
    int positionMs() const { return m_positionMs; }
    int level() const { return m_level; }
    bool isRunning() const { return m_state == State::Playing || m_streaming; }

    void setRepeat(bool on);
    void setShuffle(bool on);
    void setScope(Scope scope);

    /** Whether a source without tracks plays, such as the radio: its level runs, its time does not. */
    void setStreaming(bool on);

    /** Lets time pass. Says the time once a second and the level ten times a second while something plays. */
    void advance(int milliseconds);

    /** Says all that a panel must know that has just been started. */
    void announce();

public slots:
    void playPause();
    void stop();
    void next();
    void previous();
    void play(int track);

signals:
    void say(const QStringList& words);
    void changed();

private:
    bool inScope(int track) const;
    int neighbour(int direction, bool wrap) const;
    int following() const;
    void start(int track);
    void halt();
    void endOfTrack();
    void runLevel(int milliseconds);
    void sayLevel(int level);
    void sayTime();
    void sayFile();
    void sayMode();
    void reorder();

    LengthOf m_lengthOf;
    std::mt19937 m_random;
    QStringList m_tracks;
    QVector<int> m_order; // track numbers in playing order
    State m_state = State::Stopped;
    Scope m_scope = Scope::All;
    bool m_repeat = false;
    bool m_shuffle = false;
    bool m_streaming = false;
    int m_current = -1;
    int m_positionMs = 0;
    int m_lengthMs = 0;
    int m_levelMs = 0; // where the level's curve stands
    int m_level = 0;
};

/** A curve of levels like that of music: beats that fade, louder and softer by turns; 0 to 255. */
int musicLevelAt(int milliseconds);

/** A play time as the word `time` takes it. */
QString playTimeText(int milliseconds);
