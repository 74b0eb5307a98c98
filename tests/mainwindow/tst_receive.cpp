#include "app/limits.h"
#include "link/packet.h"
#include "tests/mainwindow/panel.h"
#include "tests/support/ownport.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/strings.h"

#include <QDir>
#include <QSignalSpy>
#include <QThread>
#include <QTimer>

#include <memory>

namespace {

QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}

const QString stack = QStringLiteral("void MainWindow::stackBuff(QByteArray)");
const QString cut = QStringLiteral("void MainWindow::parsingfromSupervisor()");
const QString check = QStringLiteral("int MainWindow::checkupPacket()");
const QString parseKey = QStringLiteral("void PAparser::parseKey(QByteArray)");
const QString parseLevel = QStringLiteral("void PAparser::parseLevel(QByteArray)");
const QString parseEnc = QStringLiteral("void PAparser::parseEnc(QByteArray)");

/** The two trace lines of a packet. */
QStringList traced(const char* command, const char* length, const char* data)
{
    return {QStringLiteral("receive cmd[%1] length[%2]").arg(QLatin1String(command), QLatin1String(length)),
            QStringLiteral("Parser received Packet : %1").arg(QLatin1String(data))};
}

QStringList sizeError(int waiting, int needed, const char* header)
{
    return {QStringLiteral("E size error"),
            QStringLiteral("E  Pkt queue size [ %1 ] ,, need DataLen [ %2 ] ").arg(waiting).arg(needed),
            QStringLiteral("E Pkt : %1").arg(QLatin1String(header))};
}

/**
 * The cutter written out as it is described, nesting and all, for streams short enough to nest. Gives the
 * data of the packets handed on and the lines of the cutter.
 */
class PlainCutter {
public:
    void stackBuff(const QByteArray& chunk)
    {
        lines << stack;
        if (chunk.isEmpty())
            return;
        queue += chunk;
        parse();
    }

    QByteArray queue;
    QList<QByteArray> packets;
    QStringList lines;

private:
    void parse()
    {
        lines << cut;
        if (queue.size() <= 4)
            return;
        int n = checkup();
        if (n)
            packets << queue.left(n);
        else
            n = 1;
        queue = queue.mid(n);
        if (!queue.isEmpty())
            parse();
    }

    int checkup()
    {
        lines << check;
        const auto at = [this](int i) { return int(quint8(queue.at(i))); };
        const int command = at(0) + 256 * at(1);
        const int length = at(2) + 256 * at(3);
        if (command < 1 || command > 17)
            return 0;
        if (queue.size() < length || length == 0) {
            lines << sizeError(int(queue.size()), length, queue.left(4).toHex().constData());
            return 0;
        }
        return length + 4;
    }
};

/** Makes handling the stop key last longer than a turn of the event loop may. */
class SlowStop : public QObject {
public:
    explicit SlowStop(const PAparser& parser)
    {
        connect(&parser, &PAparser::sgKEY_STOP, this, [] { QThread::msleep(limits::drainTurnMs + 1); });
    }
};

QStringList cutterLines(const QStringList& log)
{
    QStringList lines;
    for (const QString& line : log) {
        if (line.contains(QStringLiteral("MainWindow::")) || line.startsWith(QStringLiteral("E  Pkt"))
            || line.startsWith(QStringLiteral("E Pkt")) || line == QStringLiteral("E size error"))
            lines << line;
    }
    return lines;
}

} // namespace

class ReceiveTest : public QObject {
    Q_OBJECT

private slots:
    void init() { m_silence = std::make_unique<LogCatcher>(5); }
    void cleanup() { m_silence.reset(); }

