#include "link/packet.h"
#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"
#include "tools/supervisor/script.h"

#include <QProcess>

#include <unistd.h>

namespace {

const QString demo = QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/");

/** One chunk on the wire. */
struct Chunk {
    bool fromPanel;
    QByteArray bytes;
};

/** What ran and what it printed; a program that is missing or fails shows. */
QString output(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished(60000) || process.exitCode() != 0)
        qFatal("%s: %s", qPrintable(program), process.readAllStandardError().constData());
    return QString::fromUtf8(process.readAllStandardOutput());
}

/** tshark as an ordinary user, also for root: for root it loads no script from Debian 13 on. */
QString tshark(const QStringList& arguments)
{
    if (geteuid() != 0)
        return output(QStringLiteral("tshark"), arguments);
    const QStringList nobody{QStringLiteral("--reuid=nobody"), QStringLiteral("--regid=nogroup"),
                             QStringLiteral("--clear-groups"), QStringLiteral("--reset-env"),
                             QStringLiteral("tshark")};
    return output(QStringLiteral("setpriv"), nobody + arguments);
}

void letAllRead(const QString& path)
{
    QFile::setPermissions(path, QFile::permissions(path) | QFile::ReadOther | QFile::ExeOther);
}

/** A capture of the chunks in that order, as the dissector shows it: words, junk and missing bytes of each.
 */
QList<QStringList> dissected(const QList<Chunk>& chunks)
{
    UnitRoot folder;
    const QString text = folder.path(QStringLiteral("/chunks.txt"));
    const QString capture = folder.path(QStringLiteral("/chunks.pcap"));
    const QString script = folder.path(QStringLiteral("/vireo.lua"));
    QByteArray dump;
    for (const Chunk& chunk : chunks)
        dump += (chunk.fromPanel ? "O\n0000 " : "I\n0000 ") + chunk.bytes.toHex(' ') + '\n';
    UnitRoot::write(text, dump);
    output(QStringLiteral("text2pcap"),
           {QStringLiteral("-q"), QStringLiteral("-D"), QStringLiteral("-T"),
            QStringLiteral("40000,%1").arg(linkPort), text, capture});
    const QString words = folder.path(QStringLiteral("/vocabulary.h"));
    UnitRoot::write(script, UnitRoot::read(QStringLiteral(VIREO_SOURCE_DIR "/tools/vireo.lua")));
    UnitRoot::write(words, UnitRoot::read(QStringLiteral(VIREO_SOURCE_DIR "/link/vocabulary.h")));
    for (const QString& path : {folder.path(QString()), capture, script, words})
        letAllRead(path);
    QStringList arguments{QStringLiteral("-n"),
                          QStringLiteral("-r"),
                          capture,
                          QStringLiteral("-X"),
                          QStringLiteral("lua_script:") + script,
                          QStringLiteral("-T"),
                          QStringLiteral("fields")};
    for (const char* field : {"vireo.words", "vireo.junk", "vireo.missing"})
        arguments << QStringLiteral("-e") << QString::fromLatin1(field);
    QList<QStringList> rows;
    for (const QString& line : tshark(arguments).split(QLatin1Char('\n')))
        rows << line.split(QLatin1Char('\t'));
    return rows.mid(0, chunks.size());
}

QStringList wordsIn(const QList<Chunk>& chunks)
{
    QStringList words;
    for (const QStringList& row : dissected(chunks))
        words << row.value(0);
    return words;
}

Chunk modeReport(int code)
{
    return {true, packetOf(Command::Request, QByteArray(1, char(code)))};
}

/** Words as the dissector says them: paths are whole and times have all their digits. */
QString shown(QStringList words, const QDir& folder)
{
    if (words[0] == QLatin1String("file"))
        words[1] = QDir::cleanPath(folder.absoluteFilePath(words[1]));
    if (words[0] == QLatin1String("time"))
        words[1].prepend(QLatin1Char('0'));
    return words.join(QLatin1Char(' '));
}

