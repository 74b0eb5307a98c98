#include "screens/aoeform.h"
#include "tests/screens/screenrows.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"

#include <sys/stat.h>

namespace {

constexpr const char* playImage = ":/Tessaro/image/play_state/play.png";
constexpr const char* stopImage = ":/Tessaro/image/play_state/stop.png";

const QByteArray connection =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<config>\n    <port>5004</port>\n    <ip_addr> 10.0.0.7 \n</ip_addr>\n</config>\n";

/** A unit with both files in order. */
struct Unit : UnitRoot {
    Unit()
    {
        write(path(QStringLiteral("/tmp/sampleRate")), "48000 Hz\n");
        writeConf(QStringLiteral("aoe_conn.xml"), connection);
    }
    QString sampleRate() const { return path(QStringLiteral("/tmp/sampleRate")); }
    QString address() const { return conf(QStringLiteral("aoe_conn.xml")); }
};

QString rate(const AOEForm& screen)
{
    return Screen::text(screen, "lb_aoe_sample_rate");
}
QString ip(const AOEForm& screen)
{
    return Screen::text(screen, "lb_aoe_ip");
}

} // namespace

class AoeFormTest : public QObject {
    Q_OBJECT

private slots:
    void layout_data()
    {
        Screen::addRows(
            QVector<Screen::Row>{
                {"lbl_background", {0, 0, 320, 240}, "", ":/Tessaro/image/init/background.png"},
                {"lb_AOE_text1", {30, 105, 200, 20}, Screen::cyan, ":/Tessaro/font/IP ADDRESS.png"},
                {"lb_aoe_ip", {50, 125, 230, 20}, Screen::grey},
                {"lb_AOE_text2", {30, 160, 200, 20}, Screen::cyan, ":/Tessaro/font/SAMPLE RATE.png"},
                {"lb_aoe_sample_rate", {50, 180, 230, 20}, Screen::grey},
                {"lb_botAlpha", {0, 200, 320, 40}, Screen::band},
                {"lb_DiskStat", {245, 15, 55, 20}, "", ":/Tessaro/image/input/AOE.png"},
                {"lbI_PlayState", {21, 53, 17, 16}, "", stopImage, true},
                {"lb_POPUP",
                 {20, 100, 280, 100},
                 "color: rgb(174, 174, 174);\nbackground-color: rgb(0, 0, 0);"},
                {"lbl_background_alpha", {0, 0, 320, 240}, Screen::veil},
            }
            + Screen::meterRows({17, 52, 87, 122, 157, 192, 226, 262}));
    }
    void layout() { Screen::compareRow(AOEForm()); }

    void nothingElseIsOnTheForm()
    {
        AOEForm screen;
        QCOMPARE(screen.size(), QSize(320, 240));
        QCOMPARE(screen.findChildren<QWidget*>().size(), 10 + 16);
    }

    void whatMustBeOnTopIsOnTop()
    {
        AOEForm screen;
        using Screen::lies;
        for (const QWidget* const child : screen.findChildren<QWidget*>()) {
            const QByteArray name = child->objectName().toLatin1();
            if (name != "lbl_background")
                QVERIFY2(lies(screen, name.constData(), "lbl_background"), name.constData());
            if (name != "lbl_background_alpha" && name != "lb_POPUP")
                QVERIFY2(lies(screen, "lbl_background_alpha", name.constData()), name.constData());
        }
        QVERIFY(lies(screen, "lb_POPUP", "lbl_background_alpha"));
        for (const Screen::Row& row : Screen::meterRows({}).mid(8))
            QVERIFY(lies(screen, row.name, QByteArray(row.name).chopped(2).constData()));
    }

    void textsAreSmallUprightAndPlain()
    {
        AOEForm screen;
        for (const char* name : {"lb_aoe_ip", "lb_aoe_sample_rate", "lb_POPUP"}) {
            QVERIFY2(Screen::hasPanelFont(screen, name), name);
            QCOMPARE(Screen::label(screen, name)->textFormat(), Qt::PlainText);
        }
    }

    void startsStoppedWithoutPopUp()
    {
        LogCatcher log;
        AOEForm screen;
        QCOMPARE(log.lines(), QStringList());
        QVERIFY(!Screen::shown(screen, "lb_POPUP"));
        QVERIFY(!Screen::shown(screen, "lbl_background_alpha"));
        QCOMPARE(Screen::image(screen, "lbI_PlayState"), Screen::resource(stopImage));
    }

