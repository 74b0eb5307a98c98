#include "app/dprintf.h"

#include "app/limits.h"

#include <QtDebug>

#include <cstdarg>
#include <cstdio>
#include <iterator>

int debugLevel = 0;

namespace {

struct LevelStyle {
    const char* tag;
    const char* colour;
};

constexpr LevelStyle lvlString[] = {
    {"", ""}, // 0 dump
    {"", ""}, // 1 verbose
    {"INFO ", "\x1B[36m"}, // 2 info, cyan
    {"WARN ", "\x1B[34m"}, // 3 warning, blue
    {"ERROR", "\x1B[35m"}, // 4 error, magenta
    {"", ""}, // 5 silences everything
};
static_assert(std::size(lvlString) == 6, "one row a level");

constexpr char colourReset[] = "\x1B[0m";
constexpr char programTag[] = "vireo";

/** Writes the prefix of levels 2 to 4 and returns its length; the other levels have none. */
std::size_t writePrefix(int level, char* line)
{
    if (level < 2 || level > 4)
        return 0;
    const LevelStyle& style = lvlString[level];
    return std::size_t(std::snprintf(line, limits::logLineBytes, "[ %s%s@%s%s ] ", style.colour, style.tag,
                                     programTag, colourReset));
}

} // namespace

void debugPrint(int level, const char* format, ...)
{
    if (level < debugLevel)
        return;
    char line[limits::logLineBytes];
    const std::size_t prefix = writePrefix(level, line);
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line + prefix, limits::logLineBytes - prefix, format, arguments);
    va_end(arguments);
    qDebug("%s", line);
}
