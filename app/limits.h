#pragma once

/**
 * Every bound on what the panel takes from outside or waits for, in one place; docs/configuration.md lists
 * them. A name ends in its unit, where it has one: Bytes, Pixels, Ms for milliseconds. The line above a bound
 * is its reason.
 */
namespace limits {

// the log

/** a message is formatted in a buffer of this size, prefix and final zero included */
constexpr int logLineBytes = 8192;

// configuration files

/** twenty thousand stations fit in here; the reader holds up to three times as much while it works */
constexpr int configFileBytes = 4 * 1024 * 1024;

/** the encoding of a file is declared in its first line */
constexpr int declarationBytes = 256;

/** no sample rate is longer than a line of text */
constexpr int sampleRateBytes = 4096;

// what the system says

/** far more than two lines of resolv.conf or one of a routing table can be */
constexpr int systemTextBytes = 64 * 1024;

/** a routing table is printed at once; names are not looked up */
constexpr int routeMs = 30 * 1000;

/** a network that has not restarted by then will not */
constexpr int networkRestartMs = 30 * 1000;

/** how often a wait tells the service manager that the panel lives */
constexpr int aliveMs = 1000;

// the link

/** kept unread of a replaced connection before its peer is held up, and unsent before it is closed */
constexpr int replacedBufferBytes = 16 * 1024;

/** kept for a peer that does not read; further answers to it are dropped */
constexpr int unsentBytes = 1024 * 1024;

/** replaced connections kept open, and as many that wait to be served: a few of a process's descriptors */
constexpr int connections = 64;

/** a burst that takes longer goes on in the next turn of the event loop: a picture lags by no more */
constexpr int drainTurnMs = 100;

} // namespace limits
