#include "tests/config/privileges.h"
#include "tests/screens/setupunit.h"
#include "tests/support/logcatcher.h"
#include "tests/support/panelmain.h"
#include "tests/support/routestandin.h"

#include <QStandardPaths>

using namespace Setup;

class SetupLiveTest : public QObject {
    Q_OBJECT

private:
    std::optional<Unit> m_unit;

private slots:
    void init() { m_unit.emplace(); }

    void dhcpOnShowsTheLiveValues()
    {
        const OwnNetwork own;
        if (!own.ip("link add eth0 type veth"))
            QSKIP(OwnNetwork::refused);
        QVERIFY(own.ip("addr add 10.20.30.40/20 dev eth0"));
        m_unit->writeResolv("nameserver 10.9.8.7\nnameserver 10.9.8.6\n");
        const RouteStandIn route(
            "printf '%s\\n' 'Kernel IP routing table' 'Destination Gateway' '0.0.0.0   10.20.16.1 x'");
        m_unit->writeTexts("yes");
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
            QSKIP(OwnNetwork::refused);
        const RouteStandIn none;
        m_unit->writeTexts("yes");
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
        m_unit->writeTexts("no");
        SetupScreen form;
        m_unit->writeNetwork("<config><hwaddr>AA</hwaddr><dhcp>yes</dhcp><hostname>h</hostname><gateway>DD</"
                             "gateway></config>");
        form.XMLParse();
        QCOMPARE(form.text("lb_MacAddr"), QStringLiteral("AA"));
        QCOMPARE(form.text("lb_gateway"), QStringLiteral("10.0.0.254"));
        form.XMLwriteInfo();
        QVERIFY(m_unit->readNetwork().contains("<hostname>panel</hostname>"));
        QVERIFY(m_unit->readNetwork().contains("<gateway>192.168.1.1</gateway>"));
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
        m_unit->writeResolv(file);
        m_unit->writeTexts("yes");
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
    }
    void gateways()
    {
        QFETCH(QByteArray, script);
        QFETCH(QString, gateway);
        QFETCH(QStringList, lines);
        const RouteStandIn route(script);
        m_unit->writeResolv("nameserver 10.0.0.8\nnameserver 10.0.0.9\n");
        m_unit->writeTexts("yes");
        SetupScreen form;
        LogCatcher log(1);
        form.XMLParse();
        QCOMPARE(form.text("lb_gateway"), gateway);
        QCOMPARE(log.plain(), lines);
    }

    void aHangingCommandThatPrintedNothing()
    {
        const RouteStandIn route("exec sleep 1000");
        m_unit->writeTexts("yes");
        SetupScreen form;
        form.setRouteWait(20);
        LogCatcher log(1);
        form.XMLParse();
        QCOMPARE(form.text("lb_gateway"), "not found gateway");
        QCOMPARE(log.plain().filter("gateway"), strings({"E not found gateway , route -n"}));
    }

    void aHangingCommandThatPrintedSomething()
    {
        const RouteStandIn route("echo a b; exec sleep 1000");
        m_unit->writeTexts("yes");
        SetupScreen form;
        QStringList lines;
        for (int waitMs = 20; form.text("lb_gateway") != "b" && waitMs < 60000; waitMs *= 2) {
            form.setRouteWait(waitMs);
            LogCatcher log(1);
            form.XMLParse();
            lines = log.plain();
        }
        QCOMPARE(form.text("lb_gateway"), "b");
        QCOMPARE(lines.filter("gateway"), QStringList());
    }

    void theRealRouteCommand()
    {
        const OwnNetwork own;
        if (!own.ip("link add eth0 type veth"))
            QSKIP(OwnNetwork::refused);
        if (QStandardPaths::findExecutable(QStringLiteral("route")).isEmpty())
            QSKIP("route is not installed");
        m_unit->writeTexts("yes");
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
};

VIREO_TEST_MAIN(SetupLiveTest)
#include "tst_setuplive.moc"
