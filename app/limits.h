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

/** ten thousand stations fit in here; of open tags the reader keeps some seventy times their size */
constexpr int configFileBytes = 1024 * 1024;

/** a tag longer than this ends its file; bytes, or units of 16 bits where the file is not UTF-8 */
constexpr int xmlTagUnits = 64 * 1024;

/** so does a text or a comment; the values of the unit are a line long */
constexpr int xmlTextUnits = 64 * 1024;

/** so do more attributes of one tag; they mean nothing here, and the reader compares each with all others */
constexpr int xmlTagAttributes = 100;

/** so do more name spaces in one file; the reader goes through all of them at every prefix */
constexpr int xmlNameSpaces = 100;

/** files whose damage was logged are remembered, so that the next reading does not log it again */
constexpr int damagedFiles = 64;

/** the encoding of a file is declared in its first line */
constexpr int declarationBytes = 256;

/** no sample rate is longer than a line of text */
constexpr int sampleRateBytes = 4096;

// what the system says

/** far more than two lines of resolv.conf or one of a routing table can be */
constexpr int systemTextBytes = 64 * 1024;

/** a routing table is printed at once; names are not looked up */
constexpr int routeMs = 2 * 1000;

/** a program that was killed is gone at once, unless it waits for a disk */
constexpr int killedMs = 1000;

/** a network that has not restarted by then will not */
constexpr int networkRestartMs = 30 * 1000;

/** how often a wait tells systemd that the panel lives */
constexpr int aliveMs = 1000;

// texts that show

/** a piece that shows holds some tens; marks fit without end, and placing them takes the square of them */
constexpr int pieceCharacters = 1024;

/** of a text that is centred on its label: too wide, it shows its middle, which more than fits decides */
constexpr int centredCharacters = 1024;

// the link

/** kept unread of a replaced connection before its peer is held up, and unsent before it is closed */
constexpr int replacedBufferBytes = 16 * 1024;

/** kept for a peer that does not read; further answers to it are dropped */
constexpr int unsentBytes = 1024 * 1024;

/** replaced connections kept open, and as many that wait to be served: a few of a process's descriptors */
constexpr int connections = 64;

/** a burst that takes longer goes on in the next turn of the event loop: a picture lags by no more */
constexpr int drainTurnMs = 100;

// pictures

/** what is left for a picture, its file included, of the 128 MiB that the whole panel may take */
constexpr int pictureBytes = 80 * 1024 * 1024;

/** unpacking more takes too long, however few bits each of them has */
constexpr int picturePixels = 32 * 1024 * 1024;

/** of a PNG, whose pixels take up to eight bytes; unpacking more takes too long */
constexpr int pngBytes = 128 * 1024 * 1024;

/** of a JPEG that is decoded whole; the decoder itself reduces a larger one on the way */
constexpr int jpegPixels = 16 * 1024 * 1024;

/** no encoder writes more than some dozens of scans into a progressive JPEG */
constexpr int jpegScans = 256;

/** a JPEG's blocks, each as often as a scan passes it; the decoder needs up to 75 ns for each of them */
constexpr int jpegBlocks = 8 * 1024 * 1024;

/** of a JPEG in several scans, where each byte may change many coefficients */
constexpr int jpegScansBytes = 16 * 1024 * 1024;

/** of a picture in a format that nobody uses for large covers and whose decoder may be slow */
constexpr int rarePictureBytes = 20 * 1024 * 1024;

/** of a picture that is written as text, which is read a character at a time */
constexpr int textPictureBytes = 6 * 1024 * 1024;

// tags

/** of an ID3 tag: texts, and a cover of any size that shows */
constexpr int tagBytes = 32 * 1024 * 1024;

/** of a title, an artist or an album: a hundred screens of text */
constexpr int textCharacters = 16 * 1024;

/** a FLAC file has about ten, and one more for each picture */
constexpr int flacBlocks = 4096;

/** of all the comment headers of a file; a chained stream has about ten for each track */
constexpr int vorbisComments = 100 * 1000;

/** of these comments, each as far as it is decoded, which takes some nanoseconds a byte */
constexpr int vorbisBytes = 64 * 1024 * 1024;

/** of an Ogg file, which is walked to its end: many hours of sound */
constexpr int oggBytes = 512 * 1024 * 1024;

/** of an Ogg file: a gigabyte at their usual length */
constexpr int oggPages = 250 * 1000;

} // namespace limits
