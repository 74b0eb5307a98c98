#include "tests/support/panelmain.h"
#include "tests/support/strings.h"
#include "tests/support/unitroot.h"
#include "tools/supervisor/script.h"
#include "tools/supervisor/unitmodel.h"

#include <QTemporaryDir>

/** A unit without a panel, and all that it says, one line a packet. */
struct Unit {
    Unit()
        : player([](const QString&) { return 3000; })
        , model(player, [this] { return chosen; })
    {
        QObject::connect(&model, &UnitModel::say, &model,
                         [this](const QStringList& words) { lines << joinLine(words); });
    }

    void insertDisk()
    {
        player.setTracks({QStringLiteral("/m/a.mp3"), QStringLiteral("/m/b.mp3")});
        model.insertDisk();
        heard();
    }
    void switchOn(const char* source)
    {
        model.switchSource(QString::fromLatin1(source), true);
        heard();
    }
    void press(const char* key) { model.pressKey(QString::fromLatin1(key), false); }
    void follow(const char* mode) { model.followMode(QString::fromLatin1(mode), true); }
    /** What was said since the last call. */
    QStringList heard()
    {
        const QStringList result = lines;
        lines.clear();
        return result;
    }

    Station chosen = {QStringLiteral("Lantern"), QStringLiteral("http://a.example/1")};
    PlayerModel player;
    UnitModel model;
    QStringList lines;
};

class UnitModelTest : public QObject {
    Q_OBJECT

private slots:
    void playWithoutADiskIsAStop_data()
    {
        QTest::addColumn<QString>("key");
        for (const char* key : {"play-pause", "next", "prev"})
            QTest::newRow(key) << QString::fromLatin1(key);
    }
    void playWithoutADiskIsAStop()
    {
        QFETCH(QString, key);
        Unit unit;
        unit.switchOn("usb");
        unit.model.pressKey(key, false);
        QCOMPARE(unit.heard(), (QStringList{QStringLiteral("key ") + key, QStringLiteral("key stop")}));
        unit.model.pressKey(key, true);
        QCOMPARE(unit.heard(), QStringList{QStringLiteral("key long-") + key});
    }

    void keysPlayTheDisk()
    {
        Unit unit;
        unit.insertDisk();
        unit.press("play-pause");
        QCOMPARE(unit.heard(), strings({"key play-pause", "file /m/a.mp3", "time 0:00:00"}));
        unit.press("next");
        QCOMPARE(unit.heard(), strings({"key next", "file /m/b.mp3", "time 0:00:00"}));
        unit.press("play-pause");
        QCOMPARE(unit.heard(), strings({"key play-pause", "level 0"}));
        unit.press("stop");
        QCOMPARE(unit.heard(), strings({"key stop", "time 0:00:00"}));
    }

    void removedDiskLeavesNoTimeBehind()
    {
        Unit unit;
        unit.insertDisk();
        unit.press("play-pause");
        unit.player.advance(1000);
        unit.heard();
        unit.player.setTracks({});
        unit.model.removeDisk();
        QCOMPARE(unit.heard(), strings({"level 0", "key stop", "disk-state removed", "time 0:00:00"}));
    }

    void sourcesWithAScreenTakeTurns()
    {
        Unit unit;
        unit.switchOn("stream");
        unit.model.switchSource(QStringLiteral("usb"), true);
        QCOMPARE(unit.heard(), strings({"device usb stream"}));
        unit.model.switchSource(QStringLiteral("aux"), true);
        unit.model.switchSource(QStringLiteral("ir"), true);
        QCOMPARE(unit.heard(), strings({"device usb stream aux", "device stream aux ir"}));
        QCOMPARE(unit.model.sources(), strings({"stream", "aux", "ir"}));
        unit.model.switchSource(QStringLiteral("ir"), true);
        QCOMPARE(unit.heard(), QStringList());
        for (const char* source : {"ir", "stream", "aux"})
            unit.model.switchSource(QString::fromLatin1(source), false);
        QCOMPARE(unit.heard(), strings({"device stream aux", "device aux", "device none"}));
    }

    void whatLosesItsSourceStops()
    {
        Unit unit;
        unit.insertDisk();
        unit.press("play-pause");
        unit.heard();
        unit.model.switchSource(QStringLiteral("aoe"), true);
        QCOMPARE(unit.heard(), strings({"device aoe", "key stop", "time 0:00:00"}));
        unit.press("play-pause");
        QCOMPARE(unit.heard(), strings({"key play-pause", "aoe ok", "key stop"}));
        unit.model.switchSource(QStringLiteral("aoe"), false);
        QCOMPARE(unit.heard(), strings({"device none", "aoe stop", "level 0"}));
        QVERIFY(!unit.player.isRunning());
    }

