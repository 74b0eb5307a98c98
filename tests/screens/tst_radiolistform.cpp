#include "tests/screens/radiounit.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/strings.h"

using namespace Radio;

class RadioListFormTest : public QObject {
    Q_OBJECT

private:
    std::optional<Unit> m_unit;

private slots:
    void init() { m_unit.emplace(); }

    void signalsAndSlotsInOrder()
    {
        QCOMPARE(ownMethods(RadioListForm::staticMetaObject),
                 strings({"sgSelectedUrl(QString)", "sgSelectedTitle(QString)", "sgSetMain()", "XMLParse()",
                          "InitList()", "up_action()", "down_action()", "select_action()"}));
    }

    void places_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QRect>("place");
        QTest::newRow("list") << "listView" << QRect(50, 50, 220, 130);
        QTest::newRow("background") << "lbl_background" << QRect(0, 0, 320, 240);
        QTest::newRow("bottom band") << "lb_botAlpha" << QRect(0, 200, 320, 40);
        QTest::newRow("source") << "lb_DiskStat" << QRect(245, 15, 55, 20);
    }
    void places()
    {
        QFETCH(QString, name);
        QFETCH(QRect, place);
        const RadioListForm form;
        QCOMPARE(form.size(), QSize(320, 240));
        QCOMPARE(form.findChild<QWidget*>(name)->geometry(), place);
    }

    void presetsComeBeforeTheUsersOwn()
    {
        m_unit->writeStations(3, 2);
        ListScreen form;
        form.enter();
        QCOMPARE(form.titles(), strings({"p0", "p1", "p2", "u0", "u1"}));
        QCOMPARE(form.row(), 0);
        QVERIFY(!form.view()->hasFocus());
    }

    void listsAreRebuiltOnEachEntry()
    {
        m_unit->writeStations(3, 2);
        ListScreen form;
        form.enter();
        m_unit->writePresets(stations('q', 1));
        m_unit->writeUser(stations('v', 1));
        form.enter();
        QCOMPARE(form.titles(), strings({"q0", "v0"}));
    }

    void selectingWritesTheStation_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QByteArray>("file");
        QTest::newRow("the first is preset 0")
            << 0 << radio(0, 0, QStringLiteral("http://p0/"), QStringLiteral("p0"));
        QTest::newRow("the third is preset 2")
            << 2 << radio(0, 2, QStringLiteral("http://p2/"), QStringLiteral("p2"));
        QTest::newRow("the fourth is the user's 0")
            << 3 << radio(1, 0, QStringLiteral("http://u0/"), QStringLiteral("u0"));
        QTest::newRow("the fifth is the user's 1")
            << 4 << radio(1, 1, QStringLiteral("http://u1/"), QStringLiteral("u1"));
    }
    void selectingWritesTheStation()
    {
        QFETCH(int, row);
        QFETCH(QByteArray, file);
        m_unit->writeStations(3, 2);
        ListScreen form;
        form.enter();
        QByteArray writtenAtTheSignal;
        connect(&form, &RadioListForm::sgSetMain, this, [&] { writtenAtTheSignal = m_unit->readRadio(); });
        form.setRow(row);
        LogCatcher log;
        form.select_action();
        QCOMPARE(writtenAtTheSignal, file);
        QCOMPARE(log.plain(),
                 strings({"void RadioListForm::select_action()", "void RadioListForm::XMLwriteInfo()"}));
        ListScreen next;
        next.enter();
        QCOMPARE(next.row(), row);
    }

    void onlyOneSignalIsEverEmitted()
    {
        m_unit->writeStations(3, 2);
        ListScreen form;
        QSignalSpy url(&form, &RadioListForm::sgSelectedUrl);
        QSignalSpy title(&form, &RadioListForm::sgSelectedTitle);
        QSignalSpy main(&form, &RadioListForm::sgSetMain);
        form.enter();
        form.down_action();
        form.up_action();
        QCOMPARE(main.count(), 0);
        form.select_action();
        QCOMPARE(main.count(), 1);
        QCOMPARE(url.count() + title.count(), 0);
    }

    void titlesWithMarkupAndKoreanComeBack()
    {
        m_unit->writeRadio(station(0, 0));
        m_unit->writePresets(channels(entry(korean, QStringLiteral("http://a/?b=1&c=2"))));
        ListScreen form;
        form.enter();
        QCOMPARE(form.titles(), QStringList(korean));
        form.select_action();
        const QString written = QString::fromUtf8(m_unit->readRadio());
        QVERIFY(written.contains(QStringLiteral("<url>http://a/?b=1&amp;c=2</url>")));
        QVERIFY(written.contains(QStringLiteral("<name>%1</name>").arg(korean.toHtmlEscaped())));
    }

    void theEncoderWraps_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<bool>("down");
        QTest::addColumn<int>("to");
        QTest::newRow("down") << 1 << true << 2;
        QTest::newRow("down from the last") << 4 << true << 0;
        QTest::newRow("up") << 3 << false << 2;
        QTest::newRow("up from the first") << 0 << false << 4;
        QTest::newRow("down from no row") << -1 << true << 0;
        QTest::newRow("up from no row stays there") << -1 << false << -2;
    }
    void theEncoderWraps()
    {
        QFETCH(int, from);
        QFETCH(bool, down);
        QFETCH(int, to);
        m_unit->writeStations(3, 2);
        ListScreen form;
        form.enter();
        form.setRow(from);
        LogCatcher log;
        down ? form.down_action() : form.up_action();
        const QString name = down ? QStringLiteral("down") : QStringLiteral("up");
        QCOMPARE(log.plain(),
                 QStringList({QStringLiteral("void RadioListForm::%1_action()").arg(name),
                              QStringLiteral("currentIndex [ %1 ] ").arg(from),
                              QStringLiteral("NextIndex [ %1 ] ").arg(to)}));
        QCOMPARE(form.row(), qMax(to, -1));
    }

    void anEmptyListTurnsToNothing()
    {
        ListScreen form;
        form.enter();
        QCOMPARE(form.rows(), 0);
        LogCatcher log(1);
        form.down_action();
        form.up_action();
        QCOMPARE(log.plain(),
                 strings({"currentIndex [ -1 ] ", "NextIndex [ 0 ] ", "currentIndex [ -1 ] ",
                          "NextIndex [ -2 ] "}));
        QCOMPARE(form.row(), -1);
    }

    void beforeTheFirstEntryTheEncoderIsHarmless()
    {
        ListScreen form;
        QSignalSpy main(&form, &RadioListForm::sgSetMain);
        form.down_action();
        form.up_action();
        form.select_action();
        form.SetCurrentIndexFromXML();
        QCOMPARE(main.count(), 0);
    }

    void selectOnAnEmptyListDoesNothing()
    {
        ListScreen form;
        form.enter();
        QSignalSpy main(&form, &RadioListForm::sgSetMain);
        LogCatcher log;
        form.select_action();
        QCOMPARE(log.plain(), strings({"void RadioListForm::select_action()"}));
        QCOMPARE(main.count(), 0);
        QVERIFY(!QFileInfo::exists(m_unit->conf(QStringLiteral("radio.xml"))));
    }

    void selectWithoutRowTakesTheFirst()
    {
        m_unit->writeStations(3, 2);
        ListScreen form;
        form.enter();
        form.setRow(-1);
        form.select_action();
        QCOMPARE(m_unit->readRadio(), radio(0, 0, QStringLiteral("http://p0/"), QStringLiteral("p0")));
    }

    void theCursorStandsOnTheStationOfTheFile_data()
    {
        QTest::addColumn<QByteArray>("category");
        QTest::addColumn<QByteArray>("channels");
        QTest::addColumn<int>("row");
        const auto row = [](const char* name, const char* category, const char* channel, int at) {
            QTest::newRow(name) << QByteArray(category) << QByteArray(channel) << at;
        };
        row("user station 0 behind 5 presets", "1", "0", 5);
        row("user station 1", "1", "1", 6);
        row("preset 2", "0", "2", 2);
        row("a category of 2 counts as presets", "2", "2", 2);
        row("beyond the last row there is none", "1", "2", -1);
        row("far beyond", "0", "100", -1);
        row("below zero", "0", "-1", -1);
        row("no numbers are zero", "x", "y", 0);
        row("a category of 257 is 1", "257", "0", 5);
        row("channels of 259 are 3", "0", "259", 3);
        row("a category of 200 is -56", "200", "1", 1);
        row("channels of 200 are -56, no row", "0", "200", -1);
        row("channels of 251 are -5, counted back from the user's first", "1", "251", 0);
        row("a number beyond 32 bits is zero", "0", "4294967299", 0);
        row("blanks around a number", " 1 ", "\n 1 \n", 6);
    }
    void theCursorStandsOnTheStationOfTheFile()
    {
        QFETCH(QByteArray, category);
        QFETCH(QByteArray, channels);
        QFETCH(int, row);
        m_unit->writeStations(5, 2);
        m_unit->writeRadio("<config><category>" + category + "</category><channels>" + channels
                           + "</channels><prefix>kr</prefix></config>");
        ListScreen form;
        form.enter();
        QCOMPARE(form.row(), row);
        QCOMPARE(form.view()->selectionModel()->hasSelection(), row >= 0);
    }

    void manyPresetsWrapTheirCount_data()
    {
        QTest::addColumn<int>("presets");
        QTest::addColumn<int>("category");
        QTest::addColumn<int>("channels");
        QTest::newRow("127 fit") << 127 << 0 << 0;
        QTest::newRow("128 are -128") << 128 << 1 << 128;
        QTest::newRow("200 are -56") << 200 << 1 << 56;
        QTest::newRow("256 are none") << 256 << 1 << 0;
        QTest::newRow("257 are one") << 257 << 0 << 0;
        QTest::newRow("ten thousand are 16") << 10000 << 0 << 0;
    }
    void manyPresetsWrapTheirCount()
    {
        QFETCH(int, presets);
        QFETCH(int, category);
        QFETCH(int, channels);
        m_unit->writeStations(presets, 1);
        ListScreen form;
        form.enter();
        QCOMPARE(form.rows(), presets + 1);
        form.setRow(0);
        form.select_action();
        QCOMPARE(m_unit->readRadio(),
                 radio(category, channels, QStringLiteral("http://p0/"), QStringLiteral("p0")));
    }

    void aFaultyPresetShiftsTheUsersStations()
    {
        m_unit->writeRadio(station(1, 0));
        m_unit->writePresets(channels(entry(QStringLiteral("p0"), QStringLiteral("http://p0/"))
                                      + entry(QStringLiteral("p1"), QString())
                                      + entry(QStringLiteral("p2"), QStringLiteral("http://p2/"))));
        m_unit->writeUser(stations('u', 2));
        ListScreen form;
        form.enter();
        QCOMPARE(form.titles(), strings({"p0", "p2", "u0", "u1"}));
        QCOMPARE(form.title(form.row()), QStringLiteral("u1"));
        form.setRow(2);
        form.select_action();
        QCOMPARE(m_unit->readRadio(), radio(0, 2, QStringLiteral("http://u0/"), QStringLiteral("u0")));
    }

    void linesOfTheOtherOperations()
    {
        ListScreen form;
        LogCatcher log;
        form.InitList();
        form.SetCurrentIndexFromXML();
        form.XMLwriteInfo();
        QCOMPARE(log.plain(),
                 strings({"void RadioListForm::InitList()", "void RadioListForm::SetCurrentIndexFromXML()",
                          "void RadioListForm::XMLwriteInfo()"}));
    }

    void tenThousandStationsTurn()
    {
        m_unit->writeStations(100, 9900);
        ListScreen form;
        form.enter();
        QCOMPARE(form.rows(), 10000);
        form.up_action();
        QCOMPARE(form.row(), 9999);
        QVERIFY(
            form.view()->viewport()->rect().intersects(form.view()->visualRect(form.view()->currentIndex())));
        form.select_action();
        QCOMPARE(m_unit->readRadio(),
                 radio(1, 9899, QStringLiteral("http://u9899/"), QStringLiteral("u9899")));
    }
};

VIREO_TEST_MAIN(RadioListFormTest)
#include "tst_radiolistform.moc"
