#include "tests/screens/setupunit.h"
#include "tests/support/panelmain.h"
#include "tests/support/routestandin.h"

using namespace Setup;

static const QStringList waiting = strings({"lbl_background_alpha", "lbLoading"});

class SetupChoiceTest : public QObject {
    Q_OBJECT

private:
    std::optional<Unit> m_unit;

private slots:
    void init() { m_unit.emplace(); }

    void theChoiceIsClosedAtFirst()
    {
        SetupScreen form;
        form.InitWidget();
        QCOMPARE(form.shown(), QStringList());
        QVERIFY(!form.timer()->isActive());
    }

    void constructionDoesNotSetTheChoice()
    {
        m_unit->writeTexts("yes");
        SetupScreen form;
        form.next_action();
        form.InitWidget();
        QCOMPARE(form.shown(), QStringList());
        form.prev_action();
        QCOMPARE(form.shown(), yesImage);
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
        m_unit->writeTexts(dhcp.constData());
        const QByteArray file = m_unit->readNetwork() + "<!-- as it was -->";
        m_unit->writeNetwork(file);
        SetupScreen form;
        form.TimerStart();
        form.InitWidget();
        form.select_action();
        QCOMPARE(form.takeEvents(), strings({"open"}));
        QCOMPARE(form.shown(), image);
        form.select_action();
        QCOMPARE(form.takeEvents(), strings({"close"}));
        QCOMPARE(form.shown(), QStringList());
        QCOMPARE(m_unit->readNetwork(), file);
    }

    void escapeTakesTheChoiceBack()
    {
        m_unit->writeTexts("no");
        const QByteArray file = m_unit->readNetwork() + "<!-- as it was -->";
        m_unit->writeNetwork(file);
        SetupScreen form;
        form.TimerStart();
        form.InitWidget();
        form.select_action();
        form.prev_action();
        QCOMPARE(form.shown(), yesImage);
        form.esc_action();
        QCOMPARE(form.takeEvents(), strings({"open", "close"}));
        QCOMPARE(form.shown(), QStringList());
        QCOMPARE(m_unit->readNetwork(), file);
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
        m_unit->writeTexts(from.constData());
        SetupScreen form;
        form.XMLParse();
        form.InitWidget();
        QByteArray fileAtTheSignal;
        QStringList shownAtTheSignal;
        connect(&form, &SetupForm::sgDhcpClose, this, [&] {
            fileAtTheSignal = m_unit->readNetwork();
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
        m_unit->writeTexts("yes");
        SetupScreen form;
        form.XMLParse();
        QVERIFY(form.text("lb_gateway") != QStringLiteral("192.168.1.1"));
        form.select_action();
        form.next_action();
        form.select_action();
        QCOMPARE(m_unit->readNetwork(), network(unitTexts("no")));
    }

    void turningOnThePlainPageShowsTheChoice()
    {
        m_unit->writeTexts("no");
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
        m_unit->writeTexts("no");
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
        m_unit->writeTexts("yes");
        SetupScreen form;
        form.XMLParse();
        form.InitWidget();
        m_unit->writeNetwork("<config>" + dhcp + "</config>");
        form.XMLParse();
        form.select_action();
        QCOMPARE(form.shown(), image);
    }
};

VIREO_TEST_MAIN(SetupChoiceTest)
#include "tst_setupchoice.moc"
