#include "app/servicemanager.h"
#include "tests/docs/document.h"
#include "tests/link/peers.h"
#include "tests/support/logcatcher.h"
#include "tests/support/notifysocket.h"
#include "tests/support/ownport.h"
#include "tests/support/standarderror.h"

/** docs/unit.md against what the service manager and its journal hear of a real link. */
class UnitPageTest : public QObject {
    Q_OBJECT

private:
    /** Whether the page quotes this, whoever the peers are. */
    static bool isOnPage(QString words)
    {
        static const Document page(QStringLiteral("docs/unit.md"));
        words.replace(QRegularExpression(QStringLiteral("127\\.0\\.0\\.1:\\d+")),
                      QStringLiteral("ADDRESS:PORT"));
        const QString quoted = QLatin1Char('`') + words + QLatin1Char('`');
        return page.section(QStringLiteral("Is it alive?")).join(QLatin1Char('\n')).contains(quoted);
    }

private slots:
    void statusIsWhatTheManagerHears()
    {
        const QTemporaryDir folder;
        const LogCatcher quiet;
        const QByteArray name = QFile::encodeName(folder.filePath(QStringLiteral("notify")));
        NotifySocket manager(name);
        qputenv("NOTIFY_SOCKET", name);
        ServiceManager panel;
        panel.announceReady();
        ServiceManager::sayMode("usb");
        QByteArray status;
        const auto isNews = [&] { return !(status = manager.received().value(0)).isEmpty(); };
        QVERIFY(QTest::qWaitFor([&] { return isNews() && status.startsWith("STATUS=Mode usb"); }));
        QVERIFY2(isOnPage(QString::fromLatin1(status.mid(7))), status.constData());
        tcp_server server(nullptr);
        server.operateServer();
        const auto peer = newPeer(server);
        QVERIFY(peer && QTest::qWaitFor(isNews));
        QVERIFY2(isOnPage(QString::fromLatin1(status.mid(7))), status.constData());
    }

    void journalHasEachSupervisorThatCame()
    {
        tcp_server server(nullptr);
        server.operateServer();
        const LogCatcher log(5); // of the panel's own lines none
        std::unique_ptr<QTcpSocket> peers[2];
        {
            const StandardError error(true);
            for (auto& peer : peers)
                peer = newPeer(server);
        }
        QCOMPARE(log.lines().size(), 2);
        for (const QString& line : log.lines())
            QVERIFY2(isOnPage(line), qPrintable(line));
    }
};

VIREO_PORT_TEST_MAIN(UnitPageTest)
#include "tst_unit_page.moc"
