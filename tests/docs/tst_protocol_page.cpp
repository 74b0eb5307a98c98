#include "app/limits.h"
#include "link/packet.h"
#include "link/tcp_server.h"
#include "tests/docs/document.h"
#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tests/support/signalrecorder.h"
#include "tools/supervisor/modeanswers.h"
#include "tools/supervisor/words.h"

#include <QLabel>
#include <QSet>

namespace {

const Document& page()
{
    static const Document protocol(QStringLiteral("docs/protocol.md"));
    return protocol;
}

QByteArray hex(const QString& digits)
{
    return QByteArray::fromHex(digits.toLatin1());
}

QByteArray packet(int command, const QByteArray& data)
{
    return packetOf(Command(command), data);
}

QString nameOf(int command)
{
    return QString::fromLatin1(wire::commands[command - firstCommand].name);
}

QByteArray saidIn(const QString& words)
{
    const ParsedWords parsed = parseWords(words.split(QLatin1Char(' ')), Vocabulary::Packets,
                                          QDir(QStringLiteral(VIREO_SOURCE_DIR)));
    return parsed.action.packet;
}

/** The names of recorded signals, in order. */
QStringList names(const QStringList& signalsWithArguments)
{
    QStringList found;
    for (const QString& text : signalsWithArguments)
        found << text.section(QLatin1Char('('), 0, 0);
    return found;
}

QStringList signalsOf(const QByteArray& bytes)
{
    PAparser parser;
    SignalRecorder recorder(&parser);
    parser.parseBySupervisor(bytes);
    return names(recorder.take());
}

QSet<QString> asSet(const QStringList& list)
{
    return QSet<QString>(list.begin(), list.end());
}

/** Every word of the stand-in supervisor that makes a packet, with arguments that do: the page's examples,
 * and those whose packets are too long for a line. */
QStringList samples()
{
    QStringList found = {QStringLiteral("file README.md"), QStringLiteral("station Title http://a.example/")};
    for (const TableRow& row : page().table(QStringLiteral("Worked examples")))
        found << Document::word(row[0]);
    return found;
}

/** Words that stand for no packet of their own. */
const QSet<QString> otherWords = {QStringLiteral("raw"), QStringLiteral("expect"), QStringLiteral("wait")};

QSet<QString> supervisorWords()
{
    static const QRegularExpression line(QStringLiteral("^  (\\S+)"), QRegularExpression::MultilineOption);
    QSet<QString> words;
    const QString help = wordsHelp();
    for (auto matches = line.globalMatch(help); matches.hasNext();)
        words << matches.next().captured(1);
    return words;
}

/** Whether a packet of the command with that many data bytes, all the same, gives a signal for some byte. */
bool isHeard(int command, int dataBytes)
{
    for (int byte = 0; byte < 256; ++byte) {
        if (!signalsOf(packet(command, QByteArray(dataBytes, char(byte)))).isEmpty())
            return true;
    }
    return false;
}

QSet<QString> signalsInSection(const QString& heading)
{
    const QStringList code = Document::code(page().section(heading).join(QLatin1Char('\n')));
    return asSet(code.filter(QRegularExpression(QStringLiteral("^sg"))));
}

QSet<QString> parserSignals()
{
    QSet<QString> found;
    const QMetaObject& meta = PAparser::staticMetaObject;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        found << QString::fromLatin1(meta.method(i).name());
    return found;
}

} // namespace

