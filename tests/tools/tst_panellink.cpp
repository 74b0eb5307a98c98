#include "tests/support/panelmain.h"
#include "tests/tools/stage.h"

#include <QPlainTextEdit>

#include <memory>

using WindowHand::fire;

/** Somebody else who connects to the panel, and leaves when the object ends. */
struct OtherCaller {
    explicit OtherCaller(FakePanel& panel)
        : m_panel(panel)
    {
        const int before = panel.connections;
        m_socket.connectToHost(QHostAddress(QHostAddress::LocalHost), panel.port());
        if (!QTest::qWaitFor([&] { return panel.connections == before + 1; }, 30000))
            qFatal("the panel does not accept");
    }
    ~OtherCaller()
    {
        const int before = m_panel.closed;
        m_socket.disconnectFromHost();
        if (!QTest::qWaitFor([&] { return m_panel.closed == before + 1; }))
            qFatal("the panel does not see the end");
    }
    OtherCaller(const OtherCaller&) = delete;
    OtherCaller& operator=(const OtherCaller&) = delete;

private:
    FakePanel& m_panel;
    QTcpSocket m_socket;
};

class PanelLinkTest : public QObject {
    Q_OBJECT

private slots:
    void linkComesBackByItselfAndTellsAgain()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(Stage::diskLines()));
        stage.panel.hangUp();
        QTRY_VERIFY(stage.text("link").startsWith(QLatin1String("No link to 127.0.0.1:")));
        QVERIFY(stage.text("link").endsWith(QLatin1String("next attempt in 0.5 s")));
        QCOMPARE(stage.text("mode"), QString());
        QTest::mouseClick(stage.child<KeyButton>("esc"), Qt::LeftButton);
        QVERIFY(stage.child<QPlainTextEdit>("log")->toPlainText().endsWith(
            QLatin1String("# no link, not sent: key esc")));
        fire(stage.timer("retry"));
        QVERIFY(stage.isUp());
        QCOMPARE(stage.panel.connections, 2);
        QVERIFY(stage.hears(Stage::diskLines()));
    }

    void connectNowDoesNotWait()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.child<QPushButton>("connect")->click();
        QTRY_COMPARE(stage.panel.connections, 2);
        QVERIFY(stage.isUp());
        QVERIFY(!stage.timer("retry")->isActive());
    }

    void pausesGrowToEightSeconds()
    {
        quint16 freePort = 0;
        {
            FakePanel panel;
            freePort = panel.port();
        }
        PanelLink link(QStringLiteral("127.0.0.1"), freePort);
        QList<int> pauses;
        QStringList reasons;
        connect(&link, &PanelLink::disconnected, this, [&](const QString& reason, int pauseMs) {
            pauses << pauseMs;
            reasons << reason;
        });
        link.connectNow();
        for (int attempt = 1; attempt <= 7; ++attempt) {
            QTRY_COMPARE(pauses.size(), attempt);
            fire(link.findChild<QTimer*>(QStringLiteral("retry")));
        }
        QTRY_COMPARE(pauses.size(), 8);
        QCOMPARE(pauses, (QList<int>{500, 1000, 2000, 4000, 8000, 8000, 8000, 8000}));
        QCOMPARE(reasons[0], QStringLiteral("Connection refused"));
        FakePanel panel(freePort);
        fire(link.findChild<QTimer*>(QStringLiteral("retry")));
        QTRY_VERIFY(link.isUp());
        panel.hangUp();
        QTRY_COMPARE(pauses.size(), 9);
        QCOMPARE(pauses.last(), 500); // a link that was up starts anew
    }

    void questionsWaitForTheirAnswer()
    {
        FakePanel panel;
        panel.answering = false;
        PanelLink link(QStringLiteral("127.0.0.1"), panel.port());
        QList<int> codes;
        connect(&link, &PanelLink::modeReported, this, [&](quint8 code) { codes << code; });
        link.connectNow();
        QTRY_VERIFY(link.isUp());
        for (int i = 0; i < 5; ++i)
            link.askMode();
        link.send(QByteArray::fromHex("0400010001"));
        QTRY_COMPARE(panel.packets.size(), 2);
        QCOMPARE(panel.requests, 1);
        panel.answer(4);
        QTRY_COMPARE(panel.requests, 2); // one more for the four that came meanwhile
        panel.answer(1);
        QTRY_COMPARE(codes, (QList<int>{4, 1}));
        QVERIFY(!link.findChild<QTimer*>(QStringLiteral("answer"))->isActive());
    }

    void silentPanelIsLookedIntoThenGivenUp()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.panel.answering = false;
        fire(stage.timer("ask"));
        fire(stage.timer("answer"));
        QTRY_COMPARE(stage.panel.connections, 2); // nobody else is there: somebody may have come and gone
        QTRY_VERIFY(stage.timer("answer")->isActive());
        for (int waitedMs = 500; waitedMs < 35000; waitedMs += 500) {
            fire(stage.timer("answer"));
            QVERIFY(stage.text("link").startsWith(QLatin1String("Waiting for the panel at ")));
        }
        fire(stage.timer("answer"));
        QVERIFY(stage.text("link").contains(QLatin1String("(the panel does not answer)")));
        QCOMPARE(stage.panel.connections, 2);
        stage.panel.answering = true;
        fire(stage.timer("retry"));
        QVERIFY(stage.isUp());
        QCOMPARE(stage.panel.connections, 3);
    }

    void callerThatCameAndWentIsFollowedAtOnce()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QVERIFY(stage.hears(Stage::diskLines()));
        {
            OtherCaller other(stage.panel);
        }
        QVERIFY(stage.asksInVain());
        QTRY_COMPARE(stage.panel.connections, 3);
        QVERIFY(stage.isUp());
        QVERIFY(stage.hears(QStringList())); // the panel has been running: what it shows is left alone
        QVERIFY(stage.log().contains(QLatin1String("# the link is back")));
    }

    void callerThatStaysKeepsTheLinkUntilItGoes()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        auto other = std::make_unique<OtherCaller>(stage.panel);
        QVERIFY(stage.asksInVain());
        QVERIFY(stage.text("link").startsWith(QLatin1String("Another program has the link to 127.0.0.1:")));
        QCOMPARE(stage.text("mode"), QString());
        for (int i = 0; i < 100; ++i)
            fire(stage.timer("answer"));
        QCOMPARE(stage.panel.connections, 2);
        other.reset();
        fire(stage.timer("answer"));
        QTRY_COMPARE(stage.panel.connections, 3);
        QVERIFY(stage.isUp());
    }

    void whatTheUserDoesTakesTheLinkBack()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        const OtherCaller other(stage.panel);
        QVERIFY(stage.asksInVain());
        QTest::mouseClick(stage.child<KeyButton>("esc"), Qt::LeftButton);
        QTest::mouseClick(stage.child<KeyButton>("mode"), Qt::LeftButton);
        QVERIFY(stage.isUp());
        QCOMPARE(stage.panel.connections, 3);
        QVERIFY(stage.hears({QStringLiteral("key esc"), QStringLiteral("key mode")}));
        fire(stage.timer("ask")); // who was there before is no rival
        QVERIFY(stage.isUp());
    }

    void whatRunsByItselfDoesNot()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.openDemoMusic();
        QTest::mouseClick(stage.child<KeyButton>("play-pause"), Qt::LeftButton);
        QTRY_VERIFY(stage.panel.packets.contains(QByteArray::fromHex("020003 00 000000")));
        const OtherCaller other(stage.panel);
        QVERIFY(stage.asksInVain());
        stage.panel.packets.clear();
        for (int second = 0; second < 10; ++second) {
            fire(stage.timer("tick"));
            fire(stage.timer("answer"));
        }
        QCOMPARE(stage.panel.packets, QList<QByteArray>());
        QCOMPARE(stage.panel.connections, 2);
    }

    void twoWindowsDoNotTakeItFromEachOther()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        SupervisorWindow second(QStringLiteral("127.0.0.1"), stage.panel.port());
        const auto* mode = WindowHand::child<QLabel>(second, "mode");
        QTRY_COMPARE(mode->text(), QStringLiteral("Mode: netbgm"));
        QVERIFY(stage.asksInVain());
        for (int i = 0; i < 20; ++i) {
            fire(stage.timer("answer"));
            fire(WindowHand::child<QTimer>(second, "ask"));
            QTRY_VERIFY(!WindowHand::child<QTimer>(second, "answer")->isActive());
        }
        QCOMPARE(stage.panel.connections, 2);
    }

    void watchOfAnotherMachineTellsNothing()
    {
        const QTcpSocket elsewhere; // no connection of this machine's panel
        QCOMPARE(int(RivalWatch().look(elsewhere)), int(Rival::Unknown));
    }

    void panelThatDoesNotReadIsGivenUp()
    {
        QTcpServer deaf;
        QVERIFY(deaf.listen(QHostAddress::LocalHost));
        PanelLink link(QStringLiteral("127.0.0.1"), deaf.serverPort());
        QString reason;
        connect(&link, &PanelLink::disconnected, this, [&](const QString& why) { reason = why; });
        link.connectNow();
        QTRY_VERIFY(link.isUp());
        const QByteArray large(64 * 1024, 'x');
        constexpr int farMoreThanTheSystemBuffers = 1000;
        for (int i = 0; i < farMoreThanTheSystemBuffers && reason.isEmpty(); ++i)
            link.send(large);
        QCOMPARE(reason, QStringLiteral("the panel does not read"));
        QVERIFY(!link.isUp());
    }
};

VIREO_TEST_MAIN(PanelLinkTest)
#include "tst_panellink.moc"
