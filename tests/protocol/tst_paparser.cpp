#include "link/packet.h"
#include "protocol/paparser.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/signalrecorder.h"
#include "tests/support/strings.h"

namespace {

QByteArray packet(int command, const QByteArray& data)
{
    return packetOf(Command(command), data);
}

QByteArray bytes(const char* hex)
{
    return QByteArray::fromHex(hex);
}

const QStringList allSourcesGone = {
    QStringLiteral("sgDEVICE_USB_FRONT_Exit()"), QStringLiteral("sgDEVICE_USB_STREAM_Exit()"),
    QStringLiteral("sgDEVICE_AUX_Exit()"),       QStringLiteral("sgDEVICE_IR_Exit()"),
    QStringLiteral("sgDEVICE_AOE_Exit()"),
};

} // namespace

class PAparserTest : public QObject {
    Q_OBJECT

private slots:
    /** New ones stand behind these. */
    void vocabularyInItsOrder()
    {
        const QStringList expected = strings({
            "sgPlayTime(QString)",
            "sgMasterLevel(uchar)",
            "sgFileName(QString)",
            "sgKEY_STOP()",
            "sgKEY_PLAY_PAUSE()",
            "sgKEY_PLAY()",
            "sgKEY_PAUSE()",
            "sgKEY_PREV()",
            "sgKEY_NEXT()",
            "sgKEY_MODE()",
            "sgKEY_SELECT()",
            "sgKEY_ESC()",
            "sgKEY_FONT()",
            "sgKEY_LONG_STOP()",
            "sgKEY_LONG_PLAY_PAUSE()",
            "sgKEY_LONG_PREV()",
            "sgKEY_LONG_NEXT()",
            "sgKEY_LONG_MODE()",
            "sgKEY_LONG_SELECT()",
            "sgKEY_LONG_ESC()",
            "sgMode_rpt_All()",
            "sgMode_rpt_One()",
            "sgMode_rpt_Folder()",
            "sgMode_All()",
            "sgMode_One()",
            "sgMode_Folder()",
            "sgMode_shuffle()",
            "sgMode_off_Shuffle()",
            "sgDiskStatNormal()",
            "sgDiskRemoved()",
            "sgDiskInfo(QString,QString)",
            "sgAoeInfo(QString,QString)",
            "sgIRInfo(QString,QString)",
            "sgDEVICE_USB_FRONT_Enter()",
            "sgDEVICE_USB_FRONT_Exit()",
            "sgDEVICE_USB_STREAM_Enter()",
            "sgDEVICE_USB_STREAM_Exit()",
            "sgDEVICE_AUX_Enter()",
            "sgDEVICE_AUX_Exit()",
            "sgDEVICE_IR_Enter()",
            "sgDEVICE_IR_Exit()",
            "sgDEVICE_AOE_Enter()",
            "sgDEVICE_AOE_Exit()",
            "sgDEVICE_NetBGM_Enter()",
            "sgDEVICE_NetBGM_Exit()",
            "sgDEVICE_Menu_Enter()",
            "sgDEVICE_Menu_Exit()",
            "sgDEVICE_Set_Enter()",
            "sgDEVICE_Set_Exit()",
            "sgEncLeft()",
            "sgEncRight()",
            "sgMenuRequest()",
            "sgDHCP_NO()",
            "sgDHCP_YES()",
            "sgDHCP_CMP()",
            "sgUpgradeStart()",
            "sgUpgradeFail()",
            "sgUpgradeMSG(QString)",
            "sgAOE_STAT_STOP()",
            "sgAOE_STAT_OK()",
            "sgAOE_STAT_FAIL()",
            "sgAOE_STAT_OVER()",
        });
        QCOMPARE(ownMethods(PAparser::staticMetaObject).mid(0, expected.size()), expected);
    }

