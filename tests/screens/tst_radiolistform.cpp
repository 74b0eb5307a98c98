#include "screens/radiolistform.h"
#include "tests/config/privileges.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/unitroot.h"
#include "widgets/ticker.h"

#include <QListView>
#include <QMetaMethod>
#include <QXmlStreamReader>

namespace {

const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const QString korean = QString::fromUtf8("서울 방송 <1> & \"2\"");

QByteArray element(const char* name, const QString& text)
{
    return QByteArray("<") + name + '>' + text.toHtmlEscaped().toUtf8() + "</" + name + ">";
}

QByteArray entry(const QString& title, const QString& url)
{
    return "    <entry>\n        " + element("title", title) + "\n        " + element("url", url)
        + "\n    </entry>\n";
}

QByteArray channels(const QByteArray& entries)
{
    return declaration + "<channels>\n" + entries + "</channels>\n";
}

/** Stations named by a letter and their number: "p0" at "http://p0/". */
QByteArray stations(char letter, int count)
{
    QByteArray entries;
    for (int i = 0; i < count; ++i) {
        const QString name = QLatin1Char(letter) + QString::number(i);
        entries += entry(name, QStringLiteral("http://%1/").arg(name));
    }
    return channels(entries);
}

/** radio.xml as the screen writes it. */
QByteArray radio(int category, int channel, const QString& url, const QString& name,
                 const QString& enable = QStringLiteral("yes"), const QString& prefix = QStringLiteral("kr"))
{
    QByteArray bytes = declaration + "<config>\n";
    for (const QByteArray& line :
         {element("category", QString::number(category)), element("channels", QString::number(channel)),
          element("url", url), element("name", name), element("enable", enable), element("prefix", prefix)})
        bytes += "    " + line + '\n';
    return bytes + "</config>\n";
}

QByteArray station(int category, int channel)
{
    return radio(category, channel, QStringLiteral("u"), QStringLiteral("n"));
}

const char* const xmlParse = "void RadioListForm::XMLParse()";
const char* const infoFromXml = "void RadioListForm::RadioInfoFromXML(QString)";
const char* const listFromXml = "int RadioListForm::RadioListFromXML(QString)";
const char* const parseEntry = "QMap<QString, QString> RadioListForm::parseData(QXmlStreamReader&)";
const char* const addElement =
    "void RadioListForm::addElementDataToMap(QXmlStreamReader&, QMap<QString, QString>&) const";
const char* const writeInfo = "void RadioListForm::XMLwriteInfo()";

QStringList strings(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list)
        result << QString::fromUtf8(text);
    return result;
}

/** The screen on a unit of its own. */
class ListScreen : public RadioListForm {
public:
    QListView* view() const { return findChild<QListView*>(QStringLiteral("listView")); }
    QAbstractItemModel* model() const { return view()->model(); }
    int row() const { return view()->currentIndex().row(); }
    int rows() const { return model()->rowCount(); }
    QString title(int at) const { return model()->index(at, 0).data().toString(); }
    QStringList titles() const
    {
        QStringList result;
        for (int at = 0; at < rows(); ++at)
            result << title(at);
        return result;
    }
    void setRow(int at) const { view()->setCurrentIndex(model()->index(at, 0)); }

    /** What the state machine does on entering the list. */
    void enter()
    {
        XMLParse();
        InitList();
        show();
        SetCurrentIndexFromXML();
    }
};

} // namespace

class RadioListFormTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<UnitRoot> m_unit;

    void writeRadio(const QByteArray& bytes) const { m_unit->writeConf(QStringLiteral("radio.xml"), bytes); }
    void writePresets(const QByteArray& bytes) const
    {
        m_unit->writeConf(QStringLiteral("prefix_channels_kr.xml"), bytes);
    }
    void writeUser(const QByteArray& bytes) const
    {
        m_unit->writeConf(QStringLiteral("user_channels.xml"), bytes);
    }
    QByteArray readRadio() const { return m_unit->readConf(QStringLiteral("radio.xml")); }
    /** A unit with so many preset and user stations, of which the first is chosen. */
    void writeUnit(int presets, int users) const
    {
        writeRadio(station(0, 0));
        writePresets(stations('p', presets));
        writeUser(stations('u', users));
    }