    void linesOfOneChunk_data()
    {
        QTest::addColumn<QByteArray>("chunk");
        QTest::addColumn<QStringList>("lines");
        QTest::newRow("empty chunk") << QByteArray() << QStringList(stack);
        QTest::newRow("bare header waits") << bytes("05000100") << QStringList({stack, cut});
        QTest::newRow("one packet") << bytes("0500010088")
                                    << QStringList({stack, cut, check}) + traced("0005", "0001", "88")
                + QStringList(parseKey);
        QTest::newRow("two packets in one chunk")
            << bytes("0500010088") + bytes("0b00010000")
            << QStringList({stack, cut, check}) + traced("0005", "0001", "88")
                + QStringList({parseKey, cut, check}) + traced("000B", "0001", "00")
                + QStringList({parseEnc, QStringLiteral("Encoder value [ 0 ]")});
        QTest::newRow("junk byte in front is dropped without a word")
            << bytes("ff") + bytes("0500010088")
            << QStringList({stack, cut, check, cut, check}) + traced("0005", "0001", "88")
                + QStringList(parseKey);
        QTest::newRow("up to four missing bytes pass and are not waited for")
            << bytes("0500030088")
            << QStringList({stack, cut, check}) + traced("0005", "0003", "88") + QStringList(parseKey);
        QTest::newRow("five missing bytes do not")
            << bytes("0500060088")
            << QStringList({stack, cut, check}) + sizeError(5, 6, "05000600") + QStringList(cut);
        QTest::newRow("length 0") << bytes("0400000088")
                                  << QStringList({stack, cut, check}) + sizeError(5, 0, "04000000")
                + QStringList(cut);
        QTest::newRow("bytes behind a packet wait")
            << bytes("0500010088") + bytes("05000100")
            << QStringList({stack, cut, check}) + traced("0005", "0001", "88") + QStringList({parseKey, cut});
        QTest::newRow("command 0 is junk") << bytes("0000010001") << QStringList({stack, cut, check, cut});
        QTest::newRow("a command beyond the last is junk")
            << packetOf(Command(lastCommand + 1), 1) << QStringList({stack, cut, check, cut});
    }
    void linesOfOneChunk()
    {
        QFETCH(QByteArray, chunk);
        QFETCH(QStringList, lines);
        Panel panel;
        LogCatcher log;
        panel.receive(chunk);
        QCOMPARE(log.plain(), lines);
    }

    void longerPacketThanTheQueueIsDestroyedByteByByte()
    {
        Panel panel;
        LogCatcher log;
        panel.window.stackBuff(bytes("01004000") + QByteArray(10, 'x'));
        QCOMPARE(log.plain().mid(0, 7),
                 QStringList({stack, cut, check}) + sizeError(14, 64, "01004000") + QStringList(cut));
        QCOMPARE(log.plain().filter(QStringLiteral("size error")).size(), 1);
        // The next header read is 00 40: no command; then come the letters, no commands either.
        QCOMPARE(log.plain().count(cut), 11);
    }

    void headerAndDataInTwoChunks()
    {
        Panel panel;
        LogCatcher log;
        SignalRecorder recorder(&panel.parser());
        panel.window.stackBuff(bytes("05000100"));
        QCOMPARE(recorder.take(), QStringList());
        panel.window.stackBuff(bytes("01"));
        QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgKEY_STOP()")));
    }

    void everyRemainderIsAnnounced()
    {
        Panel panel;
        LogCatcher log(5);
        QSignalSpy stacked(&panel.window, &MainWindow::sgBuffStacked);
        QSignalSpy queued(&panel.window, &MainWindow::sgRecvQueueEn);
        panel.window.stackBuff(bytes("ffff") + bytes("0500010088") + bytes("01"));
        // The chunk itself, then what remains behind two dropped bytes and the packet.
        QCOMPARE(stacked.count(), 4);
        QCOMPARE(queued.count(), 0);
    }

    void randomStreamsAreCutAsDescribed()
    {
        Panel panel;
        LogCatcher log;
        quint32 seed = 20240607;
        const auto random = [&seed](int below) {
            seed = seed * 1664525u + 1013904223u;
            return int((seed >> 8) % quint32(below));
        };
        PlainCutter plain;
        for (int round = 0; round < 400; ++round) {
            QByteArray chunk;
            for (int pieces = random(6); pieces > 0; --pieces) {
                if (random(3) == 0)
                    chunk += QByteArray(1 + random(3), char(random(256)));
                else // levels and unknown keys leave the screens alone
                    chunk += packetOf(quint16(random(2) ? 4 : 5), quint16(random(5)),
                                      QByteArray(random(4), '\x70'));
            }
            plain.lines.clear();
            plain.stackBuff(chunk);
            log.clear();
            panel.receive(chunk);
            QCOMPARE(cutterLines(log.plain()), plain.lines);
        }
        QVERIFY(plain.packets.size() > 200);
    }

