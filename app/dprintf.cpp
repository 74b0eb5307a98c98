#include "app/dprintf.h"

#include "app/limits.h"

#include <QByteArray>
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

bool colours = true;
int printing = -1;

/** Writes the prefix of levels 2 to 4 and returns its length; the other levels have none. */
int writePrefix(int level, char* line)
{
    if (level < 2 || level > 4)
        return 0;
    const LevelStyle& style = lvlString[level];
    return std::snprintf(line, limits::logLineBytes, "[ %s%s@%s%s ] ", colours ? style.colour : "", style.tag,
                         programTag, colours ? colourReset : "");
}

bool isShown(const char* text)
{
    const auto byte = static_cast<unsigned char>(*text);
    const bool isControl = byte < 0x20 || byte == 0x7F;
    return !isControl || (byte == '\n' && text[1] == '\0');
}

QByteArray withoutControls(const char* text)
{
    static constexpr char digits[] = "0123456789abcdef";
    QByteArray shown;
    for (; *text != '\0'; ++text) {
        if (isShown(text))
            shown += *text;
        else
            shown.append("\\x").append(digits[*text >> 4]).append(digits[*text & 0xF]);
    }
    return shown;
}

} // namespace

void debugPrint(int level, const char* format, ...)
{
    if (level < debugLevel)
        return;
    char line[limits::logLineBytes];
    const int prefix = writePrefix(level, line);
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line + prefix, std::size_t(limits::logLineBytes - prefix), format, arguments);
    va_end(arguments);
    printing = level;
    qDebug("%.*s%s", prefix, line, withoutControls(line + prefix).constData());
    printing = -1;
}

int printedLevel()
{
    return printing;
}

void printWithoutColours()
{
    colours = false;
}
