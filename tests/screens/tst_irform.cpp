#include "screens/irform.h"
#include "screens/panelfont.h"
#include "tests/screens/screenrows.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"
#include "widgets/ticker.h"

namespace {

constexpr const char* playImage = ":/Tessaro/image/play_state/play.png";
constexpr const char* stopImage = ":/Tessaro/image/play_state/stop.png";

const QByteArray radioXml = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<config>\n"
                            "    <category>0</category>\n"
                            "    <channels>3</channels>\n"
                            "    <url>http://radio.example/one</url>\n"
                            "    <name>Radio One</name>\n"
                            "    <enable>yes</enable>\n"
                            "    <prefix>kr</prefix>\n"
                            "</config>\n";

/** The picture of one of the screen's tickers, showing just this text. */
QImage showing(const QString& text)
{
    Ticker ticker;
    ticker.setStyleSheet(QString::fromLatin1(Screen::grey));
    ticker.setFont(panelFont(12));
    ticker.resize(230, 20);
    ticker.setText(text, true);
    return Screen::drawn(ticker);
}
QImage title(const IRForm& screen)
{
    return Screen::drawn(*Screen::widget(screen, QStringLiteral("lb_IR_Title")));
}
QImage url(const IRForm& screen)
{
    return Screen::drawn(*Screen::widget(screen, QStringLiteral("lb_IR_Url")));
}

} // namespace

class IrFormTest : public QObject {
    Q_OBJECT

private slots:
    void layout_data()
    {
        Screen::addRows(QVector<Screen::Row>{
                            {"lbl_background", {0, 0, 320, 240}, "", ":/Tessaro/image/init/background.png"},
                            {"lb_IR_text1", {30, 105, 200, 20}, Screen::cyan, ":/Tessaro/font/title.png"},
                            {"lb_IR_Title", {50, 125, 230, 20}, Screen::grey},
                            {"lb_IR_text2", {30, 160, 200, 20}, Screen::cyan, ":/Tessaro/font/URL.png"},
                            {"lb_IR_Url", {50, 180, 230, 20}, Screen::grey},
                            {"lb_botAlpha", {0, 200, 320, 40}, Screen::band},
                            {"lb_DiskStat", {245, 15, 55, 20}, "", ":/Tessaro/image/input/IRADIO.png"},
                            {"lbI_PlayState", {21, 53, 17, 16}, "", stopImage, true},
                        }
                        + Screen::meterRows({17, 52, 87, 122, 157, 192, 227, 262}));
    }
    void layout() { Screen::compareRow(IRForm()); }

    void nothingElseIsOnTheForm()
    {
        IRForm screen;
        QCOMPARE(screen.size(), QSize(320, 240));
        QCOMPARE(screen.findChildren<QWidget*>().size(), 8 + 16);
        for (const char* name : {"lb_IR_Title", "lb_IR_Url"}) {
            QVERIFY(qobject_cast<Ticker*>(Screen::widget(screen, QString::fromLatin1(name))));
            QVERIFY(Screen::hasPanelFont(screen, name));
        }
    }

    void whatMustBeOnTopIsOnTop()
    {
        IRForm screen;
        for (const QWidget* const child : screen.findChildren<QWidget*>()) {
            const QByteArray name = child->objectName().toLatin1();
            if (name != "lbl_background")
                QVERIFY2(Screen::lies(screen, name.constData(), "lbl_background"), name.constData());
        }
        for (const Screen::Row& row : Screen::meterRows({}).mid(8))
            QVERIFY(Screen::lies(screen, row.name, QByteArray(row.name).chopped(2).constData()));
    }

    void constructionSetsTheMeterToItsStartLook()
    {
        LogCatcher log;
        IRForm screen;
        QCOMPARE(log.lines(), strings({"void IRForm::initLevel()"}));
    }

    void slotsInOrder()
    {
        QCOMPARE(ownMethods(IRForm::staticMetaObject),
                 strings({"showIRInfo(QString,QString)", "showPlay()", "showStop()", "showLevel(uchar)",
                          "initLevel()"}));
    }

    void signatureOfEachSlot()
    {
        IRForm screen;
        LogCatcher log;
        screen.showIRInfo({}, {});
        screen.showPlay();
        screen.showStop();
        screen.showLevel(0);
        screen.showLevel(3);
        QCOMPARE(log.lines(),
                 strings({"void IRForm::showIRInfo(QString, QString)", "void IRForm::showPlay()",
                          "void IRForm::showStop()", "void IRForm::showLevel(unsigned char)",
                          "void IRForm::initLevel()", "void IRForm::showLevel(unsigned char)"}));
    }

    void playAndStop()
    {
        IRForm screen;
        QCOMPARE(Screen::image(screen, "lbI_PlayState"), Screen::resource(stopImage));
        screen.showPlay();
        QCOMPARE(Screen::image(screen, "lbI_PlayState"), Screen::resource(playImage));
        screen.showStop();
        QCOMPARE(Screen::image(screen, "lbI_PlayState"), Screen::resource(stopImage));
    }

