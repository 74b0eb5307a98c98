#include "tools/supervisor/unitmodel.h"

#include <algorithm>

namespace {

struct Source {
    const char* word;
    bool hasScreen; ///< of these one at most is active
};

constexpr Source sourceRows[] = {
    {"usb", true}, {"stream", false}, {"aux", false}, {"ir", true}, {"aoe", true},
};

/** The source that a mode of the panel stands for. */
struct ModeSource {
    const char* mode;
    const char* source;
};

constexpr ModeSource modeSources[] = {
    {"usb", "usb"},
    {"radio", "ir"},
    {"radio-list", "ir"},
    {"aoe", "aoe"},
};

struct PlayerKey {
    const char* word;
    void (PlayerModel::*act)();
};

constexpr PlayerKey playerKeys[] = {
    {"stop", &PlayerModel::stop},
    {"play-pause", &PlayerModel::playPause},
    {"prev", &PlayerModel::previous},
    {"next", &PlayerModel::next},
};

QStringList words(std::initializer_list<const char*> texts)
{
    QStringList result;
    for (const char* text : texts)
        result << QString::fromLatin1(text);
    return result;
}

QString sourceOfMode(const QString& mode)
{
    for (const ModeSource& row : modeSources)
        if (mode == QLatin1String(row.mode))
            return QString::fromLatin1(row.source);
    return {};
}

bool hasScreen(const QString& source)
{
    return std::any_of(std::begin(sourceRows), std::end(sourceRows),
                       [&](const Source& row) { return row.hasScreen && source == QLatin1String(row.word); });
}

const PlayerKey* findPlayerKey(const QString& key)
{
    for (const PlayerKey& row : playerKeys)
        if (key == QLatin1String(row.word))
            return &row;
    return nullptr;
}

} // namespace

UnitModel::UnitModel(PlayerModel& player, StationOf stationOf, QObject* parent)
    : QObject(parent)
    , m_player(player)
    , m_stationOf(std::move(stationOf))
{
    connect(&player, &PlayerModel::say, this, &UnitModel::say);
}

QString UnitModel::mainSource() const
{
    for (const QString& source : m_sources)
        if (hasScreen(source))
            return source;
    return {};
}

void UnitModel::announce()
{
    if (!m_sources.isEmpty())
        sayDevice();
    m_player.announce();
    if (!m_stream.isEmpty())
        startStream(m_stream);
}

/**
 * A source that the panel's menu chose is active from then on. It is said only behind the latest answer: in
 * the list of stations, and in a menu that was opened meanwhile, it would change the mode.
 */
void UnitModel::followMode(const QString& mode, bool isLatest)
{
    if (!isLatest || mode == m_mode)
        return;
    const QString source = sourceOfMode(mode);
    m_mode = mode;
    if (!source.isEmpty() && source != mainSource()) {
        activate(source);
        if (mode != QLatin1String("radio-list"))
            sayDevice();
        stopWhatLostItsSource();
    }
    if (mode == QLatin1String("radio-list"))
        return;
    if (m_stationChosen && mode == QLatin1String("radio"))
        playChosen();
    else if (!source.isEmpty() && source == m_stream)
        startStream(source); // a screen that is entered anew shows a stop
    m_stationChosen = false;
}

void UnitModel::playChosen()
{
    const Station station = m_stationOf();
    if (!station.isEmpty())
        playStation(station);
}

/** With the source on, in place of the one that has a screen too. */
void UnitModel::activate(const QString& source)
{
    QStringList wanted;
    for (const Source& row : sourceRows) {
        const QString word = QString::fromLatin1(row.word);
        const bool givesWay = row.hasScreen && hasScreen(source);
        if (word == source || (m_sources.contains(word) && !givesWay))
            wanted << word;
    }
    m_sources = wanted;
    emit sourcesChanged();
}

void UnitModel::switchSource(const QString& source, bool on)
{
    if (on == m_sources.contains(source))
        return;
    if (on) {
        activate(source);
    } else {
        m_sources.removeAll(source);
        emit sourcesChanged();
    }
    sayDevice();
    stopWhatLostItsSource();
}

void UnitModel::sayDevice()
{
    const QStringList device = words({"device"});
    emit say(device + (m_sources.isEmpty() ? words({"none"}) : m_sources));
}

/** The player screen shows a stop only when it hears of one, and it listens in every mode. */
void UnitModel::stopWhatLostItsSource()
{
    if (!m_sources.contains(QLatin1String("usb")) && m_player.state() != PlayerModel::State::Stopped) {
        emit say(words({"key", "stop"}));
        m_player.stop();
    }
    if (!m_stream.isEmpty() && !m_sources.contains(m_stream))
        endStream();
}

void UnitModel::turn(int steps)
{
    emit say({QStringLiteral("enc"), QString::number(steps)});
}

void UnitModel::pressKey(const QString& key, bool isLong)
{
    emit say({QStringLiteral("key"), isLong ? QStringLiteral("long-") + key : key});
    if (m_mode == QLatin1String("radio-list") && !isLong)
        m_stationChosen = key == QLatin1String("select");
    if (!isLong && findPlayerKey(key))
        playOrStop(key);
}

void UnitModel::playOrStop(const QString& key)
{
    const QString source = mainSource();
    if (source == QLatin1String("usb"))
        (m_player.*findPlayerKey(key)->act)();
    else if (!source.isEmpty())
        keyForStream(source, key);
    keepPlayerInStep(key);
}

void UnitModel::keyForStream(const QString& source, const QString& key)
{
    const bool plays = m_stream == source;
    if (key == QLatin1String("stop") || (key == QLatin1String("play-pause") && plays))
        endStream();
    else if (key == QLatin1String("play-pause"))
        startStream(source);
}

/** The player screen took the key for a start, also without a disk or behind another screen. */
void UnitModel::keepPlayerInStep(const QString& key)
{
    if (key != QLatin1String("stop") && m_player.state() == PlayerModel::State::Stopped)
        emit say(words({"key", "stop"}));
}

void UnitModel::insertDisk()
{
    switchSource(QStringLiteral("usb"), true);
    m_player.announce();
}

/** What the panel does not clear by itself when a disk goes. */
void UnitModel::removeDisk()
{
    emit say(words({"key", "stop"}));
    emit say(words({"disk-state", "removed"}));
    emit say({QStringLiteral("time"), playTimeText(0)});
}

void UnitModel::playStation(const Station& station)
{
    m_station = station;
    emit stationChanged(station);
    emit say({QStringLiteral("station"), station.name, station.url});
    if (m_sources.contains(QLatin1String("ir"))) {
        m_stream = QStringLiteral("ir");
        m_player.setStreaming(true);
    }
}

void UnitModel::reportAoe(const QString& state)
{
    emit say({QStringLiteral("aoe"), state});
    const bool plays = state == QLatin1String("ok") && m_sources.contains(QLatin1String("aoe"));
    if (!plays && m_stream != QLatin1String("aoe"))
        return;
    m_stream = plays ? QStringLiteral("aoe") : QString();
    m_player.setStreaming(plays);
}

void UnitModel::startStream(const QString& source)
{
    if (source == QLatin1String("aoe"))
        reportAoe(QStringLiteral("ok"));
    else if (m_station.isEmpty())
        playChosen();
    else
        playStation(m_station);
}

/** Audio over Ethernet has a word for it; of the radio only the level tells. */
void UnitModel::endStream()
{
    if (m_stream == QLatin1String("aoe"))
        emit say(words({"aoe", "stop"}));
    m_stream.clear();
    m_player.setStreaming(false);
}