private slots:
    void initTestCase() { debugLevel = 5; }
    void init() { m_unit = std::make_unique<UnitRoot>(); }
    void cleanup() { m_unit.reset(); }

    void signalsAndSlotsInOrder()
    {
        const QMetaObject& meta = RadioListForm::staticMetaObject;
        QStringList methods;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            methods << QString::fromLatin1(meta.method(i).methodSignature());
        QCOMPARE(methods,
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

    void lookOfTheList()
    {
        const ListScreen form;
        const QListView* view = form.view();
        QVERIFY(form.windowFlags() & Qt::FramelessWindowHint);
        QCOMPARE(view->font().family(), QStringLiteral("Unifont"));
        QCOMPARE(view->font().pointSize(), 10);
        QCOMPARE(view->gridSize(), QSize(270, 14));
        QVERIFY(view->uniformItemSizes());
        QCOMPARE(view->editTriggers(), QAbstractItemView::NoEditTriggers);
        QCOMPARE(view->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
        const char style[] =
            "QScrollBar:vertical {    border: 1px solid #999999;    background:white;    width:10px;        "
            "margin: 0px 0px 0px 0px;}QScrollBar::handle:vertical {    background: qlineargradient(x1:0, "
            "y1:0, "
            "x2:1, y2:0,    stop: 0  rgb(60, 60, 60), stop: 0.5 rgb(60, 60, 60),  stop:1 rgbrgb(60, 60, 60) "
            "); "
            "   min-height: 0px;}QScrollBar::add-line:vertical {    background: qlineargradient(x1:0, y1:0, "
            "x2:1, y2:0,    stop: 0  rgb(32, 47, 130), stop: 0.5 rgb(32, 47, 130),  stop:1 rgb(32, 47, "
            "130)); "
            "   height: px;    subcontrol-position: bottom;    subcontrol-origin: margin;}"
            "QScrollBar::sub-line:vertical {    background: qlineargradient(x1:0, y1:0, x2:1, y2:0,    "
            "stop: 0  rgb(32, 47, 130), stop: 0.5 rgb(32, 47, 130),  stop:1 rgb(32, 47, 130));    "
            "height: 0px;    subcontrol-position: top;    subcontrol-origin: margin;}";
        QCOMPARE(view->styleSheet(), QString::fromLatin1(style));
    }

    void theScrollBarStyleIsUnderstood()
    {
        writeUnit(100, 0);
        LogCatcher log(4);
        ListScreen form;
        form.enter();
        form.grab();
        QVERIFY(log.lines().filter(QStringLiteral("parse")).isEmpty());
    }

    void presetsComeBeforeTheUsersOwn()
    {
        writeUnit(3, 2);
        ListScreen form;
        form.enter();
        QCOMPARE(form.titles(), strings({"p0", "p1", "p2", "u0", "u1"}));
        QCOMPARE(form.row(), 0);
        QVERIFY(!form.view()->hasFocus());
    }

    void listsAreRebuiltOnEachEntry()
    {
        writeUnit(3, 2);
        ListScreen form;
        form.enter();
        writePresets(stations('q', 1));
        writeUser(stations('v', 1));
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
        writeUnit(3, 2);
        ListScreen form;
        form.enter();
        QByteArray writtenAtTheSignal;
        connect(&form, &RadioListForm::sgSetMain, this, [&] { writtenAtTheSignal = readRadio(); });
        form.setRow(row);
        LogCatcher log;
        form.select_action();
        QCOMPARE(writtenAtTheSignal, file);
        QCOMPARE(log.plain(), strings({"void RadioListForm::select_action()", writeInfo}));
        ListScreen next;
        next.enter();
        QCOMPARE(next.row(), row);
    }

    void onlyOneSignalIsEverEmitted()
    {
        writeUnit(3, 2);
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
        writeRadio(station(0, 0));
        writePresets(channels(entry(korean, QStringLiteral("http://a/?b=1&c=2"))));
        ListScreen form;
        form.enter();
        QCOMPARE(form.titles(), QStringList(korean));
        form.select_action();
        const QString written = QString::fromUtf8(readRadio());
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
        writeUnit(3, 2);
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
        writeUnit(3, 2);
        ListScreen form;
        form.enter();
        form.setRow(-1);
        form.select_action();
        QCOMPARE(readRadio(), radio(0, 0, QStringLiteral("http://p0/"), QStringLiteral("p0")));
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
        writeUnit(5, 2);
        writeRadio("<config><category>" + category + "</category><channels>" + channels
                   + "</channels><prefix>kr</prefix></config>");
        ListScreen form;
        form.enter();
        QCOMPARE(form.row(), row);
        QCOMPARE(form.view()->selectionModel()->hasSelection(), row >= 0);
    }

    void numbersAreWrittenAsTheyWereRead()
    {
        writeUnit(1, 0);
        writeRadio("<config><category>200</category><channels>300</channels><prefix>kr</prefix></config>");
        RadioListForm form;
        form.XMLParse();
        form.XMLwriteInfo();
        QVERIFY(readRadio().contains("<category>-56</category>\n    <channels>44</channels>"));
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
        writeUnit(presets, 1);
        ListScreen form;
        form.enter();
        QCOMPARE(form.rows(), presets + 1);
        form.setRow(0);
        form.select_action();
        QCOMPARE(readRadio(), radio(category, channels, QStringLiteral("http://p0/"), QStringLiteral("p0")));
    }

    void aFaultyPresetShiftsTheUsersStations()
    {
        writeRadio(station(1, 0));
        writePresets(channels(entry(QStringLiteral("p0"), QStringLiteral("http://p0/"))
                              + entry(QStringLiteral("p1"), QString())
                              + entry(QStringLiteral("p2"), QStringLiteral("http://p2/"))));
        writeUser(stations('u', 2));
        ListScreen form;
        form.enter();
        QCOMPARE(form.titles(), strings({"p0", "p2", "u0", "u1"}));
        QCOMPARE(form.title(form.row()), QStringLiteral("u1"));
        form.setRow(2);
        form.select_action();
        QCOMPARE(readRadio(), radio(0, 2, QStringLiteral("http://u0/"), QStringLiteral("u0")));
    }

    void entriesOfAFile_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("titles");
        const auto row = [](const char* name, const QByteArray& file, int count, const QStringList& titles) {
            QTest::newRow(name) << file << count << titles;
        };
        const QByteArray good = "<entry><title>t</title><url>u</url></entry>";
        const QStringList t = strings({"t"});
        row("below \"channels\"", "<channels>" + good + "</channels>", 1, t);
        row("below \"config\"", "<config><channels>" + good + "</channels></config>", 1, t);
        row("below any other name", "<list><x>" + good + good + "</x></list>", 2, t + t);
        row("as the root", good, 1, t);
        row("url first", "<c><entry><url>u</url><title>t</title></entry></c>", 1, t);
        row("other children are passed by",
            "<c><entry><id>1</id><title>t</title><x><y/></x><url>u</url>z</entry></c>", 1, t);
        row("children of children count", "<c><entry><x><title>t</title><url>u</url></x></entry></c>", 1, t);
        row("the last title counts", "<c><entry><title>s</title><title>t</title><url>u</url></entry></c>", 1,
            t);
        row("an empty title does not replace one",
            "<c><entry><title>t</title><title> </title><title/><url>u</url></entry></c>", 1, t);
        row("a url inside an empty title",
            "<c><entry><title><url>u</url></title><title>t</title></entry></c>", 1, t);
        row("white space is simplified",
            "<c>\r\n<entry>\r\n<title>\r\n a \t b </title><url> u </url></entry></c>", 1, strings({"a b"}));
        row("a blank title counts but is not listed", "<c><entry><title> \n </title><url>u</url></entry></c>",
            1, {});
        row("a blank url too", "<c><entry><title>t</title><url> </url></entry></c>", 1, {});
        row("no url", "<c><entry><title>t</title></entry></c>", 1, {});
        row("no title", "<c><entry><url>u</url></entry></c>", 1, {});
        row("an empty entry", "<c><entry/><entry></entry>" + good + "</c>", 3, t);
        row("an entry in an entry ends with the inner one",
            "<c><entry><title>t</title><entry><url>u</url></entry><url>v</url></entry></c>", 1, t);
        row("names are case-sensitive", "<c><Entry/><entry><Title>t</Title><url>u</url></entry></c>", 1, {});
        row("CDATA", "<c><entry><title><![CDATA[<t>]]></title><url>u</url></entry></c>", 1, strings({"<t>"}));
        row("a comment before the text hides it",
            "<c><entry><title><!-- --> t</title><url>u</url></entry></c>", 1, {});
        row("no entries", "<channels></channels>", 0, {});
        row("empty", "", 0, {});
        row("no closing tags", "<c>" + good + "<entry><title>s</title><url>u</url>", 2, strings({"t", "s"}));
        row("damaged behind the first", "<c>" + good + "<entry></c>" + good, 2, t);
    }
    void entriesOfAFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(int, count);
        QFETCH(QStringList, titles);
        writeUser(file);
        ListScreen form;
        LogCatcher log(5);
        QCOMPARE(form.RadioListFromXML(m_unit->conf(QStringLiteral("user_channels.xml"))), count);
        form.InitList();
        QCOMPARE(form.titles(), titles);
    }

    void aCutEntryIsLogged()
    {
        writeUser("<c><entry><title>t</title>");
        RadioListForm form;
        LogCatcher log(4);
        const QString path = m_unit->conf(QStringLiteral("user_channels.xml"));
        QCOMPARE(form.RadioListFromXML(path), 1);
        QCOMPARE(log.plain(),
                 QStringList(
                     QStringLiteral("E Config read [%1] ended early: Premature end of document.").arg(path)));
    }

    void linesOfOneReading()
    {
        writeUnit(1, 0);
        QFile::remove(m_unit->conf(QStringLiteral("user_channels.xml")));
        RadioListForm form;
        LogCatcher log;
        form.XMLParse();
        const QString presets = QStringLiteral("I ") + m_unit->conf(QStringLiteral("prefix_channels_kr.xml"));
        QCOMPARE(log.plain(),
                 strings({xmlParse, infoFromXml})
                     << presets
                     << strings({listFromXml, parseEntry, addElement, addElement, listFromXml})
                            .join(QLatin1Char('|'))
                            .split(QLatin1Char('|'))
                     << QStringLiteral("E RadioList_XML Error MSG [No such file or "
                                       "directory]"));
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
                          writeInfo}));
    }

    void withoutAnyFileTheListIsEmpty()
    {
        ListScreen form;
        LogCatcher log(2);
        form.enter();
        QCOMPARE(form.rows(), 0);
        const QString list = QStringLiteral("E RadioList_XML Error MSG [No such file or directory]");
        QCOMPARE(log.plain(),
                 QStringList({QStringLiteral("E RadioInfo XML [No such file or directory]"),
                              QStringLiteral("I ") + m_unit->conf(QStringLiteral("prefix_channels_.xml")),
                              list, list}));
    }

    void withoutRootThePathsAreTheUnitsOwn()
    {
        RadioListForm form;
        qunsetenv("VIREO_ROOT");
        LogCatcher log(2);
        form.XMLParse();
        QVERIFY(log.has(QStringLiteral("I /opt/orvane/conf/prefix_channels_.xml")));
    }

    void withoutRadioFileTheOldRecordStays()
    {
        writeUnit(3, 2);
        writeRadio(radio(1, 1, QStringLiteral("u"), QStringLiteral("n"), QStringLiteral("no")));
        ListScreen form;
        form.enter();
        QFile::remove(m_unit->conf(QStringLiteral("radio.xml")));
        form.enter();
        QCOMPARE(form.titles().size(), 5);
        QCOMPARE(form.row(), 4);
        form.XMLwriteInfo();
        QCOMPARE(readRadio(), radio(1, 1, QStringLiteral("u"), QStringLiteral("n"), QStringLiteral("no")));
    }

    void aFolderIsNoChannelFile()
    {
        QDir().mkpath(m_unit->conf(QStringLiteral("user_channels.xml")));
        RadioListForm form;
        LogCatcher log(4);
        QCOMPARE(form.RadioListFromXML(m_unit->conf(QStringLiteral("user_channels.xml"))), 0);
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.plain().at(0).startsWith(QStringLiteral("E RadioList_XML Error MSG [")));
    }

    void recordOfTheFile_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QByteArray>("written");
        const auto row = [](const char* name, const char* file, const QByteArray& written) {
            QTest::newRow(name) << QByteArray(file) << written;
        };
        const auto record = [](int category, int channel, const char* url, const char* name,
                               const char* enable, const char* prefix) {
            return radio(category, channel, QString::fromUtf8(url), QString::fromUtf8(name),
                         QString::fromUtf8(enable), QString::fromUtf8(prefix));
        };
        row("all fields",
            "<config><category>1</category><channels>2</channels><url>u2</url><name>n2</name>"
            "<enable>no</enable><prefix>p2</prefix></config>",
            record(1, 2, "u2", "n2", "no", "p2"));
        row("an empty field keeps its value",
            "<config><category/><channels></channels><url> </url><name>n2</name>"
            "<enable/><prefix>p2</prefix></config>",
            record(5, 6, "u", "n2", "yes", "p2"));
        row("what follows the prefix is not read",
            "<config><name>n2</name><prefix>p2</prefix><url>u2</url></config>",
            record(5, 6, "u", "n2", "yes", "p2"));
        row("an empty prefix does not end the reading", "<config><prefix></prefix><url>u2</url></config>",
            record(5, 6, "u2", "n", "yes", "kr"));
        row("no prefix at all", "<config><url>u2</url></config>", record(5, 6, "u2", "n", "yes", "kr"));
        row("an end tag \"entry\" ends the reading",
            "<config><url>u2</url><entry></entry><name>n2</name></config>",
            record(5, 6, "u2", "n", "yes", "kr"));
        row("text behind an end tag counts too", "<config><name>n2</name>n3<url>u2</url> </config>",
            record(5, 6, "u2", "n3", "yes", "kr"));
        row("text behind the prefix's end tag ends it as well", "<config><prefix/>p2<url>u2</url></config>",
            record(5, 6, "u", "n", "yes", "p2"));
        row("the second \"config\" counts",
            "<r><config><url>u2</url><prefix>p2</prefix></config><config><url>u3</url></config></r>",
            record(5, 6, "u3", "n", "yes", "p2"));
        row("elements outside \"config\"", "<r><url>u2</url></r>", record(5, 6, "u", "n", "yes", "kr"));
        row("a damaged file gives what stands before",
            "<config><url>u2</url><name></config><enable>no</enable>", record(5, 6, "u2", "n", "yes", "kr"));
        row("an empty file", "", record(5, 6, "u", "n", "yes", "kr"));
    }
    void recordOfTheFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(QByteArray, written);
        writeRadio(radio(5, 6, QStringLiteral("u"), QStringLiteral("n")));
        RadioListForm form;
        form.XMLParse();
        writeRadio(file);
        LogCatcher log(5);
        form.RadioInfoFromXML(m_unit->conf(QStringLiteral("radio.xml")));
        form.XMLwriteInfo();
        QCOMPARE(readRadio(), written);
    }

    void aRecordWithoutPrefixIsReadAgain()
    {
        writeUser(stations('u', 2));
        ListScreen form;
        form.enter();
        form.setRow(1);
        form.select_action();
        QCOMPARE(readRadio(),
                 radio(1, 1, QStringLiteral("http://u1/"), QStringLiteral("u1"), QStringLiteral("yes"),
                       QString()));
        ListScreen next;
        LogCatcher log(4);
        next.enter();
        QCOMPARE(next.row(), 1);
        QCOMPARE(log.plain().value(0),
                 QStringLiteral("E Config read [%1] ended early: end of document")
                     .arg(m_unit->conf(QStringLiteral("radio.xml"))));
    }

    void theOldRecordStaysWhereAFileIsCut()
    {
        writeUnit(2, 1);
        const QByteArray whole =
            radio(1, 0, QStringLiteral("u2"), korean, QStringLiteral("no"), QStringLiteral("kr"));
        for (int length = 0; length < whole.size(); ++length) {
            writeRadio(station(0, 1));
            RadioListForm form;
            LogCatcher log(5);
            form.XMLParse();
            writeRadio(whole.left(length));
            form.XMLParse();
            form.XMLwriteInfo();
            const QByteArray written = readRadio();
            QVERIFY(written.contains("<url>u</url>") || written.contains("<url>u2</url>"));
            QVERIFY(written.contains("<name>n</name>") || written.contains(element("name", korean)));
            QVERIFY(written.contains("<enable>yes</enable>") || written.contains("<enable>no</enable>"));
            QVERIFY(written.contains("<prefix>kr</prefix>"));
        }
    }

    void aCutChannelFileGivesTheStationsBeforeTheCut()
    {
        writeUnit(0, 0);
        const QByteArray whole =
            channels(entry(QStringLiteral("a"), QStringLiteral("u")) + entry(korean, QStringLiteral("v")));
        const QStringList all{QStringLiteral("a"), korean};
        ListScreen form;
        for (int length = 0; length <= whole.size(); ++length) {
            writePresets(whole.left(length));
            LogCatcher log(5);
            form.enter();
            QCOMPARE(form.titles(), all.mid(0, form.rows()));
        }
        QCOMPARE(form.rows(), 2);
    }

    void anEntryIsReadFromWhereTheReaderStands()
    {
        RadioListForm form;
        QXmlStreamReader xml(QByteArray("<c><entry><title>t</title><url>u</url></entry></c>"));
        while (!xml.isEndElement() || xml.name() != QLatin1String("entry"))
            xml.readNext();
        QCOMPARE(form.parseData(xml).size(), 0);
        QCOMPARE(xml.tokenType(), QXmlStreamReader::EndElement);
        QXmlStreamReader cut(QByteArray("<entry><title>t</title><url>u"));
        cut.readNextStartElement();
        QCOMPARE(form.parseData(cut).keys(), strings({"title"}));
    }

    void onlyStartTagsGiveText()
    {
        const RadioListForm form;
        QMap<QString, QString> map;
        QXmlStreamReader xml(QByteArray("<a>1</a>"));
        form.addElementDataToMap(xml, map);
        QCOMPARE(map.size(), 0);
        xml.readNextStartElement();
        form.addElementDataToMap(xml, map);
        QCOMPARE(map.value(QStringLiteral("a")), QStringLiteral("1"));
    }

    void aMissingFolderIsNotNoticedOnWriting()
    {
        writeUnit(1, 0);
        ListScreen form;
        form.enter();
        QDir(m_unit->path(QStringLiteral("/opt"))).removeRecursively();
        QSignalSpy main(&form, &RadioListForm::sgSetMain);
        LogCatcher log(1);
        form.select_action();
        QCOMPARE(log.lines(), QStringList());
        QCOMPARE(main.count(), 1);
    }

    void aFullDiskIsLoggedAndTheOldFileStays()
    {
        writeUnit(1, 0);
        ListScreen form;
        form.enter();
        const QByteArray old = readRadio();
        QSignalSpy main(&form, &RadioListForm::sgSetMain);
        LogCatcher log(1);
        {
            const FileSizeLimit limit(0);
            form.select_action();
        }
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E Config write [%1] File too large")
                                 .arg(m_unit->conf(QStringLiteral("radio.xml")))));
        QCOMPARE(readRadio(), old);
        QCOMPARE(main.count(), 1);
    }

    void theCurrentRowIsInViewAndMarkedWithoutFocus()
    {
        writeUnit(60, 40);
        ListScreen form;
        form.enter();
        for (int turn = 0; turn < 130; ++turn) {
            form.down_action();
            const QRect viewport = form.view()->viewport()->rect();
            const QRect row = form.view()->visualRect(form.view()->currentIndex());
            QCOMPARE(form.row(), (turn + 1) % 100);
            QVERIFY(row.top() >= viewport.top() && row.bottom() <= viewport.bottom());
            QCOMPARE(row.left(), viewport.left());
            const QImage image = form.view()->grab().toImage();
            const QColor mark(146, 226, 255);
            QCOMPARE(image.pixelColor(viewport.right() - 2, row.center().y()), mark);
            QVERIFY(image.pixelColor(viewport.right() - 2, (row.center().y() + 28) % 112) != mark);
        }
    }

    void aLongTitleIsElidedAndDoesNotMoveTheList()
    {
        writeRadio(station(0, 0));
        writePresets(channels(entry(QString(5000, QLatin1Char('W')), QStringLiteral("u"))
                              + entry(QString(5000, QLatin1Char('W')), QStringLiteral("u"))));
        ListScreen form;
        const QRect lastColumns(217, 14, 3, 14);
        form.enter();
        const QImage drawn = form.view()->grab(lastColumns).toImage();
        form.down_action();
        QCOMPARE(form.view()->visualRect(form.view()->currentIndex()).topLeft(), QPoint(0, 14));
        writePresets(QByteArray());
        form.enter();
        QCOMPARE(drawn, form.view()->grab(lastColumns).toImage());
    }

    /** Such as the leftovers of a list that was once in another encoding. */
    void controlCharactersOfATitleDrawNothing()
    {
        const QString controls = QStringLiteral("Se\u0090oul\u009F");
        const QString url = QStringLiteral("u");
        writeRadio(station(0, 2));
        writePresets(channels(entry(QStringLiteral("Seoul"), url) + entry(controls, url)
                              + entry(QStringLiteral("Busan"), url)));
        ListScreen form;
        form.enter();
        QCOMPARE(form.title(1), controls);
        const auto row = [&form](int at) { return form.view()->grab(QRect(0, at * 14, 220, 14)).toImage(); };
        QCOMPARE(row(1), row(0));
        form.setRow(0);
        QVERIFY2(row(2) != row(1), "another title looks different");
    }

    void theRowThatDoesNotFitIsNotDrawn()
    {
        writeUnit(20, 0);
        ListScreen form;
        const QRect belowTheRows(0, 9 * 14, 200, 130 - 9 * 14);
        form.enter();
        const QImage drawn = form.view()->grab(belowTheRows).toImage();
        writePresets(QByteArray());
        form.enter();
        QCOMPARE(drawn, form.view()->grab(belowTheRows).toImage());
    }

    void tenThousandStationsTurn()
    {
        writeUnit(100, 9900);
        ListScreen form;
        form.enter();
        QCOMPARE(form.rows(), 10000);
        form.up_action();
        QCOMPARE(form.row(), 9999);
        QVERIFY(
            form.view()->viewport()->rect().intersects(form.view()->visualRect(form.view()->currentIndex())));
        form.select_action();
        QCOMPARE(readRadio(), radio(1, 9899, QStringLiteral("http://u9899/"), QStringLiteral("u9899")));
    }

    void aTickerCoversTheCurrentRow()
    {
        writeUnit(3, 0);
        ListScreen form;
        form.enter();
        const QModelIndex first = form.model()->index(0, 0);
        const QModelIndex second = form.model()->index(1, 0);
        LogCatcher log;
        form.SetTickerEffect(first, QModelIndex());
        auto* ticker = qobject_cast<Ticker*>(form.view()->indexWidget(first));
        QVERIFY(ticker != nullptr);
        QCOMPARE(ticker->font().family(), QStringLiteral("Unifont"));
        QCOMPARE(ticker->font().pointSize(), 10);
        QVERIFY(ticker->autoFillBackground());
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            QCOMPARE(ticker->palette().color(group, QPalette::Base), QColor(Qt::white));
            QCOMPARE(ticker->palette().color(group, QPalette::Text), QColor(Qt::black));
        }
        form.SetTickerEffect(second, first);
        QVERIFY(form.view()->indexWidget(first) == nullptr);
        QVERIFY(qobject_cast<Ticker*>(form.view()->indexWidget(second)) != nullptr);
        form.SetTickerEffect(QModelIndex(), second);
        QVERIFY(form.view()->indexWidget(second) == nullptr);
        QCOMPARE(log.lines(), QStringList());
    }
};

VIREO_TEST_MAIN(RadioListFormTest)
#include "tst_radiolistform.moc"