    void packetGivesSignals_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QStringList>("signals_");
        const auto row = [](const char* name, int command, const QByteArray& data,
                            const QStringList& emitted) {
            QTest::newRow(name) << command << data << emitted;
        };
        const auto one = [](const char* text) { return QStringList(QString::fromUtf8(text)); };
        const char* const keyNames[] = {"STOP", "PLAY_PAUSE", "PREV", "NEXT", "MODE", "SELECT", "ESC"};
        for (int code = 1; code <= 7; ++code) {
            const QString name = QString::fromLatin1(keyNames[code - 1]);
            row(qPrintable(QStringLiteral("key ") + name), 5, QByteArray(1, char(code)),
                {QStringLiteral("sgKEY_%1()").arg(name)});
            row(qPrintable(QStringLiteral("long key ") + name), 5, QByteArray(1, char(code | 0x80)),
                {QStringLiteral("sgKEY_LONG_%1()").arg(name)});
        }
        row("key code 0 means nothing", 5, bytes("00"), {});
        row("key code 8 means nothing", 5, bytes("08"), {});
        row("key code 0x88 means nothing", 5, bytes("88"), {});
        row("key code 0x80 means nothing", 5, bytes("80"), {});
        row("key with two bytes", 5, bytes("0101"), {});
        row("mode one", 3, bytes("00"),
            {QStringLiteral("sgMode_One()"), QStringLiteral("sgMode_off_Shuffle()")});
        row("mode all", 3, bytes("01"),
            {QStringLiteral("sgMode_All()"), QStringLiteral("sgMode_off_Shuffle()")});
        row("mode folder", 3, bytes("02"),
            {QStringLiteral("sgMode_Folder()"), QStringLiteral("sgMode_off_Shuffle()")});
        row("mode undefined", 3, bytes("03"), one("sgMode_off_Shuffle()"));
        row("mode undefined, shuffle", 3, bytes("0b"), one("sgMode_shuffle()"));
        row("mode repeat one", 3, bytes("04"),
            {QStringLiteral("sgMode_rpt_One()"), QStringLiteral("sgMode_off_Shuffle()")});
        row("mode repeat all shuffle", 3, bytes("0d"),
            {QStringLiteral("sgMode_rpt_All()"), QStringLiteral("sgMode_shuffle()")});
        row("mode repeat folder, high bits ignored", 3, bytes("f6"),
            {QStringLiteral("sgMode_rpt_Folder()"), QStringLiteral("sgMode_off_Shuffle()")});
        row("mode repeat undefined", 3, bytes("07"), one("sgMode_off_Shuffle()"));
        row("disk normal", 6, bytes("01"), one("sgDiskStatNormal()"));
        row("disk removed", 6, bytes("03"), one("sgDiskRemoved()"));
        row("disk state 2 means nothing", 6, bytes("02"), {});
        row("disk state 0 means nothing", 6, bytes("00"), {});
        row("no source", 7, bytes("00"), allSourcesGone);
        row("unknown sources are ignored", 7, bytes("e0"), allSourcesGone);
        row("USB front and radio", 7, bytes("09"),
            {QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("sgDEVICE_USB_STREAM_Exit()"),
             QStringLiteral("sgDEVICE_AUX_Exit()"), QStringLiteral("sgDEVICE_IR_Enter()"),
             QStringLiteral("sgDEVICE_AOE_Exit()")});
        row("every source", 7, bytes("ff"),
            {QStringLiteral("sgDEVICE_USB_FRONT_Enter()"), QStringLiteral("sgDEVICE_USB_STREAM_Enter()"),
             QStringLiteral("sgDEVICE_AUX_Enter()"), QStringLiteral("sgDEVICE_IR_Enter()"),
             QStringLiteral("sgDEVICE_AOE_Enter()")});
        row("encoder three left", 11, bytes("fd"),
            {QStringLiteral("sgEncLeft()"), QStringLiteral("sgEncLeft()"), QStringLiteral("sgEncLeft()")});
        row("encoder two right", 11, bytes("02"),
            {QStringLiteral("sgEncRight()"), QStringLiteral("sgEncRight()")});
        row("encoder not turned", 11, bytes("00"), {});
        row("encoder -128 has no magnitude in a signed byte", 11, bytes("80"), {});
        row("request of the mode", 13, bytes("08"), one("sgMenuRequest()"));
        row("request 7 means nothing", 13, bytes("07"), {});
        row("DHCP completed", 14, bytes("02"), one("sgDHCP_CMP()"));
        row("DHCP 1 means nothing", 14, bytes("01"), {});
        row("upgrade started", 15, bytes("01"), one("sgUpgradeStart()"));
        row("upgrade failed", 15, bytes("02"), one("sgUpgradeFail()"));
        row("upgrade 3 means nothing", 15, bytes("03"), {});
        row("AOE stopped", 17, bytes("00"), one("sgAOE_STAT_STOP()"));
        row("AOE playing", 17, bytes("01"), one("sgAOE_STAT_OK()"));
        row("AOE failed", 17, bytes("02"), one("sgAOE_STAT_FAIL()"));
        row("AOE over rate", 17, bytes("03"), one("sgAOE_STAT_OVER()"));
        row("AOE 4 means nothing", 17, bytes("04"), {});
        row("file name ends at its zero byte", 1, QByteArray("song.mp3\0junk", 13),
            {QStringLiteral("sgFileName(song.mp3)"), QStringLiteral("sgKEY_PLAY()")});
        row("Korean file name", 1, "\xEB\x85\xB8\xEB\x9E\x98",
            {QString::fromUtf8("sgFileName(노래)"), QStringLiteral("sgKEY_PLAY()")});
        row("empty file name is a file name", 1, QByteArray(1, '\0'),
            {QStringLiteral("sgFileName()"), QStringLiteral("sgKEY_PLAY()")});
        row("time with hours", 2, bytes("012345"), one("sgPlayTime(01:23:45)"));
        row("time of five seconds", 2, bytes("000509"), one("sgPlayTime(00:05:09)"));
        row("time without hours keeps its place", 2, bytes("0509"), one("sgPlayTime(  05:09)"));
        row("time digits are not checked", 2, bytes("1aff"), one("sgPlayTime(  1a:ff)"));
        row("time of four bytes is empty", 2, bytes("01020304"), one("sgPlayTime()"));
        row("time of one byte", 2, bytes("05"), {});
        row("disk counts, folders first", 10, bytes("0a000300"), one("sgDiskInfo(3, FILES: 10)"));
        row("disk counts are unsigned", 10, bytes("ffff0080"), one("sgDiskInfo(32768, FILES: 65535)"));
        row("disk count missing", 10, bytes("0a00"), one("sgDiskInfo(0, FILES: 10)"));
        row("disk count half there", 10, bytes("0a0003"), one("sgDiskInfo(3, FILES: 10)"));
        row("half a disk count", 10, bytes("0a"), one("sgDiskInfo(0, FILES: 10)"));
        row("disk counts behind the fourth byte", 10, bytes("010002000500"), one("sgDiskInfo(2, FILES: 1)"));
        row("station", 8, QByteArray("Jazz").append(QByteArray(252, '\0')).append(QByteArray(44, 'u')),
            {QStringLiteral("sgIRInfo(Jazz, %1)").arg(QString(44, QLatin1Char('u')))});
        row("station without address", 8, QByteArray("Jazz"), one("sgIRInfo(Jazz, )"));
        row("station title fills its field", 8, QByteArray(256, 't') + QByteArray("u\0v", 3),
            {QStringLiteral("sgIRInfo(%1, u)").arg(QString(256, QLatin1Char('t')))});
        row("upgrade message", 16, QByteArray("50 %\0x", 6), one("sgUpgradeMSG(50 %)"));
        row("empty upgrade message", 16, QByteArray(1, '\0'), {});
        row("command 9 is accepted and ignored", 9, bytes("01"), {});
        row("command 12 is the display's own", 12, bytes("01"), {});
        row("command 0", 0, bytes("01"), {});
        row("a command beyond the last", lastCommand + 1, bytes("01"), {});
    }
    void packetGivesSignals()
    {
        QFETCH(int, command);
        QFETCH(QByteArray, data);
        QFETCH(QStringList, signals_);
        LogCatcher log(5);
        PAparser parser;
        SignalRecorder recorder(&parser);
        parser.parseBySupervisor(packet(command, data));
        QCOMPARE(recorder.emitted(), signals_);
    }

    void wrongLengthIsLoggedOnly_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<QString>("message");
        QTest::newRow("mode") << 3 << "Mode data length shortage or over";
        QTest::newRow("level") << 4 << "level data length shortage";
        QTest::newRow("key") << 5 << "Key data length shortage or over";
        QTest::newRow("disk state") << 6 << "Stat data length shortage or over";
        QTest::newRow("device") << 7 << "Device-Info data length shortage or over";
        QTest::newRow("encoder") << 11 << "ENC data length shortage or over";
        QTest::newRow("request") << 13 << "Menu_Request data length shortage or over";
        QTest::newRow("dhcp") << 14 << "Menu_DHCP data length shortage or over";
        QTest::newRow("upgrade shares the DHCP words") << 15 << "Menu_DHCP data length shortage or over";
        QTest::newRow("AOE state") << 17 << "AOE_STAT data length shortage or over";
    }
    void wrongLengthIsLoggedOnly()
    {
        QFETCH(int, command);
        QFETCH(QString, message);
        LogCatcher log(2);
        PAparser parser;
        SignalRecorder recorder(&parser);
        for (int length : {2, 3, 255}) {
            log.clear();
            parser.parseBySupervisor(packet(command, QByteArray(length, '\1')));
            QCOMPARE(log.plain(), QStringList(QStringLiteral("E ") + message));
        }
        QCOMPARE(recorder.emitted(), QStringList());
    }
    void noDataAtAll()
    {
        LogCatcher log(2);
        PAparser parser;
        SignalRecorder recorder(&parser);
        void (PAparser::*const oneByte[])(QByteArray) = {
            &PAparser::parseMode,     &PAparser::parseLevel,    &PAparser::parseKey,
            &PAparser::parseDiskStat, &PAparser::parseDevice,   &PAparser::parseEnc,
            &PAparser::parseRequest,  &PAparser::parseMenuDhcp, &PAparser::parseUpgradeInfo,
            &PAparser::parseAOE_STAT};
        for (auto handler : oneByte)
            (parser.*handler)(QByteArray());
        QCOMPARE(log.lines().size(), 10);
        parser.parseTime(QByteArray());
        parser.parseUpgradeMSG(QByteArray());
        QCOMPARE(
            log.plain().mid(10),
            QStringList({QStringLiteral("E shortage, time data size"), QStringLiteral("E MSG is Nothing")}));
        QCOMPARE(recorder.take(), QStringList());
        parser.parseDiskInfo(QByteArray());
        parser.parseIRStationInfo(QByteArray());
        parser.parseAOEInfo(QByteArray());
        QCOMPARE(recorder.take(),
                 QStringList({QStringLiteral("sgDiskInfo(0, FILES: 0)"), QStringLiteral("sgIRInfo(, )"),
                              QStringLiteral("sgAoeInfo(0.0.0.0, 16KHz)")}));
    }

    void logOfOnePacket_data()
    {
        QTest::addColumn<int>("command");
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QStringList>("lines");
        const auto row = [](const char* name, int command, const QByteArray& data, const QStringList& more) {
            const QString number = QString::number(command, 16).toUpper().rightJustified(4, '0');
            const QString length = QString::number(data.size(), 16).toUpper().rightJustified(4, '0');
            const QStringList trace = {"receive cmd[" + number + "] length[" + length + "]",
                                       "Parser received Packet : " + QString(data.toHex())};
            QTest::newRow(name) << command << data << trace + more;
        };
        const QString key = "void PAparser::parseKey(QByteArray)";
        const QString mode = "void PAparser::parseMode(QByteArray)";
        row("key", 5, bytes("02"), {key});
        row("unknown key says no more than its signature", 5, bytes("88"), {key});
        row("command 9", 9, bytes("0102"), {});
        row("command 12", 12, bytes("ff"), {});
        row("encoder", 11, bytes("80"), {"void PAparser::parseEnc(QByteArray)", "Encoder value [ -128 ]"});
        row("request has no signature line", 13, bytes("f8"), {"Request value [ -8 ]"});
        row("undefined mode", 3, bytes("03"), {mode, "Undefined TYPE-Info "});
        row("undefined mode with repeat", 3, bytes("07"), {mode, "Undefined TYPE-Info (repeat on) "});
        row("file name", 1, "a.mp3", {"void PAparser::parseFilename(QByteArray)", "I FileName [ a.mp3 ]"});
        row("upgrade message has no signature line", 16, "x", {"I UPGRADE MSG [ x ]"});
        row("AOE state has no signature line", 17, bytes("01"), {});
    }
    void logOfOnePacket()
    {
        QFETCH(int, command);
        QFETCH(QByteArray, data);
        QFETCH(QStringList, lines);
        LogCatcher log;
        PAparser parser;
        parser.parseBySupervisor(packet(command, data));
        QCOMPARE(log.plain(), lines);
    }

    void undefinedModeSpeaksAtAnyThreshold()
    {
        LogCatcher log(5);
        PAparser parser;
        parser.parseMode(bytes("03"));
        QCOMPARE(log.lines(), QStringList(QStringLiteral("Undefined TYPE-Info ")));
    }

    void bareHeaderIsNoPacket()
    {
        LogCatcher log;
        PAparser parser;
        parser.parseBySupervisor(bytes("05000100"));
        parser.parseBySupervisor(QByteArray());
        QVERIFY(log.lines().isEmpty());
    }

    void dataBeyondTheLengthIsLeftOut()
    {
        LogCatcher log(5);
        PAparser parser;
        SignalRecorder recorder(&parser);
        parser.parseBySupervisor(bytes("05000100") + bytes("0102"));
        QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgKEY_STOP()")));
        // A packet whose end has not arrived is handed on with the bytes that are there.
        parser.parseBySupervisor(bytes("05000300") + bytes("01"));
        QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgKEY_STOP()")));
    }

    void everyLevelHasItsSegments()
    {
        LogCatcher log(5);
        for (int value = 0; value < 256; ++value) {
            PAparser parser;
            SignalRecorder recorder(&parser);
            parser.parseLevel(QByteArray(1, char(value)));
            const int segments = value == 0 ? 0 : int(QString::number(value, 2).size());
            QCOMPARE(recorder.take(), QStringList(QStringLiteral("sgMasterLevel(%1)").arg(segments)));
        }
    }

    void fallingLevelIsSmoothedOverThreeReadings()
    {
        LogCatcher log(5);
        PAparser parser;
        SignalRecorder recorder(&parser);
        for (int value : {255, 255, 10, 0, 1, 128, 1, 1, 1})
            parser.parseLevel(QByteArray(1, char(value)));
        // Falls: (8+8+4)/3 = 6, then silence and rises at once, (8+1+1)/3 = 3, equal readings show as they
        // are.
        QStringList expected;
        for (int shown : {8, 8, 6, 0, 1, 8, 3, 1, 1})
            expected << QStringLiteral("sgMasterLevel(%1)").arg(shown);
        QCOMPARE(recorder.emitted(), expected);
    }

    void connectionInfoIsNotReachedByAnyCommand()
    {
        LogCatcher log(5);
        PAparser parser;
        SignalRecorder recorder(&parser);
        parser.parseAOEInfo(bytes("c0a8000a02"));
        parser.parseAOEInfo(bytes("ff00010a07"));
        QCOMPARE(recorder.take(),
                 QStringList({QStringLiteral("sgAoeInfo(192.168.0.10, 44.1KHz)"),
                              QStringLiteral("sgAoeInfo(255.0.1.10, )")}));
        for (int command = 0; command <= lastCommand + 1; ++command)
            parser.parseBySupervisor(packet(command, bytes("c0a8000a02")));
        QVERIFY(recorder.take().filter(QStringLiteral("sgAoeInfo")).isEmpty());
    }

    void rightCommandStandsBehindAPrefix()
    {
        LogCatcher log;
        PAparser parser;
        QVERIFY(parser.isRightCMD(bytes("000000000A000100")));
        QVERIFY(!parser.isRightCMD(bytes("000000000B000100")));
        QVERIFY(!parser.isRightCMD(bytes("0000000000000100")));
        QVERIFY(!parser.isRightCMD(bytes("0000000001000000")));
        QVERIFY(!parser.isRightCMD(bytes("05000100")));
        const QString signature = QStringLiteral("bool PAparser::isRightCMD(QByteArray)");
        const QString wrong = QStringLiteral("E is not Right packet");
        QCOMPARE(log.plain(),
                 QStringList({signature, QStringLiteral("I is Right packet"), signature, wrong, signature,
                              wrong, signature, wrong, signature, wrong}));
    }

    void repeatedPacketIsFoundOnlyBehindItsTwin()
    {
        LogCatcher log(5);
        PAparser parser;
        const QByteArray a = packet(3, bytes("01"));
        const QByteArray b = packet(3, bytes("02"));
        QVERIFY(!parser.isDifferentPacket(QByteArray(), 3)); // two empty packets are equal
        QVERIFY(parser.isDifferentPacket(a, 3));
        QVERIFY(!parser.isDifferentPacket(a, 3));
        QVERIFY(parser.isDifferentPacket(b, 3));
        QVERIFY(parser.isDifferentPacket(a, 3));
        QVERIFY(parser.isDifferentPacket(packet(5, bytes("01")), 5));
        QVERIFY(parser.isDifferentPacket(packet(5, bytes("01")), 5));
        QVERIFY(!parser.isDifferentPacket(a, 3)); // keys are not remembered
    }
};

VIREO_TEST_MAIN(PAparserTest)
#include "tst_paparser.moc"
