#include "tests/journeys/panelprocess.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"

#include <QElapsedTimer>

#include <memory>
#include <random>
#include <vector>

namespace {

const QString demo = QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/");

/** What the panel's process holds of the machine. */
struct Footprint {
    explicit Footprint(qint64 process)
    {
        const QString proc = QStringLiteral("/proc/%1/").arg(process);
        for (const QByteArray& line : UnitRoot::read(proc + QStringLiteral("smaps_rollup")).split('\n'))
            if (line.startsWith("Private_Dirty:"))
                privateKb = line.mid(14).simplified().split(' ').first().toInt();
        files = int(QDir(proc + QStringLiteral("fd")).entryList(QDir::AllEntries | QDir::System).size());
        children =
            int(UnitRoot::read(proc + QStringLiteral("task/%1/children").arg(process)).simplified().size());
    }
    int privateKb = 0;
    int files = 0;
    int children = 0; // 0 for none
};

/** Memory of a sanitized program says nothing: what it freed is kept for a while. */
#if defined(__SANITIZE_ADDRESS__)
constexpr int mostGrowthKb = 1 << 30;
#else
constexpr int mostGrowthKb = 1024;
#endif

/** What a supervisor sends in one day, second after second. */
class Day {
public:
    explicit Day(UnitRoot& unit)
        : m_unit(unit)
    {
    }

    QByteArray second(int number)
    {
        QByteArray bytes;
        for (int i = 0; i < 20; ++i)
            bytes += packetOf(Command::Level, int(m_random() % 256));
        bytes += packetOf(Command::Time, bcd(number / 3600 % 24) + bcd(number / 60 % 60) + bcd(number % 60));
        if (number % 20 == 0)
            bytes += nextScreen();
        if (number % 60 == 0)
            bytes += packetOf(Command::Filename, songs[number / 60 % songs.size()].toUtf8());
        if (number % 300 == 0)
            rewriteStations(number / 300);
        return bytes;
    }

private:
    static QByteArray bcd(int value) { return QByteArray(1, char(value / 10 * 16 + value % 10)); }

    /** Walks over every screen. */
    QByteArray nextScreen()
    {
        const QByteArray menu = packetOf(Command::Key, wire::held(wire::Key::Select));
        const QByteArray select = packetOf(Command::Key, wire::Key::Select);
        const auto turn = [](int steps) { return packetOf(Command::Encoder, steps); };
        const QList<QByteArray> walk = {
            packetOf(Command::Device, wire::Source::FrontUsb),
            packetOf(Command::DiskInfo, QByteArray::fromHex("04000200"))
                + packetOf(Command::Mode, int(m_random() % 16)),
            menu,
            turn(1) + turn(-1),
            select,
            packetOf(Command::Device, wire::Source::Aoe) + packetOf(Command::AoeStat, int(m_random() % 4)),
            packetOf(Command::Device, wire::Source::Radio),
            packetOf(Command::IRStation,
                     QByteArray("Station").leftJustified(256, '\0') + "http://a.example/"),
            select, // the station list
            turn(int(m_random() % 9) - 4),
            m_random() % 2 ? select : packetOf(Command::Key, wire::Key::Esc),
            menu + turn(2) + select, // setup
            packetOf(Command::UpgradeInfo, wire::UpgradeState::Started)
                + packetOf(Command::UpgradeMsg, "Writing"),
            packetOf(Command::UpgradeInfo, wire::UpgradeState::Failed) + menu + turn(-1) + select, // NetBGM
        };
        return walk[m_step++ % walk.size()];
    }

    void rewriteStations(int number)
    {
        QByteArray stations = "<channels>";
        for (int i = 0; i < 5 + number % 40; ++i)
            stations += "<entry><title>Station " + QByteArray::number(i)
                + "</title><url>http://a.example/</url></entry>";
        m_unit.writeConf(QStringLiteral("user_channels.xml"), stations + "</channels>");
    }

    const QStringList songs = {
        demo + QStringLiteral("music/morning-corridor.mp3"), demo + QStringLiteral("music/sunset-walk.flac"),
        demo + QStringLiteral("music/evening/quiet-hall.ogg"), QStringLiteral("/no/such/file.mp3")};
    UnitRoot& m_unit;
    std::mt19937 m_random{1};
    int m_step = 0;
};

} // namespace

/** The real program under more than a unit's life holds in a while: what it holds of the machine stays flat.
 */
class LoadTest : public QObject {
    Q_OBJECT

private:
    const bool whole = qEnvironmentVariable("VIREO_LOAD") == QLatin1String("whole");
    UnitRoot m_unit;
    std::unique_ptr<PanelProcess> m_panel;