    void theEventNamesTheTitleFirst()
    {
        IRForm screen;
        screen.showIRInfo(QStringLiteral("노래 방송"), QStringLiteral("http://radio.example/two"));
        QCOMPARE(title(screen), showing(QStringLiteral("노래 방송")));
        QCOMPARE(url(screen), showing(QStringLiteral("http://radio.example/two")));
    }

    void theChosenStationFillsBoth()
    {
        const UnitRoot unit;
        unit.writeConf(QStringLiteral("radio.xml"), radioXml);
        IRForm screen;
        LogCatcher log;
        screen.RadioInfoFromXML(unit.conf(QStringLiteral("radio.xml")));
        QCOMPARE(title(screen), showing(QStringLiteral("Radio One")));
        QCOMPARE(url(screen), showing(QStringLiteral("http://radio.example/one")));
        QCOMPARE(log.lines(), QStringList());
    }

    void aMissingFileKeepsBothTexts()
    {
        const UnitRoot unit;
        IRForm screen;
        screen.showIRInfo(QStringLiteral("old title"), QStringLiteral("old url"));
        LogCatcher log;
        screen.RadioInfoFromXML(unit.conf(QStringLiteral("radio.xml")));
        QCOMPARE(title(screen), showing(QStringLiteral("old title")));
        QCOMPARE(url(screen), showing(QStringLiteral("old url")));
        QCOMPARE(log.plain(), strings({"E XML [No such file or directory]"}));
    }

    void station_data()
    {
        QTest::addColumn<QByteArray>("xml");
        QTest::addColumn<QString>("name"); // "old" is what was there before
        QTest::addColumn<QString>("address");
        const auto add = [](const char* row, const char* xml, const char* name, const char* address) {
            QTest::newRow(row) << QByteArray(xml) << QString::fromUtf8(name) << QString::fromUtf8(address);
        };
        add("an empty name keeps the title", "<config><url>u</url><name></name></config>", "old", "u");
        add("a blank name keeps the title", "<config><url>u</url><name> \n</name></config>", "old", "u");
        add("an empty url keeps the address", "<config><url/><name>n</name></config>", "n", "old");
        add("blanks simplified", "<config><url>  u  v </url><name>\n n  m\n</name></config>", "n m", "u v");
        add("the name ends the reading", "<config><name>n</name><url>u</url></config>", "n", "old");
        add("a later url counts until then", "<config><url>u</url><url>v</url><name>n</name></config>", "n",
            "v");
        add("the first name counts", "<config><name>n</name><name>m</name></config>", "n", "old");
        add("an empty name does not end it", "<config><name/><url>u</url><name>n</name></config>", "n", "u");
        add("an entry's end does", "<config><entry><url>u</url></entry><name>n</name></config>", "old", "u");
        add("the end of config does not", "<x><config><url>u</url></config><name>n</name></x>", "n", "u");
        add("a second config is read too",
            "<x><config><name>n</name></config><config><url>u</url><name>m</name></config></x>", "m", "u");
        add("outside config nothing counts", "<x><url>u</url><name>n</name></x>", "old", "old");
        add("Korean", "<config><url>u</url><name>노래 방송</name></config>", "노래 방송", "u");
        add("no closing tag", "<config><url>u</url><name>n</name>", "n", "u");
        add("an empty file", "", "old", "old");
        add("not XML", "name=n", "old", "old");
    }
    void station()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, name);
        QFETCH(QString, address);
        const UnitRoot unit;
        unit.writeConf(QStringLiteral("radio.xml"), xml);
        IRForm screen;
        screen.showIRInfo(QStringLiteral("old"), QStringLiteral("old"));
        screen.RadioInfoFromXML(unit.conf(QStringLiteral("radio.xml")));
        QCOMPARE(title(screen), showing(name));
        QCOMPARE(url(screen), showing(address));
    }

    void aFileCutAnywhereIsRead()
    {
        const UnitRoot unit;
        const QByteArray whole = radioXml;
        for (int length = 0; length <= whole.size(); ++length) {
            unit.writeConf(QStringLiteral("radio.xml"), whole.left(length));
            IRForm screen;
            screen.showIRInfo(QStringLiteral("old"), QStringLiteral("old"));
            LogCatcher log(5);
            screen.RadioInfoFromXML(unit.conf(QStringLiteral("radio.xml")));
            if (length <= whole.indexOf("<name>") + 6)
                QCOMPARE(title(screen), showing(QStringLiteral("old")));
            if (length >= whole.indexOf("</name>") + 2)
                QCOMPARE(title(screen), showing(QStringLiteral("Radio One")));
            if (length <= whole.indexOf("<url>") + 5)
                QCOMPARE(url(screen), showing(QStringLiteral("old")));
            if (length >= whole.indexOf("</url>") + 2)
                QCOMPARE(url(screen), showing(QStringLiteral("http://radio.example/one")));
        }
    }
};

VIREO_TEST_MAIN(IrFormTest)
#include "tst_irform.moc"