    void megabyteOfJunkInOneBurst_data()
    {
        QTest::addColumn<QByteArray>("junk");
        QTest::newRow("no commands") << QByteArray(1 << 20, '\xff');
        QTest::newRow("commands without length") << bytes("05000000").repeated(1 << 18);
        QTest::newRow("short packets") << bytes("0500010088").repeated(200000);
    }
    void megabyteOfJunkInOneBurst()
    {
        QFETCH(QByteArray, junk);
        Panel panel;
        LogCatcher log(5);
        SignalRecorder recorder(&panel.parser());
        panel.window.stackBuff(junk + bytes("ffffffff") + bytes("0500010001"));
        QVERIFY(QTest::qWaitFor([&] { return recorder.emitted().contains(QStringLiteral("sgKEY_STOP()")); },
                                60000));
        QCOMPARE(recorder.emitted().filter(QStringLiteral("sgKEY")),
                 QStringList(QStringLiteral("sgKEY_STOP()")));
    }

    void slowBurstGoesOnInTheNextTurnOfTheEventLoop()
    {
        Panel panel;
        SlowStop slow(panel.parser());
        PlainCutter plain;
        const QByteArray chunk =
            bytes("0500010001") + bytes("ff") + bytes("0b00010001") + bytes("0500010002");
        plain.stackBuff(chunk);
        SignalRecorder recorder(&panel.parser());
        LogCatcher log;
        QStringList seenByATimer;
        QTimer::singleShot(0, &panel.window, [&] { seenByATimer = recorder.emitted(); });
        panel.window.stackBuff(chunk);
        QCOMPARE(recorder.emitted(), strings({"sgKEY_STOP()"}));
        QTRY_COMPARE(recorder.emitted(), strings({"sgKEY_STOP()", "sgEncRight()", "sgKEY_PLAY_PAUSE()"}));
        QCOMPARE(seenByATimer, strings({"sgKEY_STOP()"}));
        QCOMPARE(cutterLines(log.plain()), plain.lines);
    }

    void burstBehindASlowOneKeepsItsPlace()
    {
        Panel panel;
        SlowStop slow(panel.parser());
        LogCatcher log(5);
        SignalRecorder recorder(&panel.parser());
        panel.window.stackBuff(bytes("0500010001") + bytes("0b00010001"));
        panel.window.stackBuff(bytes("0500010002"));
        QTRY_COMPARE(recorder.emitted(), strings({"sgKEY_STOP()", "sgEncRight()", "sgKEY_PLAY_PAUSE()"}));
    }

    /** Each write that cannot be is one line of the log. The modes change on one packet, as three may take
     * more than a turn of the event loop. */
    void slowBurstRecordsItsLastModeOnly()
    {
        Panel panel;
        connect(&panel.parser(), &PAparser::sgKEY_PLAY_PAUSE, this, [&] {
            panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
            panel.emitParser("sgDEVICE_AOE_Enter()");
            panel.emitParser("sgDEVICE_USB_FRONT_Enter()");
        });
        QVERIFY(QDir().mkpath(panel.unit.path(QStringLiteral("/opt/orvane/conf/oper_mode.xml"))));
        const auto failedWrites = [] {
            return LogCatcher::plain().filter(QStringLiteral("irectory")).size();
        };
        const QByteArray modes = bytes("0500010002");
        LogCatcher log(4);
        panel.receive(modes);
        QCOMPARE(failedWrites(), 3);
        panel.emitParser("sgKEY_LONG_SELECT()");
        SlowStop slow(panel.parser());
        log.clear();
        panel.window.stackBuff(bytes("0500010001") + modes);
        QCOMPARE(failedWrites(), 0);
        QTRY_COMPARE(panel.mode(), QStringLiteral("USBMode"));
        QCOMPARE(failedWrites(), 1);
    }

    void slowBurstLeavesTheModeInTheFile()
    {
        Panel panel;
        SlowStop slow(panel.parser());
        LogCatcher log(5);
        panel.window.stackBuff(bytes("0500010001") + bytes("0700010001") + bytes("0700010010"));
        QTRY_VERIFY(UnitRoot::read(panel.unit.path(QStringLiteral("/opt/orvane/conf/oper_mode.xml")))
                        .contains("aoe"));
    }

private:
    std::unique_ptr<LogCatcher> m_silence;
};

VIREO_PORT_TEST_MAIN(ReceiveTest)
#include "tst_receive.moc"