    void sourceOfThePanelsMenuBecomesActive_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("device");
        QTest::newRow("player") << "usb"
                                << "device usb aux";
        QTest::newRow("audio over Ethernet") << "aoe"
                                             << "device aux aoe";
        QTest::newRow("radio") << "radio"
                               << "device aux ir";
    }
    void sourceOfThePanelsMenuBecomesActive()
    {
        QFETCH(QString, mode);
        QFETCH(QString, device);
        Unit unit;
        unit.switchOn("aux");
        unit.follow("menu");
        unit.model.followMode(mode, false); // a menu may be open again by now
        QCOMPARE(unit.heard(), QStringList());
        unit.model.followMode(mode, true);
        QCOMPARE(unit.heard(), QStringList{device});
        unit.model.followMode(mode, true);
        unit.follow("menu");
        unit.follow("setup");
        unit.model.followMode(mode, true);
        QCOMPARE(unit.heard(), QStringList());
    }

    void listOfStationsIsNotLeftByAWord()
    {
        Unit unit;
        unit.follow("radio-list");
        QCOMPARE(unit.model.sources(), strings({"ir"}));
        QCOMPARE(unit.heard(), QStringList());
    }

    void stationChosenOnThePanelIsAnnouncedAndPlays()
    {
        Unit unit;
        unit.switchOn("ir");
        unit.follow("radio");
        unit.press("select");
        unit.follow("radio-list");
        unit.chosen = {QStringLiteral("Night Song"), QStringLiteral("http://a.example/2")};
        unit.press("select");
        QCOMPARE(unit.heard(), strings({"key select", "key select"}));
        unit.follow("radio");
        QCOMPARE(unit.heard(), strings({"station \"Night Song\" http://a.example/2"}));
        QVERIFY(unit.player.isRunning());
    }

    void listThatIsLeftByEscapeChoosesNothing()
    {
        Unit unit;
        unit.switchOn("ir");
        unit.follow("radio");
        unit.press("select");
        unit.follow("radio-list");
        unit.press("esc");
        unit.follow("radio");
        QCOMPARE(unit.heard(), strings({"key select", "key esc"}));
        QVERIFY(!unit.player.isRunning());
    }

    void screenThatIsEnteredAnewHearsOfItsStream()
    {
        Unit unit;
        unit.switchOn("ir");
        unit.follow("radio");
        unit.press("play-pause");
        QCOMPARE(unit.heard(), strings({"key play-pause", "station Lantern http://a.example/1", "key stop"}));
        unit.follow("setup");
        QCOMPARE(unit.heard(), QStringList());
        unit.follow("radio");
        QCOMPARE(unit.heard(), strings({"station Lantern http://a.example/1"}));
    }

    void stopEndsAStream()
    {
        Unit unit;
        unit.switchOn("ir");
        unit.press("play-pause");
        unit.player.advance(100);
        unit.heard();
        unit.press("stop");
        QCOMPARE(unit.heard(), strings({"key stop", "level 0"}));
        unit.switchOn("aoe");
        unit.press("play-pause");
        unit.heard();
        unit.press("stop");
        QCOMPARE(unit.heard(), strings({"key stop", "aoe stop", "level 0"}));
        QVERIFY(!unit.player.isRunning());
    }

    void newPanelHearsEverything()
    {
        Unit unit;
        unit.model.announce();
        QCOMPARE(unit.heard(), QStringList());
        unit.switchOn("aoe");
        unit.model.reportAoe(QStringLiteral("ok"));
        unit.heard();
        unit.model.announce();
        QCOMPARE(unit.heard(), strings({"device aoe", "aoe ok"}));
    }

    void withoutAChosenStationNothingPlays()
    {
        Unit unit;
        unit.chosen = {};
        unit.switchOn("ir");
        unit.press("play-pause");
        QCOMPARE(unit.heard(), strings({"key play-pause", "key stop"}));
        QVERIFY(!unit.player.isRunning());
    }

    void stationIsReadAsThePanelWritesIt()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("radio.xml"));
        QVERIFY(readStation(path).isEmpty());
        UnitRoot::write(path,
                        "<?xml version=\"1.0\"?><config><category>0</category>"
                        "<url>http://a.example/?a=1&amp;b=2</url><name> Night\n Song </name></config>");
        QCOMPARE(readStation(path).name, QStringLiteral("Night Song"));
        QCOMPARE(readStation(path).url, QStringLiteral("http://a.example/?a=1&b=2"));
        UnitRoot::write(path, "<config><name>half");
        QVERIFY(readStation(path).url.isEmpty());
    }
};

VIREO_TEST_MAIN(UnitModelTest)
#include "tst_unitmodel.moc"
