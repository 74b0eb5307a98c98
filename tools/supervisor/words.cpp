#include "tools/supervisor/words.h"

#include "link/packet.h"
#include "tools/supervisor/bytetext.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <sys/stat.h>

namespace {

using wire::Term;
using wire::Terms;

const Term* find(const Terms& terms, const QString& word)
{
    const auto* found = std::find_if(terms.begin(), terms.end(),
                                     [&](const Term& term) { return word == QLatin1String(term.word); });
    return found == terms.end() ? nullptr : found;
}

QString joined(const Terms& terms, const char* separator)
{
    QStringList words;
    for (const Term& term : terms)
        words << QString::fromLatin1(term.word);
    return words.join(QLatin1String(separator));
}

/** The arguments of a word, and what they are checked against. */
struct Call {
    QStringList values;
    wire::ByteData expected;
    QDir folder;
};

struct Built {
    QByteArray data;
    int value = 0;
    QString error;
    QString remark = {};
};

Built failed(const QString& reason)
{
    return {{}, 0, reason};
}

Built byteOf(int value)
{
    return {QByteArray(1, char(value)), value, {}};
}

Built notAmong(const QString& value, const Terms& terms)
{
    return failed(QStringLiteral("\"%1\" is not one of %2").arg(value, joined(terms, ", ")));
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

Built oneByte(const Call& call)
{
    const wire::ByteData& expected = call.expected;
    if (expected.number)
        return numberBetween(call.values[0], expected.least, expected.most);
    const Term* term = find(expected.terms, call.values[0]);
    return term ? byteOf(term->value) : notAmong(call.values[0], expected.terms);
}

Built keyCode(const Call& call)
{
    const QLatin1String prefix("long-");
    const bool isLong = call.values[0].startsWith(prefix);
    const QString name = isLong ? call.values[0].mid(prefix.size()) : call.values[0];
    const Term* key = find(call.expected.terms, name);
    if (!key)
        return notAmong(call.values[0], call.expected.terms);
    return byteOf(isLong ? wire::held(wire::Key(key->value)) : key->value);
}

Built sourceMask(const Call& call)
{
    int mask = 0;
    for (const QString& name : call.values) {
        const Term* source = find(call.expected.terms, name);
        if (!source)
            return notAmong(name, call.expected.terms);
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
        const Term* flag = find(wire::playFlags, name);
        const Term* type = find(wire::playTypes, name);
        if (!flag && !type)
            return failed(QStringLiteral("\"%1\" is not one of %2, %3")
                              .arg(name, joined(wire::playFlags, ", "), joined(wire::playTypes, ", ")));
        if (call.values.count(name) > 1)
            return failed(QStringLiteral("\"%1\" is given twice").arg(name));
        mode |= flag ? flag->value : type->value;
        types += type ? 1 : 0;
    }
    return types == 1 ? byteOf(mode)
                      : failed(QStringLiteral("needs one of ") + joined(wire::playTypes, ", "));
}

/** The name is sent as it is, in UTF-8 or not; the toolkit could not look for the latter. */
Built filePath(const Call& call)
{
    const QByteArray path = bytesOf(QDir::cleanPath(call.folder.absoluteFilePath(call.values[0])));
    struct stat file = {};
    if (call.values[0].isEmpty() || stat(path.constData(), &file) != 0)
        return failed(QStringLiteral("no such file: \"%1\"").arg(call.values[0]));
    if (S_ISDIR(file.st_mode))
        return failed(QStringLiteral("\"%1\" is a folder").arg(call.values[0]));
    return {path, 0, {}};
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
    QByteArray bytes = bytesOf(text);
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
    const QByteArray title = utf8AtMost(call.values[0], titleField - 1);
    const QByteArray padding(titleField - title.size(), '\0');
    Built built = {title + padding + bytesOf(call.values[1]), 0, {}};
    if (title != bytesOf(call.values[0]))
        built.remark = QStringLiteral("the title was cut to %1 bytes").arg(title.size());
    return built;
}

Built message(const Call& call)
{
    if (call.values[0].isEmpty())
        return failed(QStringLiteral("the text is empty"));
    return {bytesOf(call.values[0]), 0, {}};
}

Built request(const Call&)
{
    return byteOf(int(wire::Request::Mode));
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
    Built built = oneByte(call);
    built.data = QByteArray(1, char(wire::Request::Mode));
    return built;
}

Built milliseconds(const Call& call)
{
    constexpr int longest = 10 * 60 * 1000;
    Built built = numberBetween(call.values[0], 0, longest);
    built.data.clear();
    return built;
}

constexpr int anyNumber = 1000;

/** How a command is said whose data is more than one term or number. "%1" stands for the terms. */
struct Phrase {
    Command command;
    const char* arguments;
    int fewest;
    int most;
    Built (*build)(const Call&);
};

constexpr Phrase phrases[] = {
    {Command::Filename, "PATH", 1, 1, filePath},
    {Command::Time, "[H:]MM:SS", 1, 1, playTime},
    {Command::Mode, "[repeat] [shuffle] %1", 1, anyNumber, playMode},
    {Command::Key, "[long-]%1", 1, 1, keyCode},
    {Command::Device, "%1 ...", 1, anyNumber, sourceMask},
    {Command::IRStation, "TITLE URL", 2, 2, station},
    {Command::DiskInfo, "FILES FOLDERS", 2, 2, diskInfo},
    {Command::Request, "", 0, 0, request},
    {Command::UpgradeMsg, "TEXT", 1, 1, message},
};

/** Stands for words whose data is sent as it is, without a header. */
constexpr Command noCommand = Command(0);

using K = Action::Kind;

struct Word {
    QString name;
    Phrase phrase;
    wire::ByteData expected;
    K kind;
    QString meaning;
};

const Word otherWords[] = {
    {QStringLiteral("raw"),
     {noCommand, "HEX ...", 1, anyNumber, hexBytes},
     {},
     K::Send,
     QStringLiteral("bytes as they are, header included")},
    {QStringLiteral("expect"),
     {Command::Request, "%1", 1, 1, expectedMode},
     {wire::modes},
     K::Expect,
     QStringLiteral("(scripts) asks for the panel's mode, which must be this one")},
    {QStringLiteral("wait"),
     {noCommand, "MS", 1, 1, milliseconds},
     {},
     K::Wait,
     QStringLiteral("(scripts) lets milliseconds pass (at most ten minutes)")},
};

Phrase phraseOf(const wire::CommandRow& row)
{
    const auto* own = std::find_if(std::begin(phrases), std::end(phrases),
                                   [&](const Phrase& phrase) { return phrase.command == row.command; });
    if (own != std::end(phrases))
        return *own;
    return {row.command, row.data.number ? row.data.number : "%1", 1, 1, oneByte};
}

Word wordOf(const wire::CommandRow& row)
{
    QString meaning = QString::fromLatin1(row.meaning);
    if (row.data.number)
        meaning += QStringLiteral(" (%1 to %2)").arg(row.data.least).arg(row.data.most);
    const K kind = row.command == Command::Request ? K::Request : K::Send;
    return {QString::fromLatin1(row.word), phraseOf(row), row.data, kind, meaning};
}

/** A word for each command that people say, and those beside them. */
const std::vector<Word>& words()
{
    static const std::vector<Word> all = [] {
        std::vector<Word> rows;
        for (const wire::CommandRow& row : wire::commands)
            if (row.word)
                rows.push_back(wordOf(row));
        rows.insert(rows.end(), std::begin(otherWords), std::end(otherWords));
        return rows;
    }();
    return all;
}

bool isScriptOnly(const Word& word)
{
    return word.kind == K::Expect || word.kind == K::Wait;
}

QString usageOf(const Word& word)
{
    const QString arguments = QString::fromLatin1(word.phrase.arguments)
                                  .replace(QLatin1String("%1"), joined(word.expected.terms, "|"));
    return (word.name + QLatin1Char(' ') + arguments).trimmed();
}

const Word* findWord(const QString& name, Vocabulary vocabulary)
{
    const auto found =
        std::find_if(words().begin(), words().end(), [&](const Word& word) { return name == word.name; });
    if (found == words().end() || (vocabulary == Vocabulary::Packets && isScriptOnly(*found)))
        return nullptr;
    return &*found;
}

QString wrongNumber(const Word& word, int given)
{
    if (given >= word.phrase.fewest && given <= word.phrase.most)
        return {};
    return QStringLiteral("too %1 words; say: %2")
        .arg(given < word.phrase.fewest ? QStringLiteral("few") : QStringLiteral("many"), usageOf(word));
}

ParsedWords packed(const Word& word, const Built& built)
{
    const QString prefix = word.name + QStringLiteral(": ");
    if (!built.error.isEmpty())
        return {{}, prefix + built.error};
    const Command command = word.phrase.command;
    if (command == noCommand)
        return {{word.kind, built.data, built.value}, {}};
    if (built.data.size() > mostDataBytes)
        return {{}, prefix + QStringLiteral("longer than a packet can be")};
    const QString remark = built.remark.isEmpty() ? QString() : prefix + built.remark;
    return {{word.kind, packetOf(command, built.data), built.value}, {}, remark};
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
    return packed(*word,
                  misfit.isEmpty() ? word->phrase.build({values, word->expected, folder}) : failed(misfit));
}

QByteArray modeRequest()
{
    return parseWords({QStringLiteral("request")}).action.packet;
}

QString modeName(quint8 code)
{
    for (const Term& mode : wire::modes)
        if (mode.value == code)
            return QString::fromLatin1(mode.word);
    return QStringLiteral("unknown (%1)").arg(code);
}

QString wordsHelp()
{
    QString help;
    for (const Word& word : words())
        help += QStringLiteral("  %1\n        %2\n").arg(usageOf(word), word.meaning);
    return help;
}
