#include "tools/supervisor/playermodel.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr const char* scopeNames[] = {"one", "all", "folder"};

QString folderOf(const QString& path)
{
    return QFileInfo(path).path();
}

QStringList words(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* text : texts)
        result << QString::fromLatin1(text);
    return result;
}

} // namespace

PlayerModel::PlayerModel(LengthOf lengthOf, quint32 seed, QObject* parent)
    : QObject(parent)
    , m_lengthOf(std::move(lengthOf))
    , m_random(seed)
{
}

void PlayerModel::setTracks(const QStringList& paths)
{
    halt();
    m_tracks = paths;
    m_current = paths.isEmpty() ? -1 : 0;
    reorder();
    emit changed();
}

int PlayerModel::folderCount() const
{
    QSet<QString> folders;
    for (const QString& path : m_tracks)
        folders << folderOf(path);
    return int(folders.size());
}

void PlayerModel::setRepeat(bool on)
{
    m_repeat = on;
    sayMode();
}

void PlayerModel::setShuffle(bool on)
{
    m_shuffle = on;
    reorder();
    sayMode();
}

void PlayerModel::setScope(Scope scope)
{
    m_scope = scope;
    sayMode();
}

void PlayerModel::setStreaming(bool on)
{
    if (m_streaming == on)
        return;
    m_streaming = on;
    if (!isRunning())
        sayLevel(0);
    emit changed();
}

void PlayerModel::advance(int milliseconds)
{
    if (!isRunning())
        return;
    runLevel(milliseconds);
    if (m_state == State::Playing) {
        const int second = m_positionMs / 1000;
        m_positionMs += milliseconds;
        if (m_positionMs >= m_lengthMs)
            endOfTrack();
        else if (m_positionMs / 1000 != second)
            sayTime();
    }
    emit changed();
}

void PlayerModel::announce()
{
    if (m_tracks.isEmpty())
        return;
    emit say(words({"disk-state", "normal"}));
    emit say({QStringLiteral("disk"), QString::number(m_tracks.size()), QString::number(folderCount())});
    sayMode();
    if (m_state == State::Stopped)
        return;
    sayFile();
    sayTime();
    if (m_state == State::Paused)
        emit say(words({"key", "play-pause"}));
}

void PlayerModel::playPause()
{
    if (m_current < 0)
        return;
    if (m_state == State::Stopped) {
        start(m_current);
        return;
    }
    m_state = m_state == State::Playing ? State::Paused : State::Playing;
    if (!isRunning())
        sayLevel(0);
    emit changed();
}

void PlayerModel::stop()
{
    if (m_state == State::Stopped)
        return;
    halt();
    sayTime();
    emit changed();
}

void PlayerModel::next()
{
    start(neighbour(1, true));
}

void PlayerModel::previous()
{
    start(neighbour(-1, true));
}

void PlayerModel::play(int track)
{
    start(track);
}

bool PlayerModel::inScope(int track) const
{
    return m_scope != Scope::Folder || folderOf(m_tracks[track]) == folderOf(m_tracks[m_current]);
}

/** The nearest track of the scope in playing order, -1 where there is none. */
int PlayerModel::neighbour(int direction, bool wrap) const
{
    const int count = int(m_order.size());
    const int place = int(m_order.indexOf(m_current));
    for (int step = 1; step <= count; ++step) {
        const int other = place + direction * step;
        if (!wrap && (other < 0 || other >= count))
            return -1;
        const int track = m_order[(other + count) % count];
        if (inScope(track))
            return track;
    }
    return -1;
}

/** What plays by itself after the current track, -1 for nothing. */
int PlayerModel::following() const
{
    if (m_scope == Scope::One)
        return m_repeat ? m_current : -1;
    return neighbour(1, m_repeat);
}

void PlayerModel::start(int track)
{
    if (track < 0 || track >= m_tracks.size())
        return;
    m_current = track;
    m_positionMs = 0;
    m_lengthMs = qMax(1, m_lengthOf(m_tracks[track]));
    m_state = State::Playing;
    sayFile();
    sayTime();
    emit changed();
}

void PlayerModel::halt()
{
    m_state = State::Stopped;
    m_positionMs = 0;
    if (!m_streaming && m_level != 0)
        sayLevel(0);
}

/** At the end of the list the panel hears of the stop as of a key. */
void PlayerModel::endOfTrack()
{
    const int track = following();
    if (track >= 0) {
        start(track);
        return;
    }
    emit say(words({"key", "stop"}));
    stop();
}

void PlayerModel::runLevel(int milliseconds)
{
    const int before = m_levelMs / levelEveryMs;
    m_levelMs = (m_levelMs + milliseconds) % (3600 * 1000);
    if (m_levelMs / levelEveryMs != before)
        sayLevel(musicLevelAt(m_levelMs));
}

void PlayerModel::sayLevel(int level)
{
    m_level = level;
    emit say({QStringLiteral("level"), QString::number(level)});
}

void PlayerModel::sayTime()
{
    emit say({QStringLiteral("time"), playTimeText(m_positionMs)});
}

void PlayerModel::sayFile()
{
    emit say({QStringLiteral("file"), m_tracks[m_current]});
}

void PlayerModel::sayMode()
{
    QStringList mode = words({"mode"});
    if (m_repeat)
        mode += words({"repeat"});
    if (m_shuffle)
        mode += words({"shuffle"});
    emit say(mode + words({scopeNames[int(m_scope)]}));
}

void PlayerModel::reorder()
{
    m_order.resize(m_tracks.size());
    std::iota(m_order.begin(), m_order.end(), 0);
    if (m_shuffle)
        std::shuffle(m_order.begin(), m_order.end(), m_random);
}

int musicLevelAt(int milliseconds)
{
    constexpr double pi = 3.14159265358979;
    constexpr double beatMs = 500;
    constexpr double phraseMs = 9000;
    const double sinceBeat = std::fmod(milliseconds, beatMs) / beatMs;
    const double phrase = 0.6 + 0.4 * std::sin(2 * pi * milliseconds / phraseMs);
    const double flutter = 0.85 + 0.15 * std::sin(2 * pi * milliseconds / 370.0);
    return int(240 * phrase * flutter * std::exp(-1.8 * sinceBeat));
}

QString playTimeText(int milliseconds)
{
    const int seconds = milliseconds / 1000;
    return QStringLiteral("%1:%2:%3")
        .arg(seconds / 3600)
        .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
        .arg(seconds % 60, 2, 10, QLatin1Char('0'));
}
