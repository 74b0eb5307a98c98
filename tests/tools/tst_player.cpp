#include "tests/support/panelmain.h"
#include "tests/support/strings.h"
#include "tests/support/unitroot.h"
#include "tools/supervisor/musicfolder.h"
#include "tools/supervisor/playermodel.h"
#include "tools/supervisor/script.h"
#include "tools/supervisor/tracklength.h"

#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

/** A player whose tracks last three seconds each, and all that it says, one line a packet. */
struct Player {
    explicit Player(const QStringList& tracks = {QStringLiteral("/m/a.mp3"), QStringLiteral("/m/b.mp3"),
                                                 QStringLiteral("/m/x/c.mp3"), QStringLiteral("/m/x/d.mp3")})
        : model([](const QString&) { return 3000; })
    {
        QObject::connect(&model, &PlayerModel::say, &model,
                         [this](const QStringList& words) { lines << joinLine(words); });
        model.setTracks(tracks);
    }

    /** What was said since the last call. */
    QStringList heard()
    {
        const QStringList result = lines;
        lines.clear();
        return result;
    }
    /** The files that were named since the last call, by their letter. */
    QString files()
    {
        QString letters;
        for (const QString& line : heard())
            if (line.startsWith(QLatin1String("file ")))
                letters += line[line.size() - 5];
        return letters;
    }
    void playToEnd(int tracks)
    {
        for (int ms = 0; ms < tracks * 3000; ms += 100)
            model.advance(100);
    }

    PlayerModel model;
    QStringList lines;
};

class PlayerTest : public QObject {
    Q_OBJECT

private slots:
    void startSaysFileAndTime()
    {
        Player player;
        QCOMPARE(player.heard(), QStringList());
        player.model.playPause();
        QCOMPARE(player.heard(), strings({"file /m/a.mp3", "time 0:00:00"}));
        QCOMPARE(player.model.state(), PlayerModel::State::Playing);
    }

    void timeOnceAndLevelTenTimesASecond()
    {
        Player player;
        player.model.playPause();
        player.heard();
        for (int tick = 0; tick < 20; ++tick)
            player.model.advance(100);
        const QStringList said = player.heard();
        QCOMPARE(said.filter(QStringLiteral("level ")).size(), 20);
        QCOMPARE(said.filter(QStringLiteral("time ")), strings({"time 0:00:01", "time 0:00:02"}));
        QCOMPARE(said.size(), 22);
    }

    void unevenTicksKeepTheTime()
    {
        Player player;
        player.model.playPause();
        player.heard();
        for (const int ms : {99, 1, 850, 49})
            player.model.advance(ms);
        QCOMPARE(player.heard().filter(QStringLiteral("time ")), QStringList()); // 999 ms
        player.model.advance(1);
        QCOMPARE(player.heard().filter(QStringLiteral("time ")), strings({"time 0:00:01"}));
    }

    void pauseIsSilentAndHoldsTheTime()
    {
        Player player;
        player.model.playPause();
        player.model.advance(1500);
        player.heard();
        player.model.playPause();
        QCOMPARE(player.heard(), strings({"level 0"}));
        player.model.advance(5000);
        QCOMPARE(player.heard(), QStringList());
        QCOMPARE(player.model.positionMs(), 1500);
        player.model.playPause();
        QCOMPARE(player.heard(), QStringList()); // the panel knows the file
        player.model.advance(500);
        QCOMPARE(player.heard().filter(QStringLiteral("time ")), strings({"time 0:00:02"}));
    }

    void stopResetsTheTime()
    {
        Player player;
        player.model.playPause();
        player.model.advance(1500);
        player.heard();
        player.model.stop();
        QCOMPARE(player.heard(), strings({"level 0", "time 0:00:00"}));
        player.model.stop();
        QCOMPARE(player.heard(), QStringList());
        player.model.playPause();
        QCOMPARE(player.heard(), strings({"file /m/a.mp3", "time 0:00:00"}));
    }