/** Every packet of one byte that the vocabulary has words for, and how they are said. */
QMap<QByteArray, QString> vocabulary()
{
    QMap<QByteArray, QString> said;
    const auto add = [&said](const wire::CommandRow& row, int byte, const QString& words) {
        said.insert(packetOf(row.command, QByteArray(1, char(byte))),
                    QLatin1String(row.word) + QLatin1Char(' ') + words);
    };
    for (const wire::CommandRow& row : wire::commands) {
        for (const wire::Term& term : row.data.terms) {
            add(row, term.value, QLatin1String(term.word));
            if (row.command == Command::Key)
                add(row, term.value | wire::longPress, QLatin1String("long-") + QLatin1String(term.word));
        }
        if (row.data.number)
            add(row, row.data.most, QString::number(row.data.most));
    }
    return said;
}

} // namespace

/** tools/vireo.lua in the capture program that it is for. */
class DissectorTest : public QObject {
    Q_OBJECT

private slots:
    /** Every line of the demo unit's scripts, with the answers that they expect. */
    void demoSession()
    {
        const QDir scripts(demo + QStringLiteral("scripts"));
        QList<Chunk> chunks;
        QStringList expected;
        for (const QString& name : scripts.entryList({QStringLiteral("*.txt")})) {
            const QStringList lines =
                QString::fromUtf8(UnitRoot::read(scripts.filePath(name))).split(QLatin1Char('\n'));
            for (const ScriptLine& line : Script::load(scripts.filePath(name)).lines) {
                const QStringList words = splitLine(lines.at(line.number - 1)).words;
                const bool asks = line.action.kind == Action::Kind::Expect;
                if (line.action.packet.isEmpty())
                    continue;
                chunks << Chunk{false, line.action.packet};
                expected << (asks ? QStringLiteral("request") : shown(words, scripts));
                if (asks) {
                    chunks << modeReport(line.action.value);
                    expected << QStringLiteral("report ") + words[1];
                }
            }
        }
        QVERIFY(chunks.size() > 100);
        QCOMPARE(wordsIn(chunks), expected);
    }

    void wordsAreTheVocabularys()
    {
        const auto said = vocabulary();
        QList<Chunk> chunks;
        for (const QByteArray& packet : said.keys())
            chunks << Chunk{false, packet};
        QVERIFY(chunks.size() > 30);
        QCOMPARE(wordsIn(chunks), QStringList(said.values()));
    }

    void modesAreTheVocabularys()
    {
        QList<Chunk> chunks{modeReport(99)};
        QStringList expected{QStringLiteral("report (99)")};
        for (const wire::Term& mode : wire::modes) {
            chunks << modeReport(mode.value);
            expected << QStringLiteral("report ") + QLatin1String(mode.word);
        }
        QCOMPARE(wordsIn(chunks), expected);
    }

    /** As the panel cuts it: junk costs a byte, what does not fit is no packet. */
    void chunksAreCutAsThePanelCutsThem()
    {
        const auto supervisor = [](const char* hex) { return Chunk{false, QByteArray::fromHex(hex)}; };
        const auto row = [](const char* words, const char* junk, const char* missing) {
            return QStringList{QLatin1String(words), QLatin1String(junk), QLatin1String(missing)};
        };
        QCOMPARE(dissected({supervisor("ff05000100010500010002"), supervisor("01004000616263"),
                            supervisor("0500030001"), supervisor("0500010008"), supervisor("0d00010007")}),
                 (QList<QStringList>{row("key stop,key play-pause", "ff", ""), row("", "01004000616263", ""),
                                     row("key stop", "", "2"), row("key (0x08)", "", ""),
                                     row("request (7)", "", "")}));
    }
};

VIREO_TEST_MAIN(DissectorTest)
#include "tst_dissector.moc"
