#include "tools/supervisor/words.h"

#include "link/packet.h"

#include <QFileInfo>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace {

struct Choice {
    const char* name;
    quint8 value;

    QString text() const { return QString::fromLatin1(name); }
};

struct Choices {
    const Choice* first = nullptr;
    std::size_t count = 0;

    constexpr Choices() = default;
    template <std::size_t N>
    constexpr Choices(const Choice (&all)[N])
        : first(all)
        , count(N)
    {
    }
    const Choice* begin() const { return first; }
    const Choice* end() const { return first + count; }

    const Choice* find(const QString& name) const
    {
        const auto* found = std::find_if(
            begin(), end(), [&](const Choice& choice) { return name == QLatin1String(choice.name); });
        return found == end() ? nullptr : found;
    }
    QString joined(const char* separator) const
    {
        QStringList names;
        for (const Choice& choice : *this)
            names << choice.text();
        return names.join(QLatin1String(separator));
    }
};

constexpr quint8 longPress = 0x80;
constexpr quint8 askForMode = 8;
constexpr quint8 repeatBit = 0x04;
constexpr quint8 shuffleBit = 0x08;

constexpr Choice keys[] = {
    {"stop", 1}, {"play-pause", 2}, {"prev", 3}, {"next", 4}, {"mode", 5}, {"select", 6}, {"esc", 7},
};
constexpr Choice sources[] = {
    {"usb", 0x01}, {"stream", 0x02}, {"aux", 0x04}, {"ir", 0x08}, {"aoe", 0x10}, {"none", 0x00},
};
constexpr Choice diskStates[] = {
    {"normal", 1},
    {"removed", 3},
};
constexpr Choice playFlags[] = {
    {"repeat", repeatBit},
    {"shuffle", shuffleBit},
};
constexpr Choice playTypes[] = {
    {"one", 0},
    {"all", 1},
    {"folder", 2},
};
constexpr Choice aoeStates[] = {
    {"stop", 0},
    {"ok", 1},
    {"fail", 2},
    {"over", 3},
};
constexpr Choice upgradeSteps[] = {
    {"start", 1},
    {"fail", 2},
};
constexpr Choice dhcpSteps[] = {
    {"done", 2},
};
constexpr Choice modes[] = {
    {"menu", 0},   {"usb", 1},   {"aoe", 2},  {"radio-list", 3}, {"radio", 4},
    {"netbgm", 5}, {"setup", 6}, {"dhcp", 7}, {"none", 255},
};

/** The arguments of a word, and what they are checked against. */
struct Call {
    QStringList values;
    Choices choices;
    QDir folder;
};

struct Built {
    QByteArray data;
    int value = 0;
    QString error;
};

Built failed(const QString& reason)
{
    return {{}, 0, reason};
}

Built byteOf(int value)
{
    return {QByteArray(1, char(value)), value, {}};
}

Built notAmong(const QString& value, const Choices& choices)
{
    return failed(QStringLiteral("\"%1\" is not one of %2").arg(value, choices.joined(", ")));
}

/** A decimal number between two bounds, as the packet's byte. */
Built numberBetween(const QString& text, int least, int most)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    if (!isNumber || number < least || number > most)
        return failed(QStringLiteral("\"%1\" is not a number from %2 to %3")
                          .arg(text, QString::number(least), QString::number(most)));
    return byteOf(number);
}

Built oneChoice(const Call& call)
{
    const Choice* choice = call.choices.find(call.values[0]);
    return choice ? byteOf(choice->value) : notAmong(call.values[0], call.choices);
}

Built keyCode(const Call& call)
{
    const QLatin1String prefix("long-");
    const bool isLong = call.values[0].startsWith(prefix);
    const QString name = isLong ? call.values[0].mid(prefix.size()) : call.values[0];
    const Choice* key = call.choices.find(name);
    return key ? byteOf(key->value | (isLong ? longPress : 0)) : notAmong(call.values[0], call.choices);
}

Built encoderSteps(const Call& call)
{
    return numberBetween(call.values[0], -128, 127);
}

Built masterLevel(const Call& call)
{
    return numberBetween(call.values[0], 0, 255);
}

Built sourceMask(const Call& call)
{
    int mask = 0;
    for (const QString& name : call.values) {
        const Choice* source = call.choices.find(name);
        if (!source)
            return notAmong(name, call.choices);
        if (call.values.count(name) > 1)
            return failed(QStringLiteral("\"%1\" is given twice").arg(name));
        if (source->value == 0 && call.values.size() > 1)
            return failed(QStringLiteral("\"%1\" stands alone").arg(name));
        mask |= source->value;
    }
    return byteOf(mask);
}