    void whatFollowsATrack_data()
    {
        QTest::addColumn<int>("scope");
        QTest::addColumn<bool>("repeat");
        QTest::addColumn<int>("first");
        QTest::addColumn<QString>("files");
        QTest::addColumn<bool>("ends");
        const int one = int(PlayerModel::Scope::One);
        const int all = int(PlayerModel::Scope::All);
        const int folder = int(PlayerModel::Scope::Folder);
        QTest::newRow("all: to the end, then stop") << all << false << 1 << "bcd" << true;
        QTest::newRow("all, repeated: round and round") << all << true << 2 << "cdabcd" << false;
        QTest::newRow("one: stop behind it") << one << false << 1 << "b" << true;
        QTest::newRow("one, repeated: the same again") << one << true << 1 << "bbbbbb" << false;
        QTest::newRow("folder: to the folder's end") << folder << false << 0 << "ab" << true;
        QTest::newRow("folder, repeated: round in it") << folder << true << 3 << "dcdcdc" << false;
    }
    void whatFollowsATrack()
    {
        QFETCH(int, scope);
        QFETCH(bool, repeat);
        QFETCH(int, first);
        QFETCH(QString, files);
        QFETCH(bool, ends);
        Player player;
        player.model.setScope(PlayerModel::Scope(scope));
        player.model.setRepeat(repeat);
        player.model.play(first);
        player.playToEnd(5);
        QCOMPARE(player.model.state() == PlayerModel::State::Stopped, ends);
        QCOMPARE(player.files(), files);
    }

    void endOfTheListIsToldAsAStopKey()
    {
        Player player;
        player.model.play(3);
        player.model.advance(2900);
        player.heard();
        player.model.advance(100);
        const QStringList said = player.heard();
        QCOMPARE(said.mid(said.size() - 3), strings({"key stop", "level 0", "time 0:00:00"}));
        player.model.advance(1000);
        QCOMPARE(player.heard(), QStringList());
    }

    void keysGoRoundTheList()
    {
        Player player;
        for (int i = 0; i < 5; ++i)
            player.model.next();
        QCOMPARE(player.files(), QStringLiteral("bcdab"));
        for (int i = 0; i < 3; ++i)
            player.model.previous();
        QCOMPARE(player.files(), QStringLiteral("adc"));
    }

    void keysStayInTheFolder()
    {
        Player player;
        player.model.setScope(PlayerModel::Scope::Folder);
        player.model.next();
        player.model.next();
        player.model.previous();
        QCOMPARE(player.files(), QStringLiteral("bab"));
    }

    void keysLeaveASingleTrack()
    {
        Player player;
        player.model.setScope(PlayerModel::Scope::One);
        player.model.next();
        player.model.next();
        QCOMPARE(player.files(), QStringLiteral("bc"));
    }

    void shufflePlaysEachTrackOnce()
    {
        QStringList many;
        for (char letter = 'a'; letter <= 'z'; ++letter)
            many << QStringLiteral("/m/%1.mp3").arg(QLatin1Char(letter));
        Player player(many);
        player.model.setShuffle(true);
        for (int i = 0; i < 26; ++i)
            player.model.next();
        const QString shuffled = player.files();
        QString sorted = shuffled;
        std::sort(sorted.begin(), sorted.end());
        QCOMPARE(sorted, QStringLiteral("abcdefghijklmnopqrstuvwxyz"));
        QVERIFY(shuffled != sorted);
        player.model.setShuffle(false);
        player.model.play(0);
        player.model.next();
        QCOMPARE(player.files(), QStringLiteral("ab"));
    }

    void modesAreSaidWhole()
    {
        Player player;
        player.model.setRepeat(true);
        player.model.setShuffle(true);
        player.model.setScope(PlayerModel::Scope::Folder);
        player.model.setScope(PlayerModel::Scope::One);
        player.model.setRepeat(false);
        QCOMPARE(player.heard(),
                 strings({"mode repeat all", "mode repeat shuffle all", "mode repeat shuffle folder",
                          "mode repeat shuffle one", "mode shuffle one"}));
    }

    void withoutTracksNothingIsPlayed()
    {
        Player player{QStringList()};
        player.model.playPause();
        player.model.next();
        player.model.previous();
        player.model.play(0);
        player.model.stop();
        player.model.advance(1000);
        player.model.announce();
        QCOMPARE(player.heard(), QStringList());
        QCOMPARE(player.model.currentTrack(), -1);
    }

    void newDiskStopsWhatPlays()
    {
        Player player;
        player.model.play(2);
        player.model.advance(500);
        player.heard();
        player.model.setTracks({QStringLiteral("/n/e.mp3")});
        QCOMPARE(player.heard(), strings({"level 0"}));
        QCOMPARE(player.model.state(), PlayerModel::State::Stopped);
        QCOMPARE(player.model.currentTrack(), 0);
    }

