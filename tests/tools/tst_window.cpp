#include "tests/support/panelmain.h"
#include "tests/tools/stage.h"
#include "tests/tools/supervisorrun.h"
#include "tools/supervisor/bytetext.h"
#include "tools/supervisor/commandline.h"
#include "tools/supervisor/lampswitch.h"
#include "tools/supervisor/linkbar.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>

#include <filesystem>
#include <fstream>

class WindowTest : public QObject {
    Q_OBJECT

private:
    static QString fileLine(const char* name)
    {
        return QStringLiteral("file %1/tools/demo-unit/music/%2")
            .arg(QStringLiteral(VIREO_SOURCE_DIR), QString::fromLatin1(name));
    }

private slots:
    void asksForTheModeAtOnceAndAfterEachAction()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        QCOMPARE(stage.text("link"), QStringLiteral("Connected to 127.0.0.1:") + stage.panel.portText());
        QVERIFY(stage.hears(QStringList())); // a running panel is left as it is
        stage.panel.mode = 0;
        QTest::mouseClick(stage.child<KeyButton>("mode"), Qt::LeftButton);
        QTRY_COMPARE(stage.text("mode"), QStringLiteral("Mode: menu"));
        stage.panel.mode = 255;
        QTest::mouseClick(stage.child<KeyButton>("esc"), Qt::LeftButton);
        QTRY_COMPARE(stage.text("mode"), QStringLiteral("Mode: none"));
    }

    void sourceOfARunningPanelIsTakenOver()
    {
        Stage stage;
        stage.panel.mode = 1;
        QTRY_COMPARE(stage.text("mode"), QStringLiteral("Mode: usb"));
        QVERIFY(stage.child<LampSwitch>("usb")->isChecked());
        QVERIFY(stage.hears("device usb"));
    }

    void sourceLightsSwitchSources()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<LampSwitch>("usb")->click();
        QVERIFY(stage.hears("device usb"));
        stage.child<LampSwitch>("stream")->click();
        QVERIFY(stage.hears("device usb stream"));
        stage.child<LampSwitch>("aoe")->click(); // has a screen, as USB has: it takes its place
        QVERIFY(stage.hears("device stream aoe"));
        QVERIFY(!stage.child<LampSwitch>("usb")->isChecked());
        stage.child<LampSwitch>("aux")->click();
        stage.child<LampSwitch>("ir")->click();
        QVERIFY(
            stage.hears({QStringLiteral("device stream aux aoe"), QStringLiteral("device stream aux ir")}));
        for (const char* name : {"stream", "aux", "ir"})
            stage.child<LampSwitch>(name)->click();
        QVERIFY(stage.hears(
            {QStringLiteral("device aux ir"), QStringLiteral("device ir"), QStringLiteral("device none")}));
    }

    void diskIsInsertedPlayedAndEjected()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(Stage::diskLines()));
        QCOMPARE(stage.child<QListWidget>("tracks")->count(), 4);
        QVERIFY(!stage.timer("tick")->isActive());
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        QVERIFY(stage.timer("tick")->isActive());
        QCOMPARE(stage.text("state"), QStringLiteral("Playing"));
        stage.timer("tick")->stop(); // so that no level comes between
        QVERIFY(stage.hears({QStringLiteral("key play-pause"), fileLine("morning-corridor.mp3"),
                             QStringLiteral("time 0:00:00")}));
        QTest::mouseClick(stage.child<KeyButton>("next"), Qt::LeftButton);
        stage.timer("tick")->stop();
        QVERIFY(stage.hears(
            {QStringLiteral("key next"), fileLine("sunset-walk.flac"), QStringLiteral("time 0:00:00")}));
        QCOMPARE(stage.child<QListWidget>("tracks")->currentRow(), 1);
        QTest::mouseClick(stage.child<KeyButton>("stop"), Qt::LeftButton);
        QVERIFY(stage.hears({QStringLiteral("key stop"), QStringLiteral("time 0:00:00")}));
        QTest::mouseClick(stage.child<QPushButton>("eject"), Qt::LeftButton);
        QVERIFY(stage.hears({QStringLiteral("key stop"), QStringLiteral("disk-state removed"),
                             QStringLiteral("time 0:00:00")}));
        QCOMPARE(stage.child<QListWidget>("tracks")->count(), 0);
        QCOMPARE(stage.child<QPushButton>("eject")->text(), QStringLiteral("Insert"));
        QTest::mouseClick(stage.child<QPushButton>("eject"), Qt::LeftButton);
        QVERIFY(stage.hears(Stage::diskLines().mid(1))); // its source is on
        QCOMPARE(stage.child<QPushButton>("eject")->text(), QStringLiteral("Eject"));
    }

    void timeAndLevelRunWhilePlaying()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        const auto count = [&](const char* command) {
            int found = 0;
            for (const QByteArray& packet : stage.panel.packets)
                found += packet.startsWith(QByteArray::fromHex(command)) ? 1 : 0;
            return found;
        };
        QTRY_VERIFY(count("0400") >= 3); // levels
        QTRY_VERIFY(count("0200") >= 2); // times
        QVERIFY(!stage.child<QPlainTextEdit>("log")->toPlainText().contains(QLatin1String("level")));
    }

    void playModes()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QCheckBox>("repeat")->click();
        stage.child<QCheckBox>("shuffle")->click();
        stage.child<QComboBox>("scope")->setCurrentIndex(2);
        QVERIFY(stage.hears({QStringLiteral("mode repeat all"), QStringLiteral("mode repeat shuffle all"),
                             QStringLiteral("mode repeat shuffle folder")}));
    }

    void keysLeaveThePlayerAloneWithoutItsSource()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(Stage::diskLines()));
        stage.child<LampSwitch>("usb")->click();
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        QVERIFY(stage.hears({QStringLiteral("device none"), QStringLiteral("key play-pause"),
                             QStringLiteral("key stop")})); // the panel took it for a start
        QCOMPARE(stage.text("state"), QStringLiteral("Stopped"));
    }

    void sourceSwitchedOffStopsThePlayer()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        QCOMPARE(stage.text("state"), QStringLiteral("Playing"));
        stage.child<LampSwitch>("usb")->click();
        QCOMPARE(stage.text("state"), QStringLiteral("Stopped"));
        QVERIFY(!stage.timer("tick")->isActive());
    }

    void activatedTrackPlays()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(Stage::diskLines()));
        auto* tracks = stage.child<QListWidget>("tracks");
        tracks->setCurrentRow(2);
        QTest::keyClick(tracks, Qt::Key_Return);
        stage.timer("tick")->stop();
        QVERIFY(stage.hears({fileLine("winter-river.mp3"), QStringLiteral("time 0:00:00")}));
    }

    void diskFromTheStart()
    {
        Stage stage;
        stage.window.openMusic(QStringLiteral(VIREO_SOURCE_DIR "/tools/demo-unit/music"));
        QVERIFY(stage.isUp());
        QVERIFY(stage.hears(Stage::diskLines()));
        QCOMPARE(stage.child<QPlainTextEdit>("log")->toPlainText(),
                 Stage::diskLines().join(QLatin1Char('\n')));
        QCOMPARE(stage.child<QListWidget>("tracks")->count(), 4);
    }

    void namesThatAreNotUtf8ArePlayedAsTheirBytes()
    {
        const QTemporaryDir dir;
        const QByteArray folder = QFile::encodeName(dir.path()) + "/caf\xE9";
        const QByteArray file = folder + "/\xEC\x9D\xB4 \xFF.mp3";
        QVERIFY(std::filesystem::create_directory(folder.toStdString()));
        QVERIFY(std::ofstream(file.toStdString()).good());
        Stage stage;
        stage.window.openMusic(textOf(folder));
        QVERIFY(stage.isUp());
        QVERIFY(stage.hears({QStringLiteral("device usb"), QStringLiteral("disk-state normal"),
                             QStringLiteral("disk 1 1"), QStringLiteral("mode all")}));
        stage.child<KeyButton>("play-pause")->click();
        QTRY_VERIFY(stage.panel.packets.contains(packetOf(Command::Filename, file)));
    }

    void folderWithoutMusicIsNoDisk()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        auto* folder = stage.child<QLineEdit>("folder");
        folder->setText(QStringLiteral("/no/such/folder"));
        QTest::keyClick(folder, Qt::Key_Return);
        QVERIFY(stage.hears(QStringList()));
        QVERIFY(stage.child<QPlainTextEdit>("log")->toPlainText().contains(
            QLatin1String("# no music below \"/no/such/folder\"")));
        QCOMPARE(stage.text("remark"), QStringLiteral("no music below \"/no/such/folder\""));
    }

    void notices_data()
    {
        QTest::addColumn<QString>("button");
        for (const char* words :
             {"aoe ok", "aoe stop", "aoe fail", "aoe over", "upgrade start", "upgrade fail", "dhcp done"})
            QTest::newRow(words) << QString::fromLatin1(words);
    }
    void notices()
    {
        QFETCH(QString, button);
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QPushButton>(qPrintable(button))->click();
        QVERIFY(stage.hears({button}));
    }

    void stationAndMessageAreSentAsTyped()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QLineEdit>("title")->setText(QString::fromUtf8("별밤 이야기"));
        stage.child<QLineEdit>("url")->setText(QStringLiteral("http://a.example/#1"));
        stage.child<QPushButton>("announce")->click();
        QVERIFY(stage.hears({QString::fromUtf8("station \"별밤 이야기\" http://a.example/#1")}));
        QVERIFY(stage.child<QPlainTextEdit>("log")->toPlainText().contains(
            QString::fromUtf8("station \"별밤 이야기\" \"http://a.example/#1\"")));
        stage.child<QLineEdit>("message")->setText(QStringLiteral("two words"));
        stage.child<QPushButton>("upgrade-message")->click();
        QVERIFY(stage.hears("upgrade-message \"two words\""));
        stage.child<QLineEdit>("message")->clear();
        stage.child<QPushButton>("upgrade-message")->click();
        QVERIFY(stage.hears(QStringList()));
        QVERIFY(stage.child<QPlainTextEdit>("log")->toPlainText().endsWith(
            QLatin1String("# upgrade-message: the text is empty")));
    }

    void titleThatIsCutSaysSo()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        auto* remark = stage.child<QLabel>("remark");
        QVERIFY(!remark->isVisible());
        stage.child<QLineEdit>("title")->setText(QString(300, QLatin1Char('t')));
        stage.child<QPushButton>("announce")->click();
        QCOMPARE(remark->text(), QStringLiteral("station: the title was cut to 255 bytes"));
        QVERIFY(remark->isVisible());
        QVERIFY(stage.log().endsWith(QLatin1String("# station: the title was cut to 255 bytes")));
        stage.child<QPushButton>("aoe ok")->click();
        QVERIFY(!remark->isVisible());
    }

    void longestFootLeavesTheFrontItsPlace_data()
    {
        QTest::addColumn<QSize>("lines"); // of 14 pixels, beside the panel and in a window manager's frame
        QTest::newRow("640x480") << QSize(22, 32);
        QTest::newRow("800x480") << QSize(33, 32);
    }
    void longestFootLeavesTheFrontItsPlace()
    {
        QFETCH(QSize, lines);
        Stage stage;
        const QSize room = lines * stage.window.fontMetrics().height(); // in the font that there is
        stage.window.resize(room);
        auto* foot = stage.window.findChild<LinkBar*>();
        const int least = foot->height();
        const QString text = QStringLiteral("another supervisor ").repeated(20);
        foot->showLink(LinkBar::State::Replaced, text);
        foot->showRemark(text.simplified().remove(QLatin1Char(' '))); // as a path, without a place to break
        QTRY_VERIFY(foot->height() >= least + 3 * foot->fontMetrics().height());
        const auto* front = stage.window.findChild<QScrollArea*>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(front->verticalScrollBar()->maximum(), 0);
        QCOMPARE(front->horizontalScrollBar()->maximum(), 0);
        QCOMPARE(stage.window.size(), room);
        QCOMPARE(stage.child<QLabel>("remark")->toolTip(), stage.text("remark"));
    }

    void streamsHaveALevelWhileTheirSourceIsOn()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QPushButton>("aoe ok")->click();
        QVERIFY(!stage.timer("tick")->isActive()); // its source is off
        stage.child<LampSwitch>("aoe")->click();
        stage.child<QPushButton>("aoe ok")->click();
        QVERIFY(stage.timer("tick")->isActive());
        stage.child<QPushButton>("aoe fail")->click();
        QVERIFY(!stage.timer("tick")->isActive());
        stage.child<LampSwitch>("ir")->click();
        stage.child<QPushButton>("announce")->click();
        QVERIFY(stage.timer("tick")->isActive());
        stage.child<LampSwitch>("ir")->click();
        QVERIFY(!stage.timer("tick")->isActive());
    }

    void acceleratorsAreUniqueOnEachTab()
    {
        Stage stage;
        auto* tabs = stage.window.findChild<QTabWidget*>();
        for (int tab = 0; tab < tabs->count(); ++tab) {
            tabs->setCurrentIndex(tab);
            QStringList keys;
            for (int i = 0; i < tabs->count(); ++i)
                keys << QKeySequence::mnemonic(tabs->tabText(i)).toString();
            for (const QAbstractButton* button : stage.window.findChildren<QAbstractButton*>())
                if (button->isVisible() && !button->text().isEmpty())
                    keys << QKeySequence::mnemonic(button->text()).toString();
            for (const QLabel* label : stage.window.findChildren<QLabel*>())
                if (label->isVisible() && label->buddy())
                    keys << QKeySequence::mnemonic(label->text()).toString();
            keys.removeAll(QString());
            QVERIFY(keys.size() > 15);
            const auto all = keys.size();
            QVERIFY2(keys.removeDuplicates() == 0 && all > 0, qPrintable(tabs->tabText(tab)));
        }
    }

    void everyControlIsReachedByTab()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        QSet<QWidget*> reached;
        QWidget* at = stage.knob();
        do {
            reached << at;
            at = at->nextInFocusChain();
        } while (at != stage.knob());
        for (QWidget* control : stage.window.findChildren<QWidget*>())
            if (qobject_cast<QAbstractButton*>(control) && (control->focusPolicy() & Qt::TabFocus))
                QVERIFY2(reached.contains(control), qPrintable(control->objectName()));
        QVERIFY(stage.knob()->focusPolicy() & Qt::TabFocus);
    }

    void everyControlHasANameToBeReadOut()
    {
        Stage stage;
        int controls = 0;
        for (QWidget* widget : stage.window.findChildren<QWidget*>()) {
            const bool isPart = widget->objectName().startsWith(QLatin1String("qt_"));
            const bool isPopup = widget->window() != &stage.window; // a combo box's list, which the box names
            if (!(widget->focusPolicy() & Qt::TabFocus) || isPart || isPopup)
                continue;
            const auto* interface = QAccessible::queryAccessibleInterface(widget);
            QVERIFY(interface);
            const QByteArray what = widget->metaObject()->className() + (" " + widget->objectName().toUtf8());
            const bool isTabs = qobject_cast<QTabBar*>(widget) || qobject_cast<QTabWidget*>(widget);
            QVERIFY2(isTabs || !interface->text(QAccessible::Name).isEmpty(), what.constData());
            ++controls;
        }
        QVERIFY(controls > 30);
    }

    void commandLineGivesThePlace()
    {
        const CommandLine line = CommandLine::parse({QStringLiteral("--at"), QStringLiteral("340,-20")});
        QCOMPARE(line.error, QString());
        QCOMPARE(line.place.value_or(QPoint()), QPoint(340, -20));
        QVERIFY(!CommandLine::parse({}).place);
    }
};

VIREO_TEST_MAIN(WindowTest)
#include "tst_window.moc"