Built playMode(const Call& call)
{
    int mode = 0;
    int types = 0;
    for (const QString& name : call.values) {
        const Choice* flag = Choices(playFlags).find(name);
        const Choice* type = Choices(playTypes).find(name);
        if (!flag && !type)
            return failed(QStringLiteral("\"%1\" is not one of repeat, shuffle, one, all, folder").arg(name));
        if (call.values.count(name) > 1)
            return failed(QStringLiteral("\"%1\" is given twice").arg(name));
        mode |= flag ? flag->value : type->value;
        types += type ? 1 : 0;
    }
    return types == 1 ? byteOf(mode) : failed(QStringLiteral("needs one of one, all, folder"));
}

Built filePath(const Call& call)
{
    const QFileInfo file(call.folder, call.values[0]);
    if (call.values[0].isEmpty() || !file.exists())
        return failed(QStringLiteral("no such file: \"%1\"").arg(call.values[0]));
    if (file.isDir())
        return failed(QStringLiteral("\"%1\" is a folder").arg(call.values[0]));
    return {QDir::cleanPath(file.absoluteFilePath()).toUtf8(), 0, {}};
}

/** A field of one or two digits below `bound`, binary-coded; -1 when it is none. */
int binaryCoded(const QString& field, int bound)
{
    bool isNumber = false;
    const int number = field.toInt(&isNumber);
    if (!isNumber || !field[0].isDigit() || field.size() > 2 || number >= bound)
        return -1;
    return number / 10 * 16 + number % 10;
}

Built playTime(const Call& call)
{
    const QStringList fields = call.values[0].split(QLatin1Char(':'));
    const auto bad = failed(QStringLiteral("\"%1\" is not a time like 3:07 or 0:03:07").arg(call.values[0]));
    if (fields.size() < 2 || fields.size() > 3)
        return bad;
    QByteArray data;
    for (const QString& field : fields) {
        const int byte = data.isEmpty() ? binaryCoded(field, 100) : binaryCoded(field, 60);
        if (byte < 0 || (!data.isEmpty() && field.size() != 2))
            return bad;
        data.append(char(byte));
    }
    return {data, 0, {}};
}

void appendLittleEndian16(QByteArray& data, int number)
{
    data.append(char(number & 0xFF));
    data.append(char(number >> 8));
}

Built diskInfo(const Call& call)
{
    QByteArray data;
    for (const QString& text : call.values) {
        const Built count = numberBetween(text, 0, 0xFFFF);
        if (!count.error.isEmpty())
            return count;
        appendLittleEndian16(data, count.value);
    }
    return {data, 0, {}};
}

/** The text in UTF-8, cut between two characters so that it takes at most `most` bytes. */
QByteArray utf8AtMost(const QString& text, int most)
{
    QByteArray bytes = text.toUtf8();
    if (bytes.size() <= most)
        return bytes;
    int end = most;
    while (end > 0 && (quint8(bytes[end]) & 0xC0) == 0x80)
        --end;
    bytes.truncate(end);
    return bytes;
}

Built station(const Call& call)
{
    constexpr int titleField = 256; // its last byte is always zero
    QByteArray data = utf8AtMost(call.values[0], titleField - 1);
    data.append(QByteArray(titleField - data.size(), '\0'));
    return {data + call.values[1].toUtf8(), 0, {}};
}

Built message(const Call& call)
{
    if (call.values[0].isEmpty())
        return failed(QStringLiteral("the text is empty"));
    return {call.values[0].toUtf8(), 0, {}};
}

Built request(const Call&)
{
    return byteOf(askForMode);
}

Built hexBytes(const Call& call)
{
    const QString digits = call.values.join(QString()).remove(QLatin1Char(' '));
    const auto isHex = [](QChar c) { return c.unicode() < 0x80 && isxdigit(c.unicode()); };
    if (digits.isEmpty() || digits.size() % 2 || !std::all_of(digits.begin(), digits.end(), isHex))
        return failed(QStringLiteral("needs pairs of hexadecimal digits"));
    return {QByteArray::fromHex(digits.toLatin1()), 0, {}};
}

Built expectedMode(const Call& call)
{
    Built built = oneChoice(call);
    built.data = QByteArray(1, char(askForMode));
    return built;
}

Built milliseconds(const Call& call)
{
    constexpr int longest = 10 * 60 * 1000;
    Built built = numberBetween(call.values[0], 0, longest);
    built.data.clear();
    return built;
}

/** Stands for words whose data is sent as it is, without a header. */
constexpr Command noCommand = Command(0);
constexpr int anyNumber = 1000;

/** "%1" in the arguments stands for the names of the choices. */
struct Word {
    const char* name;
    const char* arguments;
    int fewest;
    int most;
    Action::Kind kind;
    Command command;
    Choices choices;
    Built (*build)(const Call&);
    const char* meaning;
};

using K = Action::Kind;

