#include "app/version.h"
#include "tests/journeys/panelprocess.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"
#include "tests/tags/mediabuilder.h"

#include <QPainter>
#include <QTcpServer>

namespace {

const QString info = QStringLiteral("[ \x1B[36mINFO @vireo\x1B[0m ] ");
const QString warning = QStringLiteral("[ \x1B[34mWARN @vireo\x1B[0m ] ");
const QString error = QStringLiteral("[ \x1B[35mERROR@vireo\x1B[0m ] ");

bool run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    return process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

/** A second of a quiet tone, encoded and tagged by the programs that people use. */
bool makeSong(const QString& folder, const QString& song)
{
    QImage cover(300, 200, QImage::Format_RGB32);
    cover.fill(Qt::darkCyan);
    const QString coverFile = folder + QStringLiteral("/cover.jpg");
    const QString wave = folder + QStringLiteral("/tone.wav");
    return cover.save(coverFile)
        && run(QStringLiteral("ffmpeg"),
               {QStringLiteral("-y"), QStringLiteral("-f"), QStringLiteral("lavfi"), QStringLiteral("-i"),
                QStringLiteral("sine=frequency=440:duration=1"), wave})
        && run(QStringLiteral("lame"), {QStringLiteral("--quiet"), wave, song})
        && run(QStringLiteral("eyeD3"),
               {QStringLiteral("--to-v2.3"), QStringLiteral("--encoding"), QStringLiteral("latin1"),
                QStringLiteral("-t"), QStringLiteral("Morning Corridor"), QStringLiteral("-a"),
                QStringLiteral("Quiet Hall"), QStringLiteral("-A"), QStringLiteral("Evening"),
                QStringLiteral("--add-image"), coverFile + QStringLiteral(":FRONT_COVER"), song});
}

} // namespace