    void announcementOfEachState()
    {
        Player player;
        const QStringList disk = strings({"disk-state normal", "disk 4 2", "mode all"});
        player.model.announce();
        QCOMPARE(player.heard(), disk);
        player.model.play(1);
        player.model.advance(1000);
        player.heard();
        player.model.announce();
        QCOMPARE(player.heard(), disk + strings({"file /m/b.mp3", "time 0:00:01"}));
        player.model.playPause();
        player.heard();
        player.model.announce();
        QCOMPARE(player.heard(), disk + strings({"file /m/b.mp3", "time 0:00:01", "key play-pause"}));
    }

    void streamHasLevelsAndNoTime()
    {
        Player player;
        player.model.setStreaming(true);
        QVERIFY(player.model.isRunning());
        for (int tick = 0; tick < 15; ++tick)
            player.model.advance(100);
        const QStringList said = player.heard();
        QCOMPARE(said.filter(QStringLiteral("level ")).size(), 15);
        QCOMPARE(said.size(), 15);
        player.model.setStreaming(false);
        QCOMPARE(player.heard(), strings({"level 0"}));
        QVERIFY(!player.model.isRunning());
        player.model.setStreaming(false);
        QCOMPARE(player.heard(), QStringList());
    }

    void levelsLookLikeMusic()
    {
        QSet<int> segments;
        for (int ms = 0; ms < 60000; ms += 100) {
            const int level = musicLevelAt(ms);
            QVERIFY(level > 0 && level <= 255);
            int bits = 0;
            for (int rest = level; rest > 0; rest /= 2)
                ++bits;
            segments << bits;
        }
        QVERIFY(segments.contains(8) && segments.contains(5)); // quiet and loud
    }

    void timesAsWords()
    {
        QCOMPARE(playTimeText(0), QStringLiteral("0:00:00"));
        QCOMPARE(playTimeText(187999), QStringLiteral("0:03:07"));
        QCOMPARE(playTimeText(24 * 3600 * 1000), QStringLiteral("24:00:00"));
    }

    void tracksOfUnknownLengthPlayThreeMinutes()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("-noise.mp3"));
        UnitRoot::write(path, QByteArray(1000, 'x'));
        QCOMPARE(trackLengthMs(path), 3 * 60 * 1000);
        const QByteArray programs = qgetenv("PATH");
        qputenv("PATH", QFile::encodeName(dir.path()));
        const int withoutTheProgram =
            trackLengthMs(QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/music/sunset-walk.flac"));
        qputenv("PATH", programs);
        QCOMPARE(withoutTheProgram, 3 * 60 * 1000);
    }

    void lengthsOfTheDemoMusic()
    {
        const QString music = QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/music/");
        if (QStandardPaths::findExecutable(QStringLiteral("ffprobe")).isEmpty())
            QSKIP("ffprobe is not installed");
        // Once without a track: on a busy machine loading the program alone may take seconds.
        QCOMPARE(QProcess::execute(QStringLiteral("ffprobe"), {QStringLiteral("-version")}), 0);
        const int frames = trackLengthMs(music + QStringLiteral("morning-corridor.mp3"));
        QVERIFY2(qAbs(frames - 8000) < 200, qPrintable(QString::number(frames))); // padded to whole frames
        QCOMPARE(trackLengthMs(music + QStringLiteral("sunset-walk.flac")), 6000);
        QCOMPARE(trackLengthMs(music + QStringLiteral("evening/quiet-hall.ogg")), 7000);
        QCOMPARE(trackLengthMs(music + QStringLiteral("missing.mp3")), unknownTrackMs);
    }

    void foldersAreReadInOrder()
    {
        QTemporaryDir dir;
        for (const char* name : {"b.mp3", "A.FLAC", "notes.txt", "x/c.ogg", "cover.jpg", "x/y/d.Mp3",
                                 ".hidden.mp3", ".hidden/e.mp3"})
            UnitRoot::write(dir.filePath(QString::fromLatin1(name)), "x");
        QStringList names;
        for (const QString& path : musicBelow(dir.path()))
            names << QDir(dir.path()).relativeFilePath(path);
        QCOMPARE(names, strings({"A.FLAC", "b.mp3", "x/c.ogg", "x/y/d.Mp3"}));
        QCOMPARE(musicBelow(dir.filePath(QStringLiteral("none"))), QStringList());
    }
};

VIREO_TEST_MAIN(PlayerTest)
#include "tst_player.moc"