/** docs/protocol.md against the code, in both directions. */
class ProtocolPageTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { debugLevel = 5; }

    void connectionLimits()
    {
        const QMap<QString, qint64> values = {
            {QStringLiteral("port"), tcp_server::port},
            {QStringLiteral("replacedBufferBytes"), limits::replacedBufferBytes},
            {QStringLiteral("unsentBytes"), limits::unsentBytes},
        };
        QMap<QString, qint64> written;
        for (const TableRow& row : page().table(QStringLiteral("Connection")))
            written.insert(Document::word(row[0]), Document::number(row[1]));
        QCOMPARE(written, values);
    }

    void headerLayout()
    {
        const QMap<QString, QByteArray> fields = {
            {QStringLiteral("command"), "\x02\x01"},
            {QStringLiteral("length"), "\x04\x03"},
            {QStringLiteral("data"), "abc"},
        };
        const QByteArray built = packetOf(0x0102, 0x0304, "abc");
        const Table rows = page().table(QStringLiteral("Packet"));
        QCOMPARE(rows.size(), fields.size());
        for (const TableRow& row : rows) {
            const QByteArray field = fields.value(row[2].section(QLatin1Char(':'), 0, 0));
            QCOMPARE(built.mid(Document::number(row[0]), field.size()), field);
            if (row[1] != QLatin1String("length"))
                QCOMPARE(Document::number(row[1]), int(field.size()));
        }
    }

    void commandCodesAndNames()
    {
        const Table rows = page().table(QStringLiteral("Commands"));
        QCOMPARE(rows.size(), int(lastCommand));
        for (int i = 0; i < rows.size(); ++i) {
            QCOMPARE(Document::number(rows[i][0]), i + firstCommand);
            QCOMPARE(Document::word(rows[i][1]), nameOf(i + firstCommand));
        }
    }

    void commandWords()
    {
        QMap<QString, int> written;
        for (const TableRow& row : page().table(QStringLiteral("Commands"))) {
            if (row[2] != QLatin1String("none"))
                written.insert(Document::word(row[2]), Document::number(row[0]));
        }
        QMap<QString, int> said;
        for (const QString& sample : samples())
            said.insert(sample.section(QLatin1Char(' '), 0, 0), PacketHeader::from(saidIn(sample)).command);
        QCOMPARE(written, said);
        QCOMPARE(asSet(said.keys()) + otherWords, supervisorWords());
    }

    void commandLengths_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<QString>("accepted");
        for (const TableRow& row : page().table(QStringLiteral("Commands")))
            QTest::newRow(qPrintable(row[1])) << Document::number(row[0]) << row[3];
    }
    void commandLengths()
    {
        QFETCH(int, command);
        QFETCH(QString, accepted);
        const bool any = accepted == QLatin1String("any");
        const bool more = accepted == QLatin1String("2 or more");
        const bool one = accepted == QLatin1String("1");
        QVERIFY(any || more || one || accepted == QLatin1String("ignored"));
        QVERIFY(!isHeard(command, 0));
        QCOMPARE(isHeard(command, 1), any || one);
        for (const int bytes : {2, 3, 4, 5, 256, 300})
            QCOMPARE(isHeard(command, bytes), any || more);
    }

    /** The signals in the command's own row; where it says "below", a section has them. */
    void commandSignals()
    {
        for (const TableRow& row : page().table(QStringLiteral("Commands"))) {
            if (row[5] == QLatin1String("below"))
                continue;
            QSet<QString> given;
            for (int byte = 0; byte < 256; ++byte) {
                for (const int bytes : {1, 2})
                    given +=
                        asSet(signalsOf(packet(Document::number(row[0]), QByteArray(bytes, char(byte)))));
            }
            QCOMPARE(given, asSet(Document::code(row[5])));
        }
    }

    void bytesOfOneSignal_data()
    {
        QTest::addColumn<int>("command");
        for (const TableRow& row : page().table(QStringLiteral("Commands"))) {
            const auto command = Command(Document::number(row[0]));
            const bool isMadeOfBits = command == Command::Mode || command == Command::Device;
            if (row[5] == QLatin1String("below") && !isMadeOfBits)
                QTest::newRow(qPrintable(page().headingOf(row[4]))) << int(command);
        }
    }
    void bytesOfOneSignal()
    {
        QFETCH(int, command);
        QMap<int, QStringList> written;
        for (const TableRow& row : page().table(QLatin1String(QTest::currentDataTag()))) {
            const int byte = Document::number(row[0]);
            written.insert(byte, {Document::word(row[2])});
            QCOMPARE(saidIn(Document::word(row[1])), packet(command, QByteArray(1, char(byte))));
        }
        QMap<int, QStringList> given;
        for (int byte = 0; byte < 256; ++byte) {
            const QStringList signalled = signalsOf(packet(command, QByteArray(1, char(byte))));
            if (!signalled.isEmpty())
                given.insert(byte, signalled);
        }
        QCOMPARE(written, given);
    }

    void sourceBits()
    {
        const Table rows = page().table(QStringLiteral("Source bits"));
        for (int mask = 0; mask < 256; ++mask) {
            QStringList expected;
            for (const TableRow& row : rows)
                expected << Document::word(row[mask & Document::number(row[0]) ? 2 : 3]);
            QCOMPARE(signalsOf(packet(int(Command::Device), QByteArray(1, char(mask)))), expected);
        }
        for (const TableRow& row : rows) {
            const QByteArray said = saidIn(Document::word(row[1]));
            QCOMPARE(said, packet(int(Command::Device), QByteArray(1, char(Document::number(row[0])))));
            Panel panel;
            panel.parser().parseBySupervisor(said);
            const QString mode = modeName(quint8(panel.code()));
            QCOMPARE(mode, row[4] == QLatin1String("none") ? row[4] : Document::word(row[4]));
        }
    }

    void playModes()
    {
        const Table rows = page().table(QStringLiteral("Play mode"));
        QCOMPARE(rows.size(), 8);
        for (int byte = 0; byte < 256; ++byte) {
            QStringList expected = Document::code(rows[byte & 7][2]);
            expected << (byte & 8 ? QStringLiteral("sgMode_shuffle") : QStringLiteral("sgMode_off_Shuffle"));
            LogCatcher log(5);
            QCOMPARE(signalsOf(packet(int(Command::Mode), QByteArray(1, char(byte)))), expected);
        }
        for (int i = 0; i < rows.size(); ++i) {
            QCOMPARE(Document::number(rows[i][0]), i);
            if (rows[i][1] != QLatin1String("none"))
                QCOMPARE(saidIn(Document::word(rows[i][1])),
                         packet(int(Command::Mode), QByteArray(1, char(i))));
        }
    }

    void levels()
    {
        QMap<int, QString> written;
        for (const TableRow& row : page().table(QStringLiteral("Level"))) {
            for (int level = Document::number(row[0]); level <= Document::number(row[1]); ++level) {
                QVERIFY2(!written.contains(level), "each level stands in one row");
                written.insert(level, QStringLiteral("sgMasterLevel(%1)").arg(row[2]));
            }
        }
        QCOMPARE(written.size(), 256);
        for (int level = 0; level < 256; ++level) {
            PAparser parser;
            SignalRecorder recorder(&parser);
            parser.parseBySupervisor(packet(int(Command::Level), QByteArray(1, char(level))));
            QCOMPARE(recorder.take(), QStringList(written.value(level)));
        }
    }

    void linesOfWrongLengths()
    {
        QMap<QString, QString> written;
        for (const TableRow& row : page().table(QStringLiteral("Data of a wrong length")))
            written.insert(Document::word(row[0]), QStringLiteral("E ") + Document::word(row[1]));
        QMap<QString, QString> logged;
        for (int command = firstCommand; command <= lastCommand; ++command) {
            LogCatcher log(4);
            signalsOf(packet(command, command == int(Command::Time) ? "x" : "xx"));
            if (!log.plain().isEmpty())
                logged.insert(nameOf(command), log.plain().join(QLatin1Char('\n')));
        }
        QCOMPARE(written, logged);
    }

    void modeReports()
    {
        const Table rows = page().table(QStringLiteral("Mode report"));
        QCOMPARE(rows.size(), int(std::size(wire::modes)));
        for (int i = 0; i < rows.size(); ++i) {
            const wire::Term& mode = wire::modes[i];
            const QByteArray report = hex(Document::word(rows[i][3]));
            QCOMPARE(Document::number(rows[i][0]), int(mode.value));
            QCOMPARE(Document::word(rows[i][1]), QString::fromLatin1(mode.name));
            QCOMPARE(Document::word(rows[i][2]), modeName(mode.value));
            QCOMPARE(report, packetOf(Command::Request, mode.value));
            QCOMPARE(ModeAnswers().take(report), QList<quint8>{mode.value});
        }
    }

    void cutting_data()
    {
        QTest::addColumn<QStringList>("chunks");
        QTest::addColumn<QStringList>("expected");
        for (const TableRow& row : page().table(QStringLiteral("Cutting the stream")))
            QTest::newRow(qPrintable(row[2]))
                << Document::word(row[0]).split(QLatin1Char('/')) << Document::code(row[1]);
    }
    void cutting()
    {
        QFETCH(QStringList, chunks);
        QFETCH(QStringList, expected);
        Panel panel;
        LogCatcher log(5);
        SignalRecorder recorder(&panel.parser());
        for (const QString& chunk : chunks)
            panel.window.stackBuff(hex(chunk));
        QCOMPARE(names(recorder.take()), expected);
    }

    void workedExamples_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("expected");
        for (const TableRow& row : page().table(QStringLiteral("Worked examples")))
            QTest::newRow(qPrintable(Document::word(row[0])))
                << hex(Document::word(row[1])) << Document::code(row[2]);
    }
    void workedExamples()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, expected);
        QCOMPARE(saidIn(QString::fromUtf8(QTest::currentDataTag())).toHex(' '), bytes.toHex(' '));
        QCOMPARE(signalsOf(bytes), expected);
    }

    /** All but those whose packets are too long for a line. */
    void everyWordHasAnExample()
    {
        QSet<QString> shown = {QStringLiteral("file"), QStringLiteral("station")};
        for (const TableRow& row : page().table(QStringLiteral("Worked examples")))
            shown << Document::word(row[0]).section(QLatin1Char(' '), 0, 0);
        QCOMPARE(shown, supervisorWords() - otherWords);
    }

    void session()
    {
        Panel panel;
        const Table rows = page().table(QStringLiteral("Worked examples"), 1);
        QVERIFY(rows.size() > 10);
        for (const TableRow& row : rows) {
            LogCatcher log(5);
            const QByteArray bytes = hex(Document::word(row[1]));
            QCOMPARE(saidIn(Document::word(row[0])), bytes);
            panel.window.stackBuff(bytes);
            QCOMPARE(modeName(quint8(panel.code())), Document::word(row[2]));
        }
    }

    void whatShows_data()
    {
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("text");
        for (const TableRow& row : page().table(QStringLiteral("Worked examples"), 2))
            QTest::newRow(qPrintable(row[0] + row[1]))
                << Document::word(row[0]) << Document::word(row[1]) << Document::word(row[2]);
    }
    void whatShows()
    {
        QFETCH(QString, words);
        QFETCH(QString, label);
        QFETCH(QString, text);
        Panel panel;
        LogCatcher log(5);
        panel.window.stackBuff(saidIn(QStringLiteral("device usb")));
        panel.window.stackBuff(saidIn(words));
        const auto* shown = panel.window.findChild<QLabel*>(label);
        QVERIFY(shown && shown->isVisible());
        QCOMPARE(shown->text(), text);
    }

    /** What the other tables name is emitted, as their tests show; so these are exactly the rest. */
    void signalsThatNeverCome()
    {
        const QString heading = QStringLiteral("Signals that no packet carries");
        QSet<QString> elsewhere;
        for (const QString& other : page().headings()) {
            if (other != heading && other != page().headings().constFirst())
                elsewhere += signalsInSection(other);
        }
        QCOMPARE(signalsInSection(heading), parserSignals() - elsewhere);
    }
};

VIREO_PORT_TEST_MAIN(ProtocolPageTest)
#include "tst_protocol_page.moc"
