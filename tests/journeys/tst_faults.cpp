#include "tests/journeys/panelprocess.h"
#include "tests/support/ownport.h"
#include "tests/support/unitroot.h"
#include "tests/tags/jpegbuilder.h"

#include <atomic>
#include <thread>

namespace {

const QString demo = QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/");
const QString song = demo + QStringLiteral("music/morning-corridor.mp3");

QString pluginFolder()
{
    const QStringList paths = QCoreApplication::libraryPaths();
    const auto hasPlatforms = [](const QString& path) {
        return QDir(path).exists(QStringLiteral("platforms"));
    };
    return *std::find_if(paths.begin(), paths.end(), hasPlatforms);
}

int threadsOf(const PanelProcess& panel)
{
    const QDir tasks(QStringLiteral("/proc/%1/task").arg(panel.processId()));
    return int(tasks.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
}

/** Sets a variable of the environment while it lives. */
class Variable {
public:
    Variable(const char* name, const QString& value)
        : m_name(name)
        , m_before(qgetenv(name))
    {
        qputenv(name, value.toUtf8());
    }
    ~Variable()
    {
        if (m_before.isEmpty())
            qunsetenv(m_name);
        else
            qputenv(m_name, m_before);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* m_name;
    QByteArray m_before;
};

} // namespace

/** The real program where the unit around it is not whole. */
class FaultsTest : public QObject {
    Q_OBJECT

private:
    /** A walk over screens with text, pictures and files; true when the panel still answers after it. */
    static bool livesThroughAWalk(PanelProcess& panel)
    {
        panel.send(Command::Device, wire::Source::FrontUsb);
        panel.send(Command::Filename, song.toUtf8());
        panel.send(Command::Level, 0xFF);
        for (const auto source : {wire::Source::Radio, wire::Source::Aoe}) {
            panel.send(Command::Device, source);
            panel.send(Command::Key, wire::Key::Select);
            panel.send(Command::Key, wire::Key::Esc);
        }
        panel.send(Command::Key, wire::held(wire::Key::Select));
        panel.send(Command::Encoder, 3);
        panel.send(Command::Key, wire::Key::Select);
        panel.send(Command::UpgradeInfo, wire::UpgradeState::Started);
        panel.send(Command::UpgradeMsg, QByteArray("Writing"));
        return panel.mode() >= 0 && panel.isRunning();
    }

private slots:
    void noFonts()
    {
        UnitRoot unit;
        const QString none = unit.path(QStringLiteral("/fonts.conf"));
        UnitRoot::write(none, "<?xml version=\"1.0\"?><fontconfig></fontconfig>");
        const Variable fonts("FONTCONFIG_FILE", none);
        PanelProcess panel({QStringLiteral("2")});
        QVERIFY(panel.connectSupervisor());
        QVERIFY(livesThroughAWalk(panel));
        QVERIFY(!panel.lines().contains(QStringLiteral("[ \x1B[36mINFO @vireo\x1B[0m ] Unifont")));
    }

    /** The program in a folder of its own finds only the plug-ins that its qt.conf names: none for images. */
    void coverNeedsNoPlugin()
    {
        UnitRoot unit;
        const QString folder = unit.path(QStringLiteral("/program"));
        QVERIFY(QDir().mkpath(folder + QStringLiteral("/plugins")));
        const QString program = folder + QStringLiteral("/vireo");
        QVERIFY(QFile::copy(QStringLiteral(VIREO_PROGRAM), program));
        QVERIFY(QFile::link(pluginFolder() + QStringLiteral("/platforms"),
                            folder + QStringLiteral("/plugins/platforms")));
        UnitRoot::write(folder + QStringLiteral("/qt.conf"),
                        "[Paths]\nPlugins=" + folder.toUtf8() + "/plugins\n");
        PanelProcess panel({QStringLiteral("1")}, program);
        QVERIFY(panel.connectSupervisor());
        panel.send(Command::Device, wire::Source::FrontUsb);
        panel.send(Command::Filename, song.toUtf8());
        QCOMPARE(panel.mode(), 1);
        QVERIFY(panel.lines().join(QLatin1Char('\n')).contains(QStringLiteral("[ Small Hours ]")));
        QVERIFY(panel.lines().join(QLatin1Char('\n')).contains(QStringLiteral("Album Art Image OK")));
        QVERIFY(livesThroughAWalk(panel));
    }

    /** Where the unit has no room for one, who counts on it waits for ever. */
    void noThreadIsStarted()
    {
        using namespace JpegBuilder;
        const UnitRoot unit;
        const QString cover = unit.path(QStringLiteral("/cover.flac"));
        UnitRoot::write(
            cover,
            flacStart()
                + flacBlock(Picture, flacPicture("image/jpeg", jpeg(Baseline, {5000, 5000}, "\x11")), true));
        PanelProcess panel({QStringLiteral("4")});
        QVERIFY(panel.connectSupervisor());
        panel.send(Command::Filename, QFile::encodeName(cover));
        QVERIFY(livesThroughAWalk(panel));
        QVERIFY2(panel.mode() >= 0, "and has painted what the walk ended with");
        QCOMPARE(threadsOf(panel), 1);
    }

    void configurationIsNoFolder()
    {
        UnitRoot unit;
        QVERIFY(QDir(unit.path(QStringLiteral("/opt/orvane/conf"))).removeRecursively());
        UnitRoot::write(unit.path(QStringLiteral("/opt/orvane/conf")), "a file");
        PanelProcess panel({QStringLiteral("4")});
        QVERIFY(panel.connectSupervisor());
        QVERIFY(livesThroughAWalk(panel));
        QCOMPARE(UnitRoot::read(unit.path(QStringLiteral("/opt/orvane/conf"))), QByteArray("a file"));
    }

    /** As a disk that is pulled out: the file gets shorter and longer again while the panel reads it. */
    void mediaChangesWhileItIsRead_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : {"morning-corridor.mp3", "sunset-walk.flac", "evening/quiet-hall.ogg"})
            QTest::newRow(name) << QString::fromUtf8(name);
    }
    void mediaChangesWhileItIsRead()
    {
        QFETCH(QString, name);
        UnitRoot unit;
        const QByteArray whole = UnitRoot::read(demo + QStringLiteral("music/") + name);
        QVERIFY(!whole.isEmpty());
        const QString path = unit.path(QStringLiteral("/media.") + name.section(QLatin1Char('.'), -1));
        UnitRoot::write(path, whole);
        PanelProcess panel({QStringLiteral("5")});
        QVERIFY(panel.connectSupervisor());
        panel.send(Command::Device, wire::Source::FrontUsb);

        std::atomic<bool> done{false};
        std::thread other([&] {
            for (int i = 0; !done; ++i) {
                QFile file(path);
                if (file.open(QIODevice::ReadWrite)) {
                    file.resize(i * 37 % whole.size());
                    file.seek(0);
                    file.write(whole);
                }
            }
        });
        bool answered = true;
        for (int i = 0; i < 100 && answered; ++i) {
            panel.send(Command::Filename, path.toUtf8());
            answered = panel.mode() == 1;
        }
        done = true;
        other.join();
        QVERIFY(answered);
        QVERIFY(panel.isRunning());
    }
};

VIREO_PORT_TEST_MAIN(FaultsTest)
#include "tst_faults.moc"
