#include "tests/support/panelmain.h"
#include "tests/tools/stage.h"

#include <QPlainTextEdit>

using WindowHand::fire;

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

    void silentPanelIsFirstLateThenGivenUp()
    {
        Stage stage;
        QVERIFY(stage.isUp());
        stage.panel.answering = false;
        QTest::mouseClick(stage.child<KeyButton>("esc"), Qt::LeftButton);
        QCOMPARE(stage.timer("answer")->interval(), 2000);
        fire(stage.timer("answer"));
        QVERIFY(stage.text("link").startsWith(QLatin1String("Waiting for the panel at ")));
        QCOMPARE(stage.timer("answer")->interval(), 33000);
        fire(stage.timer("answer"));
        QVERIFY(stage.text("link").contains(QLatin1String("(the panel does not answer)")));
        stage.panel.answering = true;
        fire(stage.timer("retry"));
        QVERIFY(stage.isUp());
        QCOMPARE(stage.panel.connections, 2);
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
