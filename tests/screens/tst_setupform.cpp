#include "screens/setupform.h"
#include "tests/config/privileges.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/routestandin.h"
#include "tests/support/unitroot.h"

#include <QLabel>
#include <QMetaMethod>
#include <QStandardPaths>
#include <QTimer>

namespace {

const QByteArray declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
const char* const elementNames[] = {"hwaddr", "hostname", "dhcp", "ip", "netmask", "gateway", "dns1", "dns2"};
const char* const valueLabels[] = {"lb_MacAddr", "lb_dhcp", "lb_IPAddr", "lb_netmask",
                                   "lb_gateway", "lb_dns1", "lb_dns2"};

QStringList strings(std::initializer_list<const char*> list)
{
    QStringList result;
    for (const char* text : list)
        result << QString::fromUtf8(text);
    return result;
}

/** network.xml as the screen writes it, with the given texts in the order of its elements. */
QByteArray network(const QStringList& texts)
{
    QByteArray bytes = declaration + "<config>\n";
    for (int i = 0; i < 8; ++i) {
        const QByteArray name = elementNames[i];
        bytes += "    <" + name + '>' + texts.value(i).toHtmlEscaped().toUtf8() + "</" + name + ">\n";
    }
    return bytes + "</config>\n";
}

/** The unit of most tests; the one text that differs is DHCP. */
QStringList unitTexts(const char* dhcp)
{
    return strings({"00:11:22:33:44:55", "panel", dhcp, "192.168.1.20", "255.255.255.0", "192.168.1.1",
                    "10.0.0.1", "10.0.0.2"});
}

/** The same texts as the page shows them: without the host name, the net mask before the gateway. */
QStringList pageTexts(const char* dhcp)
{
    return strings(
        {"00:11:22:33:44:55", dhcp, "192.168.1.20", "255.255.255.0", "192.168.1.1", "10.0.0.1", "10.0.0.2"});
}

/** The screen with what can be seen of it and the signals that it has emitted. */
class SetupScreen : public SetupForm {
public:
    SetupScreen()
    {
        connect(this, &SetupForm::sgLoadingMode, this, [this] { m_events << QStringLiteral("loading"); });
        connect(this, &SetupForm::sgDhcpOpen, this, [this] { m_events << QStringLiteral("open"); });
        connect(this, &SetupForm::sgDhcpClose, this, [this] { m_events << QStringLiteral("close"); });
    }
    QLabel* label(const char* name) const { return findChild<QLabel*>(QString::fromLatin1(name)); }
    QString text(const char* name) const { return label(name)->text(); }
    QStringList page() const
    {
        QStringList texts;
        for (const char* name : valueLabels)
            texts << text(name);
        return texts;
    }
    /** The images that lie over the page. */
    QStringList shown() const
    {
        QStringList names;
        for (const char* name : {"lb_dhcp_yes", "lb_dhcp_no", "lbl_background_alpha", "lbLoading"})
            if (!label(name)->isHidden())
                names << QString::fromLatin1(name);
        return names;
    }
    QTimer* timer() const { return findChild<QTimer*>(); }
    QStringList events() const { return m_events; }
    /** The signals since the last call. */
    QStringList takeEvents() { return std::exchange(m_events, {}); }

private:
    QStringList m_events;
};

const QStringList yesImage = strings({"lb_dhcp_yes"});
const QStringList noImage = strings({"lb_dhcp_no"});
const QStringList waiting = strings({"lbl_background_alpha", "lbLoading"});

} // namespace

class SetupFormTest : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<UnitRoot> m_unit;

    void writeNetwork(const QByteArray& bytes) const
    {
        m_unit->writeConf(QStringLiteral("network.xml"), bytes);
    }
    void writeUnit(const char* dhcp) const { writeNetwork(network(unitTexts(dhcp))); }
    QByteArray readNetwork() const { return m_unit->readConf(QStringLiteral("network.xml")); }
    void writeResolv(const QByteArray& bytes) const
    {
        UnitRoot::write(m_unit->path(QStringLiteral("/etc/resolv.conf")), bytes);
    }