    Footprint footprint() { return Footprint(m_panel->processId()); }
    void compare(const char* what, const Footprint& before, const Footprint& after)
    {
        qInfo("%s: private memory %d to %d kB, open files %d to %d", what, before.privateKb, after.privateKb,
              before.files, after.files);
        QVERIFY(before.privateKb > 0);
        QVERIFY(after.privateKb - before.privateKb < mostGrowthKb);
        QVERIFY(after.files <= before.files);
        QCOMPARE(after.children, 0);
    }
    static std::unique_ptr<QTcpSocket> connected()
    {
        auto socket = std::make_unique<QTcpSocket>();
        socket->connectToHost(QHostAddress::LocalHost, tcp_server::port);
        if (!socket->waitForConnected(10000))
            qFatal("the panel does not accept: %s", qPrintable(socket->errorString()));
        return socket;
    }
    static bool isAnswered(QTcpSocket& socket)
    {
        socket.write(packetOf(Command::Request, wire::Request::Mode));
        while (socket.bytesAvailable() < 5)
            if (!socket.waitForReadyRead(10000))
                return false;
        return socket.readAll().size() == 5;
    }

private slots:
    void init()
    {
        QCOMPARE(QProcess::execute(QStringLiteral("cp"),
                                   {QStringLiteral("-r"), demo + QStringLiteral("root/."), m_unit.path({})}),
                 0);
        m_panel = std::make_unique<PanelProcess>(QStringList(QStringLiteral("5")));
        QVERIFY(m_panel->connectSupervisor());
        QVERIFY(m_panel->mode() >= 0);
    }
    void cleanup() { m_panel.reset(); }

    void aDayOfTraffic()
    {
        const int seconds = 3600 * (whole ? 24 : 1);
        Day day(m_unit);
        QElapsedTimer timer;
        timer.start();
        std::unique_ptr<Footprint> early;
        for (int i = 0; i < seconds; ++i) {
            m_panel->write(day.second(i));
            if (i % 10 == 9)
                QVERIFY(m_panel->mode() >= 0);
            if (i == seconds / 10)
                early = std::make_unique<Footprint>(footprint());
            if (whole && i % 3600 == 3599)
                qInfo("%d h of traffic in %lld s", i / 3600 + 1, timer.elapsed() / 1000);
        }
        QVERIFY(m_panel->mode() >= 0);
        qInfo("%d s of traffic in %lld s", seconds, timer.elapsed() / 1000);
        compare("traffic", *early, footprint());
    }

    void reconnects()
    {
        const int count = whole ? 10000 : 1000;
        std::unique_ptr<Footprint> early;
        for (int i = 0; i < count; ++i) {
            auto client = connected();
            if (i % 100 == 0)
                QVERIFY(isAnswered(*client));
            if (i == count / 10)
                early = std::make_unique<Footprint>(footprint());
        }
        QVERIFY(isAnswered(*connected()));
        QTRY_VERIFY(footprint().files <= early->files);
        compare("reconnects", *early, footprint());
    }

    void clientsThatDieInMidPacket()
    {
        std::unique_ptr<Footprint> early;
        for (int i = 0; i < 1000; ++i) {
            auto client = connected();
            client->write(packetOf(Command::Filename, QByteArray(200, 'x')).left(1 + i % 200));
            client->waitForBytesWritten();
            client->abort();
            if (i == 100)
                early = std::make_unique<Footprint>(footprint());
        }
        auto client = connected();
        client->write(QByteArray(300, '\0')); // ends what is cut, whatever it was
        QVERIFY(isAnswered(*client));
        client.reset();
        QTRY_VERIFY(footprint().files <= early->files);
        compare("dying clients", *early, footprint());
    }

    /** All stay open and silent, some flood although nobody reads them; each newest one is served. */
    void aThousandConnectionsAtOnce()
    {
        std::vector<std::unique_ptr<QTcpSocket>> clients;
        for (int i = 0; i < 1000; ++i) {
            clients.push_back(connected());
            if (i % 100 == 99) {
                QVERIFY(isAnswered(*clients.back()));
                clients.back()->write(QByteArray(200000, 'x'));
            }
        }
        const Footprint full = footprint();
        qInfo("a thousand connections: private memory %d kB, open files %d", full.privateKb, full.files);
        QVERIFY(full.files < 600);
        QVERIFY(isAnswered(*connected()));
        clients.clear();
        QTRY_VERIFY(footprint().files < 60);
        QVERIFY(isAnswered(*connected()));
    }
};

VIREO_PORT_TEST_MAIN(LoadTest)
#include "tst_load.moc"