// clang-format off
constexpr Word words[] = {
    {"key", "[long-]%1", 1, 1, K::Send, Command::Key, keys, keyCode, "a key of the front panel, pressed or held"},
    {"enc", "STEPS", 1, 1, K::Send, Command::Encoder, {}, encoderSteps, "turns the encoder, to the right where positive (-128 to 127)"},
    {"device", "%1 ...", 1, anyNumber, K::Send, Command::Device, sources, sourceMask, "the sources that are active now"},
    {"file", "PATH", 1, 1, K::Send, Command::Filename, {}, filePath, "the file that plays now; it must exist"},
    {"time", "[H:]MM:SS", 1, 1, K::Send, Command::Time, {}, playTime, "the play time"},
    {"level", "NUMBER", 1, 1, K::Send, Command::Level, {}, masterLevel, "the master level (0 to 255)"},
    {"disk", "FILES FOLDERS", 2, 2, K::Send, Command::DiskInfo, {}, diskInfo, "what the disk holds (0 to 65535 each)"},
    {"disk-state", "%1", 1, 1, K::Send, Command::DiskStat, diskStates, oneChoice, "whether the disk is there"},
    {"mode", "[repeat] [shuffle] one|all|folder", 1, anyNumber, K::Send, Command::Mode, {}, playMode, "the play mode"},
    {"station", "TITLE URL", 2, 2, K::Send, Command::IRStation, {}, station, "the internet-radio station that plays"},
    {"aoe", "%1", 1, 1, K::Send, Command::AoeStat, aoeStates, oneChoice, "the state of audio over Ethernet; over: the rate is too high"},
    {"upgrade", "%1", 1, 1, K::Send, Command::UpgradeInfo, upgradeSteps, oneChoice, "a firmware upgrade begins or has failed"},
    {"upgrade-message", "TEXT", 1, 1, K::Send, Command::UpgradeMsg, {}, message, "the text of the upgrade notice"},
    {"dhcp", "%1", 1, 1, K::Send, Command::MenuDhcp, dhcpSteps, oneChoice, "an address has been obtained"},
    {"request", "", 0, 0, K::Request, Command::Request, {}, request, "asks for the panel's mode and prints its name"},
    {"raw", "HEX ...", 1, anyNumber, K::Send, noCommand, {}, hexBytes, "bytes as they are, header included"},
    {"expect", "%1", 1, 1, K::Expect, Command::Request, modes, expectedMode, "(scripts) asks for the panel's mode, which must be this one"},
    {"wait", "MS", 1, 1, K::Wait, noCommand, {}, milliseconds, "(scripts) lets milliseconds pass (at most ten minutes)"},
};
// clang-format on

bool isScriptOnly(const Word& word)
{
    return word.kind == K::Expect || word.kind == K::Wait;
}

QString usageOf(const Word& word)
{
    const QString arguments =
        QString::fromLatin1(word.arguments).replace(QLatin1String("%1"), word.choices.joined("|"));
    return (QLatin1String(word.name) + QLatin1Char(' ') + arguments).trimmed();
}

const Word* findWord(const QString& name, Vocabulary vocabulary)
{
    const auto* found = std::find_if(std::begin(words), std::end(words),
                                     [&](const Word& word) { return name == QLatin1String(word.name); });
    if (found == std::end(words) || (vocabulary == Vocabulary::Packets && isScriptOnly(*found)))
        return nullptr;
    return found;
}

QString wrongNumber(const Word& word, int given)
{
    if (given >= word.fewest && given <= word.most)
        return {};
    return QStringLiteral("too %1 words; say: %2")
        .arg(given < word.fewest ? QStringLiteral("few") : QStringLiteral("many"), usageOf(word));
}

ParsedWords packed(const Word& word, const Built& built)
{
    if (!built.error.isEmpty())
        return {{}, QLatin1String(word.name) + QStringLiteral(": ") + built.error};
    if (word.command == noCommand)
        return {{word.kind, built.data, built.value}, {}};
    if (built.data.size() > 0xFFFF)
        return {{}, QLatin1String(word.name) + QStringLiteral(": longer than a packet can be")};
    const auto length = quint16(built.data.size());
    return {{word.kind, packetOf(quint16(word.command), length, built.data), built.value}, {}};
}

} // namespace

ParsedWords parseWords(const QStringList& line, Vocabulary vocabulary, const QDir& folder)
{
    if (line.isEmpty())
        return {{}, QStringLiteral("no words given; --help lists them")};
    const Word* word = findWord(line[0], vocabulary);
    if (!word)
        return {{}, QStringLiteral("unknown word \"%1\"; --help lists them").arg(line[0])};
    const QStringList values = line.mid(1);
    const QString misfit = wrongNumber(*word, int(values.size()));
    return packed(*word, misfit.isEmpty() ? word->build({values, word->choices, folder}) : failed(misfit));
}

QByteArray modeRequest()
{
    return parseWords({QStringLiteral("request")}).action.packet;
}

QString modeName(quint8 code)
{
    for (const Choice& mode : modes)
        if (mode.value == code)
            return mode.text();
    return QStringLiteral("unknown (%1)").arg(code);
}

QString wordsHelp()
{
    QString help;
    for (const Word& word : words)
        help += QStringLiteral("  %1\n        %2\n").arg(usageOf(word), QString::fromLatin1(word.meaning));
    return help;
}