private slots:
    void initTestCase() { debugLevel = 5; }
    void init() { m_unit = std::make_unique<UnitRoot>(); }
    void cleanup() { m_unit.reset(); }

    void signalsAndSlotsInOrder()
    {
        const QMetaObject& meta = SetupForm::staticMetaObject;
        QStringList methods;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            methods << QString::fromLatin1(meta.method(i).methodSignature());
        QCOMPARE(methods,
                 strings({"sgLoadingMode()", "sgDhcpOpen()", "sgDhcpClose()", "prev_action()",
                          "next_action()", "select_action()", "esc_action()", "ChangeDHCP()", "XMLParse()",
                          "ReloadPage()", "StopTimer()", "TimerStart()"}));
    }

    void places_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QRect>("place");
        const auto row = [](const QString& name, int x, int y, int width, int height) {
            QTest::newRow(qPrintable(name)) << name << QRect(x, y, width, height);
        };
        row(QStringLiteral("lbl_background"), 0, 0, 320, 240);
        row(QStringLiteral("lb_Info"), 25, 20, 271, 25);
        int y = 60;
        for (const char* name : {"lb_MacAddr", "lb_dhcp", "lb_IPAddr", "lb_gateway", "lb_netmask", "lb_dns1",
                                 "lb_dns2", "lb_version"}) {
            row(QLatin1String(name) + QStringLiteral("_2"), 20, y, y == 60 ? 120 : 100, 20);
            row(QLatin1String(name), 140, y, 150, 20);
            y += 20;
        }
        row(QStringLiteral("label"), 135, 60, 1, 160);
        row(QStringLiteral("lb_dhcp_yes"), 80, 60, 153, 106);
        row(QStringLiteral("lb_dhcp_no"), 80, 60, 153, 106);
        row(QStringLiteral("lbl_background_alpha"), 0, 0, 320, 240);
        row(QStringLiteral("lbLoading"), 110, 110, 90, 23);
    }
    void places()
    {
        QFETCH(QString, name);
        QFETCH(QRect, place);
        const SetupForm form;
        QCOMPARE(form.size(), QSize(320, 240));
        QCOMPARE(form.findChild<QLabel*>(name)->geometry(), place);
    }

    void captionsAndValues_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("caption");
        QTest::newRow("hwaddr") << "lb_MacAddr"
                                << "MAC ADDRESS";
        QTest::newRow("dhcp") << "lb_dhcp"
                              << "DHCP";
        QTest::newRow("ip") << "lb_IPAddr"
                            << "IP ADDRESS";
        QTest::newRow("gateway") << "lb_gateway"
                                 << "GATEWAY";
        QTest::newRow("netmask") << "lb_netmask"
                                 << "NETMASK";
        QTest::newRow("dns1") << "lb_dns1"
                              << "DNS 1";
        QTest::newRow("dns2") << "lb_dns2"
                              << "DNS 2";
        QTest::newRow("version") << "lb_version"
                                 << "VERSION";
    }
    void captionsAndValues()
    {
        QFETCH(QString, value);
        QFETCH(QString, caption);
        const SetupForm form;
        const auto* label = form.findChild<QLabel*>(value);
        const auto* captionLabel = form.findChild<QLabel*>(value + QStringLiteral("_2"));
        QCOMPARE(captionLabel->text(), caption);
        for (const QLabel* each : {label, captionLabel}) {
            QCOMPARE(each->styleSheet(), QStringLiteral("color: rgb(174, 174, 174);"));
            QCOMPARE(each->textFormat(), Qt::PlainText);
            QCOMPARE(each->font().family(), QStringLiteral("Unifont"));
            QCOMPARE(each->font().pointSize(), 12);
            QCOMPARE(int(each->font().weight()), int(QFont::Normal));
        }
    }

    /** Name servers and routes come from files and commands as bytes: they may hold any character. */
    void controlCharactersDrawNothing_data()
    {
        QTest::addColumn<QString>("value");
        for (const char* name : valueLabels)
            QTest::newRow(name) << QString::fromLatin1(name);
        QTest::newRow("lb_version") << QStringLiteral("lb_version");
    }
    void controlCharactersDrawNothing()
    {
        QFETCH(QString, value);
        SetupForm form;
        auto* label = form.findChild<QLabel*>(value);
        label->setText(QStringLiteral("10.0.0.1"));
        const QImage plain = label->grab().toImage();
        label->setText(QStringLiteral("10.0\x1B.0.1\x9F"));
        QCOMPARE(label->grab().toImage(), plain);
        label->clear();
        QVERIFY(label->grab().toImage() != plain);
    }

    void theOtherLabels()
    {
        const SetupScreen form;
        QCOMPARE(form.label("lb_Info")->font().family(), QStringLiteral("Unifont"));
        QCOMPARE(form.label("lb_Info")->font().pointSize(), 16);
        QCOMPARE(int(form.label("lb_Info")->font().weight()), int(QFont::Black));
        QCOMPARE(form.label("lbl_background")->styleSheet(),
                 QStringLiteral("background-color: rgb(14, 14, 14);"));
        QCOMPARE(form.label("label")->styleSheet(), QStringLiteral("background-color: rgb(143, 235, 255);"));
        QCOMPARE(form.label("lbl_background_alpha")->styleSheet(),
                 QStringLiteral("background-color: rgba(45, 45, 45, 200);"));
    }

    void theChoiceIsClosedAtFirst()
    {
        SetupScreen form;
        form.InitWidget();
        QCOMPARE(form.shown(), QStringList());
        QVERIFY(!form.timer()->isActive());
    }

    void constructionFillsThePageFromTheFile_data()
    {
        QTest::addColumn<QByteArray>("dhcp");
        QTest::newRow("DHCP off") << QByteArray("no");
        QTest::newRow("DHCP on: the file's addresses all the same") << QByteArray("yes");
    }
    void constructionFillsThePageFromTheFile()
    {
        QFETCH(QByteArray, dhcp);
        writeUnit(dhcp.constData());
        m_unit->writeConf(QStringLiteral("version.xml"), "<config><value> 1.0 \n beta </value></config>");
        LogCatcher log;
        const SetupScreen form;
        QCOMPARE(log.plain(),
                 strings({"I IP ADDRESS [ 192.168.1.20 ]", "I NetMask [ 255.255.255.0 ]",
                          "I DNS1 [ 10.0.0.1 ]", "I DNS2 [ 10.0.0.2 ]", "I GateWay [ 192.168.1.1 ]"}));
        QCOMPARE(form.page(), pageTexts(dhcp.constData()));
        QCOMPARE(form.text("lb_version"), QStringLiteral("1.0 beta"));
    }

    void constructionDoesNotSetTheChoice()
    {
        writeUnit("yes");
        SetupScreen form;
        form.next_action();
        form.InitWidget();
        QCOMPARE(form.shown(), QStringList());
        form.prev_action();
        QCOMPARE(form.shown(), yesImage);
    }

    void withoutFilesThePageIsEmpty()
    {
        LogCatcher log;
        const SetupScreen form;
        QCOMPARE(log.plain(),
                 strings({"E XML [No such file or directory]", "I IP ADDRESS [  ]", "I NetMask [  ]",
                          "I DNS1 [  ]", "I DNS2 [  ]", "I GateWay [  ]",
                          "E Version XML [No such file or directory]"}));
        QCOMPARE(form.page().join(QString()), QString());
        QCOMPARE(form.text("lb_version"), QStringLiteral("not found Version"));
    }

    void versionOfAFile_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("version");
        QTest::newRow("plain") << QByteArray("<config><value>1.2</value></config>") << "1.2";
        QTest::newRow("the first counts")
            << QByteArray("<config><value>1.2</value><value>1.3</value></config>") << "1.2";
        QTest::newRow("an empty one does not")
            << QByteArray("<config><value/><value> </value><value>1.3</value></config>") << "1.3";
        QTest::newRow("none") << QByteArray("<config><version>1.2</version></config>") << "";
        QTest::newRow("text behind the end tag does not count")
            << QByteArray("<config><value/>1.2</config>") << "";
        QTest::newRow("behind an end tag \"entry\" none is looked for")
            << QByteArray("<config><entry/><value>1.2</value></config>") << "";
        QTest::newRow("outside \"config\"") << QByteArray("<c><value>1.2</value></c>") << "";
        QTest::newRow("markup") << QByteArray("<config><value>&lt;b>1&lt;/b></value></config>") << "<b>1</b>";
        QTest::newRow("an empty file") << QByteArray() << "";
        QTest::newRow("a damaged file") << QByteArray("<config><value>1.2</") << "1.2";
    }
    void versionOfAFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, version);
        m_unit->writeConf(QStringLiteral("version.xml"), file);
        SetupForm form;
        QCOMPARE(form.GetVersion(), version);
    }

    void pageOfAFile_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QStringList>("page");
        const auto row = [](const char* name, const char* file, std::initializer_list<const char*> page) {
            QTest::newRow(name) << QByteArray(file) << strings(page);
        };
        row("every element",
            "<config><hwaddr>A</hwaddr><hostname>h</hostname><dhcp>no</dhcp><ip>B</ip>"
            "<netmask>C</netmask><gateway>D</gateway><dns1>E</dns1><dns2>F</dns2></config>",
            {"A", "no", "B", "C", "D", "E", "F"});
        row("another order",
            "<config><dns1>E</dns1><gateway>D</gateway><dhcp>no</dhcp><ip>B</ip><dns2>F</dns2>"
            "</config>",
            {"00:11:22:33:44:55", "no", "B", "255.255.255.0", "D", "E", "F"});
        row("what follows dns2 is not read", "<config><dns2>F</dns2><ip>B</ip></config>",
            {"00:11:22:33:44:55", "no", "192.168.1.20", "255.255.255.0", "192.168.1.1", "10.0.0.1", "F"});
        row("an empty dns2 does not end the reading", "<config><dns2> </dns2><ip>B</ip></config>",
            {"00:11:22:33:44:55", "no", "B", "255.255.255.0", "192.168.1.1", "10.0.0.1", "10.0.0.2"});
        row("an end tag \"entry\" does", "<config><ip>B</ip><entry/><dns1>E</dns1></config>",
            {"00:11:22:33:44:55", "no", "B", "255.255.255.0", "192.168.1.1", "10.0.0.1", "10.0.0.2"});
        row("text behind an end tag does not count", "<config><ip>B</ip>C</config>",
            {"00:11:22:33:44:55", "no", "B", "255.255.255.0", "192.168.1.1", "10.0.0.1", "10.0.0.2"});
        row("DHCP of another word is off", "<config><dhcp>Yes</dhcp><ip>B</ip></config>",
            {"00:11:22:33:44:55", "Yes", "B", "255.255.255.0", "192.168.1.1", "10.0.0.1", "10.0.0.2"});
        row("markup is text", "<config><ip>&lt;b>1&lt;/b></ip></config>",
            {"00:11:22:33:44:55", "no", "<b>1</b>", "255.255.255.0", "192.168.1.1", "10.0.0.1", "10.0.0.2"});
        row("an empty file", "",
            {"00:11:22:33:44:55", "no", "192.168.1.20", "255.255.255.0", "192.168.1.1", "10.0.0.1",
             "10.0.0.2"});
    }
    void pageOfAFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(QStringList, page);
        const RouteStandIn route("echo $$ > \"$ROUTE_PID\"");
        writeUnit("no");
        SetupScreen form;
        writeNetwork(file);
        form.XMLParse();
        QCOMPARE(form.page(), page);
        QCOMPARE(route.pid(), 0);
    }

    void withoutTheFileThePageStays()
    {
        writeUnit("no");
        SetupScreen form;
        QFile::remove(m_unit->conf(QStringLiteral("network.xml")));
        LogCatcher log;
        form.XMLParse();
        QCOMPARE(log.plain(), strings({"void SetupForm::XMLParse()", "E XML [No such file or directory]"}));
        QCOMPARE(form.page(), pageTexts("no"));
    }

    void aCutFileLeavesTheOldTextsBehindTheCut()
    {
        const QStringList old = pageTexts("no");
        const QStringList now = strings({"AA", "off", "BB", "CC", "DD", "EE", "FF"});
        const QByteArray whole = network(strings({"AA", "h", "off", "BB", "CC", "DD", "EE", "FF"}));
        QStringList page;
        for (int length = 0; length <= whole.size(); ++length) {
            writeUnit("no");
            SetupScreen form;
            writeNetwork(whole.left(length));
            form.XMLParse();
            page = form.page();
            for (int i = 0; i < page.size(); ++i)
                QVERIFY(page.at(i) == old.at(i) || page.at(i) == now.at(i));
        }
        QCOMPARE(page, now);
    }

    void tenThousandElementsAreRead()
    {
        QByteArray file = "<config>";
        for (int i = 0; i < 10000; ++i)
            file += "<ip>" + QByteArray::number(i) + "</ip><unknown/>";
        writeNetwork(file + "</config>");
        const SetupScreen form;
        QCOMPARE(form.text("lb_IPAddr"), QStringLiteral("9999"));
    }

    void dhcpOnShowsTheLiveValues()
    {
        const OwnNetwork own;
        if (!own.ip("link add eth0 type veth"))
            QSKIP("a network of its own needs the superuser");
        QVERIFY(own.ip("addr add 10.20.30.40/20 dev eth0"));
        writeResolv("nameserver 10.9.8.7\nnameserver 10.9.8.6\n");
        const RouteStandIn route(
            "printf '%s\\n' 'Kernel IP routing table' 'Destination Gateway' '0.0.0.0   10.20.16.1 x'");
        writeUnit("yes");
        SetupScreen form;
        LogCatcher log;
        form.XMLParse();
        QCOMPARE(log.plain(), strings({"void SetupForm::XMLParse()"}));
        QCOMPARE(form.page(),
                 strings({"00:11:22:33:44:55", "yes", "10.20.30.40", "255.255.240.0", "10.20.16.1",
                          "10.9.8.7", "10.9.8.6"}));
    }

    void whatTheSystemDoesNotKnowIsNotFound()
    {
        const OwnNetwork own;
        if (!own.isOwn())
            QSKIP("a network of its own needs the superuser");
        const RouteStandIn none;
        writeUnit("yes");
        SetupScreen form;
        LogCatcher log;
        form.XMLParse();
        QCOMPARE(log.plain(),
                 strings({"void SetupForm::XMLParse()", "E resolv Error [ No such file or directory ] ",
                          "E not found gateway , route -n"}));
        QCOMPARE(form.page(),
                 strings({"00:11:22:33:44:55", "yes", "not found IP", "not found NetMask",
                          "not found gateway", "not found DNS1", "not found DNS2"}));
    }

    void whatFollowsDhcpOnIsNotRead()
    {
        const RouteStandIn route("echo 0.0.0.0 10.0.0.254");
        writeUnit("no");
        SetupScreen form;
        writeNetwork("<config><hwaddr>AA</hwaddr><dhcp>yes</dhcp><hostname>h</hostname><gateway>DD</"
                     "gateway></config>");
        form.XMLParse();
        QCOMPARE(form.text("lb_MacAddr"), QStringLiteral("AA"));
        QCOMPARE(form.text("lb_gateway"), QStringLiteral("10.0.0.254"));
        form.XMLwriteInfo();
        QVERIFY(readNetwork().contains("<hostname>panel</hostname>"));
        QVERIFY(readNetwork().contains("<gateway>192.168.1.1</gateway>"));
    }

    void nameServers_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        const QString none1 = QStringLiteral("not found DNS1");
        const QString none2 = QStringLiteral("not found DNS2");
        QTest::newRow("two") << QByteArray("nameserver 10.0.0.8\nnameserver 10.0.0.9\n") << "10.0.0.8"
                             << "10.0.0.9";
        QTest::newRow("one of the two lines")
            << QByteArray("search lan\nnameserver 10.0.0.8\n") << "10.0.0.8" << none2;
        QTest::newRow("a third line is never shown")
            << QByteArray("search lan\nnameserver 10.0.0.8\nnameserver 10.0.0.9\n") << "10.0.0.8" << none2;
        QTest::newRow("only on the third line")
            << QByteArray("a\nb\nnameserver 10.0.0.8\n") << none1 << none2;
        QTest::newRow("without an address") << QByteArray("nameserver\n") << "" << none2;
        QTest::newRow("empty") << QByteArray() << none1 << none2;
    }
    void nameServers()
    {
        QFETCH(QByteArray, file);
        QFETCH(QString, first);
        QFETCH(QString, second);
        const RouteStandIn route("echo 0.0.0.0 10.0.0.254");
        writeResolv(file);
        writeUnit("yes");
        SetupScreen form;
        LogCatcher log(1);
        form.XMLParse();
        QCOMPARE(form.text("lb_dns1"), first);
        QCOMPARE(form.text("lb_dns2"), second);
        QCOMPARE(log.lines(), QStringList());
    }

    void gateways_data()
    {
        QTest::addColumn<QByteArray>("script");
        QTest::addColumn<QString>("gateway");
        QTest::addColumn<QStringList>("lines");
        const QString none = QStringLiteral("not found gateway");
        const QStringList noLine = strings({"E not found gateway , route -n"});
        const QStringList noPiece = strings({"E not found gateway , size error"});
        QTest::newRow("the second column of the last line")
            << QByteArray("echo a b c; echo 10.0.0.0 10.0.0.254 255.0.0.0") << "10.0.0.254" << QStringList();
        QTest::newRow("any white space parts columns")
            << QByteArray("printf ' \\ta\\r\\t  b\\vc\\n'") << "b" << QStringList();
        QTest::newRow("no output") << QByteArray() << none << noLine;
        QTest::newRow("a blank last line") << QByteArray("echo a b; echo") << none << noPiece;
        QTest::newRow("a last line of blanks") << QByteArray("echo a b; echo ' '") << none << noPiece;
        QTest::newRow("a last line of one piece") << QByteArray("echo a b; echo c") << none << noPiece;
        QTest::newRow("a hanging command that printed nothing")
            << QByteArray("exec sleep 1000") << none << noLine;
        QTest::newRow("a hanging command that printed something")
            << QByteArray("echo a b; exec sleep 1000") << "b" << QStringList();
    }
    void gateways()
    {
        QFETCH(QByteArray, script);
        QFETCH(QString, gateway);
        QFETCH(QStringList, lines);
        const RouteStandIn route(script);
        writeResolv("nameserver 10.0.0.8\nnameserver 10.0.0.9\n");
        writeUnit("yes");
        SetupScreen form;
        form.setRouteWait(1500);
        LogCatcher log(1);
        form.XMLParse();
        QCOMPARE(form.text("lb_gateway"), gateway);
        QCOMPARE(log.plain(), lines);
    }

    void theRealRouteCommand()
    {
        const OwnNetwork own;
        if (!own.ip("link add eth0 type veth"))
            QSKIP("a network of its own needs the superuser");
        if (QStandardPaths::findExecutable(QStringLiteral("route")).isEmpty())
            QSKIP("route is not installed");
        writeUnit("yes");
        SetupScreen form;
        form.XMLParse();
        QCOMPARE(form.text("lb_gateway"), QStringLiteral("Gateway"));
        QVERIFY(own.ip("addr add 10.20.30.40/24 dev eth0"));
        QVERIFY(own.ip("link set eth0 up"));
        QVERIFY(own.ip("route add default via 10.20.30.1"));
        form.XMLParse();
        QCOMPARE(form.text("lb_IPAddr"), QStringLiteral("10.20.30.40"));
        QCOMPARE(form.text("lb_gateway"), QStringLiteral("0.0.0.0"));
        QVERIFY(own.ip("route add 10.50.0.0/16 via 10.20.30.2"));
        form.XMLParse();
        QCOMPARE(form.text("lb_gateway"), QStringLiteral("10.20.30.2"));
    }

    void selectTwiceChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("dhcp");
        QTest::addColumn<QStringList>("image");
        QTest::newRow("off") << QByteArray("no") << noImage;
        QTest::newRow("on") << QByteArray("yes") << yesImage;
    }
    void selectTwiceChangesNothing()
    {
        QFETCH(QByteArray, dhcp);
        QFETCH(QStringList, image);
        const RouteStandIn route("echo 0.0.0.0 10.0.0.254");
        writeUnit(dhcp.constData());
        const QByteArray file = readNetwork() + "<!-- as it was -->";
        writeNetwork(file);
        SetupScreen form;
        form.TimerStart();
        form.InitWidget();
        form.select_action();
        QCOMPARE(form.takeEvents(), strings({"open"}));
        QCOMPARE(form.shown(), image);
        form.select_action();
        QCOMPARE(form.takeEvents(), strings({"close"}));
        QCOMPARE(form.shown(), QStringList());
        QCOMPARE(readNetwork(), file);
    }

    void escapeTakesTheChoiceBack()
    {
        writeUnit("no");
        const QByteArray file = readNetwork() + "<!-- as it was -->";
        writeNetwork(file);
        SetupScreen form;
        form.TimerStart();
        form.InitWidget();
        form.select_action();
        form.prev_action();
        QCOMPARE(form.shown(), yesImage);
        form.esc_action();
        QCOMPARE(form.takeEvents(), strings({"open", "close"}));
        QCOMPARE(form.shown(), QStringList());
        QCOMPARE(readNetwork(), file);
        form.select_action();
        QCOMPARE(form.shown(), noImage);
    }

    void escapeOnThePlainPageDoesNothing()
    {
        SetupScreen form;
        form.InitWidget();
        form.esc_action();
        QCOMPARE(form.takeEvents(), QStringList());
        form.prev_action();
        form.esc_action();
        QCOMPARE(form.shown(), yesImage);
    }

    void applyingWritesTheFileAndAsksForTheRestart_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::newRow("on") << QByteArray("no") << QByteArray("yes");
        QTest::newRow("off") << QByteArray("yes") << QByteArray("no");
    }
    void applyingWritesTheFileAndAsksForTheRestart()
    {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        const RouteStandIn route("echo 0.0.0.0 10.0.0.254");
        writeUnit(from.constData());
        SetupScreen form;
        form.XMLParse();
        form.InitWidget();
        QByteArray fileAtTheSignal;
        QStringList shownAtTheSignal;
        connect(&form, &SetupForm::sgDhcpClose, this, [&] {
            fileAtTheSignal = readNetwork();
            shownAtTheSignal = form.shown();
        });
        form.select_action();
        to == "yes" ? form.prev_action() : form.next_action();
        form.select_action();
        QCOMPARE(fileAtTheSignal, network(unitTexts(to.constData())));
        QCOMPARE(shownAtTheSignal, waiting);
        QCOMPARE(form.takeEvents(), strings({"open", "close"}));
        QTRY_COMPARE(form.events(), strings({"loading"}));
        QCOMPARE(form.shown(), waiting);
        form.ReloadPage();
        QCOMPARE(form.shown(), QStringList());
    }

    void theFileKeepsTheAddressesThatWereReadNotTheLiveOnes()
    {
        const RouteStandIn route("echo 0.0.0.0 10.0.0.254");
        writeUnit("yes");
        SetupScreen form;
        form.XMLParse();
        QVERIFY(form.text("lb_gateway") != QStringLiteral("192.168.1.1"));
        form.select_action();
        form.next_action();
        form.select_action();
        QCOMPARE(readNetwork(), network(unitTexts("no")));
    }

    void turningOnThePlainPageShowsTheChoice()
    {
        writeUnit("no");
        SetupScreen form;
        form.XMLParse();
        form.InitWidget();
        form.next_action();
        QCOMPARE(form.shown(), QStringList());
        form.prev_action();
        QCOMPARE(form.shown(), yesImage);
        form.prev_action();
        QCOMPARE(form.shown(), yesImage);
        form.next_action();
        QCOMPARE(form.shown(), noImage);
        QCOMPARE(form.takeEvents(), QStringList());
    }

    void aReadingBetweenTurnAndSelectLeavesBothImages()
    {
        writeUnit("no");
        SetupScreen form;
        form.XMLParse();
        form.InitWidget();
        form.prev_action();
        form.XMLParse();
        form.select_action();
        QCOMPARE(form.shown(), yesImage + noImage);
        form.select_action();
        QCOMPARE(form.shown(), yesImage);
        QCOMPARE(form.takeEvents(), strings({"open", "close"}));
    }

    void theChoiceFollowsTheFile_data()
    {
        QTest::addColumn<QByteArray>("dhcp");
        QTest::addColumn<QStringList>("image");
        QTest::newRow("yes") << QByteArray("<dhcp> yes </dhcp>") << yesImage;
        QTest::newRow("no") << QByteArray("<dhcp>no</dhcp>") << noImage;
        QTest::newRow("another word is no") << QByteArray("<dhcp>YES</dhcp>") << noImage;
        QTest::newRow("empty leaves it") << QByteArray("<dhcp></dhcp>") << yesImage;
        QTest::newRow("missing leaves it") << QByteArray() << yesImage;
    }
    void theChoiceFollowsTheFile()
    {
        QFETCH(QByteArray, dhcp);
        QFETCH(QStringList, image);
        const RouteStandIn none;
        writeUnit("yes");
        SetupScreen form;
        form.XMLParse();
        form.InitWidget();
        writeNetwork("<config>" + dhcp + "</config>");
        form.XMLParse();
        form.select_action();
        QCOMPARE(form.shown(), image);
    }

    void thePageIsReadAgainEveryThreeSeconds()
    {
        writeUnit("no");
        SetupScreen form;
        LogCatcher log;
        form.TimerStart();
        QCOMPARE(log.plain(), strings({"void SetupForm::TimerStart()", "void SetupForm::XMLParse()"}));
        QVERIFY(form.timer()->isActive());
        QVERIFY(!form.timer()->isSingleShot());
        QCOMPARE(form.timer()->interval(), 3000);
        QCOMPARE(form.timer()->parent(), &form);
        log.clear();
        writeNetwork("<config><ip>B</ip><dns2>F</dns2></config>");
        QTimerEvent tick(form.timer()->timerId());
        QCoreApplication::sendEvent(form.timer(), &tick);
        QCOMPARE(form.text("lb_IPAddr"), QStringLiteral("B"));
        QCOMPARE(log.plain(), strings({"void SetupForm::XMLParse()"}));
        log.clear();
        form.StopTimer();
        QVERIFY(!form.timer()->isActive());
        QCOMPARE(log.plain(), strings({"void SetupForm::StopTimer()"}));
    }

    void slotsLogTheirSignature()
    {
        writeUnit("no");
        SetupScreen form;
        LogCatcher log;
        form.prev_action();
        form.next_action();
        form.select_action();
        form.esc_action();
        form.ChangeDHCP();
        form.ReloadPage();
        QCOMPARE(log.plain(),
                 strings({"void SetupForm::prev_action()", "void SetupForm::next_action()",
                          "void SetupForm::select_action()", "void SetupForm::esc_action()",
                          "void SetupForm::ChangeDHCP()", "void SetupForm::ReloadPage()",
                          "void SetupForm::XMLParse()"}));
        QCOMPARE(form.takeEvents(), strings({"open", "close", "loading"}));
        log.clear();
        form.InitWidget();
        form.InitFont();
        form.XMLwriteInfo();
        QCOMPARE(log.lines(), QStringList());
    }

    void aMissingFolderIsNotNoticedOnWriting()
    {
        writeUnit("no");
        SetupScreen form;
        QDir(m_unit->path(QStringLiteral("/opt"))).removeRecursively();
        LogCatcher log;
        form.XMLwriteInfo();
        QCOMPARE(log.lines(), QStringList());
    }

    void aFullDiskIsLoggedAndTheOldFileStays()
    {
        writeUnit("no");
        const QByteArray old = readNetwork();
        SetupScreen form;
        form.prev_action();
        LogCatcher log;
        {
            const FileSizeLimit limit(0);
            form.XMLwriteInfo();
        }
        QCOMPARE(log.plain(),
                 QStringList(QStringLiteral("E Config write [%1] File too large")
                                 .arg(m_unit->conf(QStringLiteral("network.xml")))));
        QCOMPARE(readNetwork(), old);
    }
};

VIREO_TEST_MAIN(SetupFormTest)
#include "tst_setupform.moc"