    void slotsInOrder()
    {
        QCOMPARE(ownMethods(AOEForm::staticMetaObject),
                 strings({"showAoeInfo(QString,QString)", "showPlay()", "showStop()", "showFailMSG()",
                          "showOVERMSG()", "showLevel(uchar)", "initLevel()", "AoeInfoFromXML()"}));
    }

    void signatureOfEachSlot()
    {
        const Unit unit;
        AOEForm screen;
        LogCatcher log;
        screen.showAoeInfo({}, {});
        screen.showPlay();
        screen.showStop();
        screen.showFailMSG();
        screen.showOVERMSG();
        screen.showLevel(0);
        screen.showLevel(3);
        QCOMPARE(log.lines(),
                 strings({"void AOEForm::showAoeInfo(QString, QString)", "void AOEForm::showPlay()",
                          "void AOEForm::AoeInfoFromXML()", "void AOEForm::showStop()",
                          "void AOEForm::showFailMSG()", "void AOEForm::showOVERMSG()",
                          "void AOEForm::showLevel(unsigned char)", "void AOEForm::initLevel()",
                          "void AOEForm::showLevel(unsigned char)"}));
    }

    void theEventNamesTheRateFirst()
    {
        AOEForm screen;
        screen.showAoeInfo(QStringLiteral("44100"), QStringLiteral("10.1.1.1"));
        QCOMPARE(rate(screen), QStringLiteral("44100"));
        QCOMPARE(ip(screen), QStringLiteral("10.1.1.1"));
    }

    void playingReplacesTheEventByTheFiles()
    {
        const Unit unit;
        AOEForm screen;
        screen.showAoeInfo(QStringLiteral("44100"), QStringLiteral("10.1.1.1"));
        screen.showPlay();
        QCOMPARE(Screen::image(screen, "lbI_PlayState"), Screen::resource(playImage));
        QCOMPARE(rate(screen), QStringLiteral("48000 Hz\n"));
        QCOMPARE(ip(screen), QStringLiteral("10.0.0.7"));
        screen.showStop();
        QCOMPARE(Screen::image(screen, "lbI_PlayState"), Screen::resource(stopImage));
    }

    void bothFilesAreReadAgainEachTime()
    {
        const Unit unit;
        AOEForm screen;
        screen.showPlay();
        UnitRoot::write(unit.sampleRate(), "96000");
        unit.writeConf(QStringLiteral("aoe_conn.xml"), "<config><ip_addr>10.0.0.9</ip_addr></config>");
        screen.showPlay();
        QCOMPARE(rate(screen), QStringLiteral("96000"));
        QCOMPARE(ip(screen), QStringLiteral("10.0.0.9"));
    }