class SessionTest : public QObject {
    Q_OBJECT

private slots:
    void threshold_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("announced");
        QTest::newRow("none: errors only") << QStringList() << 1;
        QTest::newRow("4") << QStringList(QStringLiteral("4")) << 1;
        QTest::newRow("3") << QStringList(QStringLiteral("3")) << 2;
        QTest::newRow("2") << QStringList(QStringLiteral("2")) << 3;
        QTest::newRow("1") << QStringList(QStringLiteral("1")) << 4;
        QTest::newRow("0") << QStringList(QStringLiteral("0")) << 5;
        QTest::newRow("text counts as 0") << QStringList(QStringLiteral("abc")) << 5;
        QTest::newRow("number with text behind") << QStringList(QStringLiteral("3rd")) << 2;
        QTest::newRow("negative prints everything") << QStringList(QStringLiteral("-3")) << 5;
        QTest::newRow("far below") << QStringList(QStringLiteral("-99999999999999999999")) << 5;
        QTest::newRow("5 is silence") << QStringList(QStringLiteral("5")) << 0;
        QTest::newRow("9 is silence too") << QStringList(QStringLiteral("9")) << 0;
        QTest::newRow("far above") << QStringList(QStringLiteral("99999999999999999999")) << 0;
        QTest::newRow("further arguments are ignored")
            << QStringList({QStringLiteral("3"), QStringLiteral("0")}) << 2;
    }
    void threshold()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, announced);
        const QStringList all = {error + QStringLiteral("Will be print 'ERROR MSG'"),
                                 warning + QStringLiteral("Will be print 'WARNING MSG'"),
                                 info + QStringLiteral("Will be print 'INFO MSG'"),
                                 QStringLiteral("Will be print 'VERBOSE MSG'"),
                                 QStringLiteral("Will be print 'DUMP MSG'")};
        const QString stars = QStringLiteral("**********************************");
        PanelProcess panel(arguments);
        QVERIFY(panel.connectSupervisor());
        QCOMPARE(panel.mode(), 255);
        const QStringList lines = panel.lines();
        const int banner = int(lines.indexOf(stars));
        QVERIFY(banner >= 0);
        QCOMPARE(lines.value(banner + 1),
                 QStringLiteral(" vireo %1 Ticker updated").arg(QLatin1String(vireoVersion)));
        QCOMPARE(lines.value(banner + 2), QLatin1Char(' ') + stars + QLatin1Char(' '));
        QCOMPARE(lines.mid(banner + 3, announced), all.mid(0, announced));
        QCOMPARE(lines.filter(QStringLiteral("Will be print")).size(), announced);
        if (announced == 0)
            QCOMPARE(lines.mid(banner + 3).join(QString()), QString());
        if (announced >= 3) {
            const QString listening = info + QStringLiteral("Tcp server On");
            QVERIFY(lines.indexOf(info + QStringLiteral("Unifont")) > banner);
            QVERIFY(lines.indexOf(info + QStringLiteral("Unifont")) < lines.indexOf(listening));
        }
    }

    void playerSession()
    {
        QTemporaryDir music;
        const QString song = music.filePath(QStringLiteral("song.mp3"));
        QVERIFY2(makeSong(music.path(), song), "ffmpeg, lame and eyeD3 make the song");
        PanelProcess panel({QStringLiteral("2")});
        QVERIFY(panel.connectSupervisor());
        QCOMPARE(panel.mode(), 255);
        panel.send(Command::Device, wire::Source::FrontUsb);
        QCOMPARE(panel.mode(), 1);
        QCOMPARE(
            m_unit.readConf(QStringLiteral("oper_mode.xml")),
            QByteArray(
                "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config>\n    <type>usb</type>\n</config>\n"));
        panel.forgetLines();
        panel.send(Command::Filename, song.toUtf8() + '\0');
        panel.send(Command::Time, QByteArray::fromHex("0005"));
        panel.send(Command::Level, 0x80);
        QCOMPARE(panel.mode(), 1);
        const QStringList lines = panel.lines();
        const QStringList expected = {
            info + QStringLiteral("FileName [ %1 ]").arg(song),
            info + QStringLiteral("[ID3] MP3 Tag ( latin01 ) [ Evening ] "),
            info + QStringLiteral("[ID3] MP3 Tag ( latin01 ) [ Quiet Hall ] "),
            info + QStringLiteral("[ID3] MP3 Tag ( latin01 ) [ Morning Corridor ] "),
            info + QStringLiteral("Album Art Image OK"),
        };
        QStringList seen = lines;
        seen.removeAll(QString());
        QCOMPARE(seen, expected);
    }

    /** Each brings libraries of its own, which would cost every start time and memory. */
    void noImagePluginIsLoaded()
    {
        QTemporaryDir music;
        const QString song = music.filePath(QStringLiteral("song.mp3"));
        QVERIFY2(makeSong(music.path(), song), "ffmpeg, lame and eyeD3 make the song");
        PanelProcess panel({});
        const auto pluginsAreLoaded = [&panel] {
            QFile loaded(QStringLiteral("/proc/%1/maps").arg(panel.processId()));
            return loaded.open(QIODevice::ReadOnly) && loaded.readAll().contains("/imageformats/");
        };
        QVERIFY(panel.connectSupervisor());
        panel.send(Command::Device, wire::Source::FrontUsb);
        QCOMPARE(panel.mode(), 1);
        panel.send(Command::Key, wire::held(wire::Key::Select)); // opens the menu
        QCOMPARE(panel.mode(), 0);
        QVERIFY(!pluginsAreLoaded());
        panel.send(Command::Filename, song.toUtf8() + '\0');
        QCOMPARE(panel.mode(), 0);
        QVERIFY(!pluginsAreLoaded());
    }

    void everyModeIsReachedAndReported()
    {
        m_unit.writeConf(QStringLiteral("network.xml"),
                         "<config><hwaddr>02:00:00:00:00:01</hwaddr><dhcp>no</dhcp>"
                         "<dns2>192.0.2.2</dns2></config>");
        PanelProcess panel({});
        QVERIFY(panel.connectSupervisor());
        const auto key = [&panel](auto code) { panel.send(Command::Key, code); };
        const auto select = wire::Key::Select;
        const auto escape = wire::Key::Esc;
        const auto longSelect = wire::held(select);
        key(longSelect);
        QCOMPARE(panel.mode(), 0);
        key(escape);
        QCOMPARE(panel.mode(), 6);
        key(select);
        QCOMPARE(panel.mode(), 7);
        key(escape);
        QCOMPARE(panel.mode(), 6);
        panel.send(Command::Device, wire::Source::Aoe);
        QCOMPARE(panel.mode(), 2);
        panel.send(Command::Device, wire::Source::Radio);
        QCOMPARE(panel.mode(), 4);
        key(select);
        QCOMPARE(panel.mode(), 3);
        key(longSelect);
        QCOMPARE(panel.mode(), 3);
        key(escape);
        QCOMPARE(panel.mode(), 4);
        // The menu stands on the radio, one turn brings NetBGM to the middle.
        key(longSelect);
        panel.send(Command::Encoder, 1);
        key(select);
        QCOMPARE(panel.mode(), 5);
        panel.send(Command::Device, wire::Source::FrontUsb);
        QCOMPARE(panel.mode(), 1);
        panel.send(Command::Device, wire::Source::StreamUsb);
        QCOMPARE(panel.mode(), 1);
    }

    void takenPortIsReportedAndTheProgramRunsOn()
    {
        QTcpServer other;
        QVERIFY(other.listen(QHostAddress::Any, tcp_server::port));
        PanelProcess panel({});
        QVERIFY(panel.waitForLine(error + QStringLiteral("tcp server error")));
        QVERIFY(panel.isRunning());
    }

    void hostileBytesLeaveItServing()
    {
        PanelProcess panel({});
        QVERIFY(panel.connectSupervisor());
        panel.write(QByteArray(1 << 20, '\xff'));
        panel.write(QByteArray::fromHex("ffffffff0500"));
        panel.write(QByteArray(100000, '\x05'));
        panel.write(QByteArray(8, '\0'));
        QCOMPARE(panel.mode(), 255);
        panel.send(Command::Filename, QByteArray("/nonexistent/song.mp3"));
        panel.send(Command::Filename, QByteArray("/dev/zero"));
        panel.send(Command::Filename, QByteArray("/"));
        panel.send(Command::Filename, QByteArray(60000, 'a'));
        panel.send(Command::Filename, QByteArray());
        panel.write(QByteArray(4, '\0'));
        QCOMPARE(panel.mode(), 255);
        QVERIFY(panel.isRunning());
    }

    void newSupervisorTakesOver()
    {
        PanelProcess panel({});
        QVERIFY(panel.connectSupervisor());
        QCOMPARE(panel.mode(), 255);
        QTcpSocket newer;
        newer.connectToHost(QHostAddress::LocalHost, tcp_server::port);
        QVERIFY(newer.waitForConnected());
        newer.write(packetOf(Command::Request, wire::Request::Mode));
        QVERIFY(newer.waitForReadyRead(10000));
        QCOMPARE(newer.readAll(), packetOf(Command::Request, ModeCode::None));
        panel.send(Command::Request, wire::Request::Mode);
        newer.write(packetOf(Command::Request, wire::Request::Mode));
        QVERIFY(newer.waitForReadyRead(10000));
        QCOMPARE(newer.readAll(), packetOf(Command::Request, ModeCode::None));
        QVERIFY(!panel.link().waitForReadyRead(0));
    }

    /** As three commands run one after the other from a shell; the first keeps the panel busy. */
    void callersInARowAllTakeEffect()
    {
        const QString song = m_unit.path(QStringLiteral("/song.mp3"));
        const QByteArray cover = MediaBuilder::imageFile("PNG", 3000, 2000);
        UnitRoot::write(song, MediaBuilder::id3v2(MediaBuilder::pictureFrame("image/png", cover)));
        PanelProcess panel({});
        QVERIFY(panel.connectSupervisor());
        panel.send(Command::Device, QByteArray(1, '\x01'));
        QCOMPARE(panel.mode(), 1);

        panel.send(Command::Filename, song.toUtf8());
        QTcpSocket second;
        second.connectToHost(QHostAddress::LocalHost, tcp_server::port);
        second.write(QByteArray::fromHex("0500010086"));
        QVERIFY(second.waitForBytesWritten());
        second.disconnectFromHost();
        QTcpSocket third;
        third.connectToHost(QHostAddress::LocalHost, tcp_server::port);
        third.write(QByteArray::fromHex("0d00010008"));
        QVERIFY(third.waitForReadyRead(10000));
        QCOMPARE(third.readAll(), QByteArray::fromHex("0d00010000"));
    }

private:
    UnitRoot m_unit;
};

VIREO_PORT_TEST_MAIN(SessionTest)
#include "tst_session.moc"
