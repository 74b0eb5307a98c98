#pragma once

#include <QString>

/**
 * Every absolute path of the unit that the panel touches, in one table.
 *
 * When the environment variable VIREO_ROOT is set it is put in front of each of them, as a sysroot is, so
 * that tests, the demo and a desktop run on a unit of their own without root. Media paths named by the
 * supervisor are not the unit's and are used as they come.
 */
enum class UnitPath {
    OperMode, ///< the last playback source, written
    Radio, ///< the chosen internet-radio station, read and written
    UserChannels, ///< the user's own stations, read
    Network, ///< the network settings, read and written
    Version, ///< the firmware version, read
    AoeConnection, ///< the audio-over-Ethernet server, read
    SampleRate, ///< the sample rate of the audio-over-Ethernet stream, read
    ResolvConf, ///< the live name servers, read
    NetworkRestart, ///< the command that restarts the network, run with the word "restart"
};

/** The path of a file of the unit, below VIREO_ROOT where that is set. */
QString unitPath(UnitPath file);

/** The path of the preset station list that `prefix` selects. */
QString presetChannelsPath(const QString& prefix);