    void popUp_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("showFailMSG") << QStringLiteral("Try to connect AOE server.");
        QTest::newRow("showOVERMSG") << QStringLiteral("Output only less than 16000Hz");
    }
    void popUp()
    {
        QFETCH(QString, text);
        const Unit unit;
        AOEForm screen;
        const auto raise = [&screen] { QMetaObject::invokeMethod(&screen, QTest::currentDataTag()); };
        raise();
        QCOMPARE(Screen::text(screen, "lb_POPUP"), text);
        QVERIFY(Screen::shown(screen, "lb_POPUP"));
        QVERIFY(Screen::shown(screen, "lbl_background_alpha"));
        screen.showStop();
        screen.showLevel(4);
        QVERIFY2(Screen::shown(screen, "lb_POPUP"), "it stays until the stream plays or says what it is");
        screen.showAoeInfo({}, {});
        QVERIFY(!Screen::shown(screen, "lb_POPUP"));
        QVERIFY2(Screen::shown(screen, "lbl_background_alpha"), "the veil stays behind the hidden box");
        raise();
        screen.showPlay();
        QVERIFY(!Screen::shown(screen, "lb_POPUP"));
        QVERIFY(!Screen::shown(screen, "lbl_background_alpha"));
    }

    void firstLineOfTheSampleRate_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("shown");
        QTest::newRow("its line break stays") << QByteArray("48000\n96000\n") << QStringLiteral("48000\n");
        QTest::newRow("without a line break") << QByteArray("48000") << QStringLiteral("48000");
        QTest::newRow("not trimmed") << QByteArray("  48000 \t\n") << QStringLiteral("  48000 \t\n");
        QTest::newRow("read as text") << QByteArray("48000\r\n96000") << QStringLiteral("48000\n");
        QTest::newRow("UTF-8") << QByteArray("48 \xED\x82\xAC\xEB\xA1\x9C\n") << QStringLiteral("48 킬로\n");
        QTest::newRow("ends at a zero") << QByteArray("48000\0x\n", 8) << QStringLiteral("48000");
        QTest::newRow("malformed UTF-8") << QByteArray("\xFF"
                                                       "48")
                                         << QStringLiteral("\uFFFD48");
        QTest::newRow("empty file") << QByteArray() << QString();
        QTest::newRow("empty first line") << QByteArray("\n48000") << QStringLiteral("\n");
    }
    void firstLineOfTheSampleRate()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, shown);
        const Unit unit;
        UnitRoot::write(unit.sampleRate(), bytes);
        AOEForm screen;
        screen.AoeInfoFromXML();
        QCOMPARE(rate(screen), shown);
        QVERIFY(!screen.grab().isNull());
    }

    void theLineBreakShowsAsInALabelOfTheToolkitWithItsFirstLineWhole()
    {
        const Unit unit;
        AOEForm screen;
        QWidget& label = *Screen::widget(screen, QStringLiteral("lb_aoe_sample_rate"));
        QLabel plain;
        plain.setStyleSheet(label.styleSheet());
        plain.setFont(label.font());
        plain.setAlignment(Qt::AlignLeft | Qt::AlignTop);
        plain.resize(label.size());
        plain.setText(QStringLiteral("48000\n"));
        UnitRoot::write(unit.sampleRate(), "48000\n");
        screen.AoeInfoFromXML();
        QCOMPARE(Screen::drawn(label), Screen::drawn(plain));
        plain.setText(QStringLiteral("48000"));
        QCOMPARE(Screen::drawn(label), Screen::drawn(plain));
    }

    void aLineWithoutEndIsNotReadToTheEnd()
    {
        const Unit unit;
        UnitRoot::write(unit.sampleRate(), QByteArray(8 * 1024 * 1024, 'x'));
        QVERIFY(QFile::resize(unit.sampleRate(), 1LL << 30));
        AOEForm screen;
        screen.AoeInfoFromXML();
        QVERIFY(rate(screen).startsWith(QStringLiteral("xxxxxxxx")));
        QVERIFY(rate(screen).size() <= 4096);
        QCOMPARE(ip(screen), QStringLiteral("10.0.0.7"));
    }

    void withoutASampleRateTheAddressStays()
    {
        const Unit unit;
        AOEForm screen;
        screen.AoeInfoFromXML();
        QVERIFY(QFile::remove(unit.sampleRate()));
        unit.writeConf(QStringLiteral("aoe_conn.xml"), "<config><ip_addr>10.0.0.9</ip_addr></config>");
        LogCatcher log;
        screen.AoeInfoFromXML();
        QCOMPARE(rate(screen), QStringLiteral("Read SR to failed"));
        QCOMPARE(ip(screen), QStringLiteral("10.0.0.7"));
        QCOMPARE(log.plain(),
                 strings({"void AOEForm::AoeInfoFromXML()", "E SampleRate [No such file or directory]"}));
    }

    void withoutAnAddressTheSampleRateStays()
    {
        const Unit unit;
        AOEForm screen;
        screen.AoeInfoFromXML();
        QVERIFY(QFile::remove(unit.address()));
        UnitRoot::write(unit.sampleRate(), "96000");
        LogCatcher log;
        screen.AoeInfoFromXML();
        QCOMPARE(rate(screen), QStringLiteral("48000 Hz\n"));
        QCOMPARE(ip(screen), QStringLiteral("Read XML to failed"));
        QCOMPARE(log.plain(),
                 strings({"void AOEForm::AoeInfoFromXML()", "E XML [No such file or directory]"}));
    }

    void theNextPlayTriesAgain()
    {
        const Unit unit;
        QVERIFY(QFile::remove(unit.sampleRate()));
        AOEForm screen;
        screen.showPlay();
        UnitRoot::write(unit.sampleRate(), "48000");
        screen.showPlay();
        QCOMPARE(rate(screen), QStringLiteral("48000"));
        QCOMPARE(ip(screen), QStringLiteral("10.0.0.7"));
    }

    void whatIsNoFileIsNotOpened_data()
    {
        QTest::addColumn<bool>("pipe");
        QTest::newRow("a pipe without a writer does not block") << true;
        QTest::newRow("a folder") << false;
    }
    void whatIsNoFileIsNotOpened()
    {
        QFETCH(bool, pipe);
        const Unit unit;
        QVERIFY(QFile::remove(unit.sampleRate()));
        if (pipe)
            QCOMPARE(::mkfifo(unit.sampleRate().toUtf8().constData(), 0600), 0);
        else
            QVERIFY(QDir().mkpath(unit.sampleRate()));
        AOEForm screen;
        LogCatcher log(4);
        screen.AoeInfoFromXML();
        QCOMPARE(rate(screen), QStringLiteral("Read SR to failed"));
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.plain().value(0).startsWith(QStringLiteral("E SampleRate [")));
    }

    void address_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("shown"); // "old" is what was there before
        const auto add = [](const char* name, const char* xml, const char* shown) {
            QTest::newRow(name) << QByteArray(xml) << QString::fromLatin1(shown);
        };
        add("blanks simplified", "<config><ip_addr>\n 10.0.0.7  b </ip_addr></config>", "10.0.0.7 b");
        add("others are ignored", "<config><a>1</a><ip_addr>2</ip_addr><b>3</b></config>", "2");
        add("the last counts", "<config><ip_addr>1</ip_addr><ip_addr>2</ip_addr></config>", "2");
        add("an empty one does not count", "<config><ip_addr>1</ip_addr><ip_addr/></config>", "1");
        add("empty keeps the old", "<config><ip_addr></ip_addr></config>", "old");
        add("only blanks keep the old", "<config><ip_addr> \n </ip_addr></config>", "old");
        add("missing keeps the old", "<config></config>", "old");
        add("an entry's end is passed over", "<config><entry></entry><ip_addr>1</ip_addr></config>", "1");
        add("outside config it does not count", "<unit><ip_addr>1</ip_addr><config/></unit>", "old");
        add("behind config neither", "<unit><config/><ip_addr>1</ip_addr></unit>", "old");
        add("a second config counts", "<u><config/><config><ip_addr>1</ip_addr></config></u>", "1");
        add("text behind a child does not", "<config><ip_addr><x/>1</ip_addr></config>", "old");
        add("not XML", "ip_addr=10.0.0.7", "old");
        add("an empty file", "", "old");
        add("no closing tag", "<config><ip_addr>1</ip_addr>", "1");
    }
    void address()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, shown);
        const Unit unit;
        unit.writeConf(QStringLiteral("aoe_conn.xml"), "<config><ip_addr>old</ip_addr></config>");
        AOEForm screen;
        screen.AoeInfoFromXML();
        unit.writeConf(QStringLiteral("aoe_conn.xml"), xml);
        screen.AoeInfoFromXML();
        QCOMPARE(ip(screen), shown);
    }

    void anAddressFileCutAnywhereIsRead()
    {
        const Unit unit;
        for (int length = 0; length <= connection.size(); ++length) {
            unit.writeConf(QStringLiteral("aoe_conn.xml"), "<config><ip_addr>old</ip_addr></config>");
            AOEForm screen;
            LogCatcher log(5);
            screen.AoeInfoFromXML();
            unit.writeConf(QStringLiteral("aoe_conn.xml"), connection.left(length));
            screen.AoeInfoFromXML();
            const bool whole = length >= connection.indexOf("</ip_addr>") + 2;
            const QString expected = whole ? QStringLiteral("10.0.0.7") : QStringLiteral("old");
            QVERIFY2(ip(screen) == expected || (!whole && QStringLiteral("10.0.0.7").startsWith(ip(screen))),
                     qPrintable(QString::number(length) + ip(screen)));
        }
    }
};

VIREO_TEST_MAIN(AoeFormTest)
#include "tst_aoeform.moc"
