#include "tests/config/privileges.h"
#include "tests/screens/setupunit.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/routestandin.h"

using namespace Setup;

class SetupFormTest : public QObject {
    Q_OBJECT

private:
    std::optional<Unit> m_unit;

private slots:
    void init() { m_unit.emplace(); }

    void signalsAndSlotsInOrder()
    {
        QCOMPARE(ownMethods(SetupForm::staticMetaObject),
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

    void constructionFillsThePageFromTheFile_data()
    {
        QTest::addColumn<QByteArray>("dhcp");
        QTest::newRow("DHCP off") << QByteArray("no");
        QTest::newRow("DHCP on: the file's addresses all the same") << QByteArray("yes");
    }
    void constructionFillsThePageFromTheFile()
    {
        QFETCH(QByteArray, dhcp);
        m_unit->writeTexts(dhcp.constData());
        m_unit->writeConf(QStringLiteral("version.xml"), "<config><value> 1.0 \n beta </value></config>");
        LogCatcher log;
        const SetupScreen form;
        QCOMPARE(log.plain(),
                 strings({"I IP ADDRESS [ 192.168.1.20 ]", "I NetMask [ 255.255.255.0 ]",
                          "I DNS1 [ 10.0.0.1 ]", "I DNS2 [ 10.0.0.2 ]", "I GateWay [ 192.168.1.1 ]"}));
        QCOMPARE(form.page(), pageTexts(dhcp.constData()));
        QCOMPARE(form.text("lb_version"), QStringLiteral("1.0 beta"));
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
        m_unit->writeTexts("no");
        SetupScreen form;
        m_unit->writeNetwork(file);
        form.XMLParse();
        QCOMPARE(form.page(), page);
        QCOMPARE(route.pid(), 0);
    }

    void withoutTheFileThePageStays()
    {
        m_unit->writeTexts("no");
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
            m_unit->writeTexts("no");
            SetupScreen form;
            m_unit->writeNetwork(whole.left(length));
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
        m_unit->writeNetwork(file + "</config>");
        const SetupScreen form;
        QCOMPARE(form.text("lb_IPAddr"), QStringLiteral("9999"));
    }

    void thePageIsReadAgainEveryThreeSeconds()
    {
        m_unit->writeTexts("no");
        SetupScreen form;
        LogCatcher log;
        form.TimerStart();
        QCOMPARE(log.plain(), strings({"void SetupForm::TimerStart()", "void SetupForm::XMLParse()"}));
        QVERIFY(form.timer()->isActive());
        QVERIFY(!form.timer()->isSingleShot());
        QCOMPARE(form.timer()->interval(), 3000);
        QCOMPARE(form.timer()->parent(), &form);
        log.clear();
        m_unit->writeNetwork("<config><ip>B</ip><dns2>F</dns2></config>");
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
        m_unit->writeTexts("no");
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
        m_unit->writeTexts("no");
        SetupScreen form;
        QDir(m_unit->path(QStringLiteral("/opt"))).removeRecursively();
        LogCatcher log;
        form.XMLwriteInfo();
        QCOMPARE(log.lines(), QStringList());
    }

    void aFullDiskIsLoggedAndTheOldFileStays()
    {
        m_unit->writeTexts("no");
        const QByteArray old = m_unit->readNetwork();
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
        QCOMPARE(m_unit->readNetwork(), old);
    }
};

VIREO_TEST_MAIN(SetupFormTest)
#include "tst_setupform.moc"
