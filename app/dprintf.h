#pragma once

/**
 * The panel's one logging facility.
 *
 * Levels: 0 dump (function entry, hex dumps), 1 verbose, 2 info, 3 warning, 4 error. A message is printed
 * when its level is at least `debugLevel`. Levels 2 to 4 carry a coloured prefix that names the level and the
 * program.
 */

/** The print threshold: set once by the entry point, only read afterwards. */
extern int debugLevel;

/** Formats and prints one message; call it through DPRINTF. Text beyond 8191 bytes, prefix included, is cut.
 * Control bytes of the text then show as escapes, so that no text can pass for another line or speak to a
 * terminal; a line feed that ends it stays. */
[[gnu::format(printf, 2, 3)]] void debugPrint(int level, const char* format, ...);

/** Prints one message of the given level. Below the threshold the arguments are not evaluated. */
#define DPRINTF(level, ...)                                                                                  \
    do {                                                                                                     \
        if ((level) >= debugLevel)                                                                           \
            debugPrint((level), __VA_ARGS__);                                                                \
    } while (false)

/** The level of the message that a handler of the debug stream is being given; -1 where it is not one of
 * these. */
int printedLevel();

/** From now on prefixes have no colour. */
void printWithoutColours();
